// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/FlexGridDelegate.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/FlexGridModel.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <QTextLayout>
#include <QWidget>

#include <algorithm>

namespace
{
constexpr int Padding = 4;
/// How much of the selection's colour goes into a cell that has a background of its own.
constexpr double SelectedShare = 0.3;
/// How much of the selection's colour is left in a grid that does not have the focus.
constexpr double UnfocusedShare = 0.45;
constexpr double SeparatorShare = 0.12;
/// How much of a cell's width a note takes at most, and of the selection's colour is in its ground.
constexpr double NoteShare = 0.7;
constexpr double NoteGroundShare = 0.25;

bool IsSelected(const QStyleOptionViewItem& option)
{
    return option.state.testFlag(QStyle::State_Selected);
}

bool HasFocus(const QStyleOptionViewItem& option)
{
    return option.widget != nullptr && option.widget->hasFocus() && option.state.testFlag(QStyle::State_Active);
}

/// What can be seen of a cell. Where nothing scrolls sideways, what lies beyond the edge stays hidden, so a text ends
/// before it.
QRect SeenOf(const QStyleOptionViewItem& option)
{
    const auto* grid = qobject_cast<const QAbstractScrollArea*>(option.widget);
    QRect seen = option.rect;
    // Sideways only: a row that is cut by the upper or lower edge has its lines where they are when it is whole, for
    // scrolling moves what is painted.
    if (grid && grid->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff) {
        seen.setLeft(std::max(seen.left(), grid->viewport()->rect().left()));
        seen.setRight(std::min(seen.right(), grid->viewport()->rect().right()));
    }
    return seen;
}

QStringList WrappedLines(const QString& text, const QFont& font, int width, int most)
{
    QTextLayout layout(text, font);
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrapping);
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() + 1 == most) {
            lines.append(text.mid(line.textStart()));
            break;
        }
        lines.append(text.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines;
}
} // namespace

void FlexGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto* model = static_cast<const FlexGridModel*>(index.model());
    const int row = index.row() + 1;
    const CellStyle& style = model->Style(row, index.column());
    const QColor background = BackgroundOf(style, option);
    const QColor textColour = TextColourOf(style, option);

    painter->save();
    painter->setClipRect(option.rect);
    painter->fillRect(option.rect, background);
    painter->setPen(Contrast::Blend(background, option.palette.color(QPalette::Text), SeparatorShare));
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());

    const QString text = model->Text(row, index.column());
    QRect place = SeenOf(option).adjusted(Padding, 0, -Padding, -1);
    if (style.Picture >= 0)
        place.setLeft(place.left() +
                      PaintPicture(painter, option, model->Picture(row, index.column()), text.isEmpty()));
    if (!text.isEmpty() && place.width() > 0) {
        QFont font = option.font;
        font.setBold(font.bold() || style.Bold);
        painter->setFont(font);
        painter->setPen(textColour);
        PaintText(painter, option, place, text, model->Alignment(index.column()));
    }
    if (const QString note = model->Note(row, index.column()); !note.isEmpty() && place.width() > 0)
        PaintNote(painter, option, place, note, style);
    painter->restore();
}

/// At the end of the last line, on a ground of its own that covers the text below.
void FlexGridDelegate::PaintNote(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                                 const QString& note, const CellStyle& style)
{
    painter->setFont(option.font);
    const QFontMetrics metrics(option.font);
    const int height = metrics.lineSpacing();
    const auto widest = static_cast<int>(place.width() * NoteShare);
    const QString text = metrics.elidedText(note, Qt::ElideRight, widest - 2 * Padding);
    const QSize size(std::min(widest, metrics.horizontalAdvance(text) + 2 * Padding), height);
    const QRect box = QStyle::alignedRect(option.direction, Qt::AlignRight | Qt::AlignBottom, size, place);
    const QColor ground =
        Contrast::Blend(BackgroundOf(style, option), option.palette.color(QPalette::Highlight), NoteGroundShare);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(ground);
    painter->drawRoundedRect(box, Padding, Padding);
    painter->setPen(Contrast::Readable(option.palette.color(QPalette::Text), ground));
    painter->setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter->drawText(box, Qt::AlignCenter | Qt::TextSingleLine, text);
}

