#include "World.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace clockwell::server::test {

/// Accounts whose password was hashed at another cost than today's.
class PasswordRehashTest : public testing::Test
{
protected:
    explicit PasswordRehashTest(PasswordCost cost = today) : world("2026-06-10T09:00:00Z", withCost(cost))
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        Passwords former{{2, 64 * 1024}};
        oldHash = former.hash("Correct-Horse-7");
        store(oldHash);
    }

    static constexpr PasswordCost today{1, 16 * 1024};

    static Settings withCost(PasswordCost cost)
    {
        Settings settings = World::cheap();
        settings.passwordCost = cost;
        return settings;
    }
    void store(const std::string &hash)
    {
        world.database().write([&](Connection &connection) {
            connection.execute("UPDATE employees SET password_hash = :hash", hash);
        });
    }
    std::string stored()
    {
        return world.database().read([](Connection &connection) {
            return connection.value<std::string>("SELECT password_hash FROM employees");
        });
    }
    long long sessions()
    {
        return world.database().read([](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM token_families");
        });
    }
    Reply change(const std::string &token) const
    {
        return world.post("/api/auth/change-password",
                          R"({"currentPassword":"Correct-Horse-7","newPassword":"New-Horse-8"})", token);
    }

    static constexpr const char *todaysPrefix = "$argon2id$v=19$m=16,t=1,p=1$";

    World world;
    std::string oldHash;
};

TEST_F(PasswordRehashTest, SignInStoresTheHashAtTodaysCost)
{
    EXPECT_EQ(world.login().status, 200);
    const std::string hash = stored();
    EXPECT_EQ(hash.find(todaysPrefix), 0U) << hash;
    EXPECT_EQ(world.login().status, 200);
    EXPECT_EQ(world.login("kim@example.org", "Correct-Horse-8").status, 401);
    EXPECT_EQ(stored(), hash); // once is enough
}

TEST_F(PasswordRehashTest, WrongPasswordLeavesTheHashAlone)
{
    EXPECT_EQ(world.login("kim@example.org", "Correct-Horse-8").status, 401);
    EXPECT_EQ(stored(), oldHash);
}

TEST_F(PasswordRehashTest, SignInDoesNotDependOnIt)
{
    refuseWrites(world.database(), "UPDATE OF password_hash ON employees");
    const Reply reply = world.login();
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(world.get("/api/auth/me", reply.json().at("accessToken")).status, 200);
    EXPECT_EQ(stored(), oldHash);
}

TEST_F(PasswordRehashTest, SeveralSignInsAtOnceAllSucceed)
{
    for (int round = 0; round < 5; ++round) {
        store(oldHash);
        std::vector<int> statuses(4);
        std::vector<std::thread> threads;
        for (int &status : statuses)
            threads.emplace_back([this, &status] { status = world.login().status; });
        for (std::thread &thread : threads)
            thread.join();
        EXPECT_EQ(statuses, std::vector<int>(statuses.size(), 200));
        EXPECT_EQ(stored().find(todaysPrefix), 0U);
    }
}

TEST_F(PasswordRehashTest, EndsNoSession)
{
    const std::string token = world.token();
    store(oldHash);
    EXPECT_EQ(world.login().status, 200);
    EXPECT_EQ(world.get("/api/auth/me", token).status, 200);
}

/// With a cost of today's that takes so long that something can happen meanwhile.
class SlowRehashTest : public PasswordRehashTest
{
protected:
    SlowRehashTest() : PasswordRehashTest({64, 8 * 1024 * 1024}) {}

    /// Signs in and does `meanwhile` while the hash is made: after the session was begun, before it is
    /// stored.
    template <class Work>
    Reply signInAnd(Work meanwhile)
    {
        Reply reply;
        std::thread signIn{[&] { reply = world.login(); }};
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{5};
        while (sessions() == 0 && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds{1});
        meanwhile();
        signIn.join();
        return reply;
    }
};

TEST_F(SlowRehashTest, LeavesAPasswordAloneThatWasReplacedMeanwhile)
{
    EXPECT_EQ(signInAnd([this] { store("another"); }).status, 200);
    EXPECT_EQ(stored(), "another");
}

TEST_F(SlowRehashTest, ChangeOfThePasswordMayComeAtTheSameTime)
{
    Passwords quick{{3, 64 * 1024}};
    const std::string anew = quick.hash("Correct-Horse-7");
    store(quick.hash("Correct-Horse-7"));
    const std::string token = world.token();
    Reply reply;
    std::thread changing{[&] { reply = change(token); }};
    std::this_thread::sleep_for(std::chrono::milliseconds{100}); // the new password takes longer
    store(anew);                                                 // as a sign-in does
    changing.join();
    EXPECT_EQ(reply.status, 200) << reply.body;
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
}

} // namespace clockwell::server::test
