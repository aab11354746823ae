#include "ui/EditActions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

TEST(EditActions, TextOnOneLineStaysAsItIs)
{
    EXPECT_EQ(onOneLine(QString()), QString());
    EXPECT_EQ(onOneLine(u" a\tb "_s), u" a\tb "_s);
}

TEST(EditActions, LineBreaksAtTheEndsAreDropped)
{
    EXPECT_EQ(onOneLine(u"\n\r\n123456\r\n"_s), u"123456"_s);
    EXPECT_EQ(onOneLine(u"\n\n"_s), QString());
}

TEST(EditActions, LineBreaksInBetweenBecomeOneBlank)
{
    EXPECT_EQ(onOneLine(u"a\nb\r\nc\n\n\nd"_s), u"a b c d"_s);
    EXPECT_EQ(onOneLine(u"a\u2028b\u2029c"_s), u"a b c"_s);
}

TEST(EditActions, EveryActionHasATitle)
{
    EXPECT_EQ(editActionTitle(EditAction::Cut), u"Cut"_s);
    EXPECT_EQ(editActionTitle(EditAction::Copy), u"Copy"_s);
    EXPECT_EQ(editActionTitle(EditAction::Paste), u"Paste"_s);
    EXPECT_EQ(editActionTitle(EditAction::SelectAll), u"Select all"_s);
}

} // namespace
} // namespace clockwell::test
