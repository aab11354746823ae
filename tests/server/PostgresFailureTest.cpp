#include "Midnight.h"
#include "PostgresServer.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "Within.h"
#include "World.h"
#include "server/storage/PostgresEngine.h"
#include "server/storage/Readiness.h"

#include <gtest/gtest.h>

#include <thread>

namespace clockwell::server::test {

namespace {

using Kind = DatabaseError::Kind;

constexpr const char *endOthersSql = "SELECT COUNT(pg_terminate_backend(pid)) FROM pg_stat_activity"
                                     " WHERE datname = current_database() AND pid <> pg_backend_pid()";
constexpr const char *endThisSql = "SELECT COUNT(pg_terminate_backend(pg_backend_pid()))";

long long companies(Database &database)
{
    return database.read(
        [](Connection &connection) { return connection.value<long long>("SELECT COUNT(*) FROM companies"); });
}

void addOrganisation(Database &database)
{
    addCompany(database);
    addOffice(database, {});
    addEmployee(database, {});
}

std::string signIn(std::uint16_t port)
{
    return send(port, "POST", "/api/auth/login", "",
                R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"dev-1"})")
        .json()
        .at("accessToken");
}

Reply punch(std::uint16_t port, const std::string &token)
{
    return send(port, "POST", "/api/attendance/punch", token, punchBody(48.0, 11.0, 5, "dev-1"));
}

/// Commits, when they are done on the server itself, wait for this standby too; for none, if empty.
void waitForStandby(const PostgresServer &postgres, const std::string &name)
{
    const auto admin = connectPostgres(postgres.url(), std::chrono::seconds{5});
    admin->execute("ALTER SYSTEM SET synchronous_standby_names = '" + name + "'");
    admin->value<std::string>("SELECT CAST(pg_reload_conf() AS TEXT)");
    EXPECT_TRUE(within(std::chrono::seconds{20},
                       [&] { return admin->value<std::string>("SHOW synchronous_standby_names") == name; }));
    // Commits heed it once the process that makes checkpoints has read it, which it does before it makes one.
    admin->execute("CHECKPOINT");
}

} // namespace

class PostgresFailureTest : public testing::Test
{
protected:
    TempFolder folder;
    std::string url = databaseIn(folder);
    Database database{url};
};

TEST_F(PostgresFailureTest, ConnectionsEndedWhileIdleAreReplaced)
{
    database.read([&](Connection &connection) { // two at once, so that there are two
        EXPECT_EQ(companies(database), 0);
        return connection.value<long long>("SELECT 1");
    });
    const auto ended = connectPostgres(url, std::chrono::seconds{5})->value<long long>(endOthersSql);
    EXPECT_EQ(ended, 2);
    EXPECT_EQ(companies(database), 0);
    addCompany(database);
    EXPECT_EQ(companies(database), 1);
}

TEST_F(PostgresFailureTest, WorkWhoseConnectionEndsIsRunAgain)
{
    int runs = 0;
    database.write([&](Connection &connection) {
        connection.execute("INSERT INTO companies (id, name, code) VALUES ('i', 'Name', 'c')");
        if (++runs == 1)
            connection.value<long long>(endThisSql);
        connection.execute("UPDATE companies SET name = 'Other'");
    });
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(companies(database), 1);
}

TEST_F(PostgresFailureTest, WorkWhoseConnectionsAlwaysEndIsGivenUp)
{
    int runs = 0;
    try {
        database.write([&](Connection &connection) {
            ++runs;
            connection.value<long long>(endThisSql);
            connection.execute("UPDATE companies SET name = 'Other'");
        });
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::Lost);
    }
    EXPECT_EQ(runs, 1 + Retries::mostLostConnections);
}

TEST_F(PostgresFailureTest, ConnectionThatEndsDuringCommitIsNotRunAgain)
{
    database.write([](Connection &connection) {
        connection.execute("CREATE FUNCTION end_this() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN PERFORM"
                           " pg_terminate_backend(pg_backend_pid()); RETURN NULL; END'");
        connection.execute("CREATE CONSTRAINT TRIGGER ends AFTER INSERT ON companies DEFERRABLE INITIALLY"
                           " DEFERRED FOR EACH ROW EXECUTE FUNCTION end_this()");
    });
    int runs = 0;
    int done = 0;
    try {
        database.write([&](Connection &connection) {
            ++runs;
            connection.execute("INSERT INTO companies (id, name, code) VALUES ('i', 'Name', 'c')");
            ++done;
        });
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::Unconfirmed);
    }
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(done, 1) << "it ended during the commit";
    EXPECT_EQ(companies(database), 0);
}

