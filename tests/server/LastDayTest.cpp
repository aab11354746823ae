#include "World.h"
#include "server/attendance/History.h"
#include "server/attendance/Punches.h"
#include "server/http/ApiError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace clockwell::server::test {

/// Kim works in Berlin, two hours ahead of UTC, and is employed until Wednesday 10 June 2026.
class LastDayTest : public testing::Test
{
protected:
    LastDayTest()
    {
        addOffice(world.database(), {.zone = "Europe/Berlin", .weekdays = 31});
        addEmployee(world.database(), {.joinedOn = "2026-06-08"});
        setLastDay("2026-06-10");
    }

    void setLastDay(const std::optional<std::string> &day)
    {
        world.database().write(
            [&](Connection &connection) { connection.execute("UPDATE employees SET last_day = :day", day); });
    }
    Reply renew(const std::string &token) const
    {
        return world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", token}}.dump());
    }
    /// Of the days from 8 to 19 June, as the history and the summary count them; "MM-dd STATUS", oldest
    /// first.
    std::vector<std::string> countedDays()
    {
        return world.database().read([&](Connection &connection) {
            const Employee employee = findEmployeeById(connection, "employee-1").value();
            const Office office = requireOffice(connection, employee.officeId);
            std::vector<std::string> texts;
            for (const HistoryDay &day :
                 historyBetween(connection, employee, office, parseDay("2026-06-08").value(),
                                parseDay("2026-06-19").value(), parseDay("2026-06-22").value()))
                texts.push_back(day.workDate.substr(5) + " " + day.assessment.status);
            return texts;
        });
    }

    const std::string lastMoment = "2026-06-10T21:59:59Z"; // midnight in Berlin is two hours before UTC's
    const std::string midnight = "2026-06-10T22:00:00Z";
    World world{"2026-06-10T07:00:00Z"};
};

TEST_F(LastDayTest, SignInIsRefusedFromTheOfficesMidnightOnWithATextOfItsOwn)
{
    world.setNow(lastMoment);
    EXPECT_EQ(world.login().status, 200);
    world.setNow(midnight);
    const Reply refused = world.login();
    EXPECT_EQ(refused.status, 403);
    EXPECT_EQ(refused.error(), "EMPLOYMENT_ENDED");
    EXPECT_EQ(refused.message(),
              "Your last working day was 2026-06-10. If that is wrong, please ask your administrator.");
    EXPECT_EQ(world.login("kim@example.org", "wrong").error(), "INVALID_CREDENTIALS");
}

TEST_F(LastDayTest, WithoutAnOfficeTheDayIsThatOfUtc)
{
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET office_id = NULL"); });
    world.setNow("2026-06-10T23:59:59Z");
    EXPECT_EQ(world.login().status, 200);
    world.setNow("2026-06-11T00:00:00Z");
    EXPECT_EQ(world.login().error(), "EMPLOYMENT_ENDED");
}

TEST_F(LastDayTest, SessionStopsAfterItAndGoesOnWhenItIsTakenBack)
{
    world.setNow(lastMoment);
    const auto signedIn = world.login().json();
    const std::string access = signedIn.at("accessToken");
    const std::string refresh = signedIn.at("refreshToken");
    EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    world.setNow(midnight);
    for (const Reply &reply :
         {world.get("/api/auth/me", access), world.punch(access), world.get("/api/attendance/me", access)}) {
        EXPECT_EQ(reply.status, 401);
        EXPECT_EQ(reply.error(), "EMPLOYMENT_ENDED");
    }
    EXPECT_EQ(renew(refresh).status, 403);
    EXPECT_EQ(renew(refresh).error(), "EMPLOYMENT_ENDED");
    setLastDay(std::nullopt);
    EXPECT_EQ(world.get("/api/auth/me", access).status, 200);
    EXPECT_EQ(renew(refresh).status, 200);
}

TEST_F(LastDayTest, LastDayItselfIsAWorkingDay)
{
    const std::string morning = world.token();
    EXPECT_EQ(world.punch(morning).json().value("type", ""), "IN");
    world.setNow(lastMoment);
    const Reply out = world.punch(world.token());
    EXPECT_EQ(out.json().value("type", ""), "OUT");
    EXPECT_EQ(countedDays(), (std::vector<std::string>{"06-08 ABSENT", "06-09 ABSENT", "06-10 ON_TIME"}));
}

TEST_F(LastDayTest, ForgottenCheckOutOfItStaysMissing)
{
    world.setNow(lastMoment);
    const std::string access = world.token();
    EXPECT_EQ(world.punch(access).status, 200);
    world.advance(std::chrono::minutes{5}); // as on any other day, midnight ends it
    EXPECT_EQ(world.punch(access).status, 401);
    EXPECT_EQ(countedDays().back(), "06-10 MISSING_CHECK_OUT");
}

TEST_F(LastDayTest, NeitherAbsencesNorLeaveAreCountedAfterIt)
{
    addLeave(world.database(), "employee-1", "2026-06-10", "2026-06-12");
    EXPECT_EQ(countedDays(), (std::vector<std::string>{"06-08 ABSENT", "06-09 ABSENT", "06-10 ON_LEAVE"}));
    setLastDay("2026-06-15");
    EXPECT_EQ(countedDays().size(), 6U); // the weekend does not count
    setLastDay(std::nullopt);
    EXPECT_EQ(countedDays().size(), 10U);
}

TEST_F(LastDayTest, PunchThatMidnightOvertakesIsRefused)
{
    Punches punches{world.database(), world.clock(), std::chrono::seconds{90}};
    world.setNow(midnight);
    try {
        const Employee employee = world.database().read(
            [](Connection &connection) { return findEmployeeById(connection, "employee-1").value(); });
        punches.punch(employee, {48.0, 11.0, 5, "dev-1", false});
        FAIL();
    } catch (const ApiError &refusal) {
        EXPECT_EQ(refusal.error(), "DAY_CLOSED");
        EXPECT_EQ(refusal.messages().front(), "Your last working day was 2026-06-10.");
    }
}

} // namespace clockwell::server::test
