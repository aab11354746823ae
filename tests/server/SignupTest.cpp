#include "AccountFixture.h"

namespace clockwell::server::test {

class SignupTest : public AccountFixture
{};

TEST_F(SignupTest, FromSignUpOverCodeAndApprovalToSignIn)
{
    const Reply signedUp = signup();
    ASSERT_EQ(signedUp.status, 201);
    const auto json = signedUp.json();
    EXPECT_EQ(json.size(), 4U); // no code and no identifier of an account
    EXPECT_TRUE(json.at("message").is_string());
    EXPECT_EQ(json.at("status"), "PENDING");
    EXPECT_EQ(json.at("emailVerified"), false);
    EXPECT_EQ(json.at("email"), "kim@example.org");
    EXPECT_EQ(world.login().error(), "EMAIL_NOT_VERIFIED");

    const Reply verified = verify(world.code());
    ASSERT_EQ(verified.status, 200) << verified.body;
    EXPECT_EQ(verified.json().at("emailVerified"), true);
    EXPECT_EQ(verified.json().at("status"), "PENDING");
    EXPECT_EQ(world.login().error(), "ACCOUNT_PENDING");

    approve();
    const Reply login = world.login();
    ASSERT_EQ(login.status, 200);
    EXPECT_EQ(login.json().at("user").at("fullName"), "Kim Sample");
    EXPECT_EQ(login.json().at("user").at("role"), "EMPLOYEE");
}

TEST_F(SignupTest, CodeIsSixDigitsAndGoesToTheTrimmedAddress)
{
    ASSERT_EQ(signup(" \u00a0kim@example.org\t\u2003 ").json().at("email"), "kim@example.org");
    EXPECT_EQ(world.code().size(), 6U);
    EXPECT_EQ(employee().email, "kim@example.org");
}

TEST_F(SignupTest, AddressWithBlanksAroundItIsFoundInEveryRequest)
{
    for (const std::string blank : {" ", "\t", "\u00a0", "\u2003\t "}) {
        const std::string email = blank + "kim@example.org" + blank;
        signup();
        resend(email);
        EXPECT_EQ(verify(world.code(), email).status, 200) << blank;
        forgot(email);
        EXPECT_EQ(reset(world.code(), "New-Horse-8", email).status, 200) << blank;
        EXPECT_EQ(world.login(email, "New-Horse-8").error(), "ACCOUNT_PENDING") << blank;
        world.database().write([](Connection &connection) { connection.execute("DELETE FROM employees"); });
        world.advance(std::chrono::hours{1});
    }
}

TEST_F(SignupTest, OnlyBlanksAroundAnAddressAreForgiven)
{
    for (const char *email : {"kim@example.org\n", "kim\t@example.org", "\t", "kim@example.org\u0001"})
        EXPECT_EQ(signup(email).status, 400) << email;
    EXPECT_EQ(signup("\u00a0").message(), "The e-mail address must not be empty.");
}

TEST_F(SignupTest, NamesAreMeasuredInCharacters)
{
    Body body = application();
    std::string name;
    for (int i = 0; i < 200; ++i)
        name += "\u0905"; // three bytes each
    body["fullName"] = name;
    EXPECT_EQ(call("signup", body).status, 201);
    body["fullName"] = name + "x";
    EXPECT_EQ(call("signup", body).message(), "The full name must not be longer than 200 characters.");
}

TEST_F(SignupTest, DetailsAreStoredTrimmedAndBlankOnesAreAbsent)
{
    Body body = application();
    body["fullName"] = "  Zoë 陈 ";
    body["phone"] = "   ";
    body["instituteCode"] = "  ";
    ASSERT_EQ(call("signup", body).status, 201);
    EXPECT_EQ(employee().fullName, "Zoë 陈");
    EXPECT_FALSE(employee().phone);
    EXPECT_FALSE(employee().instituteId);
    EXPECT_FALSE(employee().officeId);
    EXPECT_EQ(employee().joinedOn, "2026-06-10");
    body["phone"] = " +92 300 1 ";
    ASSERT_EQ(call("signup", body).status, 201);
    EXPECT_EQ(employee().phone, "+92 300 1");
}

TEST_F(SignupTest, CompanyCodeIsFoundWithoutRegardToCaseAndBlanks)
{
    Body body = application();
    body["instituteCode"] = " sW ";
    ASSERT_EQ(call("signup", body).status, 201);
    EXPECT_EQ(employee().instituteId, "institute-1");
}

TEST_F(SignupTest, UnknownCompanyCodeIsRefused)
{
    Body body = application();
    for (const char *code : {"SX", "S", "' OR '1'='1", "%", "SW' --"}) {
        body["instituteCode"] = code;
        const Reply reply = call("signup", body);
        EXPECT_EQ(reply.status, 400);
        EXPECT_EQ(reply.error(), "VALIDATION_FAILED");
        EXPECT_EQ(reply.message(), "There is no company with this code.");
    }
    EXPECT_TRUE(world.mails().empty());
}

TEST_F(SignupTest, EveryBrokenRuleHasItsSentence)
{
    const Reply reply =
        call("signup", {{"fullName", " "}, {"email", "kim@"}, {"password", "é"}, {"instituteCode", "x"}});
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.json().at("message"),
              nlohmann::json({"The full name must not be empty.",
                              "Please enter an e-mail address like name@example.org.",
                              "The password must have at least 8 characters.",
                              "The password must contain an upper-case letter.",
                              "The password must contain a number.", "deviceId is missing.",
                              "There is no company with this code."}));
}

