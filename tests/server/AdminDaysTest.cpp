#include "CorrectionFixture.h"

namespace clockwell::server::test {

class AdminDaysTest : public CorrectionFixture
{
protected:
    /// 20 minutes late, left an hour early.
    void workBadly()
    {
        punchAt("2024-06-10T09:50:30Z");
        punchAt("2024-06-10T17:00:00Z");
    }
};

TEST_F(AdminDaysTest, CorrectedDayCountsEverywhere)
{
    workBadly();
    const std::string id = record("2024-06-10").at("id");
    const ProcessResult result = correct("2024-06-10", {"--check-in", "09:20", "--check-out", "18:10"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output,
              "Corrected 2024-06-10 of kim@example.org (Kim Sample): check-in 09:20:00, check-out 18:10:00"
              " (before: check-in 09:50:30, check-out 17:00:00).\n");
    const auto expected = nlohmann::json{{"id", id},
                                         {"workDate", "2024-06-10"},
                                         {"status", "ON_TIME"},
                                         {"checkInAt", "2024-06-10T09:20:00.000Z"},
                                         {"checkOutAt", "2024-06-10T18:10:00.000Z"},
                                         {"lateMinutes", 0},
                                         {"earlyLeaveMinutes", 0},
                                         {"workingMinutes", 530}};
    EXPECT_EQ(record("2024-06-10"), expected); // without distances: where Kim was at these times is not known
    EXPECT_EQ(today().at("record"), expected);
    EXPECT_EQ(summary().at("totalLateMinutes"), 0);
    EXPECT_EQ(summary().at("totalWorkingMinutes"), 530);
    const auto report = adminJson({"report", "2024-06", "--days", "--office", "Head Office"});
    nlohmann::json row;
    for (const auto &candidate : report)
        if (candidate.at("email") == "kim@example.org" && candidate.at("workDate") == "2024-06-10")
            row = candidate;
    EXPECT_EQ(row.at("checkIn"), "09:20:00");
    EXPECT_EQ(row.at("workingMinutes"), 530);
}

TEST_F(AdminDaysTest, PunchesStayAsTheyWere)
{
    workBadly();
    const auto stored = [&] {
        std::string rows;
        for (const auto &row : world.database().read([](Connection &connection) {
                 return connection.all<SingleColumn<std::string>>(
                     "SELECT id || type || at || device_id || latitude || longitude || accuracy || distance"
                     " FROM punches ORDER BY id");
             }))
            rows += row.value + ';';
        return rows;
    };
    const std::string before = stored();
    ASSERT_FALSE(before.empty());
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:20"}).exitCode, 0);
    ASSERT_EQ(voidDay("2024-06-10").exitCode, 0);
    EXPECT_EQ(stored(), before);
    const auto punches = shown("2024-06-10").at("punches");
    ASSERT_EQ(punches.size(), 2U);
    EXPECT_EQ(punches.at(0).at("type"), "IN");
    EXPECT_EQ(punches.at(0).at("time"), "09:50:30");
    EXPECT_NEAR(punches.at(0).at("distanceMeters").get<double>(), 55.6, 0.1);
    EXPECT_EQ(punches.at(1).at("at"), "2024-06-10T17:00:00.000Z");
}

TEST_F(AdminDaysTest, CorrectionStandsBesideThemWithWhoWhenAndWhy)
{
    workBadly();
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:20"}).exitCode, 0);
    const Instant now = systemClock()();
    ASSERT_EQ(admin({"days", "correct", "kim@example.org", "2024-06-10", "--check-in", "09:10", "--reason",
                     "Misread", "--as", "BO@example.org"})
                  .exitCode,
              0);
    const auto corrections = shown("2024-06-10").at("corrections");
    ASSERT_EQ(corrections.size(), 2U); // correcting again keeps both
    EXPECT_EQ(corrections.at(0).at("administrator"), "ada@example.org");
    EXPECT_EQ(corrections.at(0).at("reason"), "Forgotten");
    EXPECT_EQ(corrections.at(0).at("before").at("checkIn"), "09:50:30");
    EXPECT_EQ(corrections.at(0).at("after").at("checkIn"), "09:20:00");
    EXPECT_EQ(corrections.at(1).at("administrator"), "bo@example.org");
    EXPECT_EQ(corrections.at(1).at("reason"), "Misread");
    EXPECT_EQ(corrections.at(1).at("before").at("checkIn"), "09:20:00");
    EXPECT_EQ(corrections.at(1).at("after").at("checkInAt"), "2024-06-10T09:10:00.000Z");
    const auto age = instantOf(corrections.at(1).at("at").get<std::string>()) - now;
    EXPECT_GE(age, std::chrono::milliseconds{0});
    EXPECT_LT(age, std::chrono::minutes{5});
}

TEST_F(AdminDaysTest, ShowPrintsWhatCountsThePunchesAndTheCorrections)
{
    workBadly();
    ASSERT_EQ(correct("2024-06-10", {"--check-out", "18:10"}).exitCode, 0);
    const std::string text = admin({"days", "show", "kim@example.org", "2024-06-10"}).output;
    for (const char *part :
         {"Kim Sample", "2024-06-10 (Mon)", "Head Office (UTC)", "LATE", "Check-in    09:50:30 at 56 m",
          "Check-out   18:10:00\n", "Late        20 min", "OUT    17:00:00  2024-06-10T17:00:00.000Z  56 m",
          "ada@example.org (", "checkOut 17:00:00 -> 18:10:00", "Forgotten"})
        EXPECT_TRUE(contains(text, part)) << part << "\n" << text;
}

TEST_F(AdminDaysTest, WhatIsNotGivenStaysAsItIs)
{
    punchAt("2024-06-10T09:25:30Z");
    at("2024-06-11T08:00:00Z");
    EXPECT_EQ(record("2024-06-10").at("status"), "MISSING_CHECK_OUT");
    ASSERT_EQ(correct("2024-06-10", {"--check-out", "18:00"}).exitCode, 0);
    const auto after = record("2024-06-10");
    EXPECT_EQ(after.at("status"), "ON_TIME");
    EXPECT_EQ(after.at("checkInAt"), "2024-06-10T09:25:30.000Z");
    EXPECT_NEAR(after.at("checkInDistanceMeters").get<double>(), 55.6, 0.1);
    EXPECT_EQ(after.at("checkOutAt"), "2024-06-10T18:00:00.000Z");
    EXPECT_FALSE(after.contains("checkOutDistanceMeters"));
}

TEST_F(AdminDaysTest, DayWithoutPunchesIsPutRightByTheHoursOfTheOffice)
{
    at("2024-06-11T08:00:00Z");
    EXPECT_EQ(record("2024-06-10").at("status"), "ABSENT");
    EXPECT_TRUE(fails(correct("2024-06-10", {"--check-out", "18:00"}), 1, "Pass --check-in."));
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:45", "--check-out", "17:30"}).exitCode, 0);
    const auto after = record("2024-06-10");
    EXPECT_EQ(after.at("status"), "LATE");
    EXPECT_EQ(after.at("lateMinutes"), 15);
    EXPECT_EQ(after.at("earlyLeaveMinutes"), 30);
    EXPECT_FALSE(after.contains("checkInDistanceMeters"));
    EXPECT_EQ(shown("2024-06-10").at("punches").size(), 0U);
    EXPECT_TRUE(shown("2024-06-10").at("corrections").at(0).at("before").is_null());
}

TEST_F(AdminDaysTest, VoidedDayCountsLikeOneWithoutPunchesAndCanBeCorrected)
{
    workBadly();
    execute("UPDATE offices SET check_in_minute = 600"); // the day keeps the hours it had
    at("2024-06-11T08:00:00Z");
    const ProcessResult result = voidDay("2024-06-10");
    EXPECT_EQ(result.output, "Voided 2024-06-10 of kim@example.org (Kim Sample): check-in -, check-out -"
                             " (before: check-in 09:50:30, check-out 17:00:00).\n")
        << result.errors;
    EXPECT_EQ(record("2024-06-10").at("status"), "ABSENT");
    EXPECT_EQ(summary().at("presentDays"), 0);
    EXPECT_EQ(shown("2024-06-10").at("status"), "ABSENT");
    EXPECT_TRUE(shown("2024-06-10").at("corrections").at(0).at("after").is_null());
    EXPECT_TRUE(contains(voidDay("2024-06-10").output, "nothing was changed"));
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:50"}).exitCode, 0);
    EXPECT_EQ(record("2024-06-10").at("status"), "MISSING_CHECK_OUT");
    EXPECT_EQ(record("2024-06-10").at("lateMinutes"), 20);
    EXPECT_EQ(shown("2024-06-10").at("corrections").size(), 2U);
}

TEST_F(AdminDaysTest, NobodyCorrectsTheirOwnAndOnlyTheirCompanysAdministratorsDo)
{
    workBadly();
    const auto as = [this](const std::string &who, const std::string &whose) {
        return admin({"days", "void", whose + "@example.org", "2024-06-10", "--reason", "x", "--as",
                      who + "@example.org"});
    };
    EXPECT_TRUE(fails(as("ada", "ada"), 1, "Nobody corrects their own"));
    EXPECT_TRUE(fails(as("eve", "kim"), 1, "is no administrator of the company of kim@example.org"));
    EXPECT_TRUE(fails(as("kim", "bo"), 1, "has the role EMPLOYEE and is approved"));
    EXPECT_TRUE(fails(as("nobody", "kim"), 3, "There is no employee with the e-mail address nobody"));
    execute("UPDATE employees SET status = 'SUSPENDED' WHERE id = 'ada'");
    EXPECT_TRUE(fails(as("ada", "kim"), 1, "has the role ADMIN and is suspended"));
    execute("UPDATE employees SET company_id = NULL WHERE id IN ('bo', 'employee-1')");
    EXPECT_TRUE(fails(as("bo", "kim"), 1, "is no administrator of the company of"));
    EXPECT_EQ(record("2024-06-10").at("workingMinutes"), 429);
    EXPECT_EQ(query("SELECT CAST(COUNT(*) AS TEXT) FROM audit"), "0");
}

TEST_F(AdminDaysTest, WrongUsageIsTwo)
{
    const std::vector<std::string> start{"days", "correct", "kim@example.org", "2024-06-10"};
    const auto usage = [&](const std::vector<std::string> &more, const std::string &saying) {
        std::vector<std::string> words = start;
        words.insert(words.end(), more.begin(), more.end());
        return fails(admin(words), 2, saying);
    };
    EXPECT_TRUE(usage({"--check-in", "09:00", "--reason", "x"}, "--as"));
    EXPECT_TRUE(usage({"--check-in", "09:00", "--as", "ada@example.org"}, "--reason"));
    EXPECT_TRUE(usage({"--reason", "x", "--as", "ada@example.org"}, "pass --check-in, --check-out or both"));
    EXPECT_TRUE(fails(admin({"days", "void", "kim@example.org", "2024-06-10", "--reason", "x"}), 2, "--as"));
    for (const char *time : {"24:00", "9:00", "09:60", "0900", "09:00:00", "09:00+2", "09:00Z", ""})
        EXPECT_TRUE(usage({"--check-in", time, "--reason", "x", "--as", "ada@example.org"}, "--check-in"))
            << time;
    EXPECT_TRUE(usage({"--check-in", "09:00", "--as", "ada@example.org", "--reason", "a\nb"}, "--reason"));
    EXPECT_TRUE(fails(admin({"days", "show", "kim@example.org", "2024-06-31"}), 2, "DATE"));
}

TEST_F(AdminDaysTest, WhatIsStillToComeIsRefused)
{
    execute("UPDATE offices SET working_weekdays = 127"); // the day may be a Saturday or a Sunday
    const auto now = std::chrono::floor<std::chrono::days>(systemClock()());
    const std::string later = toText(Day{now.time_since_epoch()} + std::chrono::days{2});
    EXPECT_TRUE(fails(correct(later, {"--check-in", "00:00"}), 1, "is still to come"));
    workBadly();
    EXPECT_TRUE(fails(correct("2024-06-10", {"--check-in", "17:00"}), 1,
                      "Check-out at 17:00:00 is not after check-in at 17:00:00."));
    EXPECT_TRUE(fails(correct("2024-06-10", {"--check-in", "10:00", "--check-out", "09:00"}), 1,
                      "is not after check-in"));
}

TEST_F(AdminDaysTest, DayThatIsNotOpenTakesNoFirstCheckIn)
{
    const std::vector<std::string> times{"--check-in", "09:30", "--check-out", "18:00"};
    EXPECT_TRUE(fails(correct("2024-06-08", times), 1, "Head Office is closed that day."));
    EXPECT_TRUE(fails(correct("2024-05-31", times), 1, "The first working day is 2024-06-03."));
    addHoliday(world.database(), "office-1", "2024-06-04", "Storm");
    EXPECT_TRUE(fails(correct("2024-06-04", times), 1, "Head Office has a holiday that day."));
    workBadly();
    addHoliday(world.database(), "office-1", "2024-06-10", "Storm"); // declared after the check-in
    EXPECT_EQ(correct("2024-06-10", times).exitCode, 0);
    execute("UPDATE employees SET office_id = NULL WHERE id = 'employee-1'");
    EXPECT_TRUE(fails(correct("2024-06-10", times), 1, "has no office"));
}

TEST_F(AdminDaysTest, SameMinuteKeepsThePunchAndItsDistance)
{
    workBadly();
    const auto before = record("2024-06-10");
    const ProcessResult same = correct("2024-06-10", {"--check-in", "09:50", "--check-out", "17:00"});
    EXPECT_EQ(same.exitCode, 0);
    EXPECT_TRUE(contains(same.output, "is so already; nothing was changed.")) << same.output;
    EXPECT_EQ(query("SELECT CAST(COUNT(*) AS TEXT) FROM audit"), "0");
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:50", "--check-out", "18:00"}).exitCode, 0);
    EXPECT_EQ(record("2024-06-10").at("checkInAt"), before.at("checkInAt"));
    EXPECT_EQ(record("2024-06-10").at("checkInDistanceMeters"), before.at("checkInDistanceMeters"));
}

TEST_F(AdminDaysTest, TimesAreThoseOfTheOfficesClockAlsoWhenItChanges)
{
    execute("UPDATE offices SET time_zone = 'Europe/Berlin', working_weekdays = 127");
    execute("UPDATE employees SET joined_on = '2024-01-01'");
    EXPECT_TRUE(fails(correct("2024-03-31", {"--check-in", "02:30"}), 1,
                      "There is no 02:30 on 2024-03-31 in Europe/Berlin: a clock change skips it."));
    EXPECT_TRUE(fails(correct("2024-10-27", {"--check-in", "02:30"}), 1,
                      "The clock shows 02:30 on 2024-10-27 in Europe/Berlin twice. Pass 02:30+02:00 for the"
                      " first time or 02:30+01:00 for the second."));
    const auto times = [this] {
        const auto day = shown("2024-10-27");
        return day.at("checkInAt").get<std::string>() + " " + day.at("checkOutAt").get<std::string>();
    };
    ASSERT_EQ(correct("2024-10-27", {"--check-in", "02:30+02:00", "--check-out", "02:30+01:00"}).exitCode, 0);
    EXPECT_EQ(times(), "2024-10-27T00:30:00.000Z 2024-10-27T01:30:00.000Z");
    EXPECT_EQ(shown("2024-10-27").at("workingMinutes"), 60);
    EXPECT_EQ(shown("2024-10-27").at("checkOut"), "02:30:00");
    EXPECT_TRUE(fails(correct("2024-10-27", {"--check-out", "09:00+02:00"}), 1, "pass 09:00+01:00."));
    ASSERT_EQ(correct("2024-10-27", {"--check-in", "00:00", "--check-out", "23:59"}).exitCode, 0);
    EXPECT_EQ(times(), "2024-10-26T22:00:00.000Z 2024-10-27T22:59:00.000Z");
    EXPECT_EQ(shown("2024-10-27").at("workingMinutes"), 24 * 60 + 59); // a day of 25 hours
}

TEST_F(AdminDaysTest, RowOfALaterDayCanBeShownAndVoided)
{
    punchAt("2099-06-10T09:00:00Z");
    EXPECT_EQ(shown("2099-06-10").at("checkIn"), "09:00:00");
    EXPECT_EQ(voidDay("2099-06-10").exitCode, 0);
    EXPECT_TRUE(shown("2099-06-10").at("checkIn").is_null());
    EXPECT_TRUE(shown("2099-06-10").at("status").is_null());
}

TEST_F(AdminDaysTest, CorrectionWithoutItsEntryInTheAuditIsNotMade)
{
    workBadly();
    refuseWrites(world.database(), "INSERT ON audit");
    const auto before = record("2024-06-10");
    EXPECT_TRUE(fails(correct("2024-06-10", {"--check-in", "09:20"}), 1, "Nothing was changed: "));
    EXPECT_TRUE(fails(voidDay("2024-06-10"), 1, "Nothing was changed: "));
    EXPECT_EQ(record("2024-06-10"), before);
}

} // namespace clockwell::server::test
