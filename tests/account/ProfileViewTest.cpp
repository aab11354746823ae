#include "ProfileScreen.h"
#include "account/ProfileViewModel.h"

#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::spinUntil;
using test::userJson;

const QString me = u"/api/auth/me"_s;

class ProfileViewTest : public test::ProfileScreen
{};

TEST_F(ProfileViewTest, ShowsItsTextsInOrder)
{
    server.expect("GET", me).anyNumber().never();
    show(userJson("Kel Voss"));
    const auto texts = screen().texts();
    qsizetype last = -1;
    for (const auto &text :
         {u"Profile"_s, u"Kel Voss"_s, u"kel@example.org"_s, u"Role, HR MANAGER"_s,
          u"Phone, +92 300 1234567"_s, u"Account status, Approved"_s, u"Change password"_s, u"Sign out"_s}) {
        const auto at = texts.indexOf(text);
        EXPECT_GT(at, last) << text.toStdString() << " in " << screen().dump().toStdString();
        last = at;
    }
    EXPECT_FALSE(screen().shows(u"Back"_s));
}

TEST_F(ProfileViewTest, AMissingPhoneIsADash)
{
    server.expect("GET", me).anyNumber().never();
    show(userJson("Kel Voss", ""));
    EXPECT_TRUE(screen().shows(u"Phone, —"_s)) << screen().dump().toStdString();
}

TEST_F(ProfileViewTest, WithoutAUserEveryValueIsADash)
{
    server.expect("GET", me).anyNumber().never();
    stage = std::make_unique<test::QmlStage>(u"Clockwell/Account/ProfileView.qml"_s,
                                             QVariantMap{{u"auth"_s, QVariant::fromValue(&auth)}});
    for (const auto &text : {u"Role, —"_s, u"Phone, —"_s, u"Account status, —"_s})
        EXPECT_TRUE(screen().shows(text)) << text.toStdString();
    ProfileViewModel model;
    model.setAuth(&auth);
    EXPECT_EQ(model.initials(), u"?"_s);
    EXPECT_EQ(model.fullName(), QString());
    EXPECT_EQ(model.email(), QString());
}

TEST_F(ProfileViewTest, TheOldUserIsShownUntilTheNewOneArrives)
{
    server.expect("GET", me).after(1s).reply(200, userJson("Kel Orin Voss"));
    show(userJson("kel voss"));
    EXPECT_TRUE(screen().shows(u"kel voss"_s));
    EXPECT_TRUE(screen().waitFor(u"Kel Orin Voss"_s));
    EXPECT_FALSE(screen().shows(u"kel voss"_s));
}

TEST_F(ProfileViewTest, AFailedRefreshChangesAndShowsNothing)
{
    server.expect("GET", me).reply(500, R"({"message":"Out of order."})");
    show(userJson("kel voss"));
    const auto before = screen().texts();
    ASSERT_TRUE(requests(me, 1));
    settle();
    EXPECT_EQ(screen().texts(), before);
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
}

TEST_F(ProfileViewTest, EachAppearanceRefreshes)
{
    server.expect("GET", me).anyNumber().reply(200, userJson("Kel Voss"));
    show();
    ASSERT_TRUE(requests(me, 1));
    stage->root()->setVisible(false);
    settle(50ms);
    EXPECT_EQ(server.count(me), 1);
    stage->root()->setVisible(true);
    EXPECT_TRUE(requests(me, 2));
}

TEST_F(ProfileViewTest, ClosingTheSheetOrTheDialogDoesNotRefresh)
{
    server.expect("GET", me).anyNumber().reply(200, userJson("Kel Voss"));
    show();
    ASSERT_TRUE(requests(me, 1));
    ASSERT_TRUE(openSheet());
    screen().key(Qt::Key_Escape);
    ASSERT_TRUE(screen().waitUntilStill());
    ASSERT_TRUE(askToSignOut());
    screen().key(Qt::Key_Escape);
    settle();
    EXPECT_EQ(server.count(me), 1);
}

