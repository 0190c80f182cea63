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
