#include "AccountScreens.h"
#include "ProfileScreen.h"

#include <QInputMethodEvent>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::AccountScreens;
using test::ProfileScreen;
using test::ScreenDriver;

const QByteArray refused = R"({"message":"No."})";

QObject *fieldOf(ScreenDriver &screen, const QString &name)
{
    const auto element = screen.find(name, QAccessible::EditableText);
    EXPECT_TRUE(element) << "no field " << name.toStdString();
    return element ? element->object : nullptr;
}

QString composedIn(ScreenDriver &screen, const QString &field)
{
    return fieldOf(screen, field)->property("preeditText").toString();
}

void send(ScreenDriver &screen, const QString &field, const QString &composing, const QString &commit = {})
{
    QInputMethodEvent event(composing, {});
    event.setCommitString(commit);
    QCoreApplication::sendEvent(fieldOf(screen, field), &event);
}

/// Types `committed` and leaves `composing` as the preedit text of an input method. The test platform, like
/// some real ones, does not react to a request to commit.
void compose(ScreenDriver &screen, const QString &field, const QString &committed, const QString &composing)
{
    ASSERT_TRUE(screen.type(field, committed)) << screen.dump().toStdString();
    send(screen, field, composing);
}

class ComposedTextTest : public AccountScreens
{
protected:
    void expectRefusal(const char *path) { server.expect("POST", path).reply(400, refused); }

    void expectSent(const QByteArray &part)
    {
        ASSERT_TRUE(stage->waitFor(u"No."_s)) << stage->dump().toStdString();
        EXPECT_EQ(server.requests().size(), 1);
        EXPECT_TRUE(lastBody().contains(part)) << lastBody().toStdString();
    }

    void openSignUp()
    {
        ASSERT_TRUE(stage->click(u"Create an account"_s));
        ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    }
    void openForgotPassword()
    {
        ASSERT_TRUE(stage->click(u"Forgot password?"_s));
        ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    }
};

TEST_F(ComposedTextTest, EnablesTheButton)
{
    stage->type(u"Email"_s, u"kim@example.org"_s);
    stage->click(u"Password"_s, QAccessible::EditableText);
    EXPECT_FALSE(stage->isEnabled(u"Sign in"_s));
    send(stage.screen(), u"Password"_s, u"ㅅ"_s);
    EXPECT_TRUE(stage->isEnabled(u"Sign in"_s));
    send(stage.screen(), u"Password"_s, QString()); // the composition is cancelled
    EXPECT_FALSE(stage->isEnabled(u"Sign in"_s));
}

TEST_F(ComposedTextTest, IsSentByAClick)
{
    expectRefusal("/api/auth/login");
    stage->type(u"Password"_s, u"secret"_s);
    compose(stage.screen(), u"Email"_s, u"김민"_s, u"수"_s);
    ASSERT_TRUE(stage->click(u"Sign in"_s));
    expectSent(R"("email":"김민수")");
    EXPECT_EQ(valueOf(u"Email"_s), u"김민수"_s);
    EXPECT_EQ(composedIn(stage.screen(), u"Email"_s), QString());
}

TEST_F(ComposedTextTest, IsSentFromTheMiddleOfAText)
{
    expectRefusal("/api/auth/login");
    stage->type(u"Password"_s, u"secret"_s);
    stage->type(u"Email"_s, u"김수"_s);
    stage->key(Qt::Key_Left);
    send(stage.screen(), u"Email"_s, u"민"_s);
    stage->click(u"Sign in"_s);
    expectSent(R"("email":"김민수")");
}

TEST_F(ComposedTextTest, IsSentByTheEnterKey)
{
    expectRefusal("/api/auth/login");
    stage->type(u"Email"_s, u"kim@example.org"_s);
    compose(stage.screen(), u"Password"_s, u"비"_s, u"밀"_s);
    stage->key(Qt::Key_Return);
    expectSent(R"("password":"비밀")");
}

TEST_F(ComposedTextTest, IsSentByAssistiveTechnology)
{
    expectRefusal("/api/auth/login");
    stage->type(u"Email"_s, u"kim@example.org"_s);
    compose(stage.screen(), u"Password"_s, u"비"_s, u"밀"_s);
    ASSERT_TRUE(stage->press(u"Sign in"_s));
    expectSent(R"("password":"비밀")");
}

