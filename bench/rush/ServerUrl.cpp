#include "ServerUrl.h"

#include <charconv>

namespace clockwell::rush {

namespace asio = boost::asio;

std::optional<asio::ip::tcp::endpoint> parseServerUrl(std::string_view url)
{
    constexpr std::string_view scheme = "http://";
    if (!url.starts_with(scheme))
        return std::nullopt;
    url.remove_prefix(scheme.size());
    if (url.ends_with('/'))
        url.remove_suffix(1);
    const auto colon = url.find(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    boost::system::error_code error;
    const auto address = asio::ip::make_address_v4(url.substr(0, colon), error);
    const std::string_view digits = url.substr(colon + 1);
    std::uint16_t port = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error || !address.is_loopback() || problem != std::errc{} || end != digits.data() + digits.size() ||
        port == 0)
        return std::nullopt;
    return asio::ip::tcp::endpoint{address, port};
}

} // namespace clockwell::rush
