#include "account/AuthStore.h"
#include "account/Timing.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"
#include "support/screen/QmlStage.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::FakeServer;
using test::MemoryTokenStore;
using test::QmlStage;
using test::spinUntil;

const QByteArray unverified = R"({"error":"EMAIL_NOT_VERIFIED","message":"Please verify your e-mail."})";

class LoginViewTest : public ::testing::Test
{
protected:
    APIClient::Options options() const
    {
        APIClient::Options result;
        result.baseURL = server.url(u"/api"_s);
        return result;
    }

    void fill(const QString &email, const QString &password)
    {
        EXPECT_TRUE(stage->type(u"Email"_s, email)) << stage->dump().toStdString();
        EXPECT_TRUE(stage->type(u"Password"_s, password));
    }

    /// The screen on top of the stack.
    QQuickItem *top() { return stage.root()->property("currentItem").value<QQuickItem *>(); }

    bool waitForIdle()
    {
        return spinUntil([this] { return stage->isEnabled(u"Sign in"_s); });
    }

    QJsonObject lastBody() const
    {
        const auto requests = server.requests();
        return requests.isEmpty() ? QJsonObject() : QJsonDocument::fromJson(requests.last().body).object();
    }

    FakeServer server;
    MemoryTokenStore tokens;
    SessionEvents events;
    APIClient api{options(), tokens, events};
    AuthStore auth{api, tokens};
    Timing timing;
    QmlStage stage{u"Clockwell/Account/AccountStack.qml"_s,
                   {{u"auth"_s, QVariant::fromValue(&auth)}, {u"timing"_s, QVariant::fromValue(&timing)}}};
};

TEST_F(LoginViewTest, ShowsItsTextsInOrder)
{
    const auto texts = stage->texts();
    qsizetype last = -1;
    for (const auto &text :
         {u"Qorvane"_s, u"Sign in to mark attendance"_s, u"EMAIL"_s, u"Email"_s, u"PASSWORD"_s, u"Password"_s,
          u"Forgot password?"_s, u"Sign in"_s, u"New here?"_s, u"Create an account"_s}) {
        const auto at = texts.indexOf(text);
        EXPECT_GT(at, last) << text.toStdString() << " in " << stage->dump().toStdString();
        last = at;
    }
    EXPECT_FALSE(stage->shows(u"Enter verification code"_s));
}

TEST_F(LoginViewTest, SignInIsDisabledWhileEitherFieldIsEmpty)
{
    EXPECT_FALSE(stage->isEnabled(u"Sign in"_s));
    stage->type(u"Email"_s, u"ada@example.org"_s);
    EXPECT_FALSE(stage->isEnabled(u"Sign in"_s));
    stage->retype(u"Email"_s, QString());
    stage->type(u"Password"_s, u"secret"_s);
    EXPECT_FALSE(stage->isEnabled(u"Sign in"_s));
    stage->press(u"Sign in"_s);
    stage->key(Qt::Key_Return);
    QTest::qWait(100);
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(LoginViewTest, AnEmailOfBlanksEnablesTheButtonAndIsSentEmpty)
{
    fill(u"  \t"_s.left(2), u"secret"_s);
    EXPECT_TRUE(stage->isEnabled(u"Sign in"_s));
    server.expect("POST", "/api/auth/login").reply(400, R"({"message":"An e-mail address is needed."})");
    stage->click(u"Sign in"_s);
    EXPECT_TRUE(stage->waitFor(u"An e-mail address is needed."_s));
    EXPECT_EQ(lastBody()["email"_L1].toString(), QString());
}

TEST_F(LoginViewTest, SendsTheTrimmedEmailAndThePasswordAsTyped)
{
    fill(u" ada@example.org "_s, u" secret "_s);
    server.expect("POST", "/api/auth/login").reply(401, R"({"message":"No."})");
    stage->click(u"Sign in"_s);
    EXPECT_TRUE(stage->waitFor(u"No."_s));
    EXPECT_EQ(lastBody()["email"_L1].toString(), u"ada@example.org"_s);
    EXPECT_EQ(lastBody()["password"_L1].toString(), u" secret "_s);
}

TEST_F(LoginViewTest, IsBusyWhileTheRequestRunsAndIgnoresFurtherTaps)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.expect("POST", "/api/auth/login").after(1s).reply(401, R"({"message":"No."})");
    for (int tap = 0; tap < 6; ++tap)
        stage->click(u"Sign in"_s);
    stage->key(Qt::Key_Return);
    EXPECT_TRUE(stage->shows(u"Sign in"_s)); // keeps its name while only the spinner is drawn
    EXPECT_FALSE(stage->isEnabled(u"Sign in"_s));
    EXPECT_TRUE(stage->waitFor(u"No."_s));
    EXPECT_TRUE(waitForIdle());
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(LoginViewTest, SuccessSignsInThroughTheStore)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.expect("POST", "/api/auth/login")
        .reply(200, R"({"accessToken":"a","refreshToken":"r","user":{"id":"1","fullName":"Ada","email":"e",)"
                    R"("role":"EMPLOYEE","status":"APPROVED"}})");
    stage->click(u"Sign in"_s);
    EXPECT_TRUE(spinUntil([this] { return auth.phase() == AuthStore::Phase::SignedIn; }));
    EXPECT_TRUE(waitForIdle());
    EXPECT_EQ(tokens.access(), u"a"_s);
}

