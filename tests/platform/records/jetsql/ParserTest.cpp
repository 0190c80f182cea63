// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/Parser.h"

#include "platform/records/jetsql/TreePrinter.h"

#include <gtest/gtest.h>

using namespace dao::jetsql;

namespace
{
std::string StatementText(const char* text)
{
    const QString printed = ToText(ParseStatement(QString::fromUtf8(text)));
    // The canonical text means the same again.
    EXPECT_EQ(ToText(ParseStatement(printed)), printed);
    return printed.toStdString();
}

std::string ConditionText(const char* text)
{
    const QString printed = ToText(ParseCondition(QString::fromUtf8(text)));
    EXPECT_EQ(ToText(ParseCondition(printed)), printed);
    return printed.toStdString();
}
} // namespace

TEST(JetSqlParser, ReadsEveryColumnOfATable)
{
    EXPECT_EQ(StatementText("SELECT * FROM [Messages] "), "SELECT * FROM [Messages]");
    EXPECT_EQ(StatementText("SELECT * FROM [Prizes] "), "SELECT * FROM [Prizes]");
    EXPECT_EQ(StatementText("select *\r\n\tfrom Messages;"), "SELECT * FROM [Messages]");
}

TEST(JetSqlParser, ReadsConditionsOnANumber)
{
    EXPECT_EQ(StatementText("SELECT * FROM [Messages] WHERE [Category]=4"),
              "SELECT * FROM [Messages] WHERE ([Category] = 4)");
    EXPECT_EQ(StatementText("SELECT * FROM [Messages] WHERE [Category]=-12"),
              "SELECT * FROM [Messages] WHERE ([Category] = -12)");
    EXPECT_EQ(StatementText("SELECT * FROM [PrizeWinners] WHERE [Reference]=7"),
              "SELECT * FROM [PrizeWinners] WHERE ([Reference] = 7)");
    EXPECT_EQ(StatementText("SELECT * FROM [PrizeWinners] WHERE [WinnerReference]=7"),
              "SELECT * FROM [PrizeWinners] WHERE ([WinnerReference] = 7)");
}

TEST(JetSqlParser, ReadsOrders)
{
    EXPECT_EQ(StatementText("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=7 ORDER BY [WonDate]"),
              "SELECT * FROM [PrizeWinners] WHERE ([PrizeReference] = 7) ORDER BY [WonDate]");
    EXPECT_EQ(StatementText("SELECT * FROM [MessageCategories] WHERE ParentReference=3 ORDER BY [Reference]"),
              "SELECT * FROM [MessageCategories] WHERE ([ParentReference] = 3) ORDER BY [Reference]");
    EXPECT_EQ(StatementText("SELECT * FROM [Messages]   ORDER BY [Sent] DESC, [Reference]"),
              "SELECT * FROM [Messages] ORDER BY [Sent] DESC, [Reference]");
    EXPECT_EQ(StatementText("SELECT * FROM [Messages]   ORDER BY [Received] DESC, [Reference] ASC"),
              "SELECT * FROM [Messages] ORDER BY [Received] DESC, [Reference]");
}

TEST(JetSqlParser, ReadsTheMessageListsQuery)
{
    EXPECT_EQ(
        StatementText("SELECT * FROM [Messages]  WHERE ([Subject] LIKE \"*win*\" ) AND ([Category]=5)  AND "
                      "([PersonalToContact]=0 or [PersonalToContact] is NULL or [PersonalToContact]=12)   ORDER BY "
                      "[Sent] DESC, [Reference]"),
        "SELECT * FROM [Messages] WHERE (([Subject] LIKE '*win*') AND ([Category] = 5) AND "
        "(([PersonalToContact] = 0) OR ([PersonalToContact] IS NULL) OR ([PersonalToContact] = 12))) ORDER BY "
        "[Sent] DESC, [Reference]");
    EXPECT_EQ(StatementText("SELECT * FROM [Messages]  WHERE [PersonalToContact]=-1   "),
              "SELECT * FROM [Messages] WHERE ([PersonalToContact] = -1)");
}

TEST(JetSqlParser, ReadsAnAddressSearchBuiltByConcatenation)
{
    EXPECT_EQ(StatementText(
                  "SELECT * FROM [Messages]  WHERE ( [FromKey] LIKE \"*|a@b|*\" OR [ToKey] LIKE \"*|a@b|*\" OR [CcKey] "
                  "LIKE \"*|a@b|*\" OR [FromKey] LIKE \"*|7700900123|*\") ORDER BY [Sent] DESC"),
              "SELECT * FROM [Messages] WHERE (([FromKey] LIKE '*|a@b|*') OR ([ToKey] LIKE '*|a@b|*') OR ([CcKey] LIKE "
              "'*|a@b|*') OR ([FromKey] LIKE '*|7700900123|*')) ORDER BY [Sent] DESC");
}

