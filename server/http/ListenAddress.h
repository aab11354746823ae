#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

struct ListenAddress
{
    std::string address; ///< IPv4 or IPv6, without brackets
    std::uint16_t port = 0;
};

/// Reads "127.0.0.1:8460" or "[::1]:8460"; nothing for any other form. Whether the address is one, the socket
/// says.
std::optional<ListenAddress> parseListenAddress(std::string_view text);

/// What is wrong with such a text, for people; empty when it can be read.
std::string listenProblem(const std::string &text);

/// Only this machine itself can reach it.
bool isLoopback(std::string_view address);

} // namespace clockwell::server
