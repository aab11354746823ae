#include "attendance/BannerViewModel.h"

#include "HomeServices.h"
#include "ui/Palette.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace clockwell {
namespace {

using test::spinUntil;

class BannerViewModelTest : public ::testing::Test
{
protected:
    BannerViewModelTest()
    {
        model.setShown(true);
        model.setAttendance(services.store.get());
        QObject::connect(&model, &BannerViewModel::appeared, [this] { ++appearances; });
    }
    void show(const char *text, Banner::Kind kind = Banner::Kind::Error)
    {
        services.store->setBanner(Banner{.text = QString::fromUtf8(text), .kind = kind});
    }

    test::HomeServices services;
    BannerViewModel model;
    int appearances = 0;
};

TEST_F(BannerViewModelTest, EachKindHasItsSymbolAndColour)
{
    show("a", Banner::Kind::Success);
    EXPECT_EQ(model.symbol(), QStringLiteral("checkmark.circle.fill"));
    EXPECT_EQ(model.color().rgba(), palette::success);
    show("b", Banner::Kind::Error);
    EXPECT_EQ(model.symbol(), QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_EQ(model.color().rgba(), palette::danger);
    show("c", Banner::Kind::Info);
    EXPECT_EQ(model.symbol(), QStringLiteral("info.circle.fill"));
    EXPECT_EQ(model.color().rgba(), palette::brand);
    EXPECT_EQ(model.text(), QStringLiteral("c"));
}

TEST_F(BannerViewModelTest, IsDismissedAfterFourSeconds)
{
    EXPECT_EQ(model.interval(), 4000);
    QElapsedTimer clock;
    clock.start();
    show("Outside");
    ASSERT_TRUE(spinUntil([&] { return !services.store->banner(); }));
    EXPECT_GE(clock.elapsed(), 4000);
    EXPECT_LE(clock.elapsed(), 20'000);
    EXPECT_FALSE(model.isPresent());
}

TEST_F(BannerViewModelTest, DismissClearsTheStoresBanner)
{
    show("Outside");
    EXPECT_TRUE(model.isPresent());
    model.dismiss();
    EXPECT_FALSE(services.store->banner());
    EXPECT_FALSE(model.isPresent());
    EXPECT_EQ(model.text(), QStringLiteral("Outside")); // shown while sliding out
}

TEST_F(BannerViewModelTest, ReplacementAppearsAgainAndRestartsTheTimer)
{
    model.setInterval(1500);
    show("Down");
    EXPECT_FALSE(spinUntil([&] { return !model.isPresent(); }, 900ms));
    show("Down");
    EXPECT_EQ(appearances, 2);
    EXPECT_FALSE(spinUntil([&] { return !model.isPresent(); }, 900ms)); // the first interval is over
    EXPECT_TRUE(spinUntil([&] { return !model.isPresent(); }));
}

TEST_F(BannerViewModelTest, TimerOfADismissedBannerIsCancelled)
{
    model.setInterval(150);
    show("one");
    model.dismiss();
    int changes = 0;
    QObject::connect(
        services.store.get(), &AttendanceStore::bannerChanged, [&] { ++changes; });
    EXPECT_FALSE(spinUntil([&] { return changes > 0; }, 300ms));
}

TEST_F(BannerViewModelTest, OutlivesItsStore)
{
    show("one");
    services.store.reset();
    EXPECT_FALSE(model.isPresent());
    model.dismiss();
}

} // namespace
} // namespace clockwell
