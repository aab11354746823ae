#include "AccountScreens.h"
#include "account/OtpViewModel.h"
#include "support/screen/TextIn.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::AccountScreens;
using test::ChangeLog;
using test::spinUntil;
using test::textIn;

const QByteArray sent = R"({"message":"We sent you another code."})";

class OtpViewTest : public AccountScreens
{
protected:
    void SetUp() override { openCodeScreen(u"ada@example.org"_s, OtpPurpose::VerifyEmail); }

    bool enter(const QString &code) { return stage->retype(u"Verification code"_s, code); }
    QString code() { return valueOf(u"Verification code"_s); }
    QObject *field() { return stage->find(u"Verification code"_s, QAccessible::EditableText)->object; }
    int cursor() { return field()->property("cursorPosition").toInt(); }

    void resendOnce()
    {
        server.expect("POST", "/api/auth/resend-otp").reply(200, sent);
        ASSERT_TRUE(stage->click(u"Resend code"_s)) << stage->dump().toStdString();
        ASSERT_TRUE(stage->waitFor(u"Resend code in 60s"_s));
    }

    void verify()
    {
        server.expect("POST", "/api/auth/verify-otp").reply(200, R"({"message":"Never shown."})");
        enter(u"123456"_s);
        stage->click(u"Verify"_s);
        ASSERT_TRUE(stage->waitFor(u"All set"_s)) << stage->dump().toStdString();
        ASSERT_TRUE(stage->waitUntilStill());
    }
};

TEST_F(OtpViewTest, ShowsItsTextsInOrder)
{
    const auto texts = stage->texts();
    qsizetype last = -1;
    for (const auto &text : {u"Verify email"_s, u"Qorvane"_s, u"Verify your email"_s,
                             u"We sent a 6-digit code to"_s, u"ada@example.org"_s, u"VERIFICATION CODE"_s,
                             u"Verification code"_s, u"Verify"_s, u"Resend code"_s}) {
        const auto at = texts.indexOf(text);
        EXPECT_GT(at, last) << text.toStdString() << " in " << stage->dump().toStdString();
        last = at;
    }
    EXPECT_FALSE(stage->shows(u"New password"_s));
    EXPECT_FALSE(stage->shows(u"All set"_s));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(field())->text(QAccessible::Description), u"123456"_s);
}

TEST_F(OtpViewTest, TheFieldRequestsADigitPadWithoutPrediction)
{
    EXPECT_EQ(field()->property("inputMethodHints").value<Qt::InputMethodHints>(),
              Qt::ImhDigitsOnly | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase | Qt::ImhSensitiveData);
}

TEST_F(OtpViewTest, TypedLettersAreDropped)
{
    stage->type(u"Verification code"_s, u"a"_s);
    EXPECT_EQ(code(), QString());
    stage->typeText(u"1b2-3 c"_s);
    EXPECT_EQ(code(), u"123"_s);
    stage->typeText(u"x"_s); // the code of the model does not change, but the field must be reset
    EXPECT_EQ(code(), u"123"_s);
}

TEST_F(OtpViewTest, TheCursorStaysAfterACommittedTextWithALineBreak)
{
    ASSERT_TRUE(enter(u"99"_s));
    stage->key(Qt::Key_Home);
    QInputMethodEvent commit;
    commit.setCommitString(u"1\n2"_s);
    QCoreApplication::sendEvent(field(), &commit);
    EXPECT_EQ(code(), u"1299"_s);
    EXPECT_EQ(cursor(), 2);
}

TEST_F(OtpViewTest, ASeventhDigitIsDropped)
{
    enter(u"1234567"_s);
    EXPECT_EQ(code(), u"123456"_s);
    EXPECT_EQ(cursor(), 6);
}

TEST_F(OtpViewTest, PastedTextIsTruncatedBeforeItIsFiltered)
{
    ASSERT_TRUE(paste(u"Verification code"_s, u"12a3456"_s));
    EXPECT_EQ(code(), u"12345"_s);
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s));
    stage->typeText(u"6"_s);
    EXPECT_EQ(code(), u"123456"_s);
    EXPECT_TRUE(stage->isEnabled(u"Verify"_s));
}

TEST_F(OtpViewTest, APastedBlankCountsAsOneOfTheSixCharacters)
{
    ASSERT_TRUE(paste(u"Verification code"_s, u"123 456"_s));
    EXPECT_EQ(code(), u"12345"_s);
}

