#include "Contains.h"
#include "HttpClient.h"
#include "PortInLog.h"
#include "ServerProcess.h"
#include "TestDatabase.h"
#include "World.h"
#include "http/RawClient.h"
#include "http/TestServer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

namespace clockwell::server::test {

class OperatorTest : public testing::Test
{
protected:
    static std::uint16_t operatorPort(const ServerProcess &server)
    {
        return portInLog(server, "operatorListening");
    }

    static std::vector<std::string> options(std::vector<std::string> more = {})
    {
        more.insert(more.end(), {"--operator-listen", "127.0.0.1:0"});
        return more;
    }

    static Reply ask(const ServerProcess &server, const std::string &path)
    {
        return send(operatorPort(server), "GET", path);
    }

    TempFolder folder;
    std::string file = databaseIn(folder, "a.db");
};

TEST_F(OperatorTest, HealthAndReadinessAreToldApart)
{
    const ServerProcess server{file, options()};
    ASSERT_NE(operatorPort(server), 0);
    EXPECT_EQ(ask(server, "/health").body, R"({"status":"ok"})");
    EXPECT_EQ(ask(server, "/ready").body, R"({"status":"ready"})");
    EXPECT_EQ(ask(server, "/api/attendance/today").status, 404);
    EXPECT_EQ(send(operatorPort(server), "POST", "/ready").status, 405);
    EXPECT_EQ(send(server.port(), "GET", "/health").status, 200);
    EXPECT_EQ(send(server.port(), "GET", "/ready").status, 404) << "not for everybody";
    EXPECT_TRUE(server.logs("path=/ready status=200"));
}

TEST_F(OperatorTest, NothingListensUnlessAsked)
{
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    EXPECT_FALSE(contains(server.log(), "operatorListening"));
}

TEST_F(OperatorTest, FullServerStillAnswersItsOperator)
{
    const ServerProcess server{file, options({"--max-connections", "4", "--connections-per-address", "4"})};
    WriteBlocker blocker{file}; // sign-ups take their connections with them
    std::vector<std::unique_ptr<RawClient>> clients;
    const std::string body =
        R"({"fullName":"Kim","email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})";
    for (int i = 0; i < 4; ++i) {
        clients.push_back(std::make_unique<RawClient>(server.port()));
        clients.back()->send(post("/api/auth/signup", body));
    }
    ASSERT_TRUE(
        eventually([&] { return send(server.port(), "GET", "/api/attendance/today").status == 503; }));
    EXPECT_EQ(ask(server, "/health").status, 200);
    EXPECT_EQ(ask(server, "/ready").status, 200) << "reading is not held up";
    EXPECT_EQ(send(server.port(), "GET", "/health").status, 200);
    blocker.end();
}

TEST_F(OperatorTest, DamagedDatabaseIsNotReadyThoughTheProcessLives)
{
    const ServerProcess server{file, options()};
    ASSERT_EQ(ask(server, "/ready").status, 200);
    {
        Connection connection{file, 5};
        connection.execute("PRAGMA wal_checkpoint(TRUNCATE)"); // or the log would still have the good pages
    }
    {
        std::fstream stream{file, std::ios::binary | std::ios::in | std::ios::out};
        stream.seekp(100); // behind the header of the file
        stream << std::string(3000, '\xff');
    }
    const Reply reply = ask(server, "/ready");
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(reply.error(), "NOT_READY");
    EXPECT_EQ(ask(server, "/health").status, 200);
    EXPECT_TRUE(server.logs("event=notReady"));
}

TEST_F(OperatorTest, DamagedTableIsNotReady)
{
    {
        const Database database{file};
    }
    long long page = 0;
    {
        Connection connection{file, 1};
        connection.execute("PRAGMA journal_mode = DELETE");
        page = connection.value<long long>(
            "SELECT rootpage FROM sqlite_master WHERE type = 'table' AND name = 'offices'");
    }
    {
        constexpr long long pageBytes = 4096;
        std::fstream stream{file, std::ios::binary | std::ios::in | std::ios::out};
        stream.seekp((page - 1) * pageBytes);
        stream << std::string(pageBytes, '\xff');
    }
    const ServerProcess server{file, options()};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(ask(server, "/ready").status, 503);
}

TEST_F(OperatorTest, MissingDatabaseIsNotReadyAndNotMade)
{
    const ServerProcess server{file, options()};
    ASSERT_EQ(ask(server, "/ready").status, 200);
    std::filesystem::rename(file, file + ".away");
    EXPECT_EQ(ask(server, "/ready").status, 503);
    EXPECT_FALSE(std::filesystem::exists(file));
    std::filesystem::rename(file + ".away", file);
    EXPECT_EQ(ask(server, "/ready").status, 200);
}

TEST_F(OperatorTest, DatabaseOfANewerVersionIsNotReady)
{
    Database database{file};
    const auto run = [&](const std::string &sql) {
        database.write([&](Connection &connection) { connection.execute(sql); });
    };
    const ServerProcess server{file, options()};
    ASSERT_EQ(ask(server, "/ready").status, 200);
    run("INSERT INTO schema_migrations (version) VALUES (1000)");
    const Reply reply = ask(server, "/ready");
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(reply.error(), "NOT_READY");
    EXPECT_TRUE(server.logs("its schema is of version 1000")) << server.log();
    run("DELETE FROM schema_migrations WHERE version = 1000");
    EXPECT_EQ(ask(server, "/ready").status, 200);
}

TEST_F(OperatorTest, ServerThatStopsIsNotReady)
{
    const ServerProcess server{file, options()};
    const std::uint16_t port = operatorPort(server);
    ASSERT_EQ(send(port, "GET", "/ready").status, 200);
    RawClient slow{server.port()};
    slow.send("POST /api/auth/login HTTP/1.1\r\nHost: x\r\nContent-Length: 2\r\n\r\n{");
    EXPECT_TRUE(eventually([&] { return send(server.port(), "GET", "/health").status == 200; }));
    ASSERT_EQ(::kill(server.process(), SIGTERM), 0); // it waits for the rest of that request
    EXPECT_TRUE(eventually([&] { return send(port, "GET", "/ready").status == 503; }));
    EXPECT_EQ(send(port, "GET", "/ready").error(), "STOPPING");
    slow.send("}");
    EXPECT_EQ(slow.receive().status, 400);
}

} // namespace clockwell::server::test
