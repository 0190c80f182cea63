// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/postgres/ServerConnection.h"

#include <deque>

/// Rows of one table on the server: the statements that read and change them, and what their answers mean. Made where
/// it is needed; holds no state but what it was given. Whoever changes something holds the writer's lock.
namespace dao::postgres
{

class RowAccess
{
public:
    /// All three live as long.
    RowAccess(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Table& table);

    bool ReadEnd(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool ReadNext(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, engine::MemoFetch memos,
              Row& row);
    /// Adds some rows behind that id, in order of entry.
    void ReadBehind(qint64 id, engine::MemoFetch memos, std::vector<Row>& rows);
    std::vector<Row> ReadRows(std::span<const qint64> ids, engine::MemoFetch memos);
    std::vector<engine::StoredMemo> ReadMemos(int column, std::span<const qint64> ids, qint64 octetBudget);
    std::vector<std::optional<MemoBeginning>> ReadMemoBeginnings(int column, std::span<const qint64> ids,
                                                                 qsizetype mostOctets);
    qint64 CountRows();
    qint64 LastId();
    /// One at least; fewer than count where there are no more.
    std::deque<qint64> DrawIds(int count);
    /// DrawId, to be sent along with something else.
    Command DrawCommand() const;
    void RaiseIds(qint64 last);

    Command InsertCommand(qint64 id, std::span<const engine::Assignment> values) const;
    /// Changes a row of that id and version, or none.
    Command UpdateCommand(qint64 id, qint64 version, std::span<const engine::Assignment> values) const;
    Command DeleteCommand(qint64 id) const;
    bool Exists(qint64 id);

    /// What Take reads, for a SELECT of one table.
    QByteArray ReadColumns(engine::MemoFetch memos) const;
    void Take(const Result& result, int place, engine::MemoFetch memos, Row& row) const;
    const QByteArray& Rows() const { return Rows_; }

private:
    enum class Bound
    {
        None,
        Above,
        Below,
        IsNull,
        IsNotNull,
        RowAbove, ///< All columns equal, and a higher id.
        RowBelow
    };
    /// A stretch of an index: some leading columns equal, the next one bounded, read from one end.
    struct Stretch
    {
        std::size_t Equal;
        Bound Limit;
    };

    const engine::IndexKey* IndexAt(int index) const;
    /// Stretches that are searched one behind the other.
    void AddBehind(std::vector<Stretch>& stretches, std::size_t columns, bool isForward,
                   std::span<const StoredValue> keys) const;
    /// The first row of the first stretch that has one, in one round trip.
    bool ReadFirst(int index, const std::vector<Stretch>& stretches, engine::Direction direction,
                   std::span<const StoredValue> keys, qint64 id, engine::MemoFetch memos, Row& row);
    QByteArray StretchText(int index, const Stretch& stretch, engine::Direction direction,
                           std::span<const StoredValue> keys, engine::MemoFetch memos) const;
    std::vector<StoredValue> KeysOf(int index, const Row& row) const;
    bool IsReadApart(int column) const;
    void AddAssigned(Parameters& values, qint64 id, const engine::Assignment& assignment) const;
    /// The names of the columns that AddAssigned gives values for.
    QList<QByteArray> AssignedNames(int column) const;

    ServerConnection& Connection_;
    const QByteArray& Schema_;
    const engine::Table& Table_;
    QByteArray Rows_;
};

} // namespace dao::postgres