QColor FlexGridDelegate::BackgroundOf(const CellStyle& style, const QStyleOptionViewItem& option)
{
    const QColor own = SystemColour::ToColour(style.BackColour, option.palette);
    if (!IsSelected(option))
        return own;
    const QColor highlight = option.palette.color(QPalette::Highlight);
    if (style.BackColour != SystemColour::WindowBackground)
        return Contrast::Blend(own, highlight, SelectedShare);
    return HasFocus(option) ? highlight : Contrast::Blend(own, highlight, UnfocusedShare);
}

QColor FlexGridDelegate::TextColourOf(const CellStyle& style, const QStyleOptionViewItem& option)
{
    const QColor background = BackgroundOf(style, option);
    if (style.ForeColour != SystemColour::WindowText)
        return Contrast::Readable(SystemColour::ToColour(style.ForeColour, option.palette), background);
    if (style.BackColour != SystemColour::WindowBackground)
        return Contrast::BlackOrWhite(background);
    if (IsSelected(option) && HasFocus(option))
        return Contrast::Readable(option.palette.color(QPalette::HighlightedText), background);
    return Contrast::Readable(option.palette.color(QPalette::Text), background);
}

int FlexGridDelegate::PaintPicture(QPainter* painter, const QStyleOptionViewItem& option, const QIcon& picture,
                                   bool alone)
{
    const int small = option.decorationSize.isValid() ? option.decorationSize.height() : 16;
    const int side = std::min({small, option.rect.height() - 2, option.rect.width() - 2});
    QRect place(0, 0, side, side);
    place.moveCenter(option.rect.center());
    if (!alone)
        place.moveLeft(option.rect.left() + Padding);
    // The icon gives the pixels that the painter's device has for this size.
    picture.paint(painter, place);
    return side + Padding;
}

QStringList FlexGridDelegate::Lines(const QString& text, const QFont& font, int width, int height, bool wrap)
{
    const QFontMetrics metrics(font);
    QString broken = text;
    broken.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    // To the painter these end a line, of which a row has no more than its own.
    for (const char16_t lineEnd : {u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'})
        broken.replace(QChar(lineEnd), u' ');
    if (!wrap)
        return {metrics.elidedText(broken.replace(QLatin1Char('\n'), QLatin1Char(' ')), Qt::ElideRight, width)};
    const int most = std::max(1, height / metrics.lineSpacing());
    QStringList lines = broken.contains(QLatin1Char('\n')) ? broken.split(QLatin1Char('\n')).mid(0, most)
                                                           : WrappedLines(broken, font, width, most);
    for (QString& line : lines)
        line = metrics.elidedText(line, Qt::ElideRight, width);
    return lines;
}

void FlexGridDelegate::PaintText(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                                 const QString& text, Qt::Alignment alignment)
{
    const bool wrap = option.features.testFlag(QStyleOptionViewItem::WrapText);
    const QStringList lines = Lines(text, painter->font(), place.width(), place.height(), wrap);
    const int lineHeight = painter->fontMetrics().lineSpacing();
    const QSize size(place.width(), lineHeight * static_cast<int>(lines.size()));
    const QRect block =
        QStyle::alignedRect(option.direction, Qt::AlignLeft | (alignment & Qt::AlignVertical_Mask), size, place);
    const auto flags =
        static_cast<int>(QStyle::visualAlignment(option.direction, alignment) & Qt::AlignHorizontal_Mask);
    for (int i = 0; i < lines.size(); ++i) {
        const QRect line(block.left(), block.top() + i * lineHeight, block.width(), lineHeight);
        // Each line reads as its own letters do, wherever it stands.
        painter->setLayoutDirection(lines.at(i).isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        painter->drawText(line, flags | Qt::AlignVCenter | Qt::TextSingleLine, lines.at(i));
    }
}
