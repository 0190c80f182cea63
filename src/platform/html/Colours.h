#pragma once

#include <QStringView>

#include <optional>

/// Colours of pages as 0xRRGGBB.
namespace Colours
{
/// A colour as style sheets and attributes write it: a name, "#rgb", "#rrggbb" (an alpha value behind is ignored),
/// "rgb(r, g, b)" or six digits without their sign. Nothing for what is no colour or cannot be seen at all.
std::optional<quint32> Read(QStringView text);
/// "#rrggbb".
QString Text(quint32 colour);
/// The contrast of two colours, 1 (the same) to 21 (black on white), as the accessibility guidelines compute it.
double Contrast(quint32 one, quint32 other);
} // namespace Colours
