// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Types.h"

#include <QHash>
#include <QString>

#include <memory>
#include <vector>

/// A database's structure as engines and the objects above them speak of it. Plain values; a schema that was handed out
/// never changes, a changed structure is a new schema.
namespace dao::engine
{

struct Column
{
    QString Name;
    DataTypeEnum Type = dbText;
    int Size = 0; ///< Characters of a text, octets of a number, 0 for a memo.
    int Attributes = 0;
    bool AllowZeroLength = false;

    bool IsCounter() const { return (Attributes & dbAutoIncrField) != 0; }
    bool IsMemo() const { return Type == dbMemo; }
    bool operator==(const Column&) const = default;
};

struct IndexKey
{
    QString Name;
    bool Primary = false;
    bool Unique = false;
    std::vector<int> Columns; ///< Places in the table's columns, in order of the key.

    bool operator==(const IndexKey&) const = default;
};

/// Names are found in any case; -1 when there is none.
class Table
{
public:
    qint64 Id = 0; ///< The engine's own.
    QString Name;
    std::vector<Column> Columns;
    std::vector<IndexKey> Indexes;

    int FindColumn(const QString& name) const;
    int FindIndex(const QString& name) const;
    int CounterColumn() const { return CounterColumn_; }
    bool HasMemos() const { return HasMemos_; }
    /// To be called once the columns are filled in.
    void Complete();

    bool operator==(const Table& other) const
    {
        return Id == other.Id && Name == other.Name && Columns == other.Columns && Indexes == other.Indexes;
    }

private:
    QHash<QString, int> ColumnPlaces_; ///< By folded name.
    int CounterColumn_ = -1;
    bool HasMemos_ = false;
};

using TablePtr = std::shared_ptr<const Table>;

struct Schema
{
    std::vector<TablePtr> Tables; ///< In order of creation.

    /// Null when there is none of that name.
    TablePtr Find(const QString& name) const;
};

using SchemaPtr = std::shared_ptr<const Schema>;

} // namespace dao::engine
