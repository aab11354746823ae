#include "AdminFixture.h"

#include <unistd.h>

namespace clockwell::server::test {

class AdminAuditTest : public AdminFixture
{
protected:
    AdminAuditTest()
    {
        addOffice(database, {});
        addEmployee(database, {.status = "PENDING"});
        addEmployee(database, {.id = "ada", .name = "Ada", .email = "ada@example.org"});
        execute("UPDATE employees SET role = 'ADMIN' WHERE id = 'ada'");
    }

    nlohmann::json audit(std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), "audit");
        return adminJson(words);
    }
    static std::vector<std::string> commandsOf(const nlohmann::json &entries)
    {
        std::vector<std::string> commands;
        for (const auto &entry : entries)
            commands.push_back(entry.at("command"));
        return commands;
    }
};

TEST_F(AdminAuditTest, EveryChangeOfEveryCommandIsEntered)
{
    const std::vector<std::vector<std::string>> changes{
        {"employees", "approve", "kim@example.org"},
        {"companies", "add", "Other Works", "--code", "OW"},
        {"offices", "add", "Annex", "--company", "SW", "--latitude", "1", "--longitude", "2", "--time-zone",
         "UTC", "--check-in", "09:00", "--check-out", "17:00"},
        {"offices", "edit", "Annex", "--radius", "200", "--working-days", "Mon-Sat"},
        {"employees", "assign-office", "kim@example.org", "Annex"},
        {"holidays", "add", "Annex", "2027-01-01", "New Year"},
        {"holidays", "remove", "Annex", "2027-01-01"},
        {"leave", "add", "kim@example.org", "2027-02-01", "2027-02-02", "--reason", "Vacation"},
        {"leave", "remove", "kim@example.org", "2027-02-01"},
        {"days", "correct", "kim@example.org", "2024-06-10", "--check-in", "09:00", "--reason", "Forgotten",
         "--as", "ada@example.org"},
        {"days", "void", "kim@example.org", "2024-06-10", "--reason", "Misread", "--as", "ada@example.org"},
        {"employees", "set-last-day", "kim@example.org", "2027-02-28"},
        {"employees", "clear-last-day", "kim@example.org"},
        {"employees", "suspend", "kim@example.org"},
    };
    for (std::vector<std::string> words : changes) {
        if (words.front() == "days")
            execute("UPDATE employees SET joined_on = '2020-01-01'");
        ASSERT_TRUE(ends(0, words)) << words.at(0) << " " << words.at(1);
    }
    const auto entries = audit();
    ASSERT_EQ(entries.size(), changes.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        EXPECT_EQ(entries.at(i).at("command"), changes[i].at(0) + " " + changes[i].at(1));
        EXPECT_EQ(entries.at(i).at("number"), i + 1);
        EXPECT_FALSE(entries.at(i).at("osUser").get<std::string>().empty());
        EXPECT_EQ(entries.at(i).at("before").is_null(), changes[i].at(1) == "add" || i == 9) << i;
        EXPECT_EQ(entries.at(i).at("after").is_null(), changes[i].at(1) == "remove" || i == 10) << i;
    }
}

