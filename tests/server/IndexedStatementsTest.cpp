#include "World.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <mutex>
#include <set>
#include <string>

namespace clockwell::server::test {

/// What SQLite did for the statements of all connections that are opened while this lives.
class StatementWatch
{
public:
    StatementWatch()
    {
        forget();
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(&watch));
    }
    ~StatementWatch() { sqlite3_reset_auto_extension(); }
    StatementWatch(const StatementWatch &) = delete;
    StatementWatch &operator=(const StatementWatch &) = delete;

    static void forget()
    {
        const std::lock_guard lock{m_lock};
        m_all.clear();
        m_slow.clear();
    }
    static std::set<std::string> all()
    {
        const std::lock_guard lock{m_lock};
        return m_all;
    }
    /// Those that went through a whole table, or made an index for themselves.
    static std::set<std::string> slow()
    {
        const std::lock_guard lock{m_lock};
        return m_slow;
    }

private:
    static int watch(sqlite3 *database, char ** /*problem*/, const sqlite3_api_routines * /*api*/)
    {
        return sqlite3_trace_v2(database, SQLITE_TRACE_PROFILE, &note, nullptr);
    }
    static int note(unsigned /*event*/, void * /*nothing*/, void *statement, void * /*time*/)
    {
        auto *ran = static_cast<sqlite3_stmt *>(statement);
        const std::lock_guard lock{m_lock};
        const char *text = sqlite3_sql(ran);
        m_all.insert(text);
        for (const int count : {SQLITE_STMTSTATUS_FULLSCAN_STEP, SQLITE_STMTSTATUS_AUTOINDEX})
            if (sqlite3_stmt_status(ran, count, 1) > 0)
                m_slow.insert(text);
        return 0;
    }

    static inline std::mutex m_lock;
    static inline std::set<std::string> m_all;
    static inline std::set<std::string> m_slow;
};

namespace {

std::string joined(const std::set<std::string> &texts)
{
    std::string all;
    for (const std::string &text : texts)
        all += text + "\n";
    return all;
}

} // namespace

/// What a phone asks for in the morning, with other people's rows in every table.
class IndexedStatementsTest : public testing::Test
{
protected:
    IndexedStatementsTest()
    {
        addOffice(world.database(), {});
        addOffice(world.database(), {.id = "office-2", .name = "Other"});
        addEmployee(world.database(), {});
        for (int i = 0; i < 20; ++i) {
            const std::string id = "p" + std::to_string(i);
            addEmployee(world.database(), {.id = id, .email = id + "@example.org"});
            addLeave(world.database(), id, "2026-06-01", "2026-06-02");
            addHoliday(world.database(), "office-2", "2026-06-" + std::to_string(10 + i), "Day");
            world.punch(world.token(id + "@example.org"));
        }
    }

    static void expectNoScan(const char *what)
    {
        EXPECT_GT(StatementWatch::all().size(), 2U) << what; // more than BEGIN and COMMIT
        EXPECT_EQ(joined(StatementWatch::slow()), "") << what;
        StatementWatch::forget();
    }

    StatementWatch watch; // before the world opens its database
    World world;
};

TEST_F(IndexedStatementsTest, NothingThatAPhoneAsksForGoesThroughATable)
{
    StatementWatch::forget();
    const auto login = world.login().json();
    expectNoScan("login");
    const std::string access = login.at("accessToken");
    ASSERT_EQ(world.get("/api/auth/me", access).status, 200);
    expectNoScan("me");
    ASSERT_EQ(world.get("/api/attendance/today", access).status, 200);
    expectNoScan("today");
    ASSERT_EQ(world.punch(access).json().at("type"), "IN");
    expectNoScan("check-in");
    world.advance(std::chrono::hours{8});
    const auto refreshed =
        world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", login.at("refreshToken")}}.dump());
    ASSERT_EQ(refreshed.status, 200);
    expectNoScan("refresh");
    ASSERT_EQ(world.punch(refreshed.json().at("accessToken")).json().at("type"), "OUT");
    expectNoScan("check-out");
    ASSERT_EQ(world.login("kim@example.org", "wrong").status, 401);
    ASSERT_EQ(world.login("nobody@example.org", "wrong").status, 401);
    expectNoScan("refused sign-in");
}

TEST_F(IndexedStatementsTest, CleaningUpGoesThroughNoTable)
{
    world.advance(std::chrono::hours{24 * 31});
    StatementWatch::forget();
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(world.login().status, 200);
    expectNoScan("sign-in after a month");
}

TEST_F(IndexedStatementsTest, NothingThatAStrangerAsksForGoesThroughATable)
{
    const auto ask = [&](const std::string &operation, nlohmann::json body, const std::string &email) {
        body["email"] = email;
        body["deviceId"] = "dev-1";
        const int status = world.post("/api/auth/" + operation, body.dump()).status;
        expectNoScan(operation.c_str());
        return status;
    };
    const nlohmann::json application{{"fullName", "Lee"}, {"password", "Correct-Horse-7"}};
    for (int i = 0; i < 30; ++i)
        world.post("/api/auth/forgot-password",
                   nlohmann::json{{"email", "nobody" + std::to_string(i) + "@example.org"}}.dump());
    for (int i = 0; i < 2; ++i) { // the second time with leftovers of the first
        StatementWatch::forget();
        for (const char *email : {"lee@example.org", "max@example.org", "kim@example.org"})
            EXPECT_EQ(ask("signup", application, email), 201);
        EXPECT_EQ(ask("resend-otp", {}, "lee@example.org"), 200);
        EXPECT_EQ(ask("verify-otp", {{"code", "000000"}}, "lee@example.org"), 400);
        EXPECT_EQ(ask("forgot-password", {}, "kim@example.org"), 200);
        EXPECT_EQ(ask("reset-password", {{"code", world.code()}, {"newPassword", "New-Horse-8"}},
                      "kim@example.org"),
                  200);
        world.advance(std::chrono::hours{24 * 8});
    }
}

TEST_F(IndexedStatementsTest, SignedInPersonIsFoundWithOneStatement)
{
    const std::string access = world.token();
    ASSERT_EQ(world.get("/api/auth/me", access).status, 200);
    StatementWatch::forget();
    ASSERT_EQ(world.get("/api/auth/me", access).status, 200);
    EXPECT_EQ(StatementWatch::all().size(), 3U) << joined(StatementWatch::all()); // with BEGIN and COMMIT
}

} // namespace clockwell::server::test
