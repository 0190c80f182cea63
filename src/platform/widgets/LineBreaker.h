// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFontMetricsF>
#include <QHash>
#include <QStringList>

#include <array>

/// Breaks texts into lines, fast enough for every row of a long list: it adds up the widths of single characters, which
/// it measures once, so that a line is at most as wide as it says where letters join or stand closer. A plain value.
class LineBreaker
{
public:
    explicit LineBreaker(const QFont& font);

    /// The lines of a text that has no line breaks, between its words where they fit on a line. The last of the most
    /// lines holds all that is left, however long. At least one line. width: pixels.
    QStringList Break(const QString& text, double width, int most) const;
    /// How many those are.
    int Count(const QString& text, double width, int most) const;

private:
    double WidthAt(const QString& text, qsizetype place, qsizetype& length) const;
    qsizetype EndOfLine(const QString& text, qsizetype start, double width) const;

    QFontMetricsF Metrics_;
    mutable std::array<float, 256> Plain_; ///< Of the first characters; negative: not measured.
    mutable QHash<char32_t, float> Others_;
};
