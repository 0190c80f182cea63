// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/StoreRecordset.h"

namespace dao
{

/// A query with the values of its parameters.
struct BoundQuery
{
    QString Text;
    jetsql::SelectStatement Select;
    engine::ParameterValues Parameters;
};

/// What the recordsets of queries have in common: a fixed list of rows, and a place in it.
class QueryRecordset : public StoreRecordset
{
public:
    RecordsetTypeEnum Type() const override;
    int RecordCount() const override;
    bool AtEOF() const override;
    bool AtBOF() const override;
    void MoveFirst() override;
    void MoveLast() override;
    void MoveNext() override;
    void MovePrevious() override;
    void FindFirst(const QString& criteria) override;

protected:
    QueryRecordset(SessionPtr session, BoundQuery query, engine::ResultShape shape, RecordsetTypeEnum type);

    Field& FieldNamed(const QString& name) const override;
    const engine::Column& ColumnAt(int ordinal) const override;
    const engine::ResultColumn& ResultColumnAt(int ordinal) const;
    const engine::ResultShape& Shape() const { return Shape_; }
    const BoundQuery& Query() const { return Query_; }

    /// Rows listed, those that are gone included.
    virtual int Rows() const = 0;
    virtual int GoneRows() const { return 0; }
    /// Whether the row is known or found to be no longer there.
    virtual bool IsGone(int row) const = 0;
    /// The row's ids in the query's tables.
    virtual std::span<const qint64> KeysAt(int row) const = 0;
    /// Something makes values be read anew.
    virtual void ForgetValues() const = 0;

    /// The current row; 3021 without one.
    int CurrentRow() const;
    /// After a Delete: no current row, and moves go on from here.
    void LeaveRow() { HasLeft_ = true; }
    /// A row was put at the end of the list; who stood behind the last one stays there.
    void RowWasListed();

private:
    enum class Heading
    {
        Forward,
        Backward
    };
    /// Steps over rows that are gone, in the direction of the last move.
    void Settle() const;
    void MoveTo(int row, Heading heading);

    BoundQuery Query_;
    engine::ResultShape Shape_;
    RecordsetTypeEnum Type_;
    engine::Table Columns_; ///< Finds fields by name.
    mutable int Row_ = 0;   ///< -1 before the first, Rows() behind the last.
    Heading Heading_ = Heading::Forward;
    bool HasLeft_ = false;
};

/// What is read of listed rows by their ids, fetched ahead in batches that grow while rows are walked one after the
/// other.
template <typename Memo>
class ReadAhead
{
public:
    using KeyAt = std::function<qint64(int row)>;
    /// Reads of these rows, in their order, as many as it wants to at a time, and one at least.
    using Fetch = std::function<std::vector<Memo>(std::span<const qint64> ids)>;

    /// What is read of a row. rows: how many there are.
    const Memo& At(int row, int rows, int largestBatch, const KeyAt& keyAt, const Fetch& fetch);
    void Clear() { Memos_.clear(); }

private:
    int First_ = 0;
    int Batch_ = 1;
    std::vector<Memo> Memos_;
};

/// Memos of listed rows.
class MemoWindow
{
public:
    using KeyAt = ReadAhead<engine::StoredMemo>::KeyAt;

    /// The memo of a row. rows: how many there are.
    const engine::StoredMemo& Read(engine::Store& store, const engine::TablePtr& table, int column, int row, int rows,
                                   const KeyAt& keyAt);
    /// The beginning of it; nothing for a row that is gone.
    const std::optional<MemoBeginning>& ReadBeginning(engine::Store& store, const engine::TablePtr& table, int column,
                                                      qsizetype mostOctets, int row, int rows, const KeyAt& keyAt);

private:
    ReadAhead<engine::StoredMemo> Memos_;
    ReadAhead<std::optional<MemoBeginning>> Beginnings_;
    qsizetype MostOctets_ = 0; ///< Of each beginning.
};

inline constexpr int LargestBatch = 64;
/// Beginnings are small, and each batch may be a journey to a server.
inline constexpr int LargestBatchOfBeginnings = 256;
inline constexpr qint64 BatchOctets = qint64{8} * 1024 * 1024;

} // namespace dao
