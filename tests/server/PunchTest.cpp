#include "PunchFixture.h"

namespace clockwell::server::test {

class PunchTest : public PunchFixture
{};

TEST_F(PunchTest, FirstPunchOfTheDayChecksIn)
{
    const Reply reply = world.punch(token);
    ASSERT_EQ(reply.status, 200);
    const auto json = reply.json();
    EXPECT_EQ(json.at("type"), "IN");
    EXPECT_EQ(json.at("inside"), true);
    EXPECT_EQ(json.at("status"), "ON_TIME");
    EXPECT_EQ(json.at("lateMinutes"), 0);
    EXPECT_FALSE(json.contains("workingMinutes"));
    EXPECT_EQ(json.at("office"), "Head Office");
    EXPECT_NEAR(json.at("distanceMeters").get<double>(), 55.6, 0.1);
    EXPECT_EQ(json.at("checkInAt"), "2026-06-10T09:20:00.000Z");
    EXPECT_FALSE(json.contains("checkOutAt"));
}

TEST_F(PunchTest, SecondPunchChecksOut)
{
    world.punch(token);
    at("2026-06-10T17:25:30Z");
    const auto json = world.punch(token, 48.0, 11.0).json();
    EXPECT_EQ(json.at("type"), "OUT");
    EXPECT_EQ(json.at("status"), "ON_TIME");
    EXPECT_EQ(json.at("workingMinutes"), 485);
    EXPECT_EQ(json.at("checkInAt"), "2026-06-10T09:20:00.000Z");
    EXPECT_EQ(json.at("checkOutAt"), "2026-06-10T17:25:30.000Z");
    EXPECT_EQ(json.at("distanceMeters"), 0);
}

TEST_F(PunchTest, ThirdPunchIsRefused)
{
    world.punch(token);
    at("2026-06-10T17:00:00Z");
    world.punch(token);
    at("2026-06-10T17:30:00Z");
    const Reply reply = world.punch(token);
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.error(), "ALREADY_COMPLETE");
    EXPECT_EQ(rows("punches"), 2);
}

TEST_F(PunchTest, LateCheckInSaysHowLate)
{
    at("2026-06-10T09:42:10Z");
    const auto json = world.punch(token).json();
    EXPECT_EQ(json.at("status"), "LATE");
    EXPECT_EQ(json.at("lateMinutes"), 12);
}

TEST_F(PunchTest, TodayFollowsThePunches)
{
    const auto before = today();
    EXPECT_EQ(before,
              nlohmann::json::parse(R"({"workDate":"2026-06-10","open":true,"office":{"name":"Head Office",
        "checkInTime":"09:30","checkOutTime":"18:00","radiusMeters":150},"canCheckIn":true,"canCheckOut":false})"));
    world.punch(token);
    const auto during = today();
    EXPECT_EQ(during.at("canCheckIn"), false);
    EXPECT_EQ(during.at("canCheckOut"), true);
    const auto record = during.at("record");
    EXPECT_EQ(record.at("workDate"), "2026-06-10");
    EXPECT_EQ(record.at("status"), "ON_TIME");
    EXPECT_EQ(record.at("checkInAt"), "2026-06-10T09:20:00.000Z");
    EXPECT_TRUE(record.at("checkInDistanceMeters").is_number());
    for (const char *key : {"checkOutAt", "workingMinutes", "earlyLeaveMinutes", "checkOutDistanceMeters"})
        EXPECT_FALSE(record.contains(key)) << key;
    at("2026-06-10T17:00:00Z");
    world.punch(token);
    const auto after = today();
    EXPECT_EQ(after.at("canCheckIn"), false);
    EXPECT_EQ(after.at("canCheckOut"), false);
    EXPECT_EQ(after.at("open"), true);
    EXPECT_EQ(after.at("record").at("earlyLeaveMinutes"), 60);
    EXPECT_EQ(after.at("record").at("workingMinutes"), 460);
    EXPECT_EQ(after.at("record").at("id"), record.at("id"));
}

TEST_F(PunchTest, OutsideTheFenceIsRefusedWithDistanceRadiusAndAccuracy)
{
    const Reply reply = world.punch(token, 48.002, 11.0, "dev-1", 20);
    EXPECT_EQ(reply.status, 422);
    EXPECT_EQ(reply.error(), "OUTSIDE_GEOFENCE");
    EXPECT_EQ(reply.message(), "You are 223 m away from Head Office (your position is known to within 20 m). "
                               "Attendance can be marked within 150 m.");
    EXPECT_EQ(rows("attendance"), 0);
}

TEST_F(PunchTest, AccuracyDoesNotWidenTheFence)
{
    EXPECT_EQ(world.punch(token, 48.0014, 11.0, "dev-1", 100).error(), "OUTSIDE_GEOFENCE"); // 156 m
}

