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
    EXPECT_FALSE(employee().companyId);
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
    EXPECT_EQ(employee().companyId, "company-1");
}

TEST_F(SignupTest, CompanyCodeThatIsNotOneIsLikeNone)
{
    for (const char *code : {"SX", "S", "' OR '1'='1", "%", "SW' --"}) {
        Body body = application("kim" + std::to_string(world.mails().size()) + "@example.org");
        body["instituteCode"] = code;
        EXPECT_EQ(call("signup", body).status, 201) << code;
    }
    EXPECT_EQ(world.mails().size(), 5U);
    EXPECT_EQ(employee("kim4@example.org").companyId, std::nullopt);
}

TEST_F(SignupTest, NoAnswerTellsWhetherACompanyCodeIsOne)
{
    Body body = application();
    body["instituteCode"] = "SW";
    const Reply right = call("signup", body);
    body["instituteCode"] = "SX";
    const Reply wrong = call("signup", body);
    EXPECT_EQ(right.status, 201);
    EXPECT_EQ(wrong.status, right.status);
    EXPECT_EQ(wrong.body, right.body);
    body["fullName"] = " "; // an attempt that leaves no trace
    const Reply wrongInvalid = call("signup", body);
    body["instituteCode"] = "SW";
    const Reply rightInvalid = call("signup", body);
    EXPECT_EQ(rightInvalid.status, 400);
    EXPECT_EQ(wrongInvalid.body, rightInvalid.body);
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
                              "The password must contain a number.", "deviceId is missing."}));
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

TEST_F(SignupTest, ResendIsForWhicheverScreenItWasAskedOn)
{
    signup();
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell code");
    EXPECT_EQ(verify(world.code()).status, 200);
    resend();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell password reset code");
    EXPECT_EQ(verify(world.code()).error(), "INVALID_CODE"); // there is nothing left to verify
    EXPECT_EQ(reset(world.code()).status, 200);              // and the refusal did not use the code up
    signup("lee@example.org");
    resend("lee@example.org");
    EXPECT_EQ(reset(world.code("lee@example.org"), "New-Horse-8", "lee@example.org").status, 200);
}

TEST_F(SignupTest, CodeForANewPasswordVerifiesTheAddressToo)
{
    signup();
    forgot();
    EXPECT_EQ(world.mails().back().subject, "Your Clockwell password reset code");
    EXPECT_EQ(verify(world.code()).status, 200);
    EXPECT_EQ(world.login().error(), "ACCOUNT_PENDING");
}

TEST_F(SignupTest, CodeUnderWayStaysGoodWhenNoFurtherOneIsSent)
{
    signup();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(resend().status, 200);
    const std::string code = world.code();
    const auto mails = world.mails().size();
    EXPECT_EQ(mails, 4U);
    const Reply notSent = resend();
    EXPECT_EQ(notSent.body, resend("nobody@example.org").body);
    EXPECT_EQ(notSent.message(),
              "If this address is registered, a new code is on its way; one that came in the"
              " last 10 minutes may be used as well.");
    EXPECT_EQ(world.mails().size(), mails);
    EXPECT_EQ(verify(code).status, 200);
}

TEST_F(SignupTest, NextCodeIsSentWhenTheLastHasExpired)
{
    signup();
    for (int i = 0; i < 5; ++i)
        resend();
    world.advance(std::chrono::minutes{10});
    EXPECT_EQ(verify(world.code()).error(), "INVALID_CODE");
    const auto mails = world.mails().size();
    resend();
    EXPECT_EQ(world.mails().size(), mails + 1);
    EXPECT_EQ(verify(world.code()).status, 200);
}

TEST_F(SignupTest, NoLimitOfOneAddressIsSeenFromOutside)
{
    addEmployee(world.database(), {.id = "e2", .email = "old@example.org"});
    for (int i = 0; i < 8; ++i) {
        const Reply known = forgot("old@example.org");
        EXPECT_EQ(known.status, 200);
        EXPECT_EQ(forgot("nobody@example.org").body, known.body);
        EXPECT_EQ(resend("nobody@example.org").body, resend("old@example.org").body);
        EXPECT_EQ(signup("old@example.org").status, 201);
    }
}

} // namespace clockwell::server::test
