#include "AccountScreens.h"
#include "account/SignupViewModel.h"
#include "net/DeviceFacts.h"
#include "ui/Theme.h"
#include "ui/controls/FieldTraits.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::AccountScreens;
using test::ChangeLog;
using test::spinUntil;

class SignupViewTest : public AccountScreens
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(stage->click(u"Create an account"_s));
        ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    }

    /// Also finds a field that is scrolled out of view.
    QQuickItem *fieldNamed(const QString &label)
    {
        for (auto *item : top()->findChildren<QQuickItem *>())
            if (item->inherits("QQuickTextInput") &&
                QAccessible::queryAccessibleInterface(item)->text(QAccessible::Name) == label)
                return item;
        return nullptr;
    }

    void fill(const QString &email = u"ada@example.org"_s, const QString &password = u"Secret123"_s)
    {
        EXPECT_TRUE(stage->type(u"Full name"_s, u"Ada Byron"_s)) << stage->dump().toStdString();
        EXPECT_TRUE(stage->type(u"Email"_s, email));
        EXPECT_TRUE(stage->type(u"Password"_s, password));
    }

    QJsonObject sent() const { return QJsonDocument::fromJson(lastBody()).object(); }

    Qt::InputMethodHints hintsOf(const QString &field)
    {
        const auto element = stage->find(field, QAccessible::EditableText);
        return element ? element->object->property("inputMethodHints").value<Qt::InputMethodHints>()
                       : Qt::ImhNone;
    }
};

TEST_F(SignupViewTest, ShowsItsTextsInOrder)
{
    const auto texts = stage->texts();
    qsizetype last = -1;
    for (const auto &text :
         {u"Sign up"_s, u"Qorvane"_s, u"Create your employee account"_s, u"FULL NAME"_s, u"Full name"_s,
          u"EMAIL"_s, u"Email"_s, u"PHONE (OPTIONAL)"_s, u"Phone (optional)"_s, u"COMPANY CODE (OPTIONAL)"_s,
          u"Company code (optional)"_s, u"PASSWORD"_s, u"Password"_s,
          u"Min 8 chars with upper, lower & a number."_s, u"Create account"_s}) {
        const auto at = texts.indexOf(text);
        EXPECT_GT(at, last) << text.toStdString() << " in " << stage->dump().toStdString();
        last = at;
    }
    for (const auto &field :
         {u"Full name"_s, u"Email"_s, u"Phone (optional)"_s, u"Company code (optional)"_s, u"Password"_s})
        EXPECT_EQ(valueOf(field), QString()) << field.toStdString();
}

TEST_F(SignupViewTest, EachFieldRequestsItsKeyboard)
{
    EXPECT_FALSE(hintsOf(u"Full name"_s) & Qt::ImhNoAutoUppercase);
    EXPECT_TRUE(hintsOf(u"Email"_s) & Qt::ImhEmailCharactersOnly);
    EXPECT_TRUE(hintsOf(u"Phone (optional)"_s) & Qt::ImhDialableCharactersOnly);
    EXPECT_TRUE(hintsOf(u"Company code (optional)"_s) & Qt::ImhPreferUppercase);
    EXPECT_TRUE(hintsOf(u"Password"_s) & Qt::ImhHiddenText);
    const auto phone = stage->find(u"Phone (optional)"_s, QAccessible::EditableText);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(phone->object)->text(QAccessible::Description),
              u"+92 300 0000000"_s);
}

TEST_F(SignupViewTest, TheButtonNeedsNameEmailAndPasswordAndNothingElse)
{
    EXPECT_FALSE(stage->isEnabled(u"Create account"_s));
    fill();
    EXPECT_TRUE(stage->isEnabled(u"Create account"_s));
    for (const auto &field : {u"Full name"_s, u"Email"_s, u"Password"_s}) {
        const QString before = valueOf(field);
        stage->retype(field, QString());
        EXPECT_FALSE(stage->isEnabled(u"Create account"_s)) << field.toStdString();
        stage->retype(field, before);
        EXPECT_TRUE(stage->isEnabled(u"Create account"_s)) << field.toStdString();
    }
}

TEST_F(SignupViewTest, BlanksCountAsText)
{
    server.expect("POST", "/api/auth/signup").reply(400, R"({"message":"Really?"})");
    stage->type(u"Full name"_s, u" "_s);
    stage->type(u"Email"_s, u" "_s);
    stage->type(u"Password"_s, u" "_s);
    EXPECT_TRUE(stage->click(u"Create account"_s));
    EXPECT_TRUE(stage->waitFor(u"Really?"_s));
    EXPECT_EQ(sent()["fullName"_L1].toString(), u" "_s);
    EXPECT_EQ(sent()["email"_L1].toString(), QString());
    EXPECT_EQ(sent()["password"_L1].toString(), u" "_s);
}

