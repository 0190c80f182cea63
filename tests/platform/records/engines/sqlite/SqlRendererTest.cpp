// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Error.h"
#include "platform/records/jetsql/MemoryDatabase.h"
#include "platform/records/jetsql/Parser.h"

#include <gtest/gtest.h>

using namespace dao;

namespace
{
class SqlRenderer : public testing::Test
{
protected:
    SqlRenderer()
    {
        Database.AddTable(MakeTable(QStringLiteral("Messages"), {{QStringLiteral("Reference"), dbLong},
                                                                 {QStringLiteral("Subject"), dbText, 20, 0, true},
                                                                 {QStringLiteral("Sent"), dbDate},
                                                                 {QStringLiteral("Category"), dbInteger},
                                                                 {QStringLiteral("Done"), dbBoolean},
                                                                 {QStringLiteral("Message"), dbMemo, 0, 0, false}}));
        Database.AddTable(MakeTable(QStringLiteral("Winners"), {{QStringLiteral("Reference"), dbLong},
                                                                {QStringLiteral("MessageReference"), dbLong},
                                                                {QStringLiteral("Notes"), dbMemo, 0, 0, true}}));
        Database.AddTable(
            MakeTable(QStringLiteral("Odd \"name\"; --"), {{QStringLiteral("a\"b' --"), dbText, 255, 0, true}}));
        AddMessage(1, QStringLiteral("Hello"), 46347.5, 1, -1, QStringLiteral("body one"));
        AddMessage(2, QStringLiteral("HELLO again"), 46348.0, 5, 0, QVariant());
        AddMessage(3, QVariant(), QVariant(), QVariant(), 0, QStringLiteral("ÉTÉ"));
        AddMessage(4, QStringLiteral("5"), 0.0, 12, -1, QString());
        Database.Insert(QStringLiteral("Winners"), {qint64{10}, qint64{2}, QStringLiteral("first")});
        Database.Insert(QStringLiteral("Winners"), {qint64{11}, qint64{2}, QStringLiteral("second")});
        Database.Insert(QStringLiteral("Winners"), {qint64{12}, qint64{4}, QVariant()});
    }

    void AddMessage(qint64 reference, const QVariant& subject, const QVariant& sent, const QVariant& category,
                    qint64 done, const QVariant& message)
    {
        Database.Insert(QStringLiteral("Messages"),
                        {reference, subject, sent, category.isValid() ? QVariant(category.toLongLong()) : QVariant(),
                         done, message});
    }

    std::string Where(const char* condition)
    {
        return Database.List(QStringLiteral("SELECT Reference FROM Messages WHERE ") + QString::fromUtf8(condition) +
                             QStringLiteral(" ORDER BY Reference"));
    }

    int ErrorOf(const char* text)
    {
        try {
            const jetsql::Statement statement = jetsql::ParseStatement(QString::fromUtf8(text));
            if (const auto* select = std::get_if<jetsql::SelectStatement>(&statement))
                sqlite::RenderSelect(query::BindSelect(*select, Database.Schema()));
            else
                Database.Change(QString::fromUtf8(text));
        } catch (const Error& error) {
            EXPECT_FALSE(error.Description().isEmpty());
            return error.Number();
        }
        return 0;
    }

    QStringList ColumnNames(const char* text)
    {
        QStringList names;
        for (const engine::ResultColumn& column : Database.Bind(QString::fromUtf8(text)).Shape.Columns)
            names.append(column.Definition.Name);
        return names;
    }

    MemoryDatabase Database;
};
} // namespace

