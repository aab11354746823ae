#include "server/admin/cli/Table.h"

#include "server/admin/Printable.h"

#include <gtest/gtest.h>

#include <array>

namespace clockwell::server {

TEST(TableTest, JoinersOfPersianIndicAndEmojiNamesArePrinted)
{
    for (const char *name : {"\u0646\u06cc\u200c\u0645\u0627", // Nima, with a non-joiner
                             "\u0d36\u0d4d\u0d30\u0d40\u0d28\u0d3f\u0d28\u0d4d\u200d", // a final Malayalam n
                             "Kim \U0001F469\u200d\U0001F4BB"})
        EXPECT_EQ(printable(name), name);
}

TEST(TableTest, JoinersTakeNoColumn)
{
    EXPECT_EQ(terminalWidth("a\u200db\u200cc"), 3U);
    EXPECT_EQ(tableText({"NAME", "ROLE"}, {{"a\u200db", "X"}, {"ab", "Y"}}),
              "NAME  ROLE\na\u200db    X\nab    Y\n");
}

TEST(TableTest, WhatSteersTheTerminalOrTheDirectionOfALineIsReplaced)
{
    constexpr std::array steering{"\x1b",   "\n",     "\x7f",   "\u0085", "\u2028", "\u2029",
                                  "\u200e", "\u200f", "\u061c", "\u202a", "\u202b", "\u202c",
                                  "\u202d", "\u202e", "\u2066", "\u2067", "\u2068", "\u2069"};
    for (const char *character : steering)
        EXPECT_EQ(printable(std::string{"a"} + character + "b"), "a?b");
}

TEST(TableTest, InvisibleCharactersThatNoScriptNeedsAreShown)
{
    // Otherwise two names could look the same.
    for (const char *character : {"\u200b", "\u00ad", "\u2060", "\ufeff", "\U000e0041"})
        EXPECT_EQ(printable(std::string{"Ki"} + character + "m"), "Ki?m");
}

} // namespace clockwell::server
