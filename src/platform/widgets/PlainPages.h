// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QSizeF>
#include <QString>

class QPainter;

/// A text on pages in lines of so many columns. What a line holds is counted and not measured, so that millions of
/// characters are on their pages in a moment, and no text is too much; a line that comes out wider than its page is
/// drawn narrower. A value of who shows it.
class PlainPages
{
public:
    PlainPages() = default;
    /// size: of a page's text, in millimetres. Lines end at "\n" and where they are full, behind a word where there
    /// is one.
    PlainPages(const QString& text, const QSizeF& size);

    /// 0 for an empty text.
    int PageCount() const;
    /// Draws one page, 0 for the first, from the painter's origin.
    void PaintPage(QPainter& painter, int page, double dotsPerMillimetre) const;

private:
    QString Text_;
    QSizeF Size_;
    qsizetype LinesOnPage_ = 1;
    QList<qsizetype> Begins_; ///< Of the lines.
};
