// SPDX-License-Identifier: Apache-2.0
#include "platform/html/Colours.h"

#include <gtest/gtest.h>

TEST(ColoursTest, AllWaysOfWritingAColourAreRead)
{
    for (const char16_t* text : {u"#f80", u"#FF8800", u"#ff8800cc", u"rgb(255, 136, 0)", u"rgba(255,136,0,0.5)",
                                 u"RGB(100%, 53.4%, 0%)", u"rgb(255 136 0 / 50%)", u"ff8800", u" #f80f "})
        EXPECT_EQ(Colours::Read(text).value_or(1), 0xFF8800U) << qPrintable(QString::fromUtf16(text));
    EXPECT_EQ(Colours::Read(u"DarkSlateGray").value_or(1), 0x2F4F4FU);
    EXPECT_EQ(Colours::Read(u"aliceblue").value_or(1), 0xF0F8FFU);
    EXPECT_EQ(Colours::Read(u"yellowgreen").value_or(1), 0x9ACD32U);
}

TEST(ColoursTest, WhatIsNoColourOrCannotBeSeenIsNone)
{
    for (const char16_t* text :
         {u"", u"#", u"#12", u"#gggggg", u"red;", u"redd", u"transparent", u"inherit", u"windowtext", u"rgb(1,2)",
          u"rgb(a,b,c)", u"rgba(0,0,0,0)", u"rgb(nan,0,0)", u"url(x)", u"rgb", u"rgb("})
        EXPECT_FALSE(Colours::Read(text)) << qPrintable(QString::fromUtf16(text));
}

TEST(ColoursTest, ContrastGoesFromOneToTwentyOne)
{
    EXPECT_DOUBLE_EQ(Colours::Contrast(0, 0), 1);
    EXPECT_NEAR(Colours::Contrast(0, 0xFFFFFF), 21, 0.001);
    EXPECT_EQ(Colours::Text(0x00FF0A), QStringLiteral("#00ff0a"));
}

TEST(ColoursTest, OldAttributesAreReadInTheWayOfBrowsers)
{
    const std::pair<const char16_t*, quint32> colours[] = {
        {u"#FF00", 0xFF0000},       {u"#FF0000", 0xFF0000},
        {u"ff0000", 0xFF0000},      {u" Red ", 0xFF0000},
        {u"#f80", 0xFF8800},        {u"f80", 0x0F0800},
        {u"chucknorris", 0xC00000}, {u"#", 0},
        {u"#00FF", 0x00FF00},       {u"#0000FF", 0x0000FF},
        {u"#FF", 0x0F0F00},         {u"0000FF00000000FF0000000000", 0xFF0F00},
    };
    for (const auto& [text, colour] : colours)
        EXPECT_EQ(Colours::ReadAttribute(text).value_or(1), colour) << qPrintable(QString::fromUtf16(text));
    EXPECT_FALSE(Colours::ReadAttribute(u""));
    EXPECT_FALSE(Colours::ReadAttribute(u"transparent"));
    EXPECT_TRUE(Colours::ReadAttribute(QString(100'000, u'f')));
}
