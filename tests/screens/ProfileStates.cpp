#include "State.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell::test {

namespace {

const char *const changePassword = "/api/auth/change-password";

const QByteArray ada = R"({"id":"1","fullName":"Ada Byron","email":"ada.byron@example.org",)"
                       R"("phone":"+92 300 1234567","role":"EMPLOYEE","status":"APPROVED"})";
const QByteArray withoutPhone = R"({"id":"1","fullName":"Orin","email":"orin@example.org",)"
                                R"("role":"HR_MANAGER","status":"on hold"})";
const QByteArray longUser =
    R"({"id":"1","fullName":"Wolfeschlegelsteinhausenbergerdorff Featherstonehaugh-Cholmondeley the Third",)"
    R"("email":"a.very.long.address.that.does.not.fit@subdomain.of.an.example.org",)"
    R"("phone":"+92 300 1234567 extension 20349","role":"REGIONAL_ATTENDANCE_SUPERVISOR_OF_THE_NORTH",)"
    R"("status":"pending review by the regional office"})";

bool profile(Stage &stage, const QByteArray &user)
{
    stage.server().expect("GET", "/api/attendance/today").anyNumber().never();
    return stage.startAsUser(user) && stage.screen().click(u"Profile"_s, QAccessible::PageTab) &&
           !stage.screen().waitForPrefix(u"Role, "_s).isEmpty();
}

bool confirmation(Stage &stage)
{
    return profile(stage, ada) && stage.screen().press(u"Sign out"_s) &&
           stage.screen().waitFor(u"Sign out of Qor?"_s) && stage.screen().waitUntilStill();
}

bool sheet(Stage &stage)
{
    return profile(stage, ada) && stage.screen().press(u"Change password"_s) &&
           stage.screen().waitFor(u"Update password"_s) && stage.screen().waitUntilStill();
}

bool filled(Stage &stage)
{
    if (!sheet(stage) || !stage.screen().type(u"Current password"_s, u"Analytical-1843"_s))
        return false;
    stage.screen().key(Qt::Key_Return);
    stage.screen().typeText(u"Difference-1822"_s);
    return true;
}

bool busy(Stage &stage)
{
    stage.server().expect("POST", changePassword).never();
    if (!filled(stage))
        return false;
    const int before = static_cast<int>(stage.server().requests().size());
    stage.screen().key(Qt::Key_Return);
    return stage.server().waitForRequests(before + 1);
}

bool refused(Stage &stage, const QByteArray &message, const QString &expected)
{
    stage.server().expect("POST", changePassword).reply(400, R"({"message":)" + message + "}");
    if (!filled(stage))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(expected);
}

bool wrong(Stage &stage)
{
    return refused(stage, R"("The current password is wrong.")", u"The current password is wrong."_s);
}

bool weak(Stage &stage)
{
    return refused(
        stage,
        R"(["The password needs at least 8 characters","an upper-case letter","a lower-case letter",)"
        R"("a number","and none of the words of your name or your address"])",
        u"The password needs at least 8 characters, an upper-case letter, a lower-case letter, a "
        u"number, and none of the words of your name or your address"_s);
}

bool changed(Stage &stage)
{
    stage.server().expect("POST", changePassword).reply(200, "{}");
    if (!filled(stage))
        return false;
    stage.screen().key(Qt::Key_Return);
    return stage.screen().waitFor(u"Password changed"_s) && stage.screen().waitUntilStill();
}

} // namespace

QList<State> profileStates()
{
    return {{"profile", [](Stage &stage) { return profile(stage, ada); }},
            {"profile-no-phone", [](Stage &stage) { return profile(stage, withoutPhone); }},
            {"profile-long", [](Stage &stage) { return profile(stage, longUser); }},
            {"profile-sign-out", confirmation},
            {"password-empty", sheet},
            {"password-filled", filled},
            {"password-busy", busy},
            {"password-wrong", wrong},
            {"password-weak", weak},
            {"password-changed", changed}};
}

} // namespace clockwell::test