TEST_F(SignupTest, AddressesThatMailCannotBeSentToAreRefused)
{
    for (const char *email :
         {"kim", "@example.org", "kim@", "kim@@example.org", "kim @example.org", ".kim@example.org",
          "kim.@example.org", "k..m@example.org", "kim@example..org", "kim@-example.org", "kim@example-.org",
          "kim@exämple.org", "\"kim\"@example.org", "kim@[127.0.0.1]", "kim@example.org>", "<kim@example.org",
          "kim@example.org,eve@example.org", "kim@example.org eve@example.org"})
        EXPECT_EQ(signup(email).message(), "Please enter an e-mail address like name@example.org.") << email;
    EXPECT_EQ(signup(std::string(65, 'a') + "@example.org").status, 400);
    EXPECT_EQ(signup(std::string(64, 'a') + "@example.org").status, 201);
    EXPECT_EQ(signup("o'hara+tag@sub.example-2.org").status, 201);
}

TEST_F(SignupTest, NewestSignUpOfAnUnverifiedAddressReplacesTheOlder)
{
    signup();
    const std::string old = world.code();
    Body body = application("KIM@example.org", "Other-Horse-9");
    body["fullName"] = "Kim Renamed";
    ASSERT_EQ(call("signup", body).status, 201);
    const std::string fresh = world.code("KIM@example.org");
    if (old == fresh)
        GTEST_SKIP() << "one in a million codes is the same again";
    EXPECT_EQ(verify(old).error(), "INVALID_CODE");
    EXPECT_EQ(verify(fresh).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Renamed");
    EXPECT_EQ(world.login("kim@example.org", "Other-Horse-9").error(), "ACCOUNT_PENDING");
    EXPECT_EQ(world.login().error(), "INVALID_CREDENTIALS");
}

TEST_F(SignupTest, SignUpWithATakenAddressChangesNothingAndTellsTheOwner)
{
    addEmployee(world.database(), {});
    const Employee before = employee();
    Body body = application("kim@example.org", "Evil-Horse-666");
    body["fullName"] = "Eve";
    const Reply taken = call("signup", body);
    const Reply free = signup("new@example.org");
    EXPECT_EQ(taken.status, 201);
    auto expected = free.json();
    expected["email"] = "kim@example.org";
    EXPECT_EQ(taken.json(), expected);
    const Employee after = employee();
    EXPECT_EQ(after.fullName, before.fullName);
    EXPECT_EQ(after.passwordHash, before.passwordHash);
    EXPECT_EQ(after.status, before.status);
    ASSERT_FALSE(world.mails().empty());
    EXPECT_EQ(world.mails().front().subject, "Somebody tried to sign up with your address");
    EXPECT_EQ(world.mails().front().text.find("Eve"), std::string::npos);
    EXPECT_EQ(world.code(), "");
    EXPECT_EQ(world.login().status, 200);
}

TEST_F(SignupTest, AdministratorsDecisionSurvivesASecondSignUp)
{
    addEmployee(world.database(), {.status = "REJECTED", .verified = false});
    signup();
    ASSERT_EQ(verify(world.code()).json().at("status"), "REJECTED");
    EXPECT_EQ(world.login().error(), "ACCOUNT_REJECTED");
}

TEST_F(SignupTest, ApprovalIsForWhoWasApprovedAndNotForALaterSignUp)
{
    signup();
    approve(); // before the address was verified
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET role = 'MANAGER'"); });
    Body body = application("kim@example.org", "Evil-Horse-666");
    body["fullName"] = "Eve";
    call("signup", body);
    const Reply verified = verify(world.code());
    EXPECT_EQ(verified.json().at("status"), "PENDING");
    EXPECT_EQ(world.login("kim@example.org", "Evil-Horse-666").error(), "ACCOUNT_PENDING");
    EXPECT_EQ(employee().officeId, "office-1"); // to be approved again with one command
    EXPECT_EQ(employee().role, "EMPLOYEE");
}

TEST_F(SignupTest, SecondSignUpDoesNotUndoASuspension)
{
    addEmployee(world.database(), {.status = "SUSPENDED", .verified = false});
    signup();
    EXPECT_EQ(verify(world.code()).json().at("status"), "SUSPENDED");
    EXPECT_EQ(world.login().error(), "ACCOUNT_SUSPENDED");
}

TEST_F(SignupTest, VerificationSaysWhatComesNext)
{
    signup();
    EXPECT_EQ(verify(world.code()).message(),
              "Your e-mail address is verified. An administrator now has to approve your account.");
    signup("lee@example.org");
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET status = 'APPROVED'"); });
    EXPECT_EQ(verify(world.code("lee@example.org"), "lee@example.org").message(),
              "Your e-mail address is verified. You can now sign in.");
    signup("max@example.org");
    world.database().write([](Connection &connection) {
        connection.execute("UPDATE employees SET status = 'REJECTED' WHERE email_verified = 0");
    });
    EXPECT_EQ(verify(world.code("max@example.org"), "max@example.org").message(),
              "Your e-mail address is verified.");
}

TEST_F(SignupTest, CodeWorksOnceAndForTenMinutes)
{
    signup();
    world.advance(std::chrono::minutes{10});
    EXPECT_EQ(verify(world.code()).error(), "INVALID_CODE");
    resend();
    world.advance(std::chrono::minutes{10} - std::chrono::milliseconds{1});
    EXPECT_EQ(verify(world.code()).status, 200);
    const Reply again = verify(world.code());
    EXPECT_EQ(again.status, 400);
    EXPECT_EQ(again.error(), "INVALID_CODE");
    EXPECT_EQ(again.message(), "The code is wrong or has expired.");
}

TEST_F(SignupTest, DigitsOfOtherScriptsAreTheSameCode)
{
    signup();
    std::string arabic;
    for (const char digit : world.code())
        arabic += std::string{"\xD9"} + static_cast<char>(0xA0 + (digit - '0'));
    EXPECT_EQ(verify(arabic).status, 200);
}

TEST_F(SignupTest, SixthTryIsRefusedAlsoWithTheRightCodeUntilANewOneIsSent)
{
    signup();
    const std::string code = world.code();
    world.advance(std::chrono::minutes{3});
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(verify(other(code)).status, 400);
    const Reply refused = verify(code);
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.error(), "TOO_MANY_ATTEMPTS");
    EXPECT_FALSE(refused.headers.contains("retry-after"));
    EXPECT_EQ(refused.message(),
              "Too many wrong codes. This code no longer works; you can ask for a new one at once.");
    EXPECT_EQ(resend().status, 200);
    EXPECT_EQ(verify(world.code()).status, 200);
}

