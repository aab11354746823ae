#include "AccountScreens.h"
#include "ProfileScreen.h"
#include "account/ChangePasswordViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::ChangeLog;
using test::spinUntil;
using test::userJson;

const QString path = u"/api/auth/change-password"_s;

class ChangePasswordViewTest : public test::ProfileScreen
{
protected:
    void SetUp() override
    {
        server.expect("GET", "/api/auth/me").anyNumber().reply(200, userJson("Kel Voss"));
        show();
        ASSERT_TRUE(openSheet());
    }

    void fill(const QString &current = u"old one"_s, const QString &next = u"new one"_s)
    {
        ASSERT_TRUE(screen().retype(u"Current password"_s, current));
        ASSERT_TRUE(screen().retype(u"New password"_s, next));
    }
    bool submit() { return screen().click(u"Update password"_s); }
    bool isDone() { return screen().waitFor(u"Password changed"_s) && screen().waitUntilStill(); }
    bool canSubmit() { return screen().isEnabled(u"Update password"_s); }
    int sent() { return server.count(path); }
    QByteArray bodyOf(int index)
    {
        QList<QByteArray> bodies;
        for (const auto &request : server.requests())
            if (request.path == path)
                bodies.append(request.body);
        return bodies.value(index);
    }
};

TEST_F(ChangePasswordViewTest, ShowsItsTextsInOrder)
{
    const auto texts = screen().texts();
    qsizetype last = -1;
    for (const auto &text :
         {u"Cancel"_s, u"Change password"_s, u"CURRENT PASSWORD"_s, u"Current password"_s, u"NEW PASSWORD"_s,
          u"New password"_s, u"Min 8 chars with upper, lower & a number."_s, u"Update password"_s}) {
        const auto at = texts.indexOf(text, last + 1);
        EXPECT_GT(at, last) << text.toStdString() << " in " << screen().dump().toStdString();
        last = at;
    }
}

TEST_F(ChangePasswordViewTest, TheFieldsMaskTheirTextAndSetTheirInputHints)
{
    for (const auto &name : {u"Current password"_s, u"New password"_s}) {
        const auto field = screen().find(name, QAccessible::EditableText);
        ASSERT_TRUE(field);
        EXPECT_TRUE(field->state.passwordEdit);
        const auto hints = field->object->property("inputMethodHints").value<Qt::InputMethodHints>();
        EXPECT_TRUE(hints & Qt::ImhHiddenText);
        EXPECT_TRUE(hints & Qt::ImhSensitiveData);
        EXPECT_TRUE(hints & Qt::ImhNoPredictiveText);
        EXPECT_TRUE(hints & Qt::ImhNoAutoUppercase);
    }
    ASSERT_TRUE(screen().click(u"Show password"_s));
    EXPECT_FALSE(screen().find(u"Current password"_s, QAccessible::EditableText)->state.passwordEdit);
    EXPECT_TRUE(screen().find(u"New password"_s, QAccessible::EditableText)->state.passwordEdit);
}

TEST_F(ChangePasswordViewTest, OneCharacterInEachFieldIsEnough)
{
    EXPECT_FALSE(canSubmit());
    screen().type(u"Current password"_s, u"a"_s);
    EXPECT_FALSE(canSubmit());
    screen().type(u"New password"_s, u" "_s); // blanks count as text
    EXPECT_TRUE(canSubmit());
    screen().retype(u"Current password"_s, QString());
    EXPECT_FALSE(canSubmit());
}

TEST_F(ChangePasswordViewTest, SendsBothUnchangedWithTheAccessToken)
{
    server.expect("POST", path).reply(200, R"({"message":"Done."})");
    fill(u"  old \"one\" "_s, u" ünï\\code "_s);
    ASSERT_TRUE(submit());
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bodyOf(0), R"({"currentPassword":"  old \"one\" ","newPassword":" ünï\\code "})");
    const auto request = server.requests().last();
    EXPECT_EQ(request.header("Authorization"), "Bearer a1");
}

