// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/RowMark.h"

#include <QStyledItemDelegate>

class FlexGridModel;
struct CellStyle;

/// Draws the cells of a FlexGrid from its model. A cell's own background stays recognisable in a selected row, and its
/// text is readable on whatever it stands on, in a light and in a dark theme.
class FlexGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    static QColor BackgroundOf(const CellStyle& style, const QStyleOptionViewItem& option);
    static QColor TextColourOf(const CellStyle& style, const QStyleOptionViewItem& option);
    /// The lines that text is drawn in: as many as height has room for, at least one, none wider than width. With wrap,
    /// a text that has line breaks keeps them (a line that is too long is elided), and one that has none is wrapped.
    static QStringList Lines(const QString& text, const QFont& font, int width, int height, bool wrap);
    /// The line as it fits into that width: what it holds between the marks of a first strong isolate is shortened
    /// first.
    static QString Shortened(const QString& line, const QFontMetrics& metrics, int width);

private:
    /// The width that the picture takes from the text.
    static int PaintPicture(QPainter* painter, const QStyleOptionViewItem& option, const QIcon& picture, bool alone);
    /// What stands at the end of a cell's last line.
    struct LineEnd
    {
        QString Note;
        int NoteWidth = 0;
        QList<RowMark> Marks;
        int Width = 0; ///< Of all of it; 0 for nothing.
    };

    static LineEnd EndOf(const QStyleOptionViewItem& option, const QStringList& lines, const QString& note,
                         const QList<RowMark>& marks, int width);
    static QRect PaintText(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                           const QStringList& lines, Qt::Alignment alignment);
    static void PaintEnd(QPainter* painter, const QStyleOptionViewItem& option, const QRect& line, const LineEnd& end,
                         const CellStyle& style);
};
