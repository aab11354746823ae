#include "server/auth/Allowance.h"

#include "TestDatabase.h"
#include "server/auth/EmailAddress.h"
#include "server/auth/RateLimit.h"
#include "server/auth/TooManyAttempts.h"
#include "server/http/ApiError.h"
#include "server/storage/Database.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

class AllowanceTest : public testing::Test
{
protected:
    void advance(milliseconds time) { now += time; }
    Allowance::State look(const Allowance &allowance, const std::string &subject)
    {
        return database.read(
            [&](Connection &connection) { return allowance.look(connection, subject, now); });
    }
    bool isSpent(const Allowance &allowance, const std::string &subject = "a")
    {
        return database.read([&](Connection &connection) {
            auto state = allowance.look(connection, subject, now);
            return allowance.isSpent(connection, subject, state, now);
        });
    }
    /// As a request does it: with a look before it writes.
    std::string spend(const Allowance &allowance, double amount, const std::string &subject = "a")
    {
        auto state = look(allowance, subject);
        return database.write([&](Connection &connection) {
            const std::string id = allowance.spend(connection, subject, state, amount, now);
            allowance.tidy(connection, subject, state, now);
            return id;
        });
    }
    void giveBack(const Allowance &allowance, const std::string &subject, const std::string &spending)
    {
        database.write(
            [&](Connection &connection) { allowance.giveBack(connection, subject, spending, 1, now); });
    }
    void settle(const Allowance &allowance, const std::string &subject = "a")
    {
        database.write([&](Connection &connection) { allowance.settle(connection, subject, now); });
    }
    /// Seconds to wait; 0 when one was taken.
    int wait(const Allowance &allowance, const std::string &subject = "a")
    {
        try {
            allowance.require(look(allowance, subject), "Too many.");
            spend(allowance, 1, subject);
            return 0;
        } catch (const ApiError &error) {
            return std::stoi(error.headers().front().second);
        }
    }
    int takeAll(const Allowance &allowance, const std::string &subject = "a")
    {
        int taken = 0;
        while (taken < 1000 && wait(allowance, subject) == 0)
            ++taken;
        return taken;
    }
    long long rows()
    {
        return database.read([](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM spendings");
        });
    }

    TempFolder folder;
    Database database{databaseIn(folder)};
    Instant now{seconds{1'000'000}};
};

TEST_F(AllowanceTest, IsSpentAtOnceAndGrowsAgainEvenly)
{
    const Allowance allowance{"A", {10, minutes{10}}};
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
    const Allowance allowance{"A", {10, minutes{10}}};
    int taken = 0;
    for (int i = 0; i < 600; ++i) {
        taken += takeAll(allowance);
        advance(seconds{1});
    }
    EXPECT_LE(taken, 20);
    EXPECT_GE(taken, 19);
}

TEST_F(AllowanceTest, StaysSpentForWhoeverGoesOnHoweverLong)
{
    const Allowance allowance{"A", {40, minutes{40}}};
    EXPECT_EQ(takeAll(allowance), 40);
    for (int minute = 0; minute < 200; ++minute) {
        advance(minutes{1});
        ASSERT_EQ(takeAll(allowance), 1) << minute;
        if (minute % 7 == 0)
            wait(allowance, "b" + std::to_string(minute)); // tidies after others
    }
    EXPECT_LT(rows(), 80);
}

TEST_F(AllowanceTest, SubjectsAreApartAndWhatIsGivenBackDoesNotCount)
{
    const Allowance allowance{"A", {2, minutes{10}}};
    const Allowance other{"B", {2, minutes{10}}};
    spend(allowance, 1);
    const std::string second = spend(allowance, 1);
    EXPECT_TRUE(isSpent(allowance));
    EXPECT_FALSE(isSpent(allowance, "b"));
    EXPECT_FALSE(isSpent(other));
    giveBack(allowance, "a", second);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(takeAll(allowance), 1);
    for (int i = 0; i < 5; ++i)
        database.write([&](Connection &connection) { allowance.giveBack(connection, "b", 1, now); });
    advance(milliseconds{1}); // of one moment, what is given back comes last
    EXPECT_EQ(takeAll(allowance, "b"), 2);
}

TEST_F(AllowanceTest, WhatIsInASumCanBeGivenBack)
{
    const Allowance allowance{"A", {2, minutes{10}}};
    const std::string first = spend(allowance, 1);
    spend(allowance, 1);
    settle(allowance);
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(isSpent(allowance));
    giveBack(allowance, "a", first);
    EXPECT_EQ(takeAll(allowance), 1);
}

TEST_F(AllowanceTest, WhatIsSpentBeyondItDelaysItsGrowth)
{
    const Allowance allowance{"A", {2, minutes{2}}};
    spend(allowance, 5);
    advance(minutes{3});
    EXPECT_TRUE(isSpent(allowance));
    advance(minutes{1});
    EXPECT_EQ(takeAll(allowance), 1);
}

