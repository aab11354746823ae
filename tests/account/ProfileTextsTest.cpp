#include "account/ProfileTexts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell {
namespace {

TEST(ProfileTextsTest, InitialsAreThoseOfTheFirstAndTheLastWord)
{
    EXPECT_EQ(initialsOf(u"kel voss"_s), u"KV"_s);
    EXPECT_EQ(initialsOf(u"orin"_s), u"O"_s);
    EXPECT_EQ(initialsOf(u"kel a voss"_s), u"KV"_s);
    EXPECT_EQ(initialsOf(u"  kel   a  voss "_s), u"KV"_s);
}

TEST(ProfileTextsTest, ANameWithoutWordsHasAQuestionMark)
{
    EXPECT_EQ(initialsOf(QString()), u"?"_s);
    EXPECT_EQ(initialsOf(u"   "_s), u"?"_s);
}

TEST(ProfileTextsTest, OnlySpacesSeparateWords)
{
    EXPECT_EQ(initialsOf(u"kel\tvoss"_s), u"K"_s);
    EXPECT_EQ(initialsOf(u"kel\u00a0voss"_s), u"K"_s);
    EXPECT_EQ(initialsOf(u"kel-ann voss"_s), u"KV"_s);
}

TEST(ProfileTextsTest, InitialsAreWholeCharacters)
{
    EXPECT_EQ(initialsOf(u"e\u0301mile o\u0308sterberg"_s), u"E\u0301O\u0308"_s); // combining marks
    EXPECT_EQ(initialsOf(u"\U00010428x y"_s), u"\U00010400Y"_s); // a surrogate pair with a case
    const QString family = u"\U0001F469\u200D\U0001F467"_s;
    EXPECT_EQ(initialsOf(family + u" smith"_s), family + u"S"_s);
    EXPECT_EQ(initialsOf(u"\u092A\u094D\u0930\u0947\u092E"_s).at(0), u'\u092A');
}

TEST(ProfileTextsTest, UpperCaseDoesNotDependOnTheLocale)
{
    EXPECT_EQ(initialsOf(u"ilker ırmak"_s), u"II"_s); // no dotted capital in any locale
    EXPECT_EQ(initialsOf(u"ßen"_s), u"SS"_s);
    EXPECT_EQ(initialsOf(u"王 小明"_s), u"王小"_s);
}

TEST(ProfileTextsTest, UnderscoresInARoleBecomeSpaces)
{
    EXPECT_EQ(roleText(u"HR_MANAGER"_s), u"HR MANAGER"_s);
    EXPECT_EQ(roleText(u"_a__b_"_s), u" a  b "_s);
    EXPECT_EQ(roleText(u"Employee"_s), u"Employee"_s);
    EXPECT_EQ(roleText(QString()), QString());
}

TEST(ProfileTextsTest, ARowIsReadOutAsItsLabelAndItsValue)
{
    EXPECT_EQ(spokenRow(u"Role"_s, u"HR MANAGER"_s), u"Role, HR MANAGER"_s);
}

TEST(ProfileTextsTest, EachWordOfAStatusIsCapitalised)
{
    EXPECT_EQ(statusText(u"on hold"_s), u"On Hold"_s);
    EXPECT_EQ(statusText(u"APPROVED"_s), u"Approved"_s);
    EXPECT_EQ(statusText(u"PENDING_APPROVAL"_s), u"Pending_Approval"_s);
    EXPECT_EQ(statusText(u"  on  hold"_s), u"  On  Hold"_s);
    EXPECT_EQ(statusText(u"don't STOP"_s), u"Don't Stop"_s);
    EXPECT_EQ(statusText(u"2nd ÉTAGE"_s), u"2nd Étage"_s);
    EXPECT_EQ(statusText(u"e\u0301tage"_s), u"E\u0301tage"_s);
    EXPECT_EQ(statusText(u"\U00010428\U00010400"_s), u"\U00010400\U00010428"_s);
    EXPECT_EQ(statusText(QString()), QString());
}

} // namespace
} // namespace clockwell
