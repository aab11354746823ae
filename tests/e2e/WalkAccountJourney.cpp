#include "WalkAccountJourney.h"

#include "Outbox.h"

#include <QTextStream>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

const QString email = u"ada.byron@example.org"_s;
const QString firstPassword = u"Analytical-1843"_s;
const QString secondPassword = u"Difference-1822"_s;
const QString thirdPassword = u"Note-G-Bernoulli-7"_s;

bool signIn(ScreenDriver &screen, const QString &password)
{
    return screen.retype(u"Email"_s, email) && screen.retype(u"Password"_s, password) &&
           screen.click(u"Sign in"_s, QAccessible::Button);
}

bool typeCode(ScreenDriver &screen, Outbox &outbox)
{
    const QString code = outbox.nextCode(email);
    return code.size() == 6 && screen.type(u"Verification code"_s, code);
}

bool approve(const ServerProcess &server)
{
    QString error;
    const QString said =
        server.admin({u"employees"_s, u"approve"_s, email, u"--office"_s, u"Head Office"_s}, &error);
    QTextStream(stdout) << "   admin: " << (error.isEmpty() ? said : error) << Qt::endl;
    return error.isEmpty();
}

void signUp(Tour &tour, Outbox &outbox)
{
    tour.step(
        u"A new employee opens the sign-up"_s,
        [](ScreenDriver &screen) { return screen.click(u"Create an account"_s); },
        u"Create your employee account"_s);
    tour.step(
        u"A weak password is refused by the server"_s,
        [](ScreenDriver &screen) {
            return screen.type(u"Full name"_s, u"Ada Byron"_s) && screen.type(u"Email"_s, email) &&
                   screen.type(u"Password"_s, u"short"_s) &&
                   screen.click(u"Create account"_s, QAccessible::Button);
        },
        u"The password"_s);
    tour.step(
        u"A strong password opens the code screen"_s,
        [](ScreenDriver &screen) {
            return screen.retype(u"Password"_s, firstPassword) &&
                   screen.click(u"Create account"_s, QAccessible::Button);
        },
        u"Verify your email"_s);
    tour.step(
        u"The code from the e-mail is accepted"_s,
        [&](ScreenDriver &screen) {
            return typeCode(screen, outbox) && screen.click(u"Verify"_s, QAccessible::Button);
        },
        u"All set"_s);
    tour.step(
        u"OK returns to the form"_s,
        [](ScreenDriver &screen) {
            return screen.click(u"OK"_s, QAccessible::Button) &&
                   screen.waitFor(u"Create your employee account"_s);
        },
        u"Create your employee account"_s);
}

void getApproval(Tour &tour, const ServerProcess &server)
{
    tour.step(
        u"Back at the sign-in"_s,
        [](ScreenDriver &screen) { return screen.click(u"Back"_s, QAccessible::Button); },
        u"Sign in to mark attendance"_s);
    tour.step(
        u"The account waits for approval"_s,
        [](ScreenDriver &screen) { return signIn(screen, firstPassword); },
        u"Your account is waiting for an administrator's approval."_s);
    tour.step(
        u"The administrator approves and the employee signs in"_s,
        [&](ScreenDriver &screen) {
            return approve(server) && screen.click(u"Sign in"_s, QAccessible::Button);
        },
        u"Hours "_s);
}

void changePassword(Tour &tour)
{
    tour.step(
        u"The profile of the employee"_s,
        [](ScreenDriver &screen) { return screen.click(u"Profile"_s, QAccessible::PageTab); },
        u"Ada Byron"_s);
    tour.step(
        u"The sheet for changing the password"_s,
        [](ScreenDriver &screen) { return screen.click(u"Change password"_s, QAccessible::Button); },
        u"Min 8 chars"_s);
    tour.step(
        u"The password is changed"_s,
        [](ScreenDriver &screen) {
            return screen.type(u"Current password"_s, firstPassword) &&
                   screen.type(u"New password"_s, secondPassword) &&
                   screen.click(u"Update password"_s, QAccessible::Button);
        },
        u"Password changed"_s);
    tour.step(
        u"OK closes the sheet"_s,
        [](ScreenDriver &screen) {
            return screen.click(u"OK"_s, QAccessible::Button) && screen.waitUntilGone(u"Current password"_s);
        },
        u"Account status"_s);
}

void signOut(Tour &tour)
{
    tour.step(
        u"Signing out is confirmed first"_s,
        [](ScreenDriver &screen) { return screen.click(u"Sign out"_s, QAccessible::Button); },
        u"Sign out of Qor?"_s);
    tour.step(
        u"Signed out"_s,
        [](ScreenDriver &screen) { return screen.click(u"Sign out"_s, QAccessible::Button); },
        u"Sign in to mark attendance"_s);
}

void resetPassword(Tour &tour, Outbox &outbox)
{
    tour.step(
        u"The old password is refused"_s, [](ScreenDriver &screen) { return signIn(screen, firstPassword); },
        u"The e-mail address or the password is wrong."_s);
    tour.step(
        u"The password is forgotten"_s,
        [](ScreenDriver &screen) { return screen.click(u"Forgot password?"_s); },
        u"Enter your account email."_s);
    tour.step(
        u"A code is requested"_s,
        [](ScreenDriver &screen) { return screen.click(u"Send reset code"_s, QAccessible::Button); },
        u"We sent a 6-digit code to"_s);
    tour.step(
        u"The password is reset with the code"_s,
        [&](ScreenDriver &screen) {
            return typeCode(screen, outbox) && screen.type(u"New password"_s, thirdPassword) &&
                   screen.click(u"Reset password"_s, QAccessible::Button);
        },
        u"All set"_s);
    tour.step(
        u"OK and back to the sign-in"_s,
        [](ScreenDriver &screen) {
            return screen.click(u"OK"_s, QAccessible::Button) &&
                   screen.waitFor(u"Enter your account email. We'll send a 6-digit reset code."_s) &&
                   screen.waitUntilStill() && screen.click(u"Back"_s, QAccessible::Button);
        },
        u"Sign in to mark attendance"_s);
    tour.step(
        u"The new password signs in"_s, [](ScreenDriver &screen) { return signIn(screen, thirdPassword); },
        u"Hours "_s);
    tour.step(
        u"The profile again"_s,
        [](ScreenDriver &screen) { return screen.click(u"Profile"_s, QAccessible::PageTab); },
        u"Ada Byron"_s);
}

} // namespace

void walkAccountJourney(Tour &tour, const ServerProcess &server)
{
    Outbox outbox(server.outbox());
    signUp(tour, outbox);
    getApproval(tour, server);
    changePassword(tour);
    signOut(tour);
    resetPassword(tour, outbox);
    signOut(tour);
}

} // namespace clockwell::test
