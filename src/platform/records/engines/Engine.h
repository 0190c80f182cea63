// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/FileReport.h"
#include "platform/records/Recordset.h"
#include "platform/records/RowFormat.h"
#include "platform/records/engines/Schema.h"
#include "platform/records/jetsql/SyntaxTree.h"

#include <QStringList>

#include <functional>
#include <limits>
#include <optional>
#include <span>

/// What an engine does for the objects of the record store. Nothing here names a file format, a dialect or a lock:
/// an engine without SQL evaluates the syntax tree itself. All failures are dao::Error. One thread.
namespace dao
{
class Connection;
}

namespace dao::engine
{

/// A column's new value in an insert or update.
struct Assignment
{
    int Column;
    const StoredValue* Value;
};

enum class Direction
{
    Forward,
    Backward
};

/// Whether a row is read with its memos where they are small, or without any. Either way a memo that was not read
/// stands in the row as a deferred cell.
enum class MemoFetch
{
    Deferred,
    SmallOnes
};

/// One column of a query's result.
struct ResultColumn
{
    Column Definition;
    int Source = -1;       ///< The table it comes from, in ResultShape::Sources; -1 for a computed value.
    int SourceColumn = -1; ///< Its place there.
};

struct ResultShape
{
    std::vector<ResultColumn> Columns;
    std::vector<TablePtr> Sources; ///< In order of FROM.
    bool Updatable = false;        ///< Rows of the result are rows of the one table.
    QStringList Parameters;        ///< Names that are no columns.
    /// False for a query that sums rows up: its rows are rows of no table.
    bool HasKeys = true;
};

enum class ResultPart
{
    Keys,  ///< Row ids only.
    Values ///< Row ids and cells, memos of a table deferred.
};

/// keys: the row id in each source, NoRow where an outer join found none; empty without keys. cells: a packed row,
/// empty when only keys were asked for; both are gone when the call returns.
using RowSink = std::function<void(std::span<const qint64> keys, std::string_view cells)>;

inline constexpr qint64 NoRow = std::numeric_limits<qint64>::min();

/// Told how many of how many octets are copied; answers false to stop.
using CopyProgress = std::function<bool(qint64 done, qint64 total)>;

/// A memo as it was read.
struct StoredMemo
{
    bool HasRow = false;    ///< False for a row that is gone.
    bool IsDamaged = false; ///< Not what was saved: it was changed on the disk.
    QByteArray Utf8;        ///< As it stands there; a null array for Null.
    /// Instead of Utf8, where the engine likes, for a large one all of whose characters are octets (U+0000 to U+00FF):
    /// a mail that is not in ASCII would take twice its room there, and more for each copy that is made of it.
    QByteArray Octets;

    qsizetype Size() const { return Utf8.size() + Octets.size(); }
};

/// As much of a memo as was asked for.
MemoBeginning BeginningOf(const StoredMemo& memo, qsizetype mostOctets);

struct ParameterValue
{
    QString Name;
    QVariant Value;
};
/// Those of a query that are set. One that is missing is error 3061.
using ParameterValues = std::vector<ParameterValue>;

/// One open database. Between calls it holds no lock, unless a transaction is open.
class Store
{
public:
    Store() = default;
    virtual ~Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    virtual QString Version() const = 0;
    virtual bool Updatable() const = 0;
    /// Whether whoever opens the same file next could go on with this store, to read and write, and notice nothing of
    /// its past. Costs next to nothing. An engine that cannot tell answers false.
    virtual bool MayServeAgain() { return false; }
    /// Of one that may: whether opening this file would find what this store finds. Nothing is raised.
    virtual bool IsAsNew(const QString& /*fileName*/) { return false; }

    /// The structure now, other processes' additions included. A call costs little when nothing changed, and the
    /// result is the same object then.
    virtual SchemaPtr CurrentSchema() = 0;
    /// Errors: 3010 the name is taken, 3251 the engine cannot hold such a table, column or index.
    virtual void AddTable(const Table& table) = 0;
    virtual void AddColumn(const QString& table, const Column& column) = 0;
    virtual void AddIndex(const QString& table, const IndexKey& index) = 0;

    /// Whether the engine is told from now on of what others commit. To be asked anew now and then: it has to be begun
    /// again with each connection. Nothing is raised.
    virtual bool BeginBeingTold() { return false; }
    /// Whether somebody else has committed since the last call, as far as it was told. Asks nobody, and costs next to
    /// nothing. Nothing is raised.
    virtual bool TakeChanges() { return false; }

