// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"
#include "common/MobileNumber.h"
#include "support/ScriptedRegistry.h"

#include <gtest/gtest.h>

namespace
{
const QString KeyPath = QStringLiteral("SOFTWARE\\Kelvarin");
const QString Country = QStringLiteral("Country");

QString Normalised(const char16_t* number)
{
    return GeneralHelper::NormalisePhoneNumber(QString::fromUtf16(number), 1);
}

QString Key(const char16_t* number)
{
    return GeneralHelper::PhoneNumberKey(QString::fromUtf16(number));
}
} // namespace

TEST(PhoneNumberTest, EveryWayOfWritingANumberMeets)
{
    const ScriptedRegistry registry;
    for (const char16_t* number : {u"+44 7700 900123", u"07700 900123", u"00447700900123", u"(07700) 900-123",
                                   u"+447700900123", u" 07700.900.123 ", u"7700900123", u"+44 (0)7700 900123",
                                   u"\u202A+44 7700 900123\u202C", u"\uFF0B\uFF14\uFF147700900123"}) {
        EXPECT_EQ(Normalised(number), u"7700900123") << qPrintable(QString::fromUtf16(number));
        EXPECT_EQ(Key(number), u"7700900123") << qPrintable(QString::fromUtf16(number));
    }
}

TEST(PhoneNumberTest, ANumberOfAnotherCountryKeepsItsCountryCode)
{
    const ScriptedRegistry registry;
    EXPECT_EQ(Normalised(u"+49 171 1234567"), u"491711234567");
    EXPECT_EQ(Key(u"0049 171 1234567"), u"491711234567");
    EXPECT_EQ(Normalised(u"+1 (202) 555-0123"), u"12025550123");
    EXPECT_NE(Key(u"+49 7700 900123"), Key(u"+44 7700 900123"));
}

TEST(PhoneNumberTest, AnItalianLeadingZeroIsPartOfTheNumberButNotOfItsKeyInItaly)
{
    const ScriptedRegistry registry;
    EXPECT_EQ(Normalised(u"+39 06 6982 1234"), u"390669821234");
    EXPECT_EQ(GeneralHelper::NormalisePhoneNumber(QStringLiteral("06 6982 1234"), 1, QStringLiteral("IT")),
              u"0669821234");
    EXPECT_EQ(GeneralHelper::PhoneNumberKey(QStringLiteral("+39 06 6982 1234"), QStringLiteral("IT")), u"669821234");
}

TEST(PhoneNumberTest, TheKeyIsTheNormalFormWithoutLeadingZeros)
{
    const ScriptedRegistry registry;
    for (const char16_t* number : {u"+44 20 7946 0018", u"+39 06 6982 1234", u"+49 171 1234567", u"+33 1 42 68 53 00",
                                   u"80058", u"00 80058", u"960100", u"999", u"12345678901234567890"}) {
        QString normalised = Normalised(number);
        while (normalised.startsWith(u'0'))
            normalised.remove(0, 1);
        EXPECT_EQ(Key(number), normalised);
        EXPECT_FALSE(normalised.isEmpty());
    }
}

TEST(PhoneNumberTest, ShortCodesAndLocalNumbersAreTheirDigits)
{
    const ScriptedRegistry registry;
    EXPECT_EQ(Normalised(u"80-058"), u"80058");
    EXPECT_EQ(Key(u" 80 058 "), u"80058");
    EXPECT_EQ(Normalised(u"012"), u"012");
    EXPECT_EQ(Key(u"012"), u"12");
    EXPECT_EQ(Key(u"960 100"), u"960100");
    EXPECT_EQ(Key(u"\u0668\u0660\u0660\u0665\u0668"), u"80058") << "Arabic digits";
    EXPECT_EQ(Normalised(u"12345678901234567890"), u"12345678901234567890");
}