TEST_F(ProfileViewTest, SigningOutIsConfirmedFirstAndSendsNothing)
{
    server.expect("GET", me).reply(200, userJson("Kel Voss"));
    show();
    ASSERT_TRUE(requests(me, 1));
    const auto sent = server.requests().size();
    ASSERT_TRUE(askToSignOut());
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
    EXPECT_EQ(tokens.access(), u"a1"_s);
    ASSERT_TRUE(screen().click(u"Sign out"_s, QAccessible::Button));
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedOut); // immediately, without waiting for anything
    EXPECT_FALSE(tokens.access());
    EXPECT_FALSE(tokens.refresh());
    settle();
    EXPECT_EQ(server.requests().size(), sent);
    EXPECT_FALSE(screen().shows(u"Sign out of Qor?"_s));
}

TEST_F(ProfileViewTest, CancellingLeavesTheSessionUntouched)
{
    server.expect("GET", me).reply(200, userJson("Kel Voss"));
    show();
    ASSERT_TRUE(requests(me, 1));
    const auto writes = tokens.writes().size();
    for (const auto &cancel :
         {std::function([&] { return screen().click(u"Cancel"_s); }),
          std::function([&] { return screen().key(Qt::Key_Escape), true; }), std::function([&] {
              QTest::mouseClick(&stage->view(), Qt::LeftButton, {}, QPoint(195, 60));
              return true;
          })}) {
        ASSERT_TRUE(askToSignOut());
        ASSERT_TRUE(cancel());
        EXPECT_TRUE(screen().waitUntilGone(u"Sign out of Qor?"_s));
        ASSERT_TRUE(screen().waitUntilStill());
        EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
    }
    EXPECT_EQ(tokens.writes().size(), writes);
    EXPECT_EQ(server.count(me), 1);
}

TEST_F(ProfileViewTest, ADoubleTapOnTheRowDoesNotSignOut)
{
    server.expect("GET", me).anyNumber().never();
    show(userJson("Kel Voss"), QSize(390, 480)); // the row is where the dialog's buttons will appear
    const auto row = screen().find(u"Sign out"_s, QAccessible::Button);
    ASSERT_TRUE(row);
    for (int tap = 0; tap < 3; ++tap)
        QTest::mouseClick(&stage->view(), Qt::LeftButton, {}, row->rect.center());
    EXPECT_TRUE(screen().waitFor(u"Sign out of Qor?"_s));
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
}

TEST_F(ProfileViewTest, TheKeyboardReachesEverything)
{
    server.expect("GET", me).anyNumber().never();
    show();
    screen().key(Qt::Key_Tab);
    screen().key(Qt::Key_Tab);
    screen().key(Qt::Key_Return);
    ASSERT_TRUE(screen().waitFor(u"Sign out of Qor?"_s));
    screen().key(Qt::Key_Tab); // from Cancel
    screen().key(Qt::Key_Space);
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedOut);
}

TEST_F(ProfileViewTest, AssistiveTechnologyReachesTheDialogOnly)
{
    server.expect("GET", me).anyNumber().never();
    show();
    ASSERT_TRUE(askToSignOut());
    EXPECT_FALSE(screen().shows(u"Change password"_s));
    ASSERT_TRUE(screen().press(u"Sign out"_s));
    EXPECT_EQ(auth.phase(), AuthStore::Phase::SignedOut);
}

TEST_F(ProfileViewTest, LongTextsStayInsideAtTheNarrowestWidthWithLargeText)
{
    server.expect("GET", me).anyNumber().never();
    signIn(R"({"id":"1","fullName":"Wolfeschlegelsteinhausenbergerdorff Featherstonehaugh-Cholmondeley",)"
           R"("email":"a.very.long.address.that.does.not.fit@subdomain.of.an.example.org",)"
           R"("role":"REGIONAL_ATTENDANCE_SUPERVISOR_OF_THE_NORTH","status":"on hold"})");
    stage = std::make_unique<test::QmlStage>(u"Clockwell/Account/ProfileView.qml"_s,
                                             QVariantMap{{u"auth"_s, QVariant::fromValue(&auth)}},
                                             QSize(320, 568));
    for (const auto &element : screen().elements()) {
        EXPECT_GE(element.rect.left(), 0) << element.name.toStdString();
        EXPECT_LE(element.rect.right(), 320) << element.name.toStdString();
    }
    EXPECT_TRUE(screen().shows(u"Account status, On Hold"_s));
}

} // namespace
} // namespace clockwell
