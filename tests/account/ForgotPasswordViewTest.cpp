#include "AccountScreens.h"
#include "account/ForgotPasswordViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::AccountScreens;
using test::ChangeLog;
using test::spinUntil;

const QByteArray onItsWay = R"({"message":"A code is on its way."})";

class ForgotPasswordViewTest : public AccountScreens
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(stage->click(u"Forgot password?"_s));
        ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    }

    void requestCode(const QString &email, const QByteArray &reply = onItsWay)
    {
        server.expect("POST", "/api/auth/forgot-password").reply(200, reply);
        EXPECT_TRUE(stage->retype(u"Email"_s, email));
        EXPECT_TRUE(stage->click(u"Send reset code"_s)) << stage->dump().toStdString();
        ASSERT_TRUE(spinUntil([this] { return timing.pauses() == 1; }));
    }
};

TEST_F(ForgotPasswordViewTest, ShowsItsTextsInOrder)
{
    const auto texts = stage->texts();
    qsizetype last = -1;
    for (const auto &text : {u"Forgot password"_s, u"Qorvane"_s, u"Reset your password"_s,
                             u"Enter your account email. We'll send a 6-digit reset code."_s, u"EMAIL"_s,
                             u"Email"_s, u"Send reset code"_s}) {
        const auto at = texts.indexOf(text);
        EXPECT_GT(at, last) << text.toStdString() << " in " << stage->dump().toStdString();
        last = at;
    }
    const auto hints =
        stage->find(u"Email"_s, QAccessible::EditableText)->object->property("inputMethodHints");
    EXPECT_TRUE(hints.value<Qt::InputMethodHints>() & Qt::ImhEmailCharactersOnly);
}

TEST_F(ForgotPasswordViewTest, OpenedFromAnEmptyFieldItStartsEmpty)
{
    EXPECT_EQ(valueOf(u"Email"_s), QString());
    EXPECT_FALSE(stage->isEnabled(u"Send reset code"_s));
    stage->click(u"Email"_s, QAccessible::EditableText);
    stage->key(Qt::Key_Return);
    settle(100ms);
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(ForgotPasswordViewTest, OpenedWithATypedEmailItShowsItUnchanged)
{
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    stage->type(u"Email"_s, u" ada@example.org"_s);
    stage->click(u"Forgot password?"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    EXPECT_EQ(valueOf(u"Email"_s), u" ada@example.org"_s);
    EXPECT_TRUE(stage->isEnabled(u"Send reset code"_s));
}

TEST_F(ForgotPasswordViewTest, BlanksEnableTheButtonAndAreSentAsAnEmptyEmail)
{
    requestCode(u"  "_s);
    EXPECT_EQ(lastBody(), R"({"email":""})");
}

TEST_F(ForgotPasswordViewTest, ShowsTheReplyForSixTenthsOfASecondThenOpensTheCodeScreen)
{
    requestCode(u" ada@example.org "_s);
    EXPECT_TRUE(announces(u"A code is on its way."_s));
    EXPECT_FALSE(stage->isEnabled(u"Send reset code"_s)); // busy during the pause
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org"})");
    EXPECT_FALSE(server.requests().constLast().has("Authorization"));
    timing.advance(599ms);
    settle(50ms);
    EXPECT_EQ(depth(), 2);
    timing.advance(1ms);
    ASSERT_TRUE(arrivesAt(u"Reset password"_s));
    EXPECT_EQ(top()->property("email").toString(), u"ada@example.org"_s);
    EXPECT_EQ(top()->property("purpose").toInt(), 1);
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
}

TEST_F(ForgotPasswordViewTest, TheCodeScreenIsForTheEmailThatWasSent)
{
    server.expect("POST", "/api/auth/forgot-password").after(1s).reply(200, onItsWay);
    server.expect("POST", "/api/auth/reset-password").reply(400, R"({"message":"Wrong."})");
    stage->type(u"Email"_s, u" ada@example.org "_s);
    stage->click(u"Send reset code"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    stage->retype(u"Email"_s, u"somebody.else@example.org"_s);
    ASSERT_TRUE(spinUntil([this] { return timing.pauses() == 1; }));
    stage->typeText(u"x"_s); // also during the pause
    timing.advance(600ms);
    ASSERT_TRUE(arrivesAt(u"Reset password"_s));
    EXPECT_TRUE(stage->shows(u"ada@example.org"_s)) << stage->dump().toStdString();
    stage->type(u"Verification code"_s, u"123456"_s);
    stage->type(u"New password"_s, u"Secret123"_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"Wrong."_s));
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org","code":"123456","newPassword":"Secret123"})");
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    EXPECT_EQ(valueOf(u"Email"_s), u"somebody.else@example.orgx"_s);
}

