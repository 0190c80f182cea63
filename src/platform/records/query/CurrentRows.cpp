// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/CurrentRows.h"

#include "platform/records/query/StoredValues.h"

namespace dao::query
{

CurrentRows::CurrentRows(std::vector<engine::TablePtr> tables, TableRows& rows)
    : Tables_(std::move(tables)), Rows_(rows), Places_(Tables_.size())
{
}

void CurrentRows::Set(std::size_t source, const Row* row)
{
    Place& place = Places_[source];
    place.At = row;
    place.Cells.clear();
    place.Memos.clear();
}

qint64 CurrentRows::IdAt(std::size_t source) const
{
    const Row* row = Places_[source].At;
    return row == nullptr ? engine::NoRow : row->Id;
}

StoredValue CurrentRows::ValueAt(const BoundColumn& column)
{
    Place& place = Places_[static_cast<std::size_t>(column.Source)];
    if (place.At == nullptr)
        return {};
    if (place.Cells.empty())
        place.Cells.push_back(place.At->Cells.data());
    const std::size_t wanted = static_cast<std::size_t>(column.Column);
    while (place.Cells.size() <= wanted) {
        RowReader reader(place.Cells.back());
        reader.Next();
        place.Cells.push_back(reader.Position());
    }
    const CellView cell = RowReader(place.Cells[wanted]).Next();
    if (cell.CellKind != CellView::Kind::Deferred)
        return ViewOf(cell);
    const auto known = place.Memos.find(column.Column);
    if (known != place.Memos.end())
        return known->second;
    const engine::TablePtr& table = Tables_[static_cast<std::size_t>(column.Source)];
    return place.Memos.emplace(column.Column, Rows_.Memo(table, column.Column, place.At->Id)).first->second;
}

} // namespace dao::query
