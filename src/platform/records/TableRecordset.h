// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/StoreRecordset.h"

#include <QSet>

namespace dao
{

/// The rows of one table, by index or in order of entry. Opening it and setting an index read nothing: the first row is
/// looked up when somebody asks where the recordset stands.
class TableRecordset final : public StoreRecordset
{
public:
    TableRecordset(SessionPtr session, engine::TablePtr table);

    RecordsetTypeEnum Type() const override;
    bool Updatable() const override;
    int RecordCount() const override;
    bool AtEOF() const override;
    bool AtBOF() const override;
    void MoveFirst() override;
    void MoveLast() override;
    void MoveNext() override;
    void MovePrevious() override;
    QString Index() const override;
    void SetIndex(const QString& name) override;
    void Seek(SeekComparison comparison, std::initializer_list<QVariant> keys) override;
    void Delete() override;

protected:
    Field& FieldNamed(const QString& name) const override;
    engine::TablePtr EditedTable() const override { return Table_; }
    int EditedColumn(int ordinal) const override { return ordinal; }
    const engine::Column& ColumnAt(int ordinal) const override;
    const Row& RowForEdit() override;
    void RowWasChanged() override { Place_ = Place::Changed; }
    void RowWasAdded(qint64 id) override;
    QVariant StoredValueAt(int ordinal) const override;
    engine::StoredMemo StoredMemoAt(int ordinal, MemoTrust trust) const override;
    void Release() override;

private:
    enum class Place
    {
        Unread,  ///< On the first row, which nobody has asked for yet.
        OnRow,   ///< Row_ is the current row.
        Changed, ///< As before, but its cells have to be read anew.
        Deleted, ///< No current row; moves go on from where Row_ stood.
        NoRow,   ///< No current row after a Seek without a match.
        Beginning,
        End,
        Empty ///< Beginning and end at once.
    };

    /// Finds the first row if that is still to be done.
    void Settle() const;
    void MoveToEnd(engine::Direction direction);
    void MoveOn(engine::Direction direction);
    /// The current row with its cells; 3021 without one, 3167 when it is gone.
    const Row& CurrentRow() const;
    /// What to read along: bodies are, once one was asked for.
    engine::MemoFetch MemosOnMoves() const;
    void ForgetMemo() const;

    engine::TablePtr Table_;
    int Index_ = -1;
    mutable Place Place_ = Place::Unread;
    mutable Row Row_;
    /// By this recordset, while nobody has asked for the first row.
    mutable QSet<qint64> Added_;
    mutable bool AsksForMemos_ = false;
    /// The last memo that was read apart from its row, and where it belongs.
    mutable engine::StoredMemo Memo_;
    mutable int MemoOrdinal_ = -1;
};

} // namespace dao
