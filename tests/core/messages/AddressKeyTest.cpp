// SPDX-License-Identifier: Apache-2.0
#include "messages/AddressKey.h"

#include "support/ScriptedRegistry.h"

#include <gtest/gtest.h>

namespace
{
QString EmailKey(const char16_t* addresses)
{
    return MakeAddressKey(QString::fromUtf16(addresses), emtEmail);
}

QString SMSKey(const char16_t* addresses)
{
    const ScriptedRegistry machine;
    return MakeAddressKey(QString::fromUtf16(addresses), emtSMS);
}
} // namespace

TEST(AddressKeyTest, NothingGivesNothing)
{
    EXPECT_EQ(EmailKey(u""), QString());
    EXPECT_EQ(SMSKey(u""), QString());
}

TEST(AddressKeyTest, ABareAddressStandsBetweenBars)
{
    EXPECT_EQ(EmailKey(u"Ann@Example.com"), QStringLiteral("|Ann@Example.com|"));
}

TEST(AddressKeyTest, ANamedAndABareAddressGiveTheTwoAddresses)
{
    EXPECT_EQ(EmailKey(u"Ann Lee <ann@example.com>,bob@example.com"),
              QStringLiteral("|ann@example.com|bob@example.com|"));
}

TEST(AddressKeyTest, BlanksInsideTheBracketsGo)
{
    EXPECT_EQ(EmailKey(u"Ann < ann@example.com >"), QStringLiteral("|ann@example.com|"));
}

TEST(AddressKeyTest, AnAddressThatStartsWithABracketKeepsIt)
{
    EXPECT_EQ(EmailKey(u"<ann@example.com>"), QStringLiteral("|<ann@example.com>|"));
}

TEST(AddressKeyTest, AnElementWithoutBracketsKeepsItsBlanks)
{
    EXPECT_EQ(EmailKey(u"ann@example.com, bob@example.com"), QStringLiteral("|ann@example.com| bob@example.com|"));
}

TEST(AddressKeyTest, AnEmptyElementOfAMailKeepsItsPlace)
{
    EXPECT_EQ(EmailKey(u"ann@example.com,,bob@example.com"), QStringLiteral("|ann@example.com||bob@example.com|"));
}

TEST(AddressKeyTest, NumbersLoseTheirLeadingZerosAfterCleaning)
{
    EXPECT_EQ(SMSKey(u"07700 900123"), QStringLiteral("|7700900123|"));
    EXPECT_EQ(SMSKey(u"+44 7700 900123"), QStringLiteral("|7700900123|"));
    EXPECT_EQ(SMSKey(u"00447700900123"), QStringLiteral("|7700900123|"));
}

TEST(AddressKeyTest, ANumberOfOnlyZerosIsSkipped)
{
    EXPECT_EQ(SMSKey(u"000,07700900123"), QStringLiteral("|7700900123|"));
    EXPECT_EQ(SMSKey(u"000"), QString());
}

TEST(AddressKeyTest, ShortCodesAndSenderNamesStayAsTheyStand)
{
    EXPECT_EQ(SMSKey(u"80058"), QStringLiteral("|80058|"));
    EXPECT_EQ(SMSKey(u"MyBank"), QStringLiteral("|MyBank|"));
}

TEST(AddressKeyTest, AnotherMessageTypeHasNoKey)
{
    EXPECT_EQ(MakeAddressKey(QStringLiteral("ann@example.com"), static_cast<enMsgType>(3)), QString());
}

TEST(AddressKeyTest, AKeyThatFitsIsNotCut)
{
    EXPECT_EQ(FitAddressKey(QStringLiteral("|a@b|"), 5), QStringLiteral("|a@b|"));
}

TEST(AddressKeyTest, ALongKeyEndsAfterTheLastWholeAddress)
{
    EXPECT_EQ(FitAddressKey(QStringLiteral("|a@b|c@d|e@f|"), 12), QStringLiteral("|a@b|c@d|"));
    EXPECT_EQ(FitAddressKey(QStringLiteral("|a@b|c@d|"), 8), QStringLiteral("|a@b|"));
}

TEST(AddressKeyTest, OneAddressThatDoesNotFitLeavesNoKey)
{
    EXPECT_EQ(FitAddressKey(QStringLiteral("|abcdefgh@example.com|"), 10), QString());
}
