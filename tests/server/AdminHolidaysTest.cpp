#include "AdminFixture.h"

namespace clockwell::server::test {

class AdminHolidaysTest : public AdminFixture
{
protected:
    AdminHolidaysTest() { addOffice(database, {}); }

    nlohmann::json listed(std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), {"holidays", "list"});
        return adminJson(words);
    }
};

TEST_F(AdminHolidaysTest, HolidayIsAddedListedAndRemoved)
{
    EXPECT_TRUE(ends(0, {"holidays", "add", "head office", "2027-01-01", "New Year"},
                     "Added the holiday New Year on 2027-01-01 (Fri) for Head Office.\n"));
    EXPECT_EQ(admin({"holidays", "list"}).output, "DATE        DAY  OFFICE       NAME\n"
                                                  "2027-01-01  Fri  Head Office  New Year\n");
    EXPECT_EQ(listed(), nlohmann::json::parse(R"([{"date":"2027-01-01","name":"New Year",
        "office":"Head Office","company":"Sample Works"}])"));
    EXPECT_TRUE(ends(0, {"holidays", "remove", "Head Office", "2027-01-01"},
                     "Removed the holiday New Year on 2027-01-01 (Fri) for Head Office.\n"));
    EXPECT_EQ(admin({"holidays", "list"}).output, "No holidays.\n");
}

TEST_F(AdminHolidaysTest, SameHolidayTwiceChangesNothingAndAnotherNameIsRefused)
{
    const std::vector<std::string> words{"holidays", "add", "Head Office", "2027-01-01", "New Year"};
    EXPECT_EQ(adminJson(words).at("changed"), true);
    EXPECT_TRUE(ends(0, words, "is there already; nothing was changed.\n"));
    EXPECT_EQ(adminJson(words).at("changed"), false);
    EXPECT_TRUE(ends(1, {"holidays", "add", "Head Office", "2027-01-01", "Party"},
                     "There is the holiday New Year on 2027-01-01 (Fri) for Head Office already."));
    EXPECT_EQ(listed().size(), 1U);
    EXPECT_EQ(listed().at(0).at("name"), "New Year");
}

TEST_F(AdminHolidaysTest, WhatIsNotThereIsThree)
{
    EXPECT_TRUE(ends(3, {"holidays", "remove", "Head Office", "2027-01-01"},
                     "There is no holiday on 2027-01-01 (Fri) for Head Office."));
    EXPECT_TRUE(ends(3, {"holidays", "add", "Nowhere", "2027-01-01", "New Year"}, "Offices: Head Office."));
    EXPECT_TRUE(ends(3, {"holidays", "list", "--office", "Nowhere"}, "Offices: Head Office."));
}

TEST_F(AdminHolidaysTest, DatesHaveToExist)
{
    for (const char *date :
         {"2027-02-29", "2027-13-01", "2027-1-1", "01.01.2027", "tomorrow", "", "0000-01-01"})
        EXPECT_TRUE(ends(2, {"holidays", "add", "Head Office", date, "New Year"}, "DATE")) << date;
    EXPECT_TRUE(ends(0, {"holidays", "add", "Head Office", "2028-02-29", "Leap day"}));
    EXPECT_EQ(listed().size(), 1U);
}

TEST_F(AdminHolidaysTest, NamesAreOneLineInAnyScript)
{
    for (const char *name : {"", " ", "two\nlines", "\x1b[2J", "a\u202Eb"})
        EXPECT_TRUE(ends(2, {"holidays", "add", "Head Office", "2027-01-01", name}, "NAME")) << name;
    const std::string name = "ראש השנה \"new\" year's; --";
    EXPECT_TRUE(ends(0, {"holidays", "add", "Head Office", "2027-01-01", name}));
    EXPECT_EQ(listed().at(0).at("name"), name);
}

TEST_F(AdminHolidaysTest, ListIsSortedByDayAndFilteredByYearAndOffice)
{
    OfficeSpec second;
    second.id = "office-2";
    second.name = "Harbour";
    addOffice(database, second);
    addHoliday(database, "office-2", "2027-05-01", "May Day");
    addHoliday(database, "office-1", "2027-05-01", "May Day");
    addHoliday(database, "office-1", "2026-12-25", "Christmas");
    addHoliday(database, "office-1", "2028-01-01", "New Year");
    ASSERT_EQ(listed().size(), 4U);
    EXPECT_EQ(listed().at(0).at("date"), "2026-12-25");
    EXPECT_EQ(listed().at(1).at("office"), "Harbour");
    EXPECT_EQ(listed({"--year", "2027"}).size(), 2U);
    EXPECT_EQ(listed({"--year", "2027", "--office", "Harbour"}).size(), 1U);
    EXPECT_EQ(listed({"--office", "office-1"}).size(), 3U);
    for (const char *year : {"0", "-1", "27x", "10000", ""})
        EXPECT_TRUE(ends(2, {"holidays", "list", "--year", year}, "--year")) << year;
}

TEST_F(AdminHolidaysTest, RemovingLeavesOtherDaysAndOtherOfficesAlone)
{
    OfficeSpec second;
    second.id = "office-2";
    second.name = "Harbour";
    addOffice(database, second);
    for (const char *office : {"office-1", "office-2"}) {
        addHoliday(database, office, "2027-05-01", "May Day");
        addHoliday(database, office, "2027-05-02", "Day after");
    }
    EXPECT_TRUE(ends(0, {"holidays", "remove", "Harbour", "2027-05-01"}));
    EXPECT_EQ(listed({"--office", "Harbour"}).size(), 1U);
    EXPECT_EQ(listed({"--office", "Head Office"}).size(), 2U);
}

TEST_F(AdminHolidaysTest, RunningServerClosesTheOfficeAtOnceAndOpensItAgain)
{
    addEmployee(database, {});
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    const std::string access = token(server.port());
    const auto punch = [&] {
        return send(server.port(), "POST", "/api/attendance/punch", access,
                    punchBody(48.0005, 11.0, 10, "d"));
    };
    // Tomorrow as well, should midnight pass meanwhile.
    const Day today = TimeZone::named("UTC")->dayOf(systemClock()());
    const Day tomorrow = today + std::chrono::days{1};
    for (const Day day : {today, tomorrow})
        ASSERT_TRUE(ends(0, {"holidays", "add", "Head Office", toText(day), "Founders' Day"}));
    const Reply refused = punch();
    EXPECT_EQ(refused.error(), "DAY_CLOSED");
    EXPECT_TRUE(contains(refused.message(), "Founders' Day")) << refused.message();
    for (const Day day : {today, tomorrow})
        ASSERT_TRUE(ends(0, {"holidays", "remove", "Head Office", toText(day)}));
    EXPECT_EQ(punch().status, 200);
}

} // namespace clockwell::server::test
