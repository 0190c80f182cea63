// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Collection.h"
#include "platform/records/Field.h"

#include <initializer_list>

namespace dao
{

enum class SeekComparison
{
    Equal,
    GreaterOrEqual,
    Greater,
    LessOrEqual,
    Less
};

/// Rows of a table (in index order, or in order of entry without one) or of a query, with one current row. Made by
/// Database::OpenRecordset and owned by the caller; it holds no lock between calls. After Close, or after its
/// database was closed, everything but Close raises 3420.
///
/// Editing: Edit copies the current row into a buffer (AddNew an empty one with the counter already drawn), setting
/// fields changes the buffer, Update stores it. When another user changed or deleted the row since the Edit, Update
/// raises 3197 or 3167 and stores nothing. Moving or closing drops a buffer. An Update or Delete that returned is on
/// the disk.
class TOLVA_EXPORT Recordset
{
public:
    virtual ~Recordset() = default;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    /// The table's name or the query's text.
    virtual QString Name() const = 0;
    virtual RecordsetTypeEnum Type() const = 0;
    /// False for a snapshot, a query over a join, and a file opened read only.
    virtual bool Updatable() const = 0;
    /// Rows in the table now, or in the query as it was opened.
    virtual int RecordCount() const = 0;

    /// Behind the last row, or no rows. (The name EOF is taken by the C library.)
    virtual bool AtEOF() const = 0;
    virtual bool AtBOF() const = 0;
    /// MoveFirst and MoveLast on no rows leave AtEOF and AtBOF true and raise 3021; MoveNext at the end and
    /// MovePrevious at the beginning raise 3021. After Delete there is no current row until a move.
    virtual void MoveFirst() = 0;
    virtual void MoveLast() = 0;
    virtual void MoveNext() = 0;
    virtual void MovePrevious() = 0;

    /// Table type only (3251 otherwise). The index that Seek and the moves go by; setting one moves to its first row.
    /// 3015 when the table has no such index.
    virtual QString Index() const = 0;
    virtual void SetIndex(const QString& name) = 0;
    /// Finds by the index in force: Equal, GreaterOrEqual and Greater the first such row, LessOrEqual and Less the
    /// last. keys: one value for each leading field of the index. No match: NoMatch is true and there is no current
    /// row. Texts compare without regard to case.
    virtual void Seek(SeekComparison comparison, std::initializer_list<QVariant> keys) = 0;
    /// Dynaset and snapshot (3251 on a table). criteria: a condition as after WHERE. The first row that meets it
    /// becomes current; without one NoMatch is true and the current row stays.
    virtual void FindFirst(const QString& criteria) = 0;
    virtual bool NoMatch() const = 0;

    virtual void AddNew() = 0;
    virtual void Edit() = 0;
    /// After the Update of an AddNew the current row is what it was before the AddNew.
    virtual void Update() = 0;
    virtual void CancelUpdate() = 0;
    virtual void Delete() = 0;

    const Collection<Field>& Fields() const { return Fields_; }
    /// The field of that name; error 3265. Shorthand for Fields().Item(name), by a hashed look-up.
    Field& operator[](const QString& name) const { return FieldNamed(name); }
    /// The value alone: what Fields().Item(name).Value() gives and takes.
    QVariant Collect(const QString& name) const { return FieldNamed(name).Value(); }
    void SetCollect(const QString& name, const QVariant& value) { FieldNamed(name).SetValue(value); }

    virtual void Close() = 0;

protected:
    Recordset() = default;
    virtual Field& FieldNamed(const QString& name) const { return Fields_.Item(name); }

    /// Makes a field one of this recordset's columns.
    void Bind(Field& field, int ordinal);

    Collection<Field> Fields_;

private:
    friend class Field;
    virtual QVariant ValueOf(int ordinal) const = 0;
    virtual void SetValueOf(int ordinal, const QVariant& value) = 0;
    virtual QByteArray OctetsOf(int ordinal, MemoTrust trust) const = 0;
    virtual void SetOctetsOf(int ordinal, const QByteArray& octets) = 0;
    virtual MemoBeginning BeginningOf(int ordinal, qsizetype mostOctets) const = 0;
    virtual quint64 HashOf(int ordinal) const = 0;
};

} // namespace dao