TEST_F(SqlRenderer, StarListsTheTablesColumnsAndNotTheHiddenOnes)
{
    const query::BoundSelect select = Database.Bind(u"select * from MESSAGES");
    const auto rendered = sqlite::RenderSelect(select);
    EXPECT_EQ(rendered.Text,
              "SELECT \"Messages\".\"Reference\", \"Messages\".\"Subject\", \"Messages\".\"Sent\", "
              "\"Messages\".\"Category\", \"Messages\".\"Done\", \"Messages\".\"Message\" FROM \"Messages\" AS "
              "\"Messages\"");
    EXPECT_TRUE(select.Shape.Updatable);
    EXPECT_EQ(select.Shape.Sources.at(0)->Name, QStringLiteral("Messages"));
    EXPECT_EQ(select.Shape.Columns.at(1).Definition, select.Shape.Sources.at(0)->Columns.at(1));
    EXPECT_EQ(select.Shape.Columns.at(1).Source, 0);
    EXPECT_EQ(select.Shape.Columns.at(1).SourceColumn, 1);
    EXPECT_EQ(rendered.SqlColumns.at(5), 5);
}

TEST_F(SqlRenderer, ComparesNumbersTextsAndDates)
{
    EXPECT_EQ(Where("Category=5"), "2");
    EXPECT_EQ(Where("Category<>5"), "1 4");
    EXPECT_EQ(Where("[category] >= 5 and [Messages].[Category] < 12"), "2");
    EXPECT_EQ(Where("Subject = 'hELLO'"), "1");
    EXPECT_EQ(Where("'hELLO' = Subject"), "1");
    EXPECT_EQ(Where("Subject > 'HELLO'"), "2");
    EXPECT_EQ(Where("Message = 'été'"), "3");
    EXPECT_EQ(Where("Sent >= #11/22/2026#"), "2");
    EXPECT_EQ(Where("Sent = #11/21/2026 12:00#"), "1");
    EXPECT_EQ(Where("Sent = 0"), "4");
    EXPECT_EQ(Where("Sent BETWEEN #11/21/2026# AND #11/22/2026#"), "1 2");
    EXPECT_EQ(Where("Sent - #11/21/2026# = 0.5"), "1");
}

TEST_F(SqlRenderer, TruthIsMinusOne)
{
    EXPECT_EQ(Where("Done"), "1 4");
    EXPECT_EQ(Where("NOT Done"), "2 3");
    EXPECT_EQ(Where("Done = TRUE"), "1 4");
    EXPECT_EQ(Where("Done = -1"), "1 4");
    EXPECT_EQ(Where("Done = FALSE"), "2 3");
    EXPECT_EQ(Where("(Category = 5) = TRUE"), "2");
    EXPECT_EQ(Where("(Category = 5) = (NOT Done)"), "1 2 4");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Category=5 FROM Messages")), "0 -1 Null 0");
    EXPECT_EQ(Where("TRUE"), "1 2 3 4");
    EXPECT_EQ(Where("NULL"), "");
}

TEST_F(SqlRenderer, NullIsNeitherEqualNorUnequal)
{
    EXPECT_EQ(Where("Category = NULL"), "");
    EXPECT_EQ(Where("Category <> NULL"), "");
    EXPECT_EQ(Where("NOT (Category = 5)"), "1 4");
    EXPECT_EQ(Where("Category IS NULL"), "3");
    EXPECT_EQ(Where("Category is not null"), "1 2 4");
    EXPECT_EQ(Where("Subject LIKE '*'"), "1 2 4");
    EXPECT_EQ(Where("Subject NOT LIKE '*5*'"), "1 2");
    EXPECT_EQ(Where("NOT (Subject LIKE 'x' OR Message LIKE 'x')"), "1 4");
    EXPECT_EQ(Where("Subject LIKE NULL"), "");
}

TEST_F(SqlRenderer, LikeMatchesTextsAndNumbers)
{
    EXPECT_EQ(Where("Subject LIKE \"*hello*\""), "1 2");
    EXPECT_EQ(Where("Subject LIKE '#'"), "4");
    EXPECT_EQ(Where("Message LIKE '*été*'"), "3");
    EXPECT_EQ(Where("Category LIKE '1*'"), "1 4");
    EXPECT_EQ(Where("Category LIKE 5"), "2");
    EXPECT_EQ(Where("Subject LIKE '*hello*' OR Message LIKE '*hello*' OR Message LIKE '*T*'"), "1 2 3");
    EXPECT_EQ(Where("Subject LIKE Subject"), "1 2 4");
    EXPECT_EQ(Where("Subject LIKE '*' & 'again'"), "2");
}

