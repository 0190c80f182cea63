// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableBuilder.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/KeyForm.h"
#include "platform/records/engines/jet/RowSeal.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

TableDefinition Placed(TableDefinition shape)
{
    PlaceColumns(shape);
    return shape;
}

} // namespace

TableBuilder::TableBuilder(PageWriter& pages, quint32 page, const QString& name, TableDefinition shape)
    : Pages_(pages), Name_(name), Table_(Placed(std::move(shape))), Rows_(pages, page)
{
    Table_.Pages = {page};
    Table_.OwnedMap = Rows_.OwnedMap();
    Table_.FreeMap = Rows_.FreeMap();
    for (ColumnDefinition& column : Table_.Columns) {
        if (!column.IsLong())
            continue;
        RowPages& rows = Longs_.try_emplace(column.Number, pages).first->second.Rows();
        column.OwnedMap = rows.OwnedMap();
        column.FreeMap = rows.FreeMap();
    }
    for (const IndexDefinition& index : Table_.Indexes)
        Indexes_.emplace_back(pages, page, index);
}

void TableBuilder::AddRow(std::span<const NewCell> cells, std::span<const std::optional<QByteArray>> knownKeys)
{
    std::vector<std::optional<QByteArray>> octets;
    octets.reserve(cells.size());
    std::vector<quint32> longSums;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const ColumnDefinition& column = Table_.Columns[i];
        octets.push_back(cells[i].Octets);
        if (column.IsLong())
            longSums.push_back(octets.back() ? SumOfLong(*octets.back()) : RowSeal::UnknownSum);
        if (column.Is(ColumnType::Boolean)) {
            const qint64* truth = std::get_if<qint64>(&cells[i].Value);
            octets.back() = truth != nullptr && *truth != 0 ? std::optional(QByteArray()) : std::nullopt;
        } else if (column.IsLong() && octets.back()) {
            octets.back() = Longs_.at(column.Number).Add(*octets.back());
        } else if (column.Is(ColumnType::Long) && (column.Flags & CounterColumn) != 0) {
            const qint64* number = std::get_if<qint64>(&cells[i].Value);
            RaiseCounter(number != nullptr && *number > 0 ? static_cast<quint32>(*number) : 0);
        }
    }
    AddEntries(cells, knownKeys, Rows_.Add(MakeRow(Table_, octets, std::move(longSums))));
    ++Table_.RowCount;
}

void TableBuilder::RaiseCounter(quint32 counter)
{
    Table_.Counter = std::max(Table_.Counter, counter);
}

void TableBuilder::AddEntries(std::span<const NewCell> cells, std::span<const std::optional<QByteArray>> knownKeys,
                              RowPlace place)
{
    for (std::size_t i = 0; i < Indexes_.size(); ++i) {
        const IndexDefinition& index = Table_.Indexes[i];
        std::vector<StoredValue> values;
        bool isNull = true;
        for (const IndexDefinition::KeyColumn& key : index.Columns) {
            const ColumnDefinition& column = Table_.Columns[key.Number];
            values.push_back(cells[key.Number].Value);
            const bool isNullHere = std::holds_alternative<std::monostate>(values.back());
            if (isNullHere && column.Is(ColumnType::Boolean))
                values.back() = qint64(0);
            if (isNullHere && (index.Flags & RequiredIndex) != 0)
                throw Error(errInvalidUseOfNull,
                            QStringLiteral("The field '%1' of the table '%2' cannot be Null.").arg(column.Name, Name_));
            isNull = isNull && isNullHere;
        }
        std::optional<QByteArray> key = MakeKey(Table_, index, values);
        if (!key && i < knownKeys.size())
            key = knownKeys[i];
        if (!key)
            throw Error(errNotSupported,
                        QStringLiteral("A text in the table '%1' has characters whose place in the order of a Jet file "
                                       "is not known, and an index needs it.")
                            .arg(Name_));
        Indexes_[i].Add(*key, place, isNull);
    }
}

void TableBuilder::FinishRows()
{
    Rows_.Finish();
    for (auto& [column, values] : Longs_)
        values.Rows().Finish();
    for (std::size_t i = 0; i < Indexes_.size(); ++i) {
        if (!Indexes_[i].Finish(Table_.Indexes[i]))
            throw Error(errDuplicateValue,
                        QStringLiteral("An index of the table '%1' would have a value twice, and may not.").arg(Name_));
    }
}

void TableBuilder::WriteDefinition()
{
    std::vector<quint32> numbers{Table_.Page()};
    const std::vector<QByteArray> pages = MakeDefinitionPages(Table_, [&](std::size_t place) {
        if (place == numbers.size())
            numbers.push_back(Pages_.Allocate());
        return numbers[place];
    });
    for (std::size_t i = 0; i < pages.size(); ++i)
        Pages_.Write(numbers[i], pages[i]);
}

} // namespace dao::jet