TEST_F(SignupViewTest, EmptyPhoneAndCompanyCodeAreAbsent)
{
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok"})");
    fill();
    stage->click(u"Create account"_s);
    ASSERT_TRUE(arrivesAt(u"Verify email"_s));
    const QByteArray expected =
        R"({"fullName":"Ada Byron","email":"ada@example.org","password":"Secret123","deviceId":")" +
        currentDeviceId().toUtf8() + R"(","deviceModel":")" + deviceModel().toUtf8() +
        R"(","osVersion":"iOS )" + systemVersion().toUtf8() + R"("})";
    EXPECT_EQ(server.requests().constFirst().body, expected);
    EXPECT_FALSE(server.requests().constFirst().has("Authorization"));
}

TEST_F(SignupViewTest, PhoneAndCompanyCodeAreSentAsTyped)
{
    server.expect("POST", "/api/auth/signup").reply(400, R"({"message":"No."})");
    fill();
    stage->type(u"Phone (optional)"_s, u"  "_s);
    stage->type(u"Company code (optional)"_s, u" dEmo"_s);
    stage->click(u"Create account"_s);
    ASSERT_TRUE(stage->waitFor(u"No."_s));
    EXPECT_TRUE(lastBody().contains(R"("phone":"  ","password":"Secret123",)"));
    EXPECT_TRUE(lastBody().endsWith(R"("instituteCode":" dEmo"})"));
}

TEST_F(SignupViewTest, AWeakPasswordIsSentAndTheServersMessagesAreShown)
{
    server.expect("POST", "/api/auth/signup")
        .reply(400, R"({"message":["Password too short","Password needs a number"]})");
    fill(u"ada@example.org"_s, u"x"_s);
    stage->click(u"Create account"_s);
    EXPECT_TRUE(stage->waitFor(u"Password too short, Password needs a number"_s));
    EXPECT_TRUE(announces(u"Password too short, Password needs a number"_s));
    EXPECT_EQ(sent()["password"_L1].toString(), u"x"_s);
}

TEST_F(SignupViewTest, RequestAndCodeScreenBothGetTheTrimmedEmail)
{
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok","demoCode":"123456"})");
    fill(u"  ada@example.org "_s);
    stage->click(u"Create account"_s);
    ASSERT_TRUE(arrivesAt(u"Verify email"_s));
    EXPECT_EQ(sent()["email"_L1].toString(), u"ada@example.org"_s);
    EXPECT_EQ(top()->property("email").toString(), u"ada@example.org"_s);
    EXPECT_EQ(top()->property("purpose").toInt(), 0);
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
    EXPECT_FALSE(stage->shows(u"ok"_s));
    EXPECT_EQ(valueOf(u"Verification code"_s), QString()); // the server's demo code is not filled in
}

TEST_F(SignupViewTest, TheCodeScreenIsForTheEmailThatWasSent)
{
    server.expect("POST", "/api/auth/signup").after(1s).reply(201, R"({"message":"ok"})");
    server.expect("POST", "/api/auth/resend-otp").reply(200, "{}");
    fill(u" ada@example.org "_s);
    stage->click(u"Create account"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    stage->retype(u"Email"_s, u"somebody.else@example.org"_s);
    ASSERT_TRUE(arrivesAt(u"Verify email"_s));
    EXPECT_TRUE(stage->shows(u"ada@example.org"_s)) << stage->dump().toStdString();
    stage->click(u"Resend code"_s);
    ASSERT_TRUE(stage->waitFor(u"Resend code in 60s"_s));
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org"})");
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    EXPECT_EQ(valueOf(u"Email"_s), u"somebody.else@example.org"_s);
}

TEST_F(SignupViewTest, OnReturnFromTheCodeScreenEveryFieldIsStillFilled)
{
    server.expect("POST", "/api/auth/signup").times(2).reply(201, R"({"message":"ok"})");
    fill(u" ada@example.org"_s);
    stage->type(u"Phone (optional)"_s, u"+49 1"_s);
    stage->type(u"Company code (optional)"_s, u"DEMO"_s);
    stage->click(u"Create account"_s);
    ASSERT_TRUE(arrivesAt(u"Verify email"_s));
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    EXPECT_EQ(valueOf(u"Full name"_s), u"Ada Byron"_s);
    EXPECT_EQ(valueOf(u"Email"_s), u" ada@example.org"_s);
    EXPECT_EQ(valueOf(u"Phone (optional)"_s), u"+49 1"_s);
    EXPECT_EQ(valueOf(u"Company code (optional)"_s), u"DEMO"_s);
    EXPECT_EQ(valueOf(u"Password"_s), u"Secret123"_s);
    const auto *model = top()->findChild<SignupViewModel *>();
    ASSERT_TRUE(model);
    EXPECT_FALSE(model->goToOtp());
    ASSERT_TRUE(becomesEnabled(u"Create account"_s));
    stage->click(u"Create account"_s); // opens the code screen again
    EXPECT_TRUE(arrivesAt(u"Verify email"_s));
}