TEST_F(SqlRenderer, AlternativesWithOnePatternOrOneSetOfTextsBecomeOneCall)
{
    const auto rendered = sqlite::RenderSelect(
        Database.Bind(u"SELECT Reference FROM Messages WHERE Subject LIKE '*a*' OR Message LIKE '*a*' OR Subject "
                      "LIKE '*b*' OR Message LIKE '*b*' OR Category=1"));
    EXPECT_TRUE(rendered.Text.endsWith(" WHERE ((\"Messages\".\"Category\" = ?1) OR jet_like(?2, "
                                       "\"Messages\".\"Subject\", \"Messages\".\"Message\"))"))
        << rendered.Text.constData();
}

TEST_F(SqlRenderer, MatchesTextsStoredAsBlobsAndWithNullCharacters)
{
    AddMessage(5, QByteArray("blob x"), QVariant(), QVariant(), 0, QVariant());
    AddMessage(6, QStringLiteral("a") + QChar(0) + QStringLiteral("tail"), QVariant(), QVariant(), 0, QVariant());
    EXPECT_EQ(Where("Subject LIKE '*BLOB*'"), "5");
    EXPECT_EQ(Where("Subject LIKE '*tail'"), "6");
    EXPECT_EQ(Where("Subject LIKE 'a'"), "");
    EXPECT_EQ(Where("Subject = 'a'"), "");
}

TEST_F(SqlRenderer, InAndBetweenCompareWithoutRegardToCase)
{
    EXPECT_EQ(Where("Subject IN ('hello', 'nothing')"), "1");
    EXPECT_EQ(Where("Subject NOT IN ('hello', 'nothing')"), "2 4");
    EXPECT_EQ(Where("Category IN (1, '5', 7.0)"), "1 2");
    EXPECT_EQ(Where("Subject BETWEEN 'HA' AND 'hello'"), "1");
    EXPECT_EQ(Where("Subject NOT BETWEEN 'HA' AND 'hello'"), "2 4");
}

TEST_F(SqlRenderer, ConstantsTakeTheTypeOfTheColumn)
{
    EXPECT_EQ(Where("Category = '5'"), "2");
    EXPECT_EQ(Where("Category = ' 5.0 '"), "2");
    EXPECT_EQ(Where("'5' = Category"), "2");
    EXPECT_EQ(Where("Subject = 5"), "4");
    EXPECT_EQ(Where("5 = Subject"), "4");
    EXPECT_EQ(Where("Category BETWEEN '2' AND '6'"), "2");
}

TEST_F(SqlRenderer, WhatCanNeverCompareIsATypeMismatch)
{
    for (const char* condition :
         {"Category = 'five'", "Category = ''", "Subject = #1/1/2026#", "Sent = 'yesterday'", "Subject = Category",
          "Category = Subject", "Category IN (1, 'x')", "Subject BETWEEN Category AND 'z'", "Sent LIKE '*2026*'",
          "Subject LIKE #1/1/2026#", "Subject + 1 = 5", "Category + Subject = 5", "-Subject = 1", "Subject", "'text'",
          "NOT Subject", "Subject AND Done"})
        EXPECT_EQ(ErrorOf((std::string("SELECT * FROM Messages WHERE ") + condition).c_str()), 13) << condition;
}

TEST_F(SqlRenderer, ComputesAsExpected)
{
    EXPECT_EQ(Database.List(QStringLiteral("SELECT 5/2 FROM Messages WHERE Reference=1")), "2.5");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT 7 MOD 4 FROM Messages WHERE Reference=1")), "3");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Category/0 FROM Messages WHERE Reference=1")), "Null");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT -Category FROM Messages")), "-1 -5 Null -12");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Subject & '/' & Category FROM Messages")),
              "Hello/1 HELLO again/5 / 5/12");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Subject & Category FROM Messages")), "Hello1 HELLO again5 Null 512");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Subject + '!' FROM Messages")), "Hello! HELLO again! Null 5!");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Sent+0.5 FROM Messages WHERE Reference=1")), "46348");
}

