#include "account/CodeFilter.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell {
namespace {

QString kept(const QString &text)
{
    return filterCode(text, 0).code;
}

qsizetype cursorAfter(const QString &text, qsizetype cursor)
{
    return filterCode(text, cursor).cursor;
}

const QString mathematicalEight = QString::fromUcs4(U"\U0001D7E0", 1);

TEST(CodeFilter, KeepsDigitsAndDropsLetters)
{
    EXPECT_EQ(kept(QString()), QString());
    EXPECT_EQ(kept(u"a"_s), QString());
    EXPECT_EQ(kept(u"12a3"_s), u"123"_s);
    EXPECT_EQ(kept(u"123456"_s), u"123456"_s);
}

TEST(CodeFilter, DropsASeventhDigit)
{
    EXPECT_EQ(kept(u"1234567"_s), u"123456"_s);
}

TEST(CodeFilter, TruncatesBeforeItFilters)
{
    EXPECT_EQ(kept(u"12a3456"_s), u"12345"_s);
    EXPECT_EQ(kept(u"123 456"_s), u"12345"_s);
    EXPECT_EQ(kept(u"abcdef123456"_s), QString());
}

TEST(CodeFilter, DropsPunctuationAndWhitespace)
{
    EXPECT_EQ(kept(u"+1.2-3"_s), u"123"_s);
    EXPECT_EQ(kept(u"1\n2\t3"_s), u"123"_s);
}

TEST(CodeFilter, KeepsAllNumericCharacters)
{
    const QString numeric = u"٣५Ⅷ½²㊈"_s; // Nd, Nd, Nl, No, No, No
    EXPECT_EQ(kept(numeric), numeric);
    EXPECT_EQ(kept(u"一二三四五六"_s), u"一二三四五六"_s); // letters with a numeric value
    EXPECT_EQ(kept(u"日本語"_s), QString());
}

TEST(CodeFilter, CountsASurrogatePairAsOneCharacter)
{
    EXPECT_EQ(kept(mathematicalEight.repeated(7)), mathematicalEight.repeated(6));
    EXPECT_EQ(characterCount(mathematicalEight.repeated(6)), 6);
}

TEST(CodeFilter, SeparatesCharactersOfDifferentScripts)
{
    EXPECT_EQ(kept(mathematicalEight.repeated(3) + u"१२३४"_s), mathematicalEight.repeated(3) + u"१२३"_s);
    EXPECT_EQ(characterCount(mathematicalEight + u"5\u0301१"_s), 3);
}

TEST(CodeFilter, KeepsCharactersTogetherWithTheirMarks)
{
    const QString marked = u"6\u0301"_s; // an acute accent on a six
    EXPECT_EQ(kept(u"12345"_s + marked + u"7"_s), u"12345"_s + marked);
    EXPECT_EQ(characterCount(u"12345"_s + marked), 6);
    EXPECT_EQ(kept(u"a\u0301"_s), QString());
}

TEST(CodeFilter, CountsCarriageReturnLineFeedAsOneCharacter)
{
    EXPECT_EQ(kept(u"\r\n123456"_s), u"12345"_s);
}

TEST(CodeFilter, DropsUnpairedSurrogates)
{
    EXPECT_EQ(kept(QString(mathematicalEight[0])), QString());
    EXPECT_EQ(kept(u"1"_s + mathematicalEight[1] + u"2"_s), u"12"_s);
}

TEST(CodeFilter, KeepsTheCursorAfterTheTextBeforeIt)
{
    EXPECT_EQ(cursorAfter(u"12x3456"_s, 3), 2); // the letter just typed is removed
    EXPECT_EQ(cursorAfter(u"1293456"_s, 3), 3); // a digit typed in the middle drops the last one
    EXPECT_EQ(cursorAfter(u"1234567"_s, 7), 6); // not beyond the end
    EXPECT_EQ(cursorAfter(u"123"_s, 0), 0);
    EXPECT_EQ(cursorAfter(mathematicalEight + u"2"_s, 2), 2);
    EXPECT_EQ(cursorAfter(mathematicalEight + u"2"_s, 1), 0); // never inside a character
}

TEST(CodeFilter, IsIdempotent)
{
    for (const auto &text : {u"12a3456"_s, u"½²ab५"_s, QString(mathematicalEight.repeated(3) + u"x"_s)})
        EXPECT_EQ(kept(kept(text)), kept(text));
}

} // namespace
} // namespace clockwell
