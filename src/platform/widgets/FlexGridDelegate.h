// SPDX-License-Identifier: Apache-2.0
#pragma once

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

private:
    /// The width that the picture takes from the text.
    static int PaintPicture(QPainter* painter, const QStyleOptionViewItem& option, const QIcon& picture, bool alone);
    static void PaintText(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                          const QString& text, Qt::Alignment alignment);
    static void PaintNote(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                          const QString& note, const CellStyle& style);
};
