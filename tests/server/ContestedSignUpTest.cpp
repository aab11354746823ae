#include "AccountFixture.h"

namespace clockwell::server::test {

/// Two people sign up with one address before it is verified: its owner, and a stranger who cannot read its
/// e-mail.
class ContestedSignUpTest : public AccountFixture
{
protected:
    static constexpr const char *ownersNetwork = "127.0.0.1";
    static constexpr const char *strangersNetwork = "127.0.9.9";
    static constexpr const char *ownersPassword = "Correct-Horse-7";
    static constexpr const char *strangersPassword = "Evil-Horse-666";

    std::string ownerSignsUp()
    {
        network = ownersNetwork;
        EXPECT_EQ(signup().status, 201);
        return world.code();
    }
    std::string strangerSignsUp(const std::string &from = strangersNetwork)
    {
        network = from;
        Body body = application("kim@example.org", strangersPassword);
        body["fullName"] = "Eve Stranger";
        body["phone"] = "+1 555 666";
        body["instituteCode"] = "SW";
        EXPECT_EQ(call("signup", body).status, 201);
        network = ownersNetwork;
        return world.code();
    }
    /// Nobody can sign in until the owner has chosen a password with a code for that.
    void expectNoPasswordUntilReset()
    {
        approve();
        EXPECT_EQ(world.login("kim@example.org", strangersPassword).status, 401);
        EXPECT_EQ(world.login("kim@example.org", ownersPassword).status, 401);
        ASSERT_EQ(forgot().status, 200);
        ASSERT_EQ(reset(world.code()).status, 200);
        EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
        EXPECT_EQ(world.login("kim@example.org", strangersPassword).status, 401);
    }
};

TEST_F(ContestedSignUpTest, LaterStrangerGetsNothingWhenTheOwnerEntersTheNewestCode)
{
    ownerSignsUp();
    const std::string newest = strangerSignsUp();
    ASSERT_EQ(verify(newest).status, 200);
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, LaterStrangerGetsNothingWhenTheOwnerEntersTheirOwnCode)
{
    const std::string own = ownerSignsUp();
    strangerSignsUp();
    ASSERT_EQ(verify(own).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Sample");
    EXPECT_FALSE(employee().phone);
    EXPECT_FALSE(employee().companyId);
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, EarlierStrangerGetsNothingWhenTheOwnerSignsUpAfterwards)
{
    const std::string strangers = strangerSignsUp();
    const std::string own = ownerSignsUp();
    ASSERT_NE(strangers, own) << "one in a million codes is the same again";
    ASSERT_EQ(verify(own).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Sample");
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, EarlierStrangerGetsNothingWhenTheOwnerEntersTheirCode)
{
    const std::string strangers = strangerSignsUp();
    ownerSignsUp();
    ASSERT_EQ(verify(strangers).status, 200);
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, CodeBelongsToTheSignUpThatAskedForIt)
{
    ownerSignsUp();
    ASSERT_EQ(verify(strangerSignsUp()).status, 200);
    EXPECT_EQ(employee().fullName, "Eve Stranger"); // an administrator sees whose code was entered
    EXPECT_EQ(employee().phone, "+1 555 666");
    EXPECT_EQ(employee().companyId, "company-1");
}

TEST_F(ContestedSignUpTest, ResendIsForTheSignUpFromTheSameNetwork)
{
    strangerSignsUp();
    ownerSignsUp();
    strangerSignsUp("127.0.9.10");
    resend();
    ASSERT_EQ(verify(world.code()).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Sample");
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, AccountFromBeforeSignUpsWereKeptIsTheFirstOfThem)
{
    addEmployee(world.database(), {.id = "old", .officeId = {}, .status = "PENDING", .verified = false});
    const long long now = toMillis(world.clock()());
    world.database().write(
        [&](Connection &connection) { connection.execute("UPDATE employees SET created_at = :now", now); });
    const std::string newest = strangerSignsUp();
    EXPECT_EQ(employee().fullName, "Kim Sample");
    ASSERT_EQ(verify(newest).status, 200);
    EXPECT_EQ(employee().id, "old");
    EXPECT_EQ(employee().fullName, "Eve Stranger");
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, OwnerIsToldWhatToDo)
{
    ownerSignsUp();
    EXPECT_EQ(world.mails().back().text.find("more than one sign-up"), std::string::npos);
    const std::string newest = strangerSignsUp();
    EXPECT_NE(world.mails().back().text.find("more than one sign-up"), std::string::npos);
    const Reply reply = verify(newest);
    EXPECT_EQ(reply.message(),
              "Your e-mail address is verified. More than one person signed up with it, so the"
              " account has no password yet: please choose one with \"Forgot password?\". An"
              " administrator now has to approve your account.");
    EXPECT_EQ(world.mails().back().subject, "Please choose a password for Clockwell");
    EXPECT_EQ(world.mails().back().to, "kim@example.org");
    EXPECT_NE(world.mails().back().text.find("Forgot password?"), std::string::npos);
}

TEST_F(ContestedSignUpTest, SameSignUpTwiceIsOnePerson)
{
    const std::string first = ownerSignsUp();
    network = "127.0.0.7"; // a request that is repeated after a lost reply, in another network
    Body body = application();
    body["fullName"] = "Kim Renamed";
    ASSERT_EQ(call("signup", body).status, 201);
    EXPECT_EQ(verify(first).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Renamed");
    EXPECT_EQ(world.login().error(),
              "ACCOUNT_PENDING"); // the password is known, only the approval is missing
}

TEST_F(ContestedSignUpTest, NoNumberOfSignUpsMakesAStrangersPasswordCount)
{
    ownerSignsUp();
    for (int i = 0; i < 30; ++i)
        strangerSignsUp("127.0.9." + std::to_string(i + 1));
    const auto rows = world.database().read(
        [](Connection &connection) { return connection.value<long long>("SELECT COUNT(*) FROM sign_ups"); });
    EXPECT_LE(rows, 12);
    world.advance(std::chrono::minutes{10});
    resend();
    ASSERT_EQ(verify(world.code()).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Sample");
    expectNoPasswordUntilReset();
}

TEST_F(ContestedSignUpTest, ResetOfAnUnverifiedAddressSetsTheOwnersPassword)
{
    strangerSignsUp();
    ownerSignsUp();
    forgot();
    ASSERT_EQ(reset(world.code()).status, 200);
    EXPECT_EQ(employee().fullName, "Kim Sample");
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").error(), "ACCOUNT_PENDING");
    EXPECT_EQ(world.login("kim@example.org", strangersPassword).status, 401);
}

TEST_F(ContestedSignUpTest, ApprovalStaysWithWhoWasApproved)
{
    const std::string own = ownerSignsUp();
    approve(); // before the address was verified
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET role = 'MANAGER'"); });
    strangerSignsUp();
    EXPECT_EQ(employee().fullName, "Kim Sample");
    ASSERT_EQ(verify(own).json().at("status"), "APPROVED");
    EXPECT_EQ(employee().role, "MANAGER");
    EXPECT_EQ(employee().companyId, std::nullopt);
    EXPECT_EQ(world.login("kim@example.org", strangersPassword).status, 401);
}

TEST_F(ContestedSignUpTest, ApprovalIsNotForAnotherSignUp)
{
    ownerSignsUp();
    approve();
    world.database().write(
        [](Connection &connection) { connection.execute("UPDATE employees SET role = 'MANAGER'"); });
    ASSERT_EQ(verify(strangerSignsUp()).json().at("status"), "PENDING");
    EXPECT_EQ(employee().officeId, "office-1"); // to be approved again with one command
    EXPECT_EQ(employee().role, "EMPLOYEE");
}

} // namespace clockwell::server::test
