#include "State.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell::test {

namespace {

bool signInWith(Stage &stage, int status, const QByteArray &reply, const QString &expected)
{
    stage.server().expect("POST", "/api/auth/login").reply(status, reply);
    return stage.start() && stage.screen().waitFor(u"Sign in"_s) &&
           stage.screen().type(u"Email"_s, u"ada.byron@example.org"_s) &&
           stage.screen().type(u"Password"_s, u"correct horse"_s) && stage.screen().click(u"Sign in"_s) &&
           stage.screen().waitFor(expected);
}

bool idle(Stage &stage)
{
    return stage.start() && stage.screen().waitFor(u"Sign in"_s);
}

bool filled(Stage &stage)
{
    return idle(stage) &&
           stage.screen().type(u"Email"_s,
                               u"a.very.long.address.that.does.not.fit@subdomain.example.org"_s) &&
           stage.screen().type(u"Password"_s, u"correct horse"_s);
}

bool revealed(Stage &stage)
{
    return filled(stage) && stage.screen().click(u"Show password"_s);
}

bool busy(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/login").never();
    return filled(stage) && stage.screen().click(u"Sign in"_s) && stage.server().waitForRequests(1);
}

bool refused(Stage &stage)
{
    return signInWith(stage, 401,
                      R"({"error":"INVALID_CREDENTIALS","message":"The e-mail or the password is wrong."})",
                      u"The e-mail or the password is wrong."_s);
}

bool unverified(Stage &stage)
{
    return signInWith(
        stage, 403,
        R"({"error":"EMAIL_NOT_VERIFIED","message":"Your e-mail address is not verified yet. Enter the )"
        R"(six-digit code that we sent to it."})",
        u"Enter verification code"_s);
}

bool longError(Stage &stage)
{
    const QString text = u"Your account has been suspended by an administrator of your organisation on 3 "
                         u"March 2026. Please contact "
                         "the personnel office, which can tell you why, and lift the suspension."_s;
    return signInWith(stage, 403, R"({"message":")" + text.toUtf8() + R"("})", text);
}

bool focused(Stage &stage)
{
    if (!idle(stage) || !stage.screen().click(u"Email"_s, QAccessible::EditableText))
        return false;
    for (int step = 0; step < 3; ++step) // past the password and the button that shows it to the link
        stage.screen().key(Qt::Key_Tab);
    return true;
}

bool pushed(Stage &stage)
{
    return idle(stage) && stage.screen().click(u"Create an account"_s) &&
           stage.screen().waitFor(u"Sign up"_s);
}

} // namespace

QList<State> signInStates()
{
    return {{"sign-in-idle", idle},
            {"sign-in-filled", filled},
            {"sign-in-revealed", revealed},
            {"sign-in-busy", busy},
            {"sign-in-refused", refused},
            {"sign-in-unverified", unverified},
            {"sign-in-long-error", longError},
            {"sign-in-keyboard-focus", focused},
            {"sign-up-pushed", pushed}};
}

} // namespace clockwell::test