TEST_F(AllowanceTest, ClockThatIsSetBackNeitherForgivesNorPunishes)
{
    const Allowance allowance{"A", {2, minutes{2}}};
    EXPECT_EQ(takeAll(allowance), 2);
    EXPECT_FALSE(look(allowance, "a").isAhead);
    advance(-std::chrono::hours{5});
    EXPECT_TRUE(isSpent(allowance));
    EXPECT_TRUE(look(allowance, "a").isAhead);
    settle(allowance);
    EXPECT_FALSE(look(allowance, "a").isAhead);
    EXPECT_TRUE(isSpent(allowance));
    advance(minutes{1});
    EXPECT_EQ(takeAll(allowance), 1);
}

TEST_F(AllowanceTest, RowsAreFewAndGoWhenTheySayNothing)
{
    const Allowance allowance{"A", {1000, minutes{1000}}};
    for (int i = 0; i < 200; ++i)
        spend(allowance, 1);
    EXPECT_LT(rows(), 40);
    EXPECT_EQ(look(allowance, "a").spent, 200);
    for (int i = 0; i < 30; ++i)
        spend(allowance, 1, "n" + std::to_string(i));
    advance(minutes{2});
    for (int i = 0; i < 10; ++i)
        spend(allowance, 1, "m" + std::to_string(i));
    EXPECT_LT(rows(), 40 + 10) << "those of one spending are over";
    EXPECT_NEAR(look(allowance, "a").spent, 198, 1e-6);
}

TEST_F(AllowanceTest, OfManyThatLookBeforeOthersWriteTheLimitIsKept)
{
    const Allowance allowance{"A", {70, minutes{60}}};
    for (int i = 0; i < 65; ++i)
        spend(allowance, 1);
    auto early = look(allowance, "a");
    EXPECT_EQ(takeAll(allowance), 5);
    EXPECT_TRUE(database.write(
        [&](Connection &connection) { return allowance.isSpent(connection, "a", early, now); }));
}

class RateLimitTest : public testing::Test
{
protected:
    bool tryTake(const RateLimit &limit, const RateLimit::Subject &subject = {"a"})
    {
        return database.write(
            [&](Connection &connection) { return limit.tryTake(connection, subject, now); });
    }
    RateLimit::State look(const RateLimit &limit)
    {
        return database.read([&](Connection &connection) { return limit.look(connection, {"a"}, now); });
    }
    long long rows()
    {
        return database.read([](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM counted_events");
        });
    }

    TempFolder folder;
    Database database{databaseIn(folder)};
    Instant now{seconds{1'000'000}};
};

TEST_F(RateLimitTest, WithAPauseNeverRefusesAnEventThatLongAfterTheLast)
{
    const RateLimit limit{"A", {.attempts = 2, .window = minutes{60}, .pause = minutes{10}}};
    const Instant start = now;
    const auto at = [&](int minute) {
        now = start + minutes{minute};
        return tryTake(limit);
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

TEST_F(RateLimitTest, ClockThatIsSetBackLocksNobodyOutForLongerThanTheWindow)
{
    now = Instant{std::chrono::hours{24 * 365}};
    const RateLimit limit{"A", {.attempts = 1, .window = seconds{60}}};
    EXPECT_TRUE(tryTake(limit));
    now = Instant{};
    EXPECT_TRUE(look(limit).isAhead);
    EXPECT_EQ(look(limit).wait, seconds{60});
    EXPECT_FALSE(tryTake(limit));
    EXPECT_FALSE(look(limit).isAhead);
    now += seconds{60};
    EXPECT_TRUE(tryTake(limit));
}

TEST_F(RateLimitTest, OfTwoThatSawTheSameEventsOneLooksAgain)
{
    const RateLimit limit{"A", {.attempts = 2, .window = seconds{60}}};
    EXPECT_TRUE(tryTake(limit));
    auto early = look(limit);
    EXPECT_TRUE(tryTake(limit));
    EXPECT_FALSE(
        database.write([&](Connection &connection) { return limit.tryTake(connection, {"a"}, early, now); }));
    EXPECT_EQ(early.wait, seconds{60});
}

TEST_F(RateLimitTest, KindsSubjectsAndNetworksAreApart)
{
    const RateLimit limit{"A", {.attempts = 1}};
    EXPECT_TRUE(tryTake(limit));
    EXPECT_FALSE(tryTake(limit));
    EXPECT_TRUE(tryTake(limit, {"b"}));
    EXPECT_TRUE(tryTake(limit, {"a", "10.0.0.1"}));
    EXPECT_TRUE(tryTake(RateLimit{"B", {.attempts = 1}}));
    database.write([&](Connection &connection) { limit.forgetAll(connection, "a"); });
    EXPECT_EQ(rows(), 2);
    EXPECT_TRUE(tryTake(limit));
    EXPECT_TRUE(tryTake(limit, {"a", "10.0.0.1"}));
    EXPECT_FALSE(tryTake(limit, {"b"}));
}

TEST_F(RateLimitTest, EventsThatCountNoMoreGoAFewAtATime)
{
    const RateLimit limit{"A", {.attempts = 1, .window = minutes{1}}};
    for (int i = 0; i < 50; ++i)
        tryTake(limit, {std::to_string(i)});
    now += minutes{1};
    EXPECT_TRUE(tryTake(limit));
    EXPECT_EQ(rows(), 31);
    EXPECT_TRUE(tryTake(limit, {"b"}));
    EXPECT_TRUE(tryTake(limit, {"c"}));
    EXPECT_EQ(rows(), 3);
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
