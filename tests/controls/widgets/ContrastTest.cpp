// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Contrast.h"

#include <gtest/gtest.h>

TEST(ContrastTest, BlackOnWhiteIs21AndAColourOnItselfIs1)
{
    EXPECT_NEAR(Contrast::Ratio(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(Contrast::Ratio(Qt::white, Qt::black), 21, 0.001);
    EXPECT_NEAR(Contrast::Ratio(Qt::red, Qt::red), 1, 0.001);
}

TEST(ContrastTest, BlackIsChosenOnALightColourAndWhiteOnADarkOne)
{
    EXPECT_EQ(Contrast::BlackOrWhite(QColor(255, 0, 0)), QColor(0, 0, 0));
    EXPECT_EQ(Contrast::BlackOrWhite(QColor(255, 255, 0)), QColor(0, 0, 0));
    EXPECT_EQ(Contrast::BlackOrWhite(QColor(0, 0, 160)), QColor(255, 255, 255));
}

TEST(ContrastTest, AColourThatCanBeReadStaysAsItIs)
{
    EXPECT_EQ(Contrast::Readable(QColor(0, 0, 255), Qt::white), QColor(0, 0, 255));
}

TEST(ContrastTest, AColourThatCannotBeReadIsShadedUntilItReadsWell)
{
    const QColor background(30, 30, 30);
    const QColor shade = Contrast::Readable(QColor(0, 0, 255), background);
    EXPECT_GE(Contrast::Ratio(shade, background), 4.5);
    EXPECT_GT(shade.blue(), shade.red()) << "it is still a blue";
}

TEST(ContrastTest, RedAsTheMarksOfWordsHaveItReadsWellOnBothThemes)
{
    const QColor red(255, 0, 0);
    for (const QColor& ground : {QColor(255, 255, 255), QColor(0x1D, 0x20, 0x23)}) {
        const QColor shade = Contrast::ReadingWell(red, ground);
        EXPECT_GE(Contrast::Ratio(shade, ground), 4.5) << qPrintable(ground.name());
        EXPECT_GT(shade.red(), shade.green() + 100) << "it is still a red";
    }
}

TEST(ContrastTest, AColourOnItselfGivesWayToBlackOrWhiteAtMost)
{
    for (const QColor& colour : {QColor(255, 0, 0), QColor(119, 119, 119), QColor(0, 0, 0), QColor(255, 255, 255)})
        EXPECT_GE(Contrast::Ratio(Contrast::Readable(colour, colour), colour), 4) << qPrintable(colour.name());
}

TEST(ContrastTest, ABlendLiesBetweenItsColours)
{
    EXPECT_EQ(Contrast::Blend(Qt::black, Qt::white, 0), QColor(0, 0, 0));
    EXPECT_EQ(Contrast::Blend(Qt::black, Qt::white, 1), QColor(255, 255, 255));
    EXPECT_EQ(Contrast::Blend(QColor(200, 0, 100), QColor(100, 0, 200), 0.5), QColor(150, 0, 150));
}
