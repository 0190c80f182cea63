// SPDX-License-Identifier: Apache-2.0
#include "SearchRows.h"

#include "DisplayText.h"
#include "FolderPaths.h"
#include "contacts/ContactNames.h"
#include "database/RowCondition.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/MessageLook.h"
#include "platform/mail/RawHeaders.h"

#include <QApplication>
#include <QFont>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace
{
constexpr qsizetype LongestText = 300;
constexpr int RowTextMargin = 3;

/// Of what the station wrote to whom, else from whom: "Postcard Pete" of "Postcard Pete <pete@example.com>".
QString PersonOf(const MessageLook& look)
{
    const QString header = look.To.isEmpty() ? cdo::DecodedHeader("From", look.From, LongestText)
                                             : cdo::DecodedHeader("To", look.To, LongestText);
    return OneLine(ContactNames().PersonOf(header));
}

SearchRow RowOf(const MessageLook& look, qint32 category)
{
    SearchRow row;
    row.Reference = look.Reference;
    row.Category = category;
    row.Person = PersonOf(look);
    row.Subject = OneLine(cdo::DecodedHeader("Subject", look.Subject, LongestText));
    row.Sent = look.Sent.IsNone() ? look.Received : look.Sent;
    row.IsUnread = (look.Flags & mfRead) == 0;
    row.IsSMS = look.MessageType == emtSMS;
    return row;
}
} // namespace

QList<SearchRow> ReadSearchRows(cTolvaDatabase& station, const std::vector<SearchHit>& hits)
{
    constexpr std::size_t RowsOfRead = 200;
    QHash<qint32, SearchRow> read;
    for (std::size_t first = 0; first < hits.size(); first += RowsOfRead) {
        QList<qint32> references;
        for (std::size_t i = first; i < std::min(first + RowsOfRead, hits.size()); ++i)
            references.append(hits[i].Reference);
        const auto rows = station.OpenSnapshot(QStringLiteral("SELECT * FROM [Messages] WHERE ") +
                                               RowCondition::HasOneOf(references));
        MessageLooks looks(station, *rows);
        for (; !rows->AtEOF(); rows->MoveNext()) {
            if (const std::optional<MessageLook> look = looks.Read())
                read.insert(look->Reference, RowOf(*look, rows->Collect(QStringLiteral("Category")).toInt()));
        }
    }
    QList<SearchRow> result;
    for (const SearchHit& hit : hits) {
        if (const auto row = read.constFind(hit.Reference); row != read.constEnd())
            result.append(*row);
    }
    return result;
}

void SearchModel::SetRows(const QList<SearchRow>& rows, const QHash<qint32, QString>& folders)
{
    if (Rows_ == rows && Folders_ == folders)
        return;
    beginResetModel();
    Rows_ = rows;
    Folders_ = folders;
    endResetModel();
}

qint32 SearchModel::ReferenceAt(int row) const
{
    return row >= 0 && row < Rows_.size() ? Rows_.at(row).Reference : 0;
}

int SearchModel::RowOf(qint32 reference) const
{
    const auto row = std::find_if(Rows_.begin(), Rows_.end(),
                                  [reference](const SearchRow& candidate) { return candidate.Reference == reference; });
    return row == Rows_.end() ? -1 : static_cast<int>(row - Rows_.begin());
}

int SearchModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(Rows_.size());
}

int SearchModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnsInAll;
}

QString SearchModel::TextAt(const SearchRow& row, int column) const
{
    switch (column) {
    case colPerson:
        return row.Person;
    case colSubject:
        return row.Subject.isEmpty() ? tr("(no subject)") : row.Subject;
    case colFolder:
        return FolderPath(Folders_, row.Category);
    default:
        return row.Sent.Format(QStringLiteral("ddddd hh:nn"));
    }
}

QVariant SearchModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= Rows_.size())
        return {};
    const SearchRow& row = Rows_.at(index.row());
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return TextAt(row, index.column());
    if (role == Qt::FontRole && row.IsUnread) {
        QFont font = QApplication::font();
        font.setBold(true);
        return font;
    }
    return {};
}

QVariant SearchModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case colPerson:
        return tr("From / to");
    case colSubject:
        return tr("Subject");
    case colFolder:
        return tr("Folder");
    default:
        return tr("Sent");
    }
}

QSize HitDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    return QStyledItemDelegate::sizeHint(option, index) + QSize(2 * RowTextMargin, 2 * RowTextMargin);
}

void HitDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString text = std::exchange(item.text, QString());
    const QStyle* style = item.widget ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    const bool isSelected = (item.state & QStyle::State_Selected) != 0;
    const QRect place = item.rect.adjusted(RowTextMargin, 0, -RowTextMargin, 0);
    const QString shown = item.fontMetrics.elidedText(text, Qt::ElideRight, place.width());
    QTextLayout layout(shown, item.font);
    QList<QTextLayout::FormatRange> marks;
    const QColor ground = item.palette.color(QPalette::Base);
    const QColor mark = ground.lightness() < 128 ? QColor(110, 90, 20) : QColor(255, 236, 150);
    for (const SearchWords::Place& hit : SearchWords::PlacesOf(shown, Wanted_)) {
        QTextLayout::FormatRange range;
        range.start = static_cast<int>(hit.Begin);
        range.length = static_cast<int>(hit.Size);
        if (isSelected)
            range.format.setFontUnderline(true);
        else
            range.format.setBackground(mark);
        marks.append(range);
    }
    layout.setFormats(marks);
    // A text runs as its own letters do, at the side where the window's rows begin.
    QTextOption direction;
    direction.setTextDirection(shown.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    direction.setAlignment(Qt::AlignAbsolute | Qt::AlignLeft);
    direction.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(direction);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(place.width());
    layout.endLayout();
    painter->save();
    painter->setClipRect(place);
    painter->setPen(item.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    // On whole points, so that it looks the same at either side.
    const int left = item.direction == Qt::RightToLeft
                         ? place.left() + place.width() - static_cast<int>(std::ceil(line.naturalTextWidth()))
                         : place.left();
    layout.draw(painter, QPointF(left, place.top() + (place.height() - line.height()) / 2));
    painter->restore();
}
