// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/SystemColour.h"

#include "platform/widgets/Twips.h"

#include <QPalette>
#include <QWidget>

#include <gtest/gtest.h>

TEST(SystemColourTest, RedStandsInTheLowByte)
{
    const QPalette palette;
    EXPECT_EQ(SystemColour::ToColour(255, palette), QColor(255, 0, 0));
    EXPECT_EQ(SystemColour::ToColour(0xD1A89F, palette), QColor(0x9F, 0xA8, 0xD1));
    EXPECT_EQ(SystemColour::FromColour(QColor(0x9F, 0xA8, 0xD1)), 0xD1A89F);
}

TEST(SystemColourTest, AColourOfTheDesktopFollowsThePalette)
{
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(10, 20, 30));
    palette.setColor(QPalette::Text, QColor(200, 210, 220));
    palette.setColor(QPalette::Button, QColor(50, 60, 70));
    EXPECT_EQ(SystemColour::ToColour(SystemColour::WindowBackground, palette), QColor(10, 20, 30));
    EXPECT_EQ(SystemColour::ToColour(SystemColour::WindowText, palette), QColor(200, 210, 220));
    EXPECT_EQ(SystemColour::ToColour(SystemColour::ButtonFace, palette), QColor(50, 60, 70));
    EXPECT_TRUE(SystemColour::IsSystemColour(SystemColour::ButtonFace));
    EXPECT_FALSE(SystemColour::IsSystemColour(255));
}

TEST(TwipsTest, AnInchIs1440OfThem)
{
    const QWidget widget;
    EXPECT_EQ(Twips::ToPixels(widget, 1440), widget.logicalDpiX());
    EXPECT_DOUBLE_EQ(Twips::FromPixels(widget, widget.logicalDpiX()), 1440);
    EXPECT_EQ(Twips::ToPixels(widget, -15), -qRound(15.0 / 1440 * widget.logicalDpiX()));
}
