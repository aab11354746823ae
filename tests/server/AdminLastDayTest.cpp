#include "AdminFixture.h"

namespace clockwell::server::test {

/// Kim, who joined on 1 January 2020, and two administrators, in an office on UTC that is always open.
class AdminLastDayTest : public AdminFixture
{
protected:
    AdminLastDayTest()
    {
        addOffice(database, {});
        addEmployee(database, {});
        for (const std::string name : {"ada", "bo"})
            addEmployee(database, {.id = name, .name = name, .email = name + "@example.org"});
        execute("UPDATE employees SET role = 'ADMIN' WHERE id <> 'employee-1'");
    }

    static std::vector<std::string> setTo(const std::string &day, const std::string &name = "kim")
    {
        return {"employees", "set-last-day", name + "@example.org", day};
    }
    nlohmann::json shown() const { return adminJson({"employees", "show", "kim@example.org"}); }

    const std::vector<std::string> clear{"employees", "clear-last-day", "kim@example.org"};
};

TEST_F(AdminLastDayTest, IsSetChangedAndTakenBack)
{
    EXPECT_TRUE(shown().at("lastDay").is_null());
    EXPECT_TRUE(ends(0, clear, "kim@example.org (Kim Sample) has no last day; nothing was changed."));
    EXPECT_TRUE(
        ends(0, setTo("2024-06-10"), "The last day of kim@example.org (Kim Sample) is 2024-06-10 now."));
    EXPECT_TRUE(ends(0, setTo("2024-06-10"), "is 2024-06-10 already; nothing was changed."));
    EXPECT_EQ(shown().at("lastDay"), "2024-06-10");
    EXPECT_TRUE(ends(0, setTo("2024-06-28")));
    EXPECT_TRUE(contains(admin({"employees", "list"}).output, "2020-01-01  2024-06-28\n"));
    EXPECT_TRUE(contains(admin({"employees", "show", "kim@example.org"}).output, "2024-06-28\n"));
    EXPECT_TRUE(
        ends(0, clear, "Took back the last day of kim@example.org (Kim Sample), which was 2024-06-28."));
    EXPECT_TRUE(shown().at("lastDay").is_null());
}

TEST_F(AdminLastDayTest, ChangesAreInTheAudit)
{
    std::vector<std::string> byAda = setTo("2024-06-10");
    byAda.insert(byAda.end(), {"--as", "ada@example.org"});
    ASSERT_TRUE(ends(0, byAda));
    ASSERT_TRUE(ends(0, setTo("2024-06-10"))); // changes nothing
    ASSERT_TRUE(ends(0, clear));
    const auto entries = adminJson({"audit"});
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries.at(0).at("command"), "employees set-last-day");
    EXPECT_EQ(entries.at(0).at("administrator"), "ada@example.org");
    EXPECT_EQ(entries.at(0).at("subject"), "kim@example.org");
    EXPECT_TRUE(entries.at(0).at("before").at("lastDay").is_null());
    EXPECT_EQ(entries.at(0).at("after").at("lastDay"), "2024-06-10");
    EXPECT_EQ(entries.at(1).at("command"), "employees clear-last-day");
    EXPECT_EQ(entries.at(1).at("before").at("lastDay"), "2024-06-10");
    EXPECT_TRUE(entries.at(1).at("after").at("lastDay").is_null());
}

TEST_F(AdminLastDayTest, WorksAtOnceOnARunningServer)
{
    const ServerProcess server{file};
    const std::string access = token(server.port());
    ASSERT_TRUE(ends(0, setTo("2024-06-10")));
    EXPECT_EQ(send(server.port(), "GET", "/api/auth/me", access).error(), "EMPLOYMENT_ENDED");
    const Reply refused = send(server.port(), "POST", "/api/auth/login", "",
                               R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})");
    EXPECT_EQ(refused.error(), "EMPLOYMENT_ENDED");
    ASSERT_TRUE(ends(0, clear));
    EXPECT_EQ(send(server.port(), "GET", "/api/auth/me", access).status, 200);
}

TEST_F(AdminLastDayTest, ImpossibleDaysAreRefused)
{
    EXPECT_TRUE(ends(1, setTo("2019-12-31"), "joined on 2020-01-01, which is after the last day 2019-12-31"));
    EXPECT_TRUE(ends(0, setTo("2020-01-01")));
    EXPECT_TRUE(ends(3, setTo("2024-06-10", "nobody")));
    EXPECT_TRUE(ends(2, setTo("10.06.2024"), "it has to be a day of the calendar"));
    EXPECT_TRUE(ends(2, {"employees", "set-last-day", "kim@example.org"}));
    execute("UPDATE employees SET status = 'PENDING' WHERE id = 'employee-1'");
    EXPECT_TRUE(ends(1, setTo("2024-06-10"), "was never approved"));
    EXPECT_EQ(shown().at("lastDay"), "2020-01-01");
}

TEST_F(AdminLastDayTest, DayWithACheckInIsNotLeftBehind)
{
    const std::vector<std::string> correct{"days",       "correct",        "kim@example.org", "2024-06-11",
                                           "--check-in", "09:00",          "--reason",        "Forgotten",
                                           "--as",       "ada@example.org"};
    ASSERT_TRUE(ends(0, correct));
    EXPECT_TRUE(ends(1, setTo("2024-06-10"), "checked in on 2024-06-11, which is after the last day"));
    EXPECT_TRUE(ends(0, setTo("2024-06-11")));
    ASSERT_TRUE(ends(0, {"days", "void", "kim@example.org", "2024-06-11", "--reason", "Misread", "--as",
                         "ada@example.org"}));
    EXPECT_TRUE(ends(0, setTo("2024-06-10")));
}

TEST_F(AdminLastDayTest, NoDayAfterItIsGivenACheckIn)
{
    ASSERT_TRUE(ends(0, setTo("2024-06-10")));
    const auto correct = [](const std::string &day) {
        return std::vector<std::string>{"days",  "correct",  "kim@example.org", day,    "--check-in",
                                        "09:00", "--reason", "Forgotten",       "--as", "ada@example.org"};
    };
    EXPECT_TRUE(ends(1, correct("2024-06-11"), "The last working day was 2024-06-10."));
    EXPECT_TRUE(ends(0, correct("2024-06-10")));
}

TEST_F(AdminLastDayTest, AdministratorWhoHasLeftActsNoMore)
{
    ASSERT_TRUE(ends(0, setTo("2024-06-10", "bo")));
    EXPECT_TRUE(ends(1, {"employees", "suspend", "kim@example.org", "--as", "bo@example.org"},
                     "The last day of bo@example.org (bo) was 2024-06-10."));
    EXPECT_EQ(shown().at("status"), "APPROVED");
    ASSERT_TRUE(ends(0, setTo("9999-12-31", "bo")));
    EXPECT_TRUE(ends(0, {"employees", "suspend", "kim@example.org", "--as", "bo@example.org"}));
}

TEST_F(AdminLastDayTest, ReinstatementKeepsItAndAFirstApprovalHasNone)
{
    ASSERT_TRUE(ends(0, setTo("2024-06-10")));
    ASSERT_TRUE(ends(0, {"employees", "suspend", "kim@example.org"}));
    EXPECT_TRUE(ends(0, {"employees", "approve", "kim@example.org"}, "last day 2024-06-10."));
    execute("UPDATE employees SET status = 'PENDING' WHERE id = 'employee-1'"); // its approval was withdrawn
    EXPECT_TRUE(ends(0, {"employees", "approve", "kim@example.org"}));
    EXPECT_TRUE(shown().at("lastDay").is_null());
}

} // namespace clockwell::server::test
