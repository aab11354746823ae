#include "server/auth/RenewalPatience.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

using std::chrono::milliseconds;
using std::chrono::seconds;

class RenewalPatienceTest : public testing::Test
{
protected:
    static RenewalPatience::Clock::time_point at(milliseconds time)
    {
        return RenewalPatience::Clock::time_point{std::chrono::hours{1} + time};
    }
    RenewalPatience patience{seconds{20}};
};

TEST_F(RenewalPatienceTest, LaterOnesGiveUpWithTheFirst)
{
    EXPECT_EQ(patience.until(at(seconds{0})), at(seconds{20}));
    EXPECT_EQ(patience.until(at(seconds{5})), at(seconds{25})); // the database may not be held at all
    patience.gaveUp(at(seconds{0}), at(seconds{20}));
    EXPECT_EQ(patience.until(at(seconds{20})), at(milliseconds{20'200}));
    patience.gaveUp(at(seconds{5}), at(seconds{25}));
    EXPECT_EQ(patience.until(at(seconds{30})), at(milliseconds{30'200}));
}

TEST_F(RenewalPatienceTest, OneThatSucceedsEndsTheHaste)
{
    patience.gaveUp(at(seconds{0}), at(seconds{20}));
    patience.succeeded();
    EXPECT_EQ(patience.until(at(seconds{21})), at(seconds{41}));
}

TEST_F(RenewalPatienceTest, OldOutageSaysNothingAboutToday)
{
    patience.gaveUp(at(seconds{0}), at(seconds{20}));
    EXPECT_EQ(patience.until(at(seconds{40})), at(milliseconds{40'200}));
    EXPECT_EQ(patience.until(at(seconds{41})), at(seconds{61}));
}

} // namespace clockwell::server::test
