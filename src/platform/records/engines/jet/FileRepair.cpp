// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileRepair.h"

#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/DatabaseBuilder.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/TableSalvage.h"
#include "platform/records/engines/jet/UsageMap.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr quint32 HighestCounter = 0x7FFFFFFF;

/// Told of each page of both readings.
class Steps
{
public:
    Steps(const engine::CopyProgress& progress, qint64 total) : Progress_(progress), Total_(total) {}

    void Step()
    {
        constexpr qint64 PagesBetweenReports = 64;
        const bool isDue = ++Done_ == 1 || Done_ % PagesBetweenReports == 0;
        if (isDue && Progress_ && !Progress_(std::min(Done_, Total_), Total_))
            throw Error(errCancelled, QStringLiteral("Cancel was selected."));
    }

private:
    const engine::CopyProgress& Progress_;
    qint64 Total_;
    qint64 Done_ = 0;
};

bool HasKnownOrder(const TableDefinition& table, const IndexDefinition& index)
{
    return !index.Columns.empty() && std::all_of(index.Columns.begin(), index.Columns.end(), [&](const auto& key) {
        const ColumnDefinition* column = table.ColumnOf(key.Number);
        const bool isText = column != nullptr && (column->Is(ColumnType::Text) || column->Is(ColumnType::Memo));
        return column != nullptr &&
               (isText ? column->HasGeneralOrder() : column->Type <= static_cast<quint8>(ColumnType::Binary));
    });
}

/// The indexes that a new file can have: over columns that are there, in an order that is known, and without what ties
/// tables to each other.
TableDefinition WithUsableIndexes(const TableDefinition& table, QStringList& notes)
{
    TableDefinition usable = table;
    usable.Indexes.clear();
    usable.IndexNames.clear();
    for (const IndexName& name : table.IndexNames) {
        const IndexDefinition& index = table.Indexes[name.Tree];
        if (name.Kind == IndexName::Foreign || name.OtherIndex >= 0) {
            notes += QStringLiteral("Its relation %1 is not in the new file.").arg(name.Name);
            continue;
        }
        if (!HasKnownOrder(table, index)) {
            notes += QStringLiteral("Its index %1 is not in the new file.").arg(name.Name);
            continue;
        }
        usable.Indexes.push_back(index);
        usable.IndexNames.push_back(name);
        usable.IndexNames.back().Tree = static_cast<quint32>(usable.Indexes.size() - 1);
        usable.IndexNames.back().Number = usable.IndexNames.back().Tree;
    }
    return usable;
}

/// Saves the rows of one table.
class TableRepair
{
public:
    TableRepair(SalvagedFile& salvaged, const FoundTable& table, DatabaseBuilder& builder, RepairedTable& result)
        : Salvaged_(salvaged),
          Found_(table),
          Result_(result),
          Usable_(WithUsableIndexes(table.Definition, result.Notes)),
          Rows_(salvaged, Usable_, table.NeedsSeals, result),
          Builder_(builder.AddTable(table.Name, NewShape(), table.Properties))
    {
        Result_.Name = table.Name;
        Result_.Notes = table.Notes + Result_.Notes;
    }

    void TakePage(quint32 page, bool isStray) { Rows_.TakePage(page, isStray, Take()); }

    /// ownPages: that said that they are the table's.
    void Finish(const std::vector<quint32>& ownPages)
    {
        Rows_.TakeHidden(Take());
        Builder_.FinishRows();
        if (Found_.Properties.isEmpty())
            Result_.Notes += QStringLiteral("Which of its fields may be empty texts is not known; all may.");
        if (Rows_.BrokenPages() > 0)
            Result_.MayLackMore = true;
        CountMissing(ownPages);
        if (Found_.Definition.Counter <= HighestCounter && Found_.HasRowCount)
            Builder_.RaiseCounter(Found_.Definition.Counter);
    }

private:
    RowSalvage::TakeRow Take()
    {
        return [this](std::span<const NewCell> cells, std::span<const std::optional<QByteArray>> keys) {
            Builder_.AddRow(cells, keys);
        };
    }

    TableDefinition NewShape() const
    {
        TableDefinition shape = Usable_;
        shape.RowCount = 0;
        shape.Counter = 0;
        shape.IsSystem = false;
        return shape;
    }

    /// Pages that the table's map names and that are not the table's any more.
    bool LacksPages(const std::vector<quint32>& ownPages)
    {
        try {
            const UsageMap map = ReadUsageMap(Salvaged_.File, Usable_.OwnedMap);
            return !std::includes(ownPages.begin(), ownPages.end(), map.Pages.begin(), map.Pages.end());
        } catch (const Fault&) {
            return false; // The counts tell.
        }
    }

