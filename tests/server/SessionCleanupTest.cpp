#include "TestDatabase.h"
#include "World.h"
#include "server/storage/Schema.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace clockwell::server::test {

/// Sessions that are over go away, but never so many at a time that somebody would notice.
class SessionCleanupTest : public testing::Test
{
protected:
    SessionCleanupTest()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
    }

    long long rows(const std::string &table)
    {
        return world.database().read([&](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM " + table);
        });
    }
    long long allRows() { return rows("token_families") + rows("refresh_tokens") + rows("access_tokens"); }
    void signInOften(int count)
    {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(world.login().status, 200);
    }
    Reply renew(const std::string &token) const
    {
        return world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", token}}.dump());
    }

    World world;
};

TEST_F(SessionCleanupTest, SignInRemovesAFewOfManyThatAreOver)
{
    signInOften(200);
    EXPECT_EQ(allRows(), 600);
    world.advance(std::chrono::hours{24 * 31});
    long long before = allRows();
    for (int i = 0; i < 5; ++i) {
        signInOften(1);
        const long long after = allRows();
        EXPECT_LT(after, before + 3 - 6); // more than it adds
        EXPECT_GT(after, before + 3 - 70);
        before = after;
    }
}

TEST_F(SessionCleanupTest, SignInsAndRenewalsRemoveThemAllInTheEnd)
{
    signInOften(60);
    world.advance(std::chrono::hours{24 * 31});
    std::string refresh = world.login().json().at("refreshToken");
    for (int i = 0; i < 60; ++i)
        refresh = renew(refresh).json().at("refreshToken");
    EXPECT_EQ(rows("token_families"), 1);
    EXPECT_EQ(rows("refresh_tokens"), 61);
    EXPECT_EQ(rows("access_tokens"), 61);
}

TEST_F(SessionCleanupTest, SessionThatWasEndedGoesAtOnceWithItsTokens)
{
    const auto ended = world.login().json();
    std::string refresh = ended.at("refreshToken");
    for (int i = 0; i < 3; ++i)
        refresh = renew(refresh).json().at("refreshToken");
    EXPECT_EQ(renew(ended.at("refreshToken")).status, 401); // a replay
    signInOften(1);
    EXPECT_EQ(rows("token_families"), 1);
    EXPECT_EQ(rows("refresh_tokens"), 1);
    EXPECT_EQ(rows("access_tokens"), 1);
    EXPECT_EQ(renew(refresh).error(), "SESSION_EXPIRED");
    EXPECT_EQ(world.get("/api/auth/me", ended.at("accessToken")).error(), "INVALID_TOKEN");
}

TEST_F(SessionCleanupTest, SessionInUseStaysWhileOthersGo)
{
    std::string refresh = world.login().json().at("refreshToken");
    for (int month = 0; month < 6; ++month) {
        signInOften(1);
        world.advance(std::chrono::hours{24 * 20});
        const Reply reply = renew(refresh);
        ASSERT_EQ(reply.status, 200);
        refresh = reply.json().at("refreshToken");
    }
    EXPECT_EQ(rows("token_families"), 2); // the one in use and the newest of the others
}

TEST_F(SessionCleanupTest, GraceKeepsASessionForAsLongAsItsLastToken)
{
    const std::string lost = world.login().json().at("refreshToken");
    renew(lost);
    world.advance(std::chrono::seconds{60});
    const std::string kept = renew(lost).json().at("refreshToken");
    world.advance(std::chrono::hours{24 * 30} - std::chrono::seconds{30});
    signInOften(10);
    EXPECT_EQ(renew(kept).status, 200);
}

TEST(SessionCleanupUpgradeTest, SessionsOfAnOlderDatabaseAreRemovedOrKeptByTheirTokens)
{
    const TempFolder folder;
    const std::string file = databaseIn(folder, "a.db");
    constexpr long long day = 24LL * 3600 * 1000;
    const long long now = toMillis(instantOf("2026-06-10T09:00:00Z"));
    {
        Connection connection{file, 1};
        std::filesystem::permissions(file, std::filesystem::perms{0600});
        connection.execute("CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
        for (std::size_t step = 0; step < 2; ++step) {
            for (const std::string &statement : schemaSteps().at(step))
                connection.execute(statement);
            connection.execute("INSERT INTO schema_migrations VALUES (:version)", step + 1);
        }
        connection.execute(
            "INSERT INTO employees (id, full_name, email, email_key, password_hash, role, status,"
            " email_verified, joined_on, created_at) VALUES ('e', 'Kim', 'k@example.org',"
            " 'k@example.org', 'none', 'EMPLOYEE', 'APPROVED', 1, '2020-01-01', 0)");
        for (const char *id : {"emptied", "expired", "live", "revoked"})
            connection.execute(
                "INSERT INTO token_families (id, employee_id, device_id, created_at, generation,"
                " revoked_at) VALUES (:id, 'e', 'd', 0, 0, NULL)",
                id);
        connection.execute("UPDATE token_families SET revoked_at = :at WHERE id = 'revoked'", now - day);
        const auto addToken = [&](const char *hash, const char *family, long long expires) {
            connection.execute("INSERT INTO refresh_tokens VALUES (:hash, :family, 1, :expires)", hash,
                               family, expires);
        };
        addToken("a", "expired", now - day);
        addToken("b", "live", now - day);
        addToken("c", "live", now + day);
        addToken("d", "revoked", now + day);
    }
    Database database{file};
    Sessions sessions{database, [=] { return fromMillis(now); }};
    const Employee employee =
        database.read([](Connection &connection) { return findEmployeeById(connection, "e").value(); });
    const auto families = [&] {
        return database.read([](Connection &connection) {
            return connection.value<std::string>(
                "SELECT COALESCE(GROUP_CONCAT(id), '') FROM token_families WHERE device_id = 'd'");
        });
    };
    EXPECT_NE(families(), "live");
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(sessions.start(employee, "new"));
    EXPECT_EQ(families(), "live");
}

} // namespace clockwell::server::test
