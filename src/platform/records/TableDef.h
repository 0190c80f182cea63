// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Collection.h"
#include "platform/records/Field.h"

namespace dao
{

class TableFields;
class TableIndexes;

/// An index of a table. Owned by the table's Indexes collection once appended.
class TOLVA_EXPORT Index
{
public:
    explicit Index(const QString& name) : Name_(name) {}

    const QString& Name() const { return Name_; }
    bool Primary() const { return Primary_; }
    /// A primary index is unique as well.
    void SetPrimary(bool primary) { Primary_ = primary; }
    bool Unique() const { return Unique_; }
    void SetUnique(bool unique) { Unique_ = unique; }

    std::unique_ptr<Field> CreateField(const QString& name) const;
    /// The fields in the order of the key. Appending a field that the table lacks fails when the index is appended,
    /// with 3265.
    Collection<Field>& Fields() { return Fields_; }
    const Collection<Field>& Fields() const { return Fields_; }

private:
    QString Name_;
    bool Primary_ = false;
    bool Unique_ = false;
    Collection<Field> Fields_;
};

/// A table's definition: stored in the file, or under construction until it is appended to Database::TableDefs.
/// Appending a field or an index to a stored table adds it to the file at once; existing rows read a new field as Null.
/// A unique index over rows that repeat a value is refused with 3022.
class TOLVA_EXPORT TableDef
{
public:
    explicit TableDef(const QString& name);
    ~TableDef();
    TableDef(const TableDef&) = delete;
    TableDef& operator=(const TableDef&) = delete;

    const QString& Name() const { return Name_; }
    std::unique_ptr<Field> CreateField(const QString& name, DataTypeEnum type, int size = 0) const;
    std::unique_ptr<Index> CreateIndex(const QString& name) const;

    /// Appending a name that stands already raises 3010.
    Collection<Field>& Fields();
    const Collection<Field>& Fields() const;
    Collection<Index>& Indexes();
    const Collection<Index>& Indexes() const;

private:
    friend class StoredTables;

    QString Name_;
    std::unique_ptr<TableFields> Fields_;
    std::unique_ptr<TableIndexes> Indexes_;
};

} // namespace dao
