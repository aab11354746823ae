#include "State.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

const QString shortAddress = u"ada.byron@example.org"_s;
const QString longAddress = u"a.very.long.address.that.does.not.fit@subdomain.example.org"_s;
const QByteArray codeSent = R"({"message":"If that address is registered, a new code is on its way."})";

bool forgot(Stage &stage, const QString &email)
{
    if (!stage.start() || !stage.screen().waitFor(u"Sign in"_s))
        return false;
    if (!email.isEmpty() && !stage.screen().type(u"Email"_s, email))
        return false;
    return stage.screen().click(u"Forgot password?"_s) && stage.screen().waitFor(u"Send reset code"_s) &&
           stage.screen().waitUntilGone(u"Sign in"_s);
}

bool forgotEmpty(Stage &stage)
{
    return forgot(stage, QString());
}

bool forgotPrefilled(Stage &stage)
{
    return forgot(stage, longAddress);
}

bool forgotRefused(Stage &stage)
{
    stage.server()
        .expect("POST", "/api/auth/forgot-password")
        .reply(429, R"({"message":"Too many codes were asked for. Try again in a minute."})");
    return forgot(stage, shortAddress) && stage.screen().click(u"Send reset code"_s) &&
           stage.screen().waitFor(u"Too many codes were asked for. Try again in a minute."_s);
}

bool reset(Stage &stage, const QString &email)
{
    stage.server().expect("POST", "/api/auth/forgot-password").reply(200, "{}");
    return forgot(stage, email) && stage.screen().click(u"Send reset code"_s) &&
           stage.screen().waitFor(u"Verification code"_s) &&
           stage.screen().waitUntilGone(u"Send reset code"_s);
}

bool forgotInformed(Stage &stage)
{
    if (!reset(stage, shortAddress))
        return false;
    stage.screen().key(Qt::Key_Escape);
    return stage.screen().waitFor(u"If that email is registered, a code was sent."_s);
}

bool resetEmpty(Stage &stage)
{
    return reset(stage, longAddress);
}

bool resetFilled(Stage &stage)
{
    if (!reset(stage, shortAddress) || !stage.screen().type(u"Verification code"_s, u"123456"_s))
        return false;
    stage.screen().key(Qt::Key_Return);
    stage.screen().typeText(u"Correct-Horse-8"_s);
    return true;
}

bool resetRefused(Stage &stage)
{
    stage.server()
        .expect("POST", "/api/auth/reset-password")
        .reply(400, R"({"message":["The code is wrong or has expired","the password needs a number"]})");
    if (!resetFilled(stage))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(u"The code is wrong or has expired, the password needs a number"_s);
}

bool verify(Stage &stage)
{
    stage.server()
        .expect("POST", "/api/auth/login")
        .reply(403, R"({"error":"EMAIL_NOT_VERIFIED","message":"Verify your e-mail address."})");
    if (!stage.start() || !stage.screen().waitFor(u"Sign in"_s) ||
        !stage.screen().type(u"Email"_s, shortAddress) || !stage.screen().type(u"Password"_s, u"x"_s))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(u"Enter verification code"_s) &&
           stage.screen().press(u"Enter verification code"_s) &&
           stage.screen().waitFor(u"Verification code"_s) && stage.screen().waitUntilGone(u"Sign in"_s);
}

bool verifyPartial(Stage &stage)
{
    return verify(stage) && stage.screen().type(u"Verification code"_s, u"1234"_s);
}

bool verifyMenu(Stage &stage)
{
    if (!verifyPartial(stage))
        return false;
    QGuiApplication::clipboard()->setText(u"123456"_s);
    stage.screen().key(Qt::Key_Home);
    stage.screen().key(Qt::Key_Right, Qt::ShiftModifier);
    stage.screen().key(Qt::Key_Menu);
    return stage.screen().shows(u"Paste"_s);
}

bool verifyBusy(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/verify-otp").never();
    if (!verify(stage) || !stage.screen().type(u"Verification code"_s, u"123456"_s))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.server().waitForRequests(2);
}

bool verifyRefused(Stage &stage)
{
    stage.server()
        .expect("POST", "/api/auth/verify-otp")
        .reply(400, R"({"message":"The code is wrong or has expired."})");
    if (!verify(stage) || !stage.screen().type(u"Verification code"_s, u"123456"_s))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(u"The code is wrong or has expired."_s);
}

bool verified(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/verify-otp").reply(200, "{}");
    if (!verify(stage) || !stage.screen().type(u"Verification code"_s, u"123456"_s))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(u"All set"_s) && stage.screen().waitUntilStill();
}

bool resetDone(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/reset-password").reply(200, "{}");
    if (!resetFilled(stage))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(u"All set"_s) && stage.screen().waitUntilStill();
}

bool resending(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/resend-otp").never();
    return verify(stage) && stage.screen().press(u"Resend code"_s) && stage.server().waitForRequests(2);
}

bool resent(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/resend-otp").reply(200, codeSent);
    return verify(stage) && stage.screen().press(u"Resend code"_s) &&
           !stage.screen().waitForPrefix(u"Resend code in "_s).isEmpty();
}

} // namespace

QList<State> codeStates()
{
    return {{"forgot-empty", forgotEmpty},          {"forgot-prefilled", forgotPrefilled},
            {"forgot-refused", forgotRefused},      {"forgot-informed", forgotInformed},
            {"code-reset-empty", resetEmpty},       {"code-reset-filled", resetFilled},
            {"code-reset-refused", resetRefused},   {"code-verify-empty", verify},
            {"code-verify-partial", verifyPartial}, {"code-verify-busy", verifyBusy},
            {"code-verify-refused", verifyRefused}, {"code-verify-resent", resent},
            {"code-verify-resending", resending},   {"code-verify-menu", verifyMenu},
            {"code-done-verify", verified},         {"code-done-reset", resetDone}};
}

} // namespace clockwell::test
