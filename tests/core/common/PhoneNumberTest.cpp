#include "common/GeneralHelper.h"
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

TEST(PhoneNumberTest, AForeignNumberIsItsNationalNumber)
{
    const ScriptedRegistry registry;
    EXPECT_EQ(Normalised(u"+49 171 1234567"), u"1711234567");
    EXPECT_EQ(Key(u"0049 171 1234567"), u"1711234567");
    EXPECT_EQ(Normalised(u"+1 (202) 555-0123"), u"2025550123");
}

TEST(PhoneNumberTest, AnItalianLeadingZeroIsPartOfTheNumberButNotOfItsKey)
{
    const ScriptedRegistry registry;
    EXPECT_EQ(Normalised(u"+39 06 6982 1234"), u"0669821234");
    EXPECT_EQ(Key(u"+39 06 6982 1234"), u"669821234");
}

TEST(PhoneNumberTest, TheKeyIsTheNormalFormWithoutLeadingZeros)
{
    const ScriptedRegistry registry;
    for (const char16_t* number :
         {u"+44 20 7946 0018", u"+39 06 6982 1234", u"+49 171 1234567", u"+33 1 42 68 53 00"}) {
        QString normalised = Normalised(number);
        while (normalised.startsWith(u'0'))
            normalised.remove(0, 1);
        EXPECT_EQ(Key(number), normalised);
        EXPECT_FALSE(normalised.isEmpty());
    }
}

TEST(PhoneNumberTest, ShortCodesAndSenderNamesStayAsTheyStandAndHaveNoKey)
{
    const ScriptedRegistry registry;
    for (const char16_t* sender :
         {u"80058", u"MyBank", u"0800 FLOWERS", u"999", u"Radio 1", u"", u"+", u"?", u"12345678901234567890"}) {
        EXPECT_EQ(Normalised(sender), QString::fromUtf16(sender));
        EXPECT_EQ(Key(sender), QString()) << qPrintable(QString::fromUtf16(sender));
    }
    EXPECT_EQ(Normalised(u"  MyBank "), u"MyBank");
}

TEST(PhoneNumberTest, TheCountryIsASettingOfTheMachine)
{
    ScriptedRegistry registry;
    EXPECT_EQ(GeneralHelper::PhoneRegion(), u"GB");
    registry.Set(KeyPath, Country, QStringLiteral(" de "));
    EXPECT_EQ(GeneralHelper::PhoneRegion(), u"DE");
    EXPECT_EQ(Normalised(u"0171 1234567"), u"1711234567");
}

TEST(PhoneNumberTest, AnUnknownCountryCountsAsTheDefault)
{
    ScriptedRegistry registry;
    for (const char16_t* country : {u"", u"UK", u"XX", u"England", u"001"}) {
        registry.Set(KeyPath, Country, QString::fromUtf16(country));
        EXPECT_EQ(GeneralHelper::PhoneRegion(), u"GB") << qPrintable(QString::fromUtf16(country));
    }
}