TEST(JetSqlParser, ReadsThePrizeListsQueryWithAnANDDirectlyBehindAParenthesis)
{
    EXPECT_EQ(
        StatementText("SELECT * FROM [Prizes]  WHERE (([Title] LIKE \"*cd*\" OR [Notes] LIKE \"*cd*\" ) AND  "
                      "[NumberWinners]<[NumberSupplied] AND ( ([StartDate] is null or [StartDate]=0) OR "
                      "([StartDate]<=46347) ) AND ( ([EndDate] is null or [EndDate]=0) OR ([EndDate]>=46347) )AND "
                      "[HourRestrictions3] LIKE '*K*') "),
        "SELECT * FROM [Prizes] WHERE ((([Title] LIKE '*cd*') OR ([Notes] LIKE '*cd*')) AND ([NumberWinners] < "
        "[NumberSupplied]) AND (([StartDate] IS NULL) OR ([StartDate] = 0) OR ([StartDate] <= 46347)) AND "
        "(([EndDate] IS NULL) OR ([EndDate] = 0) OR ([EndDate] >= 46347)) AND ([HourRestrictions3] LIKE "
        "'*K*'))");
    EXPECT_EQ(StatementText("SELECT * FROM [Prizes]  WHERE (([NumberWinners]>0) ) "),
              "SELECT * FROM [Prizes] WHERE ([NumberWinners] > 0)");
    EXPECT_EQ(StatementText("SELECT * FROM [Prizes]  WHERE (([LastWonDate]>=#11/14/2026 10:25:00#) ) "),
              "SELECT * FROM [Prizes] WHERE ([LastWonDate] >= #2026-11-14 10:25:00#)");
}

TEST(JetSqlParser, ReadsAJoinWithATablesColumnsAndNamesBracketedWithTheirTable)
{
    EXPECT_EQ(
        StatementText("SELECT Prizes.Reference, Prizes.Title, PrizeWinners.*, Prizes.SupplierReference FROM Prizes "
                      "LEFT JOIN PrizeWinners ON Prizes.Reference = PrizeWinners.PrizeReference  WHERE ( "
                      "[PrizeWinners.WinnerReference]=9 OR [PrizeWinners.AwardedByReference]=9 OR "
                      "[Prizes.SupplierReference]=9)"),
        "SELECT [Prizes].[Reference], [Prizes].[Title], [PrizeWinners].*, [Prizes].[SupplierReference] FROM "
        "[Prizes] LEFT JOIN [PrizeWinners] ON ([Prizes].[Reference] = [PrizeWinners].[PrizeReference]) WHERE "
        "(([PrizeWinners.WinnerReference] = 9) OR ([PrizeWinners.AwardedByReference] = 9) OR "
        "([Prizes.SupplierReference] = 9))");
}

TEST(JetSqlParser, ReadsJoinsInParenthesesAndWithAliases)
{
    EXPECT_EQ(StatementText("SELECT p.*, w.Notes FROM (Prizes AS p INNER JOIN PrizeWinners w ON p.Reference = "
                            "w.PrizeReference) LEFT OUTER JOIN Messages ON Messages.Reference = w.Reference"),
              "SELECT [p].*, [w].[Notes] FROM [Prizes] AS [p] INNER JOIN [PrizeWinners] AS [w] ON ([p].[Reference] = "
              "[w].[PrizeReference]) LEFT JOIN [Messages] ON ([Messages].[Reference] = [w].[Reference])");
}

TEST(JetSqlParser, ReadsAnUpdateWithAParameterAndASemicolon)
{
    EXPECT_EQ(StatementText("UPDATE Description SET Description.LastBackup = [LastBackupDate];"),
              "UPDATE [Description] SET [Description].[LastBackup] = [LastBackupDate]");
    EXPECT_EQ(StatementText("update Messages set Flags = Flags + 1, [Subject]='x' where Reference in (1,2) ; "),
              "UPDATE [Messages] SET [Flags] = ([Flags] + 1), [Subject] = 'x' WHERE ([Reference] IN (1, 2))");
}

