#include "server/http/ListenAddress.h"

#include <charconv>

namespace clockwell::server {

std::optional<ListenAddress> parseListenAddress(std::string_view text)
{
    const auto colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0)
        return std::nullopt;
    std::string_view address = text.substr(0, colon);
    const bool bracketed = address.size() > 2 && address.front() == '[' && address.back() == ']';
    if (bracketed)
        address = address.substr(1, address.size() - 2);
    if (bracketed != (address.find(':') != std::string_view::npos))
        return std::nullopt;
    const std::string_view digits = text.substr(colon + 1);
    ListenAddress result{std::string{address}, 0};
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), result.port);
    if (digits.empty() || parsed.ec != std::errc{} || parsed.ptr != digits.data() + digits.size())
        return std::nullopt;
    return result;
}

std::string listenProblem(const std::string &text)
{
    return parseListenAddress(text) ? "" : "\"" + text + "\" is not of the form 127.0.0.1:8460 or [::1]:8460";
}

bool isLoopback(std::string_view address)
{
    return address == "::1" || address.starts_with("127.");
}

} // namespace clockwell::server
