#pragma once

#include "server/storage/Instant.h"

#include <string>
#include <string_view>

namespace clockwell::server {

/// One line of the log as a JSON object in ASCII, without a line's end: "time" (RFC 3339, UTC), "level",
/// "message", and the key=value pairs of the text as fields. The message is the event when the text is made
/// of such pairs only, and else the whole text; then there are no fields. Never fails: what is no UTF-8 is
/// replaced by U+FFFD.
std::string jsonLine(Instant time, std::string_view level, std::string_view text);

} // namespace clockwell::server
