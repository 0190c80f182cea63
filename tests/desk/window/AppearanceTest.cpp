// SPDX-License-Identifier: Apache-2.0

// The program's own colours are to be read.

#include "window/Appearance.h"

#include <QApplication>
#include <QPalette>

#include <gtest/gtest.h>

#include <cmath>

namespace
{
/// As WCAG measures it.
double Luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double ContrastOf(const QColor& one, const QColor& other)
{
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

class AppearanceTest : public testing::TestWithParam<const char*>
{
protected:
    void SetUp() override { Appearance::Apply(QLatin1String(GetParam())); }
    void TearDown() override { Appearance::Apply(QString()); }
};
} // namespace

TEST_P(AppearanceTest, TextAndHintsStandOutFromWhatTheyLieOn)
{
    constexpr double readable = 4.5;
    const QPalette palette = QApplication::palette();
    for (const QPalette::ColorRole ground : {QPalette::Window, QPalette::Base, QPalette::AlternateBase}) {
        for (const QPalette::ColorRole text : {QPalette::WindowText, QPalette::PlaceholderText, QPalette::Link})
            EXPECT_GE(ContrastOf(palette.color(ground), palette.color(text)), readable) << text << " on " << ground;
    }
    EXPECT_GE(ContrastOf(palette.color(QPalette::Button), palette.color(QPalette::ButtonText)), readable);
    EXPECT_GE(ContrastOf(palette.color(QPalette::Highlight), palette.color(QPalette::HighlightedText)), readable);
}

INSTANTIATE_TEST_SUITE_P(Colours, AppearanceTest, testing::Values("light", "dark"),
                         [](const auto& colours) { return std::string(colours.param); });
