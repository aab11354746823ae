#include "World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <thread>
#include <vector>

namespace clockwell::server::test {

class LoginTest : public testing::Test
{
protected:
    LoginTest()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
    }
    World world;
};

TEST_F(LoginTest, GivesTokensAndTheUser)
{
    const Reply reply = world.login();
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(reply.headers.at("content-type"), "application/json");
    const auto json = reply.json();
    EXPECT_EQ(json.size(), 3U);
    EXPECT_EQ(json.at("accessToken").get<std::string>().size(), 43U);
    EXPECT_EQ(json.at("refreshToken").get<std::string>().size(), 43U);
    EXPECT_NE(json.at("accessToken"), json.at("refreshToken"));
    EXPECT_EQ(json.at("user"), nlohmann::json::parse(R"({"id":"employee-1","fullName":"Kim Sample",
        "email":"kim@example.org","role":"EMPLOYEE","status":"APPROVED","instituteId":"company-1",
        "officeLocationId":"office-1"})"));
}

TEST_F(LoginTest, PhoneIsSentWhenKnownAndOfficeIsLeftOutWhenNone)
{
    addEmployee(world.database(),
                {.id = "e2", .officeId = {}, .email = "two@example.org", .phone = "+1 555 1"});
    const auto user = world.login("two@example.org").json().at("user");
    EXPECT_EQ(user.at("phone"), "+1 555 1");
    EXPECT_FALSE(user.contains("officeLocationId"));
}

TEST_F(LoginTest, MeIsTheUserOfTheLogin)
{
    const auto login = world.login().json();
    const Reply me = world.get("/api/auth/me", login.at("accessToken"));
    ASSERT_EQ(me.status, 200);
    EXPECT_EQ(me.json(), login.at("user"));
}

TEST_F(LoginTest, EmailIsComparedWithoutRegardToCase)
{
    EXPECT_EQ(world.login("KIM@Example.ORG").status, 200);
    EXPECT_EQ(world.login(" kim@example.org ").status, 200);
}

TEST_F(LoginTest, PasswordIsComparedExactly)
{
    EXPECT_EQ(world.login("kim@example.org", "correct-horse-7").status, 401);
    EXPECT_EQ(world.login("kim@example.org", "Correct-Horse-7 ").status, 401);
}

TEST_F(LoginTest, WrongPasswordAndUnknownAddressGetTheSameAnswer)
{
    const Reply wrong = world.login("kim@example.org", "nonsense");
    const Reply unknown = world.login("nobody@example.org", "nonsense");
    EXPECT_EQ(wrong.status, 401);
    EXPECT_EQ(wrong.error(), "INVALID_CREDENTIALS");
    EXPECT_EQ(wrong.json().at("statusCode"), 401);
    EXPECT_EQ(unknown.status, wrong.status);
    EXPECT_EQ(unknown.body, wrong.body);
}

TEST_F(LoginTest, AccountsThatMayNotSignInAreToldWhyAfterTheRightPassword)
{
    struct Case
    {
        const char *id;
        const char *status;
        bool verified;
        const char *error;
    };
    for (const auto &[id, status, verified, error] :
         {Case{"a", "PENDING", false, "EMAIL_NOT_VERIFIED"},
          Case{"b", "APPROVED", false, "EMAIL_NOT_VERIFIED"}, Case{"c", "PENDING", true, "ACCOUNT_PENDING"},
          Case{"d", "REJECTED", true, "ACCOUNT_REJECTED"},
          Case{"e", "SUSPENDED", true, "ACCOUNT_SUSPENDED"}}) {
        const std::string email = std::string{id} + "@example.org";
        addEmployee(world.database(), {.id = id, .email = email, .status = status, .verified = verified});
        const Reply right = world.login(email);
        EXPECT_EQ(right.status, 403) << id;
        EXPECT_EQ(right.error(), error);
        EXPECT_GT(right.message().size(), 20U);
        EXPECT_EQ(world.login(email, "wrong").error(), "INVALID_CREDENTIALS") << id;
    }
}

TEST_F(LoginTest, EveryBrokenRuleHasItsMessage)
{
    const Reply reply = world.post("/api/auth/login", R"({"email":5,"password":"","deviceId":null})");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.error(), "VALIDATION_FAILED");
    EXPECT_EQ(reply.json().at("message"),
              nlohmann::json({"The e-mail address must be a text.", "The password must not be empty.",
                              "deviceId is missing."}));
}

TEST_F(LoginTest, OneBrokenRuleIsAnArrayOfOne)
{
    const Reply reply = world.post("/api/auth/login", R"({"email":"kim@example.org","password":"x"})");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.json().at("message"), nlohmann::json::array({"deviceId is missing."}));
}

TEST_F(LoginTest, OverlongAndControlTextsAreRefused)
{
    nlohmann::json body{
        {"email", "kim@example.org"}, {"password", std::string(1025, 'x')}, {"deviceId", "a\nb"}};
    const Reply reply = world.post("/api/auth/login", body.dump());
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.json().at("message"), nlohmann::json({"The password must not be longer than 1024 bytes.",
                                                          "deviceId must not contain control characters."}));
}