TEST_F(SignupViewTest, AVerifiedCodeReturnsToTheFilledForm)
{
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok"})");
    server.expect("POST", "/api/auth/verify-otp").reply(200, R"({"message":"ok"})");
    fill(u" ada@example.org"_s);
    stage->click(u"Create account"_s);
    ASSERT_TRUE(arrivesAt(u"Verify email"_s));
    stage->type(u"Verification code"_s, u"123456"_s);
    stage->click(u"Verify"_s);
    ASSERT_TRUE(stage->waitFor(u"All set"_s));
    ASSERT_TRUE(stage->waitUntilStill());
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org","code":"123456"})");
    stage->click(u"OK"_s);
    ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    EXPECT_EQ(depth(), 2);
    EXPECT_EQ(valueOf(u"Full name"_s), u"Ada Byron"_s);
    EXPECT_EQ(valueOf(u"Email"_s), u" ada@example.org"_s);
    EXPECT_EQ(valueOf(u"Password"_s), u"Secret123"_s);
    EXPECT_FALSE(top()->findChild<SignupViewModel *>()->goToOtp());
}

TEST_F(SignupViewTest, AFailureKeepsTheFieldsAndTheScreen)
{
    fill();
    server.goDown();
    stage->click(u"Create account"_s);
    EXPECT_TRUE(stage->waitFor(u"Could not connect to the server."_s));
    EXPECT_TRUE(becomesEnabled(u"Create account"_s));
    EXPECT_EQ(valueOf(u"Full name"_s), u"Ada Byron"_s);
    EXPECT_EQ(valueOf(u"Password"_s), u"Secret123"_s);
    EXPECT_EQ(top()->property("title").toString(), u"Sign up"_s);
}

TEST_F(SignupViewTest, TheErrorIsClearedWhenTheNextRequestStarts)
{
    server.expect("POST", "/api/auth/signup").reply(409, R"({"message":"Taken."})");
    server.expect("POST", "/api/auth/signup").never();
    fill();
    stage->click(u"Create account"_s);
    ASSERT_TRUE(stage->waitFor(u"Taken."_s));
    ASSERT_TRUE(becomesEnabled(u"Create account"_s));
    stage->click(u"Create account"_s);
    EXPECT_FALSE(stage->shows(u"Taken."_s));
    EXPECT_TRUE(server.waitForRequests(2));
}

TEST_F(SignupViewTest, IsBusyWhileTheRequestRunsAndIgnoresTapsAndEnter)
{
    server.expect("POST", "/api/auth/signup").after(1s).reply(409, R"({"message":"Taken."})");
    fill();
    stage->click(u"Create account"_s);
    EXPECT_FALSE(stage->isEnabled(u"Create account"_s));
    stage->click(u"Create account"_s);
    stage->click(u"Password"_s, QAccessible::EditableText);
    stage->key(Qt::Key_Return);
    EXPECT_TRUE(stage->waitFor(u"Taken."_s));
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(SignupViewTest, EnterMovesThroughTheFieldsAndSubmitsAtTheLast)
{
    server.expect("POST", "/api/auth/signup").reply(409, R"({"message":"Taken."})");
    stage->click(u"Full name"_s, QAccessible::EditableText);
    for (const auto &text : {u"Ada"_s, u"a@b"_s, u"1"_s, u"D"_s}) {
        stage->typeText(text);
        stage->key(Qt::Key_Return);
    }
    stage->key(Qt::Key_Return); // no password yet
    settle(100ms);
    EXPECT_TRUE(server.requests().isEmpty());
    stage->typeText(u"pw"_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"Taken."_s));
    EXPECT_TRUE(lastBody().startsWith(R"({"fullName":"Ada","email":"a@b","phone":"1","password":"pw",)"));
    EXPECT_TRUE(lastBody().endsWith(R"("instituteCode":"D"})"));
}

TEST_F(SignupViewTest, EscapeInAFieldGoesBack)
{
    stage->click(u"Email"_s, QAccessible::EditableText);
    stage->key(Qt::Key_Escape);
    EXPECT_TRUE(arrivesAtSignIn());
}

