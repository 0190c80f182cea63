// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/FileCheck.h"

#include "platform/records/engines/MemoCheck.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/engines/sqlite/SqliteStore.h"

namespace dao::sqlite
{

namespace
{

using engine::Column;
using engine::IndexKey;
using engine::Table;

constexpr int FaultsKept = 100;
constexpr char PageCheck[] = "PRAGMA integrity_check(1000000)";
/// What SQLite may do before a file counts as one that has no end. A page holds a few hundred rows at most, and each of
/// them takes a few hundred steps.
constexpr qint64 StepsPerPage = 200'000;
constexpr qint64 StepsAtLeast = 5'000'000;
constexpr int StepsBetweenCalls = 10'000;
/// Of one lock, while memos are read.
constexpr int RowsAtATime = 256;
constexpr qsizetype OctetsAtATime = qsizetype{4} * 1024 * 1024;

/// What integrity_check says of an index that does not match its table. Whether rows are lost is told apart from that.
bool ConcernsIndexOnly(const QString& fault)
{
    return fault.contains(QLatin1String("missing from index")) || fault.contains(QLatin1String("entries in index")) ||
           fault.contains(QLatin1String("differ from index"));
}

bool IsDamage(const Error& error)
{
    return error.Number() == errFileDamaged || error.Number() == errDuplicateValue ||
           error.Number() == errFieldTooSmall;
}

class Examination
{
public:
    Examination(const QString& file, const engine::CopyProgress& progress)
        : Connection_(file, Connection::Mode::ReadOnly), Progress_(progress)
    {
        StepsLeft_ = StepsAtLeast + StepsPerPage * Connection_.Number("PRAGMA page_count");
        sqlite3_progress_handler(Connection_.Handle(), StepsBetweenCalls, &Examination::Advance, this);
    }

    FileReport Run()
    {
        Part([&] {
            const engine::SchemaPtr schema = ReadSchema(Connection_, nullptr);
            CheckMemosOf(*schema);
        });
        Part([&] { CheckPages(); });
        Part([&] { CheckStructure(); });
        return std::move(Report_);
    }

private:
    static int Advance(void* self)
    {
        auto* examination = static_cast<Examination*>(self);
        examination->StepsLeft_ -= StepsBetweenCalls;
        if (examination->StepsLeft_ < 0)
            return 1;
        return !examination->Progress_ || examination->Progress_(1, 1) ? 0 : 1;
    }

    void Find(const QString& words)
    {
        Report_.Verdict = FileReport::State::Damaged;
        Report_.IsStructureSound = false;
        Keep(words);
    }
    void Keep(const QString& words)
    {
        if (Report_.Faults.size() < FaultsKept && !Report_.Faults.contains(words))
            Report_.Faults.append(words);
    }

    /// Runs a part of the examination. Damage that ends it is a finding.
    template <typename Work>
    void Part(Work&& work)
    {
        try {
            if (StepsLeft_ >= 0)
                work();
        } catch (const Error& error) {
            Connection_.Abandon();
            if (error.Number() == errCancelled && StepsLeft_ < 0)
                Find(QStringLiteral("Reading it does not come to an end."));
            else if (IsDamage(error))
                Find(error.Description());
            else
                throw;
        }
    }

    void CheckMemosOf(const engine::Schema& schema)
    {
        const bool hasChecks = FormatOf(Connection_) != FormatVersionWithoutChecks;
        for (const engine::TablePtr& table : schema.Tables) {
            for (const Column& column : table->Columns) {
                if (column.IsMemo())
                    Part([&] { CheckMemos(*table, column, hasChecks); });
            }
        }
    }

    void CheckMemos(const Table& table, const Column& column, bool hasChecks)
    {
        const QByteArray name = QuoteName(table.Name);
        const QByteArray behind = " FROM " + name + " NOT INDEXED WHERE " + RowIdName + " > ? ORDER BY " + RowIdName;
        const Statement memos(Connection_, QByteArrayLiteral("SELECT ") + RowIdName + ", " + QuoteName(column.Name) +
                                               ", " + (hasChecks ? CheckColumn(column) : QByteArrayLiteral("NULL")) +
                                               behind);
        const Statement next(Connection_, QByteArrayLiteral("SELECT ") + RowIdName + behind + " LIMIT 1");
        qint64 last = std::numeric_limits<qint64>::min();
        while (true) {
            const qint64 before = last;
            try {
                if (!CheckSomeMemos(memos, table, column, hasChecks, last))
                    return;
            } catch (const Error& error) {
                if (!IsDamage(error))
                    throw;
                // The row behind the last one that could be read is the one that cannot, if it can be found at all.
                StatementUse use(next);
                use.Bind(1, last);
                if (!use.Step())
                    throw;
                last = use.Integer(0);
                Add({table.Name, column.Name, last, false});
            }
            if (last <= before)
                throw OutOfOrder(table);
        }
    }

    /// The memos of some rows behind the last one, under one lock. False when there are no more.
    bool CheckSomeMemos(const Statement& statement, const Table& table, const Column& column, bool hasChecks,
                        qint64& last)
    {
        Connection_.StartWaiting();
        StatementUse use(statement);
        use.Bind(1, last);
        qsizetype octets = 0;
        for (int rows = 0; rows < RowsAtATime && octets < OctetsAtATime; ++rows) {
            if (!use.Step())
                return false;
            const qint64 id = use.Integer(0);
            if (id <= last)
                throw OutOfOrder(table);
            const std::string_view text = use.Text(1);
            octets += static_cast<qsizetype>(text.size());
            const bool isAsSaved = use.IsNull(1) || use.IsNull(2) ? use.IsNull(1) && use.IsNull(2)
                                                                  : use.Integer(2) == engine::MemoCheck(id, text);
            if (hasChecks && !isAsSaved)
                Add({table.Name, column.Name, id, true});
            last = id;
        }
        return true;
    }