TEST_F(SqlRenderer, OrdersWithoutRegardToCaseAndByAlias)
{
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Reference FROM Messages ORDER BY Subject DESC, Reference")),
              "2 1 4 3");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT TOP 2 Reference FROM Messages ORDER BY Sent DESC")), "2 1");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Reference, -Reference AS R FROM Messages ORDER BY R")), "4 3 2 1");
}

TEST_F(SqlRenderer, Aggregates)
{
    EXPECT_EQ(Database.List(QStringLiteral("SELECT COUNT(*) AS N FROM Messages")), "4");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT COUNT(Category) FROM Messages")), "3");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT MAX(Category) FROM Messages")), "12");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT MIN(Subject) FROM Messages")), "5");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT SUM(Category) FROM Messages")), "18");
    EXPECT_EQ(ErrorOf("SELECT COUNT(*), Subject FROM Messages"), 3075);
    EXPECT_EQ(ColumnNames("SELECT COUNT(*), MAX(Sent) AS Latest FROM Messages"),
              (QStringList{QStringLiteral("Expr1000"), QStringLiteral("Latest")}));
    EXPECT_FALSE(Database.Bind(u"SELECT COUNT(*) FROM Messages").Shape.Updatable);
}

TEST_F(SqlRenderer, JoinsNameTheirColumnsByTableWhereNamesRepeat)
{
    const QString text =
        QStringLiteral("SELECT Messages.Reference, Messages.Subject, Winners.*, Messages.Category FROM "
                       "Messages LEFT JOIN Winners ON Messages.Reference = Winners.MessageReference  "
                       "WHERE ( [Winners.Reference]=11 OR [Messages.Category]=1)");
    EXPECT_EQ(ColumnNames(text.toUtf8().constData()),
              (QStringList{QStringLiteral("Messages.Reference"), QStringLiteral("Subject"),
                           QStringLiteral("Winners.Reference"), QStringLiteral("MessageReference"),
                           QStringLiteral("Notes"), QStringLiteral("Category")}));
    const auto rows = Database.Select(text);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows.at(0).at(0), QVariant(qint64{1}));
    EXPECT_FALSE(rows.at(0).at(2).isValid());
    EXPECT_EQ(rows.at(1).at(2), QVariant(qint64{11}));
    EXPECT_FALSE(Database.Bind(text).Shape.Updatable);
}

TEST_F(SqlRenderer, JoinsUseAliases)
{
    EXPECT_EQ(
        Database.List(QStringLiteral("SELECT w.Reference FROM Messages AS m INNER JOIN Winners w ON m.Reference = "
                                     "w.MessageReference WHERE m.Category=12")),
        "12");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT b.Reference FROM Messages a INNER JOIN Messages b ON a.Reference < "
                                           "b.Reference WHERE a.Reference=3")),
              "4");
}

TEST_F(SqlRenderer, LeadingColumnsComeBeforeTheOutputForEachTable)
{
    sqlite::SelectOptions options;
    options.LeadingColumns = {QStringLiteral("rowid"), QStringLiteral("hidden")};
    options.Columns = sqlite::SelectOptions::Output::WithoutMemos;
    const auto rendered = sqlite::RenderSelect(Database.Bind(u"SELECT Message, Subject FROM Messages"), options);
    EXPECT_EQ(rendered.SqlColumns, (std::vector<int>{-1, 2}));
    const auto rows = Database.Run(rendered);
    EXPECT_EQ(rows.at(1), (ResultRow{qint64{2}, qint64{1}, QStringLiteral("HELLO again")}));

    options.Columns = sqlite::SelectOptions::Output::None;
    const auto keys = Database.Select(QStringLiteral("SELECT *, Category+1 FROM Messages LEFT JOIN Winners ON "
                                                     "Messages.Reference=MessageReference WHERE Category=1 OR "
                                                     "Category=12"),
                                      {}, options);
    EXPECT_EQ(keys.at(0), (ResultRow{qint64{1}, qint64{1}, QVariant(), QVariant()}));
    EXPECT_EQ(keys.at(1), (ResultRow{qint64{4}, qint64{1}, qint64{3}, qint64{1}}));
    EXPECT_THROW(sqlite::RenderSelect(Database.Bind(u"SELECT COUNT(*) FROM Messages"), options), Error);
}

