#include "World.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace clockwell::server::test {

/// The renewal of a session and "me", which a client takes for the end of its session when they are refused.
class RenewalTest : public testing::Test
{
protected:
    explicit RenewalTest(Settings settings = hasty())
        : world{"2026-06-10T09:00:00Z", settings, {.timeout = std::chrono::seconds{1}}}
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        const auto json = world.login().json();
        access = json.at("accessToken");
        refresh = json.at("refreshToken");
    }

    static Settings hasty()
    {
        Settings settings = World::cheap();
        settings.sessions.patience = std::chrono::milliseconds{1500};
        return settings;
    }

    Reply renew() const
    {
        return world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", refresh}}.dump());
    }
    void execute(const std::string &sql)
    {
        world.database().write([&](Connection &connection) { connection.execute(sql); });
    }

    static constexpr int unanswered = 0;

    World world;
    std::string access;
    std::string refresh;
};

TEST_F(RenewalTest, LockedDatabaseLeavesItUnansweredAndTheTokenGood)
{
    WriteBlocker other{world.databaseFile()};
    EXPECT_EQ(renew().status, unanswered);
    EXPECT_EQ(world.punch(access).status, 503);
    EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    other.end();
    EXPECT_EQ(renew().status, 200);
}

TEST_F(RenewalTest, FullStorageLeavesItUnansweredAndTheTokenGood)
{
    execute("PRAGMA max_page_count = 1"); // SQLite makes that the number of pages there are
    EXPECT_THROW(for (int i = 0; i < 100; ++i)
                     addHoliday(world.database(), "office-1", std::to_string(i), std::string(3500, 'x')),
                 DatabaseError);
    Reply reply = renew();
    for (int i = 0; i < 100 && reply.status == 200; ++i) { // the last free bytes
        refresh = reply.json().at("refreshToken");
        reply = renew();
    }
    EXPECT_EQ(reply.status, unanswered);
    EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    execute("PRAGMA max_page_count = 1000000");
    EXPECT_EQ(renew().status, 200);
}

TEST_F(RenewalTest, ReadOnlyStorageLeavesItUnansweredAndTheTokenGood)
{
    execute("PRAGMA query_only = ON"); // of the one connection that writes
    EXPECT_EQ(renew().status, unanswered);
    EXPECT_EQ(world.punch(access).error(), "STORAGE_READ_ONLY");
    EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    EXPECT_EQ(world.database().read([](Connection &connection) {
        return connection.value<long long>("SELECT generation FROM token_families");
    }),
              0); // nothing was used up
}

TEST_F(RenewalTest, FailingStorageLeavesBothUnanswered)
{
    execute("ALTER TABLE token_families RENAME TO hidden");
    EXPECT_EQ(renew().status, unanswered);
    EXPECT_EQ(world.get("/api/auth/me", access).status, unanswered);
    EXPECT_EQ(world.get("/api/attendance/today", access).status, 500);
    execute("ALTER TABLE hidden RENAME TO token_families");
    EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    EXPECT_EQ(renew().status, 200);
}

TEST_F(RenewalTest, RefusalsThatAreDecisionsAreAnswered)
{
    EXPECT_EQ(world.get("/api/auth/me", "nonsense").status, 401);
    EXPECT_EQ(world.post("/api/auth/refresh", R"({"refreshToken":"nonsense"})").status, 401);
    EXPECT_EQ(world.post("/api/auth/refresh", "{}").status, 400);
}

/// With a renewal's usual patience, and less of it for others.
class PatientRenewalTest : public RenewalTest
{
protected:
    PatientRenewalTest() : RenewalTest(usual()) {}

    static Settings usual()
    {
        Settings settings = World::cheap();
        settings.accounts = {.perMinute = 1, .burst = 4};
        return settings;
    }

    static constexpr int writers = 40;

    /// Lets many writers queue behind one that holds the database, and then a renewal; how many of them came
    /// after it.
    int writersAfterARenewal()
    {
        constexpr std::chrono::seconds toQueue{1}; // also on a busy machine
        const auto tokens = [](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM access_tokens");
        };
        const long long before = world.database().read(tokens);
        std::promise<void> held;
        std::promise<void> free;
        std::thread holder{[&] {
            world.database().write(patient(), [&](Connection &) {
                held.set_value();
                free.get_future().wait();
            });
        }};
        held.get_future().wait();
        std::atomic<int> after = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < writers; ++i)
            threads.emplace_back([&] {
                world.database().write(
                    patient(), [&](Connection &connection) { after += tokens(connection) > before ? 1 : 0; });
            });
        std::this_thread::sleep_for(toQueue);
        threads.emplace_back([&] { EXPECT_EQ(renew().status, 200); });
        std::this_thread::sleep_for(toQueue);
        free.set_value();
        holder.join();
        for (std::thread &thread : threads)
            thread.join();
        return after;
    }
    static Wait patient() { return {Wait::Clock::now() + std::chrono::minutes{1}, false}; }
};

TEST_F(PatientRenewalTest, OutwaitsALockThatOthersDoNot)
{
    WriteBlocker other{world.databaseFile()};
    Reply renewed;
    std::thread renewal{[&] { renewed = renew(); }};
    EXPECT_EQ(world.punch(access).status, 503);
    std::this_thread::sleep_for(std::chrono::seconds{2});
    other.end();
    renewal.join();
    EXPECT_EQ(renewed.status, 200);
}

TEST_F(PatientRenewalTest, GoesBeforeThoseThatWaitToWrite)
{
    EXPECT_GT(writersAfterARenewal(), writers / 2);
}

TEST_F(PatientRenewalTest, AccountThatAsksTooOftenWaitsLikeOthersAndIsAnswered)
{
    while (world.get("/api/attendance/today", access).status == 200) {
    }
    EXPECT_LT(writersAfterARenewal(), writers / 2);
}

TEST(HastyRenewalTest, HeldDatabaseKeepsLaterOnesForAMomentOnly)
{
    constexpr std::chrono::seconds patience{5};
    Settings settings = World::cheap();
    settings.sessions.patience = patience;
    World world{"2026-06-10T09:00:00Z", settings};
    addOffice(world.database(), {});
    addEmployee(world.database(), {});
    const std::string body = nlohmann::json{{"refreshToken", world.login().json().at("refreshToken")}}.dump();
    const auto renew = [&] { return world.post("/api/auth/refresh", body).status; };
    WriteBlocker other{world.databaseFile()};
    EXPECT_EQ(renew(), 0); // after all its patience
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(renew(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, patience);
    other.end();
    EXPECT_EQ(renew(), 200);
}

TEST_F(PatientRenewalTest, GuessedTokensHoldNobodyUp)
{
    WriteBlocker other{world.databaseFile()};
    EXPECT_EQ(world.post("/api/auth/refresh", R"({"refreshToken":"guessed"})").status, 401);
    other.end();
}

} // namespace clockwell::server::test
