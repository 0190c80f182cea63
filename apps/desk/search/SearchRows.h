// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "messages/search/SearchResult.h"
#include "messages/search/SearchWords.h"

#include <QAbstractTableModel>
#include <QStyledItemDelegate>

class cTolvaDatabase;

/// What a row of the results shows of a message.
struct SearchRow
{
    qint32 Reference = 0;
    qint32 Category = 0;
    QString Person; ///< Who wrote it, or of what the station wrote to whom.
    QString Subject;
    Date Sent; ///< Local time.
    bool IsUnread = false;
    bool IsSMS = false;

    friend bool operator==(const SearchRow&, const SearchRow&) = default;
};

/// The rows of hits, in their order, as the station has them at this moment; those that it has no more are left out.
/// dao::Error.
QList<SearchRow> ReadSearchRows(cTolvaDatabase& station, const std::vector<SearchHit>& hits);

/// The messages that were found, one a row. Owned by its window.
class SearchModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        colPerson,
        colSubject,
        colFolder,
        colSent,
        ColumnsInAll
    };

    using QAbstractTableModel::QAbstractTableModel;

    /// folders: paths by reference. Nothing happens when they are the same.
    void SetRows(const QList<SearchRow>& rows, const QHash<qint32, QString>& folders);
    /// 0 outside.
    qint32 ReferenceAt(int row) const;
    /// -1 for none.
    int RowOf(qint32 reference) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QString TextAt(const SearchRow& row, int column) const;

    QList<SearchRow> Rows_;
    QHash<qint32, QString> Folders_;
};

/// Draws texts with what was looked for in bold on a light ground. Belongs to its list.
class HitDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void SetWanted(const QList<SearchWords::Alternatives>& wanted) { Wanted_ = wanted; }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    QList<SearchWords::Alternatives> Wanted_;
};
