// SPDX-License-Identifier: Apache-2.0
#include "compose/Addresses.h"

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

TEST(AddressesTest, OfAGroupTheMembersAreTaken)
{
    EXPECT_EQ(Addresses::Split(QStringLiteral("Team: Ann <a@b.org>, c@d.org; e@f.org")),
              (QStringList{QStringLiteral("Ann <a@b.org>"), QStringLiteral("c@d.org"), QStringLiteral("e@f.org")}));
    EXPECT_TRUE(Addresses::Split(QStringLiteral("undisclosed-recipients:;")).isEmpty());
    EXPECT_EQ(Addresses::Split(QStringLiteral("Team: a@b.org")), QStringList{QStringLiteral("Team: a@b.org")});
    EXPECT_EQ(Addresses::Split(QStringLiteral("mailto:a@b.org, tel:07700 900123")),
              (QStringList{QStringLiteral("a@b.org"), QStringLiteral("07700 900123")}));
    EXPECT_EQ(Addresses::Split(QStringLiteral("x@[IPv6:::1], a@b.org;")).size(), 2);
}

TEST(AddressesTest, CommentsBelongToTheirElement)
{
    const QStringList elements =
        Addresses::Split(QStringLiteral("a@b.org (Ann, at (home); \\) ok), (x) <c@d.org>, e@f.org :( , g@h.org"));
    ASSERT_EQ(elements.size(), 4);
    EXPECT_EQ(Addresses::Bare(elements.at(0)), QStringLiteral("a@b.org"));
    EXPECT_EQ(Addresses::DisplayName(elements.at(0)), QStringLiteral("Ann, at (home); ) ok"));
    EXPECT_EQ(Addresses::Bare(elements.at(1)), QStringLiteral("c@d.org"));
    EXPECT_EQ(Addresses::DisplayName(elements.at(1)), QStringLiteral("x"));
    EXPECT_FALSE(Addresses::IsPlausible(Addresses::Bare(elements.at(2))));
    EXPECT_EQ(elements.at(3), QStringLiteral("g@h.org"));
}

TEST(AddressesTest, AForgottenCommaBehindABracketLosesNobody)
{
    EXPECT_EQ(
        Addresses::Split(QStringLiteral("Ann <a@b.org> Bob <c@d.org> e@f.org")),
        (QStringList{QStringLiteral("Ann <a@b.org>"), QStringLiteral("Bob <c@d.org>"), QStringLiteral("e@f.org")}));
    EXPECT_EQ(Addresses::WhyNotSendable(QStringLiteral("<a@b.org> foo"), QString(), QString(), emtEmail),
              QStringLiteral("“foo” is no e-mail address. Write it like ann@example.com, and commas between several."));
}

TEST(AddressesTest, WhatIsOpenedAndNotClosedDoesNotHideTheRest)
{
    EXPECT_EQ(Addresses::Split(QStringLiteral("Ann <a@b.org, Bob <c@d.org>, O\"X <x@y.org>, (e@f.org")),
              (QStringList{QStringLiteral("Ann <a@b.org"), QStringLiteral("Bob <c@d.org>"),
                           QStringLiteral("O\"X <x@y.org>"), QStringLiteral("(e@f.org")}));
    EXPECT_EQ(Addresses::Split(QString(200000, u'(')).size(), 1);
    EXPECT_EQ(Addresses::Split(QString(200000, u'<')).size(), 1);
}

TEST(AddressesTest, OldAndUnusualFormsAreRead)
{
    EXPECT_EQ(Addresses::Bare(QStringLiteral("Ann <@relay.org,@x.org:a@B.org>")), QStringLiteral("a@b.org"));
    EXPECT_EQ(Addresses::Bare(QStringLiteral("Ann <mailto:a@b.org>")), QStringLiteral("a@b.org"));
    EXPECT_EQ(Addresses::Bare(QStringLiteral("\"a b\"@c.org")), QStringLiteral("\"a b\"@c.org"));
    EXPECT_EQ(Addresses::DisplayName(QStringLiteral("Ann \"Bee\" Low <a@b.org>")), QStringLiteral("Ann Bee Low"));
    EXPECT_EQ(Addresses::Bare(QStringLiteral("(only)")), QStringLiteral("(only)"));
    EXPECT_EQ(Addresses::Bare(QString()), QString());
}

TEST(AddressesTest, TheNormalFormIsWhatGoesOut)
{
    EXPECT_EQ(Addresses::Normalised(QStringLiteral("\"Ann\" <a@b.org>;  <c@d.org>; \"Low, Bob\" <b@b.org>; ; anna"),
                                    emtEmail),
              QStringLiteral("Ann <a@b.org>, c@d.org, \"Low, Bob\" <b@b.org>, anna"));
    EXPECT_EQ(Addresses::Normalised(QStringLiteral("\"Ann\" <07700 900123>; Bob"), emtSMS),
              QStringLiteral("07700 900123, Bob"));
    const QString once = Addresses::Normalised(QStringLiteral("\"A \\\"B\\\" \\\\C\" <a@b.org>"), emtEmail);
    EXPECT_EQ(Addresses::Normalised(once, emtEmail), once);
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