TEST_F(ForgotPasswordViewTest, AReplyWithoutAMessageShowsADefaultInfo)
{
    requestCode(u"nobody"_s, "{}");
    EXPECT_TRUE(announces(u"If that email is registered, a code was sent."_s));
    timing.advance(600ms);
    EXPECT_TRUE(arrivesAt(u"Reset password"_s)); // regardless of the address
}

TEST_F(ForgotPasswordViewTest, OnReturnItKeepsAddressAndInfoAndCanRequestAgain)
{
    requestCode(u" ada@example.org"_s);
    timing.advance(600ms);
    ASSERT_TRUE(arrivesAt(u"Reset password"_s));
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    EXPECT_EQ(valueOf(u"Email"_s), u" ada@example.org"_s);
    EXPECT_TRUE(stage->shows(u"A code is on its way."_s));
    const auto *model = top()->findChild<ForgotPasswordViewModel *>();
    ASSERT_TRUE(model);
    EXPECT_FALSE(model->goToReset());
    EXPECT_TRUE(becomesEnabled(u"Send reset code"_s));
    requestCode(u"b@example.org"_s);
    timing.advance(600ms);
    ASSERT_TRUE(arrivesAt(u"Reset password"_s));
    EXPECT_EQ(top()->property("email").toString(), u"b@example.org"_s);
}

TEST_F(ForgotPasswordViewTest, ANewPasswordReturnsToTheScreenWithItsInfo)
{
    requestCode(u"ada@example.org "_s);
    timing.advance(600ms);
    ASSERT_TRUE(arrivesAt(u"Reset password"_s));
    server.expect("POST", "/api/auth/reset-password").reply(200, R"({"message":"ok"})");
    stage->type(u"Verification code"_s, u"123456"_s);
    stage->type(u"New password"_s, u"Secret123"_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"All set"_s));
    ASSERT_TRUE(stage->waitUntilStill());
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org","code":"123456","newPassword":"Secret123"})");
    stage->click(u"OK"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    EXPECT_TRUE(stage->shows(u"A code is on its way."_s));
    EXPECT_EQ(valueOf(u"Email"_s), u"ada@example.org "_s);
    EXPECT_FALSE(top()->findChild<ForgotPasswordViewModel *>()->goToReset());
    EXPECT_EQ(timing.subscriptions(), 0);
}