TEST_F(PostgresFailureTest, CommitWhoseEndIsNotKnownIsUnconfirmed)
{
    database.write([](Connection &connection) {
        connection.execute("CREATE FUNCTION says_unknown() RETURNS trigger LANGUAGE plpgsql AS"
                           " 'BEGIN RAISE EXCEPTION SQLSTATE ''40003''; END'");
        connection.execute("CREATE CONSTRAINT TRIGGER unknown AFTER INSERT ON companies DEFERRABLE INITIALLY"
                           " DEFERRED FOR EACH ROW EXECUTE FUNCTION says_unknown()");
    });
    try {
        addCompany(database);
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::Unconfirmed);
        EXPECT_EQ(error.sqlstate(), "40003");
    }
}

TEST_F(PostgresFailureTest, DatabaseThatCanOnlyBeReadIsNotReady)
{
    Readiness readiness{url};
    readiness.require();
    readiness.require(); // on the same connection
    const auto admin = connectPostgres(url, std::chrono::seconds{5});
    const auto name = admin->value<std::string>("SELECT current_database()");
    admin->execute("ALTER DATABASE \"" + name + "\" SET default_transaction_read_only = on");
    EXPECT_EQ(admin->value<long long>(endOthersSql), 2) << "the database's and that of the readiness";
    try {
        readiness.require();
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::ReadOnly);
    }
    admin->execute("ALTER DATABASE \"" + name + "\" RESET default_transaction_read_only");
    readiness.require();
}

TEST(PostgresOutageTest, PunchThatWasRecordedWithoutAnAnswerIsFoundByItsRepeat)
{
    passMidnight();
    const PostgresServer postgres;
    Database database{postgres.url()};
    addOrganisation(database);
    const ServerProcess server{postgres.url()};
    ASSERT_NE(server.port(), 0);
    const std::string token = signIn(server.port());
    const auto admin = connectPostgres(postgres.url(), std::chrono::seconds{5});
    waitForStandby(postgres, "nobody");
    Reply first;
    std::thread client{[&] { first = punch(server.port(), token); }};
    const auto endCommits = [&] {
        return admin->value<long long>("SELECT COUNT(pg_terminate_backend(pid)) FROM pg_stat_activity"
                                       " WHERE wait_event = 'SyncRep'") > 0;
    };
    const bool ended = within(std::chrono::seconds{20}, endCommits);
    waitForStandby(postgres, "");
    client.join();
    ASSERT_TRUE(ended);
    EXPECT_EQ(first.status, 503) << first.body;
    EXPECT_EQ(first.error(), "UNCONFIRMED");
    EXPECT_EQ(first.headers.at("retry-after"), "2");
    const auto punches = [&] {
        return database.read([](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM punches");
        });
    };
    EXPECT_EQ(punches(), 1);
    const Reply again = punch(server.port(), token);
    EXPECT_EQ(again.status, 200) << again.body;
    EXPECT_EQ(again.json().at("type"), "IN");
    EXPECT_EQ(punches(), 1);
}

TEST(PostgresOutageTest, CommitThatWaitsTooLongForAStandbyIsUnconfirmedAndReadingGoesOn)
{
    const PostgresServer postgres;
    DatabaseOptions options;
    options.timeout = std::chrono::seconds{1};
    options.longestCommit = std::chrono::milliseconds{200};
    Database database{postgres.url(), options};
    waitForStandby(postgres, "nobody");
    try {
        addCompany(database);
        FAIL();
    } catch (const DatabaseError &error) {
        EXPECT_EQ(error.kind(), Kind::Unconfirmed);
    }
    EXPECT_EQ(companies(database), 0);
    waitForStandby(postgres, "");
    EXPECT_TRUE(within(std::chrono::seconds{20}, [&] { return companies(database) == 1; }));
}

TEST(PostgresOutageTest, ServerGoesOnWhenPostgresComesBack)
{
    passMidnight();
    const PostgresServer postgres;
    {
        Database database{postgres.url()};
        addOrganisation(database);
    }
    const ServerProcess server{postgres.url()};
    ASSERT_NE(server.port(), 0);
    const std::string token = signIn(server.port());
    EXPECT_EQ(punch(server.port(), token).json().at("type"), "IN");
    postgres.stop();
    for (int i = 0; i < 10; ++i) {
        const Reply reply = send(server.port(), "GET", "/api/attendance/today", token);
        EXPECT_EQ(reply.status, 503);
        EXPECT_EQ(reply.error(), "STORAGE_UNREACHABLE");
        EXPECT_EQ(reply.headers.at("retry-after"), "2");
    }
    EXPECT_EQ(punch(server.port(), token).status, 503);
    postgres.start();
    EXPECT_EQ(send(server.port(), "GET", "/api/attendance/today", token).json().at("canCheckOut"), true);
    EXPECT_EQ(punch(server.port(), token).json().at("type"), "IN")
        << "the repeat of what was recorded before";
}

} // namespace clockwell::server::test
