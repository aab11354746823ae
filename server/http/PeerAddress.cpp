#include "PeerAddress.h"

#include <algorithm>

namespace clockwell::server {

namespace ip = boost::asio::ip;

ip::address withoutMapping(const ip::address &address)
{
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6());
    return address;
}

ip::address peerAddress(const ip::tcp::socket &socket)
{
    boost::system::error_code error;
    return withoutMapping(socket.remote_endpoint(error).address());
}

std::string networkOf(const ip::address &address)
{
    if (!address.is_v6())
        return address.to_string();
    auto bytes = address.to_v6().to_bytes();
    std::fill(bytes.begin() + 8, bytes.end(), static_cast<unsigned char>(0));
    return ip::address_v6(bytes).to_string();
}

std::string networkOf(const std::string &address)
{
    boost::system::error_code error;
    const auto parsed = ip::make_address(address, error);
    return error ? address : networkOf(parsed);
}

} // namespace clockwell::server
