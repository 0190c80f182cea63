// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Icons.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

namespace
{
/// What the controls and the desk ask for.
const QStringList WantedKeys = {
    QStringLiteral("smallopenfolder"),
    QStringLiteral("smallclosedfolder"),
    QStringLiteral("search"),
    QStringLiteral("song"),
    QStringLiteral("stop"),
    QStringLiteral("head"),
    QStringLiteral("trash"),
    QStringLiteral("trashfull"),
    QStringLiteral("foldersaved"),
    QStringLiteral("foldersent"),
    QStringLiteral("foldersending"),
    QStringLiteral("folderdrafts"),
    QStringLiteral("folderinbox"),
    QStringLiteral("folderautomatic"),
    QStringLiteral("new"),
    QStringLiteral("newprize"),
    QStringLiteral("newwinner"),
    QStringLiteral("reply"),
    QStringLiteral("replyall"),
    QStringLiteral("forward"),
    QStringLiteral("delete"),
    QStringLiteral("print"),
    QStringLiteral("save"),
    QStringLiteral("attach"),
    QStringLiteral("send"),
    QStringLiteral("draft"),
    QStringLiteral("users"),
    QStringLiteral("open"),
    QStringLiteral("refresh"),
    QStringLiteral("unread"),
    QStringLiteral("read"),
    QStringLiteral("warning"),
    QStringLiteral("tolva"),
    QStringLiteral("mail"),
    QStringLiteral("textmessage"),
    QStringLiteral("answered"),
    QStringLiteral("onair"),
    QStringLiteral("urgent"),
    QStringLiteral("lowpriority"),
};

/// Puts the application's palette back.
class IconsTest : public testing::Test
{
protected:
    void TearDown() override { QApplication::setPalette(Palette_); }

    static void SetTextColour(const QColor& colour)
    {
        QPalette palette = QApplication::palette();
        palette.setColor(QPalette::WindowText, colour);
        QApplication::setPalette(palette);
    }

    static QImage Drawn(const QString& key, int side, const QColor& ground, QIcon::Mode mode = QIcon::Normal)
    {
        QImage image(side, side, QImage::Format_ARGB32);
        image.fill(ground);
        QPainter painter(&image);
        Icons::Get(key).paint(&painter, QRect(0, 0, side, side), Qt::AlignCenter, mode);
        return image;
    }

    /// Pixels that differ clearly in lightness from the ground.
    static int ClearPixels(const QImage& image, const QColor& ground)
    {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += qAbs(qGray(image.pixel(x, y)) - qGray(ground.rgb())) > 40;
        }
        return count;
    }

private:
    QPalette Palette_ = QApplication::palette();
};
} // namespace

TEST_F(IconsTest, EveryKeyGivesAnIconThatIsSeenOnLightAndOnDark)
{
    for (const QColor& ground : {QColor(0xF4F4F4), QColor(0x202326)}) {
        SetTextColour(ground.lightness() > 127 ? QColor(0x101010) : QColor(0xF0F0F0));
        for (const QString& key : WantedKeys) {
            ASSERT_FALSE(Icons::Get(key).isNull()) << key.toStdString();
            for (const int side : {16, 32}) {
                EXPECT_GT(ClearPixels(Drawn(key, side, ground), ground), side * side / 12)
                    << key.toStdString() << " at " << side << " on " << ground.name().toStdString();
            }
        }
    }
}

TEST_F(IconsTest, ThereAreNoOtherKeysThanThoseThatAreUsed)
{
    QStringList wanted = WantedKeys;
    wanted.sort();
    EXPECT_EQ(Icons::Keys(), wanted);
}

TEST_F(IconsTest, AnUnknownKeyGivesANullIcon)
{
    EXPECT_TRUE(Icons::Get(QStringLiteral("nothing")).isNull());
    EXPECT_TRUE(Icons::Get(QString()).isNull());
    EXPECT_TRUE(Icons::Get(QStringLiteral("../icons/reply")).isNull());
}

TEST_F(IconsTest, CaseMakesNoDifferenceToAKey)
{
    EXPECT_FALSE(Icons::Get(QStringLiteral("TrashFull")).isNull());
}

TEST_F(IconsTest, TheLinesFollowThePaletteThatIsInForceWhenTheyAreDrawn)
{
    const QIcon icon = Icons::Get(QStringLiteral("attach"));
    SetTextColour(Qt::red);
    const QImage red = icon.pixmap(32, 32).toImage();
    SetTextColour(Qt::blue);
    const QImage blue = icon.pixmap(32, 32).toImage();
    EXPECT_NE(red, blue);
    int redPixels = 0;
    int bluePixels = 0;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            redPixels += red.pixelColor(x, y) == QColor(Qt::red);
            bluePixels += blue.pixelColor(x, y) == QColor(Qt::blue);
        }
    }
    EXPECT_GT(redPixels, 0);
    EXPECT_GT(bluePixels, 0);
}

TEST_F(IconsTest, ADisabledIconIsFainter)
{
    const QColor ground(Qt::white);
    SetTextColour(Qt::black);
    EXPECT_NE(Drawn(QStringLiteral("reply"), 32, ground), Drawn(QStringLiteral("reply"), 32, ground, QIcon::Disabled));
}

TEST_F(IconsTest, AnIconIsAsSharpAsTheScreen)
{
    const QPixmap pixmap = Icons::Get(QStringLiteral("reply")).pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(pixmap.size(), QSize(32, 32));
    EXPECT_DOUBLE_EQ(pixmap.devicePixelRatio(), 2.0);
}
