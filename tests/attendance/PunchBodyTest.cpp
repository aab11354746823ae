#include "attendance/PunchBody.h"

#include "attendance/LocationSource.h"
#include "net/Encoding.h"

#include <gtest/gtest.h>

namespace clockwell {
namespace {

TEST(PunchBody, HasItsKeysInOrder)
{
    EXPECT_EQ(
        encodeBody(punchBody(Fix{12.9715987, 77.5945627, 8.5}, QStringLiteral("D-1"))),
        R"({"lat":12.9715987,"lng":77.5945627,"accuracy":8.5,"deviceId":"D-1","isMockLocation":false})");
}

TEST(PunchBody, InvalidAccuracyIsSentAsZero)
{
    EXPECT_EQ(punchBody(Fix{1, 2, -1}, {}).accuracy, 0);
    EXPECT_EQ(punchBody(Fix{1, 2, 0}, {}).accuracy, 0);
    EXPECT_EQ(punchBody(Fix{1, 2, 0.5}, {}).accuracy, 0.5);
}

} // namespace
} // namespace clockwell
