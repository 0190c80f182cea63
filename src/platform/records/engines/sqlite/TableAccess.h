// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/MemoAccess.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

#include <unordered_map>

namespace dao::sqlite
{

/// The prepared statements of one table: reading by index and by row id, and changing rows. Owned by the store, which
/// opens and commits the transactions around it.
class TableAccess
{
public:
    /// hasChecks: whether the file's memos carry checks.
    TableAccess(Connection& connection, engine::TablePtr table, bool hasChecks);

    bool ReadEnd(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool ReadNext(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, engine::MemoFetch memos,
              Row& row);
    bool ReadRow(qint64 id, engine::MemoFetch memos, Row& row);
    MemoAccess& Memos() { return Memos_; }
    qint64 CountRows();

    qint64 Insert(std::span<const engine::Assignment> values);
    /// False when no row has that id and version.
    bool Update(qint64 id, qint64 version, std::span<const engine::Assignment> values);
    bool Delete(qint64 id);
    bool Exists(qint64 id);

private:
    /// What the column behind the equal ones must be.
    enum class Bound
    {
        None,
        Above,
        Below,
        IsNull,
        IsNotNull,
        RowAbove, ///< All columns equal, and a higher row id.
        RowBelow
    };
    /// A stretch of an index: some leading columns equal, the next one bounded, read from one end.
    struct Stretch
    {
        std::size_t Equal;
        Bound Limit;
    };

    const engine::IndexKey* IndexAt(int index) const;
    /// The first row of the stretch in the direction.
    bool ReadStretch(int index, const Stretch& stretch, engine::Direction direction, std::span<const StoredValue> keys,
                     qint64 id, engine::MemoFetch memos, Row& row);
    QByteArray StretchText(int index, const Stretch& stretch, engine::Direction direction,
                           std::span<const StoredValue> keys, engine::MemoFetch memos) const;
    std::vector<StoredValue> KeysOf(int index, const Row& row) const;

    qint64 NextRowId();
    /// 3049 unless the row that was found lies behind the one that the walk came from: in a damaged file it need not.
    void RequireProgress(int index, engine::Direction direction, std::span<const StoredValue> keys, qint64 id,
                         const Row& found) const;
    bool ReadBehind(int index, engine::Direction direction, std::span<const StoredValue> keys, qint64 id,
                    engine::MemoFetch memos, Row& row);
    /// changed: a character a column, '+' for those that are set.
    QByteArray UpdateText(const std::string& changed, bool changesMemos) const;
    QByteArray ReadColumns(engine::MemoFetch memos) const;
    void Take(const StatementUse& use, engine::MemoFetch memos, Row& row) const;
    template <typename MakeText>
    const Statement& Prepared(quint64 key, const MakeText& makeText);

    Connection& Connection_;
    engine::TablePtr Table_;
    QByteArray Name_; ///< Quoted.
    bool HasChecks_;
    MemoAccess Memos_;
    /// By column. A memo is read with its row only where it is small; but one that an index orders by is read always,
    /// because the row's place in that index is told by it.
    std::vector<bool> IsReadApart_;
    std::unordered_map<quint64, Statement> Statements_;
    std::unordered_map<std::string, Statement> Updates_; ///< By the set of columns, a character each.
};

} // namespace dao::sqlite