    void CountMissing(const std::vector<quint32>& ownPages)
    {
        if (!Found_.HasRowCount) {
            Result_.MayLackMore = true;
            return;
        }
        const qint64 most = qint64(Salvaged_.File.PageCount()) * MostRowsOfPage;
        const bool isCounted = qint64(Usable_.RowCount) <= most;
        const std::optional<qint64> entries = CountEntries(Salvaged_.File, Usable_);
        const qint64 expected = std::max(isCounted ? qint64(Usable_.RowCount) : 0, entries.value_or(0));
        Result_.Lost = std::max(Result_.Lost, expected - Result_.Saved);
        if ((!isCounted && !entries) || (LacksPages(ownPages) && Result_.Lost == 0))
            Result_.MayLackMore = true;
    }

    SalvagedFile& Salvaged_;
    const FoundTable& Found_;
    RepairedTable& Result_;
    TableDefinition Usable_;
    RowSalvage Rows_;
    TableBuilder& Builder_;
};

/// Pages that belong to no table that is known, or that nobody can tell the owner of: a table whose rows are there, as
/// their seals prove.
std::vector<quint32> PagesWithRowsOf(SalvagedFile& salvaged, const FoundTable& table,
                                     const std::vector<quint32>& candidates)
{
    RepairedTable none;
    const RowSalvage rows(salvaged, table.Definition, true, none);
    std::vector<quint32> pages;
    std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(pages),
                 [&](quint32 page) { return rows.OwnsRowOf(page); });
    return pages;
}

} // namespace

RepairReport RepairFile(const QString& source, const QString& target, const QStringList& hints,
                        const engine::CopyProgress& progress)
{
    PageFile file(source, PageFile::Use::Salvage);
    Steps steps(progress, 2 * qint64(file.PageCount()));
    std::vector<TableHint> known;
    for (const QString& hint : hints) {
        for (TableHint& each : HintsFrom(hint))
            known.push_back(std::move(each));
    }
    const PagesByOwner pages = LookAtPages(file, [&] { steps.Step(); });
    SalvagedFile salvaged{.File = file, .Pieces = {}, .OctetsLeft = 2 * file.Size()};
    const FoundTables found = FindTables(salvaged, pages, known);
    RepairReport report;
    report.Notes = found.Notes;
    report.LeftBehind = found.LeftBehind;
    std::set<quint32> left(found.Stray.begin(), found.Stray.end());
    DatabaseBuilder builder(target, DayNumberNow());
    for (const FoundTable& table : found.Tables) {
        const auto own = pages.Rows.find(table.Definition.Page());
        const std::vector<quint32> ownPages = own == pages.Rows.end() ? std::vector<quint32>() : own->second;
        const std::vector<quint32> strays = PagesWithRowsOf(salvaged, table, found.Stray);
        std::vector<quint32> all;
        std::merge(ownPages.begin(), ownPages.end(), strays.begin(), strays.end(), std::back_inserter(all));
        RepairedTable result;
        TableRepair repair(salvaged, table, builder, result);
        for (const quint32 page : all) {
            steps.Step();
            const bool isStray = !std::binary_search(ownPages.begin(), ownPages.end(), page);
            repair.TakePage(page, isStray);
            left.erase(page);
        }
        repair.Finish(ownPages);
        report.Tables += result;
    }
    if (!left.empty())
        report.Notes +=
            QStringLiteral("Pages with rows of tables that nothing tells of any more: %1.").arg(left.size());
    builder.Finish();
    RequireNotDamaged(target, ExamineFile(target, progress));
    return report;
}

bool LooksLikeRemains(const QString& fileName)
{
    FileStatus status;
    const auto file = FileSystem::Current().Open(fileName, FileAccess::Read, status);
    if (!file)
        return false;
    constexpr int Looked = 64;
    int alike = 0;
    int pages = 0;
    for (qint64 page = 1; page <= Looked; ++page) {
        char octets[2] = {};
        qint64 count = 0;
        if (!file->ReadAt(page * PageSize, octets, sizeof(octets), count).IsDone() || count < qint64(sizeof(octets)))
            break;
        ++pages;
        const bool isKind = octets[0] >= 1 && octets[0] <= 9;
        alike += static_cast<int>(isKind && (octets[1] == 1 || octets[0] == static_cast<char>(PageType::Bitmap)));
    }
    return pages >= 3 && 2 * alike > pages;
}

} // namespace dao::jet
