// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DatabaseSession.h"
#include "platform/records/Recordset.h"

#include <optional>

namespace dao
{

/// What all recordsets have in common: fields, the edit buffer, and refusing everything after Close.
class StoreRecordset : public Recordset
{
public:
    QString Name() const override { return Name_; }
    bool NoMatch() const override;

    void AddNew() override;
    void Edit() override;
    void Update() override;
    void CancelUpdate() override;

    QString Index() const override;
    void SetIndex(const QString& name) override;
    void Seek(SeekComparison comparison, std::initializer_list<QVariant> keys) override;
    void FindFirst(const QString& criteria) override;

    void Close() override;

protected:
    StoreRecordset(SessionPtr session, const QString& name) : Session_(std::move(session)), Name_(name) {}

    /// The open store; error 3420 after Close.
    engine::Store& Open() const;
    void AddField(const engine::Column& column);
    void DropBuffer();

    /// The table whose rows the recordset edits, or null.
    virtual engine::TablePtr EditedTable() const = 0;
    /// The place in that table of the recordset's column.
    virtual int EditedColumn(int ordinal) const = 0;
    virtual const engine::Column& ColumnAt(int ordinal) const = 0;
    /// Reads the current row anew, for an edit. 3021 without one, 3167 when it is gone.
    virtual const Row& RowForEdit() = 0;
    virtual void RowWasChanged() = 0;
    virtual void RowWasAdded(qint64 id) = 0;
    /// The value in the current row.
    virtual QVariant StoredValueAt(int ordinal) const = 0;
    /// A memo of the current row. 3428 for one that is damaged and not to be had as it is.
    virtual engine::StoredMemo StoredMemoAt(int ordinal, MemoTrust trust) const = 0;
    /// What StoredMemoAt answers for a memo that was read.
    /// The beginning of a value of the current row; here of one that is read whole.
    virtual MemoBeginning StoredBeginningAt(int ordinal, qsizetype mostOctets) const;
    quint64 HashOf(int ordinal) const override;
    engine::StoredMemo Accepted(const engine::StoredMemo& memo, int ordinal, MemoTrust trust) const;
    static engine::StoredMemo MemoOf(std::string_view utf8);
    /// As the value of its field.
    static QVariant TextOf(const engine::StoredMemo& memo);
    virtual void Release() = 0;

    bool NoMatch_ = false;

    [[noreturn]] static void RaiseNoCurrentRecord();
    [[noreturn]] static void RaiseDeleted();
    [[noreturn]] static void RaiseNotSupported();

private:
    enum class EditMode
    {
        None,
        Adding,
        Editing
    };

    QVariant ValueOf(int ordinal) const override;
    void SetValueOf(int ordinal, const QVariant& value) override;
    QByteArray OctetsOf(int ordinal, MemoTrust trust) const override;
    void SetOctetsOf(int ordinal, const QByteArray& octets) override;
    MemoBeginning BeginningOf(int ordinal, qsizetype mostOctets) const override;

    const std::optional<StoredValue>* Buffered(int ordinal) const;
    std::optional<StoredValue>& BufferFor(int ordinal);
    void RequireUpdatable() const;

    SessionPtr Session_;
    QString Name_;
    bool IsOpen_ = true;
    EditMode Mode_ = EditMode::None;
    qint64 EditedId_ = 0;
    qint64 EditedVersion_ = 0;
    std::vector<std::optional<StoredValue>> Buffer_; ///< By ordinal; what is not set stays as it is in the row.
};

} // namespace dao
