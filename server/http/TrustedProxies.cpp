#include "TrustedProxies.h"

#include "PeerAddress.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace clockwell::server {

namespace ip = boost::asio::ip;

namespace {

constexpr unsigned short mappedPrefix = 96; // bits before the IPv4 address in an IPv4-mapped one

std::string_view withoutOuterBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isPort(std::string_view text)
{
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return error == std::errc{} && end == text.data() + text.size();
}

/// Takes the last element from a list; empty when only blanks stand there.
std::string_view takeLast(std::string_view &list)
{
    const auto comma = list.rfind(',');
    const bool isOnly = comma == std::string_view::npos;
    const std::string_view last = isOnly ? list : list.substr(comma + 1);
    list = isOnly ? std::string_view{} : list.substr(0, comma);
    return withoutOuterBlanks(last);
}

} // namespace

std::optional<ip::address> parseForwardedAddress(std::string_view text)
{
    constexpr auto npos = std::string_view::npos;
    std::string_view port;
    if (text.starts_with('[')) {
        const auto end = text.find(']');
        if (end == npos)
            return std::nullopt;
        port = text.substr(end + 1);
        text = text.substr(1, end - 1);
        if (text.find(':') == npos)
            return std::nullopt;
    } else if (std::ranges::count(text, ':') == 1) {
        port = text.substr(text.find(':'));
        text = text.substr(0, text.find(':'));
    }
    if (!port.empty() && !(port.starts_with(':') && isPort(port.substr(1))))
        return std::nullopt;
    if (text.find('%') != npos) // a zone means something to the machine that wrote it only
        return std::nullopt;
    boost::system::error_code error;
    const auto address = ip::make_address(text, error);
    return error ? std::nullopt : std::optional{withoutMapping(address)};
}

TrustedProxies::TrustedProxies(const std::vector<std::string> &networks)
{
    for (const std::string &network : networks)
        add(network);
}

void TrustedProxies::add(const std::string &network)
{
    const bool isSingle = network.find('/') == std::string::npos;
    boost::system::error_code error;
    if (network.find(':') == std::string::npos) {
        const auto v4 = ip::make_network_v4(isSingle ? network + "/32" : network, error);
        m_v4.push_back(v4.canonical());
    } else {
        const auto v6 = ip::make_network_v6(isSingle ? network + "/128" : network, error);
        const bool isMapped = v6.address().is_v4_mapped() && v6.prefix_length() >= mappedPrefix;
        if (isMapped)
            m_v4.push_back(ip::network_v4{ip::make_address_v4(ip::v4_mapped, v6.address()),
                                          static_cast<unsigned short>(v6.prefix_length() - mappedPrefix)}
                               .canonical());
        else
            m_v6.push_back(v6.canonical());
    }
    if (error)
        throw std::invalid_argument("\"" + network + "\" is not a network like 10.0.0.0/8 or 2001:db8::/32");
}

bool TrustedProxies::contain(const ip::address &address) const
{
    if (address.is_v4())
        return std::ranges::any_of(
            m_v4,
            [&](const ip::network_v4 &network) {
                return ip::network_v4{address.to_v4(), network.prefix_length()}.canonical() == network;
            });
    return std::ranges::any_of(m_v6, [&](const ip::network_v6 &network) {
        return ip::network_v6{address.to_v6(), network.prefix_length()}.canonical() == network;
    });
}

ip::address TrustedProxies::clientOf(const ip::address &peer, std::string_view forwardedFor) const
{
    ip::address client = peer;
    while (!forwardedFor.empty() && contain(client)) {
        const std::string_view element = takeLast(forwardedFor);
        if (element.empty()) // RFC 9110, section 5.6.1.2: empty elements of a list are ignored
            continue;
        const auto address = parseForwardedAddress(element);
        if (!address)
            break;
        client = *address;
    }
    return client;
}

} // namespace clockwell::server
