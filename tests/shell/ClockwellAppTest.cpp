#include "ClockwellApp.h"

#include "attendance/LocationSource.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"
#include "support/screen/ScreenDriver.h"
#include "ui/Palette.h"

#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::FakeServer;
using test::MemoryTokenStore;
using test::ScreenDriver;
using test::spinUntil;

/// A device with denied location permission, the default of these tests.
class NoLocation final : public LocationSource
{
public:
    AuthorizationStatus authorizationStatus() const override { return AuthorizationStatus::Denied; }
    void setDesiredAccuracy(Accuracy) override {}
    void requestWhenInUseAuthorization() override {}
    void requestLocation() override {}
};

/// A device that delivers its position at once.
class KnownLocation final : public LocationSource
{
public:
    AuthorizationStatus authorizationStatus() const override
    {
        return AuthorizationStatus::AuthorizedWhenInUse;
    }
    void setDesiredAccuracy(Accuracy) override {}
    void requestWhenInUseAuthorization() override {}
    void requestLocation() override { Q_EMIT locationsUpdated({Fix{12.97, 77.59, 8}}); }
};

/// A token store that takes 200 ms to answer.
class SlowTokenStore final : public TokenStore
{
public:
    std::optional<QString> load(const QString &) const override
    {
        std::this_thread::sleep_for(200ms);
        return std::nullopt;
    }
    void save(const QString &, const std::optional<QString> &) override {}
};

QByteArray user(const QByteArray &name)
{
    return R"({"id":"1","fullName":")" + name + R"(","email":"e","role":"EMPLOYEE","status":"APPROVED"})";
}

QByteArray today(const QByteArray &office)
{
    return R"({"workDate":"2026-03-02","open":true,"office":{"name":")" + office +
           R"(","checkInTime":"09:30","checkOutTime":"18:00","radiusMeters":150},"canCheckIn":true,)"
           R"("canCheckOut":false})";
}

class ClockwellAppTest : public ::testing::Test
{
protected:
    /// Starts the app with these tokens stored.
    void start(const std::optional<QString> &access = {}, const std::optional<QString> &refresh = {})
    {
        auto store = std::make_unique<MemoryTokenStore>();
        tokens = store.get();
        tokens->save(TokenKey::accessToken, access);
        tokens->save(TokenKey::refreshToken, refresh);
        startWith(std::move(store));
    }

    void startWith(std::unique_ptr<TokenStore> store)
    {
        ClockwellApp::Dependencies dependencies;
        dependencies.client.baseURL = server.url(u"/api"_s);
        dependencies.tokens = std::move(store);
        dependencies.makeLocationSource = makeLocationSource;
        app = std::make_unique<ClockwellApp>(std::move(dependencies));
        ASSERT_TRUE(app->show());
        ASSERT_TRUE(QTest::qWaitForWindowExposed(app->window()));
        screen = std::make_unique<ScreenDriver>(app->window());
    }

    void startSignedIn(const QByteArray &name = "Ada Byron")
    {
        server.expect("GET", "/api/auth/me").anyNumber().reply(200, user(name));
        server.expect("GET", "/api/attendance/today").anyNumber().reply(200, today("North Tower"));
        server.expect("GET", "/api/attendance/me").anyNumber().reply(200, "[]");
        server.expect("GET", "/api/attendance/me/summary").anyNumber().reply(200, "null");
        start(u"a1"_s, u"r1"_s);
        ASSERT_TRUE(screen->waitFor(u"Attendance"_s));
        ASSERT_TRUE(settled());
    }

    /// Waits until the transition to the new content has ended; taps are ignored before.
    bool settled() const
    {
        const auto *contents = app->window()->findChild<QQuickItem *>(u"contents"_s);
        return contents && QTest::qWaitFor([contents] { return !contents->property("busy").toBool(); });
    }

    bool isSelected(const QString &tab) const
    {
        const auto element = screen->find(tab, QAccessible::PageTab);
        return element && element->state.selected;
    }

    std::function<std::unique_ptr<LocationSource>()> makeLocationSource = [] {
        return std::make_unique<NoLocation>();
    };
    FakeServer server;
    MemoryTokenStore *tokens = nullptr; // owned by the app
    std::unique_ptr<ClockwellApp> app;
    std::unique_ptr<ScreenDriver> screen;
};