TEST_F(ChangePasswordViewTest, SuccessShowsAnAlertAndOkReturnsToTheProfileStillSignedIn)
{
    server.expect("POST", path).reply(200, "{}");
    const auto writes = tokens.writes().size();
    fill();
    ASSERT_TRUE(submit());
    ASSERT_TRUE(isDone());
    EXPECT_FALSE(screen().shows(u"Update password"_s)); // below the alert
    ASSERT_TRUE(screen().click(u"OK"_s));
    EXPECT_TRUE(screen().waitUntilGone(u"Password changed"_s));
    EXPECT_TRUE(screen().waitFor(u"Account status, Approved"_s));
    ASSERT_TRUE(screen().waitUntilStill());
    EXPECT_FALSE(screen().shows(u"Current password"_s));
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
    EXPECT_EQ(tokens.writes().size(), writes);
    EXPECT_EQ(tokens.access(), u"a1"_s);
}

TEST_F(ChangePasswordViewTest, AnySuccessCountsRegardlessOfTheBody)
{
    server.expect("POST", path).reply(204, "");
    server.expect("POST", path).reply(200, "<html>not json</html>");
    for (int round = 0; round < 2; ++round) {
        fill();
        ASSERT_TRUE(submit());
        ASSERT_TRUE(isDone()) << round;
        ASSERT_TRUE(screen().click(u"OK"_s));
        ASSERT_TRUE(screen().waitUntilStill());
        ASSERT_TRUE(openSheet());
    }
}

TEST_F(ChangePasswordViewTest, AFailureKeepsTheFieldsAndCanBeCorrected)
{
    server.expect("POST", path).reply(400, R"({"message":"The current password is wrong."})");
    server.expect("POST", path).reply(200, "{}");
    fill();
    ASSERT_TRUE(submit());
    ASSERT_TRUE(screen().waitFor(u"The current password is wrong."_s));
    EXPECT_TRUE(screen().find(u"The current password is wrong."_s, QAccessible::AlertMessage));
    EXPECT_EQ(valueOf(u"Current password"_s), u"old one"_s);
    EXPECT_EQ(valueOf(u"New password"_s), u"new one"_s);
    ASSERT_TRUE(spinUntil([this] { return canSubmit(); }));
    ASSERT_TRUE(submit());
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bodyOf(1), bodyOf(0));
}

TEST_F(ChangePasswordViewTest, AListOfMessagesIsShownJoined)
{
    server.expect("POST", path).reply(400, R"({"message":["too short","no number"]})");
    fill();
    ASSERT_TRUE(submit());
    EXPECT_TRUE(screen().waitFor(u"too short, no number"_s));
}

TEST_F(ChangePasswordViewTest, ANetworkFailureIsShown)
{
    server.expect("POST", path).anyNumber().close();
    fill();
    ASSERT_TRUE(submit());
    EXPECT_TRUE(spinUntil([this] {
        for (const auto &element : screen().elements())
            if (element.role == QAccessible::AlertMessage && !element.name.isEmpty())
                return true;
        return false;
    }));
    EXPECT_EQ(valueOf(u"New password"_s), u"new one"_s);
}

TEST_F(ChangePasswordViewTest, ADoubleTapSendsOnce)
{
    server.expect("POST", path).after(1s).reply(200, "{}");
    fill();
    ASSERT_TRUE(submit());
    submit();
    screen().key(Qt::Key_Return);
    ASSERT_TRUE(isDone());
    EXPECT_EQ(sent(), 1);
}

TEST_F(ChangePasswordViewTest, EnterMovesOnAndSubmitsAtTheEnd)
{
    server.expect("POST", path).reply(200, "{}");
    ASSERT_TRUE(screen().type(u"Current password"_s, u"old"_s));
    screen().key(Qt::Key_Return);
    screen().key(Qt::Key_Return); // the new password is still empty
    settle(50ms);
    EXPECT_EQ(sent(), 0);
    screen().typeText(u"new"_s);
    screen().key(Qt::Key_Return);
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bodyOf(0), R"({"currentPassword":"old","newPassword":"new"})");
}