TEST_F(AdminAuditTest, EntrySaysWhoWhenWhatItWasAndWhatItIs)
{
    const Instant before = systemClock()();
    ASSERT_TRUE(
        ends(0, {"employees", "approve", "kim@example.org", "--as", "ADA@example.org", "--role", "LEAD"}));
    ASSERT_TRUE(ends(0, {"holidays", "add", "Head Office", "2027-01-01", "New Year"}));
    auto entries = audit();
    nlohmann::json entry = entries.at(0);
    const Instant when = instantOf(entry.at("at").get<std::string>());
    EXPECT_GE(when, before);
    EXPECT_LE(when, systemClock()());
    EXPECT_EQ(entry.at("administrator"), "ada@example.org");
    EXPECT_EQ(entry.at("subject"), "kim@example.org");
    EXPECT_TRUE(entry.at("day").is_null());
    EXPECT_EQ(entry.at("before").at("status"), "PENDING");
    EXPECT_EQ(entry.at("after").at("status"), "APPROVED");
    EXPECT_EQ(entry.at("after").at("role"), "LEAD");
    EXPECT_EQ(entry.at("after"), adminJson({"employees", "show", "kim@example.org"}));
    EXPECT_TRUE(entries.at(1).at("administrator").is_null());
    EXPECT_EQ(entries.at(1).at("subject"), "Head Office");
    EXPECT_EQ(entries.at(1).at("day"), "2027-01-01");
    const std::string text = admin({"audit"}).output;
    EXPECT_TRUE(contains(text, "status PENDING -> APPROVED")) << text;
    EXPECT_TRUE(contains(text, "role EMPLOYEE -> LEAD")) << text;
    EXPECT_TRUE(contains(text, "name New Year")) << text;
    EXPECT_FALSE(contains(text, "argon2")) << text;
}

TEST_F(AdminAuditTest, WhatChangesNothingOrIsRefusedIsNotEntered)
{
    EXPECT_TRUE(ends(0, {"companies", "add", "Sample Works", "--code", "SW"}, "nothing was changed"));
    EXPECT_TRUE(ends(1, {"employees", "reject", "ada@example.org"}));
    EXPECT_TRUE(ends(3, {"leave", "remove", "nowhere"}));
    EXPECT_TRUE(ends(0, {"employees", "list"}));
    EXPECT_EQ(admin({"audit"}).output, "No changes.\n");
    EXPECT_EQ(audit(), nlohmann::json::array());
}

TEST_F(AdminAuditTest, NamedAdministratorHasToBeOne)
{
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"companies", "add", "Other Works", "--code", "OW"},
          {"holidays", "add", "Head Office", "2027-01-01", "New Year"},
          {"leave", "add", "kim@example.org", "2027-02-01", "2027-02-02"},
          {"employees", "approve", "kim@example.org"},
          {"offices", "edit", "Head Office", "--radius", "99"}}) {
        auto by = words;
        by.insert(by.begin(), {"--as", "kim@example.org"});
        EXPECT_TRUE(ends(1, by, "has the role EMPLOYEE and is pending")) << words.front();
        by.at(1) = "nobody@example.org";
        EXPECT_TRUE(ends(3, by)) << words.front();
    }
    EXPECT_EQ(audit().size(), 0U);
}

TEST_F(AdminAuditTest, EntriesCannotBeChangedDeletedOrReplaced)
{
    ASSERT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"}));
    const auto before = audit();
    for (const char *sql :
         {"UPDATE audit SET os_user = 'nobody'", "DELETE FROM audit", "DELETE FROM audit WHERE number = 1",
          "INSERT OR REPLACE INTO audit (number, at, os_user, command, subject, subject_id)"
          " VALUES (1, 0, 'nobody', 'x', 'y', 'z')",
          "REPLACE INTO audit SELECT * FROM audit"}) {
        EXPECT_THROW(execute(sql), DatabaseError) << sql;
        EXPECT_EQ(audit(), before) << sql;
    }
}

TEST_F(AdminAuditTest, ListIsFilteredByPersonAndDay)
{
    ASSERT_TRUE(ends(0, {"employees", "approve", "kim@example.org"}));
    ASSERT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW", "--as", "ada@example.org"}));
    EXPECT_EQ(commandsOf(audit({"--email", "Kim@example.org"})),
              std::vector<std::string>{"employees approve"});
    EXPECT_EQ(commandsOf(audit({"--email", "ada@example.org"})), std::vector<std::string>{"companies add"});
    execute("INSERT INTO audit (number, at, os_user, command, subject, subject_id) VALUES"
            " (7, 1718013600000, 'root', 'x', 'y', 'z')"); // 2024-06-10T10:00:00Z
    EXPECT_EQ(audit({"--to", "2024-06-10"}).size(), 1U);
    EXPECT_EQ(audit({"--to", "2024-06-09"}).size(), 0U);
    EXPECT_EQ(audit({"--from", "2024-06-10"}).size(), 3U);
    EXPECT_EQ(audit({"--from", "2024-06-11"}).size(), 2U);
    EXPECT_EQ(audit({"--from", "2024-06-10", "--to", "2024-06-10"}).size(), 1U);
    EXPECT_TRUE(ends(2, {"audit", "--from", "yesterday"}, "--from"));
}