TEST_F(PunchTest, FenceIsDrawnAtItsRadius)
{
    EXPECT_EQ(world.punch(token, 48.00134, 11.0).status, 200); // 149 m
    at("2026-06-11T09:00:00Z");
    EXPECT_EQ(world.punch(token, 48.00136, 11.0).error(), "OUTSIDE_GEOFENCE"); // 151.2 m
}

TEST_F(PunchTest, FarAwayIsSaidInKilometres)
{
    EXPECT_NE(world.punch(token, 49.0, 11.0).message().find("111 km"), std::string::npos);
}

TEST_F(PunchTest, DistancesLongerThanTheEarthIsRoundAreNotCounted)
{
    for (const char *accuracy : {"1e300", "9.3e21", "4e7"}) {
        const Reply reply =
            world.post("/api/attendance/punch",
                       R"({"lat":48,"lng":11,"deviceId":"d","isMockLocation":false,"accuracy":)" +
                           std::string{accuracy} + "}",
                       token);
        EXPECT_EQ(reply.error(), "LOCATION_TOO_IMPRECISE");
        EXPECT_EQ(reply.message(),
                  "Your position is only known to within more than 20000 km; 100 m is needed."
                  " Move to open sky and try again.");
    }
    EXPECT_NE(world.punch(token, -48.0, -169.0).message().find("You are 20004 km away"), std::string::npos);
}

TEST_F(PunchTest, TooImpreciseFixIsRefused)
{
    const Reply reply = world.punch(token, 48.0, 11.0, "dev-1", 100.5);
    EXPECT_EQ(reply.status, 422);
    EXPECT_EQ(reply.error(), "LOCATION_TOO_IMPRECISE");
    EXPECT_EQ(world.punch(token, 48.0, 11.0, "dev-1", 100).status, 200);
}

TEST_F(PunchTest, UnknownAccuracyIsAccepted)
{
    EXPECT_EQ(world.punch(token, 48.0, 11.0, "dev-1", 0).status, 200);
}

TEST_F(PunchTest, SimulatedLocationIsRefused)
{
    const Reply reply = world.post("/api/attendance/punch", punchBody(48.0, 11.0, 5, "dev-1", true), token);
    EXPECT_EQ(reply.status, 422);
    EXPECT_EQ(reply.error(), "MOCK_LOCATION");
    EXPECT_EQ(rows("attendance"), 0);
}

TEST_F(PunchTest, CheckOutOutsideTheFenceIsRefusedToo)
{
    world.punch(token);
    at("2026-06-10T17:00:00Z");
    EXPECT_EQ(world.punch(token, 48.1, 11.0).error(), "OUTSIDE_GEOFENCE");
    EXPECT_EQ(today().at("canCheckOut"), true);
}

TEST_F(PunchTest, EveryMissingOrMistypedFieldIsNamed)
{
    const Reply missing = world.post("/api/attendance/punch", "{}", token);
    EXPECT_EQ(missing.status, 400);
    EXPECT_EQ(missing.json().at("message"),
              nlohmann::json({"lat is missing.", "lng is missing.", "accuracy is missing.",
                              "deviceId is missing.", "isMockLocation is missing."}));
    const Reply mistyped = world.post(
        "/api/attendance/punch",
        R"({"lat":"48","lng":180.001,"accuracy":-0.1,"deviceId":1,"isMockLocation":"false"})", token);
    EXPECT_EQ(mistyped.status, 400);
    EXPECT_EQ(
        mistyped.json().at("message"),
        nlohmann::json({"lat must be a number from -90 to 90.", "lng must be a number from -180 to 180.",
                        "accuracy must be a number of at least 0.", "deviceId must be a text.",
                        "isMockLocation must be true or false."}));
}

TEST_F(PunchTest, NumbersBeyondADoubleAreRefused)
{
    const Reply reply =
        world.post("/api/attendance/punch",
                   R"({"lat":48,"lng":11,"accuracy":1e999,"deviceId":"d","isMockLocation":false})", token);
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(rows("attendance"), 0);
}

TEST_F(PunchTest, EmployeeWithoutAnOfficeIsToldSo)
{
    addEmployee(world.database(), {.id = "e2", .officeId = {}, .email = "two@example.org"});
    const std::string two = world.token("two@example.org");
    EXPECT_EQ(world.punch(two).error(), "NO_OFFICE");
    for (const char *target : {"/api/attendance/today", "/api/attendance/distance?lat=1&lng=1",
                               "/api/attendance/me", "/api/attendance/me/summary?month=2026-06"})
        EXPECT_EQ(world.get(target, two).error(), "NO_OFFICE") << target;
}

TEST_F(PunchTest, InjectedSqlInADeviceIdIsJustAText)
{
    EXPECT_EQ(world.punch(token, 48.0, 11.0, "x'); DELETE FROM attendance; --").status, 200);
    EXPECT_EQ(rows("attendance"), 1);
}

} // namespace clockwell::server::test
