// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/Schema.h"

#include <algorithm>

namespace dao::engine
{

int Table::FindColumn(const QString& name) const
{
    // Callers spell names as the table does, nearly always; folding allocates. A table has a handful of columns, most
    // of them with names of different lengths, so that looking at each is quicker than hashing.
    for (std::size_t i = 0; i < Columns.size(); ++i) {
        const QString& own = Columns[i].Name;
        if (own.size() == name.size() && std::equal(own.cbegin(), own.cend(), name.cbegin()))
            return static_cast<int>(i);
    }
    return ColumnPlaces_.value(name.toCaseFolded(), -1);
}

int Table::FindIndex(const QString& name) const
{
    for (std::size_t i = 0; i < Indexes.size(); ++i) {
        if (Indexes[i].Name.compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

void Table::Complete()
{
    ColumnPlaces_.clear();
    CounterColumn_ = -1;
    HasMemos_ = false;
    for (std::size_t i = 0; i < Columns.size(); ++i) {
        const int place = static_cast<int>(i);
        ColumnPlaces_.insert(Columns[i].Name.toCaseFolded(), place);
        if (Columns[i].IsCounter())
            CounterColumn_ = place;
        if (Columns[i].IsMemo())
            HasMemos_ = true;
    }
}

TablePtr Schema::Find(const QString& name) const
{
    for (const TablePtr& table : Tables) {
        if (table->Name.compare(name, Qt::CaseInsensitive) == 0)
            return table;
    }
    return nullptr;
}

} // namespace dao::engine
