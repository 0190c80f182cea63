// SPDX-License-Identifier: Apache-2.0
#include "prizes/PrizeHistory.h"

#include "common/ListViewObject.h"
#include "common/PendingError.h"
#include "database/RowValues.h"
#include "database/StationContext.h"

namespace
{
const QString ListViewType = QStringLiteral("ListView");
const QString RoleColumn = QStringLiteral("FOLDER");
// Both tables have a field of this name, so that the query's bear their table's.
const QString PrizeKey = QStringLiteral("Prizes.Reference");
const QString WinnerKey = QStringLiteral("PrizeWinners.Reference");

QString HistoryQuery(qint32 contact)
{
    QString query =
        QStringLiteral("SELECT Prizes.Reference, Prizes.Title, PrizeWinners.*, Prizes.SupplierReference FROM Prizes "
                       "LEFT JOIN PrizeWinners ON Prizes.Reference = PrizeWinners.PrizeReference ");
    if (contact > 0) {
        query += QStringLiteral(" WHERE ( [PrizeWinners.WinnerReference]=%1 OR [PrizeWinners.AwardedByReference]=%1"
                                " OR [Prizes.SupplierReference]=%1)")
                     .arg(contact);
    }
    return query;
}

/// The fields of a row that tell what the contact has to do with it.
struct HistoryRow
{
    explicit HistoryRow(const dao::Recordset& rows)
        : Prize(rows.Collect(PrizeKey).toInt()),
          Winner(rows.Collect(WinnerKey).toInt()),
          WinnerContact(rows.Collect(QStringLiteral("WinnerReference"))),
          Awarder(rows.Collect(QStringLiteral("AwardedByReference"))),
          Supplier(rows.Collect(QStringLiteral("SupplierReference")))
    {
    }

    /// Empty where the row has none.
    QString ItemKey(qint32 contact) const
    {
        const bool isOfWinner = contact > 0 ? Is(WinnerContact, contact) || Is(Awarder, contact) : Winner > 0;
        if (isOfWinner)
            return u'w' + QString::number(Winner);
        return contact > 0 || Prize > 0 ? u'p' + QString::number(Prize) : QString();
    }

    QString Role(qint32 contact) const
    {
        if (Is(WinnerContact, contact))
            return QStringLiteral("Winner");
        if (Is(Awarder, contact))
            return QStringLiteral("Awarder");
        return Is(Supplier, contact) ? QStringLiteral("Supplier") : QString();
    }

    qint32 Prize;
    qint32 Winner;
    QVariant WinnerContact;
    QVariant Awarder;
    QVariant Supplier;

private:
    /// A prize without a winner has Null there, which is no contact, not even 0.
    static bool Is(const QVariant& field, qint32 contact) { return !field.isNull() && field.toInt() == contact; }
};

/// One column of the host's list, bound to its field in the query once for all rows.
class HistoryColumn
{
public:
    HistoryColumn(const QString& key, bool isFirst, const dao::Recordset& rows)
        // The first column's key always names a field.
        : IsRole_(!isFirst && key.toUpper() == RoleColumn)
    {
        if (!IsRole_ && !key.isEmpty())
            NoField_.Try([&] { Field_ = &rows[key]; });
    }

    /// A column that is no field of the query stays empty.
    QString Text(const HistoryRow& row, qint32 contact) const
    {
        if (IsRole_)
            return row.Role(contact);
        if (!Field_)
            return {};
        return IsDate() ? LocalDate().GeneralDate() : Field_->Value().toString();
    }

    QVariant SortValue() const
    {
        if (!Field_)
            return {};
        if (IsDate())
            return LocalDate().DayNumber();
        const QVariant value = Field_->Value();
        return value.typeId() == QMetaType::QString ? QVariant() : value;
    }

private:
    bool IsDate() const { return Field_->Type() == dao::dbDate; }
    Date LocalDate() const { return RowValues::LocalDate(Field_->Value()); }

    bool IsRole_;
    dao::Field* Field_ = nullptr;
    PendingError NoField_;
};
} // namespace

void PrizeHistory::Fill(StationContext& station, ListViewObject* list, qint32 contactReference)
{
    if (!station.Database || !list || list->TypeName() != ListViewType || list->ColumnCount() == 0)
        return;
    list->ClearItems();
    PendingError pending;
    pending.Try([&] {
        const auto rows = station.OpenSnapshot(HistoryQuery(contactReference));
        std::vector<HistoryColumn> columns;
        columns.reserve(static_cast<std::size_t>(list->ColumnCount()));
        for (int i = 0; i < list->ColumnCount(); ++i)
            columns.emplace_back(list->ColumnKey(i), i == 0, *rows);
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const HistoryRow row(*rows);
            QStringList texts;
            QVariantList sortValues;
            for (const HistoryColumn& column : columns) {
                texts.append(column.Text(row, contactReference));
                sortValues.append(column.SortValue());
            }
            // A prize that its supplier sees once for each of its winners has one item.
            list->AddListItem(row.ItemKey(contactReference), texts, sortValues);
        }
    });
    station.LastError = pending;
}

qint32 PrizeHistory::NumberOfWins(StationContext& station, qint32 contactReference)
{
    if (!station.Database || contactReference <= 0)
        return -1;
    qint32 count = -1;
    PendingError pending;
    pending.Try([&] {
        const auto wins = station.OpenSnapshot(
            QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [WinnerReference]=%1").arg(contactReference));
        count = wins->RecordCount();
    });
    station.LastError = pending;
    return count;
}