TEST_F(SqlRenderer, NamesThatAreNoColumnsAreParameters)
{
    const QString text = QStringLiteral("SELECT Reference FROM Messages WHERE Category=[Which?] OR Subject=[the text] "
                                        "OR Sent=[Which?] OR Subject LIKE [pattern] OR Message = [the text]");
    EXPECT_EQ(Database.Bind(text).Parameters.Names,
              (QStringList{QStringLiteral("Which?"), QStringLiteral("the text"), QStringLiteral("pattern")}));
    EXPECT_EQ(Database.List(text, {{QStringLiteral("Which?"), QStringLiteral("5")},
                                   {QStringLiteral("the text"), qint64{5}},
                                   {QStringLiteral("pattern"), QStringLiteral("hello")}}),
              "1 2 4");
}

TEST_F(SqlRenderer, RefusesUnknownTablesAndColumns)
{
    EXPECT_EQ(ErrorOf("SELECT * FROM Nothing"), 3078);
    EXPECT_EQ(ErrorOf("SELECT Nothing.* FROM Messages"), 3078);
    EXPECT_EQ(ErrorOf("SELECT * FROM Messages LEFT JOIN Nothing ON 1=1"), 3078);
    EXPECT_EQ(ErrorOf("SELECT * FROM Messages WHERE Messages.Nothing=1"), 3061);
    EXPECT_EQ(ErrorOf("SELECT * FROM Messages WHERE [Messages.Nothing]=1"), 3061);
    EXPECT_EQ(ErrorOf("SELECT * FROM Messages AS m WHERE Messages.Subject='x'"), 3061);
    EXPECT_EQ(ErrorOf("SELECT * FROM Messages WHERE Messages.hidden=1"), 3061);
    EXPECT_EQ(ErrorOf("SELECT Reference FROM Messages INNER JOIN Winners ON 1=1"), 3061);
    EXPECT_EQ(ErrorOf("SELECT * FROM Messages INNER JOIN messages ON 1=1"), 3075);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Nothing = 1"), 3061);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET hidden = 1"), 3061);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Subject='a', subject='b'"), 3075);
    EXPECT_EQ(ErrorOf("DELETE FROM Nothing"), 3078);
}

TEST_F(SqlRenderer, UpdatesStoreWhatTheColumnHolds)
{
    EXPECT_EQ(Database.Change(QStringLiteral("UPDATE Messages SET Messages.Subject = [new], Category = '7', Done = 5 "
                                             "WHERE Reference <= 2;"),
                              {{QStringLiteral("new"), QStringLiteral("changed")}}),
              2);
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Subject & Category & Done FROM Messages")),
              "changed7-1 changed7-1 0 512-1");
    const auto rows = Database.Select(QStringLiteral("SELECT Reference FROM Messages WHERE Reference=1"), {},
                                      {{QStringLiteral("hidden")}});
    EXPECT_EQ(rows.at(0).at(0), QVariant(qint64{2}));
    EXPECT_EQ(Database.Change(QStringLiteral("UPDATE Messages SET Category = Category * 2.25")), 4);
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Category FROM Messages")), "16 16 Null 27");
    EXPECT_EQ(Database.Change(QStringLiteral("UPDATE Messages SET Message='', Subject='' WHERE Reference=1")), 1);
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Reference FROM Messages WHERE Message IS NULL AND Subject=''")),
              "1");
}

TEST_F(SqlRenderer, UpdatesRefuseWhatTheColumnCannotHoldAndChangeNothing)
{
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Subject = '123456789012345678901'"), 3163);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Subject = Subject & 'aaaaaaaaaaaaa'"), 3163);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Category = 32768"), 6);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Category = Category * 30000"), 6);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Category = 'many'"), 3421);
    EXPECT_EQ(ErrorOf("UPDATE Messages SET Subject = #1/1/2026#"), 13);
    EXPECT_EQ(Where("Subject='Hello' AND Category=1"), "1");
}

