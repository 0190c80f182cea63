// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Contrast.h"

#include "platform/html/Colours.h"

#include <cmath>

namespace
{
constexpr double LowestRatio = 3;
constexpr double GoodRatio = 4.5;
constexpr int Steps = 10;

/// Without the opacity.
quint32 Solid(const QColor& colour)
{
    return colour.rgb() & 0xFFFFFFU;
}

int Mixed(int a, int b, double share)
{
    return static_cast<int>(std::lround(a + (b - a) * share));
}
} // namespace

double Contrast::Ratio(const QColor& a, const QColor& b)
{
    return Colours::Contrast(Solid(a), Solid(b));
}

QColor Contrast::BlackOrWhite(const QColor& background)
{
    const QColor black(0, 0, 0);
    const QColor white(255, 255, 255);
    return Ratio(black, background) >= Ratio(white, background) ? black : white;
}

QColor Contrast::Readable(const QColor& text, const QColor& background)
{
    if (Ratio(text, background) >= LowestRatio)
        return text;
    const QColor end = BlackOrWhite(background);
    for (int step = 1; step < Steps; ++step) {
        const QColor shade = Blend(text, end, static_cast<double>(step) / Steps);
        if (Ratio(shade, background) >= GoodRatio)
            return shade;
    }
    return end;
}

QColor Contrast::Blend(const QColor& a, const QColor& b, double share)
{
    return {Mixed(a.red(), b.red(), share), Mixed(a.green(), b.green(), share), Mixed(a.blue(), b.blue(), share)};
}
