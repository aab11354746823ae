#include "PunchFixture.h"

namespace clockwell::server::test {

class WorkDayTest : public PunchFixture
{};

TEST_F(WorkDayTest, HolidayIsClosed)
{
    addHoliday(world.database(), "office-1", "2026-06-10", "Founders' Day");
    EXPECT_EQ(today().at("open"), false);
    EXPECT_EQ(today().at("canCheckIn"), false);
    const Reply reply = world.punch(token);
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.error(), "DAY_CLOSED");
    EXPECT_EQ(reply.message(), "Head Office is closed today: Founders' Day.");
}

TEST_F(WorkDayTest, WeekendIsClosed)
{
    addOffice(world.database(), {.id = "weekdays", .name = "Annex", .weekdays = 31});
    addEmployee(world.database(), {.id = "e2", .officeId = "weekdays", .email = "two@example.org"});
    world.setNow("2026-06-13T10:00:00Z"); // a Saturday
    EXPECT_EQ(world.punch(world.token("two@example.org")).message(), "Annex is closed today.");
    world.setNow("2026-06-15T10:00:00Z");
    EXPECT_EQ(world.punch(world.token("two@example.org")).status, 200);
}

TEST_F(WorkDayTest, CheckOutWorksWhenTheDayWasClosedAfterTheCheckIn)
{
    world.punch(token);
    addHoliday(world.database(), "office-1", "2026-06-10", "Storm");
    at("2026-06-10T15:00:00Z");
    EXPECT_EQ(today().at("canCheckOut"), true);
    EXPECT_EQ(world.punch(token).json().at("type"), "OUT");
}

TEST_F(WorkDayTest, NobodyChecksInBeforeTheFirstWorkingDay)
{
    addEmployee(world.database(), {.id = "e2", .email = "two@example.org", .joinedOn = "2026-07-01"});
    const Reply reply = world.punch(world.token("two@example.org"));
    EXPECT_EQ(reply.error(), "DAY_CLOSED");
    EXPECT_EQ(reply.message(), "Your first working day is 2026-07-01.");
}

TEST_F(WorkDayTest, EmployeeOnLeaveMayStillComeIn)
{
    addLeave(world.database(), "employee-1", "2026-06-10", "2026-06-10");
    EXPECT_EQ(today().at("canCheckIn"), true);
    EXPECT_EQ(world.punch(token).status, 200);
}

TEST_F(WorkDayTest, PunchAfterMidnightBeginsTheNewDay)
{
    world.punch(token);
    at("2026-06-11T00:00:00Z");
    EXPECT_EQ(today().at("workDate"), "2026-06-11");
    EXPECT_FALSE(today().contains("record"));
    EXPECT_EQ(world.punch(token).json().at("type"), "IN");
    const auto history = world.get("/api/attendance/me", token).json();
    EXPECT_EQ(history.at(0).at("workDate"), "2026-06-11");
    EXPECT_EQ(history.at(1).at("status"), "MISSING_CHECK_OUT");
}

TEST_F(WorkDayTest, WorkDateIsTheOfficesNotUtcs)
{
    addOffice(world.database(), {.id = "ny", .name = "East", .zone = "America/New_York"});
    addOffice(world.database(), {.id = "ktm", .name = "Hill", .zone = "Asia/Kathmandu"});
    addEmployee(world.database(), {.id = "e2", .officeId = "ny", .email = "ny@example.org"});
    addEmployee(world.database(), {.id = "e3", .officeId = "ktm", .email = "ktm@example.org"});
    world.setNow("2026-12-31T18:20:00Z");
    const auto dayOf = [&](const char *email) {
        return world.get("/api/attendance/today", world.token(email)).json().at("workDate");
    };
    EXPECT_EQ(dayOf("ny@example.org"), "2026-12-31");
    EXPECT_EQ(dayOf("ktm@example.org"), "2027-01-01");
}

TEST_F(WorkDayTest, LatenessFollowsTheClockChange)
{
    addOffice(world.database(), {.id = "b", .name = "Mitte", .zone = "Europe/Berlin"});
    addEmployee(world.database(), {.id = "e2", .officeId = "b", .email = "b@example.org"});
    world.setNow("2026-03-29T07:45:00Z"); // 09:45 summer time, the first day of it
    EXPECT_EQ(world.punch(world.token("b@example.org")).json().at("lateMinutes"), 15);
    world.setNow("2026-10-25T08:30:00Z"); // 09:30 standard time again
    EXPECT_EQ(world.punch(world.token("b@example.org")).json().at("lateMinutes"), 0);
}

TEST_F(WorkDayTest, ChangedHoursDoNotRewriteADayAlreadyBegun)
{
    at("2026-06-10T09:50:00Z");
    world.punch(token);
    world.database().write([](Connection &connection) {
        connection.execute("UPDATE offices SET check_in_minute = 700, check_out_minute = 800");
    });
    EXPECT_EQ(today().at("record").at("lateMinutes"), 20);
}

} // namespace clockwell::server::test