    /// From BeginTrans on all changes are one: they become durable together in CommitTrans, or are taken back. Nests:
    /// an inner CommitTrans hands its changes to the outer transaction, an inner Rollback takes back what came since
    /// its own BeginTrans.
    virtual void BeginTrans() = 0;
    virtual void CommitTrans() = 0;
    virtual void Rollback() = 0;
    /// Takes the writer's lock for the transaction now, not at its first change. 3251 outside a transaction.
    virtual void LockForChange() = 0;

    /// Rows by index (its place in the table, -1 for order of entry). Each fills row and answers true, or answers
    /// false and leaves it alone.
    virtual bool ReadEnd(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row) = 0;
    /// The row next to row, by the cells and the id that stand in it: it need not exist any more.
    virtual bool ReadNext(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row) = 0;
    /// keys: for the leading columns of the index.
    virtual bool Seek(const TablePtr& table, int index, SeekComparison comparison, std::span<const StoredValue> keys,
                      MemoFetch memos, Row& row) = 0;
    /// The rows of these ids, in their order; a row that is gone has the id NoRow. Stops early, after one row at least,
    /// when octetBudget is used up.
    virtual std::vector<Row> ReadRows(const TablePtr& table, std::span<const qint64> ids, MemoFetch memos,
                                      qint64 octetBudget) = 0;
    /// A memo of each of these rows. Stops early, after one row at least, when octetBudget is used up.
    virtual std::vector<StoredMemo> ReadMemos(const TablePtr& table, int column, std::span<const qint64> ids,
                                              qint64 octetBudget) = 0;
    /// The first octets of a memo of each of these rows, at most so many of each, unchecked; nothing for a row that is
    /// gone. May stop early, after one row at least. What is here reads the memos whole, for an engine that cannot read
    /// a part of one.
    virtual std::vector<std::optional<MemoBeginning>>
    ReadMemoBeginnings(const TablePtr& table, int column, std::span<const qint64> ids, qsizetype mostOctets);
    virtual int CountRows(const TablePtr& table) = 0;
    /// The highest number that the table's counter gave, as far as the file tells; 0 without a counter. Draws none.
    virtual qint64 LastCounter(const TablePtr& table) = 0;
    /// From now on the table's counter gives numbers above this one, for rows that are brought with their numbers.
    virtual void RaiseCounter(const TablePtr& table, qint64 last) = 0;

    /// The next number of the table's counter; never the same again.
    virtual qint64 DrawCounter(const TablePtr& table) = 0;
    /// The new row's id. 3022, 94 (Null in a primary index).
    virtual qint64 Insert(const TablePtr& table, std::span<const Assignment> values) = 0;
    /// Stores nothing unless the row still has this version: 3167 gone, 3197 changed; 3022, 94.
    virtual void Update(const TablePtr& table, qint64 id, qint64 version, std::span<const Assignment> values) = 0;
    /// 3167 when it is gone already.
    virtual void Delete(const TablePtr& table, qint64 id) = 0;

    /// Errors of the four: 3078 no such table, 3061 no such column, 13 types that do not compare.
    virtual ResultShape Describe(const jetsql::SelectStatement& select) = 0;
    virtual void Select(const jetsql::SelectStatement& select, const ParameterValues& parameters, ResultPart part,
                        const RowSink& sink) = 0;
    /// See Database::MarkOf. What is here goes through Select.
    virtual quint64 MarkOf(const jetsql::SelectStatement& select);
    /// An UPDATE or DELETE, all or nothing; the number of rows changed.
    virtual int Execute(const jetsql::Statement& statement, const ParameterValues& parameters) = 0;
    virtual QStringList ParametersOf(const jetsql::Statement& statement) = 0;
};

/// Puts another content into a database file that others may have open, in one step: they find the old content or the
/// new one, and no commit is lost in between. See ContentExchange.h for what each call promises.
class ContentExchange
{
public:
    ContentExchange() = default;
    virtual ~ContentExchange() = default;
    ContentExchange(const ContentExchange&) = delete;
    ContentExchange& operator=(const ContentExchange&) = delete;

    virtual void Note(bool keepsWritersOut) = 0;
    virtual bool IsAsNoted() = 0;
    virtual void KeepAs(const QString& keepName, const CopyProgress& progress) = 0;
    virtual void RequireSameRows(const QString& replacement) = 0;
    virtual bool Put(const QString& replacement) = 0;
};

/// Keeps everybody from reading and writing a file, whatever it holds, until it is gone.
class FileLock
{
public:
    FileLock() = default;
    virtual ~FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
};

/// One kind of database. Lives in the EngineRegistry for the life of the process.
class Engine
{
public:
    struct Capability
    {
        bool Creates = false;  ///< Makes and compacts files.
        bool IsServer = false; ///< Serves connect strings.
    };

    virtual ~Engine() = default;

