#include "server/http/RequestTarget.h"

#include "server/http/Utf8.h"

#include <gtest/gtest.h>

namespace clockwell::server {

TEST(RequestTargetTest, PathWithoutQueryIsTakenAsItIs)
{
    const auto target = parseTarget("/api/attendance/today");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->path, "/api/attendance/today");
    EXPECT_TRUE(target->query.empty());
}

TEST(RequestTargetTest, QueryPairsAreDecodedAndRepeatedKeysKept)
{
    const auto target = parseTarget("/a?lat=12.5&name=J%C3%B6rg%20K&lat=7&flag&empty=&&x=a=b");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->query.count("lat"), 2U);
    EXPECT_EQ(target->query.find("name")->second, "J\xC3\xB6rg K");
    EXPECT_EQ(target->query.find("flag")->second, "");
    EXPECT_EQ(target->query.find("empty")->second, "");
    EXPECT_EQ(target->query.find("x")->second, "a=b");
    EXPECT_EQ(target->query.size(), 6U);
}

TEST(RequestTargetTest, PlusInAQueryStandsForItself)
{
    EXPECT_EQ(parseTarget("/a?lat=+5")->query.find("lat")->second, "+5");
}

TEST(RequestTargetTest, EscapedDelimitersStayWithinTheirValue)
{
    const auto target = parseTarget("/a?k%3D=v%26w%3Fx");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->query.find("k=")->second, "v&w?x");
}

TEST(RequestTargetTest, EscapedPercentIsDecodedOnce)
{
    EXPECT_EQ(parseTarget("/a%2525")->path, "/a%25");
}

TEST(RequestTargetTest, EmptyQueryAfterTheMarkIsNoQuery)
{
    EXPECT_TRUE(parseTarget("/a?")->query.empty());
}

class BadTargetTest : public testing::TestWithParam<const char *>
{};

TEST_P(BadTargetTest, IsRefused)
{
    EXPECT_FALSE(parseTarget(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Forms, BadTargetTest,
                         testing::Values("", "*", "api", "http://localhost/api", "//evil\x01", "localhost:80",
                                         "/a#b", "/a b", "/\xC3\xB6", "/a\x7F"));
INSTANTIATE_TEST_SUITE_P(Escapes, BadTargetTest,
                         testing::Values("/%", "/%4", "/%zz", "/%4g", "/a?x=%", "/a?%=x", "/%00", "/%0d%0a",
                                         "/a?x=%00", "/a?x=%7f", "/a%2Fb", "/a%2fb"));
INSTANTIATE_TEST_SUITE_P(Utf8, BadTargetTest,
                         testing::Values("/%ff", "/%c3", "/%c0%af", "/%e0%80%af", "/%ed%a0%80",
                                         "/%f4%90%80%80", "/%f5%80%80%80", "/a?x=%c3%28", "/a?%80=1",
                                         "/%e2%82"));

TEST(RequestTargetTest, WellFormedUtf8OfEveryLengthIsAccepted)
{
    EXPECT_TRUE(isUtf8("a\xC3\xB6\xE2\x82\xAC\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
}

} // namespace clockwell::server
