// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include "platform/records/jetsql/MemoryDatabase.h"
#include "platform/records/query/StoredValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace dao;
using query::CompareText;

namespace
{
int Sign(int value)
{
    return (value > 0) - (value < 0);
}
} // namespace

TEST(SqlFunctions, TextsCompareWithoutRegardToCase)
{
    EXPECT_EQ(CompareText("", ""), 0);
    EXPECT_EQ(CompareText("Hello", "hELLO"), 0);
    EXPECT_LT(CompareText("a", "B"), 0);
    EXPECT_GT(CompareText("b", "A"), 0);
    EXPECT_LT(CompareText("", "a"), 0);
    EXPECT_LT(CompareText("ab", "abc"), 0);
    EXPECT_EQ(CompareText("ÉTÉ", "été"), 0);
    EXPECT_EQ(CompareText("ΣΑΣ", "σας"), 0);
    EXPECT_EQ(CompareText("300 \xE2\x84\xAA", "300 k"), 0);
    EXPECT_NE(CompareText("ß", "ss"), 0);
    EXPECT_EQ(CompareText("𐐀", "𐐨"), 0);
    EXPECT_LT(CompareText("z", "é"), 0);
    EXPECT_NE(CompareText(std::string_view("a\0b", 3), std::string_view("a\0c", 3)), 0);
}

TEST(SqlFunctions, AnyOctetsHaveATotalOrder)
{
    constexpr unsigned int seed = 20261121;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> parts = {"a",
                                            "A",
                                            "é",
                                            "É",
                                            "ς",
                                            "σ",
                                            "k",
                                            "\xE2\x84\xAA",
                                            "\xED\xA0\xBD",
                                            "\xFF",
                                            "\xC3",
                                            "\xE2\x84",
                                            std::string(1, '\0'),
                                            "😀",
                                            "\xF4\x90\x80\x80",
                                            "z"};
    std::vector<std::string> texts;
    for (int i = 0; i < 60; ++i) {
        std::string text;
        for (unsigned int length = random() % 4; length > 0; --length)
            text += parts[random() % parts.size()];
        texts.push_back(text);
    }
    for (const std::string& a : texts) {
        EXPECT_EQ(CompareText(a, a), 0);
        for (const std::string& b : texts) {
            ASSERT_EQ(Sign(CompareText(a, b)), -Sign(CompareText(b, a)));
            for (const std::string& c : texts) {
                if (CompareText(a, b) <= 0 && CompareText(b, c) <= 0) {
                    ASSERT_LE(CompareText(a, c), 0);
                }
            }
        }
    }
}

TEST(SqlFunctions, ACollatedIndexFindsWhatEqualityFinds)
{
    MemoryDatabase database;
    database.AddTable(MakeTable(QStringLiteral("T"), {{QStringLiteral("a"), dbText, 255, 0, true}}));
    ASSERT_EQ(sqlite3_exec(database.Connection(), "CREATE INDEX i ON T (a COLLATE JET)", nullptr, nullptr, nullptr),
              SQLITE_OK);
    for (const char* text : {"b", "É", "a", "é", "A"})
        database.Insert(QStringLiteral("T"), {QString::fromUtf8(text)});
    EXPECT_EQ(database.List(QStringLiteral("SELECT a FROM T WHERE a = 'É'")), "É é");
    EXPECT_EQ(database.List(QStringLiteral("SELECT COUNT(*) FROM T WHERE a < 'B'")), "2");
    const auto rendered = database.Run({"EXPLAIN QUERY PLAN SELECT 1 FROM \"T\" AS \"T\" WHERE (\"T\".\"a\" COLLATE "
                                        "JET = ?1)",
                                        {StoredValue(QByteArrayLiteral("x"))}});
    EXPECT_TRUE(rendered.at(0).at(3).toString().contains(QStringLiteral("USING COVERING INDEX i")))
        << rendered.at(0).at(3).toString().toStdString();
}

TEST(SqlFunctions, OnlyRefusedValuesAreErrorsOfTheStore)
{
    EXPECT_FALSE(sqlite::StoredValueError(nullptr));
    EXPECT_FALSE(sqlite::StoredValueError("no such table: x"));
    EXPECT_FALSE(sqlite::StoredValueError("dao error x"));
    const auto error = sqlite::StoredValueError("dao error 3163: too long");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->Number(), 3163);
    EXPECT_EQ(error->Description(), QStringLiteral("too long"));
}

TEST(SqlFunctions, NumbersHaveTheirShortTextForm)
{
    MemoryDatabase database;
    database.AddTable(MakeTable(QStringLiteral("T"), {{QStringLiteral("a"), dbDouble}}));
    for (const double number : {5.0, 0.1, -2.5, 1e20, 0.0})
        database.Insert(QStringLiteral("T"), {number});
    EXPECT_EQ(database.List(QStringLiteral("SELECT a & '' FROM T")), "5 0.1 -2.5 1e+20 0");
    EXPECT_EQ(database.List(QStringLiteral("SELECT a FROM T WHERE a LIKE '?.*'")), "0.1");
}
