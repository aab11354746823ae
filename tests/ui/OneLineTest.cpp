#include "ui/OneLine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

QString joined(const QString &text)
{
    return OneLine::join(text, 0).text;
}

int cursorAfter(const QString &text, int cursor)
{
    return OneLine::join(text, cursor).cursor;
}

TEST(OneLine, LeavesOneLineAsItIs)
{
    EXPECT_EQ(joined(QString()), QString());
    EXPECT_EQ(joined(u" a\tb "_s), u" a\tb "_s);
    EXPECT_EQ(cursorAfter(u"abc"_s, 2), 2);
}

TEST(OneLine, DropsLineBreaksAtTheEnds)
{
    EXPECT_EQ(joined(u"\n\r\n123456\r\n"_s), u"123456"_s);
    EXPECT_EQ(joined(u"\n\n"_s), QString());
}

TEST(OneLine, PutsOneSpaceForLineBreaksInBetween)
{
    EXPECT_EQ(joined(u"a\nb\r\nc\n\n\nd"_s), u"a b c d"_s);
    EXPECT_EQ(joined(u"a\u2028b\u2029c\u0085d\ve\ff"_s), u"a b c d e f"_s);
}

TEST(OneLine, KeepsTheCursorBehindWhatItStoodBehind)
{
    EXPECT_EQ(cursorAfter(u"\nab\n"_s, 3), 2);
    EXPECT_EQ(cursorAfter(u"\nab\n"_s, 4), 2);
    EXPECT_EQ(cursorAfter(u"\nab\n"_s, 1), 0);
    EXPECT_EQ(cursorAfter(u"a\nb"_s, 3), 3);
}

} // namespace
} // namespace clockwell::test
