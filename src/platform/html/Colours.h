// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringView>

#include <optional>

/// Colours of pages as 0xRRGGBB.
namespace Colours
{
/// A colour as style sheets write it: a name, "#rgb", "#rrggbb" (an alpha value behind is ignored),
/// "rgb(r, g, b)" or six digits without their sign. Nothing for what is no colour or cannot be seen at all.
std::optional<quint32> Read(QStringView text);
/// A colour as the attributes "color", "bgcolor" and "text" hold it, read in the way of all browsers (HTML standard,
/// "rules for parsing a legacy color value"): what is no digit counts as 0, and digits that are missing are added at
/// the end, so that "#FF00" is red. Nothing for an empty value and "transparent".
std::optional<quint32> ReadAttribute(QStringView text);
/// "#rrggbb".
QString Text(quint32 colour);
/// The contrast of two colours, 1 (the same) to 21 (black on white), as the accessibility guidelines compute it.
double Contrast(quint32 one, quint32 other);
/// share of other, 0 to 1, in one.
quint32 Blend(quint32 one, quint32 other, double share);
/// Contrasts from which on text can be read, and is read well.
constexpr double LegibleContrast = 3;
constexpr double GoodContrast = 4.5;
/// The colour itself where its contrast to that ground is the least one or more, otherwise the nearest of its shades,
/// towards black or white, that reads well, or as near as black or white get.
quint32 Readable(quint32 colour, quint32 ground, double least = GoodContrast);
} // namespace Colours