TEST_F(SqlRenderer, Deletes)
{
    EXPECT_EQ(Database.Change(QStringLiteral("DELETE m.* FROM Messages AS m WHERE m.Category=5")), 1);
    EXPECT_EQ(Where("TRUE"), "1 3 4");
    EXPECT_EQ(Database.Change(QStringLiteral("DELETE FROM Messages;")), 3);
}

TEST_F(SqlRenderer, QuotesSemicolonsAndCommentsStayInsideTheirTextsAndNames)
{
    const QString hostile = QStringLiteral("x'); DROP TABLE Messages; -- \"/*");
    AddMessage(7, hostile, QVariant(), QVariant(), 0, QVariant());
    EXPECT_EQ(Where("Subject = \"x'); DROP TABLE Messages; -- \"\"/*\""), "7");
    EXPECT_EQ(Where("Subject LIKE \"*'); DROP*\"\"/[*]\""), "7");
    Database.Insert(QStringLiteral("Odd \"name\"; --"), {QStringLiteral("value")});
    EXPECT_EQ(Database.List(QStringLiteral("SELECT [a\"b' --] FROM [Odd \"name\"; --] WHERE [a\"b' --] LIKE 'VAL*'")),
              "value");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT [x\"; --].[a\"b' --] FROM [Odd \"name\"; --] AS [x\"; --]")),
              "value");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT 'a' AS [n\"; DROP TABLE Messages; --] FROM Winners WHERE "
                                           "Reference=10")),
              "a");
    EXPECT_EQ(Database.List(QStringLiteral("SELECT Reference FROM Messages WHERE Subject=[p\"; DROP TABLE Messages]"),
                            {{QStringLiteral("p\"; DROP TABLE Messages"), QStringLiteral("5")}}),
              "4");
    EXPECT_EQ(Where("Reference=1"), "1");
}

TEST_F(SqlRenderer, ThousandsOfAlternativesRun)
{
    for (const char* alternative : {" OR Subject LIKE '*x%1*'", " OR Category = %1", " OR NOT (Reference <> -%1)"}) {
        QString condition = QStringLiteral("Subject LIKE '*hello*'");
        for (int i = 100; i < 3100; ++i)
            condition += QString::fromUtf8(alternative).arg(i);
        EXPECT_EQ(Where(condition.toUtf8().constData()), "1 2") << alternative;
    }
    QString list = QStringLiteral("1");
    for (int i = 100; i < 3100; ++i)
        list += QStringLiteral(", %1").arg(i);
    EXPECT_EQ(Where(QStringLiteral("Reference IN (%1)").arg(list).toUtf8().constData()), "1");
}

TEST_F(SqlRenderer, DeepNestingRunsOrIsRefusedBeforeSqliteSeesIt)
{
    int accepted = 0;
    for (int levels = 1; levels < 190; levels += levels < 45 ? 1 : 12) {
        const auto nest = [levels](const char* before, const char* behind) {
            return QStringLiteral("SELECT Reference FROM Messages WHERE Reference=1 AND (") +
                   QString::fromUtf8(before).repeated(levels) + QStringLiteral("Category=1") +
                   QString::fromUtf8(behind).repeated(levels) + u')';
        };
        for (const QString& text :
             {nest("(", ")"), nest("NOT (NOT (", "))"), nest("(Category=2 OR (Category=1 AND ", "))"),
              nest("(", " AND Category=1 OR Category=2)"), nest("(0+-(-", "))=(1+1-2)"), nest("0-(", ")"),
              nest("'' & (", ")"), nest("(Category=7) IN (0, ", ")"), nest("1 BETWEEN -1 AND (", ")"),
              nest("7 MOD (", ")"), nest("1/(", ")")}) {
            try {
                Database.Select(text);
                ++accepted;
            } catch (const Error& error) {
                EXPECT_TRUE(error.Number() == 3075 || error.Number() == 13) << error.what();
            }
        }
    }
    EXPECT_GT(accepted, 200);
}
