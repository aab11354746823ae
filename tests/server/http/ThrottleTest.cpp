#include "server/http/Throttle.h"

#include <gtest/gtest.h>

namespace clockwell::server {

using std::chrono::milliseconds;
using std::chrono::seconds;

class ThrottleTest : public testing::Test
{
protected:
    Throttle::Clock::time_point m_now{seconds(1000)};
};

TEST_F(ThrottleTest, BurstPassesThenTheWaitForOneTokenIsTold)
{
    Throttle throttle(60, 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(throttle.take("a", m_now), milliseconds(0));
    EXPECT_EQ(throttle.take("a", m_now), milliseconds(1000));
    EXPECT_EQ(throttle.take("a", m_now + milliseconds(400)), milliseconds(600));
}

TEST_F(ThrottleTest, TokensComeBackAtTheRateAndNotBeyondTheBurst)
{
    Throttle throttle(60, 2);
    throttle.take("a", m_now);
    throttle.take("a", m_now);
    EXPECT_EQ(throttle.take("a", m_now + milliseconds(1000)), milliseconds(0));
    EXPECT_GT(throttle.take("a", m_now + milliseconds(1000)), milliseconds(0));
    EXPECT_EQ(throttle.take("a", m_now + seconds(3600)), milliseconds(0));
    EXPECT_EQ(throttle.take("a", m_now + seconds(3600)), milliseconds(0));
    EXPECT_GT(throttle.take("a", m_now + seconds(3600)), milliseconds(0));
}

TEST_F(ThrottleTest, RefusedRequestsDoNotPushTheNextOneFurtherAway)
{
    Throttle throttle(60, 1);
    throttle.take("a", m_now);
    for (int i = 0; i < 100; ++i)
        EXPECT_GT(throttle.take("a", m_now), milliseconds(0));
    EXPECT_EQ(throttle.take("a", m_now + seconds(1)), milliseconds(0));
}

TEST_F(ThrottleTest, WaitCanBeAskedForWithoutTaking)
{
    Throttle throttle(60, 1);
    EXPECT_EQ(throttle.waitFor("a", m_now), milliseconds(0));
    EXPECT_EQ(throttle.waitFor("a", m_now), milliseconds(0));
    EXPECT_EQ(throttle.take("a", m_now), milliseconds(0));
    EXPECT_EQ(throttle.waitFor("a", m_now), milliseconds(1000));
    EXPECT_EQ(throttle.waitFor("a", m_now + seconds(1)), milliseconds(0));
    EXPECT_EQ(Throttle(0, 1).waitFor("a", m_now), milliseconds(0));
}

TEST_F(ThrottleTest, AddressesHaveBucketsOfTheirOwn)
{
    Throttle throttle(60, 1);
    EXPECT_EQ(throttle.take("a", m_now), milliseconds(0));
    EXPECT_EQ(throttle.take("b", m_now), milliseconds(0));
    EXPECT_GT(throttle.take("a", m_now), milliseconds(0));
}

TEST_F(ThrottleTest, FullBucketsAreForgotten)
{
    Throttle throttle(60, 5);
    for (int i = 0; i < 1000; ++i)
        throttle.take(std::to_string(i), m_now);
    EXPECT_EQ(throttle.trackedAddresses(), 1000U);
    throttle.take("late", m_now + seconds(30));
    EXPECT_EQ(throttle.trackedAddresses(), 1U);
}

TEST_F(ThrottleTest, MemoryIsBoundedAndNewcomersShareABucket)
{
    Throttle throttle(60, 1);
    for (std::size_t i = 0; i < Throttle::maxAddresses; ++i)
        throttle.take(std::to_string(i), m_now);
    EXPECT_EQ(throttle.take("x", m_now), milliseconds(0));
    EXPECT_GT(throttle.take("y", m_now), milliseconds(0));
    EXPECT_EQ(throttle.trackedAddresses(), Throttle::maxAddresses + 1);
}

TEST_F(ThrottleTest, ZeroRateSwitchesItOff)
{
    Throttle throttle(0, 1);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(throttle.take("a", m_now), milliseconds(0));
}

} // namespace clockwell::server