TEST_F(ChangePasswordViewTest, EveryOpeningStartsEmpty)
{
    server.expect("POST", path).reply(400, R"({"message":"No."})");
    fill();
    ASSERT_TRUE(submit());
    ASSERT_TRUE(screen().waitFor(u"No."_s));
    ASSERT_TRUE(screen().click(u"Cancel"_s));
    ASSERT_TRUE(screen().waitUntilStill());
    ASSERT_TRUE(openSheet());
    EXPECT_FALSE(screen().shows(u"No."_s));
    EXPECT_EQ(valueOf(u"Current password"_s), QString());
    EXPECT_EQ(valueOf(u"New password"_s), QString());
}

TEST_F(ChangePasswordViewTest, EscapeClosesTheAlertAndTheSheetAndASecondOneDoesNothing)
{
    server.expect("POST", path).reply(200, "{}");
    fill();
    ASSERT_TRUE(submit());
    ASSERT_TRUE(isDone());
    screen().key(Qt::Key_Escape);
    EXPECT_TRUE(screen().waitFor(u"Account status, Approved"_s));
    screen().key(Qt::Key_Escape);
    ASSERT_TRUE(screen().waitUntilStill());
    EXPECT_TRUE(screen().shows(u"Account status, Approved"_s));
}

TEST_F(ChangePasswordViewTest, ClosingDuringTheRequestShowsNoAlert)
{
    server.expect("POST", path).after(1s).reply(200, "{}");
    fill();
    ASSERT_TRUE(submit());
    ASSERT_TRUE(requests(path, 1));
    screen().key(Qt::Key_Escape);
    settle(1500ms);
    EXPECT_FALSE(screen().shows(u"Password changed"_s));
    ASSERT_TRUE(openSheet());
    EXPECT_FALSE(screen().shows(u"Password changed"_s));
}

TEST_F(ChangePasswordViewTest, AnExpiredAccessTokenIsRenewedOnceAndTheRequestRepeated)
{
    server.expect("POST", path).reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(200, R"({"accessToken":"a2","refreshToken":"r2"})");
    server.expect("POST", path).reply(200, "{}");
    fill();
    ASSERT_TRUE(submit());
    ASSERT_TRUE(isDone());
    EXPECT_EQ(sent(), 2);
    EXPECT_EQ(server.requests().last().header("Authorization"), "Bearer a2");
    EXPECT_EQ(bodyOf(1), bodyOf(0));
}

TEST_F(ChangePasswordViewTest, APasswordOfManyKindsOfCharactersIsPastedUnchanged)
{
    server.expect("POST", path).reply(200, "{}");
    const QString strange = u"пароль-\U0001F510-Ä1 "_s.repeated(5);
    QGuiApplication::clipboard()->setText(strange);
    ASSERT_TRUE(screen().click(u"New password"_s, QAccessible::EditableText));
    screen().key(Qt::Key_V, Qt::ControlModifier);
    ASSERT_TRUE(screen().type(u"Current password"_s, u"x"_s));
    ASSERT_TRUE(submit());
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bodyOf(0), R"({"currentPassword":"x","newPassword":")" + strange.toUtf8() + R"("})");
}

TEST_F(ChangePasswordViewTest, SetsItsFieldsInOrder)
{
    server.expect("POST", path).reply(400, R"({"message":"No."})");
    server.expect("POST", path).reply(200, "{}");
    ChangePasswordViewModel model;
    model.setProperty("auth", QVariant::fromValue(&auth));
    model.setCurrent(u"a"_s);
    model.setNewPassword(u"b"_s);
    ChangeLog log;
    log.record(model, &ChangePasswordViewModel::errorChanged, "error");
    log.record(model, &ChangePasswordViewModel::loadingChanged, "loading");
    log.record(model, &ChangePasswordViewModel::doneChanged, "done");
    model.submit();
    ASSERT_TRUE(spinUntil([&] { return !model.loading(); }));
    model.submit();
    ASSERT_TRUE(spinUntil([&] { return !model.loading(); }));
    EXPECT_EQ(log.entries(), (QStringList{u"loading true"_s, u"error No."_s, u"loading false"_s, u"error "_s,
                                          u"loading true"_s, u"done true"_s, u"loading false"_s}));
    EXPECT_EQ(model.current(), u"a"_s); // not cleared
    EXPECT_EQ(model.newPassword(), u"b"_s);
}

} // namespace
} // namespace clockwell
