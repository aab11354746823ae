#include "CorrectionFixture.h"

namespace clockwell::server::test {

/// What counts of a day says which punch is due, whoever put it there.
class PunchAfterCorrectionTest : public CorrectionFixture
{};

TEST_F(PunchAfterCorrectionTest, CheckOutBelongsToTheCorrectedCheckIn)
{
    punchAt("2024-06-10T10:00:00Z");
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:30"}).exitCode, 0);
    EXPECT_EQ(today().at("canCheckOut"), true);
    at("2024-06-10T18:00:00Z");
    const auto out = world.punch(token).json();
    EXPECT_EQ(out.at("type"), "OUT");
    EXPECT_EQ(out.at("checkInAt"), "2024-06-10T09:30:00.000Z");
    EXPECT_EQ(out.at("workingMinutes"), 510);
    EXPECT_EQ(out.at("lateMinutes"), 0);
}

TEST_F(PunchAfterCorrectionTest, CheckOutFollowsACheckInThatOnlyTheAdministratorKnew)
{
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:30"}).exitCode, 0);
    EXPECT_EQ(today().at("canCheckOut"), true);
    at("2024-06-10T18:00:00Z");
    const Reply out = world.punch(token);
    EXPECT_EQ(out.json().at("type"), "OUT");
    world.advance(std::chrono::seconds{30});
    EXPECT_EQ(world.punch(token).body, out.body); // a retry
    const auto record = today().at("record");
    EXPECT_FALSE(record.contains("checkInDistanceMeters"));
    EXPECT_TRUE(record.contains("checkOutDistanceMeters"));
}

TEST_F(PunchAfterCorrectionTest, DayThatWasCheckedOutByCorrectionIsComplete)
{
    punchAt("2024-06-10T09:30:00Z");
    ASSERT_EQ(correct("2024-06-10", {"--check-out", "17:00"}).exitCode, 0);
    at("2024-06-10T17:10:00Z");
    EXPECT_EQ(today().at("canCheckOut"), false);
    EXPECT_EQ(world.punch(token).error(), "ALREADY_COMPLETE");
}

TEST_F(PunchAfterCorrectionTest, RetryOfAPunchThatWasCorrectedIsNoNewPunch)
{
    punchAt("2024-06-10T10:00:00Z");
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:30"}).exitCode, 0);
    world.advance(std::chrono::seconds{60});
    const auto again = world.punch(token).json();
    EXPECT_EQ(again.at("type"), "IN");
    EXPECT_EQ(again.at("checkInAt"), "2024-06-10T09:30:00.000Z");
    EXPECT_EQ(today().at("canCheckOut"), true);
}

TEST_F(PunchAfterCorrectionTest, VoidedDayTakesAnotherCheckInAndCheckOut)
{
    punchAt("2024-06-10T08:00:00Z");
    ASSERT_EQ(voidDay("2024-06-10").exitCode, 0);
    EXPECT_EQ(today().at("canCheckIn"), true);
    EXPECT_FALSE(today().contains("record"));
    world.advance(std::chrono::seconds{30}); // the voided punch is no punch to repeat
    const Reply in = world.punch(token);
    EXPECT_EQ(in.json().at("type"), "IN");
    EXPECT_EQ(in.json().at("checkInAt"), "2024-06-10T08:00:30.000Z");
    world.advance(std::chrono::seconds{30});
    EXPECT_EQ(world.punch(token).body, in.body);
    punchAt("2024-06-10T18:00:00Z");
    EXPECT_EQ(record("2024-06-10").at("workingMinutes"), 599);
    EXPECT_EQ(shown("2024-06-10").at("punches").size(), 3U); // the voided one is kept
    at("2024-06-10T18:10:00Z");
    EXPECT_EQ(world.punch(token).error(), "ALREADY_COMPLETE");
}

TEST_F(PunchAfterCorrectionTest, ClosedDayStaysClosedAfterItWasVoided)
{
    punchAt("2024-06-10T08:00:00Z");
    addHoliday(world.database(), "office-1", "2024-06-10", "Storm");
    ASSERT_EQ(voidDay("2024-06-10").exitCode, 0);
    at("2024-06-10T09:00:00Z");
    EXPECT_EQ(world.punch(token).error(), "DAY_CLOSED");
}

TEST_F(PunchAfterCorrectionTest, CheckOutByMistakeIsTakenBackByVoidingAndCorrecting)
{
    punchAt("2024-06-10T09:30:00Z");
    punchAt("2024-06-10T09:40:00Z");
    ASSERT_EQ(voidDay("2024-06-10").exitCode, 0);
    ASSERT_EQ(correct("2024-06-10", {"--check-in", "09:30"}).exitCode, 0);
    at("2024-06-10T18:00:00Z");
    const Reply out = world.punch(token);
    EXPECT_EQ(out.json().at("type"), "OUT");
    EXPECT_EQ(out.json().at("workingMinutes"), 510);
    world.advance(std::chrono::seconds{30});
    EXPECT_EQ(world.punch(token).body, out.body);
}

} // namespace clockwell::server::test
