#include "platform/records/engines/sqlite/SqliteEngine.h"

#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/sqlite/ChangeLog.h"
#include "platform/records/engines/sqlite/ContentReplacement.h"
#include "platform/records/engines/sqlite/FileCopy.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/FileIdentity.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/engines/sqlite/SqliteStore.h"

#include <QFile>
#include <QtEndian>

namespace dao::sqlite
{

namespace
{

constexpr char SqliteMark[] = "SQLite format 3"; // With the closing zero.
constexpr int ApplicationIdOffset = 68;
constexpr char FullCheck[] = "PRAGMA integrity_check(1000000)";

class SqliteEngine final : public engine::Engine
{
public:
    QString Name() const override { return QStringLiteral("sqlite"); }
    Capability Capabilities() const override { return {.Creates = true, .IsServer = false}; }
    bool IsAvailable(QString&) const override { return true; }

    bool RecognisesFile(const QByteArray& firstOctets) const override
    {
        return firstOctets.size() >= ApplicationIdOffset + 4 &&
               firstOctets.startsWith(QByteArrayView(SqliteMark, sizeof(SqliteMark))) &&
               qFromBigEndian<quint32>(firstOctets.constData() + ApplicationIdOffset) == ApplicationId;
    }
    bool RecognisesConnect(const QString&) const override { return false; }

    std::unique_ptr<engine::Store> Open(const QString& name, const QString&, bool readOnly) override
    {
        try {
            return std::make_unique<SqliteStore>(name, readOnly);
        } catch (const Error& error) {
            // Whoever keeps a file to himself for that long keeps it from being opened.
            if (error.Number() == errLocked)
                throw Error(errCannotOpen, QStringLiteral("Cannot open '%1': it is in use.").arg(name));
            throw;
        }
    }

    void Create(const QString& fileName) override;
    void Compact(const QString& source, const QString& target) override;
    void Copy(const QString& source, const QString& target, const engine::CopyProgress& progress) override;
    void Check(const QString& fileName) override;
    std::unique_ptr<engine::ContentExchange> BeginExchange(const QString& fileName) override
    {
        return std::make_unique<ContentReplacement>(fileName);
    }
    void MarkAsRestored(const QString& replacement, const QString& replaced) override
    {
        MarkFileAsRestored(replacement, replaced);
    }
    std::unique_ptr<engine::FileLock> LockOut(const QString& fileName) override
    {
        return std::make_unique<ContentLock>(fileName);
    }
    QStringList CompanionsOf(const QString& fileName) const override
    {
        return {fileName + QStringLiteral("-journal"), ChangeLog::NameFor(fileName)};
    }

    std::unique_ptr<dao::Connection> OpenConnection(const QString&, int, bool, const QString&) override
    {
        throw Error(errNotSupported, QStringLiteral("This database engine serves no connections."));
    }
};

void SqliteEngine::Create(const QString& fileName)
{
    // Under another name until it is whole, so that no half-made database is ever found under the wanted one.
    TemporaryFile file(fileName);
    {
        Connection connection(file.Name(), Connection::Mode::Create);
        connection.Execute("BEGIN IMMEDIATE");
        CreateStructure(connection);
        WriteNewIdentity(connection);
        connection.Execute("COMMIT");
    }
    file.MoveTo(fileName);
}

/// What integrity_check says of an index that does not match its table. A copy builds all indexes anew from the
/// tables, so that such a fault loses nothing; every other fault may.
bool ConcernsIndexOnly(const QString& fault)
{
    return fault.contains(QLatin1String("missing from index")) || fault.contains(QLatin1String("entries in index"));
}

void RequireSound(Connection& connection, const char* check, bool acceptsIndexFaults)
{
    const Statement statement(connection, check);
    StatementUse use(statement);
    while (use.Step()) {
        const std::string_view text = use.Text(0);
        const QString fault = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        if (fault == QLatin1String("ok") || (acceptsIndexFaults && ConcernsIndexOnly(fault)))
            continue;
        throw Error(errFileDamaged,
                    QStringLiteral("The database '%1' is damaged. (%2)").arg(connection.FileName(), fault));
    }
}

void SqliteEngine::Compact(const QString& source, const QString& target)
{
    TemporaryFile file(target);
    {
        // Says what is wrong with a file that cannot even be opened, and takes back what a dead process left half done.
        const SqliteStore probe(source, true);
    }
    try {
        Connection connection(source, Connection::Mode::ReadWrite);
        RequireSound(connection, FullCheck, true);
        const Statement statement(connection, "VACUUM INTO ?");
        const QByteArray name = file.Name().toUtf8();
        StatementUse use(statement);
        use.Bind(1, std::string_view(name.constData(), static_cast<std::size_t>(name.size())));
        use.Run();
    } catch (const Error& error) {
        // Rows that repeat a unique value can only be there because the index over them was broken.
        if (error.Number() == errDuplicateValue)
            throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged.").arg(source));
        throw;
    }
    {
        Connection copy(file.Name(), Connection::Mode::ReadOnly);
        RequireSound(copy, FullCheck, false);
    }
    file.MoveTo(target);
}

/// Reads all of a file. Indexes are not compared with their tables: such a fault loses nothing, and a station must be
/// backed up all the same.
void CheckWhole(const QString& file, const engine::CopyProgress& progress)
{
    {
        // As a station is opened: what it is, how long, and its structure.
        const SqliteStore probe(file, true);
    }
    Connection connection(file, Connection::Mode::ReadOnly);
    const auto keepAlive = [](void* advance) {
        return (*static_cast<const engine::CopyProgress*>(advance))(1, 1) ? 0 : 1;
    };
    if (progress) {
        constexpr int StepsBetweenCalls = 100000;
        sqlite3_progress_handler(connection.Handle(), StepsBetweenCalls, keepAlive,
                                 const_cast<engine::CopyProgress*>(&progress));
    }
    RequireSound(connection, "PRAGMA quick_check(1)", false);
}

void SqliteEngine::Check(const QString& fileName)
{
    CheckWhole(fileName, {});
}

void SqliteEngine::Copy(const QString& source, const QString& target, const engine::CopyProgress& progress)
{
    CopyFile(source, target, progress);
    try {
        CheckWhole(target, progress);
    } catch (...) {
        QFile::remove(target);
        throw;
    }
}

} // namespace

std::unique_ptr<engine::Engine> MakeSqliteEngine()
{
    return std::make_unique<SqliteEngine>();
}

} // namespace dao::sqlite