    void Add(const DamagedMemo& memo)
    {
        Report_.Verdict = FileReport::State::Damaged;
        Report_.Memos.append(memo);
        const QString words =
            memo.IsReadable ? QStringLiteral("The field '%1' of row %2 of the table '%3' was changed on the disk.")
                            : QStringLiteral("The field '%1' of row %2 of the table '%3' cannot be read.");
        Keep(words.arg(memo.Field).arg(memo.Row).arg(memo.Table));
    }

    Error OutOfOrder(const Table& table) const
    {
        return {errFileDamaged,
                QStringLiteral("The rows of the table '%1' do not stand in their order.").arg(table.Name)};
    }

    void CheckPages()
    {
        Connection_.StartWaiting();
        const Statement statement(Connection_, PageCheck);
        StatementUse use(statement);
        while (use.Step()) {
            const std::string_view text = use.Text(0);
            const QString fault = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
            if (fault == QLatin1String("ok"))
                continue;
            if (!ConcernsIndexOnly(fault)) {
                Find(fault);
                continue;
            }
            if (Report_.Verdict == FileReport::State::Sound)
                Report_.Verdict = FileReport::State::Repairable;
            Keep(fault);
        }
    }

    /// Our own tables against what SQLite holds.
    void CheckStructure()
    {
        Connection_.StartWaiting();
        Connection_.Execute("BEGIN");
        const engine::SchemaPtr schema = ReadSchema(Connection_, nullptr);
        const bool hasChecks = FormatOf(Connection_) != FormatVersionWithoutChecks;
        qint64 indexes = 0;
        for (const engine::TablePtr& table : schema->Tables)
            indexes += CheckTable(*table, hasChecks);
        const auto count = static_cast<qint64>(schema->Tables.size());
        if (Connection_.Number("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name NOT LIKE '~%'") !=
            count)
            Find(QStringLiteral("The list of its tables does not name those that are there."));
        if (Connection_.Number("SELECT count(*) FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL") !=
            indexes)
            Find(QStringLiteral("The list of its indexes does not name those that are there."));
        Connection_.Execute("COMMIT");
    }

    /// The number of its indexes that are trees of their own.
    qint64 CheckTable(const Table& table, bool hasChecks)
    {
        const QByteArray from = " FROM " + QuoteName(table.Name);
        QByteArray columns = QByteArray(VersionColumn) + ", " + OctetsColumn;
        int wanted = 2 + static_cast<int>(table.CounterColumn() < 0);
        for (const Column& column : table.Columns) {
            columns += ", " + QuoteName(column.Name);
            if (hasChecks && column.IsMemo())
                columns += ", " + CheckColumn(column);
            wanted += hasChecks && column.IsMemo() ? 2 : 1;
        }
        const Statement named(Connection_, "SELECT " + columns + from);
        const Statement all(Connection_, "SELECT *" + from);
        if (sqlite3_column_count(all.Handle()) != wanted)
            Find(QStringLiteral("The list of fields of the table '%1' does not name those that are there.")
                     .arg(table.Name));
        qint64 trees = table.HasMemos() ? 1 : 0;
        if (trees > 0)
            CheckIndex(table, QuoteName(QStringLiteral("~%1").arg(table.Id)), nullptr);
        for (const IndexKey& index : table.Indexes) {
            if (IsRowIdOrder(table, index))
                continue;
            ++trees;
            CheckIndex(table, IndexName(table, index), &index);
        }
        return trees;
    }

    /// Where indexes do not match, their tables count, unless an index remembers rows that its table has lost, or the
    /// table repeats what cannot be repeated. key: null for the list's index.
    void CheckIndex(const Table& table, const QByteArray& name, const IndexKey* key)
    {
        const QByteArray from = " FROM " + QuoteName(table.Name);
        // A bare count(*) SQLite takes from whichever index is smallest.
        const QByteArray entries = QByteArrayLiteral("SELECT count(+") + RowIdName + ')' + from + " INDEXED BY " + name;
        const Statement counting(Connection_, entries); // it is there at all
        if (Report_.Verdict != FileReport::State::Repairable)
            return;
        const QByteArray rows = "SELECT count(*)" + from + " NOT INDEXED";
        if (Connection_.Number(entries.constData()) > Connection_.Number(rows.constData()))
            Find(QStringLiteral("The table '%1' has lost rows that an index still names.").arg(table.Name));
        if (key == nullptr || !key->Unique)
            return;
        QByteArrayList columns;
        for (const int column : key->Columns)
            columns += QuoteName(table.Columns[static_cast<std::size_t>(column)].Name);
        const QByteArray repeated = "SELECT EXISTS (SELECT 1" + from + " NOT INDEXED WHERE " +
                                    columns.join(" IS NOT NULL AND ") + " IS NOT NULL GROUP BY " + columns.join(", ") +
                                    " HAVING count(*) > 1)";
        if (Connection_.Number(repeated.constData()) != 0)
            Find(QStringLiteral("The table '%1' holds a value twice that must be there once.").arg(table.Name));
    }

    Connection Connection_;
    const engine::CopyProgress& Progress_;
    qint64 StepsLeft_ = 0;
    FileReport Report_;
};

} // namespace

FileReport ExamineFile(const QString& file, const engine::CopyProgress& progress)
{
    try {
        {
            // As a station is opened: what it is, how long, and its structure. It takes back what a dead process left
            // half done as well.
            const SqliteStore probe(file, true);
        }
        return Examination(file, progress).Run();
    } catch (const Error& error) {
        if (!IsDamage(error))
            throw;
        return {FileReport::State::Damaged, false, {error.Description()}, {}};
    }
}

} // namespace dao::sqlite
