#pragma once

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/network_v4.hpp>
#include <boost/asio/ip/network_v6.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

/// The networks whose proxies are believed when they say whom they forward for.
class TrustedProxies
{
public:
    /// Networks like "10.0.0.0/8" and "2001:db8::/32", or single addresses; none: nobody is believed. A
    /// network of IPv4-mapped IPv6 addresses means those IPv4 addresses. Throws std::invalid_argument.
    explicit TrustedProxies(const std::vector<std::string> &networks);

    /// `address` as peerAddress() gives it.
    bool contain(const boost::asio::ip::address &address) const;

    /// Whom a trusted `peer` forwards for: the rightmost address of the list that is not a trusted proxy's,
    /// for what stands left of it anybody may have written. `forwardedFor` is the value of X-Forwarded-For,
    /// of several such lines all values with commas between. What is no address ends the search: the last
    /// good address counts then, or else the peer's.
    boost::asio::ip::address clientOf(const boost::asio::ip::address &peer,
                                      std::string_view forwardedFor) const;

private:
    void add(const std::string &network);

    std::vector<boost::asio::ip::network_v4> m_v4;
    std::vector<boost::asio::ip::network_v6> m_v6;
};

/// An address as proxies write it: bare, in brackets, or with a port behind it. An IPv4-mapped IPv6 address
/// is the IPv4 address that it stands for. Nothing for any other text, also for an address with a zone.
std::optional<boost::asio::ip::address> parseForwardedAddress(std::string_view text);

} // namespace clockwell::server