TEST_F(OtpViewTest, ACopiedCodeIsPastedByALongPress)
{
    QPointingDevice *finger = QTest::createTouchDevice();
    const auto longPressAndPaste = [&](const QString &copied) {
        QGuiApplication::clipboard()->setText(copied);
        const QPoint place = stage->find(u"Verification code"_s, QAccessible::EditableText)->rect.center();
        QTest::touchEvent(&stage.view(), finger).press(0, place);
        EXPECT_TRUE(stage->waitFor(u"Paste"_s)) << stage->dump().toStdString();
        QTest::touchEvent(&stage.view(), finger).release(0, place);
        stage.view().grabWindow(); // completes the layout
        const QPoint entry = stage->find(u"Paste"_s, QAccessible::MenuItem)->rect.center();
        QTest::touchEvent(&stage.view(), finger).press(0, entry);
        QTest::touchEvent(&stage.view(), finger).release(0, entry);
        EXPECT_FALSE(stage->shows(u"Paste"_s));
    };
    longPressAndPaste(u"123456"_s);
    EXPECT_EQ(code(), u"123456"_s);
    EXPECT_TRUE(stage->isEnabled(u"Verify"_s));
    stage->key(Qt::Key_A, Qt::ControlModifier);
    stage->key(Qt::Key_Delete);
    longPressAndPaste(u"123 456"_s); // truncated to six characters first, then filtered
    EXPECT_EQ(code(), u"12345"_s);
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s));
    stage->typeText(u"6"_s); // the field still has the focus
    EXPECT_EQ(code(), u"123456"_s);
}

TEST_F(OtpViewTest, DigitsOfOtherScriptsCountOnceEach)
{
    server.expect("POST", "/api/auth/verify-otp").reply(400, R"({"message":"Wrong."})");
    const QString eight = QString::fromUcs4(U"\U0001D7E0", 1);
    ASSERT_TRUE(paste(u"Verification code"_s, eight.repeated(3)));
    EXPECT_EQ(code(), eight.repeated(3));
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s)); // six UTF-16 units are three characters
    ASSERT_TRUE(paste(u"Verification code"_s, u"१२३४"_s));
    EXPECT_EQ(code(), eight.repeated(3) + u"१२३"_s);
    stage->click(u"Verify"_s);
    ASSERT_TRUE(stage->waitFor(u"Wrong."_s));
    EXPECT_EQ(lastBody(),
              R"({"email":"ada@example.org","code":")" + (eight.repeated(3) + u"१२३"_s).toUtf8() + R"("})");
}

TEST_F(OtpViewTest, EditingInTheMiddleKeepsTheCursorThere)
{
    enter(u"123456"_s);
    stage->key(Qt::Key_Home);
    stage->key(Qt::Key_Right);
    stage->typeText(u"a"_s);
    EXPECT_EQ(code(), u"12345"_s); // the letter was among the first six
    EXPECT_EQ(cursor(), 1);
    stage->typeText(u"9"_s);
    EXPECT_EQ(code(), u"192345"_s);
    EXPECT_EQ(cursor(), 2);
    stage->key(Qt::Key_Backspace);
    EXPECT_EQ(code(), u"12345"_s);
    EXPECT_EQ(cursor(), 1);
}

TEST_F(OtpViewTest, ComposedTextIsNotFilteredUntilItIsCommitted)
{
    stage->click(u"Verification code"_s, QAccessible::EditableText);
    QInputMethodEvent composing(u"1a"_s, {});
    QGuiApplication::sendEvent(field(), &composing);
    EXPECT_EQ(field()->property("preeditText").toString(), u"1a"_s);
    EXPECT_EQ(field()->property("displayText").toString(), u"1a"_s);
    QInputMethodEvent done;
    done.setCommitString(u"1a"_s);
    QGuiApplication::sendEvent(field(), &done);
    EXPECT_EQ(field()->property("preeditText").toString(), QString());
    EXPECT_EQ(code(), u"1"_s);
}

TEST_F(OtpViewTest, AssistiveTechnologySetsAFilteredCode)
{
    auto *interface = QAccessible::queryAccessibleInterface(field());
    interface->setText(QAccessible::Value, u"12a3456"_s);
    EXPECT_EQ(code(), u"12345"_s);
    stage->type(u"Verification code"_s, u"6x"_s); // typed text is still filtered
    EXPECT_EQ(code(), u"123456"_s);
}

