#include "server/log/RepeatedLines.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

namespace {

const RepeatedLines::Time firstMinute{std::chrono::hours{1}};

std::string requestLine(int id, const std::string &path, int status)
{
    return "event=request id=x-" + std::to_string(id) + " method=POST path=" + path +
           " status=" + std::to_string(status) + " durationMs=0.120 bytes=99";
}

} // namespace

TEST(RepeatedLinesTest, RefusalsOfAKindAreShownTenTimesThenSummedUpEachMinute)
{
    RepeatedLines lines;
    int shown = 0;
    for (int i = 0; i < 10'000; ++i)
        shown += lines.admits(requestLine(i, "/api/auth/login", 401), false, firstMinute) ? 1 : 0;
    EXPECT_EQ(shown, 10);
    EXPECT_TRUE(lines.admits(requestLine(1, "/api/auth/login", 429), false, firstMinute)); // another kind
    EXPECT_TRUE(lines.summaries(firstMinute + std::chrono::seconds{59}).empty());
    const auto first = lines.summaries(firstMinute + std::chrono::seconds{61});
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0], "event=repeated of=request method=POST path=/api/auth/login status=401 count=9990");
    // It goes on: then the number is all that is told.
    EXPECT_FALSE(
        lines.admits(requestLine(1, "/api/auth/login", 401), false, firstMinute + std::chrono::seconds{70}));
    EXPECT_EQ(lines.summaries(firstMinute + std::chrono::seconds{122}).size(), 1U);
    EXPECT_TRUE(lines.summaries(firstMinute + std::chrono::seconds{190}).empty());
    EXPECT_TRUE(
        lines.admits(requestLine(1, "/api/auth/login", 401), false, firstMinute + std::chrono::seconds{191}));
}

TEST(RepeatedLinesTest, RequestsLeftUnansweredAreSummedUpLikeRefusals)
{
    RepeatedLines lines;
    int written = 0;
    for (int i = 0; i < 100; ++i)
        written += lines.admits(requestLine(i, "/api/auth/refresh", 0), false, firstMinute) ? 1 : 0;
    EXPECT_EQ(written, 10);
}

TEST(RepeatedLinesTest, WhatIsNoRefusalIsNeverSummedUp)
{
    RepeatedLines lines;
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(lines.admits(requestLine(i, "/api/attendance/punch", 200), false, firstMinute));
        EXPECT_TRUE(lines.admits("event=punch employee=e1 type=IN request=x-1", false, firstMinute));
        EXPECT_TRUE(
            lines.admits("event=sessionRevoked reason=replay employee=e1 session=s1", true, firstMinute));
        EXPECT_TRUE(lines.admits("event=mailDropped reason=tooLate messages=3", true, firstMinute));
    }
    EXPECT_TRUE(lines.summaries(firstMinute + std::chrono::hours{1}).empty());
}

TEST(RepeatedLinesTest, WarningsAndRefusalsOfOtherEventsAreSummedUp)
{
    RepeatedLines lines;
    int shown = 0;
    for (int i = 0; i < 100; ++i) {
        shown +=
            lines.admits("event=signInRefused request=x-" + std::to_string(i), false, firstMinute) ? 1 : 0;
        shown +=
            lines.admits("event=mailFailed attempts=1 again=yes what=\"a status=200\"", true, firstMinute)
                ? 1
                : 0;
    }
    EXPECT_EQ(shown, 20);
    const auto sums = lines.summaries(firstMinute + std::chrono::minutes{1});
    ASSERT_EQ(sums.size(), 2U);
    EXPECT_EQ(sums[0], "event=repeated of=mailFailed again=yes count=90");
    EXPECT_EQ(sums[1], "event=repeated of=signInRefused count=90");
}

TEST(RepeatedLinesTest, KindsWithoutEndTakeNoMemoryWithoutEnd)
{
    RepeatedLines lines;
    int shown = 0;
    for (int i = 0; i < 10'000; ++i)
        shown += lines.admits(requestLine(i, "/p" + std::to_string(i), 404), false, firstMinute) ? 1 : 0;
    EXPECT_LE(shown, 600);
    const auto sums = lines.summaries(firstMinute + std::chrono::minutes{1});
    ASSERT_EQ(sums.size(), 1U);
    EXPECT_EQ(sums[0], "event=repeated of=others count=" + std::to_string(10'000 - shown));
}

} // namespace clockwell::server::test
