#pragma once

#include "Contains.h"
#include "ServerProcess.h"
#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

inline const std::string summaryHeader =
    "month,office,fullName,email,accountStatus,presentDays,lateDays,totalLateMinutes,"
    "absentDays,leaveDays,halfDays,totalWorkingMinutes,lastDay\r\n";

inline ProcessResult report(const std::string &database, std::vector<std::string> words)
{
    words.insert(words.begin(), {"admin", "--database", database, "report"});
    return runServer(words);
}

/// A server in Berlin with two weeks of May 2026 behind it: on time, late, half a day, never checked out, on
/// leave, absent and a holiday.
class AdminReportTest : public testing::Test
{
protected:
    AdminReportTest()
    {
        OfficeSpec office;
        office.zone = "Europe/Berlin";
        office.weekdays = 0b0011111;
        addOffice(world.database(), office);
        EmployeeSpec kim;
        kim.joinedOn = "2026-05-18";
        addEmployee(world.database(), kim);
        day("2026-05-18T07:15:30Z", "2026-05-18T16:05:00Z");
        day("2026-05-19T07:55:00Z", "2026-05-19T16:00:00Z"); // 25 minutes late
        day("2026-05-20T07:30:00Z", "2026-05-20T09:00:00Z");
        day("2026-05-21T07:30:00Z", "");
        addLeave(world.database(), "employee-1", "2026-05-22", "2026-05-22");
        addHoliday(world.database(), "office-1", "2026-05-25", "Whit Monday");
        world.setNow("2026-06-10T09:00:00Z");
    }

    void day(const std::string &checkIn, const std::string &checkOut)
    {
        for (const std::string &at : {checkIn, checkOut}) {
            if (at.empty())
                continue;
            world.setNow(at);
            EXPECT_EQ(world.punch(world.token()).status, 200) << at;
        }
    }
    ProcessResult may(std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), "2026-05");
        return report(world.databaseFile(), words);
    }

    World world{"2026-05-18T06:00:00Z"};
};

} // namespace clockwell::server::test
