#include "server/auth/Allowance.h"

#include "server/auth/EmailAddress.h"
#include "server/auth/RateLimit.h"
#include "server/auth/TooManyAttempts.h"
#include "server/http/ApiError.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

class AllowanceTest : public testing::Test
{
protected:
    Clock clock()
    {
        return [this] { return fromMillis(now); };
    }
    void advance(milliseconds time) { now += time.count(); }
    /// Seconds to wait; 0 when one was taken.
    static int wait(Allowance &allowance, const std::string &key = "a")
    {
        try {
            allowance.take(key, "Too many.");
            return 0;
        } catch (const ApiError &error) {
            return std::stoi(error.headers().front().second);
        }
    }
    static int takeAll(Allowance &allowance, const std::string &key = "a")
    {
        int taken = 0;
        while (taken < 1000 && wait(allowance, key) == 0)
            ++taken;
        return taken;
    }

    long long now = 1'000'000'000;
};

TEST_F(AllowanceTest, IsSpentAtOnceAndGrowsAgainEvenly)
{
    Allowance allowance{{10, minutes{10}}, clock()};
    EXPECT_EQ(takeAll(allowance), 10);
    EXPECT_EQ(wait(allowance), 60);
    advance(seconds{59});
    EXPECT_EQ(wait(allowance), 1);
    advance(seconds{1});
    EXPECT_EQ(takeAll(allowance), 1);
    advance(minutes{5});
    EXPECT_EQ(takeAll(allowance), 5);
    advance(minutes{60});
    EXPECT_EQ(takeAll(allowance), 10);
}

TEST_F(AllowanceTest, NeverGivesMoreThanTwiceItsSizeInAWindow)
{
    Allowance allowance{{10, minutes{10}}, clock()};
    int taken = 0;
    for (int i = 0; i < 600; ++i) {
        taken += takeAll(allowance);
        advance(seconds{1});
    }
    EXPECT_LE(taken, 20);
    EXPECT_GE(taken, 19);
}

TEST_F(AllowanceTest, KeysAreApartAndWhatIsGivenBackDoesNotCount)
{
    Allowance allowance{{2, minutes{10}}, clock()};
    EXPECT_EQ(takeAll(allowance), 2);
    EXPECT_TRUE(allowance.isSpent("a"));
    EXPECT_FALSE(allowance.isSpent("b"));
    allowance.giveBack("a");
    EXPECT_FALSE(allowance.isSpent("a"));
    EXPECT_EQ(takeAll(allowance), 1);
    allowance.giveBack("b", 5);
    EXPECT_EQ(takeAll(allowance, "b"), 2);
}

TEST_F(AllowanceTest, WhatIsSpentBeyondItDelaysItsGrowth)
{
    Allowance allowance{{2, minutes{2}}, clock()};
    allowance.spend("a", 5);
    advance(minutes{3});
    EXPECT_TRUE(allowance.isSpent("a"));
    advance(minutes{1});
    EXPECT_EQ(takeAll(allowance), 1);
}

TEST_F(AllowanceTest, ClockThatIsSetBackNeitherForgivesNorPunishes)
{
    Allowance allowance{{2, minutes{2}}, clock()};
    EXPECT_EQ(takeAll(allowance), 2);
    advance(-std::chrono::hours{5});
    EXPECT_TRUE(allowance.isSpent("a"));
    allowance.spend("a", 0);
    advance(minutes{1});
    EXPECT_EQ(takeAll(allowance), 1);
}

TEST_F(AllowanceTest, MemoryIsBounded)
{
    Allowance allowance{{1, minutes{2}, 2}, clock()};
    EXPECT_EQ(takeAll(allowance, "a"), 1);
    EXPECT_EQ(takeAll(allowance, "b"), 1);
    EXPECT_EQ(takeAll(allowance, "c"), 1); // "a" gave way
    EXPECT_TRUE(allowance.isSpent("b"));
    EXPECT_FALSE(allowance.isSpent("a"));
}

TEST_F(AllowanceTest, RateLimitWithAPauseNeverRefusesAnEventThatLongAfterTheLast)
{
    RateLimit limit{{.attempts = 2, .window = minutes{60}, .pause = minutes{10}}, clock()};
    const auto at = [&](int minute) {
        now = 1'000'000'000 + milliseconds{minutes{minute}}.count();
        return limit.tryTake("a");
    };
    EXPECT_TRUE(at(0));
    EXPECT_TRUE(at(1));
    EXPECT_FALSE(at(2));
    EXPECT_FALSE(at(10));
    EXPECT_TRUE(at(11));
    EXPECT_FALSE(at(12));
    EXPECT_TRUE(at(21));
    EXPECT_TRUE(at(100));
    EXPECT_TRUE(at(100));
    EXPECT_FALSE(at(100));
}

TEST(WaitTextTest, WaitIsNeverShorterThanItIs)
{
    EXPECT_EQ(waitText(seconds{1}), "1 second");
    EXPECT_EQ(waitText(seconds{90}), "90 seconds");
    EXPECT_EQ(waitText(seconds{91}), "2 minutes");
    EXPECT_EQ(waitText(seconds{90 * 60}), "90 minutes");
    EXPECT_EQ(waitText(seconds{90 * 60 + 1}), "2 hours");
    EXPECT_EQ(waitText(seconds{24 * 3600}), "24 hours");
}

TEST(MailboxTest, IsTheAddressWithoutItsTag)
{
    EXPECT_EQ(mailboxOf("kim@example.org"), "kim@example.org");
    EXPECT_EQ(mailboxOf("kim+a@example.org"), "kim@example.org");
    EXPECT_EQ(mailboxOf("kim+a+b@example.org"), "kim@example.org");
    EXPECT_EQ(mailboxOf("k.i.m+@example.org"), "k.i.m@example.org"); // dots are somebody's own rule
    EXPECT_EQ(mailboxOf("+kim@example.org"), "+kim@example.org");
    EXPECT_EQ(mailboxOf("kim@a+b"), "kim@a+b");
    EXPECT_EQ(mailboxOf("kim+a"), "kim+a");
}

} // namespace clockwell::server::test
