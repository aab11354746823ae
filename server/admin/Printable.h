#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace clockwell::server {

/// How many columns of a terminal a UTF-8 text takes: wide East Asian characters two, combining marks none.
std::size_t terminalWidth(std::string_view text);

/// The text on one line and without control and format characters (each becomes "?"): people choose their own
/// names, and these must not steer the administrator's terminal. The joiners of Persian, Indic and emoji
/// texts stay.
std::string printable(std::string_view text);

} // namespace clockwell::server
