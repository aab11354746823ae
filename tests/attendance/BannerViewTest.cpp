#include "HomeServices.h"
#include "support/screen/QmlStage.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::spinUntil;

class BannerViewTest : public ::testing::Test
{
protected:
    BannerViewTest()
    {
        services.expectToday(test::replies::beforeCheckIn);
        services.expectDistance(test::replies::inside);
        stage = std::make_unique<test::QmlStage>(u"Clockwell/Attendance/HomeView.qml"_s,
                                                 services.properties(u"Ada"_s));
        EXPECT_TRUE(services.settle(2));
    }
    void show(const QString &text)
    {
        services.store->setBanner(Banner{.text = text, .kind = Banner::Kind::Error});
    }

    void showAgain()
    {
        services.expectToday(test::replies::beforeCheckIn);
        services.expectDistance(test::replies::inside);
        stage->root()->setVisible(true);
    }

    test::HomeServices services;
    std::unique_ptr<test::QmlStage> stage;
};

TEST_F(BannerViewTest, NothingSlidesOutAtTheStart)
{
    EXPECT_FALSE(stage->screen().shows(u"Close"_s)) << stage->screen().dump().toStdString();
}

TEST_F(BannerViewTest, IsAnAlertAtTheTopOfTheScreen)
{
    show(u"You are outside"_s);
    ASSERT_TRUE(stage->screen().waitFor(u"You are outside"_s)) << stage->screen().dump().toStdString();
    const auto alert = stage->screen().find(u"You are outside"_s, QAccessible::AlertMessage);
    ASSERT_TRUE(alert) << stage->screen().dump().toStdString();
    ASSERT_TRUE(spinUntil([&] { return stage->screen().find(u"You are outside"_s)->rect.top() == 12; }));
    EXPECT_EQ(alert->rect.left(), 20);
    EXPECT_EQ(alert->rect.width(), 350);
}

TEST_F(BannerViewTest, CloseDismissesIt)
{
    show(u"You are outside"_s);
    ASSERT_TRUE(spinUntil([&] {
        const auto alert = stage->screen().find(u"You are outside"_s);
        return alert && alert->rect.top() == 12;
    }));
    ASSERT_TRUE(stage->screen().click(u"Close"_s, QAccessible::Button));
    EXPECT_FALSE(services.store->banner());
    EXPECT_TRUE(stage->screen().waitUntilGone(u"You are outside"_s));
    EXPECT_FALSE(stage->screen().shows(u"Close"_s));
}

TEST_F(BannerViewTest, CloseWorksForAssistiveTechnology)
{
    show(u"You are outside"_s);
    ASSERT_TRUE(stage->screen().waitFor(u"Close"_s));
    ASSERT_TRUE(stage->screen().press(u"Close"_s));
    EXPECT_FALSE(services.store->banner());
}

TEST_F(BannerViewTest, DisappearsAfterItsInterval)
{
    ASSERT_TRUE(stage->root()->setProperty("bannerInterval", 1500));
    show(u"You are outside"_s);
    ASSERT_TRUE(stage->screen().waitFor(u"You are outside"_s));
    EXPECT_TRUE(stage->screen().waitUntilGone(u"You are outside"_s));
    EXPECT_FALSE(services.store->banner());
}

TEST_F(BannerViewTest, BannerForAHiddenTabIsShownForItsWholeIntervalOnReturn)
{
    ASSERT_TRUE(stage->root()->setProperty("bannerInterval", 1500));
    stage->root()->setVisible(false);
    show(u"You are outside"_s);
    EXPECT_FALSE(spinUntil([&] { return !services.store->banner(); }, 2s));
    showAgain();
    EXPECT_FALSE(spinUntil([&] { return !services.store->banner(); }, 900ms));
    EXPECT_TRUE(stage->screen().shows(u"You are outside"_s));
    EXPECT_TRUE(stage->screen().waitUntilGone(u"You are outside"_s));
    EXPECT_FALSE(services.store->banner());
}

TEST_F(BannerViewTest, LeavingTheTabStopsTheTimerAndReturningRestartsIt)
{
    ASSERT_TRUE(stage->root()->setProperty("bannerInterval", 1500));
    show(u"You are outside"_s);
    EXPECT_FALSE(spinUntil([&] { return !services.store->banner(); }, 700ms));
    stage->root()->setVisible(false);
    EXPECT_FALSE(spinUntil([&] { return !services.store->banner(); }, 2s));
    showAgain();
    EXPECT_FALSE(spinUntil([&] { return !services.store->banner(); }, 900ms));
    EXPECT_TRUE(spinUntil([&] { return !services.store->banner(); }));
}

TEST_F(BannerViewTest, RepeatedTextIsShownAndAnnouncedAgain)
{
    const auto isInPlace = [&] {
        const auto alert = stage->screen().find(u"Down"_s);
        return alert && alert->rect.top() == 12;
    };
    show(u"Down"_s);
    ASSERT_TRUE(spinUntil(isInPlace));
    // Assistive technology announces an alert when it becomes visible.
    auto *alert =
        qobject_cast<QQuickItem *>(stage->screen().find(u"Down"_s, QAccessible::AlertMessage)->object);
    ASSERT_NE(alert, nullptr);
    QList<bool> visible;
    QObject::connect(alert, &QQuickItem::visibleChanged, [&] { visible.append(alert->isVisible()); });
    show(u"Down"_s);
    EXPECT_EQ(visible, (QList{false, true}));
    EXPECT_FALSE(isInPlace()); // slides in again
    EXPECT_TRUE(spinUntil(isInPlace));
}

} // namespace
} // namespace clockwell
