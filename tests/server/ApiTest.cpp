#include "World.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

class ApiTest : public testing::Test
{
protected:
    ApiTest()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
    }
    World world;
};

TEST_F(ApiTest, UnknownPathsAreNotFound)
{
    for (const char *target :
         {"/", "/api", "/api/", "/api/nope", "/api/auth/me/", "/api/auth/ME", "/auth/me", "/api//auth/me"}) {
        const Reply reply = world.get(target);
        EXPECT_EQ(reply.status, 404) << target;
        EXPECT_EQ(reply.json(), nlohmann::json::parse(R"({"statusCode":404,"error":"NOT_FOUND",
            "message":"There is nothing at this address."})"));
    }
}

TEST_F(ApiTest, WrongMethodsAreRefusedWithTheRightOne)
{
    const Reply get = world.get("/api/auth/login");
    EXPECT_EQ(get.status, 405);
    EXPECT_EQ(get.headers.at("allow"), "POST");
    EXPECT_EQ(get.error(), "METHOD_NOT_ALLOWED");
    const Reply post = world.post("/api/attendance/today", "{}");
    EXPECT_EQ(post.status, 405);
    EXPECT_EQ(post.headers.at("allow"), "GET");
    EXPECT_EQ(send(world.port(), "DELETE", "/api/auth/me").status, 405);
}

TEST_F(ApiTest, BodiesThatAreNoJsonObjectAreRefused)
{
    for (const char *body : {"", "{", "[]", "null", "\"text\"", "7", "{\"email\":}", "{\"a\":1}x", "{'a':1}",
                             "{\"email\":\"\xff\"}"}) {
        const Reply reply = world.post("/api/auth/login", body);
        EXPECT_EQ(reply.status, 400) << body;
        EXPECT_EQ(reply.error(), "BAD_JSON") << body;
    }
}

TEST_F(ApiTest, DeeplyNestedBodyIsOnlyABadRequest)
{
    const std::string deep = std::string(8000, '[') + std::string(8000, ']');
    EXPECT_EQ(world.post("/api/auth/login", deep).status, 400);
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(ApiTest, OtherMediaTypesAreRefused)
{
    const std::string body = R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d"})";
    const Reply form =
        send(world.port(), "POST", "/api/auth/login", "", body, "application/x-www-form-urlencoded");
    EXPECT_EQ(form.status, 415);
    EXPECT_EQ(
        send(world.port(), "POST", "/api/auth/login", "", body, "Application/JSON; charset=utf-8").status,
        200);
}

TEST_F(ApiTest, UnknownKeysAreIgnored)
{
    EXPECT_EQ(
        world
            .post("/api/auth/login",
                  R"({"email":"kim@example.org","password":"Correct-Horse-7","deviceId":"d","x":[1,{}]})")
            .status,
        200);
}

TEST_F(ApiTest, AttendanceNeedsAToken)
{
    for (const char *target : {"/api/attendance/today", "/api/attendance/distance?lat=1&lng=1",
                               "/api/attendance/me", "/api/attendance/me/summary?month=2026-06"})
        EXPECT_EQ(world.get(target).status, 401) << target;
    EXPECT_EQ(world.punch("").status, 401);
}

TEST_F(ApiTest, DistanceTellsInsideFromOutside)
{
    const std::string token = world.token();
    const auto inside = world.get("/api/attendance/distance?lat=48.001&lng=11", token).json();
    EXPECT_EQ(inside.at("inside"), true);
    EXPECT_NEAR(inside.at("distanceMeters").get<double>(), 111.2, 0.1);
    EXPECT_EQ(inside.at("radiusMeters"), 150);
    EXPECT_EQ(inside.at("office"), "Head Office");
    const auto outside = world.get("/api/attendance/distance?lat=-48&lng=-169", token).json();
    EXPECT_EQ(outside.at("inside"), false);
    EXPECT_NEAR(outside.at("distanceMeters").get<double>(), 20'003'931, 1);
}

TEST_F(ApiTest, DistanceAtTheOfficeIsZero)
{
    const auto json = world.get("/api/attendance/distance?lat=48.0&lng=1.1e1", world.token()).json();
    EXPECT_EQ(json.at("distanceMeters"), 0);
    EXPECT_EQ(json.at("inside"), true);
}

TEST_F(ApiTest, DistanceRefusesWhatIsNoPosition)
{
    const std::string token = world.token();
    for (const char *query :
         {"", "?lat=1", "?lng=1", "?lat=&lng=1", "?lat=91&lng=1", "?lat=1&lng=-180.1", "?lat=nan&lng=1",
          "?lat=inf&lng=1", "?lat=1,5&lng=1", "?lat=1m&lng=1", "?lat=0x1&lng=1", "?lat=1&lat=2&lng=1"}) {
        const Reply reply = world.get(std::string{"/api/attendance/distance"} + query, token);
        EXPECT_EQ(reply.status, 400) << query;
        EXPECT_EQ(reply.error(), "VALIDATION_FAILED") << query;
    }
    EXPECT_EQ(
        world.get("/api/attendance/distance", token).json().at("message"),
        nlohmann::json({"lat must be a number from -90 to 90.", "lng must be a number from -180 to 180."}));
}

TEST_F(ApiTest, SummaryRefusesWhatIsNoMonth)
{
    const std::string token = world.token();
    for (const char *query :
         {"", "?month=", "?month=2026", "?month=2026-13", "?month=03/2026", "?month=2026-6"})
        EXPECT_EQ(world.get(std::string{"/api/attendance/me/summary"} + query, token).status, 400) << query;
}

TEST_F(ApiTest, HealthIsAnswered)
{
    EXPECT_EQ(world.get("/health").status, 200);
}

} // namespace clockwell::server::test
