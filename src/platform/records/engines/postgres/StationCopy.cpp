// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/StationCopy.h"

#include "platform/files/FileSystem.h"
#include "platform/records/FileConversion.h"
#include "platform/records/FileOpening.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/EngineRegistry.h"

#include <algorithm>

namespace dao::postgres
{

namespace
{

using engine::Direction;
using engine::MemoFetch;
using engine::TablePtr;

constexpr qsizetype IdsAtOnce = 256;
constexpr qint64 OctetsAtOnce = qint64{8} * 1024 * 1024;
constexpr qsizetype MostFaults = 10;

void CopyStoreToFile(ServerStore& store, const QString& target, const engine::CopyProgress& progress)
{
    engine::Engine& embedded = engine::EngineRegistry::Instance().ForNewFiles(QString());
    TemporaryFile file(target);
    file.Vacate();
    embedded.Create(file.Name());
    CopyStore(store, *embedded.Open(file.Name(), QString(), false), progress);
    file.MoveTo(target);
}

/// Goes through a table some rows at a time.
class TableExamination
{
public:
    TableExamination(ServerStore& store, TablePtr table, FileReport& report)
        : Store_(store), Table_(std::move(table)), Report_(report)
    {
    }

    void Run(const std::function<void(qint64 rows)>& advance)
    {
        std::vector<qint64> ids;
        Row row;
        bool isThere = Store_.ReadEnd(Table_, -1, Direction::Forward, MemoFetch::Deferred, row);
        while (isThere) {
            ids.push_back(row.Id);
            isThere = Store_.ReadNext(Table_, -1, Direction::Forward, MemoFetch::Deferred, row);
            if (static_cast<qsizetype>(ids.size()) < IdsAtOnce && isThere)
                continue;
            for (int column = 0; column < static_cast<int>(Table_->Columns.size()); ++column) {
                if (Table_->Columns[static_cast<std::size_t>(column)].IsMemo())
                    Compare(column, ids);
            }
            Done_ += static_cast<qint64>(ids.size());
            advance(static_cast<qint64>(ids.size()));
            ids.clear();
        }
    }

private:
    void Compare(int column, std::span<const qint64> ids)
    {
        for (std::size_t first = 0; first < ids.size();) {
            const std::vector<engine::StoredMemo> memos =
                Store_.ReadMemos(Table_, column, ids.subspan(first), OctetsAtOnce);
            for (std::size_t i = 0; i < memos.size(); ++i) {
                if (memos[i].IsDamaged)
                    Note(column, first + i, ids[first + i]);
            }
            first += std::max<std::size_t>(memos.size(), 1);
        }
    }

    void Note(int column, std::size_t place, qint64 id)
    {
        const QString& field = Table_->Columns[static_cast<std::size_t>(column)].Name;
        const qint64 row = Table_->CounterColumn() >= 0 ? id : Done_ + static_cast<qint64>(place) + 1;
        Report_.Verdict = FileReport::State::Damaged;
        Report_.Memos.append({Table_->Name, field, row, true});
        if (Report_.Faults.size() < MostFaults) {
            Report_.Faults.append(QStringLiteral("The field '%1' of row %2 of the table '%3' is not what was saved.")
                                      .arg(field)
                                      .arg(row)
                                      .arg(Table_->Name));
        }
    }

    ServerStore& Store_;
    TablePtr Table_;
    FileReport& Report_;
    qint64 Done_ = 0;
};

} // namespace

void CopyToFile(const ConnectString& connect, const QString& target, const engine::CopyProgress& progress)
{
    ServerStore store(connect, true, ServerStore::Missing::IsError);
    store.HoldSnapshot();
    CopyStoreToFile(store, target, progress);
}

FileReport Examine(const ConnectString& connect, const engine::CopyProgress& progress)
{
    FileReport report;
    ServerStore store(connect, true, ServerStore::Missing::IsError);
    store.HoldSnapshot();
    const engine::SchemaPtr schema = store.CurrentSchema();
    qint64 total = 0;
    for (const TablePtr& table : schema->Tables)
        total += store.CountRows(table);
    qint64 done = 0;
    for (const TablePtr& table : schema->Tables) {
        TableExamination(store, table, report).Run([&](qint64 rows) {
            done += rows;
            if (progress && !progress(std::min(done, total), total))
                throw Error(errCancelled, QStringLiteral("Cancel was selected."));
        });
    }
    return report;
}

StationExchange::StationExchange(const ConnectString& connect) : Store_(connect, false, ServerStore::Missing::IsError)
{
}

StationExchange::~StationExchange()
{
    TakeBack();
}

void StationExchange::TakeBack() noexcept
{
    if (!std::exchange(IsNoted_, false))
        return;
    try {
        Store_.Rollback();
    } catch (const Error&) {
        // The server takes it back by itself.
    }
}

void StationExchange::Note(bool)
{
    TakeBack();
    Store_.BeginTrans();
    IsNoted_ = true;
    try {
        Store_.LockForChange();
    } catch (...) {
        TakeBack();
        throw;
    }
}

void StationExchange::KeepAs(const QString& keepName, const engine::CopyProgress& progress)
{
    CopyStoreToFile(Store_, keepName, progress);
}

void StationExchange::RequireSameRows(const QString& replacement)
{
    const auto source = EngineOfFile(replacement).Open(replacement, QString(), true);
    for (const TablePtr& table : Store_.CurrentSchema()->Tables) {
        const TablePtr copied = source->CurrentSchema()->Find(table->Name);
        if (!copied || source->CountRows(copied) != Store_.CountRows(table)) {
            throw Error(errFileDamaged, QStringLiteral("The copy of the station does not hold what its table '%1' "
                                                       "holds.")
                                            .arg(table->Name));
        }
    }
}

bool StationExchange::Put(const QString& replacement)
{
    const auto source = EngineOfFile(replacement).Open(replacement, QString(), true);
    std::vector<std::pair<QString, qint64>> counters;
    for (const TablePtr& table : Store_.CurrentSchema()->Tables)
        counters.emplace_back(table->Name, Store_.LastCounter(table));
    try {
        Store_.Clear();
        CopyStore(*source, Store_, {});
        for (const auto& [name, last] : counters) {
            const TablePtr table = Store_.CurrentSchema()->Find(name);
            if (table && table->CounterColumn() >= 0)
                Store_.RaiseCounter(table, last);
        }
    } catch (...) {
        TakeBack();
        throw;
    }
    IsNoted_ = false;
    Store_.CommitTrans();
    return true;
}

} // namespace dao::postgres
