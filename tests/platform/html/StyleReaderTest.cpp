// SPDX-License-Identifier: Apache-2.0
#include "platform/html/StyleReader.h"

#include <gtest/gtest.h>

namespace
{
PageStyle Read(const char* declarations)
{
    return ReadStyle(QString::fromUtf8(declarations));
}
} // namespace

TEST(StyleReaderTest, TheUsualDeclarationsAreRead)
{
    const PageStyle style = Read("COLOR: Red !important; background:#fff none; font-weight:700; font-style:italic;"
                                 "text-decoration:underline; text-align:Center; width:50%; white-space:pre-line");
    EXPECT_EQ(style.Colour, 0xFF0000U);
    EXPECT_EQ(style.Background, 0xFFFFFFU);
    EXPECT_EQ(style.Bold, true);
    EXPECT_EQ(style.Italic, true);
    EXPECT_EQ(style.Underline, true);
    EXPECT_EQ(style.StrikeOut, false);
    EXPECT_EQ(style.Align, QStringLiteral("center"));
    EXPECT_EQ(style.Width, QStringLiteral("50%"));
    EXPECT_EQ(style.KeepsBlanks, true);
    EXPECT_FALSE(style.HasRemoteContent || style.HasActiveContent);
}

TEST(StyleReaderTest, LengthsAreInPixelsAndWithinLimits)
{
    const PageStyle style = Read("margin:12pt 1in; padding:1px 2px 3px; margin-left:-50px; padding-left:9999px");
    EXPECT_EQ(style.Margin[PageStyle::Top], 16);
    EXPECT_EQ(style.Margin[PageStyle::Right], 96);
    EXPECT_EQ(style.Margin[PageStyle::Bottom], 16);
    EXPECT_FALSE(style.Margin[PageStyle::Left]);
    EXPECT_EQ(style.Padding[PageStyle::Bottom], 3);
    EXPECT_FALSE(style.Padding[PageStyle::Left]);
    EXPECT_EQ(ReadWidth(QStringLiteral("120px")), QStringLiteral("120"));
    for (const char* text : {"", "0", "-5", "1e308", "nan", "inf", "101%", "99999", "calc(1px)", "50%%", "5 0"})
        EXPECT_EQ(ReadWidth(QLatin1String(text)), QString()) << text;
}

TEST(StyleReaderTest, FontsAreRead)
{
    const PageStyle style = Read("font: italic bold 12pt/1.5 'Comic Sans MS', Arial, x{y");
    EXPECT_EQ(style.Italic, true);
    EXPECT_EQ(style.Bold, true);
    EXPECT_DOUBLE_EQ(style.FontPoints.value_or(0), 12);
    EXPECT_EQ(style.FontFamily, QStringLiteral("'Comic Sans MS', 'Arial'"));
    EXPECT_DOUBLE_EQ(Read("font-size:16px").FontPoints.value_or(0), 12);
    EXPECT_DOUBLE_EQ(Read("font-size:1.5em").FontTimes.value_or(0), 1.5);
    EXPECT_DOUBLE_EQ(Read("font-size:80%").FontTimes.value_or(0), 0.8);
    for (const char* text :
         {"font-size:0", "font-size:-1px", "font-size:5", "font-size:0px", "font-size:nanpx", "font-size:x"})
        EXPECT_FALSE(Read(text).FontPoints || Read(text).FontTimes) << text;
}

TEST(StyleReaderTest, WhatWouldBeFetchedIsNoticedHoweverItIsWritten)
{
    for (const char* text :
         {"background:url(http://x)", "background:URL('x')", "background:u\\72l(x)", "background:ur/**/l(x)",
          "background:\\55 rl(x)", "background: url (x)", "background:image-set('x')", "@import 'x'",
          "list-style:url(x)", "background:\\000075rl(x)"}) {
        EXPECT_TRUE(Read(text).HasRemoteContent) << text;
        EXPECT_FALSE(Read(text).Background) << text;
    }
    EXPECT_TRUE(NamesRemoteContent(QStringLiteral("p { color: red } @font-face { src: url(x) }")));
    EXPECT_FALSE(NamesRemoteContent(QStringLiteral("p { color: red }")));
}

TEST(StyleReaderTest, WhatWouldRunIsNoticed)
{
    for (const char* text : {"width:expression(alert(1))", "width:exp/**/ression(1)", "behavior:url(x)",
                             "-moz-binding:url(x)", "background:url(javascript:1)"})
        EXPECT_TRUE(Read(text).HasActiveContent) << text;
}

TEST(StyleReaderTest, BrokenDeclarationsAreLeftOutAndTheRestIsRead)
{
    EXPECT_EQ(Read(";;:;color;:red;x:y;color:blue;'").Colour, 0x0000FFU);
    EXPECT_EQ(Read("font-family:'a;color:red").Colour, std::nullopt);
    EXPECT_EQ(Read("\\").Colour, std::nullopt);
    EXPECT_EQ(Read("/*").Colour, std::nullopt);
    EXPECT_EQ(Read("position:fixed;top:0;color:#010203;z-index:9").Colour, 0x010203U);
}
