#include "World.h"
#include "server/auth/Accounts.h"
#include "server/auth/Sessions.h"
#include "server/http/ApiError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>
#include <vector>

namespace clockwell::server::test {

class SessionTest : public testing::Test
{
protected:
    SessionTest()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        const auto json = world.login().json();
        access = json.at("accessToken");
        refresh = json.at("refreshToken");
    }

    Reply renew(const std::string &token) const
    {
        return world.post("/api/auth/refresh", nlohmann::json{{"refreshToken", token}}.dump());
    }
    std::string renewed(const std::string &token) const { return renew(token).json().at("refreshToken"); }
    int me(const std::string &token) const { return world.get("/api/auth/me", token).status; }
    void setStatus(const std::string &status)
    {
        world.database().write([&](Connection &connection) {
            connection.execute("UPDATE employees SET status = :status", status);
        });
    }

    World world;
    std::string access;
    std::string refresh;
};

TEST_F(SessionTest, AccessTokenWorksForFifteenMinutes)
{
    world.advance(std::chrono::minutes{15} - std::chrono::milliseconds{1});
    EXPECT_EQ(me(access), 200);
    world.advance(std::chrono::milliseconds{1});
    const Reply expired = world.get("/api/auth/me", access);
    EXPECT_EQ(expired.status, 401);
    EXPECT_EQ(expired.error(), "INVALID_TOKEN");
    EXPECT_EQ(expired.headers.at("www-authenticate"), "Bearer");
}

TEST_F(SessionTest, RequestsWithoutAValidTokenAreRefused)
{
    EXPECT_EQ(world.get("/api/auth/me").error(), "UNAUTHORIZED");
    EXPECT_EQ(me("nonsense"), 401);
    EXPECT_EQ(me(refresh), 401);
    EXPECT_EQ(me(access + "x"), 401);
    EXPECT_EQ(me("' OR '1'='1"), 401);
}

TEST_F(SessionTest, RefreshGivesANewWorkingPair)
{
    world.advance(std::chrono::minutes{20});
    const Reply reply = renew(refresh);
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(reply.json().size(), 2U);
    EXPECT_NE(reply.json().at("refreshToken"), refresh);
    EXPECT_EQ(me(reply.json().at("accessToken")), 200);
    EXPECT_EQ(renew(reply.json().at("refreshToken")).status, 200);
}

TEST_F(SessionTest, UnknownAndForeignTokensAreNotRefreshed)
{
    for (const std::string &token : {std::string{"nonsense"}, access, std::string{"' OR '1'='1"}}) {
        const Reply reply = renew(token);
        EXPECT_EQ(reply.status, 401);
        EXPECT_EQ(reply.error(), "SESSION_EXPIRED");
    }
    EXPECT_EQ(me(access), 200);
}

TEST_F(SessionTest, RefreshWithoutATokenIsABadRequest)
{
    EXPECT_EQ(world.post("/api/auth/refresh", "{}").status, 400);
    EXPECT_EQ(world.post("/api/auth/refresh", R"({"refreshToken":7})").status, 400);
}

TEST_F(SessionTest, RefreshTokenExpiresAfterThirtyDays)
{
    world.advance(std::chrono::hours{24 * 30});
    EXPECT_EQ(renew(refresh).status, 401);
}

TEST_F(SessionTest, EachRefreshStartsTheThirtyDaysAnew)
{
    world.advance(std::chrono::hours{24 * 29});
    const std::string second = renewed(refresh);
    world.advance(std::chrono::hours{24 * 29});
    EXPECT_EQ(renew(second).status, 200);
}

