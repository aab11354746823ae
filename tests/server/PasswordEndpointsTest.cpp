#include "AccountFixture.h"

namespace clockwell::server::test {

class PasswordEndpointsTest : public AccountFixture
{
protected:
    PasswordEndpointsTest() { addEmployee(world.database(), {}); }

    int me(const std::string &token) const { return world.get("/api/auth/me", token).status; }
    Reply change(const std::string &current, const std::string &next, const std::string &token) const
    {
        return call("change-password", {{"currentPassword", current}, {"newPassword", next}}, token);
    }
};

TEST_F(PasswordEndpointsTest, ForgotAnswersAlikeForKnownAndUnknownAddresses)
{
    const Reply known = forgot();
    const Reply unknown = forgot("nobody@example.org");
    EXPECT_EQ(known.status, 200);
    EXPECT_EQ(unknown.status, 200);
    EXPECT_EQ(known.body, unknown.body);
    EXPECT_EQ(resend().body, resend("nobody@example.org").body);
    for (const Mail &mail : world.mails())
        EXPECT_EQ(mail.to, "kim@example.org");
}

TEST_F(PasswordEndpointsTest, ResetSetsThePasswordAndEndsEverySession)
{
    const auto first = world.login().json();
    const auto second = world.login().json();
    forgot();
    ASSERT_EQ(reset(world.code()).status, 200);
    EXPECT_EQ(me(first.at("accessToken")), 401);
    EXPECT_EQ(me(second.at("accessToken")), 401);
    EXPECT_EQ(call("refresh", {{"refreshToken", first.at("refreshToken")}}).status, 401);
    EXPECT_EQ(world.login().status, 401);
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
}

TEST_F(PasswordEndpointsTest, ResetCodeWorksOnce)
{
    forgot();
    const std::string code = world.code();
    ASSERT_EQ(reset(code).status, 200);
    EXPECT_EQ(reset(code, "Third-Horse-9").error(), "INVALID_CODE");
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
}

TEST_F(PasswordEndpointsTest, ResetProvesTheAddressAndLeavesTheApprovalOpen)
{
    signup("new@example.org");
    forgot("new@example.org");
    ASSERT_EQ(reset(world.code("new@example.org"), "New-Horse-8", "new@example.org").status, 200);
    EXPECT_EQ(world.login("new@example.org", "New-Horse-8").error(), "ACCOUNT_PENDING");
}

TEST_F(PasswordEndpointsTest, VerificationCodeSetsNoPassword)
{
    signup("new@example.org");
    const std::string code = world.code("new@example.org");
    EXPECT_EQ(reset(code, "New-Horse-8", "new@example.org").error(), "INVALID_CODE");
    EXPECT_EQ(verify(code, "new@example.org").status, 200);
}

TEST_F(PasswordEndpointsTest, ResetOpensALockedSignIn)
{
    for (int i = 0; i < 6; ++i)
        world.login("kim@example.org", "wrong");
    EXPECT_EQ(world.login().status, 429);
    forgot();
    ASSERT_EQ(reset(world.code()).status, 200);
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
}

TEST_F(PasswordEndpointsTest, WeakNewPasswordCostsNoTry)
{
    forgot();
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(reset(world.code(), "short").error(), "VALIDATION_FAILED");
    EXPECT_EQ(reset(world.code()).status, 200);
}

TEST_F(PasswordEndpointsTest, ChangeKeepsThisSessionAndEndsTheOthers)
{
    const auto own = world.login().json();
    const auto other = world.login().json();
    const Reply reply = change("Correct-Horse-7", "New-Horse-8", own.at("accessToken"));
    ASSERT_EQ(reply.status, 200) << reply.body;
    EXPECT_EQ(me(own.at("accessToken")), 200);
    EXPECT_EQ(call("refresh", {{"refreshToken", own.at("refreshToken")}}).status, 200);
    EXPECT_EQ(me(other.at("accessToken")), 401);
    EXPECT_EQ(call("refresh", {{"refreshToken", other.at("refreshToken")}}).status, 401);
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
    EXPECT_EQ(world.login().status, 401);
}

TEST_F(PasswordEndpointsTest, ChangeEndsACodeForANewPassword)
{
    forgot();
    const std::string code = world.code();
    ASSERT_EQ(change("Correct-Horse-7", "New-Horse-8", world.token()).status, 200);
    EXPECT_EQ(reset(code, "Third-Horse-9").error(), "INVALID_CODE");
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
}

TEST_F(PasswordEndpointsTest, WrongCurrentPasswordIsNotTheEndOfTheSession)
{
    const std::string token = world.token();
    const Reply reply = change("wrong", "New-Horse-8", token);
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.error(), "WRONG_PASSWORD");
    EXPECT_EQ(reply.message(), "The current password is wrong.");
    EXPECT_EQ(me(token), 200);
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(PasswordEndpointsTest, ChangeIsThrottledLikeASignIn)
{
    const std::string token = world.token();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(change("wrong", "New-Horse-8", token).status, 400);
    const Reply refused = change("Correct-Horse-7", "New-Horse-8", token);
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.message(), "Too many wrong passwords. Please try again in 15 minutes.");
    EXPECT_EQ(refused.headers.at("retry-after"), "900");
}

TEST_F(PasswordEndpointsTest, ChangeNeedsASessionAndBothPasswords)
{
    EXPECT_EQ(change("Correct-Horse-7", "New-Horse-8", "").status, 401);
    EXPECT_EQ(change("Correct-Horse-7", "New-Horse-8", "nonsense").status, 401);
    const Reply reply = call("change-password", {{"newPassword", "x"}}, world.token());
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.json().at("message"), nlohmann::json({"The current password is missing.",
                                                          "The password must have at least 8 characters.",
                                                          "The password must contain an upper-case letter.",
                                                          "The password must contain a number."}));
}

TEST_F(PasswordEndpointsTest, SamePasswordTypedOnAnotherKeyboardSignsIn)
{
    forgot();
    ASSERT_EQ(reset(world.code(), "Caf\xC3\xA9 Stra\xC3\x9F"
                                  "e 7")
                  .status,
              200); // composed
    EXPECT_EQ(world
                  .login("kim@example.org", "Cafe\xCC\x81\xC2\xA0Stra\xC3\x9F"
                                            "e 7")
                  .status,
              200);
    EXPECT_EQ(world.login("kim@example.org", "Cafe Strasse 7").status, 401);
}

TEST_F(PasswordEndpointsTest, LongPasswordsCountToTheirLastCharacter)
{
    const std::string start = "Aa1";
    for (const std::size_t length : {64U, 1024U}) {
        forgot();
        const std::string password = start + std::string(length - start.size(), 'x');
        ASSERT_EQ(reset(world.code(), password).status, 200) << length;
        EXPECT_EQ(world.login("kim@example.org", password).status, 200);
        EXPECT_EQ(world.login("kim@example.org", password.substr(0, length - 1) + "y").status, 401);
    }
    forgot();
    const Reply tooLong = reset(world.code(), start + std::string(1022, 'x'));
    EXPECT_EQ(tooLong.message(), "The password must not be longer than 1024 bytes.");
    EXPECT_EQ(reset(world.code(), "Pasted-Horse-9\n").error(), "VALIDATION_FAILED");
}

} // namespace clockwell::server::test