TEST_F(ClockwellAppTest, WithoutTokensTheSignInFollowsTheSpinner)
{
    startWith(std::make_unique<SlowTokenStore>());
    EXPECT_EQ(app->auth()->phase(), AuthStore::Phase::Loading);
    EXPECT_FALSE(screen->shows(u"Sign in"_s));
    EXPECT_TRUE(screen->waitFor(u"Sign in"_s));
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(ClockwellAppTest, WithValidTokensTheMainScreenShowsItsFirstTab)
{
    startSignedIn();
    EXPECT_TRUE(isSelected(u"Attendance"_s));
    EXPECT_FALSE(isSelected(u"History"_s));
    EXPECT_TRUE(screen->waitFor(u"North Tower"_s));
    EXPECT_TRUE(screen->waitUntilGone(u"Sign in"_s));
}

TEST_F(ClockwellAppTest, TabsAreInTheirOrder)
{
    startSignedIn();
    QStringList tabs;
    for (const auto &element : screen->elements())
        if (element.role == QAccessible::PageTab)
            tabs.append(element.name);
    EXPECT_EQ(tabs, (QStringList{u"Attendance"_s, u"History"_s, u"Summary"_s, u"Profile"_s}));
}

TEST_F(ClockwellAppTest, OnlyTheSelectedTabIsVisible)
{
    startSignedIn();
    ASSERT_TRUE(screen->waitFor(u"North Tower"_s));
    ASSERT_TRUE(screen->click(u"Summary"_s, QAccessible::PageTab));
    EXPECT_TRUE(spinUntil([&] { return isSelected(u"Summary"_s); }));
    EXPECT_TRUE(screen->waitUntilGone(u"North Tower"_s));
    EXPECT_TRUE(screen->find(u"Summary"_s, QAccessible::StaticText));
    EXPECT_FALSE(screen->find(u"History"_s, QAccessible::StaticText));
    ASSERT_TRUE(screen->press(u"History"_s, QAccessible::PageTab));
    EXPECT_TRUE(spinUntil([&] { return screen->find(u"History"_s, QAccessible::StaticText).has_value(); }));
    ASSERT_TRUE(screen->click(u"Profile"_s, QAccessible::PageTab));
    EXPECT_TRUE(spinUntil([&] { return screen->find(u"Profile"_s, QAccessible::StaticText).has_value(); }));
    ASSERT_TRUE(screen->click(u"Attendance"_s, QAccessible::PageTab));
    EXPECT_TRUE(screen->waitFor(u"North Tower"_s));
}

TEST_F(ClockwellAppTest, ReturningToTheFirstTabReloadsTheDay)
{
    startSignedIn();
    ASSERT_TRUE(spinUntil([&] { return server.count(u"/api/attendance/today"_s) == 1; }));
    ASSERT_TRUE(screen->click(u"History"_s, QAccessible::PageTab));
    ASSERT_TRUE(screen->click(u"Attendance"_s, QAccessible::PageTab));
    EXPECT_TRUE(spinUntil([&] { return server.count(u"/api/attendance/today"_s) == 2; }));
}

TEST_F(ClockwellAppTest, ATabIsBuiltOnceAndKeepsItsPlace)
{
    startSignedIn();
    app->window()->resize(320, 480); // less than a summary is high
    ASSERT_TRUE(spinUntil([&] { return screen->click(u"Summary"_s, QAccessible::PageTab); }));
    const auto summary = screen->find(u"Summary"_s, QAccessible::Pane);
    ASSERT_TRUE(summary);
    auto *page = static_cast<QQuickItem *>(summary->object);
    page->forceActiveFocus();
    screen->key(Qt::Key_Down);
    ASSERT_TRUE(spinUntil([&] { return page->property("contentY").toReal() > 20; }));
    ASSERT_TRUE(spinUntil([&] { return !page->property("moving").toBool(); }));
    const qreal place = page->property("contentY").toReal();
    ASSERT_TRUE(screen->click(u"Profile"_s, QAccessible::PageTab));
    EXPECT_FALSE(page->isVisible());
    ASSERT_TRUE(screen->click(u"Summary"_s, QAccessible::PageTab));
    EXPECT_TRUE(page->isVisible());
    EXPECT_EQ(page->property("contentY").toReal(), place);
    EXPECT_EQ(server.count(u"/api/attendance/me/summary"_s), 1);
    EXPECT_EQ(server.count(u"/api/attendance/me"_s), 0); // nobody has looked at the history
}

TEST_F(ClockwellAppTest, KeysReachEveryTabAndSelectIt)
{
    startSignedIn();
    const auto goTo = [this](const QString &tab) {
        for (int i = 0; i < 30 && !screen->find(tab, QAccessible::PageTab)->state.focused; ++i)
            screen->key(Qt::Key_Tab);
    };
    goTo(u"History"_s);
    EXPECT_FALSE(isSelected(u"History"_s));
    screen->key(Qt::Key_Space);
    EXPECT_TRUE(isSelected(u"History"_s));
    EXPECT_FALSE(isSelected(u"Attendance"_s));
    goTo(u"Profile"_s);
    screen->key(Qt::Key_Return);
    EXPECT_TRUE(isSelected(u"Profile"_s));
    goTo(u"Attendance"_s);
    screen->key(Qt::Key_Space);
    EXPECT_TRUE(isSelected(u"Attendance"_s));
    goTo(u"Attendance"_s); // selected, it has passed the focus to its page
    screen->key(Qt::Key_Right);
    EXPECT_TRUE(isSelected(u"History"_s));
    EXPECT_TRUE(screen->find(u"History"_s, QAccessible::PageTab)->state.focused);
    screen->key(Qt::Key_Left);
    screen->key(Qt::Key_Left); // there is none
    EXPECT_TRUE(isSelected(u"Attendance"_s));
    EXPECT_TRUE(screen->find(u"Tabs"_s, QAccessible::PageTabList));
}

TEST_F(ClockwellAppTest, RefusalDuringAnotherTabIsShownOnReturn)
{
    makeLocationSource = [] { return std::make_unique<KnownLocation>(); };
    server.expect("GET", "/api/attendance/distance").anyNumber().reply(200, "null");
    server.expect("POST", "/api/attendance/punch")
        .after(1500ms)
        .reply(403, R"({"message":"You are outside"})");
    startSignedIn();
    ASSERT_TRUE(screen->click(u"Check In"_s, QAccessible::Button));
    ASSERT_TRUE(screen->click(u"History"_s, QAccessible::PageTab));
    ASSERT_TRUE(spinUntil([&] { return server.count(u"/api/attendance/punch"_s) == 1; }));
    spinUntil([] { return false; }, 6s); // longer than a banner stays
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(screen->click(u"Attendance"_s, QAccessible::PageTab));
    EXPECT_TRUE(screen->waitFor(u"You are outside"_s)) << screen->dump().toStdString();
    EXPECT_TRUE(screen->waitUntilGone(u"You are outside"_s));
    EXPECT_GE(clock.elapsed(), 4000);
}

TEST_F(ClockwellAppTest, EmptyExpiryAtTheStartDoesNotSignOut)
{
    startSignedIn();
    EXPECT_FALSE(app->sessionEvents().expiredAt());
    EXPECT_EQ(app->auth()->phase(), AuthStore::Phase::SignedIn);
}

TEST_F(ClockwellAppTest, TwoExpiriesInARowEndAtOneSignIn)
{
    startSignedIn();
    const auto now = QDateTime::currentDateTimeUtc();
    app->sessionEvents().setExpiredAt(now);
    app->sessionEvents().setExpiredAt(now);
    EXPECT_EQ(app->auth()->phase(), AuthStore::Phase::SignedOut);
    EXPECT_FALSE(tokens->access());
    EXPECT_FALSE(tokens->refresh());
    EXPECT_TRUE(screen->waitFor(u"Sign in"_s));
    EXPECT_TRUE(screen->waitUntilGone(u"Attendance"_s));
}

/// Open sheets and dialogs, which have to be closed when the session expires.
class OpenDialogTest : public ClockwellAppTest
{
protected:
    void openProfile()
    {
        startSignedIn();
        ASSERT_TRUE(screen->click(u"Profile"_s, QAccessible::PageTab));
        ASSERT_FALSE(screen->waitForPrefix(u"Account status"_s).isEmpty());
    }
    void open(const QString &row, const QString &expected)
    {
        ASSERT_TRUE(screen->click(row, QAccessible::Button));
        ASSERT_TRUE(screen->waitFor(expected));
        ASSERT_TRUE(screen->waitUntilStill());
    }
    void changePassword()
    {
        open(u"Change password"_s, u"Update password"_s);
        ASSERT_TRUE(screen->type(u"Current password"_s, u"old"_s));
        screen->key(Qt::Key_Return);
        screen->typeText(u"new"_s);
        screen->key(Qt::Key_Return);
    }
    /// Whether the text appears within the next second, in which all animations end.
    bool everShows(const QString &text)
    {
        return spinUntil([&] { return screen->shows(text); }, 1s) || screen->shows(text);
    }
    void expire() { app->sessionEvents().setExpiredAt(QDateTime::currentDateTimeUtc()); }

    /// The sign-in is usable at once, and no sheet or dialog is left when the transitions have ended.
    void expectSignInOnly()
    {
        EXPECT_EQ(app->auth()->phase(), AuthStore::Phase::SignedOut);
        ASSERT_TRUE(screen->waitFor(u"Sign in to mark attendance"_s));
        ASSERT_TRUE(screen->waitUntilStill());
        for (const auto &gone : {u"OK"_s, u"Cancel"_s, u"Update password"_s, u"Sign out"_s, u"Profile"_s})
            EXPECT_FALSE(screen->shows(gone)) << gone.toStdString();
        EXPECT_EQ(dialogs(), 0);
        EXPECT_TRUE(spinUntil([this] { return !isDim(); }));
        ASSERT_TRUE(screen->type(u"Email"_s, u"ada"_s));
        screen->key(Qt::Key_Tab);
        screen->typeText(u"secret"_s);
        EXPECT_TRUE(screen->isEnabled(u"Sign in"_s));
    }
    /// As screen readers find them.
    int dialogs() const
    {
        const auto elements = screen->elements();
        return static_cast<int>(std::count_if(elements.begin(), elements.end(), [](const auto &element) {
            return element.role == QAccessible::Dialog;
        }));
    }
    /// A dialog dims the whole window.
    bool isDim() const
    {
        return app->window()->grabWindow().pixelColor(2, 2) != QColor::fromRgb(palette::background);
    }
};

TEST_F(OpenDialogTest, CoversTheTabBarToo)
{
    openProfile();
    EXPECT_FALSE(isDim());
    open(u"Sign out"_s, u"Sign out of Qor?"_s);
    EXPECT_EQ(dialogs(), 1);
    EXPECT_TRUE(isDim());
    EXPECT_FALSE(screen->find(u"History"_s, QAccessible::PageTab));
    EXPECT_FALSE(screen->shows(u"Change password"_s));
    ASSERT_TRUE(screen->click(u"Cancel"_s));
    EXPECT_TRUE(screen->find(u"History"_s, QAccessible::PageTab));
}

TEST_F(OpenDialogTest, SigningOutShowsTheSignInAtOnce)
{
    openProfile();
    open(u"Sign out"_s, u"Sign out of Qor?"_s);
    const auto sent = server.requests().size();
    ASSERT_TRUE(screen->click(u"Sign out"_s, QAccessible::Button));
    expectSignInOnly();
    EXPECT_EQ(server.requests().size(), sent);
    EXPECT_FALSE(tokens->access());
}

TEST_F(OpenDialogTest, ExpiryClosesTheConfirmation)
{
    openProfile();
    open(u"Sign out"_s, u"Sign out of Qor?"_s);
    expire();
    expectSignInOnly();
}

TEST_F(OpenDialogTest, ExpiryClosesAnOpeningDialog)
{
    openProfile();
    ASSERT_TRUE(screen->click(u"Sign out"_s, QAccessible::Button));
    expire();
    expectSignInOnly();
}

TEST_F(OpenDialogTest, ExpiryRemovesAClosingDialog)
{
    openProfile();
    open(u"Sign out"_s, u"Sign out of Qor?"_s);
    screen->key(Qt::Key_Escape);
    expire();
    expectSignInOnly();
}

TEST_F(OpenDialogTest, ExpiryClosesTheSheet)
{
    openProfile();
    open(u"Change password"_s, u"Update password"_s);
    ASSERT_TRUE(screen->type(u"Current password"_s, u"half typ"_s));
    expire();
    expectSignInOnly();
}

TEST_F(OpenDialogTest, ExpiryClosesTheAlertAndTheSheet)
{
    server.expect("POST", "/api/auth/change-password").reply(200, "{}");
    openProfile();
    changePassword();
    ASSERT_TRUE(screen->waitFor(u"Password changed"_s));
    expire();
    expectSignInOnly();
}

TEST_F(OpenDialogTest, ResponseDuringTheClosingOfTheSheetOpensNothing)
{
    server.expect("POST", "/api/auth/change-password").after(120ms).reply(200, "{}");
    openProfile();
    const QPointer<QQuickItem> focused = app->window()->activeFocusItem();
    changePassword();
    EXPECT_NE(app->window()->activeFocusItem(), focused);
    screen->key(Qt::Key_Escape);
    EXPECT_FALSE(everShows(u"Password changed"_s));
    EXPECT_EQ(server.count(u"/api/auth/change-password"_s), 1);
    EXPECT_TRUE(screen->shows(u"Change password"_s));
    EXPECT_EQ(app->window()->activeFocusItem(), focused);
}

TEST_F(OpenDialogTest, ResponseDuringTheWayBackOpensNothing)
{
    server.expect("POST", "/api/auth/login").reply(403, R"({"error":"EMAIL_NOT_VERIFIED","message":"No."})");
    server.expect("POST", "/api/auth/verify-otp").after(120ms).reply(200, "{}");
    start();
    ASSERT_TRUE(screen->waitFor(u"Email"_s));
    ASSERT_TRUE(screen->type(u"Email"_s, u"ada@example.org"_s));
    ASSERT_TRUE(screen->type(u"Password"_s, u"secret"_s));
    ASSERT_TRUE(screen->click(u"Sign in"_s));
    ASSERT_TRUE(screen->waitFor(u"Enter verification code"_s));
    ASSERT_TRUE(screen->click(u"Enter verification code"_s));
    ASSERT_TRUE(screen->waitUntilStill());
    ASSERT_TRUE(screen->type(u"Verification code"_s, u"123456"_s));
    screen->key(Qt::Key_Return);
    screen->key(Qt::Key_Escape);
    EXPECT_FALSE(everShows(u"All set"_s));
    EXPECT_EQ(server.count(u"/api/auth/verify-otp"_s), 1);
    EXPECT_TRUE(screen->isEnabled(u"Sign in"_s));
}

TEST_F(OpenDialogTest, RefusedRefreshDuringTheChangeClosesTheSheet)
{
    server.expect("POST", "/api/auth/change-password").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(401, "{}");
    openProfile();
    changePassword();
    ASSERT_TRUE(screen->waitFor(u"Sign in to mark attendance"_s));
    expectSignInOnly();
}

TEST_F(OpenDialogTest, ReturningToTheProfileReloadsTheUser)
{
    openProfile();
    ASSERT_TRUE(spinUntil([&] { return server.count(u"/api/auth/me"_s) == 2; }));
    ASSERT_TRUE(screen->click(u"Attendance"_s, QAccessible::PageTab));
    ASSERT_TRUE(screen->click(u"Profile"_s, QAccessible::PageTab));
    EXPECT_TRUE(spinUntil([&] { return server.count(u"/api/auth/me"_s) == 3; }));
}

TEST_F(ClockwellAppTest, RefusedRefreshShowsTheSignIn)
{
    server.expect("GET", "/api/auth/me").reply(200, user("Ada"));
    server.expect("GET", "/api/attendance/today").reply(401, "{}");
    server.expect("POST", "/api/auth/refresh").reply(401, "{}");
    start(u"a1"_s, u"r1"_s);
    EXPECT_TRUE(screen->waitFor(u"Sign in to mark attendance"_s));
    EXPECT_FALSE(tokens->access());
    EXPECT_FALSE(tokens->refresh());
    EXPECT_FALSE(app->auth()->user());
}

TEST_F(ClockwellAppTest, NewSessionShowsNothingOfTheLast)
{
    server.expect("GET", "/api/auth/me").reply(200, user("Ada Byron"));
    server.expect("GET", "/api/attendance/today")
        .withHeader("Authorization", "Bearer a1")
        .reply(200, today("First Office"));
    start(u"a1"_s, u"r1"_s);
    ASSERT_TRUE(screen->waitFor(u"First Office"_s));
    app->auth()->logout();
    ASSERT_TRUE(screen->waitFor(u"Email"_s));
    server.expect("POST", "/api/auth/login")
        .reply(200, R"({"accessToken":"a2","refreshToken":"r2","user":)" + user("Bob Kay") + "}");
    server.expect("GET", "/api/attendance/today")
        .withHeader("Authorization", "Bearer a2")
        .after(500ms)
        .reply(200, today("Second Office"));
    ASSERT_TRUE(screen->waitUntilGone(u"Attendance"_s));
    ASSERT_TRUE(screen->type(u"Email"_s, u"bob@example.org"_s));
    ASSERT_TRUE(screen->type(u"Password"_s, u"secret"_s));
    ASSERT_TRUE(screen->click(u"Sign in"_s));
    ASSERT_TRUE(screen->waitFor(u"Attendance"_s));
    EXPECT_FALSE(screen->shows(u"First Office"_s));
    EXPECT_TRUE(screen->waitFor(u"Second Office"_s));
    EXPECT_FALSE(screen->shows(u"First Office"_s));
    EXPECT_TRUE(isSelected(u"Attendance"_s));
}

TEST_F(ClockwellAppTest, SigningOutRebuildsTheSignInWithEmptyFields)
{
    start();
    ASSERT_TRUE(screen->waitFor(u"Email"_s));
    server.expect("POST", "/api/auth/login")
        .reply(200, R"({"accessToken":"a","refreshToken":"r","user":)" + user("Ada") + "}");
    server.expect("GET", "/api/attendance/today").reply(200, today("North Tower"));
    ASSERT_TRUE(screen->type(u"Email"_s, u"ada@example.org"_s));
    ASSERT_TRUE(screen->type(u"Password"_s, u"secret"_s));
    ASSERT_TRUE(screen->click(u"Sign in"_s));
    ASSERT_TRUE(screen->waitFor(u"North Tower"_s));
    app->auth()->logout();
    ASSERT_TRUE(screen->waitFor(u"Email"_s));
    ASSERT_TRUE(settled());
    EXPECT_FALSE(screen->isEnabled(u"Sign in"_s));
}

TEST_F(ClockwellAppTest, PagesAreDarkIndependentOfTheDesktop)
{
    start();
    ASSERT_TRUE(screen->waitFor(u"Sign in"_s));
    const QImage picture = app->window()->grabWindow();
    EXPECT_EQ(picture.pixelColor(4, 4), QColor(9, 21, 42));
    EXPECT_EQ(picture.pixelColor(picture.width() - 4, picture.height() - 4), QColor(9, 21, 42));
}

TEST_F(ClockwellAppTest, QuittingDuringARequestIsHarmless)
{
    server.expect("GET", "/api/auth/me").reply(200, user("Ada"));
    server.expect("GET", "/api/attendance/today").never();
    start(u"a1"_s, u"r1"_s);
    ASSERT_TRUE(spinUntil([&] { return server.count(u"/api/attendance/today"_s) == 1; }));
    QElapsedTimer clock;
    clock.start();
    app.reset();
    EXPECT_LT(clock.elapsed(), 15'000) << "a request may take 25 seconds";
    spinUntil([] { return false; }, 100ms);
}

TEST_F(ClockwellAppTest, QuittingWhileTheSessionIsRestoredIsHarmless)
{
    server.expect("GET", "/api/auth/me").never();
    start(u"a1"_s, u"r1"_s);
    ASSERT_TRUE(server.waitForRequests(1));
    auto *const kept = tokens;
    EXPECT_EQ(kept->access(), u"a1"_s);
    app.reset();
    spinUntil([] { return false; }, 100ms);
}

} // namespace
} // namespace clockwell