    virtual QString Name() const = 0;
    virtual Capability Capabilities() const = 0;
    /// False, with the reason in words, when what the engine stands on is missing on this machine.
    virtual bool IsAvailable(QString& reason) const = 0;

    /// Whether a file that begins with these octets (up to 100 of them) is this engine's.
    virtual bool RecognisesFile(const QByteArray& firstOctets) const = 0;
    virtual bool RecognisesConnect(const QString& connect) const = 0;

    /// connect: empty for a file.
    virtual std::unique_ptr<Store> Open(const QString& name, const QString& connect, bool readOnly) = 0;
    virtual void Create(const QString& fileName) = 0;
    /// Of an engine that serves connect strings: a new, empty database where the string says, and a file that stands
    /// for it from then on. part: empty, or the name of what belongs to the database that the string names, and lies
    /// beside it. Errors: 3010 when there is one with tables already, those of Open and of a new file.
    virtual void CreateLinked(const QString& /*file*/, const QString& /*connect*/, const QString& /*part*/)
    {
        throw Error(errNotSupported, QStringLiteral("This database engine has no server."));
    }
    /// A file that stands for a database that is there; 3024 when there is none.
    virtual void Link(const QString& /*file*/, const QString& /*connect*/, const QString& /*part*/)
    {
        throw Error(errNotSupported, QStringLiteral("This database engine has no server."));
    }
    /// Fills the database that CreateLinked made: copy does, in one transaction; then put puts the file in the place of
    /// what was copied. Nobody can open it in between. An attempt that was cut off leaves what CreateLinked takes for
    /// nothing, or, behind put, what FinishMoveIn opens.
    virtual void MoveIn(const QString& /*file*/, const std::function<void(Store&)>& /*copy*/,
                        const std::function<void()>& /*put*/)
    {
        throw Error(errNotSupported, QStringLiteral("This database engine has no server."));
    }
    virtual void FinishMoveIn(const QString& /*file*/) {}
    /// Takes the database that a file stands for away from its server. copy reads it; nobody else changes it meanwhile.
    /// Then it is closed: the server keeps it, and whoever opens it, or has it open, is told that it was moved; then
    /// put puts the copy in the place of the file. What either raises leaves the database open. One that is closed
    /// already, because an attempt before was cut off, is taken as any other. Answers where on the server it is, in
    /// words. Errors: those of Open, and 3260 when somebody else keeps the lock.
    virtual QString MoveOut(const QString& /*file*/, const std::function<void(Store&)>& /*copy*/,
                            const std::function<void()>& /*put*/)
    {
        throw Error(errNotSupported, QStringLiteral("This database engine has no server."));
    }
    /// Removes what CreateLinked made, database and file.
    virtual void TakeAwayLinked(const QString& /*file*/) {}
    virtual void Compact(const QString& source, const QString& target) = 0;
    /// A whole copy of a file as it stands at one moment, under a name that is free, however many others write to it
    /// meanwhile; none of them waits for longer than a moment. Checked to its last page, and on the disk. A failure
    /// leaves no target.
    virtual void Copy(const QString& source, const QString& target, const CopyProgress& progress) = 0;
    /// Errors: those of Open; 3251 from an engine that cannot exchange the content of a file that others have open.
    virtual std::unique_ptr<ContentExchange> BeginExchange(const QString&)
    {
        throw Error(errNotSupported, QStringLiteral("This database engine cannot exchange the content of a file."));
    }
    /// Makes replacement, a file of this engine, what is put in the place of replaced: whoever has that open will see
    /// that it is another state, and no automatic number is given again that replaced, as far as it can be read, gave.
    virtual void MarkAsRestored(const QString& /*replacement*/, const QString& /*replaced*/) {}
    /// For a file that is to lose its name because it cannot be opened any more. Null from an engine that does not lock
    /// files; 3260 when somebody else keeps the lock.
    virtual std::unique_ptr<FileLock> LockOut(const QString&) { return nullptr; }
    /// Reads a file to its last page. progress as for Copy, without numbers. Errors: those of opening but 3049, which
    /// is a finding.
    virtual FileReport Examine(const QString& fileName, const CopyProgress& progress) = 0;
    /// A number that a file carries through renames and compactions, and that another file or another state of the
    /// station put in its place has not; 0 where the file has none. Errors: those of Open.
    virtual qint64 IdentityOf(const QString& /*fileName*/) { return 0; }
    /// The names of the files that belong to a database file while it is in use or after a crash, whether they are
    /// there or not. A file that takes its name must not meet them.
    virtual QStringList CompanionsOf(const QString& fileName) const = 0;
    virtual std::unique_ptr<Connection> OpenConnection(const QString& name, int options, bool readOnly,
                                                       const QString& connect) = 0;
};

} // namespace dao::engine
