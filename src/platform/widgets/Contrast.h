// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>

/// Colours that can be read on each other, whatever the desktop's theme and the station's own choices are.
namespace Contrast
{
/// The contrast of two opaque colours, 1 (none) to 21 (black on white), as the accessibility guidelines for web content
/// define it.
double Ratio(const QColor& a, const QColor& b);
/// Black or white, whichever reads better there.
QColor BlackOrWhite(const QColor& background);
/// The text colour itself where it can be read on that background (ratio 3 or more), otherwise the nearest of its
/// shades, towards black or white, that reads well (4.5 or more, or as near as black or white get).
QColor Readable(const QColor& text, const QColor& background);
/// The same for text that has to read well whatever its colour was meant to be.
QColor ReadingWell(const QColor& text, const QColor& background);
/// share of b, 0 to 1, in a.
QColor Blend(const QColor& a, const QColor& b, double share);
} // namespace Contrast
