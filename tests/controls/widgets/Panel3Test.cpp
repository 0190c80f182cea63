// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Panel3.h"

#include "platform/widgets/SystemColour.h"

#include <QImage>

#include <gtest/gtest.h>

namespace
{
bool HasDarkPixel(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).lightness() < 60)
                return true;
        }
    }
    return false;
}
} // namespace

TEST(Panel3Test, ItFillsItselfWithItsColour)
{
    Panel3 panel;
    panel.resize(40, 20);
    EXPECT_EQ(panel.BackColour(), SystemColour::ButtonFace);
    panel.SetBackColour(0xD1A89F);
    EXPECT_EQ(panel.grab().toImage().pixelColor(20, 10), QColor(0x9F, 0xA8, 0xD1));
}

TEST(Panel3Test, TheCaptionCanBeReadOnALightColourInADarkTheme)
{
    Panel3 panel;
    QPalette dark;
    dark.setColor(QPalette::WindowText, Qt::white);
    panel.setPalette(dark);
    panel.SetBackColour(0x9CE4FF);
    panel.resize(200, 30);
    EXPECT_FALSE(HasDarkPixel(panel.grab().toImage()));
    panel.SetCaption(QStringLiteral("Personal Message"));
    EXPECT_TRUE(HasDarkPixel(panel.grab().toImage()));
    EXPECT_EQ(panel.accessibleName(), QStringLiteral("Personal Message"));
}

TEST(Panel3Test, TheBorderAndVisibilityAreProperties)
{
    Panel3 panel;
    EXPECT_EQ(panel.BorderStyle(), Panel3::None);
    EXPECT_TRUE(panel.setProperty("BorderStyle", Panel3::FixedSingle));
    EXPECT_EQ(panel.BorderStyle(), Panel3::FixedSingle);
    QWidget window;
    auto* child = new Panel3(&window);
    EXPECT_TRUE(child->Visible());
    EXPECT_TRUE(child->setProperty("Visible", false));
    EXPECT_TRUE(child->isHidden());
}

TEST(Panel3Test, TheBevelIsLightAboveWhenRaisedAndBelowWhenInset)
{
    Panel3 panel;
    panel.resize(60, 20);
    panel.SetBackColour(0x808080);
    // A share of the height, whatever the screen's scale is.
    const auto edge = [&panel](double share) {
        const QImage image = panel.grab().toImage();
        return image.pixelColor(image.width() / 2, qRound(share * (image.height() - 1))).lightness();
    };
    EXPECT_EQ(panel.Bevel(), Panel3::NoBevel);
    EXPECT_EQ(edge(0), edge(1));
    EXPECT_TRUE(panel.setProperty("Bevel", Panel3::RaisedBevel));
    EXPECT_GT(edge(0), edge(0.5));
    EXPECT_LT(edge(1), edge(0.5));
    panel.SetBevel(Panel3::InsetBevel);
    EXPECT_LT(edge(0), edge(0.5));
    EXPECT_GT(edge(1), edge(0.5));
}