TEST_F(SignupViewTest, LeavingDuringTheRequestPushesNothingLater)
{
    server.expect("POST", "/api/auth/signup").after(1s).reply(201, R"({"message":"ok"})");
    fill();
    stage->click(u"Create account"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    settle(1500ms);
    EXPECT_EQ(depth(), 1);
}

TEST_F(SignupViewTest, AReplyDuringThePopTransitionPushesNothing)
{
    fill();
    QPointer<SignupViewModel> model = top()->findChild<SignupViewModel *>();
    stage->click(u"Back"_s);
    ASSERT_TRUE(stage.root()->property("busy").toBool());
    ASSERT_TRUE(model);
    model->setGoToOtp(true);
    ASSERT_TRUE(arrivesAtSignIn());
    settle(100ms);
    EXPECT_EQ(depth(), 1);
    EXPECT_FALSE(model); // the screen is destroyed
}

TEST_F(SignupViewTest, ASwipeFromTheEdgeGoesBackToTheSignIn)
{
    auto *finger = QTest::createTouchDevice();
    QTest::touchEvent(&stage.view(), finger).press(0, QPoint(6, 500));
    for (int x = 30; x <= 300; x += 30) {
        QTest::qWait(30);
        QTest::touchEvent(&stage.view(), finger).move(0, QPoint(x, 505));
    }
    QTest::qWait(30);
    QTest::touchEvent(&stage.view(), finger).release(0, QPoint(300, 505));
    EXPECT_TRUE(arrivesAtSignIn());
}

TEST_F(SignupViewTest, AnErrorBelowTheFoldIsScrolledIntoView)
{
    const QString message = u"That address cannot be used."_s;
    server.expect("POST", "/api/auth/signup")
        .anyNumber()
        .reply(400, R"({"message":"That address cannot be used."})");
    stage.view().resize(320, 568);
    Theme::of(*stage.view().engine())->setTextScale(2);
    settle(50ms);
    for (const auto &[field, text] : {std::pair(u"Full name"_s, u"Ada"_s), std::pair(u"Email"_s, u"a@b"_s)})
        QAccessible::queryAccessibleInterface(fieldNamed(field))->setText(QAccessible::Value, text);
    fieldNamed(u"Password"_s)->forceActiveFocus();
    stage->typeText(u"secret"_s);
    stage->key(Qt::Key_Return);
    EXPECT_TRUE(spinUntil([&] {
        const auto error = stage->find(message, QAccessible::AlertMessage);
        return error && error->rect.top() >= 0 && error->rect.bottom() <= 568;
    })) << stage->dump().toStdString();
    EXPECT_TRUE(fieldNamed(u"Password"_s)->hasActiveFocus()); // the focus did not move
}

TEST_F(SignupViewTest, ASecondVisitStartsEmpty)
{
    fill();
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    stage->click(u"Create an account"_s);
    ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    EXPECT_EQ(valueOf(u"Full name"_s), QString());
    EXPECT_EQ(valueOf(u"Password"_s), QString());
}

class SignupViewModelTest : public SignupViewTest
{
protected:
    void SetUp() override
    {
        model.setProperty("auth", QVariant::fromValue(&auth));
        model.setFullName(u"Ada"_s);
        model.setEmail(u"a@b"_s);
        model.setPassword(u"pw"_s);
        log.record(model, &SignupViewModel::errorChanged, "error");
        log.record(model, &SignupViewModel::loadingChanged, "loading");
        log.record(model, &SignupViewModel::goToOtpChanged, "goToOtp");
    }

    void submit()
    {
        model.submit();
        ASSERT_TRUE(model.loading());
        ASSERT_TRUE(spinUntil([this] { return !model.loading(); }));
    }

    SignupViewModel model;
    ChangeLog log;
};

TEST_F(SignupViewModelTest, SetsItsFieldsInOrder)
{
    server.expect("POST", "/api/auth/signup").reply(409, R"({"message":"Taken."})");
    server.expect("POST", "/api/auth/signup").reply(201, R"({"message":"ok"})");
    submit();
    submit();
    EXPECT_EQ(log.entries(),
              (QStringList{u"loading true"_s, u"error Taken."_s, u"loading false"_s, u"error "_s,
                           u"loading true"_s, u"goToOtp true"_s, u"loading false"_s}));
}

TEST_F(SignupViewModelTest, AnEmptyServerMessageIsStillAnError)
{
    server.expect("POST", "/api/auth/signup").reply(400, R"({"message":""})");
    submit();
    EXPECT_TRUE(model.failed());
    EXPECT_FALSE(model.goToOtp());
}

} // namespace
} // namespace clockwell
