#include "server/http/TokenBuckets.h"

#include <gtest/gtest.h>

namespace clockwell::server {

using std::chrono::milliseconds;
using std::chrono::seconds;

class TokenBucketsTest : public testing::Test
{
protected:
    static constexpr std::size_t maxAddresses = TokenLimits{}.keys;
    TokenBuckets::Clock::time_point m_now{seconds(1000)};
};

TEST_F(TokenBucketsTest, BurstPassesThenTheWaitForOneTokenIsTold)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 3}};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(buckets.take("a", m_now), milliseconds(0));
    EXPECT_EQ(buckets.take("a", m_now), milliseconds(1000));
    EXPECT_EQ(buckets.take("a", m_now + milliseconds(400)), milliseconds(600));
}

TEST_F(TokenBucketsTest, TokensComeBackAtTheRateAndNotBeyondTheBurst)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 2}};
    buckets.take("a", m_now);
    buckets.take("a", m_now);
    EXPECT_EQ(buckets.take("a", m_now + milliseconds(1000)), milliseconds(0));
    EXPECT_GT(buckets.take("a", m_now + milliseconds(1000)), milliseconds(0));
    EXPECT_EQ(buckets.take("a", m_now + seconds(3600)), milliseconds(0));
    EXPECT_EQ(buckets.take("a", m_now + seconds(3600)), milliseconds(0));
    EXPECT_GT(buckets.take("a", m_now + seconds(3600)), milliseconds(0));
}

TEST_F(TokenBucketsTest, RefusedRequestsDoNotPushTheNextOneFurtherAway)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 1}};
    buckets.take("a", m_now);
    for (int i = 0; i < 100; ++i)
        EXPECT_GT(buckets.take("a", m_now), milliseconds(0));
    EXPECT_EQ(buckets.take("a", m_now + seconds(1)), milliseconds(0));
}

TEST_F(TokenBucketsTest, WaitCanBeAskedForWithoutTaking)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 1}};
    EXPECT_EQ(buckets.waitFor("a", m_now), milliseconds(0));
    EXPECT_EQ(buckets.waitFor("a", m_now), milliseconds(0));
    EXPECT_EQ(buckets.take("a", m_now), milliseconds(0));
    EXPECT_EQ(buckets.waitFor("a", m_now), milliseconds(1000));
    EXPECT_EQ(buckets.waitFor("a", m_now + seconds(1)), milliseconds(0));
    EXPECT_EQ((TokenBuckets{{.perMinute = 0, .burst = 1}}.waitFor("a", m_now)), milliseconds(0));
}

TEST_F(TokenBucketsTest, AddressesHaveBucketsOfTheirOwn)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 1}};
    EXPECT_EQ(buckets.take("a", m_now), milliseconds(0));
    EXPECT_EQ(buckets.take("b", m_now), milliseconds(0));
    EXPECT_GT(buckets.take("a", m_now), milliseconds(0));
}

TEST_F(TokenBucketsTest, FullBucketsAreForgotten)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 5}};
    for (int i = 0; i < 1000; ++i)
        buckets.take(std::to_string(i), m_now);
    EXPECT_EQ(buckets.remembered(), 1000U);
    buckets.take("late", m_now + seconds(30));
    EXPECT_EQ(buckets.remembered(), 1U);
}

TEST_F(TokenBucketsTest, MemoryIsBoundedAndNewcomersShareABucket)
{
    TokenBuckets buckets{{.perMinute = 60, .burst = 1}};
    for (std::size_t i = 0; i < maxAddresses; ++i)
        buckets.take(std::to_string(i), m_now);
    EXPECT_EQ(buckets.take("x", m_now), milliseconds(0));
    EXPECT_GT(buckets.take("y", m_now), milliseconds(0));
    EXPECT_EQ(buckets.remembered(), maxAddresses + 1);
}

TEST_F(TokenBucketsTest, ZeroRateSwitchesItOff)
{
    TokenBuckets buckets{{.perMinute = 0, .burst = 1}};
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(buckets.take("a", m_now), milliseconds(0));
}

} // namespace clockwell::server