TEST_F(ComposedTextTest, IsSentByATouch)
{
    expectRefusal("/api/auth/login");
    stage->type(u"Email"_s, u"kim@example.org"_s);
    compose(stage.screen(), u"Password"_s, u"비"_s, u"밀"_s);
    QPointingDevice *finger = QTest::createTouchDevice();
    const QPoint place = stage->find(u"Sign in"_s)->rect.center();
    QTest::touchEvent(&stage.view(), finger).press(0, place);
    QTest::touchEvent(&stage.view(), finger).release(0, place);
    expectSent(R"("password":"비밀")");
}

TEST_F(ComposedTextTest, IsCommittedWhenTheFieldLosesFocus)
{
    compose(stage.screen(), u"Email"_s, u"김민"_s, u"수"_s);
    stage->key(Qt::Key_Tab);
    EXPECT_EQ(valueOf(u"Email"_s), u"김민수"_s);
    EXPECT_EQ(composedIn(stage.screen(), u"Email"_s), QString());
    compose(stage.screen(), u"Password"_s, u"비"_s, u"밀"_s);
    stage->click(u"Email"_s, QAccessible::EditableText);
    EXPECT_EQ(valueOf(u"Password"_s), u"비밀"_s);
}

TEST_F(ComposedTextTest, IsSentAfterAClickOutsideTheFields)
{
    expectRefusal("/api/auth/login");
    stage->type(u"Email"_s, u"kim@example.org"_s);
    compose(stage.screen(), u"Password"_s, u"비"_s, u"밀"_s);
    QTest::mouseClick(&stage.view(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_TRUE(stage->isEnabled(u"Sign in"_s));
    stage->click(u"Sign in"_s);
    expectSent(R"("password":"비밀")");
}

TEST_F(ComposedTextTest, IsPassedToTheForgotPasswordScreen)
{
    compose(stage.screen(), u"Email"_s, u"kim"_s, u"수"_s);
    openForgotPassword();
    EXPECT_EQ(top()->property("prefillEmail").toString(), u"kim수"_s);
    EXPECT_EQ(valueOf(u"Email"_s), u"kim수"_s);
}

TEST_F(ComposedTextTest, IsPassedToTheCodeScreen)
{
    server.expect("POST", "/api/auth/login")
        .reply(403, R"({"error":"EMAIL_NOT_VERIFIED","message":"Verify."})");
    stage->type(u"Email"_s, u"kim"_s);
    stage->type(u"Password"_s, u"secret"_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"Enter verification code"_s));
    compose(stage.screen(), u"Email"_s, QString(), u"수"_s);
    ASSERT_TRUE(stage->click(u"Enter verification code"_s));
    ASSERT_TRUE(arrivesAt(u"Verify email"_s));
    EXPECT_TRUE(top()->property("email").toString().contains(u'수'));
}

TEST_F(ComposedTextTest, InEveryFieldOfTheSignUpIsSent)
{
    expectRefusal("/api/auth/signup");
    openSignUp();
    for (const auto &field :
         {u"Email"_s, u"Phone (optional)"_s, u"Company code (optional)"_s, u"Password"_s, u"Full name"_s})
        compose(stage.screen(), field, u"김민"_s, u"수"_s);
    ASSERT_TRUE(stage->isEnabled(u"Create account"_s));
    ASSERT_TRUE(stage->click(u"Create account"_s));
    expectSent(R"("fullName":"김민수")");
    for (const QByteArray key : {"email", "phone", "instituteCode", "password"})
        EXPECT_TRUE(lastBody().contains('"' + key + R"(":"김민수")")) << lastBody().toStdString();
}

TEST_F(ComposedTextTest, IsNotInterruptedByUpdatesOfTheForm)
{
    expectRefusal("/api/auth/forgot-password");
    openForgotPassword();
    stage->click(u"Email"_s, QAccessible::EditableText);
    for (const auto &step : {u"ㅅ"_s, u"수"_s}) {
        send(stage.screen(), u"Email"_s, step);
        EXPECT_EQ(composedIn(stage.screen(), u"Email"_s), step);
        EXPECT_TRUE(stage->isEnabled(u"Send reset code"_s));
    }
    ASSERT_TRUE(stage->click(u"Send reset code"_s));
    expectSent(R"("email":"수")");
}

TEST_F(ComposedTextTest, OnTheForgotPasswordScreenIsSentByTheEnterKey)
{
    expectRefusal("/api/auth/forgot-password");
    openForgotPassword();
    compose(stage.screen(), u"Email"_s, u"kim"_s, u"수"_s);
    stage->key(Qt::Key_Return);
    expectSent(R"("email":"kim수")");
}

TEST_F(ComposedTextTest, CountsTowardsTheDigitsOfACode)
{
    expectRefusal("/api/auth/verify-otp");
    openCodeScreen(u"kim@example.org"_s, OtpPurpose::VerifyEmail);
    compose(stage.screen(), u"Verification code"_s, u"12345"_s, u"a"_s);
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s));
    send(stage.screen(), u"Verification code"_s, u"67"_s);
    EXPECT_EQ(composedIn(stage.screen(), u"Verification code"_s), u"67"_s);
    EXPECT_TRUE(stage->isEnabled(u"Verify"_s));
    ASSERT_TRUE(stage->click(u"Verify"_s));
    expectSent(R"("code":"123456")");
    EXPECT_EQ(valueOf(u"Verification code"_s), u"123456"_s);
}

