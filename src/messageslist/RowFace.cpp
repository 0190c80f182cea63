// SPDX-License-Identifier: Apache-2.0
#include "messageslist/RowFace.h"

#include "common/GeneralHelper.h"

#include <algorithm>

namespace
{
/// Pixels: a line as it is painted may be a little wider than its letters.
constexpr double Rounding = 2;

QFont BoldOf(QFont font)
{
    font.setBold(true);
    return font;
}
} // namespace

RowFace::RowFace(const QFont& font, double width)
    : Font_(font), Width_(width), Plain_(font), Bold_(BoldOf(font)), Breaker_(BoldOf(font))
{
}

QString RowFace::Fit(const QString& text, const QString& beside, bool isBold) const
{
    const QFontMetricsF& metrics = isBold ? Bold_ : Plain_;
    const double width = beside.isEmpty() ? Width_ : std::max(0.0, Width_ - metrics.horizontalAdvance(beside));
    return GeneralHelper::FitTextToWidth([&](const QString& part) { return metrics.horizontalAdvance(part); }, text,
                                         width);
}

QStringList RowFace::Lines(const QString& text, int most) const
{
    return Breaker_.Break(text, Width_ - Rounding, most);
}

int RowFace::CountLines(const QString& text, int most) const
{
    return Breaker_.Count(text, Width_ - Rounding, most);
}