TEST_F(LoginTest, InjectedSqlIsJustAWrongAddress)
{
    for (const char *text : {"' OR '1'='1", "kim@example.org' --", "x'; DROP TABLE employees; --",
                             "\\\" OR 1=1", "kim@example.org%", "k_m@example.org", ":key"})
        EXPECT_EQ(world.login(text, "' OR '1'='1").error(), "INVALID_CREDENTIALS") << text;
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(LoginTest, SixthWrongPasswordIsRefusedUntilTheWindowHasPassed)
{
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(world.login("kim@example.org", "wrong").status, 401);
        world.advance(std::chrono::minutes{1});
    }
    const Reply refused = world.login(); // also with the right password
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.error(), "TOO_MANY_ATTEMPTS");
    EXPECT_EQ(refused.headers.at("retry-after"), "600");
    EXPECT_EQ(refused.message(), "Too many attempts to sign in. Please try again in 10 minutes.");
    world.advance(std::chrono::minutes{10} - std::chrono::milliseconds{1});
    EXPECT_EQ(world.login().status, 429);
    world.advance(std::chrono::milliseconds{1});
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(LoginTest, ThrottlingOneAccountLeavesOthersAlone)
{
    addEmployee(world.database(), {.id = "e2", .email = "two@example.org"});
    for (int i = 0; i < 6; ++i)
        world.login("kim@example.org", "wrong");
    EXPECT_EQ(world.login().status, 429);
    EXPECT_EQ(world.login("two@example.org").status, 200);
}

TEST_F(LoginTest, UnknownAddressIsThrottledLikeAKnownOne)
{
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(world.login("nobody@example.org", "wrong").status, 401);
    EXPECT_EQ(world.login("Nobody@example.org", "wrong").status, 429);
}

TEST_F(LoginTest, ParallelGuessesDoNotSlipThroughTheThrottle)
{
    std::vector<int> statuses(20);
    std::vector<std::thread> threads;
    for (int &status : statuses)
        threads.emplace_back([this, &status] { status = world.login("kim@example.org", "guess").status; });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::ranges::count(statuses, 401), 5);
    EXPECT_EQ(std::ranges::count(statuses, 429), 15);
}

TEST_F(LoginTest, RightPasswordForgetsTheFailures)
{
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(world.login("kim@example.org", "wrong").status, 401);
        EXPECT_EQ(world.login().status, 200);
    }
}

TEST_F(LoginTest, WhatTheServerCannotJudgeIsNoWrongPassword)
{
    world.database().write(
        [](Connection &connection) { connection.execute("ALTER TABLE employees RENAME TO hidden"); });
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(world.login().status, 500);
    world.database().write(
        [](Connection &connection) { connection.execute("ALTER TABLE hidden RENAME TO employees"); });
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(LoginTest, WhatTheServerCannotJudgeForgivesNoWrongPassword)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(world.login("kim@example.org", "wrong").status, 401);
    world.database().write(
        [](Connection &connection) { connection.execute("ALTER TABLE employees RENAME TO hidden"); });
    std::vector<std::thread> threads;
    for (int i = 0; i < 20; ++i)
        threads.emplace_back([this] { world.login("kim@example.org", "wrong"); });
    for (std::thread &thread : threads)
        thread.join();
    world.database().write(
        [](Connection &connection) { connection.execute("ALTER TABLE hidden RENAME TO employees"); });
    EXPECT_EQ(world.login("kim@example.org", "wrong").status, 401);
    EXPECT_EQ(world.login().status, 429);
}

TEST(LoginTimingTest, UnknownAddressTakesAboutAsLongAsAWrongPassword)
{
    Settings settings;
    settings.loginLimits.attempts = 1000;
    World world{"2026-06-10T09:00:00Z", settings};
    addOffice(world.database(), {});
    addEmployee(world.database(), {});
    Passwords real; // the same cost as the server's
    const std::string hash = real.hash("Correct-Horse-7");
    world.database().write([&](Connection &connection) {
        connection.execute("UPDATE employees SET password_hash = :hash", hash);
    });
    // The processor time of this process, the server included: other work of the machine is not in it.
    const auto timeOf = [&](const std::string &email) {
        const std::clock_t start = std::clock();
        EXPECT_EQ(world.login(email, "wrong").status, 401);
        return double(std::clock() - start);
    };
    double known = timeOf("kim@example.org");
    double unknown = timeOf("nobody@example.org");
    for (int i = 0; i < 7; ++i) { // by turns: what slows the processor slows both alike
        known = std::min(known, timeOf("kim@example.org"));
        unknown = std::min(unknown, timeOf("nobody@example.org"));
    }
    EXPECT_GT(unknown, known * 0.6);
    EXPECT_LT(unknown, known * 1.6);
}

} // namespace clockwell::server::test