TEST(JetSqlParser, ReadsDeletesInAllTheirForms)
{
    EXPECT_EQ(StatementText("DELETE FROM Settings"), "DELETE FROM [Settings]");
    EXPECT_EQ(StatementText("DELETE * FROM Settings"), "DELETE FROM [Settings]");
    EXPECT_EQ(StatementText("DELETE Settings.* FROM Settings WHERE Item='a'"),
              "DELETE FROM [Settings] WHERE ([Item] = 'a')");
}

TEST(JetSqlParser, ReadsATableNameWithItsDatabaseAndOwner)
{
    EXPECT_EQ(StatementText("Select * from master..sysdatabases WHERE Name='tolva'"),
              "SELECT * FROM [master..sysdatabases] WHERE ([Name] = 'tolva')");
}

TEST(JetSqlParser, ReadsTheCriterionOfASetting)
{
    EXPECT_EQ(ConditionText("Item=\"Messages.HighlightWords\""), "([Item] = 'Messages.HighlightWords')");
}

TEST(JetSqlParser, ReadsTopAggregatesAndComputedColumns)
{
    EXPECT_EQ(StatementText("SELECT TOP 5 Reference FROM Messages"), "SELECT TOP 5 [Reference] FROM [Messages]");
    EXPECT_EQ(StatementText("SELECT Top FROM Messages"), "SELECT [Top] FROM [Messages]");
    EXPECT_EQ(StatementText("SELECT COUNT(*) AS N, max(Sent), MIN([Sent]), Sum(Flags) FROM Messages"),
              "SELECT COUNT(*) AS [N], MAX([Sent]), MIN([Sent]), SUM([Flags]) FROM [Messages]");
    EXPECT_EQ(StatementText("SELECT Count FROM Messages"), "SELECT [Count] FROM [Messages]");
    EXPECT_EQ(StatementText("SELECT NumberSupplied-NumberWinners AS [Still there] FROM Prizes"),
              "SELECT ([NumberSupplied] - [NumberWinners]) AS [Still there] FROM [Prizes]");
}

TEST(JetSqlParser, NotBindsLooserThanComparisonAndTighterThanAnd)
{
    EXPECT_EQ(ConditionText("not a = 1 and b = 2 or c"), "(((NOT ([a] = 1)) AND ([b] = 2)) OR [c])");
    EXPECT_EQ(ConditionText("NOT NOT a LIKE 'x'"), "(NOT (NOT ([a] LIKE 'x')))");
    EXPECT_EQ(ConditionText("a NOT LIKE 'x' AND b NOT IN (1) AND c NOT BETWEEN 1 AND 2 AND d IS NOT NULL"),
              "(([a] NOT LIKE 'x') AND ([b] NOT IN (1)) AND ([c] NOT BETWEEN 1 AND 2) AND ([d] IS NOT NULL))");
}

TEST(JetSqlParser, ArithmeticHasItsUsualPrecedenceWithConcatenationLoosest)
{
    EXPECT_EQ(ConditionText("1+2*3-4/5 MOD 6 & 7 = -a"), "((((1 + (2 * 3)) - ((4 / 5) MOD 6)) & 7) = (-[a]))");
    EXPECT_EQ(ConditionText("a-b-c"), "(([a] - [b]) - [c])");
    EXPECT_EQ(ConditionText("a - -1"), "([a] - -1)");
    EXPECT_EQ(ConditionText("a--b"), "([a] - (-[b]))");
    EXPECT_EQ(ConditionText("+ + 5 > - - 3"), "(5 > 3)");
}

TEST(JetSqlParser, NestedChainsOfOneOperatorBecomeOne)
{
    EXPECT_EQ(ConditionText("((a OR b) OR (c OR (d OR e)))"), "([a] OR [b] OR [c] OR [d] OR [e])");
    EXPECT_EQ(ConditionText("a AND (b AND c) OR d"), "(([a] AND [b] AND [c]) OR [d])");
}

TEST(JetSqlParser, ReadsLiterals)
{
    EXPECT_EQ(ConditionText("a IN (1, -1, 1.5, .5, 1E3, 2e-2, 9223372036854775807, 9223372036854775808)"),
              "([a] IN (1, -1, 1.5, 0.5, 1000.0, 0.02, 9223372036854775807, 9223372036854776000.0))");
    EXPECT_EQ(ConditionText("a = TRUE or a = false or a = Null"), "(([a] = -1) OR ([a] = 0) OR ([a] = NULL))");
}

