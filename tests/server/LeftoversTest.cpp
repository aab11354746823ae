#include "AccountFixture.h"

namespace clockwell::server::test {

/// What is over is removed, a little with each request.
class LeftoversTest : public AccountFixture
{
protected:
    long long count(const std::string &table)
    {
        return world.database().read([&](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM " + table);
        });
    }
    static std::string nobody(int number) { return "nobody" + std::to_string(number) + "@example.org"; }
};

TEST_F(LeftoversTest, UsedCodesLeaveNoRow)
{
    signup();
    EXPECT_EQ(verify(world.code()).status, 200);
    EXPECT_EQ(count("codes"), 0);
    EXPECT_EQ(count("sign_ups"), 0);
    forgot();
    EXPECT_EQ(reset(world.code()).status, 200);
    EXPECT_EQ(count("codes"), 0);
}

TEST_F(LeftoversTest, ExpiredCodesGoAFewAtATime)
{
    for (int i = 0; i < 100; ++i)
        forgot(nobody(i));
    world.advance(std::chrono::hours{2});
    EXPECT_EQ(count("codes"), 100);
    forgot("kim@example.org");
    EXPECT_EQ(count("codes"), 81);
    for (int i = 0; i < 4; ++i)
        forgot("kim" + std::to_string(i) + "@example.org");
    EXPECT_EQ(count("codes"), 5);
}

TEST_F(LeftoversTest, AccountsThatNobodyVerifiedGoAFewAtATime)
{
    for (int i = 0; i < 20; ++i)
        signup(nobody(i));
    world.advance(std::chrono::hours{24 * 7} - std::chrono::milliseconds{1});
    signup("kim@example.org");
    EXPECT_EQ(count("employees"), 21);
    world.advance(std::chrono::milliseconds{1});
    signup("lee@example.org");
    EXPECT_EQ(count("employees"), 17);
    for (int i = 0; i < 3; ++i)
        signup("max" + std::to_string(i) + "@example.org");
    EXPECT_EQ(count("employees"), 5);
    EXPECT_EQ(count("sign_ups"), 5);
}

TEST_F(LeftoversTest, SignUpWithAnAddressWhoseAccountIsOverIsAFirstOne)
{
    for (int i = 0; i < 10; ++i) // more than are removed with one request, all older
        signup(nobody(i));
    world.advance(std::chrono::seconds{1});
    signup("kim@example.org", "Evil-Horse-666");
    world.advance(std::chrono::hours{24 * 7});
    signup();
    EXPECT_EQ(verify(world.code()).status, 200);
    EXPECT_EQ(world.login().error(), "ACCOUNT_PENDING"); // and has its password
}

TEST_F(LeftoversTest, WhatAnAdministratorTouchedStays)
{
    addEmployee(
        world.database(),
        {.id = "e1", .officeId = {}, .email = "a@example.org", .status = "REJECTED", .verified = false});
    addEmployee(
        world.database(),
        {.id = "e2", .email = "b@example.org", .status = "PENDING", .verified = false}); // with an office
    addEmployee(
        world.database(),
        {.id = "e3", .officeId = {}, .email = "c@example.org", .status = "PENDING", .verified = false});
    addLeave(world.database(), "e3", "2026-06-01", "2026-06-02");
    addEmployee(world.database(),
                {.id = "e4", .officeId = {}, .email = "d@example.org", .status = "PENDING"});
    world.advance(std::chrono::hours{24 * 30});
    signup();
    EXPECT_EQ(count("employees"), 5);
}

TEST_F(LeftoversTest, LaterSignUpKeepsTheAccountForItsOwnTime)
{
    signup();
    world.advance(std::chrono::hours{24 * 7} - std::chrono::minutes{1});
    signup("kim@example.org", "Other-Horse-9");
    const std::string code = world.code();
    world.advance(std::chrono::minutes{2});
    signup("lee@example.org");
    EXPECT_EQ(verify(code).status, 200);
}

TEST_F(LeftoversTest, AllowancesThatHaveGrownAgainGo)
{
    forgot();
    verify("000000");
    EXPECT_EQ(count("wrong_codes"), 1);
    world.advance(std::chrono::hours{48});
    forgot("lee@example.org");
    EXPECT_EQ(count("wrong_codes"), 0);
}

} // namespace clockwell::server::test
