#include "PunchFixture.h"

namespace clockwell::server::test {

/// The day that is punched is not the newest one that is known.
class PunchDayTest : public PunchFixture
{
protected:
    nlohmann::json history() const { return world.get("/api/attendance/me", token).json(); }
    void moveOfficeTo(const std::string &zone)
    {
        world.database().write([&](Connection &connection) {
            connection.execute("UPDATE offices SET time_zone = :zone WHERE id = 'office-1'", zone);
        });
    }
};

TEST_F(PunchDayTest, ClockThatWasADayAheadDoesNotStopToday)
{
    at("2026-06-11T09:25:00Z");
    EXPECT_EQ(world.punch(token).json().at("type"), "IN");
    at("2026-06-10T09:20:00Z"); // it is right again
    const Reply in = world.punch(token);
    ASSERT_EQ(in.status, 200) << in.body;
    EXPECT_EQ(in.json().at("type"), "IN");
    EXPECT_EQ(in.json().at("checkInAt"), "2026-06-10T09:20:00.000Z");
    world.advance(std::chrono::seconds{30});
    EXPECT_EQ(world.punch(token).body, in.body); // a retry
    EXPECT_EQ(today().at("canCheckOut"), true);
    at("2026-06-10T17:20:00Z");
    const Reply out = world.punch(token);
    ASSERT_EQ(out.status, 200) << out.body;
    EXPECT_EQ(out.json().at("workingMinutes"), 480);
    world.advance(std::chrono::seconds{30});
    EXPECT_EQ(world.punch(token).body, out.body);
    world.advance(std::chrono::seconds{90});
    EXPECT_EQ(world.punch(token).error(), "ALREADY_COMPLETE");
    EXPECT_EQ(rows("punches"), 3);
}

TEST_F(PunchDayTest, LaterDayIsNeitherTodayNorHistoryNorSummary)
{
    at("2026-06-11T09:25:00Z");
    world.punch(token);
    at("2026-06-10T09:20:00Z");
    EXPECT_EQ(today().at("workDate"), "2026-06-10");
    EXPECT_EQ(today().at("canCheckIn"), true);
    EXPECT_FALSE(today().contains("record"));
    EXPECT_EQ(history().at(0).at("workDate"), "2026-06-09");
    const auto summary = [this] {
        return world.get("/api/attendance/me/summary?month=2026-06", token).json().at("presentDays");
    };
    EXPECT_EQ(summary(), 0);
    world.punch(token);
    EXPECT_EQ(today().at("record").at("checkInAt"), "2026-06-10T09:20:00.000Z");
    EXPECT_EQ(history().at(0).at("workDate"), "2026-06-10");
    EXPECT_EQ(summary(), 1);
}

TEST_F(PunchDayTest, OfficeThatMovedWestIsPunchedOnItsOwnDay)
{
    moveOfficeTo("Asia/Tokyo");
    at("2026-06-10T23:30:00Z"); // the 11th at 08:30 there
    EXPECT_EQ(world.punch(token).status, 200);
    moveOfficeTo("America/Los_Angeles");
    at("2026-06-11T05:00:00Z"); // the 10th at 22:00 there
    const Reply in = world.punch(token);
    ASSERT_EQ(in.status, 200) << in.body;
    EXPECT_EQ(in.json().at("type"), "IN");
    at("2026-06-11T06:00:00Z");
    EXPECT_EQ(world.punch(token).json().at("type"), "OUT");
    EXPECT_EQ(today().at("workDate"), "2026-06-10");
    EXPECT_EQ(rows("attendance"), 2);
}

TEST_F(PunchDayTest, PersonWhoMovedToAnOfficeFurtherWestPunchesThere)
{
    moveOfficeTo("Pacific/Kiritimati");
    addOffice(world.database(), {.id = "west", .name = "West", .zone = "Pacific/Pago_Pago"});
    at("2026-06-10T10:30:00Z"); // the 11th at 00:30 there, the 9th at 23:30 in the west
    const Reply east = world.punch(token);
    EXPECT_EQ(east.status, 200);
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET office_id = 'west'"); });
    world.advance(std::chrono::seconds{20});
    const Reply retry = world.punch(token); // still the same punch, though the date is two days earlier here
    EXPECT_EQ(retry.json().at("type"), "IN");
    EXPECT_EQ(retry.json().at("checkInAt"), "2026-06-10T10:30:00.000Z");
    EXPECT_EQ(rows("punches"), 1);
    at("2026-06-10T10:40:00Z");
    const Reply west = world.punch(token);
    ASSERT_EQ(west.status, 200) << west.body;
    EXPECT_EQ(west.json().at("type"), "IN");
    EXPECT_EQ(today().at("workDate"), "2026-06-09");
}

TEST_F(PunchDayTest, RetryOfACheckOutIsKnownAlsoAfterTheClockWasSetBack)
{
    at("2026-06-10T09:25:00Z");
    world.punch(token);
    at("2026-06-10T09:23:00Z"); // set back by more than it is late
    const Reply out = world.punch(token);
    EXPECT_EQ(out.json().at("type"), "OUT");
    world.advance(std::chrono::seconds{50}); // near to the check-in by now
    EXPECT_EQ(world.punch(token).body, out.body);
}

} // namespace clockwell::server::test
