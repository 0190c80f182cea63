// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Error.h"
#include "platform/records/jetsql/Parser.h"

#include <gtest/gtest.h>

using namespace dao;
using namespace dao::jetsql;

namespace
{
std::string Refusal(const QString& text)
{
    try {
        ParseStatement(text);
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), 3075);
        return error.Description().toStdString();
    }
    ADD_FAILURE() << "accepted: " << text.toStdString();
    return {};
}

void ExpectRefused(const QString& condition)
{
    EXPECT_THROW(
        {
            try {
                ParseCondition(condition);
            } catch (const Error& error) {
                EXPECT_EQ(error.Number(), 3075) << condition.toStdString();
                throw;
            }
        },
        Error)
        << condition.left(60).toStdString();
}
} // namespace

TEST(JetSqlRefusal, GivesTheReasonThePlaceAndTheTextThere)
{
    EXPECT_EQ(Refusal(QStringLiteral("SELECT * FROM [Messages] WHERE ([Subject] LIKE \"*say \"hi\"*\" )")),
              "Syntax error in the query: ) is missing, at character 55, near 'hi\"*\" )'.");
    EXPECT_EQ(Refusal(QStringLiteral("SELECT * FROM [Messages] WHERE ORDER BY [Sent]")),
              "Syntax error in the query: a value is missing, at character 32, near 'ORDER BY [Sent]'.");
    EXPECT_EQ(Refusal(QStringLiteral("SELECT * FROM [Messages] WHERE [a")),
              "Syntax error in the query: the name's closing ] is missing, at character 32, near '[a'.");
    EXPECT_EQ(Refusal(QStringLiteral("SELECT * FROM Messages WHERE a = ")),
              "Syntax error in the query: a value is missing, at the end.");
    EXPECT_EQ(Refusal(QStringLiteral("SELECT * FROM Messages WHERE a = #2/30/2026#")),
              "Syntax error in the query: there is no such date or time, at character 34, near '#2/30/2026#'.");
    EXPECT_EQ(Refusal(QString()), "Syntax error in the query: a query begins with SELECT, UPDATE or DELETE, at the "
                                  "end.");
}

TEST(JetSqlRefusal, RefusesWhatIsNoQuery)
{
    for (const char* text : {"DROP TABLE Messages",
                             "INSERT INTO Messages (a) VALUES (1)",
                             "SELECT",
                             "SELECT FROM Messages",
                             "SELECT *",
                             "SELECT * FROM",
                             "SELECT * FROM Messages WHERE",
                             "SELECT * FROM Messages ORDER",
                             "SELECT a, FROM Messages",
                             "SELECT * FROM Messages ORDER BY",
                             "SELECT * FROM Messages; DELETE FROM Messages",
                             "SELECT * FROM Messages;;",
                             "SELECT * FROM a LEFT JOIN b",
                             "SELECT * FROM a JOIN b ON a.x=b.x",
                             "SELECT * FROM (a",
                             "SELECT TOP 1.5 * FROM a",
                             "UPDATE Messages",
                             "UPDATE Messages SET",
                             "UPDATE Messages SET a",
                             "UPDATE Messages SET 1=1",
                             "UPDATE Messages SET a=1 b=2",
                             "DELETE Messages",
                             "DELETE a.* FROM b",
                             "SELECT COUNT(* FROM a",
                             "SELECT COUNT() FROM a",
                             "SELECT a AS FROM b",
                             "SELECT * FROM a -- comment",
                             "SELECT * FROM a /* c */"})
        Refusal(QString::fromUtf8(text));
}

TEST(JetSqlRefusal, RefusesBrokenConditions)
{
    for (const char* text : {"",
                             " ",
                             "a =",
                             "= a",
                             "a = = b",
                             "(a",
                             "a)",
                             "a b",
                             "a IS 5",
                             "a IS NOT",
                             "a NOT",
                             "a NOT 5",
                             "a LIKE",
                             "a BETWEEN 1",
                             "a BETWEEN 1 OR 2",
                             "a IN",
                             "a IN ()",
                             "a IN (1",
                             "a IN (1,)",
                             "'open",
                             "\"open",
                             "#1/1/2026",
                             "[open",
                             "[]",
                             "##",
                             "a.",
                             "a..b",
                             ".",
                             "a.5",
                             "Len(a) = 5",
                             "COUNT(*) > 5",
                             "1e999 = a",
                             "a = 5abc",
                             "NOT",
                             "a AND",
                             "OR a",
                             "a => 5",
                             "a ? b",
                             "a = @p",
                             "a = :p",
                             "a = {d}",
                             "a \\ b",
                             "`a` = 1",
                             "a = $1",
                             "a; b"})
        ExpectRefused(QString::fromUtf8(text));
}

TEST(JetSqlRefusal, RefusesImpossibleDates)
{
    for (const char* text :
         {"2/30/2026",    "13/32/2026",  "31/31/2026", "0/1/2026",  "1/0/2026",  "2026-13-01", "24:00",
          "12:60",        "1:00:60",     "13:00 pm",   "0:30 am",   "1/1",       "1/1/2026 5", "1/1/20260",
          "abc",          "21 Foo 2026", "1//1/2026",  "/1/1/2026", "1/1/2026/", "1:1:1:1",    "5 pm",
          "1/1/2026 a",   "2/29/2023",   "nov",        "1 2 3",     "1:2/3",     "Nov 21",     "1/1/2026 1:00 pm pm",
          "1/1/99 x 1:00"})
        ExpectRefused(QStringLiteral("a = #%1#").arg(QString::fromUtf8(text)));
}

TEST(JetSqlRefusal, RefusesHostileNestingWithoutExhaustingTheStack)
{
    for (int levels : {401, 10000, 100000}) {
        ExpectRefused(QString(levels, u'(') + u'a' + QString(levels, u')'));
        ExpectRefused(QStringLiteral("NOT ").repeated(levels) + u'a');
        ExpectRefused(QStringLiteral("- ").repeated(levels) + u'a');
        ExpectRefused(QStringLiteral("+").repeated(levels) + u'a');
        ExpectRefused(QStringLiteral("a").append(QStringLiteral("-a").repeated(levels)));
        ExpectRefused(QStringLiteral("a").append(QStringLiteral("=a").repeated(levels)));
        Refusal(QStringLiteral("SELECT * FROM ") + QString(levels, u'(') + u'a');
    }
}

TEST(JetSqlRefusal, AcceptsOrdinaryNesting)
{
    EXPECT_NO_THROW(ParseCondition(QString(150, u'(') + u'a' + QString(150, u')')));
    EXPECT_NO_THROW(ParseCondition(QStringLiteral("a OR ").repeated(100000) + u'a'));
    EXPECT_NO_THROW(ParseCondition(QStringLiteral("NOT (").repeated(199) + u'a' + QString(199, u')')));
}

TEST(JetSqlRefusal, NamesCannotCarryANullCharacter)
{
    ExpectRefused(QStringLiteral("[a") + QChar(0) + QStringLiteral("b] = 1"));
    ExpectRefused(QStringLiteral("a") + QChar(0) + QStringLiteral(" = 1"));
}
