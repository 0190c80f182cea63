// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqliteEngine.h"

#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/sqlite/ChangeLog.h"
#include "platform/records/engines/sqlite/ContentReplacement.h"
#include "platform/records/engines/sqlite/FileCheck.h"
#include "platform/records/engines/sqlite/FileCopy.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/FileIdentity.h"
#include "platform/records/engines/sqlite/MemoChecks.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqliteStore.h"

#include <QtEndian>

namespace dao::sqlite
{

namespace
{

constexpr char SqliteMark[] = "SQLite format 3"; // With the closing zero.
constexpr int ApplicationIdOffset = 68;

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
    FileReport Examine(const QString& fileName, const engine::CopyProgress& progress) override;
    qint64 IdentityOf(const QString& fileName) override
    {
        Connection connection(fileName, Connection::Mode::ReadOnly);
        return ReadIdentity(connection);
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

void SqliteEngine::Compact(const QString& source, const QString& target)
{
    TemporaryFile file(target);
    const TemporaryFile repaired(target);
    const FileReport report = ExamineFile(source, {});
    RequireNotDamaged(source, report);
    const QString sound = report.Verdict == FileReport::State::Repairable ? repaired.Name() : source;
    if (sound != source) {
        repaired.Vacate();
        RepairIndexes(source, sound);
    }
    try {
        Connection connection(sound, Connection::Mode::ReadWrite);
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
    FinishCompaction(file.Name());
    file.LimitRights(source);
    file.MoveTo(target);
}

FileReport SqliteEngine::Examine(const QString& fileName, const engine::CopyProgress& progress)
{
    return ExamineFile(fileName, progress);
}

void SqliteEngine::Copy(const QString& source, const QString& target, const engine::CopyProgress& progress)
{
    CopyFile(source, target, progress);
    try {
        RequireNotDamaged(source, ExamineFile(target, progress));
    } catch (...) {
        FileSystem::Current().Remove(target);
        throw;
    }
}

} // namespace

std::unique_ptr<engine::Engine> MakeSqliteEngine()
{
    return std::make_unique<SqliteEngine>();
}

} // namespace dao::sqlite