TEST_F(SessionTest, ReplayAfterTheGraceEndsTheWholeSession)
{
    const Reply second = renew(refresh);
    world.advance(std::chrono::milliseconds{120'001});
    EXPECT_EQ(renew(refresh).status, 401);
    EXPECT_EQ(renew(second.json().at("refreshToken")).status, 401);
    EXPECT_EQ(me(second.json().at("accessToken")), 401);
    EXPECT_EQ(me(access), 401);
}

TEST_F(SessionTest, ReplayLeavesOtherSessionsAlone)
{
    const auto other = world.login().json();
    renewed(refresh);
    world.advance(std::chrono::minutes{3});
    EXPECT_EQ(renew(refresh).status, 401);
    EXPECT_EQ(me(other.at("accessToken")), 200);
    EXPECT_EQ(renew(other.at("refreshToken")).status, 200);
}

TEST_F(SessionTest, LostReplyCanBeAskedForAgainWithinTheGrace)
{
    renewed(refresh); // this reply is lost
    world.advance(std::chrono::seconds{120});
    const Reply again = renew(refresh);
    ASSERT_EQ(again.status, 200);
    EXPECT_EQ(me(again.json().at("accessToken")), 200);
    EXPECT_EQ(renew(again.json().at("refreshToken")).status, 200);
}

TEST_F(SessionTest, GraceIsLongerThanAClientWaitsForAReply)
{
    constexpr std::chrono::seconds longestWait{60}; // of the app, for a reply that drips
    constexpr std::chrono::seconds secondTry{30};   // until somebody has seen the failure and tries again
    renewed(refresh);
    world.advance(longestWait + secondTry);
    EXPECT_EQ(renew(refresh).status, 200);
}

TEST_F(SessionTest, OnlyTheNewestUsedTokenHasAGrace)
{
    const std::string second = renewed(refresh);
    const std::string third = renewed(second);
    EXPECT_EQ(renew(refresh).status, 401); // at once, but two generations old
    EXPECT_EQ(renew(third).status, 401);
}

TEST_F(SessionTest, OfTheTokensFromAGraceOnlyOneGoesOn)
{
    const std::string lost = renewed(refresh);
    const std::string kept = renewed(refresh);
    const std::string next = renewed(kept);
    EXPECT_EQ(renew(lost).status, 401); // whoever has it now: it is not the client that went on
    EXPECT_EQ(renew(next).status, 401);
}

TEST_F(SessionTest, ParallelRefreshesAllSucceedAndOneGoesOn)
{
    std::vector<std::string> tokens(12);
    std::vector<std::thread> threads;
    for (std::string &token : tokens)
        threads.emplace_back([this, &token] { token = renewed(refresh); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::set<std::string>(tokens.begin(), tokens.end()).size(), tokens.size());
    EXPECT_EQ(renew(tokens.back()).status, 200);
}

TEST_F(SessionTest, SignInWhosePasswordWasReplacedMeanwhileGetsNoSession)
{
    Sessions sessions{world.database(), world.clock(), {}};
    const Employee checked = world.database().read(
        [](Connection &connection) { return findEmployeeByEmail(connection, "kim@example.org").value(); });
    EXPECT_TRUE(sessions.start(checked, "dev-1"));
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET password_hash = 'another'"); });
    EXPECT_FALSE(sessions.start(checked, "dev-1"));
}

TEST_F(SessionTest, SignInThatASuspensionOvertakesGetsNoSession)
{
    Sessions sessions{world.database(), world.clock(), {}};
    const Employee checked = world.database().read(
        [](Connection &connection) { return findEmployeeByEmail(connection, "kim@example.org").value(); });
    setStatus("SUSPENDED");
    try {
        sessions.start(checked, "dev-1");
        FAIL();
    } catch (const ApiError &refusal) {
        EXPECT_EQ(refusal.error(), "ACCOUNT_SUSPENDED");
    }
}

TEST_F(SessionTest, SuspensionStopsTokensAtOnce)
{
    setStatus("SUSPENDED");
    const Reply reply = world.get("/api/auth/me", access);
    EXPECT_EQ(reply.status, 401);
    EXPECT_EQ(reply.error(), "ACCOUNT_SUSPENDED");
    EXPECT_EQ(renew(refresh).status, 403);
    EXPECT_EQ(renew(refresh).error(), "ACCOUNT_SUSPENDED");
}

TEST_F(SessionTest, SuspensionDoesNotUseTheRefreshTokenUp)
{
    setStatus("SUSPENDED");
    renew(refresh);
    setStatus("APPROVED");
    EXPECT_EQ(me(access), 200);
    EXPECT_EQ(renew(refresh).status, 200);
}

TEST_F(SessionTest, ExpiredTokensAreDeleted)
{
    world.advance(std::chrono::hours{24 * 31});
    world.login();
    const auto rows = [this](const char *table) {
        return world.database().read([table](Connection &connection) {
            return connection.value<long long>(std::string{"SELECT COUNT(*) FROM "} + table);
        });
    };
    EXPECT_EQ(rows("access_tokens"), 1);
    EXPECT_EQ(rows("refresh_tokens"), 1);
}

} // namespace clockwell::server::test