TEST_F(ForgotPasswordViewTest, EachAppearanceFillsOnlyAnEmptyField)
{
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    stage->type(u"Email"_s, u"ada@example.org"_s);
    stage->click(u"Forgot password?"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    stage->retype(u"Email"_s, u"other@example.org"_s);
    top()->setVisible(false);
    top()->setVisible(true);
    EXPECT_EQ(valueOf(u"Email"_s), u"other@example.org"_s);
    stage->retype(u"Email"_s, QString());
    EXPECT_EQ(valueOf(u"Email"_s), QString());
    EXPECT_FALSE(stage->isEnabled(u"Send reset code"_s));
    auto *screen = top();
    screen->setVisible(false);
    EXPECT_EQ(screen->findChild<ForgotPasswordViewModel *>()->email(), QString());
    screen->setVisible(true);
    EXPECT_EQ(valueOf(u"Email"_s), u"ada@example.org"_s);
    EXPECT_TRUE(stage->isEnabled(u"Send reset code"_s));
}

TEST_F(ForgotPasswordViewTest, AFieldClearedDuringThePauseIsFilledAgainOnReturn)
{
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    stage->type(u"Email"_s, u"ada@example.org"_s);
    stage->click(u"Forgot password?"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    requestCode(u"other@example.org"_s);
    timing.advance(300ms);
    ASSERT_TRUE(stage->retype(u"Email"_s, QString())); // during the pause
    ASSERT_EQ(timing.pauses(), 1);
    timing.advance(300ms);
    ASSERT_TRUE(arrivesAt(u"Reset password"_s));
    EXPECT_EQ(depth(), 3);
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    EXPECT_EQ(valueOf(u"Email"_s), u"ada@example.org"_s);
    EXPECT_TRUE(becomesEnabled(u"Send reset code"_s));
}

TEST_F(ForgotPasswordViewTest, AFailureShowsTheServersMessageAndStays)
{
    server.expect("POST", "/api/auth/forgot-password").reply(429, R"({"message":["Slow down","Please"]})");
    stage->type(u"Email"_s, u"ada@example.org"_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"Slow down, Please"_s));
    EXPECT_TRUE(announces(u"Slow down, Please"_s));
    EXPECT_TRUE(becomesEnabled(u"Send reset code"_s));
    EXPECT_EQ(timing.pauses(), 0);
    EXPECT_EQ(depth(), 2);
    requestCode(u"ada@example.org"_s);
    EXPECT_FALSE(stage->shows(u"Slow down, Please"_s));
}

TEST_F(ForgotPasswordViewTest, ANetworkFailureIsShown)
{
    server.goDown();
    stage->type(u"Email"_s, u"a"_s);
    stage->click(u"Send reset code"_s);
    EXPECT_TRUE(stage->waitFor(u"Could not connect to the server."_s));
}

TEST_F(ForgotPasswordViewTest, IsBusyWhileItWaitsAndIgnoresTapsAndEnter)
{
    requestCode(u"ada@example.org"_s);
    stage->click(u"Send reset code"_s);
    stage->click(u"Email"_s, QAccessible::EditableText);
    stage->key(Qt::Key_Return);
    settle(100ms);
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(ForgotPasswordViewTest, LeavingDuringTheRequestPushesNothingLater)
{
    server.expect("POST", "/api/auth/forgot-password").after(1s).reply(200, onItsWay);
    stage->type(u"Email"_s, u"a"_s);
    stage->click(u"Send reset code"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    settle(1500ms);
    timing.advance(1s);
    settle(100ms);
    EXPECT_EQ(depth(), 1);
}

TEST_F(ForgotPasswordViewTest, LeavingDuringThePausePushesNothingLater)
{
    requestCode(u"ada@example.org"_s);
    stage->key(Qt::Key_Escape);
    ASSERT_TRUE(arrivesAtSignIn());
    timing.advance(1s);
    settle(100ms);
    EXPECT_EQ(depth(), 1);
}

TEST_F(ForgotPasswordViewTest, APauseThatEndsDuringThePopTransitionPushesNothing)
{
    requestCode(u"ada@example.org"_s);
    stage->key(Qt::Key_Escape);
    timing.advance(600ms);
    ASSERT_TRUE(arrivesAtSignIn());
    settle(100ms);
    EXPECT_EQ(depth(), 1);
}

class ForgotPasswordViewModelTest : public ForgotPasswordViewTest
{
protected:
    void SetUp() override
    {
        model.setProperty("auth", QVariant::fromValue(&auth));
        model.setProperty("timing", QVariant::fromValue(static_cast<Timing *>(&timing)));
        model.setEmail(u"a@b"_s);
        log.record(model, &ForgotPasswordViewModel::errorChanged, "error");
        log.record(model, &ForgotPasswordViewModel::infoChanged, "info");
        log.record(model, &ForgotPasswordViewModel::loadingChanged, "loading");
        log.record(model, &ForgotPasswordViewModel::goToResetChanged, "goToReset");
    }

    ForgotPasswordViewModel model;
    ChangeLog log;
};

TEST_F(ForgotPasswordViewModelTest, SetsItsFieldsInOrder)
{
    server.expect("POST", "/api/auth/forgot-password").reply(200, onItsWay);
    server.expect("POST", "/api/auth/forgot-password").reply(400, R"({"message":"No."})");
    model.submit();
    ASSERT_TRUE(spinUntil([this] { return timing.pauses() == 1; }));
    EXPECT_EQ(log.entries(), (QStringList{u"loading true"_s, u"info A code is on its way."_s}));
    timing.advance(600ms);
    ASSERT_TRUE(spinUntil([this] { return !model.loading(); }));
    model.setGoToReset(false);
    model.submit();
    ASSERT_TRUE(spinUntil([this] { return !model.loading(); }));
    EXPECT_EQ(log.entries().sliced(2),
              (QStringList{u"goToReset true"_s, u"loading false"_s, u"goToReset false"_s, u"info "_s,
                           u"loading true"_s, u"error No."_s, u"loading false"_s}));
}

} // namespace
} // namespace clockwell
