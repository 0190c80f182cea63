// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Contrast.h"

#include "platform/html/Colours.h"

namespace
{
/// Without the opacity.
quint32 Solid(const QColor& colour)
{
    return colour.rgb() & 0xFFFFFFU;
}

QColor Opaque(quint32 colour)
{
    return {static_cast<int>(colour >> 16U), static_cast<int>((colour >> 8U) & 0xFFU),
            static_cast<int>(colour & 0xFFU)};
}

QColor Shaded(const QColor& text, const QColor& background, double least)
{
    const quint32 shade = Colours::Readable(Solid(text), Solid(background), least);
    return shade == Solid(text) ? text : Opaque(shade);
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
    return Shaded(text, background, Colours::LegibleContrast);
}

QColor Contrast::ReadingWell(const QColor& text, const QColor& background)
{
    return Shaded(text, background, Colours::GoodContrast);
}

QColor Contrast::Blend(const QColor& a, const QColor& b, double share)
{
    return Opaque(Colours::Blend(Solid(a), Solid(b), share));
}