TEST_F(OtpViewTest, FiveDigitsAreNotEnough)
{
    enter(u"12345"_s);
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s));
    stage->key(Qt::Key_Return);
    settle(100ms);
    EXPECT_TRUE(server.requests().isEmpty());
    stage->typeText(u"6"_s);
    EXPECT_TRUE(stage->isEnabled(u"Verify"_s));
    stage->key(Qt::Key_Backspace);
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s));
}

TEST_F(OtpViewTest, SendsEmailAndCodeUnchanged)
{
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    openCodeScreen(u" ada@example.org "_s, OtpPurpose::VerifyEmail);
    server.expect("POST", "/api/auth/verify-otp")
        .withHeader("Authorization", "")
        .reply(400, R"({"message":"Wrong."})");
    enter(u"123456"_s);
    stage->click(u"Verify"_s);
    ASSERT_TRUE(stage->waitFor(u"Wrong."_s));
    EXPECT_EQ(lastBody(), R"({"email":" ada@example.org ","code":"123456"})");
}

TEST_F(OtpViewTest, AFailureIsAnnouncedAndKeepsTheCode)
{
    server.expect("POST", "/api/auth/verify-otp").reply(400, R"({"message":["Wrong code","Try again"]})");
    enter(u"123456"_s);
    stage->click(u"Verify"_s);
    ASSERT_TRUE(stage->waitFor(u"Wrong code, Try again"_s));
    EXPECT_TRUE(announces(u"Wrong code, Try again"_s));
    EXPECT_TRUE(becomesEnabled(u"Verify"_s));
    EXPECT_EQ(code(), u"123456"_s);
    EXPECT_FALSE(stage->shows(u"All set"_s));
}

TEST_F(OtpViewTest, ANetworkFailureIsShown)
{
    server.goDown();
    enter(u"123456"_s);
    stage->click(u"Verify"_s);
    EXPECT_TRUE(stage->waitFor(u"Could not connect to the server."_s));
    EXPECT_TRUE(becomesEnabled(u"Verify"_s));
}

TEST_F(OtpViewTest, IsBusyWhileTheRequestRunsAndIgnoresTapsAndEnter)
{
    server.expect("POST", "/api/auth/verify-otp").after(1s).reply(400, R"({"message":"Wrong."})");
    enter(u"123456"_s);
    stage->key(Qt::Key_Return); // the last field: submits
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s));
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
    stage->key(Qt::Key_Return);
    stage->click(u"Verify"_s);
    EXPECT_TRUE(stage->waitFor(u"Wrong."_s));
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(OtpViewTest, ResendIsAllowedImmediatelyAndThenLockedForSixtySeconds)
{
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
    resendOnce();
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org"})");
    EXPECT_TRUE(announces(u"We sent you another code."_s));
    for (int left = 60; left > 0; --left) {
        const QString title = u"Resend code in %1s"_s.arg(left);
        ASSERT_TRUE(stage->shows(title)) << title.toStdString();
        ASSERT_FALSE(stage->isEnabled(title));
        timing.advance(1s);
    }
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
    timing.advance(5s);
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s)); // never below 0
    EXPECT_TRUE(stage->shows(u"We sent you another code."_s));
    resendOnce();
}

TEST_F(OtpViewTest, ALockedResendSendsNothing)
{
    resendOnce();
    stage->click(u"Resend code in 60s"_s);
    stage->press(u"Resend code in 60s"_s);
    settle(100ms);
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(OtpViewTest, ResendIsMutedDuringTheCountdown)
{
    const auto color = [this](const QString &title) {
        const auto element = stage->find(title, QAccessible::Button);
        return element ? textIn(element->object)->property("color").value<QColor>() : QColor();
    };
    EXPECT_EQ(color(u"Resend code"_s), QColor(39, 120, 245));
    resendOnce();
    EXPECT_EQ(color(u"Resend code in 60s"_s), QColor(91, 123, 168));
}

TEST_F(OtpViewTest, AResendReplyWithoutAMessageShowsADefaultInfo)
{
    server.expect("POST", "/api/auth/resend-otp").reply(200, "{}");
    stage->click(u"Resend code"_s);
    EXPECT_TRUE(stage->waitFor(u"A new code was sent."_s));
    EXPECT_TRUE(announces(u"A new code was sent."_s));
}

TEST_F(OtpViewTest, AFailedResendCanBeRepeatedImmediately)
{
    server.expect("POST", "/api/auth/resend-otp").reply(429, R"({"message":"Too soon."})");
    stage->click(u"Resend code"_s);
    ASSERT_TRUE(stage->waitFor(u"Too soon."_s));
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
    resendOnce();
    EXPECT_FALSE(stage->shows(u"Too soon."_s));
}

TEST_F(OtpViewTest, ADoubleTapRequestsOneCode)
{
    server.expect("POST", "/api/auth/resend-otp").after(1s).reply(200, sent);
    stage->click(u"Resend code"_s);
    stage->click(u"Resend code"_s);
    ASSERT_TRUE(stage->waitFor(u"Resend code in 60s"_s));
    settle();
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(OtpViewTest, ResendIsShownAsDisabledWhileItsRequestRuns)
{
    server.expect("POST", "/api/auth/resend-otp").after(1s).reply(429, R"({"message":"Too soon."})");
    const auto label = [this] {
        const auto element = stage->find(u"Resend code"_s, QAccessible::Button);
        return element ? textIn(element->object) : nullptr;
    };
    ASSERT_TRUE(label());
    EXPECT_EQ(label()->opacity(), 1);
    stage->click(u"Resend code"_s);
    EXPECT_FALSE(stage->isEnabled(u"Resend code"_s));
    EXPECT_EQ(label()->opacity(), 0.5);
    EXPECT_EQ(label()->property("color").value<QColor>(),
              QColor(39, 120, 245)); // the countdown has not started
    ASSERT_TRUE(stage->waitFor(u"Too soon."_s));
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s));
    EXPECT_EQ(label()->opacity(), 1);
}

