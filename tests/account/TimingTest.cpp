#include "account/Timing.h"

#include "support/Await.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace clockwell {
namespace {

TEST(Timing, APauseLastsAtLeastItsTime)
{
    Timing timing;
    QElapsedTimer clock;
    clock.start();
    test::await(timing.pause(80ms));
    EXPECT_GE(clock.elapsed(), 76); // a timer may be up to 5% early
}

TEST(Timing, TicksUntilTheSubscriptionGoes)
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
