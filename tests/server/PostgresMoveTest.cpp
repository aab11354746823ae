#include "Midnight.h"
#include "MoveFixture.h"
#include "server/demo/DemoData.h"
#include "server/storage/Migrations.h"
#include "server/storage/Schema.h"

#include <sys/stat.h>

#include <bit>
#include <filesystem>
#include <limits>

namespace clockwell::server::test {

class PostgresMoveTest : public MoveFixture
{
protected:
    static Reply signIn(const ServerProcess &server)
    {
        return send(server.port(), "POST", "/api/auth/login", "",
                    std::string{R"({"email":")"} + demoEmail +
                        R"(","password":"Correct-Horse-7","deviceId":"d"})");
    }
    /// What the app shows.
    static std::string screens(const ServerProcess &server, const std::string &token)
    {
        std::string all;
        const std::string month = toIsoText(systemClock()()).substr(0, 7);
        for (const std::string &path :
             {std::string{"/api/auth/me"}, std::string{"/api/attendance/today"},
              std::string{"/api/attendance/me"}, "/api/attendance/me/summary?month=" + month}) {
            const Reply reply = send(server.port(), "GET", path, token);
            EXPECT_EQ(reply.status, 200) << path << reply.body;
            all += reply.body + "\n";
        }
        return all;
    }
    std::vector<std::string> tablesOfFile() const
    {
        std::vector<std::string> names;
        for (const auto &table :
             Connection{file, 1}.all<SingleColumn<std::string>>("SELECT name FROM sqlite_master WHERE type ="
                                                                " 'table' AND name NOT LIKE 'sqlite_%'"))
            names.push_back(table.value);
        return names;
    }
    /// At least one row in every table.
    void fillEveryTable() const;
};

TEST_F(PostgresMoveTest, DemonstrationIsServedAsBeforeAndSessionsGoOn)
{
    passMidnight(TimeZone::ofMachine());
    file = folder.file("demo.db");
    ASSERT_EQ(runServer({"demo", "--database", file, "--password", "Correct-Horse-7"}).exitCode, 0);
    nlohmann::json session;
    std::string before;
    {
        ServerProcess server{file};
        session = signIn(server).json();
        before = screens(server, session.at("accessToken"));
        EXPECT_EQ(server.terminate(), 0);
    }
    ASSERT_TRUE(moves());
    const ServerProcess server{url};
    EXPECT_EQ(screens(server, session.at("accessToken")), before);
    const Reply renewed =
        send(server.port(), "POST", "/api/auth/refresh", "",
             R"({"refreshToken":")" + session.at("refreshToken").get<std::string>() + R"("})");
    ASSERT_EQ(renewed.status, 200) << renewed.body;
    EXPECT_EQ(screens(server, renewed.json().at("accessToken")), before);
    const Reply again = signIn(server);
    ASSERT_EQ(again.status, 200) << again.body;
    EXPECT_EQ(screens(server, again.json().at("accessToken")), before);
}

void PostgresMoveTest::fillEveryTable() const
{
    for (const char *sql :
         {"INSERT INTO holidays VALUES ('office-1', '2026-01-01', 'New Year')",
          "INSERT INTO leaves VALUES ('l', 'employee-1', '2026-01-02', '2026-01-03', NULL)",
          "INSERT INTO attendance VALUES ('a', 'employee-1', '2026-01-04', 1, 2, 3, 4, 5, 6.5, NULL, NULL)",
          "INSERT INTO punches VALUES ('p', 'a', 1, 'IN', 5, 'd', 48.1, 11.1, 7.1, 6.5)",
          "INSERT INTO token_families (id, employee_id, device_id, created_at, generation) VALUES"
          " ('f', 'employee-1', 'd', 1, 0)",
          "INSERT INTO access_tokens VALUES ('ah', 'f', 1)",
          "INSERT INTO refresh_tokens VALUES ('rh', 'f', 0, 1)",
          "INSERT INTO codes VALUES ('c', 'x@example.org', '::1', 'RESET', NULL, 's', 'h', 'i', 1)",
          "INSERT INTO wrong_codes VALUES ('x@example.org', 0.1, 1)",
          "INSERT INTO sign_ups (id, employee_id, full_name, email, password_hash, network, created_at) "
          "VALUES"
          " ('s', 'employee-1', 'Kim', 'x@example.org', 'h', '::1', 1)",
          "INSERT INTO spendings VALUES ('sp', 'k', '::1', -0.25, 1, 2)",
          "INSERT INTO counted_events VALUES ('k', 'x@example.org', '', 1, 1, 2)",
          "INSERT INTO entered_codes VALUES ('x@example.org', '::1', '', 1)",
          "INSERT INTO secrets VALUES ('stand-ins', 'v')",
          "INSERT INTO audit (number, at, os_user, command, subject, subject_id) VALUES (7, 1, 'u', 'c', "
          "'s', '')"})
        inFile(sql);
}

