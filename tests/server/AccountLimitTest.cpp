#include "World.h"
#include "server/http/TokenBuckets.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

using std::chrono::milliseconds;
using std::chrono::seconds;

class AccountLimitTest : public testing::Test
{
protected:
    static constexpr milliseconds none{0};
    TokenBuckets::Clock::time_point now{seconds{1000}};
};

TEST_F(AccountLimitTest, BurstPassesThenTheWaitForTheNextIsTold)
{
    TokenBuckets limit{{.perMinute = 60, .burst = 3}};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(limit.take("a", now), none);
    EXPECT_EQ(limit.take("a", now), milliseconds{1000});
    EXPECT_EQ(limit.take("a", now + milliseconds{400}), milliseconds{600});
    EXPECT_EQ(limit.take("b", now), none);
    EXPECT_EQ(limit.take("a", now + milliseconds{1000}), none);
    EXPECT_EQ(limit.take("a", now + milliseconds{1000}), milliseconds{1000});
}

TEST_F(AccountLimitTest, RestFillsTheBucketAndNoMore)
{
    TokenBuckets limit{{.perMinute = 60, .burst = 2}};
    limit.take("a", now);
    limit.take("a", now);
    now += std::chrono::hours{1};
    EXPECT_EQ(limit.take("a", now), none);
    EXPECT_EQ(limit.take("a", now), none);
    EXPECT_EQ(limit.take("a", now), milliseconds{1000});
}

TEST_F(AccountLimitTest, SteadyUseIsNeverForgotten)
{
    TokenBuckets limit{{.perMinute = 60, .burst = 5}};
    int passed = 0;
    for (int i = 0; i < 1000; ++i, now += milliseconds{100}) // ten a second, over many fillings of a bucket
        passed += limit.take("a", now) == none ? 1 : 0;
    EXPECT_GE(passed, 100);
    EXPECT_LE(passed, 105);
}

TEST_F(AccountLimitTest, RestedAccountsAreForgotten)
{
    TokenBuckets limit{{.perMinute = 60, .burst = 5}};
    for (int i = 0; i < 1000; ++i)
        limit.take(std::to_string(i), now);
    EXPECT_EQ(limit.remembered(), 1000U);
    for (int i = 0; i < 3; ++i, now += seconds{5})
        limit.take("late", now);
    EXPECT_EQ(limit.remembered(), 1U);
}

TEST_F(AccountLimitTest, MemoryIsBoundedAndNobodyIsRefusedForOthers)
{
    TokenBuckets limit{{.perMinute = 60, .burst = 1, .keys = 200, .crowd = TokenLimits::Crowd::ForgetOldest}};
    for (int i = 0; i < 10'000; ++i)
        EXPECT_EQ(limit.take(std::to_string(i), now), none);
    EXPECT_LE(limit.remembered(), 200U);
}

TEST_F(AccountLimitTest, ZeroIsNoLimit)
{
    TokenBuckets limit{{.perMinute = 0, .burst = 1}};
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(limit.take("a", now), none);
    EXPECT_EQ(limit.remembered(), 0U);
}

/// The same, in a server.
class AccountLimitServerTest : public testing::Test
{
protected:
    AccountLimitServerTest()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        addEmployee(world.database(), {.id = "employee-2", .email = "lee@example.org"});
    }

    static Settings strict()
    {
        Settings settings = World::cheap();
        settings.accounts = {.perMinute = 1, .burst = burst};
        return settings;
    }
    int today(const std::string &token) const { return world.get("/api/attendance/today", token).status; }

    static constexpr int burst = 5;
    World world{"2026-06-10T09:00:00Z", strict()};
};

TEST_F(AccountLimitServerTest, OneAccountOnAllItsDevicesHasOneLimit)
{
    const std::string phone = world.token();
    const std::string tablet = world.token();
    for (int i = 0; i < burst; ++i)
        EXPECT_EQ(today(i % 2 == 0 ? phone : tablet), 200);
    const Reply refused = world.get("/api/attendance/today", tablet);
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.error(), "TOO_MANY_REQUESTS");
    const std::string wait = refused.headers.at("retry-after"); // a minute, less what this test has taken
    EXPECT_GT(std::stoi(wait), 0);
    EXPECT_LE(std::stoi(wait), 60);
    EXPECT_EQ(refused.message(), "Too many requests. Please try again in " + wait + " seconds.");
    for (const char *target : {"/api/attendance/distance?lat=48&lng=11", "/api/attendance/me",
                               "/api/attendance/me/summary?month=2026-06"})
        EXPECT_EQ(world.get(target, phone).status, 429) << target;
    EXPECT_EQ(world.punch(phone).status, 429);
    EXPECT_EQ(world.post("/api/auth/change-password", "{}", phone).status, 429);
    EXPECT_EQ(today(world.token("lee@example.org")), 200); // of another account, from the same address
}

TEST_F(AccountLimitServerTest, SessionIsNeverRefused)
{
    const auto login = world.login().json();
    const std::string access = login.at("accessToken");
    for (int i = 0; i < burst; ++i)
        EXPECT_EQ(today(access), 200);
    ASSERT_EQ(today(access), 429);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    std::string refresh = login.at("refreshToken");
    for (int i = 0; i < 20; ++i) {
        const Reply reply = world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", refresh}}.dump());
        ASSERT_EQ(reply.status, 200);
        refresh = reply.json().at("refreshToken");
    }
}

TEST_F(AccountLimitServerTest, ManyAccountsBehindOneAddressDoNotShareALimit)
{
    constexpr int people = 50;
    std::vector<std::string> tokens;
    for (int i = 0; i < people; ++i) {
        const std::string id = "p" + std::to_string(i);
        addEmployee(world.database(), {.id = id, .email = id + "@example.org"});
        tokens.push_back(world.token(id + "@example.org"));
    }
    for (int i = 0; i < burst; ++i)
        for (const std::string &token : tokens)
            EXPECT_EQ(today(token), 200);
}

TEST_F(AccountLimitServerTest, InvalidTokenCountsForNobody)
{
    const std::string token = world.token();
    for (int i = 0; i < 2 * burst; ++i)
        EXPECT_EQ(today(token + "x"), 401);
    EXPECT_EQ(today(token), 200);
}

} // namespace clockwell::server::test