TEST_F(AdminAuditTest, NamesInItDoNotSteerTheTerminal)
{
    execute("UPDATE employees SET full_name = 'K\x1b[2J' WHERE id = 'employee-1'");
    ASSERT_TRUE(ends(0, {"employees", "approve", "kim@example.org"}));
    EXPECT_FALSE(contains(admin({"audit"}).output, "\x1b"));
    if (testsPostgres())
        return; // it takes no text that is not UTF-8
    execute("UPDATE employees SET full_name = CAST(X'4BFF' AS TEXT) WHERE id = 'employee-1'");
    ASSERT_TRUE(ends(0, {"employees", "suspend", "kim@example.org"}));
    EXPECT_EQ(audit().size(), 2U);
}

TEST_F(AdminAuditTest, BackupHoldsItAndRestoreEntersItself)
{
    ASSERT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"}));
    const std::string copy = folder.file("copy.db");
    const std::string other = folder.file("other.db");
    ASSERT_TRUE(ends(0, {"backup", copy}));
    const auto restored = [&](const std::vector<std::string> &more) {
        std::vector<std::string> words{"admin", "--database", other, "restore", copy, "--yes"};
        words.insert(words.end(), more.begin(), more.end());
        return runServer(words);
    };
    ASSERT_EQ(restored({"--as", "ada@example.org"}).exitCode, 0);
    const auto auditOf = [](const std::string &name) {
        return nlohmann::json::parse(runServer({"admin", "--database", name, "audit", "--json"}).output);
    };
    auto entries = auditOf(other);
    EXPECT_EQ(commandsOf(entries), (std::vector<std::string>{"companies add", "restore"}));
    EXPECT_EQ(entries.at(1).at("administrator"), "ada@example.org");
    EXPECT_EQ(entries.at(1).at("after").at("backup"), copy);
    EXPECT_EQ(entries.at(1).at("after").at("employees"), 2);
    EXPECT_TRUE(entries.at(1).at("before").is_null());
    ASSERT_EQ(restored({}).exitCode, 0);
    entries = auditOf(other);
    EXPECT_EQ(commandsOf(entries), (std::vector<std::string>{"companies add", "restore"}));
    EXPECT_TRUE(entries.at(1).at("administrator").is_null());
    EXPECT_EQ(restored({"--as", "kim@example.org"}).exitCode, 1);
    EXPECT_EQ(audit().size(), 1U); // the backup's own source is as it was
}

TEST_F(AdminAuditTest, FreshDemonstrationKeepsItAndEntersItself)
{
    ASSERT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"}));
    ASSERT_EQ(runServer({"demo", "--database", file, "--fresh"}).exitCode, 0);
    const auto entries = audit();
    EXPECT_EQ(commandsOf(entries), (std::vector<std::string>{"companies add", "demo --fresh"}));
    EXPECT_EQ(entries.at(1).at("before"), (nlohmann::json{{"employees", 2}, {"attendanceDays", 0}}));
    ASSERT_TRUE(ends(0, {"days", "correct", "demo@clockwell.example",
                         toText(TimeZone::ofMachine().dayOf(systemClock()()) - std::chrono::days{1}),
                         "--check-in", "09:00", "--check-out", "18:30", "--reason", "Forgotten", "--as",
                         "admin@clockwell.example"}));
    EXPECT_EQ(runServer({"demo", "--database", file, "--fresh"}).exitCode, 0); // also over a corrected day
    EXPECT_EQ(audit().size(), 4U);
}

} // namespace clockwell::server::test
