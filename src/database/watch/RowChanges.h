// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <vector>

namespace dao
{
class Field;
class Recordset;
} // namespace dao

/// A row of a list as it was read: its key, and a number made of what the list shows of it. Rows with the same number
/// show the same. 0: not known, which differs from every row.
struct ReadRow
{
    qint32 Reference = 0;
    quint64 Signature = 0;
};

/// The columns of a table that tell whether a row of a list shows something else now. None of them is a memo, so that
/// comparing a whole folder reads no mail.
class LightColumns
{
public:
    /// rows: a recordset that has them; it outlives this. The first is the key.
    LightColumns(const dao::Recordset& rows, const QStringList& columns);
    /// Of the current row.
    ReadRow Read() const;

private:
    std::vector<const dao::Field*> Fields_;
};

/// All rows of a recordset, in its order.
std::vector<ReadRow> ReadLightRows(dao::Recordset& rows, const QStringList& columns);

/// What makes a list that shows some rows one that shows others.
struct RowChanges
{
    /// The rows are not the same ones in the same order.
    bool AreArranged = false;
    /// Then by the row's new place, the place where it stands on show; -1 for a row that is not on show.
    std::vector<int> Sources;
    /// New places of the rows that are to be drawn.
    std::vector<int> Differing;
};

RowChanges CompareRows(const std::vector<ReadRow>& shown, const std::vector<ReadRow>& now);
