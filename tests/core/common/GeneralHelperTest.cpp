// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"

#include "support/ScriptedRegistry.h"

#include <gtest/gtest.h>

namespace
{
struct Token
{
    QString Text;
    qsizetype Next = 0;
    bool operator==(const Token&) const = default;
};

Token TokenOf(const QString& text, qsizetype start, const QString& delimiter, bool trimLeft = false,
              bool trimRight = false)
{
    Token token;
    token.Text = GeneralHelper::NextToken(text, start, delimiter, token.Next, trimLeft, trimRight);
    return token;
}
} // namespace

TEST(GeneralHelperTest, NextTokenEndsAtTheDelimiter)
{
    const QString text = QStringLiteral("one, two,,four");
    EXPECT_EQ(TokenOf(text, 0, QStringLiteral(",")), (Token{QStringLiteral("one"), 4}));
    EXPECT_EQ(TokenOf(text, 4, QStringLiteral(",")), (Token{QStringLiteral(" two"), 9}));
    EXPECT_EQ(TokenOf(text, 9, QStringLiteral(",")), (Token{QString(), 10}));
    EXPECT_EQ(TokenOf(text, 10, QStringLiteral(",")), (Token{QStringLiteral("four"), -1}));
}

TEST(GeneralHelperTest, NextTokenAtTheTextsEndSaysThatThereIsNoMore)
{
    const QString text = QStringLiteral("one,");
    EXPECT_EQ(TokenOf(text, 0, QStringLiteral(",")), (Token{QStringLiteral("one"), 4}));
    EXPECT_EQ(TokenOf(text, 4, QStringLiteral(",")), (Token{QString(), -1}));
    EXPECT_EQ(TokenOf(text, 99, QStringLiteral(",")), (Token{QString(), -1}));
    EXPECT_EQ(TokenOf(text, -1, QStringLiteral(",")), (Token{QString(), -1}));
    EXPECT_EQ(TokenOf(QString(), 0, QStringLiteral(",")), (Token{QString(), -1}));
}

TEST(GeneralHelperTest, NextTokenWithoutDelimiterIsTheRest)
{
    EXPECT_EQ(TokenOf(QStringLiteral("a b"), 1, QString()), (Token{QStringLiteral(" b"), -1}));
}

TEST(GeneralHelperTest, NextTokenTakesLongDelimitersWhole)
{
    EXPECT_EQ(TokenOf(QStringLiteral("a\r\nb"), 0, QStringLiteral("\r\n")), (Token{QStringLiteral("a"), 3}));
}

TEST(GeneralHelperTest, NextTokenTrimsTheAskedSideOfBlanksAlone)
{
    const QString text = QStringLiteral("  a\t  ;");
    EXPECT_EQ(TokenOf(text, 0, QStringLiteral(";"), true, false).Text, u"a\t  ");
    EXPECT_EQ(TokenOf(text, 0, QStringLiteral(";"), false, true).Text, u"  a\t");
    EXPECT_EQ(TokenOf(QStringLiteral("   ;"), 0, QStringLiteral(";"), true, true).Text, QString());
}

TEST(GeneralHelperTest, ColoursHaveRedInTheLowByteAndSystemColoursAreBlack)
{
    EXPECT_EQ(GeneralHelper::RedOf(255), 255);
    EXPECT_EQ(GeneralHelper::GreenOf(255), 0);
    EXPECT_EQ(GeneralHelper::RedOf(0x123456), 0x56);
    EXPECT_EQ(GeneralHelper::GreenOf(0x123456), 0x34);
    EXPECT_EQ(GeneralHelper::BlueOf(0x123456), 0x12);
    const auto systemColour = static_cast<qint32>(0x80FFFFFFU);
    EXPECT_EQ(GeneralHelper::RedOf(systemColour), 0);
    EXPECT_EQ(GeneralHelper::GreenOf(systemColour), 0);
    EXPECT_EQ(GeneralHelper::BlueOf(systemColour), 0);
}

TEST(GeneralHelperTest, LimitKeepsAValueBetweenItsBounds)
{
    EXPECT_EQ(GeneralHelper::Limit(-1, 0, 60), 0);
    EXPECT_EQ(GeneralHelper::Limit(10, 0, 60), 10);
    EXPECT_EQ(GeneralHelper::Limit(61, 0, 60), 60);
    EXPECT_EQ(GeneralHelper::Limit(5, 10, 0), 10);
    EXPECT_EQ(GeneralHelper::Maximum(2, -3), 2);
}

TEST(GeneralHelperTest, TheDebugPathHasItsClosingSeparator)
{
    GeneralHelper::SetDebugPath(QStringLiteral("/var/log/desk"));
    EXPECT_EQ(GeneralHelper::DebugPath(), u"/var/log/desk/");
    GeneralHelper::SetDebugPath(QStringLiteral("/var/log/desk/"));
    EXPECT_EQ(GeneralHelper::DebugPath(), u"/var/log/desk/");
    GeneralHelper::SetDebugPath(QString());
    EXPECT_EQ(GeneralHelper::DebugPath(), QString());
}

TEST(GeneralHelperTest, ANumericFieldTakesDigitsAndEditingKeys)
{
    EXPECT_EQ(GeneralHelper::FilterNumericKey('7', 1), '7');
    EXPECT_EQ(GeneralHelper::FilterNumericKey(8, 1), 8); // backspace
    for (const int key : std::initializer_list<int>{'a', ' ', '-', '.', 0, 0xE9})
        EXPECT_EQ(GeneralHelper::FilterNumericKey(key, 1), 0) << key;
    EXPECT_EQ(GeneralHelper::FilterNumericKey('-', 0), '-');
}

TEST(GeneralHelperTest, PointsAreCloseUpToTheDistance)
{
    EXPECT_TRUE(GeneralHelper::PointsAreClose(10, 10, 15, 5, 5));
    EXPECT_FALSE(GeneralHelper::PointsAreClose(10, 10, 15.5, 10, 5));
    EXPECT_FALSE(GeneralHelper::PointsAreClose(10, 10, 10, 4, 5));
}

TEST(GeneralHelperTest, AFittedTextIsNeverWiderThanItsPlace)
{
    const auto width = [](const QString& text) { return 10.0 * static_cast<double>(text.size()); };
    EXPECT_EQ(GeneralHelper::FitTextToWidth(width, QStringLiteral("request"), 70), QStringLiteral("request"));
    EXPECT_EQ(GeneralHelper::FitTextToWidth(width, QStringLiteral("request"), 69), QStringLiteral("reque\u2026"));
    EXPECT_EQ(GeneralHelper::FitTextToWidth(width, QStringLiteral("request"), 10), QStringLiteral("\u2026"));
    EXPECT_EQ(GeneralHelper::FitTextToWidth(width, QStringLiteral("request"), 9), QString());
    EXPECT_EQ(GeneralHelper::FitTextToWidth(width, QStringLiteral("ab\U0001F389cd"), 40), QStringLiteral("ab\u2026"));
}
