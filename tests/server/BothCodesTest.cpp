#include "AccountFixture.h"

namespace clockwell::server::test {

/// After too many wrong codes both codes of a message are needed.
class BothCodesTest : public AccountFixture
{
protected:
    static constexpr const char *guesserNetwork = "127.0.6.6";
    static constexpr const char *noCode = "00000x"; ///< judged like any other, and never right

    BothCodesTest() { addEmployee(world.database(), {}); }

    /// Uses up what may be guessed at the address with single codes; returns how many guesses that took.
    int guessUntilBothAreNeeded()
    {
        network = guesserNetwork;
        int guesses = 0;
        while (guesses < 100 && reset(noCode).error() == "INVALID_CODE")
            ++guesses;
        network = "127.0.0.1";
        return guesses;
    }
};

TEST_F(BothCodesTest, OneCodeIsEnoughUntilManyWereWrong)
{
    forgot();
    const auto codes = codesFor();
    ASSERT_EQ(codes.size(), 2U);
    EXPECT_EQ(reset(codes[1]).error(), "INVALID_CODE"); // the second is not another first one
    EXPECT_EQ(reset(codes[0]).status, 200);
}

TEST_F(BothCodesTest, AreAcceptedOneAfterTheOther)
{
    forgot();
    const auto codes = codesFor();
    EXPECT_EQ(guessUntilBothAreNeeded(), 15);
    const Reply first = reset(codes[0]);
    EXPECT_EQ(first.status, 400);
    EXPECT_EQ(first.error(), "SECOND_CODE_NEEDED");
    EXPECT_EQ(first.message(),
              "Many wrong codes were entered, so both codes of the e-mail are needed. Please"
              " enter the second one if you have just entered the first, and else the first.");
    EXPECT_EQ(reset(codes[1]).status, 200);
    EXPECT_EQ(world.login("kim@example.org", "New-Horse-8").status, 200);
}

TEST_F(BothCodesTest, VerifyAnAddressToo)
{
    signup("lee@example.org");
    network = guesserNetwork;
    for (int i = 0; i < 16; ++i)
        verify(noCode, "lee@example.org");
    network = "127.0.0.1";
    const auto codes = codesFor("lee@example.org");
    ASSERT_EQ(codes.size(), 2U);
    EXPECT_EQ(verify(codes[0], "lee@example.org").error(), "SECOND_CODE_NEEDED");
    EXPECT_EQ(verify(codes[1], "lee@example.org").status, 200);
}

TEST_F(BothCodesTest, AnswerDoesNotTellWhetherTheFirstWasRight)
{
    forgot();
    guessUntilBothAreNeeded();
    const std::string right = codesFor()[0];
    const Reply wrong = reset(other(right));
    const Reply first = reset(right);
    EXPECT_EQ(first.status, wrong.status);
    EXPECT_EQ(first.body, wrong.body);
}

TEST_F(BothCodesTest, AreOnlyGoodTogetherInTheirOrder)
{
    forgot();
    guessUntilBothAreNeeded();
    const auto codes = codesFor();
    const auto entered = [&](const std::string &code) { return reset(code).error(); };
    EXPECT_EQ(entered(codes[1]), "SECOND_CODE_NEEDED");
    EXPECT_EQ(entered(codes[0]), "SECOND_CODE_NEEDED");
    EXPECT_EQ(entered(other(codes[1])), "SECOND_CODE_NEEDED"); // in between
    EXPECT_EQ(entered(codes[1]), "SECOND_CODE_NEEDED");
    EXPECT_EQ(entered(codes[0]), "SECOND_CODE_NEEDED");
    EXPECT_EQ(entered(codes[0]), "SECOND_CODE_NEEDED"); // tapped twice
    EXPECT_EQ(reset(codes[1]).status, 200);
}

TEST_F(BothCodesTest, AreOnlyGoodFromOneNetwork)
{
    forgot();
    guessUntilBothAreNeeded();
    const auto codes = codesFor();
    reset(codes[0]);
    network = guesserNetwork;
    EXPECT_EQ(reset(codes[1]).error(), "SECOND_CODE_NEEDED");
    network = "127.0.0.1"; // and nobody elsewhere comes between the two
    EXPECT_EQ(reset(codes[1]).status, 200);
}

TEST_F(BothCodesTest, OfTwoMessagesAreNoPair)
{
    forgot();
    const auto older = codesFor();
    forgot();
    const auto newer = codesFor();
    network = guesserNetwork;
    for (int i = 0; i < 16; ++i)
        reset(noCode);
    network = "127.0.0.1";
    reset(older[0]);
    EXPECT_EQ(reset(newer[1]).error(), "SECOND_CODE_NEEDED");
    reset(older[0]);
    EXPECT_EQ(reset(older[1]).status, 200);
}

TEST_F(BothCodesTest, ExpireLikeOne)
{
    forgot();
    guessUntilBothAreNeeded();
    const auto codes = codesFor();
    reset(codes[0]);
    world.advance(std::chrono::minutes{10});
    EXPECT_EQ(reset(codes[1]).status, 400);
}

TEST_F(BothCodesTest, AreNeededForUnknownAddressesAlike)
{
    forgot();
    forgot("nobody@example.org");
    for (int i = 0; i < 20; ++i) {
        const Reply known = reset(noCode);
        const Reply unknown = reset(noCode, "New-Horse-8", "nobody@example.org");
        EXPECT_EQ(known.body, unknown.body);
        EXPECT_EQ(known.error(), i < 15 ? "INVALID_CODE" : "SECOND_CODE_NEEDED");
    }
}

TEST_F(BothCodesTest, AreNotNeededForOtherAddresses)
{
    forgot();
    guessUntilBothAreNeeded();
    signup("lee@example.org");
    EXPECT_EQ(verify(world.code("lee@example.org"), "lee@example.org").status, 200);
}

TEST_F(BothCodesTest, AreNoLongerNeededADayLater)
{
    forgot();
    guessUntilBothAreNeeded();
    world.advance(std::chrono::hours{24});
    forgot();
    EXPECT_EQ(reset(codesFor()[0]).status, 200);
}

TEST_F(BothCodesTest, GuessAtSeveralCodesCountsForEach)
{
    for (int i = 0; i < 3; ++i)
        forgot();
    EXPECT_EQ(guessUntilBothAreNeeded(), 5); // 15 codes might have been hit
}

TEST_F(BothCodesTest, OwnersRightCodeCostsNothing)
{
    for (int i = 0; i < 20; ++i) {
        forgot();
        ASSERT_EQ(reset(codesFor()[0]).status, 200) << i;
        world.advance(std::chrono::minutes{10});
    }
}

} // namespace clockwell::server::test