TEST_F(OtpViewTest, ResendCanRunDuringASubmission)
{
    server.expect("POST", "/api/auth/verify-otp").after(600ms).reply(400, R"({"message":"Wrong."})");
    enter(u"123456"_s);
    stage->click(u"Verify"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    resendOnce();
    EXPECT_FALSE(stage->isEnabled(u"Verify"_s)); // the submission still runs
    ASSERT_TRUE(stage->waitFor(u"Wrong."_s));
    EXPECT_TRUE(becomesEnabled(u"Verify"_s));
    EXPECT_TRUE(stage->shows(u"We sent you another code."_s));
}

TEST_F(OtpViewTest, ASubmissionClearsErrorAndInfoFirst)
{
    resendOnce();
    server.expect("POST", "/api/auth/verify-otp").reply(400, R"({"message":"Wrong."})");
    server.expect("POST", "/api/auth/verify-otp").never();
    enter(u"123456"_s);
    stage->click(u"Verify"_s);
    EXPECT_FALSE(stage->shows(u"We sent you another code."_s));
    ASSERT_TRUE(stage->waitFor(u"Wrong."_s));
    ASSERT_TRUE(becomesEnabled(u"Verify"_s));
    stage->click(u"Verify"_s);
    EXPECT_FALSE(stage->shows(u"Wrong."_s));
    EXPECT_TRUE(server.waitForRequests(3));
}

TEST_F(OtpViewTest, TheCountdownEndsWithTheScreen)
{
    EXPECT_EQ(timing.subscriptions(), 1);
    resendOnce();
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    EXPECT_TRUE(spinUntil([this] { return timing.subscriptions() == 0; }));
    timing.advance(2s);
    openCodeScreen(u"b@example.org"_s, OtpPurpose::VerifyEmail);
    EXPECT_TRUE(stage->isEnabled(u"Resend code"_s)); // each screen has its own lock
    EXPECT_EQ(timing.subscriptions(), 1);
}

TEST_F(OtpViewTest, LeavingDuringItsRequestsIsSafe)
{
    server.expect("POST", "/api/auth/verify-otp").after(1s).reply(200, "{}");
    server.expect("POST", "/api/auth/resend-otp").after(1s).reply(200, "{}");
    enter(u"123456"_s);
    stage->click(u"Verify"_s);
    stage->click(u"Resend code"_s);
    ASSERT_TRUE(server.waitForRequests(2));
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    settle(600ms);
    EXPECT_FALSE(stage->shows(u"All set"_s));
    EXPECT_EQ(depth(), 1);
}

TEST_F(OtpViewTest, ALongAddressWrapsWithinANarrowScreen)
{
    const QString address = u"an.extraordinarily.long.local.part.of.an.address@a.subdomain.of.example.org"_s;
    stage->click(u"Back"_s);
    ASSERT_TRUE(arrivesAtSignIn());
    stage.view().resize(320, 568);
    ASSERT_TRUE(spinUntil([this] { return stage.root()->width() == 320; }));
    openCodeScreen(address, OtpPurpose::VerifyEmail);
    const auto element = stage->find(address);
    ASSERT_TRUE(element);
    EXPECT_GE(element->rect.left(), 20);
    EXPECT_LE(element->rect.right(), 300);
    EXPECT_GE(element->object->property("lineCount").toInt(), 2);
    EXPECT_FALSE(element->object->property("truncated").toBool());
}

class OtpResetTest : public OtpViewTest
{
protected:
    void SetUp() override { openCodeScreen(u"ada@example.org"_s, OtpPurpose::ResetPassword); }
};

TEST_F(OtpResetTest, ShowsItsTextsInOrder)
{
    const auto texts = stage->texts();
    qsizetype last = -1;
    for (const auto &text :
         {u"Reset password"_s, u"Qorvane"_s, u"Reset your password"_s, u"We sent a 6-digit code to"_s,
          u"ada@example.org"_s, u"VERIFICATION CODE"_s, u"Verification code"_s, u"NEW PASSWORD"_s,
          u"New password"_s, u"Show password"_s, u"Resend code"_s}) {
        const auto at = texts.indexOf(text);
        EXPECT_GT(at, last) << text.toStdString() << " in " << stage->dump().toStdString();
        last = at;
    }
    const auto button =
        stage->find(u"Reset password"_s, QAccessible::Button); // has the same name as the title
    ASSERT_TRUE(button);
    EXPECT_GT(button->rect.top(), stage->find(u"New password"_s, QAccessible::EditableText)->rect.bottom());
    EXPECT_LT(button->rect.bottom(), stage->find(u"Resend code"_s, QAccessible::Button)->rect.top());
    EXPECT_FALSE(stage->shows(u"Verify"_s));
}

TEST_F(OtpResetTest, SixDigitsWithoutANewPasswordAreNotEnough)
{
    const auto enabled = [this] {
        return !stage->find(u"Reset password"_s, QAccessible::Button)->state.disabled;
    };
    enter(u"123456"_s);
    EXPECT_FALSE(enabled());
    stage->key(Qt::Key_Return); // moves the focus to the new password
    stage->typeText(u" "_s);
    EXPECT_EQ(code(), u"123456"_s);
    EXPECT_TRUE(enabled());
    enter(u"12345"_s);
    EXPECT_FALSE(enabled());
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(OtpResetTest, SendsThePasswordAsTypedAndKeepsBothFieldsOnFailure)
{
    server.expect("POST", "/api/auth/reset-password").reply(400, R"({"message":"Too weak."})");
    enter(u"123456"_s);
    stage->key(Qt::Key_Return);
    stage->typeText(u" new pass "_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"Too weak."_s));
    EXPECT_EQ(lastBody(), R"({"email":"ada@example.org","code":"123456","newPassword":" new pass "})");
    EXPECT_EQ(code(), u"123456"_s);
    EXPECT_EQ(valueOf(u"New password"_s), u" new pass "_s);
}

TEST_F(OtpViewTest, SuccessShowsAnAlertAndOkReturnsToThePreviousScreen)
{
    verify();
    EXPECT_TRUE(announces(u"Email verified. Your account is pending admin approval — you'll be able to sign "
                          u"in once approved."_s));
    EXPECT_FALSE(stage->shows(u"Never shown."_s));
    EXPECT_EQ(auth.phase(), AuthStore::Phase::Loading); // verifying a code does not sign in
    EXPECT_TRUE(tokens.writes().isEmpty());
    EXPECT_EQ(depth(), 2);
    ASSERT_TRUE(stage->click(u"OK"_s));
    EXPECT_FALSE(stage->shows(u"All set"_s));
    EXPECT_TRUE(arrivesAtSignIn());
    EXPECT_TRUE(stage->shows(u"New here?"_s));
}

TEST_F(OtpViewTest, OkHasTheFocusAndTheScreenBelowCannotBeReached)
{
    const QObject *input = field();
    const QPoint resend = stage->find(u"Resend code"_s)->rect.center();
    verify();
    EXPECT_FALSE(stage->shows(u"Verify"_s));
    EXPECT_FALSE(stage->shows(u"Resend code"_s));
    stage->typeText(u"9"_s);
    EXPECT_EQ(input->property("text").toString(), u"123456"_s);
    QTest::mouseClick(&stage.view(), Qt::LeftButton, Qt::NoModifier, resend);
    settle(100ms);
    EXPECT_EQ(server.requests().size(), 1);
    stage->key(Qt::Key_Return);
    EXPECT_TRUE(arrivesAtSignIn());
}

TEST_F(OtpViewTest, ADoubleTapOnOkPopsOneScreen)
{
    openCodeScreen(u"b@example.org"_s, OtpPurpose::VerifyEmail); // a third screen
    verify();
    stage->click(u"OK"_s);
    stage->click(u"OK"_s);
    settle(600ms);
    EXPECT_EQ(depth(), 2);
}

TEST_F(OtpViewTest, EscapeAcceptsTheAlert)
{
    verify();
    stage->key(Qt::Key_Escape);
    EXPECT_TRUE(arrivesAtSignIn());
    EXPECT_TRUE(stage->waitUntilGone(u"All set"_s));
}

TEST_F(OtpResetTest, SuccessReportsThatThePasswordWasUpdated)
{
    server.expect("POST", "/api/auth/reset-password").reply(200, "{}");
    enter(u"123456"_s);
    stage->key(Qt::Key_Return);
    stage->typeText(u"Secret123"_s);
    stage->key(Qt::Key_Return);
    ASSERT_TRUE(stage->waitFor(u"All set"_s));
    ASSERT_TRUE(stage->waitUntilStill());
    EXPECT_TRUE(announces(u"Password updated. You can now sign in with your new password."_s));
    stage->press(u"OK"_s);
    EXPECT_TRUE(arrivesAtSignIn());
}

class OtpViewModelTest : public OtpViewTest
{
protected:
    void SetUp() override
    {
        model.setProperty("auth", QVariant::fromValue(&auth));
        model.setProperty("timing", QVariant::fromValue(static_cast<Timing *>(&timing)));
        model.setProperty("email", u"e"_s);
        model.componentComplete();
        model.enterCode(u"123456"_s, 6);
        log.record(model, &OtpViewModel::errorChanged, "error");
        log.record(model, &OtpViewModel::infoChanged, "info");
        log.record(model, &OtpViewModel::loadingChanged, "loading");
        log.record(model, &OtpViewModel::resendInChanged, "resendIn");
        log.record(model, &OtpViewModel::doneChanged, "done");
    }

    void finish(qsizetype entries)
    {
        ASSERT_TRUE(spinUntil([&] { return log.entries().size() >= entries; }));
    }

    OtpViewModel model;
    ChangeLog log;
};

TEST_F(OtpViewModelTest, ASubmissionSetsItsFieldsInOrder)
{
    server.expect("POST", "/api/auth/verify-otp").reply(400, R"({"message":"Wrong."})");
    server.expect("POST", "/api/auth/verify-otp").reply(200, "{}");
    model.submit();
    finish(3);
    model.submit();
    finish(7);
    EXPECT_EQ(log.entries(),
              (QStringList{u"loading true"_s, u"error Wrong."_s, u"loading false"_s, u"error "_s,
                           u"loading true"_s, u"done true"_s, u"loading false"_s}));
}

TEST_F(OtpViewModelTest, AResendSetsItsFieldsInOrder)
{
    server.expect("POST", "/api/auth/resend-otp").reply(400, R"({"message":"No."})");
    server.expect("POST", "/api/auth/resend-otp").reply(200, sent);
    model.resend();
    finish(1);
    model.resend();
    finish(4);
    server.expect("POST", "/api/auth/verify-otp").reply(400, R"({"message":"Wrong."})");
    model.submit();
    finish(8);
    EXPECT_EQ(log.entries(),
              (QStringList{u"error No."_s, u"error "_s, u"info We sent you another code."_s, u"resendIn 60"_s,
                           u"info "_s, u"loading true"_s, u"error Wrong."_s, u"loading false"_s}));
}

TEST_F(OtpViewModelTest, IsAcknowledgedOnce)
{
    server.expect("POST", "/api/auth/verify-otp").reply(200, "{}");
    int dismissed = 0;
    QObject::connect(&model, &OtpViewModel::dismissed, &model, [&dismissed] { ++dismissed; });
    model.acknowledge();
    EXPECT_EQ(dismissed, 0);
    model.submit();
    finish(3);
    model.acknowledge();
    model.acknowledge();
    EXPECT_EQ(dismissed, 1);
    EXPECT_FALSE(model.done());
}

TEST_F(OtpViewModelTest, TheDoneMessageDependsOnThePurpose)
{
    EXPECT_EQ(
        model.doneMessage(),
        u"Email verified. Your account is pending admin approval — you'll be able to sign in once approved."_s);
    model.setProperty("purpose", OtpPurpose::ResetPassword);
    EXPECT_EQ(model.doneMessage(), u"Password updated. You can now sign in with your new password."_s);
}

} // namespace
} // namespace clockwell
