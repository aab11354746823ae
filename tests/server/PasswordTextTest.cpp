#include "server/auth/PasswordText.h"

#include <gtest/gtest.h>

namespace clockwell::server::test {

TEST(PasswordTextTest, AsciiStaysAsItIs)
{
    EXPECT_EQ(preparedPassword("Correct Horse ~ 7"), "Correct Horse ~ 7");
    EXPECT_EQ(preparedPassword(""), "");
}

TEST(PasswordTextTest, CharactersAreComposedAndSpacesAreOneSpace)
{
    EXPECT_EQ(preparedPassword("e\xCC\x81"), "\xC3\xA9");
    EXPECT_EQ(preparedPassword("a\xC2\xA0\xE3\x80\x80z"), "a  z"); // no-break and ideographic space
    EXPECT_EQ(preparedPassword("\xF0\x9F\x90\xB4"), "\xF0\x9F\x90\xB4");
}

TEST(PasswordTextTest, CaseAndWidthAreKept)
{
    EXPECT_NE(preparedPassword("\xC3\x89"), preparedPassword("\xC3\xA9"));
    EXPECT_NE(preparedPassword("\xEF\xBC\xA1"), preparedPassword("A")); // full-width A
}

TEST(PasswordTextTest, GoodPasswordsHaveNoProblems)
{
    for (const char *password :
         {"Abcdefg1", "ABCDEFg1", "\xC3\x84\xC3\xB6\xC3\xBC\xC3\xB6\xC3\xBC\xC3\xB6\xC3\xBC\xD9\xA3"})
        EXPECT_TRUE(passwordProblems(password).empty()) << password;
}

TEST(PasswordTextTest, EachRuleHasItsSentence)
{
    using Problems = std::vector<std::string>;
    EXPECT_EQ(passwordProblems("Abcdef1"), Problems{"The password must have at least 8 characters."});
    EXPECT_EQ(passwordProblems("abcdefg1"), Problems{"The password must contain an upper-case letter."});
    EXPECT_EQ(passwordProblems("ABCDEFG1"), Problems{"The password must contain a lower-case letter."});
    EXPECT_EQ(passwordProblems("Abcdefgh"), Problems{"The password must contain a number."});
    EXPECT_EQ(passwordProblems("Abcdefg\xC2\xBD"),
              Problems{"The password must contain a number."}); // one half is none
    EXPECT_EQ(passwordProblems(" ").size(), 4U);
}

TEST(PasswordTextTest, CharactersAreCountedNotBytes)
{
    EXPECT_EQ(passwordProblems("Aa1\xF0\x9F\x90\xB4\xF0\x9F\x90\xB4\xF0\x9F\x90\xB4\xF0\x9F\x90\xB4").size(),
              1U); // seven
    EXPECT_TRUE(
        passwordProblems("Aa1b\xF0\x9F\x90\xB4\xF0\x9F\x90\xB4\xF0\x9F\x90\xB4\xF0\x9F\x90\xB4").empty());
}

} // namespace clockwell::server::test