TEST_F(SignupTest, DeadCodeSaysWhenThereCanBeANewOne)
{
    signup();
    for (int i = 0; i < 4; ++i)
        resend(); // all that there are for an hour
    world.advance(std::chrono::minutes{5});
    const std::string code = world.code();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(verify(other(code)).status, 400);
    const Reply refused = verify(code);
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.headers.at("retry-after"), "3300");
    EXPECT_EQ(refused.message(),
              "Too many wrong codes. This code no longer works; you can ask for a new one in 55 minutes.");
}

TEST_F(SignupTest, OldCodeIsDeadAfterAResend)
{
    signup();
    const std::string old = world.code();
    EXPECT_EQ(resend().status, 200);
    if (old == world.code())
        GTEST_SKIP() << "one in a million codes is the same again";
    EXPECT_EQ(verify(old).error(), "INVALID_CODE");
    EXPECT_EQ(verify(world.code()).status, 200);
}

TEST_F(SignupTest, ResendRepeatsWhatTheAccountNeeds)
{
    signup();
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell verification code");
    forgot();
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell password reset code");
    EXPECT_EQ(verify(world.code()).status, 200); // it proves the address all the same
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell password reset code");
    EXPECT_EQ(verify(world.code()).error(), "INVALID_CODE"); // there is nothing left to verify
    EXPECT_EQ(reset(world.code()).status, 200);              // and the refusal did not use the code up
}

