#include "Contains.h"
#include "HttpClient.h"
#include "Midnight.h"
#include "ServerProcess.h"
#include "TempFolder.h"
#include "TestDatabase.h"
#include "server/storage/PostgresUrl.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <thread>

namespace clockwell::server::test {

namespace {

constexpr const char *demoPunch =
    R"({"lat":54.1234,"lng":9.5678,"accuracy":8,"deviceId":"dev-1","isMockLocation":false})";

std::string signIn(std::uint16_t port, const std::string &password = "Clockwell-2026",
                   const std::string &email = "demo@clockwell.example")
{
    const Reply reply =
        send(port, "POST", "/api/auth/login", "",
             nlohmann::json{{"email", email}, {"password", password}, {"deviceId", "dev-1"}}.dump());
    return reply.status == 200 ? reply.json().at("accessToken").get<std::string>() : std::string{};
}

} // namespace

TEST(CommandLineTest, HelpExplainsTheCommands)
{
    const ProcessResult general = runServer({"--help"});
    EXPECT_EQ(general.exitCode, 0);
    EXPECT_TRUE(contains(general.output, "serve"));
    EXPECT_TRUE(contains(general.output, "demo"));
    const ProcessResult serve = runServer({"serve", "--help"});
    EXPECT_EQ(serve.exitCode, 0);
    for (const char *option : {"--database", "--listen", "--certificate", "--private-key", "--port-file"})
        EXPECT_TRUE(contains(serve.output, option)) << option;
}

TEST(CommandLineTest, WrongUsageIsTwo)
{
    EXPECT_EQ(runServer({}).exitCode, 2);
    EXPECT_EQ(runServer({"sing"}).exitCode, 2);
    EXPECT_EQ(runServer({"serve"}).exitCode, 2);
    EXPECT_EQ(runServer({"demo", "--database", "x.db", "--now", "2026-01-01T00:00:00Z"}).exitCode, 2);
    const ProcessResult lone = runServer({"serve", "--database", "x.db", "--certificate", "c.pem"});
    EXPECT_EQ(lone.exitCode, 2);
    EXPECT_TRUE(contains(lone.errors, "--private-key"));
}

TEST(CommandLineTest, FailuresAreOneAndSayWhy)
{
    const TempFolder folder;
    const ProcessResult missing = runServer({"demo", "--database", folder.file("none/a.db")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(contains(missing.errors, "No such file or directory"));
    std::ofstream{folder.file("a.txt")} << std::string(5000, 'x');
    const ProcessResult broken = runServer({"serve", "--database", folder.file("a.txt")});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_TRUE(contains(broken.errors, "a.txt cannot be used: file is not a database."));
}

TEST(CommandLineTest, WrongValuesAreUsageErrorsThatShowARightOne)
{
    const ProcessResult address = runServer({"serve", "--database", "x.db", "--listen", "somewhere"});
    EXPECT_EQ(address.exitCode, 2);
    EXPECT_TRUE(contains(address.errors, "127.0.0.1:8460"));
    const ProcessResult zone = runServer({"demo", "--database", "x.db", "--time-zone", "Nowhere"});
    EXPECT_EQ(zone.exitCode, 2);
    EXPECT_TRUE(contains(zone.errors, "Europe/Berlin"));
    EXPECT_EQ(runServer({"demo", "--database", "x.db", "--password", ""}).exitCode, 2);
    EXPECT_EQ(runServer({"serve", "--database", "x.db", "--login-attempts", "0"}).exitCode, 2);
    EXPECT_EQ(runServer({"serve", "--database", "x.db", "--account-burst", "0"}).exitCode, 2);
    EXPECT_EQ(runServer({"serve", "--database", "x.db", "--account-requests", "-1"}).exitCode, 2);
}

TEST(CommandLineTest, OptionsOfTheOtherDatabaseAreRefused)
{
    const TempFolder folder;
    const std::string url = "postgresql://127.0.0.1:1/name"; // nothing connects there
    const ProcessResult limit = runServer({"serve", "--database", url, "--database-limit", "100"});
    EXPECT_EQ(limit.exitCode, 2);
    EXPECT_TRUE(contains(limit.errors, "--database-limit is for a SQLite file")) << limit.errors;
    const ProcessResult connections =
        runServer({"serve", "--database", folder.file("a.db"), "--database-connections", "3"});
    EXPECT_EQ(connections.exitCode, 2);
    EXPECT_TRUE(contains(connections.errors, "--database-connections is for PostgreSQL"))
        << connections.errors;
    EXPECT_FALSE(std::filesystem::exists(folder.file("a.db")));
    EXPECT_EQ(runServer({"serve", "--database", url, "--database-limit", "0"}).exitCode, 1) << "no limit";
}

TEST(CommandLineTest, AddressInUseIsAFailure)
{
    const TempFolder folder;
    const ServerProcess server{databaseIn(folder, "a.db")};
    ASSERT_NE(server.port(), 0);
    const ProcessResult second = runServer({"serve", "--database", databaseIn(folder, "b.db"), "--listen",
                                            "127.0.0.1:" + std::to_string(server.port())});
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_FALSE(second.errors.empty());
}

TEST(CommandLineTest, TerminationIsOrderly)
{
    const TempFolder folder;
    ServerProcess server{databaseIn(folder, "a.db")};
    ASSERT_NE(server.port(), 0);
    EXPECT_EQ(send(server.port(), "GET", "/health").status, 200);
    EXPECT_EQ(server.terminate(), 0);
}

TEST(CommandLineTest, RequestsOfAnAccountHaveALimit)
{
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db")});
    const auto third = [&](std::vector<std::string> options) {
        const ServerProcess server{databaseIn(folder, "a.db"), std::move(options)};
        const std::string token = signIn(server.port());
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(send(server.port(), "GET", "/api/attendance/today", token).status, 200);
        return send(server.port(), "GET", "/api/attendance/today", token).status;
    };
    EXPECT_EQ(third({"--account-requests", "1", "--account-burst", "2"}), 429);
    EXPECT_EQ(third({"--account-requests", "0", "--account-burst", "2"}), 200);
}

TEST(CommandLineTest, SessionsAndPunchesSurviveARestart)
{
    passMidnight(TimeZone::ofMachine());
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db")});
    std::string token;
    {
        ServerProcess server{databaseIn(folder, "a.db")};
        token = signIn(server.port());
        EXPECT_EQ(send(server.port(), "POST", "/api/attendance/punch", token, demoPunch).status, 200);
        EXPECT_EQ(server.terminate(), 0);
    }
    const ServerProcess server{databaseIn(folder, "a.db")};
    const Reply today = send(server.port(), "GET", "/api/attendance/today", token);
    ASSERT_EQ(today.status, 200);
    EXPECT_EQ(today.json().at("canCheckOut"), true);
}

TEST(CommandLineTest, RepeatWindowCanBeSwitchedOff)
{
    passMidnight(TimeZone::ofMachine());
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db")});
    const ServerProcess server{databaseIn(folder, "a.db"), {"--repeat-window", "0"}};
    const std::string token = signIn(server.port());
    EXPECT_EQ(send(server.port(), "POST", "/api/attendance/punch", token, demoPunch).json().at("type"), "IN");
    std::this_thread::sleep_for(std::chrono::milliseconds{5}); // the next millisecond
    EXPECT_EQ(send(server.port(), "POST", "/api/attendance/punch", token, demoPunch).json().at("type"),
              "OUT");
}

TEST(CommandLineTest, RepeatWindowIsNinetySecondsAndFiveForTheDemonstration)
{
    const TempFolder folder;
    EXPECT_TRUE(contains(runServer({"serve", "--help"}).output, "=90 (demonstration: 5)"));
    EXPECT_TRUE(ServerProcess{databaseIn(folder, "empty.db")}.logs("repeat_window=90s"));
    runServer({"demo", "--database", databaseIn(folder, "demo.db")});
    EXPECT_TRUE(ServerProcess{databaseIn(folder, "demo.db")}.logs("repeat_window=5s"));
    EXPECT_TRUE(
        ServerProcess(databaseIn(folder, "demo.db"), {"--repeat-window", "90"}).logs("repeat_window=90s"));
    EXPECT_TRUE(
        ServerProcess(databaseIn(folder, "empty.db"), {"--repeat-window", "7"}).logs("repeat_window=7s"));
}

TEST(CommandLineTest, DemonstrationChecksOutAfterFiveSeconds)
{
    passMidnight(TimeZone::ofMachine());
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db")});
    const ServerProcess server{databaseIn(folder, "a.db")};
    const std::string token = signIn(server.port());
    const auto punch = [&] {
        return send(server.port(), "POST", "/api/attendance/punch", token, demoPunch).json().at("type");
    };
    EXPECT_EQ(punch(), "IN");
    EXPECT_EQ(punch(), "IN");
    std::this_thread::sleep_for(std::chrono::milliseconds{5100});
    EXPECT_EQ(punch(), "OUT");
}

TEST(CommandLineTest, DatabaseMayComeFromTheEnvironment)
{
    const TempFolder folder;
    ASSERT_EQ(::setenv("CLOCKWELL_DATABASE", databaseIn(folder, "a.db").c_str(), 1), 0);
    const ProcessResult demo = runServer({"demo"});
    ::unsetenv("CLOCKWELL_DATABASE");
    EXPECT_EQ(demo.exitCode, 0);
    EXPECT_TRUE(contains(demo.output, databaseLabel(databaseIn(folder, "a.db"))));
}

TEST(CommandLineTest, MissingCertificateIsAFailure)
{
    const TempFolder folder;
    const ProcessResult serve =
        runServer({"serve", "--database", databaseIn(folder, "a.db"), "--listen", "127.0.0.1:0",
                   "--certificate", folder.file("c.pem"), "--private-key", folder.file("k.pem")});
    EXPECT_EQ(serve.exitCode, 1);
    EXPECT_TRUE(contains(serve.errors, "c.pem"));
}

TEST(DemoTest, PrintsHowToTryItAndIsIdempotent)
{
    const TempFolder folder;
    const ProcessResult first =
        runServer({"demo", "--database", databaseIn(folder, "a.db"), "--time-zone", "Asia/Kolkata"});
    EXPECT_EQ(first.exitCode, 0);
    for (const char *fact : {"demo@clockwell.example", "Clockwell-2026", "Head Office", "Asia/Kolkata",
                             "54.1234,9.5678", "150 m"})
        EXPECT_TRUE(contains(first.output, fact)) << fact;
    const std::string content = contentOf(databaseIn(folder, "a.db"));
    const ProcessResult second = runServer({"demo", "--database", databaseIn(folder, "a.db")});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_TRUE(contains(second.output, "was left as it is"));
    EXPECT_TRUE(contains(second.output, "Clockwell-2026"));
    EXPECT_EQ(contentOf(databaseIn(folder, "a.db")), content);
}

TEST(DemoTest, UnknownPasswordIsNotClaimedToWork)
{
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db"), "--password", "Another-Word-9"});
    const ProcessResult second = runServer({"demo", "--database", databaseIn(folder, "a.db")});
    EXPECT_FALSE(contains(second.output, "Clockwell-2026"));
}

TEST(DemoTest, FreshStartsOver)
{
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db"), "--password", "Another-Word-9"});
    const ProcessResult fresh = runServer({"demo", "--database", databaseIn(folder, "a.db"), "--fresh"});
    EXPECT_EQ(fresh.exitCode, 0);
    EXPECT_TRUE(contains(fresh.output, "Filled"));
    const ServerProcess server{databaseIn(folder, "a.db")};
    EXPECT_FALSE(signIn(server.port()).empty());
    EXPECT_TRUE(signIn(server.port(), "Another-Word-9").empty());
}

TEST(DemoTest, CoversEveryStatusAndLeavesTodayOpenAtAnyHour)
{
    // Somewhere it is early, somewhere late: today's check-in works at any hour.
    for (const char *zone : {"UTC", "Pacific/Kiritimati", "Pacific/Pago_Pago", "America/New_York"}) {
        passMidnight(TimeZone::named(zone).value());
        const TempFolder folder;
        runServer({"demo", "--database", databaseIn(folder, "a.db"), "--time-zone", zone});
        const ServerProcess server{databaseIn(folder, "a.db")};
        const std::string token = signIn(server.port());
        ASSERT_FALSE(token.empty());
        const auto today = send(server.port(), "GET", "/api/attendance/today", token).json();
        EXPECT_EQ(today.at("open"), true);
        EXPECT_FALSE(today.contains("record"));
        const auto history = send(server.port(), "GET", "/api/attendance/me", token).json();
        EXPECT_EQ(history.size(), 61U);
        std::map<std::string, int> count;
        for (const auto &record : history)
            ++count[record.at("status")];
        for (const char *status : {"ON_TIME", "LATE", "HALF_DAY", "ABSENT", "MISSING_CHECK_OUT", "ON_LEAVE"})
            EXPECT_GE(count[status], 2) << status;
        EXPECT_EQ(send(server.port(), "POST", "/api/attendance/punch", token, demoPunch).json().at("type"),
                  "IN");
    }
}

TEST(DemoTest, ManagersMaySignInToo)
{
    const TempFolder folder;
    runServer({"demo", "--database", databaseIn(folder, "a.db")});
    const ServerProcess server{databaseIn(folder, "a.db")};
    for (const char *email : {"manager@clockwell.example", "admin@clockwell.example"})
        EXPECT_FALSE(signIn(server.port(), "Clockwell-2026", email).empty()) << email;
}

} // namespace clockwell::server::test
