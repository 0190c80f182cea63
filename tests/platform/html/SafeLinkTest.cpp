// SPDX-License-Identifier: Apache-2.0
#include "platform/html/SafeLink.h"

#include <gtest/gtest.h>

namespace
{
LinkKind KindOf(const char16_t* address)
{
    const SafeLink link = ReadLink(QString::fromUtf16(address));
    EXPECT_EQ(link.Address.isEmpty(), link.Kind != LinkKind::Safe);
    return link.Kind;
}
QString AddressOf(const char16_t* address)
{
    return ReadLink(QString::fromUtf16(address)).Address;
}
} // namespace

TEST(SafeLinkTest, WebAndMailAddressesAreSafe)
{
    EXPECT_EQ(AddressOf(u"http://example.com"), QStringLiteral("http://example.com"));
    EXPECT_EQ(AddressOf(u"https://example.com/a?b=c&d=%22#e"), QStringLiteral("https://example.com/a?b=c&d=%22#e"));
    EXPECT_EQ(AddressOf(u"mailto:ann@example.com?subject=Hello%20you"),
              QStringLiteral("mailto:ann@example.com?subject=Hello%20you"));
    EXPECT_EQ(AddressOf(u"  HTTPS://Example.COM/Path "), QStringLiteral("https://example.com/Path"));
    EXPECT_EQ(AddressOf(u"http://example.com/a b\n/c"), QStringLiteral("http://example.com/a%20b/c"));
}

TEST(SafeLinkTest, ANameThatLooksLikeAnotherIsShownInItsEncodedForm)
{
    EXPECT_EQ(AddressOf(u"http://ex\u0430mple.com/"), QStringLiteral("http://xn--exmple-4nf.com/"));
}

TEST(SafeLinkTest, WhatRunsOrReachesIntoTheMachineIsActive)
{
    for (const char16_t* address :
         {u"javascript:alert(1)", u"JaVaScRiPt:alert(1)", u" \u0001javascript:alert(1)", u"java\tscript:alert(1)",
          u"java\nscript\r:alert(1)", u"java\u200Bscript:1", u"\u00A0javascript:1", u"data:text/html,x", u"vbscript:x",
          u"file:///etc/passwd", u"FILE://host/share", u"view-source:javascript:1", u"blob:x"})
        EXPECT_EQ(KindOf(address), LinkKind::Active) << qPrintable(QString::fromUtf16(address));
}

TEST(SafeLinkTest, OtherAndBrokenAddressesAreUnknown)
{
    for (const char16_t* address : {u"", u"x", u"/path", u"//example.com/x", u"tel:+441", u"ftp://example.com",
                                    u"http:", u"http://", u"https:///x", u"mailto:", u"javascript", u"cid:x",
                                    u"http//example.com", u"\\\\host\\share", u"ms-word:x", u":http://x"})
        EXPECT_EQ(KindOf(address), LinkKind::Unknown) << qPrintable(QString::fromUtf16(address));
    EXPECT_EQ(ReadLink(QStringLiteral("http://example.com/") + QString(10'000, u'x')).Kind, LinkKind::Unknown);
}

TEST(SafeLinkTest, AnAddressHasNoCharacterThatEndsAnAttribute)
{
    const QString address = AddressOf(u"http://example.com/\"><script>'`\u201C");
    EXPECT_FALSE(address.isEmpty());
    for (const char16_t character : {u'"', u'<', u'>', u' '})
        EXPECT_FALSE(address.contains(QChar(character))) << qPrintable(address);
}

TEST(SafeLinkTest, APlaceOnThePageIsNothingToWarnOf)
{
    EXPECT_EQ(KindOf(u"#top"), LinkKind::Place);
}

TEST(SafeLinkTest, AContentIdIsPercentDecoded)
{
    EXPECT_EQ(ContentIDOf(QStringLiteral("cid:logo%40example.com")), QStringLiteral("logo@example.com"));
    EXPECT_EQ(ContentIDOf(QStringLiteral("CID:logo@example.com")), QStringLiteral("logo@example.com"));
    EXPECT_EQ(ContentIDOf(QStringLiteral(" cid:%3Clogo@x%3E ")), QStringLiteral("logo@x"));
    EXPECT_EQ(ContentIDOf(QStringLiteral("http://example.com")), QString());
    EXPECT_EQ(ContentIDOf(QStringLiteral("cid:")), QString());
}
