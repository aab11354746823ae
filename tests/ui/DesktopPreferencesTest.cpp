#include "ui/DesktopPreferences.h"

#include "FakePortal.h"
#include "ui/Theme.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell {

namespace {

const auto gnome = QStringLiteral("org.gnome.desktop.interface");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto kde = QStringLiteral("org.kde.kdeglobals.KDE");
const auto textFactor = QStringLiteral("text-scaling-factor");
const auto animations = QStringLiteral("enable-animations");
const auto reducedMotion = QStringLiteral("reduced-motion");
const auto durationFactor = QStringLiteral("AnimationDurationFactor");

class DesktopPreferencesTest : public testing::Test
{
protected:
    // The answer is in the theme once the portal has been asked and a call after it has come back.
    void startAndSettle()
    {
        preferences.start(appBus);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !portal.askedGroups.isEmpty(); }));
        const auto ping = appBus.asyncCall(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/"),
            QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ping.isFinished(); }));
        QCoreApplication::processEvents();
    }

    test::PrivateBus bus;
    test::FakePortal portal{bus.connect()};
    QDBusConnection appBus = bus.connect();
    Theme theme{nullptr};
    DesktopPreferences preferences{theme};
};

} // namespace

TEST_F(DesktopPreferencesTest, AsksForNothingBeforeItIsStarted)
{
    QTest::qWait(50);
    EXPECT_TRUE(portal.askedGroups.isEmpty());
}

TEST_F(DesktopPreferencesTest, TakesTheTextScale)
{
    portal.set(gnome, textFactor, 1.75);
    startAndSettle();
    EXPECT_EQ(theme.textScale(), 1.75);
    EXPECT_FALSE(theme.reducedMotion());
}

TEST_F(DesktopPreferencesTest, TakesAnimationsOff)
{
    portal.set(gnome, animations, false);
    startAndSettle();
    EXPECT_TRUE(theme.reducedMotion());
    EXPECT_EQ(theme.textScale(), 1.0);
}

TEST_F(DesktopPreferencesTest, KeepsMotionWhereAnimationsAreOn)
{
    portal.set(gnome, animations, true);
    startAndSettle();
    EXPECT_FALSE(theme.reducedMotion());
}

TEST_F(DesktopPreferencesTest, TakesReducedMotionFromEitherSetting)
{
    portal.set(gnome, animations, true);
    portal.set(appearance, reducedMotion, 1U);
    startAndSettle();
    EXPECT_TRUE(theme.reducedMotion());
    portal.change(appearance, reducedMotion, 0U);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !theme.reducedMotion(); }));
    portal.change(gnome, animations, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return theme.reducedMotion(); }));
}

TEST_F(DesktopPreferencesTest, TakesADurationFactorOfZeroAsReducedMotion)
{
    portal.set(kde, durationFactor, QStringLiteral("0"));
    startAndSettle();
    EXPECT_TRUE(theme.reducedMotion());
    portal.change(kde, durationFactor, QStringLiteral("0.5"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !theme.reducedMotion(); }));
}

TEST_F(DesktopPreferencesTest, FollowsChanges)
{
    startAndSettle();
    portal.change(gnome, textFactor, 2.0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return theme.textScale() == 2.0; }));
    portal.change(gnome, textFactor, 1.0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return theme.textScale() == 1.0; }));
}

TEST_F(DesktopPreferencesTest, IgnoresSettingsOfOthers)
{
    startAndSettle();
    portal.change(QStringLiteral("org.example"), textFactor, 3.0);
    portal.change(gnome, QStringLiteral("cursor-size"), 48);
    portal.change(gnome, textFactor, 1.25);
    ASSERT_TRUE(QTest::qWaitFor([&] { return theme.textScale() == 1.25; }));
    EXPECT_FALSE(theme.reducedMotion());
}

TEST_F(DesktopPreferencesTest, IgnoresValuesOfTheWrongType)
{
    portal.set(gnome, textFactor, QStringLiteral("large"));
    portal.set(gnome, animations, QStringList{QStringLiteral("no")});
    startAndSettle();
    EXPECT_EQ(theme.textScale(), 1.0);
    EXPECT_FALSE(theme.reducedMotion());
}

TEST_F(DesktopPreferencesTest, KeepsTheDefaultsWhenThePortalRefuses)
{
    portal.set(gnome, textFactor, 2.0);
    portal.refuses = true;
    startAndSettle();
    EXPECT_EQ(theme.textScale(), 1.0);
}

TEST_F(DesktopPreferencesTest, DoesNotWaitForAPortalThatIsSilent)
{
    portal.silent = true;
    QElapsedTimer clock;
    clock.start();
    preferences.start(appBus);
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !portal.askedGroups.isEmpty(); }));
    portal.change(gnome, textFactor, 1.5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return theme.textScale() == 1.5; }));
}

TEST_F(DesktopPreferencesTest, MayGoAwayWhileThePortalIsAsked)
{
    portal.set(gnome, textFactor, 2.0);
    {
        DesktopPreferences shortLived(theme);
        shortLived.start(appBus);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return !portal.askedGroups.isEmpty(); }));
    QTest::qWait(50);
    EXPECT_EQ(theme.textScale(), 1.0);
}

TEST(DesktopPreferencesWithoutPortal, KeepsTheDefaults)
{
    test::PrivateBus bus;
    Theme theme(nullptr);
    DesktopPreferences preferences(theme);
    preferences.start(bus.connect());
    QTest::qWait(100);
    EXPECT_EQ(theme.textScale(), 1.0);
    EXPECT_FALSE(theme.reducedMotion());
}

TEST(DesktopPreferencesWithoutBus, KeepsTheDefaults)
{
    Theme theme(nullptr);
    DesktopPreferences preferences(theme);
    preferences.start(QDBusConnection(QStringLiteral("never connected")));
    EXPECT_EQ(theme.textScale(), 1.0);
    EXPECT_FALSE(theme.reducedMotion());
}

} // namespace clockwell