TEST_F(PostgresMoveTest, EveryTableOfTheSchemaIsMoved)
{
    fillEveryTable();
    const auto tables = tablesOfFile();
    EXPECT_GE(tables.size(), 19U);
    const auto printed = nlohmann::json::parse(move({"--json"}).output);
    ASSERT_EQ(printed.at("tables").size(), tables.size());
    for (const auto &table : printed.at("tables")) {
        const std::string name = table.at("name");
        const std::string count = "SELECT CAST(COUNT(*) AS TEXT) FROM " + name;
        const auto inFile = Connection{file, 1}.value<std::string>(count);
        EXPECT_NE(inFile, "0") << "let this test fill " << name;
        EXPECT_EQ(std::to_string(table.at("rows").get<int>()), inFile) << name;
        EXPECT_EQ(fromTarget(count + (name == "audit" ? " WHERE number <= 7" : "")), inFile) << name;
    }
    EXPECT_EQ(printed.at("to"), databaseLabel(url));
    EXPECT_EQ(printed.at("employees"), 1);
}

TEST_F(PostgresMoveTest, ValuesAreTheSameToTheLastBit)
{
    const std::string text = "tab\tline\nreturn\r back\\slash \\N \\. \"quote' \x01 \xF0\x9F\x99\x82";
    const std::vector<double> numbers{0.1,
                                      -0.0,
                                      std::nextafter(1.0, 2.0),
                                      5e-324,
                                      1.7976931348623157e308,
                                      std::numeric_limits<double>::infinity()};
    {
        Connection source{file, 1};
        source.execute("INSERT INTO audit (number, at, os_user, command, subject, subject_id, value_after)"
                       " VALUES (:number, :at, '', :command, '\\N', '', :after)",
                       std::numeric_limits<long long>::max() - 1, std::numeric_limits<long long>::min(), text,
                       std::string(300'000, 'x'));
        long long id = 0;
        for (const double number : numbers)
            source.execute("INSERT INTO spendings VALUES (:id, 'k', 's', :amount, 1, 2)", ++id, number);
    }
    ASSERT_TRUE(moves());
    const auto there = connectTo(url);
    const auto here = std::make_unique<Connection>(file, 1);
    for (const auto &connection : {there.get(), here.get()}) {
        EXPECT_EQ(connection->value<std::string>("SELECT command FROM audit WHERE subject = '\\N'"), text);
        EXPECT_EQ(
            connection->value<long long>("SELECT at FROM audit WHERE reason IS NULL AND administrator IS"
                                         " NULL AND os_user = ''"),
            std::numeric_limits<long long>::min());
        EXPECT_EQ(connection->value<long long>("SELECT LENGTH(value_after) FROM audit WHERE subject = '\\N'"),
                  300'000);
    }
    const auto amounts = [](Connection &connection) {
        std::vector<std::uint64_t> bits;
        for (const auto &row :
             connection.all<SingleColumn<double>>("SELECT amount FROM spendings ORDER BY id"))
            bits.push_back(std::bit_cast<std::uint64_t>(row.value));
        return bits;
    };
    EXPECT_EQ(amounts(*there), amounts(*here));
    EXPECT_EQ(amounts(*there).at(2), std::bit_cast<std::uint64_t>(numbers.at(2)));
}

TEST_F(PostgresMoveTest, OutputSaysWhatWasComparedAndWhatComesNext)
{
    const ProcessResult result = move();
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_TRUE(
        result.output.starts_with("Moved " + file + " to " + databaseLabel(url) +
                                  ": 1 employee, 0 days of attendance. All tables are the same in both:"
                                  "\n\nTABLE              ROWS  COMPARED\n"))
        << result.output;
    EXPECT_TRUE(contains(result.output, "\noffices            1     same\n")) << result.output;
    EXPECT_TRUE(result.output.ends_with("\n\nNow start the server with --database '" + url + "'. The file " +
                                        file + " is unchanged, and no longer used.\n"))
        << result.output;
}

TEST_F(PostgresMoveTest, FileStaysAsItIsAndNothingIsLeftBesideIt)
{
    const std::string before = readFile(file);
    ASSERT_TRUE(moves());
    EXPECT_TRUE(readFile(file) == before);
    const std::filesystem::directory_iterator files{folder.file("")};
    EXPECT_EQ(std::distance(files, std::filesystem::directory_iterator{}), 1);
}

TEST_F(PostgresMoveTest, WhatAKilledServerHadRecordedIsMoved)
{
    {
        ServerProcess server{file};
        ASSERT_EQ(send(server.port(), "POST", "/api/auth/login", "",
                       R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})")
                      .status,
                  200);
        server.kill();
    }
    ASSERT_FALSE(readFile(file + "-wal").empty()) << "it has to be in the log that is beside the file";
    ASSERT_TRUE(moves());
    EXPECT_EQ(fromTarget("SELECT CAST(COUNT(*) AS TEXT) FROM token_families"), "1");
}

TEST_F(PostgresMoveTest, FileOfAnOlderVersionIsMovedAndStaysOfThatVersion)
{
    file = folder.file("old.db");
    {
        Connection old{file, 1};
        old.execute("CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
        for (long long i = 1; i <= 2; ++i) {
            for (const std::string &statement : schemaSteps().at(static_cast<std::size_t>(i - 1)))
                old.execute(statement);
            old.execute("INSERT INTO schema_migrations (version) VALUES (:version)", i);
        }
        old.execute("INSERT INTO institutes (id, name, code) VALUES ('i', 'Old Works', 'W')");
    }
    ASSERT_EQ(::chmod(file.c_str(), S_IRUSR | S_IWUSR), 0);
    const std::string before = readFile(file);
    ASSERT_TRUE(moves());
    EXPECT_TRUE(readFile(file) == before);
    EXPECT_EQ(fromTarget("SELECT name FROM companies"), "Old Works");
    EXPECT_EQ(fromTarget("SELECT CAST(MAX(version) AS TEXT) FROM schema_migrations"),
              std::to_string(schemaVersion()));
}

TEST_F(PostgresMoveTest, SchemaWithoutRowsIsEmptyAlsoAnOlderOne)
{
    {
        const auto old = connectTo(url);
        old->execute("CREATE TABLE schema_migrations (version INTEGER NOT NULL PRIMARY KEY)");
        old->execute("INSERT INTO schema_migrations (version) VALUES (1)");
        for (const std::string &statement : postgresSchemaSteps().at(0))
            old->execute(statement);
    }
    ASSERT_TRUE(moves());
    EXPECT_EQ(fromTarget("SELECT full_name FROM employees"), "Kim Sample");
}

TEST_F(PostgresMoveTest, AuditIsGoneOnWith)
{
    inFile("UPDATE employees SET role = 'ADMIN'");
    fillEveryTable();
    ASSERT_EQ(move({"--as", "kim@example.org"}).exitCode, 0);
    const auto entries =
        nlohmann::json::parse(runServer({"admin", "--database", url, "audit", "--json"}).output);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries.at(0).at("number"), 7);
    EXPECT_EQ(entries.at(1).at("number"), 8);
    EXPECT_EQ(entries.at(1).at("command"), "move");
    EXPECT_EQ(entries.at(1).at("administrator"), "kim@example.org");
    EXPECT_EQ(entries.at(1).at("after").at("from"), file);
    EXPECT_THROW(inTarget("DELETE FROM audit"), DatabaseError);
}

} // namespace clockwell::server::test