TEST_F(LoginViewTest, UnverifiedEmailShowsTheMessageAndTheLink)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.expect("POST", "/api/auth/login").reply(403, unverified);
    stage->click(u"Sign in"_s);
    EXPECT_TRUE(stage->waitFor(u"Please verify your e-mail."_s));
    EXPECT_TRUE(stage->waitFor(u"Enter verification code"_s));
}

TEST_F(LoginViewTest, AnErrorCodeInDifferentCaseShowsNoLink)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.expect("POST", "/api/auth/login")
        .reply(403, R"({"error":"email_not_verified","message":"Verify."})");
    stage->click(u"Sign in"_s);
    EXPECT_TRUE(stage->waitFor(u"Verify."_s));
    EXPECT_FALSE(stage->shows(u"Enter verification code"_s));
}

TEST_F(LoginViewTest, ASecondAttemptHidesErrorAndLinkBeforeItIsAnswered)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.expect("POST", "/api/auth/login").reply(403, unverified);
    server.expect("POST", "/api/auth/login").after(1s).reply(401, R"({"message":"Other."})");
    stage->click(u"Sign in"_s);
    ASSERT_TRUE(stage->waitFor(u"Enter verification code"_s));
    ASSERT_TRUE(waitForIdle());
    stage->click(u"Sign in"_s);
    EXPECT_FALSE(stage->shows(u"Please verify your e-mail."_s));
    EXPECT_FALSE(stage->shows(u"Enter verification code"_s));
    EXPECT_TRUE(stage->waitFor(u"Other."_s));
    EXPECT_FALSE(stage->shows(u"Enter verification code"_s));
}

TEST_F(LoginViewTest, ANetworkFailureIsShown)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.goDown();
    stage->click(u"Sign in"_s);
    EXPECT_TRUE(stage->waitFor(u"Could not connect to the server."_s));
    EXPECT_TRUE(waitForIdle());
}

TEST_F(LoginViewTest, TheCodeScreenReceivesTheEmailAsTyped)
{
    fill(u" ada@example.org "_s, u"secret"_s);
    server.expect("POST", "/api/auth/login").reply(403, unverified);
    stage->click(u"Sign in"_s);
    ASSERT_TRUE(stage->waitFor(u"Enter verification code"_s));
    stage->click(u"Enter verification code"_s);
    ASSERT_TRUE(stage->waitFor(u"Verify email"_s));
    EXPECT_EQ(top()->property("email").toString(), u" ada@example.org "_s);
    EXPECT_EQ(top()->property("purpose").toInt(), 0);
}

TEST_F(LoginViewTest, TheCodeScreenReceivesTheCurrentEmail)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    server.expect("POST", "/api/auth/login").reply(403, unverified);
    stage->click(u"Sign in"_s);
    ASSERT_TRUE(stage->waitFor(u"Enter verification code"_s));
    stage->retype(u"Email"_s, u"bea@example.org "_s);
    stage->click(u"Enter verification code"_s);
    ASSERT_TRUE(stage->waitFor(u"Verify email"_s));
    EXPECT_EQ(top()->property("email").toString(), u"bea@example.org "_s);
}

TEST_F(LoginViewTest, ForgotPasswordWithAnEmptyFieldOpensWithAnEmptyEmail)
{
    stage->click(u"Forgot password?"_s);
    ASSERT_TRUE(stage->waitFor(u"Forgot password"_s));
    EXPECT_EQ(top()->property("prefillEmail").toString(), QString());
}

TEST_F(LoginViewTest, ForgotPasswordReceivesTheEmailAsTyped)
{
    stage->type(u"Email"_s, u" ada@"_s);
    stage->click(u"Forgot password?"_s);
    ASSERT_TRUE(stage->waitFor(u"Forgot password"_s));
    EXPECT_EQ(top()->property("prefillEmail").toString(), u" ada@"_s);
}

