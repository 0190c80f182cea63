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
/// Letters of a note that are shown whatever its line holds, and of the name beside it where there is room.
constexpr int NoteLetters = 8;
constexpr int NameLetters = 6;
constexpr int MarkGap = 3;
/// Around the name in a line.
constexpr char16_t Isolate = u'\u2068';
constexpr char16_t EndOfIsolate = u'\u2069';
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

int SideOf(const QStyleOptionViewItem& option)
{
    return std::min(option.fontMetrics.lineSpacing(),
                    option.decorationSize.isValid() ? option.decorationSize.height() : 16);
}

/// A line that may hold a name, which is what gives way.
struct LineParts
{
    QString Name;
    QString Rest;
};

LineParts SplitAtName(const QString& line)
{
    const qsizetype open = line.indexOf(QChar(Isolate));
    const qsizetype close = line.lastIndexOf(QChar(EndOfIsolate));
    if (open < 0 || close < open)
        return {QString(), line};
    return {line.mid(open + 1, close - open - 1), line.left(open) + line.mid(close + 1)};
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
    if (place.width() > 0) {
        QFont font = option.font;
        font.setBold(font.bold() || style.Bold);
        painter->setFont(font);
        painter->setPen(textColour);
        QStringList lines;
        if (!text.isEmpty())
            lines = Lines(text, font, place.width(), place.height(),
                          option.features.testFlag(QStyleOptionViewItem::WrapText));
        const LineEnd end =
            EndOf(option, lines, model->Note(row, index.column()), model->Marks(row, index.column()), place.width());
        if (!lines.isEmpty() && end.Width > 0)
            lines.last() = Shortened(lines.last(), painter->fontMetrics(), place.width() - end.Width);
        const QRect last = PaintText(painter, option, place, lines, model->Alignment(index.column()));
        if (end.Width > 0)
            PaintEnd(painter, option, last, end, style);
    }
    painter->restore();
}

/// What the end of the last line of a cell takes. The note gives way to what of the line is not to be shortened, but
/// for its first words.
FlexGridDelegate::LineEnd FlexGridDelegate::EndOf(const QStyleOptionViewItem& option, const QStringList& lines,
                                                  const QString& note, const QList<RowMark>& marks, int width)
{
    LineEnd end;
    end.Marks = marks;
    end.Width = static_cast<int>(marks.size()) * (SideOf(option) + MarkGap);
    if (note.isEmpty())
        return end;
    const QFontMetrics metrics(option.font);
    const int kept = lines.isEmpty() ? 0 : metrics.horizontalAdvance(SplitAtName(lines.last()).Rest);
    const int share = static_cast<int>(width * NoteShare) - end.Width;
    const int room = std::max(std::min(share, width - end.Width - kept - NameLetters * metrics.averageCharWidth()),
                              NoteLetters * metrics.averageCharWidth());
    end.Note = metrics.elidedText(note, Qt::ElideRight, room - 2 * Padding);
    end.NoteWidth = std::min(room, metrics.horizontalAdvance(end.Note) + 2 * Padding);
    end.Width += end.NoteWidth + MarkGap;
    return end;
}

QString FlexGridDelegate::Shortened(const QString& line, const QFontMetrics& metrics, int width)
{
    if (metrics.horizontalAdvance(line) <= width)
        return line;
    const LineParts parts = SplitAtName(line);
    const int room = width - metrics.horizontalAdvance(parts.Rest);
    const QString name =
        room > 0 && !parts.Name.isEmpty() ? metrics.elidedText(parts.Name, Qt::ElideRight, room) : QString();
    if (name.isEmpty())
        return metrics.elidedText(parts.Rest, Qt::ElideRight, width);
    return QChar(Isolate) + name + QChar(EndOfIsolate) + parts.Rest;
}

/// The note on a ground of its own, and the marks.
void FlexGridDelegate::PaintEnd(QPainter* painter, const QStyleOptionViewItem& option, const QRect& line,
                                const LineEnd& end, const CellStyle& style)
{
    const bool isMirrored = option.direction == Qt::RightToLeft;
    const auto placed = [&](int before, int width) {
        const int left = isMirrored ? line.left() + before : line.right() + 1 - before - width;
        return QRect(left, line.top(), width, line.height());
    };
    const bool isInverse = IsSelected(option) && HasFocus(option) && style.BackColour == SystemColour::WindowBackground;
    const int side = SideOf(option);
    int used = 0;
    for (auto mark = end.Marks.crbegin(); mark != end.Marks.crend(); ++mark, used += side + MarkGap)
        mark->Icon.paint(painter, placed(used, side), Qt::AlignCenter, isInverse ? QIcon::Selected : QIcon::Normal);
    if (end.Note.isEmpty())
        return;
    const QRect box = placed(used, end.NoteWidth);
    const QColor ground =
        Contrast::Blend(BackgroundOf(style, option), option.palette.color(QPalette::Highlight), NoteGroundShare);
    painter->setFont(option.font);
    painter->fillRect(box, ground);
    painter->setPen(Contrast::Readable(option.palette.color(QPalette::Text), ground));
    painter->setLayoutDirection(end.Note.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter->drawText(box, Qt::AlignCenter | Qt::TextSingleLine, end.Note);
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
        return Contrast::ReadingWell(SystemColour::ToColour(style.ForeColour, option.palette), background);
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

/// The place of the last line, or of one where there is none.
QRect FlexGridDelegate::PaintText(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                                  const QStringList& lines, Qt::Alignment alignment)
{
    const int lineHeight = painter->fontMetrics().lineSpacing();
    const auto count = std::max(1, static_cast<int>(lines.size()));
    const QSize size(place.width(), lineHeight * count);
    const QRect block =
        QStyle::alignedRect(option.direction, Qt::AlignLeft | (alignment & Qt::AlignVertical_Mask), size, place);
    const auto flags =
        static_cast<int>(QStyle::visualAlignment(option.direction, alignment) & Qt::AlignHorizontal_Mask);
    const auto lineAt = [&](int i) {
        return QRect(block.left(), block.top() + i * lineHeight, block.width(), lineHeight);
    };
    for (int i = 0; i < lines.size(); ++i) {
        // Each line reads as its own letters do, wherever it stands.
        painter->setLayoutDirection(lines.at(i).isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        painter->drawText(lineAt(i), flags | Qt::AlignVCenter | Qt::TextSingleLine, lines.at(i));
    }
    return lineAt(count - 1);
}
