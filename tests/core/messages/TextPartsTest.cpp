// SPDX-License-Identifier: Apache-2.0
#include "messages/TextParts.h"

#include <gtest/gtest.h>

namespace
{
void ExpectParts(const QString& text, int parts, int left)
{
    EXPECT_EQ(CountTextParts(text).Parts, parts) << text.size();
    EXPECT_EQ(CountTextParts(text).Left, left) << text.size();
}
} // namespace

TEST(TextParts, AnEmptyTextHasNone)
{
    ExpectParts(QString(), 0, 160);
    EXPECT_FALSE(CountTextParts(QString()).Is16Bit);
}

TEST(TextParts, AMessageHolds160CharactersAndEachOfSeveral153)
{
    ExpectParts(QString(1, u'a'), 1, 159);
    ExpectParts(QString(160, u'a'), 1, 0);
    ExpectParts(QString(161, u'a'), 2, 2 * 153 - 161);
    ExpectParts(QString(306, u'a'), 2, 0);
    ExpectParts(QString(307, u'a'), 3, 3 * 153 - 307);
}

TEST(TextParts, AccentsOfTheAlphabetCountOnceAndItsExtensionTwice)
{
    EXPECT_EQ(CountTextParts(QStringLiteral("\u00E9\u00C4\u00DF\u0394@\n")).Units, 6);
    EXPECT_EQ(CountTextParts(QStringLiteral("\u20AC{}[]~|^\\")).Units, 18);
    EXPECT_FALSE(CountTextParts(QStringLiteral("\u20AC{}[]~|^\\")).Is16Bit);
    ExpectParts(QString(80, u'{'), 1, 0);
}

TEST(TextParts, ACharacterThatCountsTwiceIsNotDivided)
{
    // The 153rd place of the first message stays empty.
    const QString text = QString(152, u'a') + u'{' + QString(10, u'a');
    EXPECT_EQ(CountTextParts(text).Units, 164);
    ExpectParts(text, 2, 153 - 12);
}

TEST(TextParts, AnyOtherCharacterMakesAllOfItSixteenBit)
{
    EXPECT_TRUE(CountTextParts(QStringLiteral("caf\u00EA")).Is16Bit) << "this accent is not of the alphabet";
    EXPECT_EQ(CountTextParts(QStringLiteral("caf\u00EA")).First16Bit, QStringLiteral("\u00EA"));
    const QChar letter(0x0416);
    ExpectParts(QString(70, letter), 1, 0);
    ExpectParts(QString(71, letter), 2, 2 * 67 - 71);
    ExpectParts(QString(134, letter), 2, 0);
    ExpectParts(QString(135, letter), 3, 3 * 67 - 135);
}

TEST(TextParts, APictureCharacterHasTwoUnitsAndIsNotDivided)
{
    const QString picture = QStringLiteral("\U0001F3B5");
    EXPECT_EQ(CountTextParts(picture).Units, 2);
    EXPECT_EQ(CountTextParts(picture).First16Bit, picture);
    // The 67th place of the first message stays empty.
    ExpectParts(picture.repeated(40), 2, 67 - 14);
    EXPECT_TRUE(CountTextParts(QString(QChar(0xD83C))).Is16Bit) << "half a character is one of 16 bits";
}
