// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/JetOperations.h"
#include "platform/records/engines/jet/StructureEdit.h"

#include <algorithm>

/// Changes, and the caller's transactions: what a commit of the file holds, and steps of it for those inside.
namespace dao::jet
{

namespace
{

/// Before a name is looked for in the file: what no table or field can be called is refused as such.
void RequireFree(bool isTaken, const QString& words)
{
    if (isTaken)
        throw Error(errTableExists, words);
}

} // namespace

qint64 JetStore::Marks::Mark(qint64 table)
{
    for (const engine::TablePtr& each : Store_.Schema_->Tables) {
        if (each->Id == table)
            return Store_.ReaderOf(each).LastCounter();
    }
    return 0;
}

void JetStore::Marks::SetMark(qint64 table, qint64 mark)
{
    SetCounterIn(Store_.File_, static_cast<quint32>(table), static_cast<quint32>(mark));
}

JetStore::~JetStore()
{
    if (Session_.IsWriting())
        Session_.Abandon();
    Transaction_ = Transaction::None;
    Forget();
    const bool isRestoreDue = Counters_.TakenBack();
    if (IsReadOnly_ || (!isRestoreDue && !Counters_.HasRest()))
        return;
    try {
        Change([&] {
            Counters_.Restore();
            Counters_.Return();
        });
    } catch (const Error&) {
        // Numbers are left out, or those of rows that were taken back are drawn once more; no row is concerned.
    }
}

void JetStore::StartWriting()
{
    const bool sawChanges = Session_.BeginWriting();
    Pages_.BeginAnew();
    if (sawChanges)
        Forget();
    try {
        Reading([&] { LoadSchema(); });
    } catch (...) {
        Session_.Abandon();
        throw;
    }
    if (Transaction_ == Transaction::None)
        return;
    Transaction_ = Transaction::Started;
    for (int depth = 2; depth <= Depth_; ++depth)
        File_.BeginStep();
}

void JetStore::CommitWriting()
{
    try {
        Session_.Commit();
    } catch (...) {
        Forget();
        throw;
    }
    Counters_.TransactionEnded();
}

void JetStore::TakeBackStep()
{
    File_.TakeBackStep();
    Pages_.BeginAnew();
    Forget();
}

void JetStore::RestoreCounters()
{
    if (!Counters_.TakenBack())
        return;
    try {
        Change([&] { Counters_.Restore(); });
    } catch (const Error&) {
        // It must not hide the error that it follows. Here the numbers stay drawn all the same; another process may
        // draw those of the rows that were taken back.
    }
}

void JetStore::BeginTrans()
{
    if (Transaction_ == Transaction::Started)
        File_.BeginStep();
    if (Depth_ == 0)
        Transaction_ = Transaction::Announced;
    ++Depth_;
}

void JetStore::CommitTrans()
{
    if (Depth_ == 0)
        throw Error(errNotSupported, QStringLiteral("No transaction was begun."));
    if (--Depth_ > 0) {
        if (Transaction_ == Transaction::Started)
            File_.KeepStep();
        return;
    }
    if (std::exchange(Transaction_, Transaction::None) == Transaction::Announced)
        return;
    try {
        CommitWriting();
    } catch (...) {
        RestoreCounters();
        throw;
    }
}

void JetStore::Rollback()
{
    if (Depth_ == 0)
        throw Error(errNotSupported, QStringLiteral("No transaction was begun."));
    if (--Depth_ > 0) {
        if (Transaction_ != Transaction::Started)
            return;
        TakeBackStep();
        Reading([&] {
            LoadSchema();
            Counters_.Restore();
        });
        return;
    }
    if (std::exchange(Transaction_, Transaction::None) == Transaction::Announced)
        return;
    Session_.Abandon();
    Forget();
    RestoreCounters();
}

void JetStore::LockForChange()
{
    if (Depth_ == 0)
        throw Error(errNotSupported, QStringLiteral("A lock needs a transaction that was begun before."));
    Change([] {});
}

RowWriter JetStore::WriterOf(TableReader& reader)
{
    return {File_, Pages_, reader.Definition(), reader.Table()->Name};
}

FoundRow JetStore::RequireRow(TableReader& reader, qint64 id)
{
    std::optional<FoundRow> row = IsPlace(id) ? FindRow(File_, reader.Definition(), PlaceOf(id)) : std::nullopt;
    if (!row)
        throw Error(errRecordDeleted, QStringLiteral("Record is deleted."));
    return std::move(*row);
}

qint64 JetStore::DrawCounter(const engine::TablePtr& table)
{
    if (!Counters_.HasNumber(table->Id)) {
        try {
            Change([&] { Counters_.Reserve(table->Id); });
        } catch (...) {
            Counters_.GiveUp(table->Id);
            throw;
        }
    }
    return Counters_.Draw(table->Id);
}

void JetStore::RaiseCounter(const engine::TablePtr& table, qint64 last)
{
    Change([&] { Counters_.Raise(table->Id, last); });
}

qint64 JetStore::Insert(const engine::TablePtr& table, std::span<const engine::Assignment> values)
{
    return Change([&] {
        TableReader& reader = ReaderOf(table);
        std::vector<NewCell> cells(reader.Definition().Columns.size());
        for (const engine::Assignment& value : values) {
            const std::size_t place = reader.PlaceOfColumn(value.Column);
            cells[place] = CellOf(reader.Definition().Columns[place], *value.Value);
        }
        const RowPlace place = WriterOf(reader).Insert(cells);
        ForgetRows(table);
        return qint64(place.Pointer());
    });
}

void JetStore::Update(const engine::TablePtr& table, qint64 id, qint64 version,
                      std::span<const engine::Assignment> values)
{
    Change([&] {
        TableReader& reader = ReaderOf(table);
        if (VersionOf(RequireRow(reader, id).Octets()) != version)
            throw Error(errChangedByAnother,
                        QStringLiteral("The record was changed by another user since the edit began."));
        std::vector<std::optional<NewCell>> cells(reader.Definition().Columns.size());
        for (const engine::Assignment& value : values) {
            const std::size_t place = reader.PlaceOfColumn(value.Column);
            cells[place] = CellOf(reader.Definition().Columns[place], *value.Value);
        }
        WriterOf(reader).Update(PlaceOf(id), cells);
        ForgetRows(table);
    });
}

void JetStore::Delete(const engine::TablePtr& table, qint64 id)
{
    Change([&] {
        TableReader& reader = ReaderOf(table);
        RequireRow(reader, id);
        WriterOf(reader).Delete(PlaceOf(id));
        ForgetRows(table);
    });
}

void JetStore::AddTable(const engine::Table& table)
{
    Change([&] {
        RequireFree(Schema_->Find(table.Name) != nullptr, QStringLiteral("Table '%1' already exists.").arg(table.Name));
        StructureEdit(File_, Pages_).AddTable(table);
        Forget();
    });
    CurrentSchema();
}

void JetStore::AddColumn(const QString& tableName, const engine::Column& column)
{
    Change([&] {
        const engine::TablePtr table = RequireTable(tableName);
        RequireFree(table->FindColumn(column.Name) >= 0,
                    QStringLiteral("Field '%1' already exists in table '%2'.").arg(column.Name, table->Name));
        if (column.IsCounter() && table->CounterColumn() >= 0)
            throw Error(errNotSupported,
                        QStringLiteral("Table '%1' has an automatic counter already.").arg(table->Name));
        StructureEdit(File_, Pages_).AddColumn(*table, column);
        Forget();
    });
    CurrentSchema();
}

void JetStore::AddIndex(const QString& tableName, const engine::IndexKey& index)
{
    Change([&] {
        const engine::TablePtr table = RequireTable(tableName);
        RequireFree(table->FindIndex(index.Name) >= 0,
                    QStringLiteral("Index '%1' already exists in table '%2'.").arg(index.Name, table->Name));
        StructureEdit(File_, Pages_).AddIndex(*table, index);
        Forget();
    });
    CurrentSchema();
}

} // namespace dao::jet
