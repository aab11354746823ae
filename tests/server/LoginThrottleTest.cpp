#include "server/auth/LoginThrottle.h"

#include "TestDatabase.h"
#include "server/http/ApiError.h"

#include <gtest/gtest.h>

#include <optional>

namespace clockwell::server::test {

class LoginThrottleTest : public testing::Test
{
protected:
    LoginThrottle &throttle(const RateLimits &limits)
    {
        return m_throttle.emplace(
            database, limits, AllowanceLimits{1000}, [this] { return now; });
    }
    long long rows(const std::string &table)
    {
        return database.read([&](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM " + table);
        });
    }

    TempFolder folder;
    Database database{databaseIn(folder)};
    Instant now{};

private:
    std::optional<LoginThrottle> m_throttle;
};

TEST_F(LoginThrottleTest, CountsEachAddressOnItsOwn)
{
    LoginThrottle &throttle = this->throttle({.attempts = 1});
    throttle.begin("a", "x").wasWrong();
    throttle.begin("a", "y").wasWrong();
    EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
}

TEST_F(LoginThrottleTest, NoNumberOfOthersMakesItForget)
{
    LoginThrottle &throttle = this->throttle({.attempts = 1});
    throttle.begin("a", "x").wasWrong();
    for (int i = 0; i < 100; ++i)
        throttle.begin("b" + std::to_string(i), "x").wasWrong();
    EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
}

TEST_F(LoginThrottleTest, AddressesOfOneIpv6NetworkCountAsOne)
{
    LoginThrottle &throttle = this->throttle({.attempts = 2});
    throttle.begin("a", "2001:db8:1:2::1").wasWrong();
    throttle.begin("a", "2001:db8:1:2::2").wasRight();
    throttle.begin("a", "2001:db8:1:2::1").wasWrong();
    throttle.begin("a", "2001:db8:1:2:ffff::9").wasWrong();
    EXPECT_THROW(throttle.begin("a", "2001:db8:1:2::3").wasWrong(), ApiError);
    EXPECT_NO_THROW(throttle.begin("a", "2001:db8:1:3::1").wasWrong());
    EXPECT_NO_THROW(throttle.begin("b", "2001:db8:1:2::1").wasWrong());
}

TEST_F(LoginThrottleTest, AttemptCountsWhileItIsJudgedAndNotWhenItCannotBe)
{
    LoginThrottle &throttle = this->throttle({.attempts = 3});
    throttle.begin("a", "x").wasWrong();
    for (int round = 0; round < 5; ++round) {
        const auto second = throttle.begin("a", "x");
        const auto third = throttle.begin("a", "x");
        EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
    }
    throttle.begin("a", "x").wasWrong();
    throttle.begin("a", "x").wasWrong();
    EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError);
}

TEST_F(LoginThrottleTest, RightPasswordLeavesNoRow)
{
    LoginThrottle &throttle = this->throttle({.attempts = 3});
    throttle.begin("a", "x").wasWrong();
    EXPECT_EQ(rows("counted_events"), 1);
    throttle.begin("a", "x").wasRight();
    EXPECT_EQ(rows("counted_events"), 0);
    EXPECT_EQ(rows("spendings"), 1) << "the network's wrong one";
    throttle.beginChange("a", "x").wasWrong();
    EXPECT_EQ(rows("spendings"), 1);
}

TEST_F(LoginThrottleTest, RefusedAttemptWritesNothing)
{
    LoginThrottle &throttle = this->throttle({.attempts = 1});
    throttle.begin("a", "x").wasWrong();
    WriteBlocker others{databaseIn(folder)};
    EXPECT_THROW(throttle.begin("a", "x").wasWrong(), ApiError); // and waits for nobody
}

TEST_F(LoginThrottleTest, ClockThatIsSetBackLocksNobodyOutForLongerThanTheWindow)
{
    now = Instant{std::chrono::hours{24 * 365}};
    LoginThrottle &throttle = this->throttle({.attempts = 1, .window = std::chrono::seconds{60}});
    throttle.begin("a", "x").wasWrong();
    now = Instant{};
    try {
        throttle.begin("a", "x").wasWrong(); // counts on: setting the clock back buys no attempt either
        FAIL();
    } catch (const ApiError &error) {
        EXPECT_STREQ(error.what(), "Too many attempts to sign in. Please try again in 60 seconds.");
    }
    now += std::chrono::seconds{60};
    EXPECT_NO_THROW(throttle.begin("a", "x").wasWrong());
}

TEST_F(LoginThrottleTest, ShortWaitsAreSaidInSeconds)
{
    LoginThrottle &throttle = this->throttle({.attempts = 1, .window = std::chrono::seconds{60}});
    throttle.begin("a", "x").wasWrong();
    now += std::chrono::milliseconds{59'001};
    try {
        throttle.begin("a", "x").wasWrong();
        FAIL();
    } catch (const ApiError &error) {
        EXPECT_STREQ(error.what(), "Too many attempts to sign in. Please try again in 1 second.");
    }
}

} // namespace clockwell::server::test