TEST(PhoneNumberTest, SendersNamesStayAsTheyStandAndHaveNoKey)
{
    const ScriptedRegistry registry;
    for (const char16_t* sender : {u"MyBank", u"0800 FLOWERS", u"Radio 1", u"", u"+", u"?"}) {
        EXPECT_EQ(Normalised(sender), QString::fromUtf16(sender));
        EXPECT_EQ(Key(sender), QString()) << qPrintable(QString::fromUtf16(sender));
    }
    EXPECT_EQ(Normalised(u"  MyBank "), u"MyBank");
}

TEST(PhoneNumberTest, TheMachinesCountryIsTheFirstDefault)
{
    ScriptedRegistry registry;
    EXPECT_EQ(GeneralHelper::PhoneRegion(), u"GB");
    registry.Set(KeyPath, Country, QStringLiteral(" de "));
    EXPECT_EQ(GeneralHelper::PhoneRegion(), u"DE");
    EXPECT_EQ(Normalised(u"0171 1234567"), u"1711234567");
    GeneralHelper::SetPhoneRegion(QStringLiteral("FR"));
    EXPECT_EQ(GeneralHelper::PhoneRegion(), u"FR") << "the station's own comes before";
    GeneralHelper::SetPhoneRegion(QString());
    EXPECT_EQ(GeneralHelper::PhoneRegion(), u"DE");
}

TEST(PhoneNumberTest, AnUnknownCountryCountsAsTheDefault)
{
    ScriptedRegistry registry;
    for (const char16_t* country : {u"", u"UK", u"XX", u"England", u"001"}) {
        registry.Set(KeyPath, Country, QString::fromUtf16(country));
        EXPECT_EQ(GeneralHelper::PhoneRegion(), u"GB") << qPrintable(QString::fromUtf16(country));
        EXPECT_EQ(GeneralHelper::ToPhoneRegion(QString::fromUtf16(country)), QString());
    }
}

TEST(PhoneNumberTest, AMobileNumberIsOneByTheRangesOfItsCountry)
{
    const ScriptedRegistry registry;
    // The regulator's examples, and ranges in use.
    for (const char* number :
         {"07700 900123", "+44 7700 900999", "00447700900000", "+44 7400 123456", "07400123456", "447400123456",
          "7400123456", "+49 151 23456789", "+33 6 12 34 56 78", "+1 (202) 555-0123"})
        EXPECT_TRUE(IsMobileNumber(QLatin1String(number))) << number;
    for (const char* number : {"01632 960123",
                               "+44 20 7946 0018",
                               "0800 123456",
                               "0909 879 0123",
                               "070 1234 5678",
                               "+49 30 901820",
                               "80058",
                               "999",
                               "7700",
                               "",
                               " ",
                               "Harbour",
                               "FLOWERS",
                               "+44 7700 9001234",
                               "+447400123456;ext=5",
                               "+447400123456,5",
                               "+447400123456 x5",
                               "+447400123456,+447400123457",
                               "Pete <+447400123456>",
                               "+44\n7400123456",
                               "+44 (0)7700 900123",
                               "0044 (0)7400 123456",
                               "+4407400123456"})
        EXPECT_FALSE(IsMobileNumber(QLatin1String(number))) << number;
    EXPECT_TRUE(IsMobileNumber(QStringLiteral("0151 23456789"), QStringLiteral("DE")));
    EXPECT_FALSE(IsMobileNumber(QStringLiteral("0151 23456789"), QStringLiteral("GB")));
}

TEST(PhoneNumberTest, ANumberIsOfTheCountryWhoseCodeItHas)
{
    const ScriptedRegistry registry;
    for (const char* number : {"07700 900123", "+44 7700 900123", "0044 20 7946 0018"})
        EXPECT_TRUE(IsNumberOfCountry(QLatin1String(number))) << number;
    for (const char* number : {"+49 151 23456789", "+1 202 555 0123", "Harbour", ""})
        EXPECT_FALSE(IsNumberOfCountry(QLatin1String(number))) << number;
    EXPECT_TRUE(IsNumberOfCountry(QStringLiteral("+1 876 555 0123"), QStringLiteral("US")));
    EXPECT_FALSE(IsNumberOfCountry(QStringLiteral("+44 7700 900123"), QStringLiteral("US")));
}
