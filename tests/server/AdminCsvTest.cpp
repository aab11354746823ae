#include "server/admin/cli/Csv.h"

#include <gtest/gtest.h>

namespace clockwell::server {

TEST(CsvTest, PlainCellsAreNotQuotedAndLinesEndInCrLf)
{
    EXPECT_EQ(csvLine({"a", "", "12", "Zoë Ångström"}), "a,,12,Zoë Ångström\r\n");
    EXPECT_EQ(csvLine({""}), "\r\n");
}

TEST(CsvTest, SeparatorsQuotesLineBreaksAndOuterBlanksAreQuoted)
{
    EXPECT_EQ(csvLine({"a,b", "say \"x\"", "1\r\n2", "\n", ";", "\t", " a", "a "}),
              "\"a,b\",\"say \"\"x\"\"\",\"1\r\n2\",\"\n\",\";\",\"\t\",\" a\",\"a \"\r\n");
}

TEST(SpreadsheetTextTest, WhatBeginsAFormulaGetsAnApostrophe)
{
    EXPECT_EQ(spreadsheetText("=1+1"), "'=1+1");
    EXPECT_EQ(spreadsheetText("+49 30"), "'+49 30");
    EXPECT_EQ(spreadsheetText("-2"), "'-2");
    EXPECT_EQ(spreadsheetText("@SUM(A1)"), "'@SUM(A1)");
    EXPECT_EQ(spreadsheetText("＝1"), "'＝1"); // the wide forms of East Asian keyboards count as well
    EXPECT_EQ(spreadsheetText("－1"), "'－1");
}

TEST(SpreadsheetTextTest, BlanksAndQuotesBeforeItDoNotHideIt)
{
    EXPECT_EQ(spreadsheetText("  =1"), "  '=1");
    EXPECT_EQ(spreadsheetText("\u00a0=1"), "\u00a0'=1");
    EXPECT_EQ(spreadsheetText("\"=1"), "\"'=1");
}

TEST(SpreadsheetTextTest, SeparatorsThatSomeProgramsSplitAtAreGuardedToo)
{
    EXPECT_EQ(spreadsheetText("Kim;=1+1"), "Kim;'=1+1");
    EXPECT_EQ(spreadsheetText("Kim, @home"), "Kim, '@home");
}

TEST(SpreadsheetTextTest, ControlCharactersAreReplaced)
{
    EXPECT_EQ(spreadsheetText("\t=1"), "?=1");
    EXPECT_EQ(spreadsheetText("a\r\nb\x1b[2J"), "a??b?[2J");
}

TEST(SpreadsheetTextTest, OrdinaryTextStays)
{
    for (const char *text : {"", "Kim Sample", "kim@example.org", "Anne-Marie O'Neil", "a=b", "1+1", "王芳"})
        EXPECT_EQ(spreadsheetText(text), text);
}

TEST(SpreadsheetTextTest, WhatIsNotUtf8BecomesTheReplacementCharacter)
{
    EXPECT_EQ(spreadsheetText("a\xff"), "a\xEF\xBF\xBD");
}

} // namespace clockwell::server