TEST_F(SignupTest, ResendRepeatsThePurposeOfACodeThatHasExpired)
{
    signup();
    forgot();
    world.advance(std::chrono::minutes{10});
    verify("000000", "somebody@example.org"); // others go on in between
    signup("lee@example.org");
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell password reset code");
    EXPECT_EQ(reset(world.code()).status, 200);
}

TEST_F(SignupTest, PurposeOfACodeIsForgottenAnHourAfterItsEnd)
{
    signup();
    forgot();
    world.advance(std::chrono::minutes{70});
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell verification code");
}

TEST_F(SignupTest, ExpiredCodeStaysExpiredWhileItsPurposeIsRemembered)
{
    signup();
    const std::string code = world.code();
    world.advance(std::chrono::minutes{10});
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(verify(code).error(), "INVALID_CODE");
}

TEST_F(SignupTest, SixthCodeWithinAnHourIsRefusedForKnownAndUnknownAddressesAlike)
{
    signup();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(resend().status, 200);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(forgot("nobody@example.org").status, 200);
    const Reply known = resend();
    EXPECT_EQ(known.status, 429);
    EXPECT_EQ(known.message(), "Too many codes were asked for. Please try again in 60 minutes.");
    EXPECT_EQ(known.headers.at("retry-after"), "3600");
    EXPECT_EQ(forgot("Nobody@example.org").body, known.body);
    EXPECT_EQ(signup().body, known.body);
    world.advance(std::chrono::hours{1});
    EXPECT_EQ(resend().status, 200);
}

class SignupLimitTest : public AccountFixture
{
protected:
    SignupLimitTest() : AccountFixture(World::cheap()) {}
};

TEST_F(SignupLimitTest, ThirtyFirstCodeForOneNetworkAddressIsRefused)
{
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(forgot("a" + std::to_string(i) + "@example.org").status, 200);
    const Reply refused = forgot("b@example.org");
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.message(), "Too many codes were asked for. Please try again in 15 minutes.");
    EXPECT_EQ(refused.headers.at("retry-after"), "900");
}

} // namespace clockwell::server::test
