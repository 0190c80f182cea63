// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FileConversion.h"

#include "platform/files/FileSystem.h"
#include "platform/records/FileOpening.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/query/StoredValues.h"
#include "platform/records/query/TableRows.h"

#include <QCryptographicHash>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstring>

namespace dao
{

namespace
{

using engine::Direction;
using engine::MemoFetch;
using engine::Store;
using engine::TablePtr;

/// The rows of a table as a sum over them, whatever their order.
using Digest = std::array<quint64, 4>;

constexpr int RowsBetweenReports = 256;

/// Told of each row of both readings.
class Progress
{
public:
    Progress(const std::function<bool(qint64, qint64)>& advance, qint64 total) : Advance_(advance), Total_(total) {}

    void Step()
    {
        // Also at the first: a small one can be stopped too.
        const bool isDue = ++Done_ == 1 || Done_ % RowsBetweenReports == 0;
        if (isDue && Advance_ && !Advance_(std::min(Done_, Total_), Total_))
            throw Error(errCancelled, QStringLiteral("Cancel was selected."));
    }

private:
    const std::function<bool(qint64, qint64)>& Advance_;
    qint64 Total_;
    qint64 Done_ = 0;
};

/// Each row with all its values, memos included, in order of entry.
void ForEachRow(Store& store, const TablePtr& table, Progress& progress,
                const std::function<void(const std::vector<StoredValue>&)>& visit)
{
    Row row;
    std::vector<StoredValue> values(table->Columns.size());
    bool isThere = store.ReadEnd(table, -1, Direction::Forward, MemoFetch::SmallOnes, row);
    for (; isThere; isThere = store.ReadNext(table, -1, Direction::Forward, MemoFetch::SmallOnes, row)) {
        RowReader reader(row.Cells.data());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const CellView cell = reader.Next();
            values[i] = cell.CellKind == CellView::Kind::Deferred
                            ? query::WholeMemo(store, table, static_cast<int>(i), row.Id)
                            : query::ViewOf(cell);
        }
        visit(values);
        progress.Step();
    }
}

void AddTo(Digest& digest, const std::vector<StoredValue>& values)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const StoredValue& value : values) {
        const QByteArray text = std::holds_alternative<QByteArray>(value) ? std::get<QByteArray>(value) : QByteArray();
        // A whole number and the floating-point number that equals it are one value to a column, and so are both zeros.
        const double real = query::RealIn(value) + 0.0;
        const std::array<qint64, 3> head{static_cast<qint64>(query::IsNull(value)),
                                         static_cast<qint64>(query::IsNumber(value)), text.size()};
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(head.data()), sizeof(head)));
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(&real), sizeof(real)));
        hash.addData(text);
    }
    const QByteArray result = hash.result();
    Digest row{};
    std::memcpy(row.data(), result.constData(), sizeof(row));
    for (std::size_t i = 0; i < row.size(); ++i)
        digest[i] += row[i];
}

/// A commit of what was inserted, whenever it is much: a transaction may be kept in memory. Nobody sees the file before
/// it is whole.
class Portions
{
public:
    explicit Portions(Store& target) : Target_(target) { Target_.BeginTrans(); }

    void Add(const std::vector<StoredValue>& row)
    {
        for (const StoredValue& value : row)
            Octets_ += std::holds_alternative<QByteArray>(value) ? std::get<QByteArray>(value).size() : 0;
        if (Octets_ < Portion)
            return;
        Octets_ = 0;
        Target_.CommitTrans();
        Target_.BeginTrans();
    }
    void Finish() { Target_.CommitTrans(); }

private:
    static constexpr qint64 Portion = qint64{32} * 1024 * 1024;

    Store& Target_;
    qint64 Octets_ = 0;
};

Digest CopyTable(Store& source, const TablePtr& from, Store& target, Portions& portions, Progress& progress)
{
    target.AddTable(*from);
    const TablePtr to = target.CurrentSchema()->Find(from->Name);
    Digest digest{};
    std::vector<engine::Assignment> row;
    ForEachRow(source, from, progress, [&](const std::vector<StoredValue>& values) {
        row.clear();
        for (std::size_t i = 0; i < values.size(); ++i)
            row.push_back({static_cast<int>(i), &values[i]});
        target.Insert(to, row);
        AddTo(digest, values);
        portions.Add(values);
    });
    if (from->CounterColumn() >= 0)
        target.RaiseCounter(to, source.LastCounter(from));
    return digest;
}

