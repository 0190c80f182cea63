// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/LineBreaker.h"

#include <QFont>
#include <QFontMetricsF>

/// What the texts of a list's rows are fitted to: a font and the width of the column that they stand in. Rows share
/// one. On the user interface thread.
class RowFace
{
public:
    RowFace(const QFont& font, double width);

    bool Is(const QFont& font, double width) const { return Font_ == font && Width_ == width; }
    /// Texts that are made from now on fit these.
    void Change(const QFont& font, double width) { *this = RowFace(font, width); }
    /// A text cut to the width, less that of what stands beside it. isBold: a bold text is wider.
    QString Fit(const QString& text, const QString& beside, bool isBold) const;
    /// The lines of a text, the same for bold and for plain letters, so that reading a message moves none.
    QStringList Lines(const QString& text, int most) const;
    int CountLines(const QString& text, int most) const;

private:
    QFont Font_;
    double Width_;
    QFontMetricsF Plain_;
    QFontMetricsF Bold_;
    LineBreaker Breaker_;
};
