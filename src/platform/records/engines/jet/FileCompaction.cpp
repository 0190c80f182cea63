// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileCompaction.h"

#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/FileSession.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/TableBuilder.h"
#include "platform/records/engines/jet/TableScan.h"

#include <algorithm>
#include <map>

namespace dao::jet
{

namespace
{

using Keys = std::map<RowPlace, QByteArray>;

/// The keys of an index, for values whose order is not known. What cannot be read is left out.
Keys StoredKeys(PageFile& file, const IndexDefinition& index)
{
    Keys keys;
    try {
        IndexTree tree(file, index.Root);
        for (auto place = tree.First(); place; place = tree.Next(*place))
            keys.emplace(place->Row, IndexPage(file, place->Leaf).At(place->Entry).Key);
    } catch (const Fault&) {
        keys.clear();
    }
    return keys;
}

bool IsOrderKnown(const TableDefinition& table, const IndexDefinition& index)
{
    return std::all_of(index.Columns.begin(), index.Columns.end(), [&](const IndexDefinition::KeyColumn& key) {
        const ColumnDefinition* column = table.ColumnOf(key.Number);
        return column != nullptr && column->Type <= static_cast<quint8>(ColumnType::Binary);
    });
}

/// Copies the rows of one table.
class TableCopy
{
public:
    TableCopy(PageFile& file, TableDefinition table, PageWriter& pages, const QString& name)
        : File_(file), Table_(std::move(table)), Builder_(pages, Table_.Page(), name, Table_)
    {
        for (const IndexDefinition& index : Table_.Indexes)
            Keys_.push_back(IsOrderKnown(Table_, index) ? Keys() : StoredKeys(file, index));
    }

    void Run()
    {
        Builder_.Definition().RowCount = 0;
        TableScan scan(File_, Table_);
        for (auto place = scan.Next({}); place; place = scan.Next(place)) {
            const std::optional<FoundRow> row = FindRow(File_, Table_, *place);
            if (row)
                CopyRow(RowCells(row->Octets(), Table_), *place);
        }
        Builder_.FinishRows();
        Builder_.WriteDefinition();
    }

private:
    void CopyRow(const RowCells& row, RowPlace place)
    {
        std::vector<NewCell> cells;
        for (const ColumnDefinition& column : Table_.Columns) {
            NewCell& cell = cells.emplace_back();
            cell.Value = row.Value(column);
            if (column.Is(ColumnType::Boolean))
                continue;
            const std::optional<OctetView> stored = row.Octets(column);
            if (stored)
                cell.Octets = column.IsLong() ? ReadLongValue(File_, *stored) : stored->Copy();
            if (stored && column.Is(ColumnType::Memo) && IsIndexed(column))
                cell.Value = ShownLongValue(column, *cell.Octets);
        }
        std::vector<std::optional<QByteArray>> keys;
        for (const Keys& known : Keys_) {
            const auto found = known.find(place);
            keys.push_back(found == known.end() ? std::nullopt : std::optional(found->second));
        }
        Builder_.AddRow(cells, keys);
    }

    bool IsIndexed(const ColumnDefinition& column) const
    {
        return std::any_of(Table_.Indexes.begin(), Table_.Indexes.end(), [&](const IndexDefinition& index) {
            return std::any_of(index.Columns.begin(), index.Columns.end(),
                               [&](const auto& key) { return key.Number == column.Number; });
        });
    }

    PageFile& File_;
    TableDefinition Table_;
    TableBuilder Builder_;
    std::vector<Keys> Keys_; ///< For each index; empty where they are made anew.
};

void CopyTables(PageFile& file, const QString& target)
{
    std::vector<CatalogueObject> tables = ReadCatalogue(file);
    std::erase_if(tables, [](const CatalogueObject& object) { return !object.IsTable(); });
    std::vector<quint32> reserved;
    reserved.reserve(tables.size());
    for (const CatalogueObject& table : tables)
        reserved.push_back(table.Definition());
    std::sort(reserved.begin(), reserved.end());
    PageWriter pages(target, reserved);
    for (const CatalogueObject& table : tables)
        TableCopy(file, ReadTableDefinition(file, table.Definition()), pages, table.Name).Run();
    pages.Finish(file.Page(0));
}

} // namespace

void CompactFile(const QString& source, const QString& target)
{
    RequireNotDamaged(source, ExamineFile(source, {}));
    FileSession session(source, PageFile::Use::Change);
    PageFile& file = session.Pages();
    const auto requireUnchanged = [&] {
        if (ReadingScope(session).SawChanges())
            throw Error(
                errLocked,
                QStringLiteral("'%1' was changed by another program while it was compacted. Try again.").arg(source));
    };
    try {
        CopyTables(file, target);
    } catch (const Fault& fault) {
        requireUnchanged();
        throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged: %2.").arg(source, fault.Words()));
    } catch (const Error& error) {
        // Rows that repeat a value can only be there because the index over them was broken.
        if (error.Number() == errDuplicateValue)
            throw Error(errFileDamaged,
                        QStringLiteral("The database '%1' is damaged: %2").arg(source, error.Description()));
        throw;
    }
    requireUnchanged();
    RequireNotDamaged(target, ExamineFile(target, {}));
}

} // namespace dao::jet
