// SPDX-License-Identifier: Apache-2.0
#include "platform/records/TableDef.h"

#include "platform/records/StoredTables.h"

namespace dao
{

std::unique_ptr<Field> Index::CreateField(const QString& name) const
{
    // The type is that of the table's field of this name; an index only names it.
    return std::make_unique<Field>(name, dbText, 0);
}

TableDef::TableDef(const QString& name)
    : Name_(name), Fields_(std::make_unique<TableFields>()), Indexes_(std::make_unique<TableIndexes>())
{
}

TableDef::~TableDef() = default;

Collection<Field>& TableDef::Fields()
{
    return *Fields_;
}

const Collection<Field>& TableDef::Fields() const
{
    return *Fields_;
}

Collection<Index>& TableDef::Indexes()
{
    return *Indexes_;
}

const Collection<Index>& TableDef::Indexes() const
{
    return *Indexes_;
}

std::unique_ptr<Field> TableDef::CreateField(const QString& name, DataTypeEnum type, int size) const
{
    return std::make_unique<Field>(name, type, size);
}

std::unique_ptr<Index> TableDef::CreateIndex(const QString& name) const
{
    return std::make_unique<Index>(name);
}

} // namespace dao
