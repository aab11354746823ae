#include "State.h"

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

bool empty(Stage &stage)
{
    return stage.start() && stage.screen().waitFor(u"Create an account"_s) &&
           stage.screen().click(u"Create an account"_s) && stage.screen().waitFor(u"Sign up"_s) &&
           stage.screen().waitUntilGone(u"New here?"_s);
}

/// Moves between the fields with Enter, which also scrolls where not all of them fit.
bool filled(Stage &stage)
{
    if (!empty(stage) || !stage.screen().click(u"Full name"_s, QAccessible::EditableText))
        return false;
    for (const auto &text : {u"Augusta Ada Byron, Countess of Lovelace"_s, u"ada.byron@example.org"_s,
                             u"+92 300 1234567"_s, u"DEMO"_s}) {
        stage.screen().typeText(text);
        stage.screen().key(Qt::Key_Return);
    }
    stage.screen().typeText(u"Correct-Horse-7"_s);
    return true;
}

bool refusedWith(Stage &stage, const QString &message)
{
    stage.server()
        .expect("POST", "/api/auth/signup")
        .reply(400, R"({"message":")" + message.toUtf8() + R"("})");
    if (!filled(stage))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(message);
}

bool busy(Stage &stage)
{
    stage.server().expect("POST", "/api/auth/signup").never();
    if (!filled(stage))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.server().waitForRequests(1);
}

bool refused(Stage &stage)
{
    return refusedWith(stage, u"An account with this e-mail address exists already."_s);
}

bool longError(Stage &stage)
{
    return refusedWith(
        stage, u"The password is too short, it needs an upper-case letter, it needs a number, it must "
               u"not contain your name, and the company code is not known."_s);
}

bool lastField(Stage &stage)
{
    if (!filled(stage))
        return false;
    stage.screen().key(Qt::Key_Tab); // to the button that shows the password
    stage.screen().key(Qt::Key_Space);
    stage.screen().key(Qt::Key_Tab);
    return true;
}

} // namespace

QList<State> signUpStates()
{
    return {{"sign-up-empty", empty},
            {"sign-up-filled", filled},
            {"sign-up-busy", busy},
            {"sign-up-refused", refused},
            {"sign-up-long-error", longError},
            {"sign-up-keyboard-focus", lastField}};
}

} // namespace clockwell::test
