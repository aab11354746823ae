#include "AdminFixture.h"
#include "TestDatabase.h"

#include <algorithm>

namespace clockwell::server::test {

class AdminOfficesTest : public AdminFixture
{
protected:
    static std::vector<std::string> harbour(const std::vector<std::string> &more = {})
    {
        std::vector<std::string> words{
            "offices",     "add",           "Harbour",    "--latitude", "54.5",        "--longitude", "-9.25",
            "--time-zone", "Europe/Berlin", "--check-in", "08:00",      "--check-out", "16:30"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    static std::vector<std::string> edit(const std::vector<std::string> &more)
    {
        std::vector<std::string> words{"offices", "edit", "Harbour"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    nlohmann::json shown(const std::string &name = "Harbour") const
    {
        return adminJson({"offices", "show", name});
    }
};

TEST_F(AdminOfficesTest, NewOfficeHasWhatWasGivenAndUsualRulesOtherwise)
{
    EXPECT_TRUE(ends(0, harbour(), "Added the office Harbour of Sample Works.\n"));
    nlohmann::json office = shown();
    EXPECT_EQ(office.at("id").get<std::string>().size(), 36U);
    office.erase("id");
    EXPECT_EQ(office, nlohmann::json::parse(R"({"name":"Harbour","company":"Sample Works","latitude":54.5,
        "longitude":-9.25,"radiusMeters":150,"maxAccuracyMeters":100,"timeZone":"Europe/Berlin",
        "checkIn":"08:00","checkOut":"16:30","graceMinutes":10,"fullDayMinutes":300,
        "workingDays":["Mon","Tue","Wed","Thu","Fri"]})"));
}

TEST_F(AdminOfficesTest, EveryRuleOfANewOfficeIsTaken)
{
    EXPECT_TRUE(ends(0, harbour({"--radius", "75", "--max-accuracy", "40", "--grace", "0", "--full-day",
                                 "420", "--working-days", "Mon,wed,Sat", "--company", "sw"})));
    const nlohmann::json office = shown();
    EXPECT_EQ(office.at("radiusMeters"), 75);
    EXPECT_EQ(office.at("maxAccuracyMeters"), 40);
    EXPECT_EQ(office.at("graceMinutes"), 0);
    EXPECT_EQ(office.at("fullDayMinutes"), 420);
    EXPECT_EQ(office.at("workingDays"), nlohmann::json({"Mon", "Wed", "Sat"}));
}

TEST_F(AdminOfficesTest, BadValuesAreWrongUsageAndNameTheOption)
{
    const std::vector<std::pair<std::string, std::vector<std::string>>> bad{
        {"--latitude", {"90.1", "-91", "nan", "inf", "54,5", "", "north", "1e999"}},
        {"--longitude", {"180.5", "-181", "NaN", "9.5E"}},
        {"--radius", {"0", "-5", "nan", "150.5", "0x10", "100001", "", "99999999999999999999"}},
        {"--max-accuracy", {"0", "-1", "1e2"}},
        {"--grace", {"-1", "1441", "ten"}},
        {"--full-day", {"-1", "1441"}},
        {"--time-zone", {"Europe/Nowhere", "", "Berlin", "Etc/Unknown", std::string(65, 'A')}},
        {"--check-in", {"24:00", "8:00", "08:60", "08.00", "25:00", "-1:00", "noon"}},
        {"--check-out", {"00:00", "24:01", "1730", "17:30:00"}},
        {"--working-days", {"", "Mon-", "-Fri", "Mon,,Tue", "Mon-Fri-Sun", "Xyz", "1-5", ","}},
        {"--name", {"", "  ", "two\nlines", "tab\there", std::string(201, 'x'), "\xFF\xFE", "a\u202Eb"}},
    };
    ASSERT_TRUE(ends(0, harbour()));
    const nlohmann::json before = shown();
    for (const auto &[option, texts] : bad)
        for (const std::string &text : texts)
            EXPECT_TRUE(ends(2, edit({option, text}), option)) << option << " " << text;
    EXPECT_EQ(shown(), before);
}

TEST_F(AdminOfficesTest, EdgesOfTheRangesAreTaken)
{
    ASSERT_TRUE(ends(0, harbour()));
    EXPECT_TRUE(ends(0, edit({"--latitude", "-90", "--longitude", "180", "--radius", "1", "--grace", "1440",
                              "--full-day", "0", "--check-in", "00:00", "--check-out", "24:00"})));
    EXPECT_EQ(shown().at("latitude"), -90);
    EXPECT_EQ(shown().at("checkOut"), "24:00");
}

TEST_F(AdminOfficesTest, HoursOverMidnightAreRefusedAlsoWhenOnlyOneOfThemChanges)
{
    std::vector<std::string> overnight = harbour();
    std::replace(overnight.begin(), overnight.end(), std::string{"08:00"}, std::string{"22:00"});
    EXPECT_TRUE(ends(1, overnight, "Check-out at 16:30 is not after check-in at 22:00."));
    ASSERT_TRUE(ends(0, harbour()));
    EXPECT_TRUE(ends(1, edit({"--check-in", "22:00", "--check-out", "06:00"}),
                     "Check-out at 06:00 is not after check-in at 22:00."));
    EXPECT_TRUE(ends(1, edit({"--check-in", "16:30"}), "Check-out at 16:30 is not after check-in at 16:30."));
    EXPECT_TRUE(ends(1, edit({"--check-out", "07:59"})));
    EXPECT_EQ(shown().at("checkIn"), "08:00");
    EXPECT_EQ(shown().at("checkOut"), "16:30");
}

TEST_F(AdminOfficesTest, NewOfficeNeedsPlaceZoneAndHours)
{
    for (const char *option : {"--latitude", "--longitude", "--time-zone", "--check-in", "--check-out"}) {
        std::vector<std::string> words = harbour();
        const auto at = std::find(words.begin(), words.end(), option);
        words.erase(at, at + 2);
        EXPECT_TRUE(ends(2, words, option));
    }
    EXPECT_EQ(admin({"offices", "list"}).output, "No offices.\n");
}

TEST_F(AdminOfficesTest, EditSaysWhatChangedAndKeepsTheRest)
{
    ASSERT_TRUE(ends(0, harbour()));
    nlohmann::json expected = shown();
    EXPECT_TRUE(
        ends(0, edit({"--radius", "200", "--working-days", "Sat-Mon"}),
             "Changed the office Harbour: radius 150 m -> 200 m, working days Mon-Fri -> Mon,Sat,Sun.\n"));
    expected["radiusMeters"] = 200;
    expected["workingDays"] = {"Mon", "Sat", "Sun"};
    EXPECT_EQ(shown(), expected);
    EXPECT_TRUE(ends(0, edit({"--radius", "200"}), "is like that already; nothing was changed.\n"));
    EXPECT_EQ(adminJson(edit({"--radius", "200"})).at("changed"), false);
    EXPECT_EQ(adminJson(edit({"--radius", "201"})).at("office").at("radiusMeters"), 201);
}

TEST_F(AdminOfficesTest, EditWithoutAWishIsWrongUsage)
{
    ASSERT_TRUE(ends(0, harbour()));
    EXPECT_TRUE(ends(2, edit({}), "pass what to change"));
}

TEST_F(AdminOfficesTest, NameOfAnotherOfficeOfTheCompanyIsRefused)
{
    ASSERT_TRUE(ends(0, harbour()));
    EXPECT_TRUE(ends(1, harbour(), "The company Sample Works has an office Harbour already."));
    addOffice(database, {});
    EXPECT_TRUE(ends(1, edit({"--name", "head office"}), "has an office Head Office already."));
    EXPECT_TRUE(ends(0, edit({"--name", "HARBOUR"}), "name Harbour -> HARBOUR"));
    EXPECT_EQ(adminJson({"offices", "list"}).size(), 2U);
}

TEST_F(AdminOfficesTest, TwoCompaniesMayHaveOfficesOfOneName)
{
    ASSERT_TRUE(ends(0, harbour()));
    ASSERT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"}));
    EXPECT_TRUE(ends(1, harbour(), "Pass --company with one of these codes: OW, SW."));
    EXPECT_TRUE(ends(3, harbour({"--company", "XX"}), "There is no company with the code \"XX\""));
    EXPECT_TRUE(ends(0, harbour({"--company", "OW"}), "of Other Works"));
    EXPECT_TRUE(ends(1, {"offices", "show", "Harbour"}, "Several offices are called"));
    EXPECT_EQ(adminJson({"offices", "list"}).size(), 2U);
}

TEST_F(AdminOfficesTest, NamesAreKeptAsTheyAreWrittenInAnyScript)
{
    for (const std::string name :
         {"O'Hara \"Nord\"; DROP TABLE offices", "משרד ראשי", "本社ビル", "Büro – 2. OG"}) {
        std::vector<std::string> words = harbour();
        words[2] = " " + name + " ";
        EXPECT_TRUE(ends(0, words));
        EXPECT_EQ(shown(name).at("name"), name);
    }
    EXPECT_EQ(adminJson({"offices", "list"}).size(), 4U);
}

TEST_F(AdminOfficesTest, UnknownOfficeIsThreeAndNamesTheOffices)
{
    ASSERT_TRUE(ends(0, harbour()));
    EXPECT_TRUE(ends(3, {"offices", "show", "Nowhere"}, "Offices: Harbour."));
    EXPECT_TRUE(ends(3, {"offices", "edit", "Nowhere", "--radius", "9"}, "Offices: Harbour."));
}

TEST_F(AdminOfficesTest, ListIsAnAlignedTable)
{
    EXPECT_EQ(admin({"offices", "list"}).output, "No offices.\n");
    EXPECT_EQ(adminJson({"offices", "list"}), nlohmann::json::array());
    ASSERT_TRUE(ends(0, harbour()));
    EXPECT_EQ(admin({"offices", "list"}).output,
              "NAME     COMPANY       HOURS        DAYS     TIME ZONE      RADIUS\n"
              "Harbour  Sample Works  08:00-16:30  Mon-Fri  Europe/Berlin  150 m\n");
}

TEST_F(AdminOfficesTest, RunningServerGoesByTheNewRulesAtOnce)
{
    addOffice(database, {});
    addEmployee(database, {});
    const ServerProcess server{file};
    ASSERT_NE(server.port(), 0);
    const std::string access = token(server.port());
    const auto punch = [&] {
        return send(server.port(), "POST", "/api/attendance/punch", access, punchBody(48.002, 11.0, 10, "d"));
    };
    EXPECT_EQ(punch().error(), "OUTSIDE_GEOFENCE"); // 222 metres away
    EXPECT_TRUE(ends(0, {"offices", "edit", "Head Office", "--radius", "300", "--check-in", "07:15", "--name",
                         "Main House"}));
    const nlohmann::json office =
        send(server.port(), "GET", "/api/attendance/today", access).json().at("office");
    EXPECT_EQ(office.at("name"), "Main House");
    EXPECT_EQ(office.at("checkInTime"), "07:15");
    EXPECT_EQ(office.at("radiusMeters"), 300);
    EXPECT_EQ(punch().status, 200);
}

TEST_F(AdminOfficesTest, DatabaseHeldTooLongChangesNothing)
{
    ASSERT_TRUE(ends(0, harbour()));
    const nlohmann::json before = shown();
    WriteBlocker blocker{file};
    const ProcessResult result = admin(edit({"--radius", "9"}));
    blocker.end();
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.errors, testsPostgres() ? "others held" : "database is locked"))
        << result.errors;
    EXPECT_EQ(shown(), before);
}

class AdminCompaniesTest : public AdminFixture
{};

TEST_F(AdminCompaniesTest, CompanyIsAddedOnceAndListed)
{
    EXPECT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"},
                     "Added the company Other Works with the code OW.\n"));
    EXPECT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", "OW"}, "nothing was changed.\n"));
    EXPECT_EQ(admin({"companies", "list"}).output, "NAME          CODE\n"
                                                   "Other Works   OW\n"
                                                   "Sample Works  SW\n");
    EXPECT_EQ(adminJson({"companies", "list"}).at(0),
              nlohmann::json({{"name", "Other Works"}, {"code", "OW"}}));
}

TEST_F(AdminCompaniesTest, CodeOfAnotherCompanyIsRefusedInAnyCase)
{
    EXPECT_TRUE(ends(1, {"companies", "add", "Other Works", "--code", "sw"},
                     "The company Sample Works has the code SW already."));
    EXPECT_EQ(adminJson({"companies", "list"}).size(), 1U);
}

TEST_F(AdminCompaniesTest, NameAndCodeAreOneLineEach)
{
    EXPECT_TRUE(ends(2, {"companies", "add", "Other Works"}, "--code"));
    EXPECT_TRUE(ends(2, {"companies", "add", "Other\nWorks", "--code", "OW"}, "NAME"));
    EXPECT_TRUE(ends(2, {"companies", "add", "Other Works", "--code", " "}, "--code"));
    EXPECT_TRUE(ends(2, {"companies", "add", "Other Works", "--code", std::string(65, 'C')}, "--code"));
    EXPECT_TRUE(ends(0, {"companies", "add", "Other Works", "--code", std::string(64, 'C')}));
}

TEST_F(AdminCompaniesTest, FreshInstallationIsSetUpWithoutADemonstration)
{
    const std::string fresh = databaseIn(folder, "fresh.db");
    const ServerProcess server{fresh};
    ASSERT_NE(server.port(), 0);
    const auto run = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"admin", "--database", fresh});
        return runServer(words).exitCode;
    };
    EXPECT_EQ(run({"companies", "add", "New Works", "--code", "NEW"}), 0);
    EXPECT_EQ(run({"offices", "add", "Quay", "--latitude", "1.5", "--longitude", "2.5", "--time-zone", "UTC",
                   "--check-in", "09:00", "--check-out", "17:00"}),
              0);
    const Reply signup =
        send(server.port(), "POST", "/api/auth/signup", "",
             R"({"fullName":"Kim Sample","email":"kim@example.org","password":"Correct-Horse-7",
                                  "instituteCode":"new","deviceId":"d","deviceModel":"P","osVersion":"1"})");
    EXPECT_LT(signup.status, 300) << signup.body;
    EXPECT_EQ(run({"employees", "approve", "kim@example.org", "--even-unverified"}), 0);
    const ProcessResult kim =
        runServer({"admin", "--database", fresh, "employees", "show", "kim@example.org", "--json"});
    EXPECT_EQ(nlohmann::json::parse(kim.output).at("office"), "Quay");
    EXPECT_EQ(nlohmann::json::parse(kim.output).at("company"), "New Works");
}

} // namespace clockwell::server::test
