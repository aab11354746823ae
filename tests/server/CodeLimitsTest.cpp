#include "AccountFixture.h"

namespace clockwell::server::test {

class CodeLimitsTest : public AccountFixture
{
protected:
    long long storedCodes()
    {
        return world.database().read(
            [](Connection &connection) { return connection.value<long long>("SELECT COUNT(*) FROM codes"); });
    }
    /// As many wrong codes as one address may be tried with in an hour: five for each of five codes.
    void useUpAnHoursTries()
    {
        for (int round = 0; round < 5; ++round) {
            EXPECT_EQ(resend().status, 200);
            const std::string wrong = other(world.code());
            for (int i = 0; i < 5; ++i)
                EXPECT_EQ(verify(wrong).status, 400);
        }
    }
    /// Uses up what is allowed in a day; the first try was an hour before the end.
    void useUpTheDaysTries()
    {
        signup();
        world.advance(std::chrono::hours{1});
        useUpAnHoursTries();
        world.advance(std::chrono::hours{1});
        useUpAnHoursTries();
    }
};

TEST_F(CodeLimitsTest, DailyCapSaysWhenTheFirstTryIsForgotten)
{
    useUpTheDaysTries();
    world.advance(std::chrono::minutes{90});
    resend();
    const Reply refused = verify(world.code());
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.error(), "TOO_MANY_ATTEMPTS");
    constexpr int waitSeconds = (24 * 60 - 150) * 60; // the first try was made two and a half hours ago
    EXPECT_EQ(refused.headers.at("retry-after"), std::to_string(waitSeconds));
    EXPECT_EQ(refused.message(), "Too many wrong codes. Please try again in 22 hours.");
    world.advance(std::chrono::seconds{waitSeconds - 1});
    resend();
    EXPECT_EQ(verify(world.code()).headers.at("retry-after"), "1");
    world.advance(std::chrono::seconds{1});
    EXPECT_EQ(verify(world.code()).status, 200);
}

TEST_F(CodeLimitsTest, DailyCapOfOneAddressIsNotThatOfAnother)
{
    useUpTheDaysTries();
    signup("lee@example.org");
    EXPECT_EQ(verify(world.code("lee@example.org"), "lee@example.org").status, 200);
}

TEST_F(CodeLimitsTest, NextCodeRemovesWhatExpiredAnHourAgo)
{
    for (int i = 0; i < 5; ++i)
        forgot("nobody" + std::to_string(i) + "@example.org");
    EXPECT_EQ(storedCodes(), 5);
    world.advance(std::chrono::minutes{70} - std::chrono::milliseconds{1});
    signup("kim@example.org");
    EXPECT_EQ(storedCodes(), 6);
    world.advance(std::chrono::milliseconds{1});
    signup("lee@example.org");
    EXPECT_EQ(storedCodes(), 2);
}

TEST_F(CodeLimitsTest, TryRemovesWhatExpiredAnHourAgoToo)
{
    forgot("nobody@example.org");
    world.advance(std::chrono::minutes{70});
    EXPECT_EQ(verify("000000", "somebody@example.org").status, 400);
    EXPECT_EQ(storedCodes(), 0);
}

TEST_F(CodeLimitsTest, UsedCodeLeavesNoRow)
{
    signup();
    EXPECT_EQ(verify(world.code()).status, 200);
    EXPECT_EQ(storedCodes(), 0);
    forgot();
    EXPECT_EQ(reset(world.code()).status, 200);
    EXPECT_EQ(storedCodes(), 0);
}

TEST(WaitTextTest, WaitIsNeverShorterThanItIs)
{
    using std::chrono::seconds;
    EXPECT_EQ(waitText(seconds{1}), "1 second");
    EXPECT_EQ(waitText(seconds{90}), "90 seconds");
    EXPECT_EQ(waitText(seconds{91}), "2 minutes");
    EXPECT_EQ(waitText(seconds{90 * 60}), "90 minutes");
    EXPECT_EQ(waitText(seconds{90 * 60 + 1}), "2 hours");
    EXPECT_EQ(waitText(seconds{24 * 3600}), "24 hours");
}

} // namespace clockwell::server::test
