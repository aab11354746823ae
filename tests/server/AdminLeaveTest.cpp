#include "AdminFixture.h"
#include "Midnight.h"

#include <algorithm>
#include <array>
#include <thread>

namespace clockwell::server::test {

class AdminLeaveTest : public AdminFixture
{
protected:
    AdminLeaveTest()
    {
        addOffice(database, {});
        addEmployee(database, {});
    }

    static std::vector<std::string> add(const std::string &first, const std::string &last,
                                        const std::vector<std::string> &more = {})
    {
        std::vector<std::string> words{"leave", "add", "kim@example.org", first, last};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    nlohmann::json listed(std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), {"leave", "list"});
        return adminJson(words);
    }
    void addSecondEmployee()
    {
        EmployeeSpec second;
        second.id = "employee-2";
        second.name = "Alex Sample";
        second.email = "alex@example.org";
        addEmployee(database, second);
    }
};

TEST_F(AdminLeaveTest, LeaveIsAddedAndListed)
{
    EXPECT_TRUE(
        ends(0, add("2026-12-21", "2027-01-02", {"--reason", "Vacation"}),
             "Added leave of kim@example.org (Kim Sample) from 2026-12-21 to 2027-01-02, 13 days.\n"));
    nlohmann::json leave = listed().at(0);
    EXPECT_EQ(leave.at("id").get<std::string>().size(), 36U);
    EXPECT_TRUE(contains(admin({"leave", "list"}).output,
                         "2026-12-21  2027-01-02  Kim Sample  kim@example.org  Vacation  "));
    leave.erase("id");
    EXPECT_EQ(leave, nlohmann::json::parse(R"({"email":"kim@example.org","fullName":"Kim Sample",
        "from":"2026-12-21","to":"2027-01-02","reason":"Vacation"})"));
}

TEST_F(AdminLeaveTest, OneDayIsLeaveToo)
{
    EXPECT_TRUE(ends(0, add("2027-02-01", "2027-02-01"), "on 2027-02-01, 1 day.\n"));
    EXPECT_TRUE(listed().at(0).at("reason").is_null());
}

TEST_F(AdminLeaveTest, EndBeforeStartIsRefused)
{
    EXPECT_TRUE(ends(1, add("2027-01-02", "2027-01-01"), "2027-01-01 is before the first day 2027-01-02."));
    EXPECT_EQ(admin({"leave", "list"}).output, "No leave.\n");
}

TEST_F(AdminLeaveTest, OverlappingLeaveIsRefusedAndAdjacentLeaveIsNot)
{
    ASSERT_TRUE(ends(0, add("2027-03-10", "2027-03-20")));
    const std::string id = listed().at(0).at("id");
    for (const auto &[first, last] :
         std::vector<std::pair<std::string, std::string>>{{"2027-03-20", "2027-03-25"}, // its last day
                                                          {"2027-03-01", "2027-03-10"}, // its first day
                                                          {"2027-03-12", "2027-03-13"}, // within it
                                                          {"2027-03-01", "2027-03-31"}, // around it
                                                          {"2027-03-10", "2027-03-19"}})
        EXPECT_TRUE(
            ends(1, add(first, last), "has leave from 2027-03-10 to 2027-03-20 already (" + id + ")"));
    EXPECT_EQ(listed().size(), 1U);
    EXPECT_TRUE(ends(0, add("2027-03-21", "2027-03-22")));
    EXPECT_TRUE(ends(0, add("2027-03-09", "2027-03-09")));
    EXPECT_EQ(listed().size(), 3U);
}

TEST_F(AdminLeaveTest, LeaveOfOtherPeopleIsNoObstacle)
{
    addSecondEmployee();
    ASSERT_TRUE(ends(0, add("2027-03-10", "2027-03-20")));
    EXPECT_TRUE(ends(0, {"leave", "add", "ALEX@example.org", "2027-03-10", "2027-03-20"}));
    EXPECT_EQ(listed().size(), 2U);
    EXPECT_EQ(listed({"--employee", "alex@example.org"}).size(), 1U);
}

TEST_F(AdminLeaveTest, SameLeaveAgainSaysSoAndAnotherReasonIsRefused)
{
    ASSERT_TRUE(ends(0, add("2027-03-10", "2027-03-20", {"--reason", "Vacation"})));
    EXPECT_TRUE(ends(0, add("2027-03-10", "2027-03-20", {"--reason", "Vacation"}),
                     "kim@example.org (Kim Sample) has this leave already; nothing was changed.\n"));
    EXPECT_TRUE(ends(1, add("2027-03-10", "2027-03-20", {"--reason", "Illness"}), "already"));
    EXPECT_TRUE(ends(1, add("2027-03-10", "2027-03-20"), "already"));
    EXPECT_EQ(listed().size(), 1U);
}

TEST_F(AdminLeaveTest, UnknownEmployeeIsThreeAndSuggests)
{
    EXPECT_TRUE(ends(3, {"leave", "add", "kin@example.org", "2027-01-01", "2027-01-02"},
                     "Did you mean kim@example.org?"));
    EXPECT_TRUE(ends(3, {"leave", "list", "--employee", "kin@example.org"}, "Did you mean kim@example.org?"));
    EXPECT_TRUE(ends(3, {"leave", "remove", "kin@example.org", "2027-01-01"}));
}

