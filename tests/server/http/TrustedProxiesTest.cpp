#include "server/http/TrustedProxies.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace clockwell::server {

namespace ip = boost::asio::ip;

namespace {

std::string clientOf(const TrustedProxies &proxies, const std::string &forwardedFor,
                     const char *peer = "10.0.0.1")
{
    return proxies.clientOf(ip::make_address(peer), forwardedFor).to_string();
}

std::string parsed(std::string_view text)
{
    const auto address = parseForwardedAddress(text);
    return address ? address->to_string() : "none";
}

} // namespace

TEST(TrustedProxiesTest, NetworksAndSingleAddressesOfBothFamilies)
{
    const TrustedProxies proxies{{"10.1.2.3/8", "192.0.2.7", "2001:db8:1::5/48", "::1"}};
    for (const char *inside : {"10.0.0.0", "10.255.255.255", "192.0.2.7", "2001:db8:1:ffff::9", "::1"})
        EXPECT_TRUE(proxies.contain(ip::make_address(inside))) << inside;
    for (const char *outside : {"11.0.0.0", "9.255.255.255", "192.0.2.6", "2001:db8:2::1", "::2", "::"})
        EXPECT_FALSE(proxies.contain(ip::make_address(outside))) << outside;
    EXPECT_FALSE(TrustedProxies{{}}.contain(ip::make_address("127.0.0.1")));
}

TEST(TrustedProxiesTest, MappedNetworkMeansItsIpv4Addresses)
{
    const TrustedProxies proxies{{"::ffff:10.0.0.0/104"}};
    EXPECT_TRUE(proxies.contain(ip::make_address("10.9.9.9")));
    EXPECT_FALSE(proxies.contain(ip::make_address("11.9.9.9")));
    EXPECT_FALSE(proxies.contain(ip::make_address("::1")));
}

TEST(TrustedProxiesTest, WhatIsNoNetworkIsRefused)
{
    for (const char *text : {"", "/", "10.0.0.0/33", "10.0.0/8", "10.0.0.0/", "10.0.0.0/-1", "2001:db8::/129",
                             "example.org", "10.0.0.0/8/8", "any", " 10.0.0.0/8", "[::1]/128"})
        EXPECT_THROW(TrustedProxies{{text}}, std::invalid_argument) << text;
}

TEST(TrustedProxiesTest, AddressesAsProxiesWriteThem)
{
    EXPECT_EQ(parsed("192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(parsed("192.0.2.1:443"), "192.0.2.1");
    EXPECT_EQ(parsed("2001:db8::1"), "2001:db8::1");
    EXPECT_EQ(parsed("[2001:db8::1]"), "2001:db8::1");
    EXPECT_EQ(parsed("[2001:db8::1]:65535"), "2001:db8::1");
    EXPECT_EQ(parsed("::ffff:192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(parsed("[::ffff:192.0.2.1]:80"), "192.0.2.1");
    for (const char *text : {"",
                             "unknown",
                             "_hidden",
                             "192.0.2",
                             "192.0.2.256",
                             "192.0.2.1:",
                             "192.0.2.1:x",
                             "192.0.2.1:65536",
                             "[192.0.2.1]",
                             "[2001:db8::1",
                             "2001:db8::1]",
                             "[2001:db8::1]443",
                             "[2001:db8::1]:",
                             "[]",
                             "[",
                             "fe80::1%lo",
                             "[fe80::1%1]:80",
                             "192.0.2.1 x",
                             "\"192.0.2.1\"",
                             "for=192.0.2.1"})
        EXPECT_EQ(parsed(text), "none") << text;
}

TEST(TrustedProxiesTest, RightmostAddressThatIsNoProxysIsTheClient)
{
    const TrustedProxies proxies{{"10.0.0.0/8", "2001:db8::/32"}};
    EXPECT_EQ(clientOf(proxies, "192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(clientOf(proxies, "203.0.113.9, 192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(clientOf(proxies, "203.0.113.9,192.0.2.1 ,\t10.0.0.2,10.0.0.3"), "192.0.2.1");
    EXPECT_EQ(clientOf(proxies, "192.0.2.1, [2001:db8::7]:80, ::ffff:10.0.0.2"), "192.0.2.1");
    EXPECT_EQ(clientOf(proxies, "10.0.0.9, 10.0.0.8"), "10.0.0.9") << "a proxy is the client";
    EXPECT_EQ(clientOf(proxies, ""), "10.0.0.1");
}

TEST(TrustedProxiesTest, EmptyElementsAreIgnored)
{
    const TrustedProxies proxies{{"10.0.0.0/8"}};
    EXPECT_EQ(clientOf(proxies, " , ,\t,"), "10.0.0.1");
    EXPECT_EQ(clientOf(proxies, ",,203.0.113.9,, 192.0.2.1, ,"), "192.0.2.1");
}

TEST(TrustedProxiesTest, WhatIsNoAddressEndsTheSearch)
{
    const TrustedProxies proxies{{"10.0.0.0/8"}};
    EXPECT_EQ(clientOf(proxies, "192.0.2.1, unknown"), "10.0.0.1");
    EXPECT_EQ(clientOf(proxies, "192.0.2.1, nonsense, 10.0.0.7"), "10.0.0.7");
    EXPECT_EQ(clientOf(proxies, "nonsense, 192.0.2.1"), "192.0.2.1");
}

TEST(TrustedProxiesTest, LongListsAreWalkedToTheirEnd)
{
    const TrustedProxies proxies{{"10.0.0.0/8"}};
    std::string proxiesOnly, strangersOnly;
    for (int i = 0; i < 100; ++i) {
        proxiesOnly += ", 10.0.0." + std::to_string(i);
        strangersOnly += "198.51.100." + std::to_string(i) + ", ";
    }
    EXPECT_EQ(clientOf(proxies, "192.0.2.1" + proxiesOnly), "192.0.2.1");
    EXPECT_EQ(clientOf(proxies, strangersOnly + "192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(clientOf(proxies, "192.0.2.1" + std::string(16'000, ',')), "192.0.2.1");
}

} // namespace clockwell::server
