#pragma once

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <string>

namespace clockwell::server {

/// An IPv4-mapped IPv6 address as the IPv4 address that it is; any other one unchanged.
boost::asio::ip::address withoutMapping(const boost::asio::ip::address &address);

/// Who is at the other end; an IPv4 peer of an IPv6 socket as the IPv4 address that it is. All zeros when the
/// peer is gone already.
boost::asio::ip::address peerAddress(const boost::asio::ip::tcp::socket &socket);

/// What limits by address count by: an IPv4 address, or an IPv6 network of 64 bits. An IPv6 customer holds at
/// least that much, so the last eight bytes distinguish nobody.
std::string networkOf(const boost::asio::ip::address &address);

/// The same for an address as text; a text that is no address stands for itself.
std::string networkOf(const std::string &address);

} // namespace clockwell::server