TEST(JetSqlParser, ReadsTextsInEitherQuotesWithDoubledQuotes)
{
    EXPECT_EQ(ConditionText("a = \"it's \"\"so\"\"\""), "([a] = 'it''s \"so\"')");
    EXPECT_EQ(ConditionText("a = 'it''s \"so\"'"), "([a] = 'it''s \"so\"')");
    EXPECT_EQ(ConditionText("a = ''"), "([a] = '')");
    EXPECT_EQ(ConditionText("a = 'é😀\n--;/*'"), "([a] = 'é😀\n--;/*')");
}

TEST(JetSqlParser, ReadsNamesOfAnySpelling)
{
    EXPECT_EQ(
        ConditionText("[Order]=1 AND [where \"x\" '] = 2 AND Größe=3 AND t.Select=4 AND t![Group By]=5 AND _x9=6"),
        "(([Order] = 1) AND ([where \"x\" '] = 2) AND ([Größe] = 3) AND ([t].[Select] = 4) AND ([t].[Group By] = "
        "5) AND ([_x9] = 6))");
}

TEST(JetSqlParser, ReadsDatesInTheirForms)
{
    const char* const expected = "([a] = #2026-11-21 00:00:00#)";
    for (const char* text : {"a=#11/21/2026#", "a=#2026-11-21#", "a=#21 Nov 2026#", "a=#November 21, 2026#",
                             "a=#21-nov-2026#", "a=# 11/21/26 #", "a=#11-21-2026#", "a=#2026/11/21#", "a=#21/11/2026#"})
        EXPECT_EQ(ConditionText(text), expected) << text;
    EXPECT_EQ(ConditionText("a=#11/21/2026 14:30:00#"), "([a] = #2026-11-21 14:30:00#)");
    EXPECT_EQ(ConditionText("a=#11/21/2026 2:30 PM#"), "([a] = #2026-11-21 14:30:00#)");
    EXPECT_EQ(ConditionText("a=#12:05:09 am#"), "([a] = #1899-12-30 00:05:09#)");
    EXPECT_EQ(ConditionText("a=#14:30#"), "([a] = #1899-12-30 14:30:00#)");
    EXPECT_EQ(ConditionText("a=#05/11/2026#"), "([a] = #2026-05-11 00:00:00#)");
    EXPECT_EQ(ConditionText("a=#1/2/29# or a=#1/2/30#"),
              "(([a] = #2029-01-02 00:00:00#) OR ([a] = #1930-01-02 00:00:00#))");
    EXPECT_EQ(ConditionText("a=#2/29/2024#"), "([a] = #2024-02-29 00:00:00#)");
}

TEST(JetSqlParser, DatesAreDayNumbers)
{
    const auto day = [](QStringView text) {
        const Expression condition = ParseCondition(text);
        return std::get<Literal>(condition.Node).Value.toDouble();
    };
    EXPECT_EQ(day(u"#12/30/1899#"), 0.0);
    EXPECT_EQ(day(u"#1/1/1900#"), 2.0);
    EXPECT_EQ(day(u"#11/21/2026#"), 46347.0);
    EXPECT_EQ(day(u"#11/21/2026 18:00#"), 46347.75);
    EXPECT_EQ(day(u"#6:00#"), 0.25);
    EXPECT_EQ(day(u"#12/29/1899 6:00#"), -1.25);
}

TEST(JetSqlParser, FiveHundredAlternativesAreOneFlatChain)
{
    QString text = QStringLiteral("SELECT * FROM [Messages] WHERE (");
    for (int i = 0; i < 500; ++i)
        text +=
            QStringLiteral("%1 [FromKey] LIKE \"*|a%2@b|*\"").arg(i == 0 ? QString() : QStringLiteral(" OR")).arg(i);
    const SelectStatement select = ParseSelect(text + u')');
    EXPECT_EQ(std::get<Operation>(select.Where->Node).Operands.size(), 500U);
    EXPECT_EQ(select.Where->Depth, 3);
}

TEST(JetSqlParser, JoinsAConditionWithAFurtherCriterion)
{
    const auto both = Both(ParseCondition(u"a=1 AND b=2"), ParseCondition(u"c=3 OR d=4"));
    EXPECT_EQ(ToText(*both).toStdString(), "(([a] = 1) AND ([b] = 2) AND (([c] = 3) OR ([d] = 4)))");
    EXPECT_EQ(ToText(*Both(std::nullopt, ParseCondition(u"a=1"))).toStdString(), "([a] = 1)");
    EXPECT_EQ(ToText(*Both(ParseCondition(u"a=1"), std::nullopt)).toStdString(), "([a] = 1)");
    EXPECT_FALSE(Both(std::nullopt, std::nullopt));
}