TEST_F(LoginViewTest, FieldsKeepTheirTextThroughPushAndPop)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    stage->click(u"Create an account"_s);
    ASSERT_TRUE(stage->waitFor(u"Sign up"_s));
    EXPECT_TRUE(stage->waitUntilGone(u"New here?"_s)); // the screen below is hidden
    stage->click(u"Back"_s);
    ASSERT_TRUE(stage->waitFor(u"New here?"_s));
    EXPECT_TRUE(stage->waitUntilGone(u"Sign up"_s));
    EXPECT_TRUE(stage->isEnabled(u"Sign in"_s));
}

TEST_F(LoginViewTest, EscapeGoesBackFromAPushedScreen)
{
    stage->press(u"Create an account"_s);
    ASSERT_TRUE(stage->waitFor(u"Sign up"_s));
    ASSERT_TRUE(stage->waitUntilGone(u"New here?"_s));
    stage->key(Qt::Key_Escape);
    EXPECT_TRUE(stage->waitFor(u"New here?"_s));
}

TEST_F(LoginViewTest, EnterMovesOnAndSubmitsOnTheLastField)
{
    server.expect("POST", "/api/auth/login").reply(401, R"({"message":"No."})");
    stage->type(u"Email"_s, u"ada@example.org"_s);
    stage->key(Qt::Key_Return);
    stage->typeText(u"secret"_s);
    stage->key(Qt::Key_Return);
    EXPECT_TRUE(stage->waitFor(u"No."_s));
    EXPECT_EQ(lastBody()["password"_L1].toString(), u"secret"_s);
}

TEST_F(LoginViewTest, TheKeyboardAloneReachesEveryControlInOrder)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    stage->click(u"Email"_s, QAccessible::EditableText);
    QStringList reached;
    for (int step = 0; step < 6; ++step) {
        stage->key(Qt::Key_Tab);
        auto *item = stage.view().activeFocusItem();
        auto *interface = QAccessible::queryAccessibleInterface(item);
        reached.append(interface ? interface->text(QAccessible::Name) : QString());
    }
    EXPECT_EQ(reached, (QStringList{u"Password"_s, u"Show password"_s, u"Forgot password?"_s, u"Sign in"_s,
                                    u"Create an account"_s, u"Email"_s}));
}

TEST_F(LoginViewTest, TheFocusedFieldStaysVisibleWhenAKeyboardShrinksTheScreen)
{
    stage.view().resize(320, 180);
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.root()->height() == 180; }));
    stage->click(u"Email"_s, QAccessible::EditableText);
    stage->key(Qt::Key_Return); // moves to the password
    const auto password = stage->find(u"Password"_s, QAccessible::EditableText);
    ASSERT_TRUE(password);
    EXPECT_GE(password->rect.top(), 0);
    EXPECT_LE(password->rect.bottom(), 180);
    stage.view().resize(320, 120);
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.root()->height() == 120; }));
    EXPECT_LE(stage->find(u"Password"_s, QAccessible::EditableText)->rect.bottom(), 120);
}

TEST_F(LoginViewTest, DestroyingTheScreenDuringARequestIsSafe)
{
    server.expect("POST", "/api/auth/login").after(1s).reply(401, R"({"message":"No."})");
    auto second = std::make_unique<QmlStage>(
        u"Clockwell/Account/AccountStack.qml"_s,
        QVariantMap{{u"auth"_s, QVariant::fromValue(&auth)}, {u"timing"_s, QVariant::fromValue(&timing)}});
    (*second)->type(u"Email"_s, u"a"_s);
    (*second)->type(u"Password"_s, u"b"_s);
    (*second)->click(u"Sign in"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    second.reset();
    spinUntil([] { return false; }, 1500ms);
    EXPECT_FALSE(stage->shows(u"No."_s));
}

TEST_F(LoginViewTest, ALongErrorWrapsWithinTheScreen)
{
    fill(u"ada@example.org"_s, u"secret"_s);
    const QString message = u"This account cannot sign in. "_s.repeated(12).trimmed();
    server.expect("POST", "/api/auth/login").reply(403, R"({"message":")" + message.toUtf8() + R"("})");
    stage->click(u"Sign in"_s);
    ASSERT_TRUE(stage->waitFor(message));
    const auto rect = stage->find(message)->rect;
    EXPECT_GE(rect.left(), 20);
    EXPECT_LE(rect.right(), 370);
    EXPECT_GT(rect.height(), 60);
}

} // namespace
} // namespace clockwell
