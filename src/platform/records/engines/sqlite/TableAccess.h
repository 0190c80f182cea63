#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

#include <unordered_map>

namespace dao::sqlite
{

/// The prepared statements of one table: reading by index and by row id, and changing rows. Owned by the store, which
/// opens and commits the transactions around it.
class TableAccess
{
public:
    TableAccess(Connection& connection, engine::TablePtr table);

    bool ReadEnd(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool ReadNext(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, engine::MemoFetch memos,
              Row& row);
    bool ReadRow(qint64 id, engine::MemoFetch memos, Row& row);
    /// Nothing when there is no such row; a null array for Null.
    std::optional<QByteArray> ReadMemo(int column, qint64 id);
    /// The same for rows whose ids rise, in one run from the first to the last. Stops early, after one row at least,
    /// when octetBudget is used up.
    std::vector<std::optional<QByteArray>> ReadMemoRange(int column, std::span<const qint64> ids, qint64 octetBudget);
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

    static QByteArray TakeMemo(const StatementUse& use, int column);
    QByteArray ReadColumns(engine::MemoFetch memos) const;
    void Take(const StatementUse& use, engine::MemoFetch memos, Row& row) const;
    template <typename MakeText>
    const Statement& Prepared(quint64 key, const MakeText& makeText);

    Connection& Connection_;
    engine::TablePtr Table_;
    QByteArray Name_; ///< Quoted.
    /// By column. A memo is read with its row only where it is small; but one that an index orders by is read always,
    /// because the row's place in that index is told by it.
    std::vector<bool> IsReadApart_;
    std::unordered_map<quint64, Statement> Statements_;
    std::unordered_map<std::string, Statement> Updates_; ///< By the set of columns, a character each.
};

} // namespace dao::sqlite
