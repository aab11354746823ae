#include "HttpClient.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "http/RawClient.h"
#include "http/TestServer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace clockwell::server::test {

namespace {

/// Of this process, and of those that it starts; every test is a process of its own.
void setDescriptorLimits(rlim_t soft, rlim_t hard)
{
    const rlimit limit{soft, hard};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

rlim_t hardLimit()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_max;
}

rlim_t softLimitOf(const ServerProcess &server)
{
    rlimit limit{};
    ::prlimit(server.process(), RLIMIT_NOFILE, nullptr, &limit);
    return limit.rlim_cur;
}

} // namespace

class DescriptorLimitTest : public testing::Test
{
protected:
    TempFolder folder;
    std::string file = databaseIn(folder, "a.db");
};

TEST_F(DescriptorLimitTest, SoftLimitIsRaisedAsFarAsTheConnectionsNeedIt)
{
    constexpr rlim_t usual = 1024, needed = 20'000;
    ASSERT_GT(hardLimit(), usual);
    setDescriptorLimits(usual, hardLimit());
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    EXPECT_GE(softLimitOf(server), std::min(needed, hardLimit()));
    EXPECT_LT(softLimitOf(server), needed + usual) << "and no further";
}

TEST_F(DescriptorLimitTest, LowHardLimitIsSaidAndTheServerLetsFewerIn)
{
    constexpr rlim_t low = 700;
    setDescriptorLimits(low, low);
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    EXPECT_TRUE(server.logs("event=fewDescriptors limit=700 ")) << server.log();
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 600; ++i) {
        clients.push_back(std::make_unique<RawClient>(server.port()));
        ASSERT_EQ(clients.back()->exchange(get("/health")).status, 200) << i;
    }
    EXPECT_EQ(server.log().find("event=acceptFailed"), std::string::npos) << "some descriptors are kept";
    EXPECT_EQ(send(server.port(), "GET", "/api/attendance/today", "token").status, 401)
        << "the database works";
}

TEST_F(DescriptorLimitTest, ManyMoreThanAThousandIdleConnectionsAreHeld)
{
    constexpr std::size_t connections = 2000;
    ASSERT_GT(hardLimit(), connections + 100);
    setDescriptorLimits(connections + 100, hardLimit());
    const ServerProcess server{file};
    std::vector<std::unique_ptr<RawClient>> clients;
    for (std::size_t i = 0; i < connections; ++i) {
        clients.push_back(std::make_unique<RawClient>(server.port()));
        ASSERT_EQ(clients.back()->exchange(get("/health")).status, 200) << i;
    }
    for (const auto &client : clients)
        ASSERT_EQ(client->exchange(get("/health")).status, 200) << "kept all the time";
}

} // namespace clockwell::server::test