TEST_F(ComposedTextTest, InTheCodeFieldIsSentByTheEnterKey)
{
    expectRefusal("/api/auth/verify-otp");
    openCodeScreen(u"kim@example.org"_s, OtpPurpose::VerifyEmail);
    compose(stage.screen(), u"Verification code"_s, QString(), u"१२३४५६"_s);
    stage->key(Qt::Key_Return);
    expectSent(R"("code":"१२३४५६")");
}

TEST_F(ComposedTextTest, InCodeAndNewPasswordIsSent)
{
    expectRefusal("/api/auth/reset-password");
    openCodeScreen(u"kim@example.org"_s, OtpPurpose::ResetPassword);
    compose(stage.screen(), u"Verification code"_s, u"1234"_s, u"56"_s);
    stage->key(Qt::Key_Return); // moves to the new password
    EXPECT_EQ(valueOf(u"Verification code"_s), u"123456"_s);
    send(stage.screen(), u"New password"_s, u"밀"_s);
    ASSERT_TRUE(stage->isEnabled(u"Reset password"_s));
    stage->click(u"Reset password"_s, QAccessible::Button);
    expectSent(R"("code":"123456","newPassword":"밀")");
}

TEST_F(ComposedTextTest, IsKeptWhenACodeIsResent)
{
    server.expect("POST", "/api/auth/resend-otp").reply(400, refused);
    openCodeScreen(u"kim@example.org"_s, OtpPurpose::VerifyEmail);
    compose(stage.screen(), u"Verification code"_s, u"1"_s, u"2"_s);
    ASSERT_TRUE(stage->click(u"Resend code"_s));
    ASSERT_TRUE(stage->waitFor(u"No."_s));
    EXPECT_EQ(valueOf(u"Verification code"_s), u"12"_s);
}

class ComposedPasswordTest : public ProfileScreen
{};

TEST_F(ComposedPasswordTest, InTheSheetIsSent)
{
    server.expect("GET", "/api/auth/me").anyNumber().reply(200, test::userJson("Kel Voss"));
    server.expect("POST", "/api/auth/change-password").reply(400, refused);
    show();
    ASSERT_TRUE(openSheet());
    compose(screen(), u"Current password"_s, u"비"_s, u"밀"_s);
    compose(screen(), u"New password"_s, QString(), u"새"_s);
    ASSERT_TRUE(screen().isEnabled(u"Update password"_s));
    ASSERT_TRUE(screen().click(u"Update password"_s));
    ASSERT_TRUE(screen().waitFor(u"No."_s));
    EXPECT_EQ(server.requests().last().body, R"({"currentPassword":"비밀","newPassword":"새"})");
}

} // namespace
} // namespace clockwell
