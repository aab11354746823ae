#include "PunchFixture.h"

#include <algorithm>
#include <thread>
#include <vector>

namespace clockwell::server::test {

class PunchRepeatTest : public PunchFixture
{};

TEST_F(PunchRepeatTest, RepeatFromTheSameDeviceIsAnsweredLikeTheFirst)
{
    const Reply first = world.punch(token);
    world.advance(std::chrono::seconds{5});
    const Reply again = world.punch(token);
    EXPECT_EQ(again.status, 200);
    EXPECT_EQ(again.body, first.body);
    EXPECT_EQ(rows("punches"), 1);
}

TEST_F(PunchRepeatTest, RepeatOfACheckOutIsAnsweredLikeTheFirst)
{
    world.punch(token);
    at("2026-06-10T17:00:00Z");
    const Reply out = world.punch(token);
    world.advance(std::chrono::seconds{2});
    const Reply again = world.punch(token, 48.0001, 11.0);
    EXPECT_EQ(again.body, out.body);
    EXPECT_EQ(rows("punches"), 2);
}

TEST_F(PunchRepeatTest, RepeatWindowIsNinetySecondsUnlessSet)
{
    EXPECT_EQ(Settings{}.repeatWindow, std::chrono::seconds{90});
}

TEST_F(PunchRepeatTest, RetryAfterALostReplyGetsTheFirstAnswer)
{
    // The app gives up on the first punch after a minute, and its owner taps again.
    const Reply first = world.punch(token);
    world.advance(std::chrono::seconds{60});
    const Reply again = world.punch(token);
    EXPECT_EQ(again.status, 200);
    EXPECT_EQ(again.body, first.body);
    EXPECT_EQ(again.json().at("type"), "IN");
    EXPECT_EQ(rows("punches"), 1);
    EXPECT_EQ(today().at("canCheckOut"), true);
}

TEST_F(PunchRepeatTest, PunchAfterTheRepeatWindowIsTheNextOne)
{
    const Reply first = world.punch(token);
    world.advance(std::chrono::seconds{90});
    EXPECT_EQ(world.punch(token).body, first.body);
    world.advance(std::chrono::seconds{1});
    EXPECT_EQ(world.punch(token).json().at("type"), "OUT");
    EXPECT_EQ(rows("punches"), 2);
}

TEST_F(PunchRepeatTest, AnotherDeviceCannotCheckOutWithinTheRepeatWindow)
{
    world.punch(token);
    const Reply other = world.punch(token, 48.0, 11.0, "dev-2");
    EXPECT_EQ(other.status, 409);
    EXPECT_EQ(other.error(), "TOO_SOON");
    world.advance(std::chrono::seconds{91});
    EXPECT_EQ(world.punch(token, 48.0, 11.0, "dev-2").json().at("type"), "OUT");
}

TEST_F(PunchRepeatTest, RepeatAcrossMidnightIsStillARepeat)
{
    at("2026-06-10T23:59:58Z");
    const Reply first = world.punch(token);
    world.advance(std::chrono::seconds{60});
    EXPECT_EQ(world.punch(token).body, first.body);
    EXPECT_EQ(rows("attendance"), 1);
}

TEST_F(PunchRepeatTest, OfTwoDaysWithinTheRepeatWindowTheLaterPunchCounts)
{
    world.punch(token);
    at("2026-06-10T23:59:30Z");
    EXPECT_EQ(world.punch(token).json().at("type"), "OUT");
    world.advance(std::chrono::seconds{40});
    const Reply in = world.punch(token, 48.0, 11.0, "dev-2");
    EXPECT_EQ(in.json().at("type"), "IN");
    world.advance(std::chrono::seconds{10});
    EXPECT_EQ(world.punch(token, 48.0, 11.0, "dev-2").body, in.body);
    EXPECT_EQ(world.punch(token).error(), "TOO_SOON");
    EXPECT_EQ(rows("attendance"), 2);
}

TEST_F(PunchRepeatTest, FiftyParallelPunchesMakeOneRowAndOneAnswer)
{
    std::vector<Reply> replies(50);
    std::vector<std::thread> threads;
    for (Reply &reply : replies)
        threads.emplace_back([this, &reply] { reply = world.punch(token); });
    for (std::thread &thread : threads)
        thread.join();
    for (const Reply &reply : replies) {
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.body, replies.front().body);
    }
    EXPECT_EQ(replies.front().json().at("type"), "IN");
    EXPECT_EQ(rows("attendance"), 1);
    EXPECT_EQ(rows("punches"), 1);
}

TEST_F(PunchRepeatTest, FiftyParallelPunchesFromManyDevicesMakeOneCheckIn)
{
    std::vector<Reply> replies(50);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < replies.size(); ++i)
        threads.emplace_back(
            [this, &replies, i] { replies[i] = world.punch(token, 48.0, 11.0, "dev-" + std::to_string(i)); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::ranges::count(replies, 200, &Reply::status), 1);
    EXPECT_EQ(std::ranges::count(replies, 409, &Reply::status), 49);
    EXPECT_EQ(rows("punches"), 1);
}

} // namespace clockwell::server::test
