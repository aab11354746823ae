#include "RushOptions.h"

#include "Figures.h"

#include <gtest/gtest.h>

namespace clockwell::rush::test {

namespace {

int exitStatusOf(const std::vector<std::string> &arguments)
{
    try {
        parseRushOptions(arguments);
    } catch (const UsageText &text) {
        return text.exitStatus();
    }
    return -1;
}

} // namespace

TEST(RushOptionsTest, LoadGoesToThisMachineOnly)
{
    for (const char *url :
         {"http://192.0.2.1:8460", "http://localhost:8460", "http://example.org:80", "https://127.0.0.1:8460",
          "http://127.0.0.1", "http://127.0.0.1:0", "http://127.0.0.1:80@192.0.2.1:80", "http://[::1]:8460"})
        EXPECT_EQ(exitStatusOf({"--server", url, "--database", "a.db"}), 2) << url;
    EXPECT_EQ(parseRushOptions({"--server", "http://127.0.0.1:8460/", "--database", "a.db"}).server,
              "http://127.0.0.1:8460/");
}

TEST(RushOptionsTest, AServerNeedsItsDatabaseAndIsNotKilled)
{
    EXPECT_EQ(exitStatusOf({"--server", "http://127.0.0.1:8460"}), 2);
    EXPECT_EQ(exitStatusOf({"--database", "a.db"}), 2);
    EXPECT_EQ(exitStatusOf({"--server", "http://127.0.0.1:8460", "--database", "a.db", "--kill-after", "3"}),
              2);
    EXPECT_EQ(exitStatusOf({"--seconds", "10", "--kill-after", "10"}), 2);
    EXPECT_EQ(exitStatusOf({"--phones", "many"}), 2);
    EXPECT_EQ(exitStatusOf({"--help"}), 0);
}

TEST(RushOptionsTest, ReadsAMorning)
{
    const RushOptions options =
        parseRushOptions({"--phones", "7", "--no-keep-alive", "--idle", "3", "--", "--repeat-window", "5"});
    EXPECT_EQ(options.phones, 7U);
    EXPECT_FALSE(options.keepAlive);
    EXPECT_EQ(options.idle, 3U);
    EXPECT_EQ(options.serveOptions, (std::vector<std::string>{"--repeat-window", "5"}));
}

TEST(RushFiguresTest, SharesOfTimes)
{
    Times times;
    EXPECT_EQ(times.milliseconds(0.5), 0);
    for (int i = 100; i >= 0; --i)
        times.add(std::chrono::milliseconds{i});
    EXPECT_EQ(times.milliseconds(0.5), 50);
    EXPECT_EQ(times.milliseconds(0.99), 99);
    EXPECT_EQ(times.milliseconds(1), 100);
}

} // namespace clockwell::rush::test
