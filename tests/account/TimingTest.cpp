#include "account/Timing.h"

#include "support/Await.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <memory>

using namespace std::chrono_literals;

namespace clockwell {
namespace {

TEST(Timing, APauseLastsAtLeastItsDuration)
{
    Timing timing;
    QElapsedTimer clock;
    clock.start();
    test::await(timing.pause(80ms));
    EXPECT_GE(clock.elapsed(), 80);
}

QCoro::Task<> keepThroughAPause(Timing &timing, std::shared_ptr<int> kept)
{
    co_await timing.pause(1h);
    *kept = 1;
}

// As when the window is closed during a pause: the waiting coroutine must be released.
TEST(Timing, DestructionReleasesWaitingCoroutines)
{
    const auto kept = std::make_shared<int>(0);
    {
        Timing timing;
        keepThroughAPause(timing, kept);
        test::spinUntil([] { return false; }, 20ms);
        EXPECT_EQ(kept.use_count(), 2);
    }
    EXPECT_EQ(kept.use_count(), 1);
    EXPECT_EQ(*kept, 0) << "the pause had not ended";
}

TEST(Timing, TicksUntilTheSubscriptionIsDestroyed)
{
    Timing timing;
    int ticks = 0;
    auto subscription = timing.every(20ms, [&ticks] { ++ticks; });
    EXPECT_EQ(ticks, 0);
    EXPECT_TRUE(test::spinUntil([&] { return ticks >= 3; }));
    subscription.reset();
    const int atTheEnd = ticks;
    test::spinUntil([] { return false; }, 100ms);
    EXPECT_EQ(ticks, atTheEnd);
}

} // namespace
} // namespace clockwell