TEST_F(AdminLeaveTest, LeaveIsRemovedByIdentifierOrByItsFirstDay)
{
    ASSERT_TRUE(ends(0, add("2027-03-10", "2027-03-20")));
    ASSERT_TRUE(ends(0, add("2027-04-10", "2027-04-10")));
    const std::string id = listed().at(0).at("id");
    EXPECT_TRUE(ends(0, {"leave", "remove", id},
                     "Removed the leave of kim@example.org (Kim Sample) from 2027-03-10 to 2027-03-20.\n"));
    EXPECT_TRUE(ends(3, {"leave", "remove", id}, "There is no leave \"" + id + "\""));
    EXPECT_TRUE(ends(0, {"leave", "remove", "kim@example.org", "2027-04-10"}, "on 2027-04-10.\n"));
    EXPECT_TRUE(ends(3, {"leave", "remove", "kim@example.org", "2027-04-10"}, "has no leave that begins on"));
    EXPECT_EQ(listed(), nlohmann::json::array());
}

TEST_F(AdminLeaveTest, RemovingByFirstDayLeavesOtherPeopleAlone)
{
    addSecondEmployee();
    addLeave(database, "employee-1", "2027-03-10", "2027-03-20");
    addLeave(database, "employee-2", "2027-03-10", "2027-03-20");
    EXPECT_TRUE(
        ends(3, {"leave", "remove", "kim@example.org", "2027-03-11"})); // within, but not its first day
    EXPECT_TRUE(ends(0, {"leave", "remove", "kim@example.org", "2027-03-10"}));
    ASSERT_EQ(listed().size(), 1U);
    EXPECT_EQ(listed().at(0).at("email"), "alex@example.org");
}

TEST_F(AdminLeaveTest, RemovingByAddressNeedsTheFirstDay)
{
    ASSERT_TRUE(ends(0, add("2027-03-10", "2027-03-20")));
    EXPECT_TRUE(ends(2, {"leave", "remove", "kim@example.org"}, "pass also the first day"));
    EXPECT_EQ(listed().size(), 1U);
}

TEST_F(AdminLeaveTest, ListShowsWhatTouchesTheMonth)
{
    addLeave(database, "employee-1", "2027-01-25", "2027-03-05");
    addLeave(database, "employee-1", "2027-03-31", "2027-04-01");
    EXPECT_EQ(listed({"--month", "2027-02"}).size(), 1U);
    EXPECT_EQ(listed({"--month", "2027-03"}).size(), 2U);
    EXPECT_EQ(listed({"--month", "2027-04"}).size(), 1U);
    EXPECT_EQ(listed({"--month", "2027-05"}).size(), 0U);
    for (const char *month : {"2027-13", "2027", "march", ""})
        EXPECT_TRUE(ends(2, {"leave", "list", "--month", month}, "--month")) << month;
}

TEST_F(AdminLeaveTest, BadDatesAndReasonsAreWrongUsage)
{
    EXPECT_TRUE(ends(2, add("2027-02-29", "2027-03-01"), "FROM"));
    EXPECT_TRUE(ends(2, add("2027-02-28", "2027-02-30"), "TO"));
    EXPECT_TRUE(ends(2, {"leave", "add", "kim@example.org", "2027-02-28"}, "TO"));
    for (const std::string &reason : {std::string{}, std::string{"two\nlines"}, std::string(201, 'x')})
        EXPECT_TRUE(ends(2, add("2027-02-01", "2027-02-02", {"--reason", reason}), "--reason")) << reason;
    EXPECT_EQ(listed().size(), 0U);
}

TEST_F(AdminLeaveTest, OfOverlappingLeaveAtOneTimeOnlyOneIsTaken)
{
    constexpr int administrators = 6;
    std::array<int, administrators> exitCodes{};
    std::vector<std::thread> threads;
    threads.reserve(administrators);
    for (int i = 0; i < administrators; ++i)
        threads.emplace_back([&, i] {
            const std::string last = "2027-03-2" + std::to_string(i);
            exitCodes.at(static_cast<std::size_t>(i)) = admin(add("2027-03-10", last)).exitCode;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::count(exitCodes.begin(), exitCodes.end(), 0), 1);
    EXPECT_EQ(std::count(exitCodes.begin(), exitCodes.end(), 1), administrators - 1);
    EXPECT_EQ(listed().size(), 1U);
}

TEST_F(AdminLeaveTest, WriteThatFailsHalfwayChangesNothingAndSaysSo)
{
    refuseWrites(database, "INSERT ON leaves");
    EXPECT_TRUE(ends(1, add("2027-03-10", "2027-03-20"), "Nothing was changed: "));
    EXPECT_EQ(listed().size(), 0U);
}

TEST_F(AdminLeaveTest, RunningServerShowsLeaveInTheHistoryAtOnce)
{
    passMidnight();
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    const std::string access = token(server.port());
    const std::string yesterday =
        toText(TimeZone::named("UTC")->dayOf(systemClock()()) - std::chrono::days{1});
    const auto statusOfYesterday = [&]() -> std::string {
        const Reply history = send(server.port(), "GET", "/api/attendance/me", access);
        const auto records = history.json();
        const auto found = std::find_if(records.begin(), records.end(), [&](const nlohmann::json &record) {
            return record.at("workDate") == yesterday;
        });
        return found == records.end() ? "none" : found->at("status").get<std::string>();
    };
    EXPECT_EQ(statusOfYesterday(), "ABSENT");
    EXPECT_TRUE(ends(0, add(yesterday, yesterday)));
    EXPECT_EQ(statusOfYesterday(), "ON_LEAVE");
    EXPECT_TRUE(ends(0, {"leave", "remove", "kim@example.org", yesterday}));
    EXPECT_EQ(statusOfYesterday(), "ABSENT");
    EXPECT_TRUE(ends(0, {"holidays", "add", "Head Office", yesterday, "Founders' Day"}));
    EXPECT_EQ(statusOfYesterday(), "none");
}

} // namespace clockwell::server::test
