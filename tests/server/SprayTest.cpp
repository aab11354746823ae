#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

/// One password tried on each of many accounts.
class SprayTest : public testing::Test
{
protected:
    SprayTest()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
    }
    static std::string nobody(int number) { return "nobody" + std::to_string(number) + "@example.org"; }

    World world;
};

TEST_F(SprayTest, OnePasswordForEachOfManyAccountsIsRefusedByNetworkAddress)
{
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(world.login(nobody(i), "Summer-2026").status, 401) << i;
    const Reply refused = world.login(nobody(1000), "Summer-2026");
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.error(), "TOO_MANY_ATTEMPTS");
    EXPECT_EQ(refused.message(), "Too many wrong passwords came from this network. Please try again in 87"
                                 " seconds.");
    EXPECT_EQ(refused.headers.at("retry-after"), "87");
    EXPECT_EQ(world.login("kim@example.org", "Correct-Horse-7", "127.0.0.2").status, 200);
    world.advance(std::chrono::seconds{87});
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(SprayTest, OfficeBehindOneAddressSignsInWithItsShareOfMistakes)
{
    // As 5,000 people who all sign in on one morning, and a tenth of whom mistypes.
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(world.login(nobody(i), "Mistyped-1").status, 401) << i;
        const int others = i % 4 == 0 ? world.login().status : 200;
        ASSERT_EQ(others, 200) << i;
    }
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(SprayTest, RightPasswordsDoNotCountTowardsTheNetworksLimit)
{
    for (int i = 0; i < 999; ++i)
        ASSERT_EQ(world.login(nobody(i), "Summer-2026").status, 401) << i;
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(world.login().status, 200);
}

TEST(SprayLimitTest, WhatTheServerCannotJudgeDoesNotCountTowardsTheNetworksLimit)
{
    Settings settings = World::cheap();
    settings.failedSignIns.size = 2;
    World world{"2026-06-10T09:00:00Z", settings};
    addOffice(world.database(), {});
    addEmployee(world.database(), {});
    world.database().write(
        [](Connection &connection) { connection.execute("ALTER TABLE employees RENAME TO hidden"); });
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(world.login().status, 500);
    world.database().write(
        [](Connection &connection) { connection.execute("ALTER TABLE hidden RENAME TO employees"); });
    EXPECT_EQ(world.login().status, 200);
}

} // namespace clockwell::server::test