qint64 RowsOf(Store& store, const engine::Schema& schema)
{
    qint64 rows = 0;
    for (const TablePtr& table : schema.Tables)
        rows += store.CountRows(table);
    return rows;
}

Digest DigestOf(Store& store, const TablePtr& table, Progress& progress)
{
    Digest digest{};
    ForEachRow(store, table, progress, [&](const std::vector<StoredValue>& values) { AddTo(digest, values); });
    return digest;
}

void RequireSame(Store& target, const TablePtr& from, const Digest& wanted, Progress& progress)
{
    if (DigestOf(target, target.CurrentSchema()->Find(from->Name), progress) != wanted)
        throw Error(errFileDamaged,
                    QStringLiteral("The table '%1' reads otherwise once it is converted.").arg(from->Name));
}

} // namespace

void CopyStore(Store& source, Store& target, const std::function<bool(qint64, qint64)>& advance)
{
    const engine::SchemaPtr schema = source.CurrentSchema();
    Progress progress(advance, 2 * RowsOf(source, *schema));
    std::vector<Digest> digests;
    Portions portions(target);
    for (const TablePtr& table : schema->Tables)
        digests.push_back(CopyTable(source, table, target, portions, progress));
    portions.Finish();
    for (std::size_t i = 0; i < digests.size(); ++i)
        RequireSame(target, schema->Tables[i], digests[i], progress);
    if (source.CurrentSchema() != schema)
        throw Error(errLocked, QStringLiteral("The database was changed while it was converted. Try again."));
}

void ConvertDatabase(const QString& source, const QString& target, const QString& engine,
                     const std::function<bool(qint64 done, qint64 total)>& advance)
{
    engine::Engine& from = EngineOfFile(source);
    engine::Engine& to = engine::EngineRegistry::Instance().ForNewFiles(engine);
    if (&from == &to)
        throw Error(errNotSupported, QStringLiteral("'%1' has that format already.").arg(source));
    if (from.Capabilities().IsServer)
        throw Error(errNotSupported, QStringLiteral("'%1' says that its station is on a server.").arg(source));
    RequireFolder(target);
    const QString file = QFileInfo(target).absoluteFilePath();
    const auto store = from.Open(QFileInfo(source).absoluteFilePath(), QString(), true);
    to.Create(file);
    try {
        CopyStore(*store, *to.Open(file, QString(), false), advance);
    } catch (...) {
        FileSystem::Current().Remove(file);
        throw;
    }
}

QString FormatOf(const QString& file)
{
    return EngineOfFile(file).Name();
}

bool HasFormat(const QString& file, const QString& engine)
{
    return &EngineOfFile(file) == &engine::EngineRegistry::Instance().ForNewFiles(engine);
}

void MoveIntoLinked(const QString& source, const QString& linkFile,
                    const std::function<bool(qint64 done, qint64 total)>& advance, const std::function<void()>& put)
{
    engine::Engine& from = EngineOfFile(source);
    if (from.Capabilities().IsServer)
        throw Error(errNotSupported, QStringLiteral("'%1' says that its station is on a server already.").arg(source));
    const auto store = from.Open(QFileInfo(source).absoluteFilePath(), QString(), true);
    EngineOfFile(linkFile).MoveIn(
        QFileInfo(linkFile).absoluteFilePath(), [&](Store& target) { CopyStore(*store, target, advance); }, put);
}

void FinishMoveIntoLinked(const QString& linkFile)
{
    EngineOfFile(linkFile).FinishMoveIn(QFileInfo(linkFile).absoluteFilePath());
}

QString MoveOutOfLinked(const QString& linkFile, const QString& target, const QString& engine,
                        const std::function<bool(qint64 done, qint64 total)>& advance, const std::function<void()>& put)
{
    engine::Engine& from = EngineOfFile(linkFile);
    engine::Engine& to = engine::EngineRegistry::Instance().ForNewFiles(engine);
    RequireFolder(target);
    const QString file = QFileInfo(target).absoluteFilePath();
    const auto copy = [&](Store& store) {
        FileSystem::Current().Remove(file); // of an attempt before, in which the connection broke
        to.Create(file);
        CopyStore(store, *to.Open(file, QString(), false), advance);
    };
    try {
        return from.MoveOut(QFileInfo(linkFile).absoluteFilePath(), copy, put);
    } catch (...) {
        FileSystem::Current().Remove(file);
        throw;
    }
}

} // namespace dao
