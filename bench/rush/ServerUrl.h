#pragma once

#include <boost/asio/ip/tcp.hpp>

#include <optional>
#include <string_view>

namespace clockwell::rush {

/// The address of "http://127.x.y.z:PORT", with or without a "/" at the end; nothing for any other text.
/// Load goes to this machine only, so a name or another address is refused.
std::optional<boost::asio::ip::tcp::endpoint> parseServerUrl(std::string_view url);

} // namespace clockwell::rush
