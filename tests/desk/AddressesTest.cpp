#include "Addresses.h"

#include <gtest/gtest.h>

TEST(AddressesTest, CommasAndSemicolonsDivideButNotWithinQuotationMarksOrBrackets)
{
    EXPECT_EQ(
        Addresses::Split(QStringLiteral("\"Tregenza, Loveday\" <l@example.org>; b@example.org,\n c@example.org ,, ;")),
        (QStringList{QStringLiteral("\"Tregenza, Loveday\" <l@example.org>"), QStringLiteral("b@example.org"),
                     QStringLiteral("c@example.org")}));
    EXPECT_EQ(Addresses::Split(QStringLiteral("\"A \\\", B\" <a@b.org>")).size(), 1);
    EXPECT_TRUE(Addresses::Split(QStringLiteral(" , ; ")).isEmpty());
}

TEST(AddressesTest, AnUnfinishedQuotationIsOneElementAndNoLoss)
{
    EXPECT_EQ(Addresses::Split(QStringLiteral("\"Ann a@b.org, c@d.org")),
              QStringList{QStringLiteral("\"Ann a@b.org, c@d.org")});
}

TEST(AddressesTest, TheBareAddressAndTheNameComeFromAMailbox)
{
    EXPECT_EQ(Addresses::Bare(QStringLiteral("Ann <Ann@EXAMPLE.org>")), QStringLiteral("Ann@example.org"));
    EXPECT_EQ(Addresses::Bare(QStringLiteral(" ann@example.org ")), QStringLiteral("ann@example.org"));
    EXPECT_EQ(Addresses::DisplayName(QStringLiteral("\"Ann \\\"B\\\"\" <a@b.org>")), QStringLiteral("Ann \"B\""));
    EXPECT_EQ(Addresses::DisplayName(QStringLiteral("<a@b.org>")), QStringLiteral("a@b.org"));
}

TEST(AddressesTest, ANameIsQuotedWhereItHoldsASpecialCharacter)
{
    EXPECT_EQ(Addresses::Mailbox(QStringLiteral("Harbour FM"), QStringLiteral("a@b.org")),
              QStringLiteral("Harbour FM <a@b.org>"));
    EXPECT_EQ(Addresses::Mailbox(QStringLiteral("Harbour, \"FM\""), QStringLiteral("a@b.org")),
              QStringLiteral("\"Harbour, \\\"FM\\\"\" <a@b.org>"));
    EXPECT_EQ(Addresses::Mailbox(QString(), QStringLiteral("a@b.org")), QStringLiteral("a@b.org"));
    EXPECT_EQ(Addresses::Mailbox(QStringLiteral("Harbour FM"), QString()), QStringLiteral("Harbour FM"));
}

TEST(AddressesTest, PlausibleAddressesAreToldFromSlips)
{
    for (const char* good :
         {"ann@example.org", "a.b+c@sub.example.co.uk", "o'neill@example.org", "x@münchen.example", "用户@例子.广告"})
        EXPECT_TRUE(Addresses::IsPlausible(QString::fromUtf8(good))) << good;
    for (const char* bad :
         {"", "ann", "ann@", "@example.org", "ann@example", "ann@example.", "ann @example.org", "ann@@example.org",
          "ann@exam ple.org", "a..b@example.org", ".a@example.org", "ann@-example.org", "a\nb@example.org"})
        EXPECT_FALSE(Addresses::IsPlausible(QString::fromUtf8(bad))) << bad;
    EXPECT_FALSE(Addresses::IsPlausible(QString(300, u'a') + QStringLiteral("@example.org")));
}

TEST(AddressesTest, TelephoneNumbersMayBeWrittenAsPeopleDo)
{
    for (const char* good : {"07700 900123", "+44 (0)7700 900-123", "60999"})
        EXPECT_TRUE(Addresses::IsPlausibleNumber(QString::fromUtf8(good))) << good;
    for (const char* bad : {"", "Ann", "12", "1234567890123456", "0770O 900123"})
        EXPECT_FALSE(Addresses::IsPlausibleNumber(QString::fromUtf8(bad))) << bad;
}

TEST(AddressesTest, NobodyStandsTwiceAndCaseMakesNoDifference)
{
    EXPECT_EQ(Addresses::Without({QStringLiteral("Ann <a@b.org>"), QStringLiteral("A@B.ORG"), QStringLiteral("c@d.org"),
                                  QStringLiteral("e@f.org")},
                                 {QStringLiteral("See <C@d.org>")}),
              (QStringList{QStringLiteral("Ann <a@b.org>"), QStringLiteral("e@f.org")}));
}

TEST(AddressesTest, WhatIsWrongIsSaidWithTheWordsThatWereTyped)
{
    EXPECT_EQ(Addresses::WhyNotSendable(QString(), QString(), QString(), emtEmail),
              QStringLiteral("Nobody is named in To. Write at least one e-mail address."));
    EXPECT_EQ(
        Addresses::WhyNotSendable(QStringLiteral("a@b.org, anna"), QString(), QString(), emtEmail),
        QStringLiteral("“anna” is no e-mail address. Write it like ann@example.com, and commas between several."));
    EXPECT_EQ(Addresses::WhyNotSendable(QStringLiteral("Ann"), QString(), QString(), emtSMS),
              QStringLiteral("“Ann” is no telephone number. A text message needs one, such as 07700 900123."));
    EXPECT_EQ(Addresses::WhyNotSendable(QString(), QStringLiteral("a@b.org"), QString(), emtEmail), QString());
}
