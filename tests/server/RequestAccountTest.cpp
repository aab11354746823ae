#include "server/auth/RequestAccount.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

namespace {

std::string accountOfBody(const std::string &body, const std::string &authorization = {})
{
    Request request;
    request.body = body;
    request.authorization = authorization;
    return accountOf(request);
}

} // namespace

TEST(RequestAccountTest, IsTheKeyOfTheEmailAddress)
{
    EXPECT_EQ(accountOfBody(R"({"password":"x","email":" Kim@Example.org ","deviceId":"d"})"),
              "kim@example.org");
    EXPECT_EQ(accountOfBody("{\"email\":\"\\u006bim@example.org\"}"), "kim@example.org")
        << "escapes are read";
}

TEST(RequestAccountTest, LastOfSeveralCountsAsItDoesForTheSignIn)
{
    EXPECT_EQ(accountOfBody(R"({"email":"a@b.c","email":"kim@example.org"})"), "kim@example.org");
}

TEST(RequestAccountTest, WithoutAnAddressItIsWhatTheRequestSaysToBeSignedInWith)
{
    EXPECT_EQ(accountOfBody(R"({"currentPassword":"a","newPassword":"b"})", "Bearer abc"), "Bearer abc");
    EXPECT_EQ(accountOfBody("", "Bearer abc"), "Bearer abc");
}

TEST(RequestAccountTest, BodyOfAnythingElseNamesNobody)
{
    for (const std::string body : {"", "[", "7", "\"email\"", "{", R"({"email")", R"({"email":)",
                                   R"({"email":7})", R"({"email":null})", R"(["email","kim@example.org"])",
                                   R"({"a":{"email":"kim@example.org"}})", R"({"a":"email"})", "\xff"})
        EXPECT_EQ(accountOfBody(body), "") << body;
}

TEST(RequestAccountTest, DepthIsNotFollowed)
{
    constexpr std::size_t longest = 16 * 1024; // of a body
    for (const std::string open : {"[", "{\"a\":", "{\"email\":["}) {
        std::string body;
        while (body.size() < longest)
            body += open;
        EXPECT_EQ(accountOfBody(body), "");
    }
}

} // namespace clockwell::server::test
