// SPDX-License-Identifier: Apache-2.0

// Creating a database file, and completing the Description table that every database has.

#include "common/FileHelper.h"
#include "common/MachineSettings.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/DatabaseTarget.h"
#include "database/TableCheck.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"

#include <QUuid>

namespace
{
constexpr int LogLevel = 5;

qint16 Report(const QString& text, const PendingError& pending, bool silent)
{
    ReportProblem(text, pending.Number(), silent, pending.Description());
    return static_cast<qint16>(pending.Number());
}

/// 0, or the number of the error that stopped it.
qint16 CreateOnServer(const QString& name, const QString& connect, bool silent)
{
    WriteDebugLog(QStringLiteral("Getting Database Information"), LogLevel);
    DatabaseInformation information;
    if (DAO_DatabaseFunctions::GetDatabaseInformation(name, information, false, connect) == 0)
        return 0;
    WriteDebugLog(QStringLiteral("Couldn't get info, creating new database"), LogLevel);
    PendingError pending;
    std::unique_ptr<dao::Workspace> workspace;
    std::unique_ptr<dao::Connection> connection;
    pending.Try([&] {
        workspace = dao::DBEngine::CreateWorkspace(QString(), QString(), QString(), dao::dbUseODBC);
        connection = workspace->OpenConnection(QString(), dao::dbDriverNoPrompt, false, connect);
    });
    if (pending.Number() != 0)
        Report(QStringLiteral("opening a new DB Workspace"), pending, silent);
    if (!connection)
        return static_cast<qint16>(pending.Number());
    if (!pending.Try([&] { connection->Execute(QStringLiteral("CREATE DATABASE \"%1\"").arg(name)); }))
        return Report(QStringLiteral("creating a new database '%1'").arg(name), pending, silent);
    connection->Close();
    workspace->Close();
    return 0;
}

/// Another computer that opens the same new folder may put a whole file in its place at this moment, so what goes is
/// looked at once more under a name of its own.
void RemoveEmptyFile(const QString& fileName)
{
    const QString aside = fileName + QStringLiteral(".empty-") + QUuid::createUuid().toString(QUuid::Id128);
    FileSystem& files = FileSystem::Current();
    const FileStatus status = files.RenameToFreeName(fileName, aside);
    if (!status.IsDone()) {
        if (FileHelper::FileSize(fileName) == 0)
            throw dao::Error(dao::ErrorNumberOf(status),
                             QStringLiteral("'%1' cannot be removed: %2").arg(fileName, status.Words()));
        return;
    }
    if (FileHelper::FileSize(aside) > 0)
        FileHelper::RenameWithProgress(aside, fileName, QString());
    else
        files.Remove(aside);
}

/// 0, -1 when the user declines, or the number of the error that stopped it.
qint16 CreateLocalFile(const QString& fileName, bool silent)
{
    if (FileHelper::FileSize(fileName) > 0)
        return 0;
    if (!silent) {
        const MessageBoxAnswer answer = UserInterface::Current().MessageBox(
            {QStringLiteral("The database %1 does not exist. Would you like to create it?").arg(fileName), QString(),
             MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No});
        if (answer != MessageBoxAnswer::Yes)
            return -1;
    }
    FileHelper::CreateFolder(FileHelper::FolderOf(fileName));
    PendingError pending;
    if (FileHelper::FileSize(fileName) == 0) {
        pending.Try([&] { RemoveEmptyFile(fileName); });
        if (pending.Number() != 0)
            return Report(QStringLiteral("deleting the old file"), pending, false);
    }
    pending.Try([&] {
        dao::DBEngine::CreateDatabase(fileName, QStringLiteral(";LANGID=0x0409;CP=1252;COUNTRY=0"),
                                      MachineSettings::EngineOfNewDatabases())
            ->Close();
    });
    // Another computer that opens the same new folder may have been quicker; its file got the name when it was whole.
    if (pending.Number() == 0 || FileHelper::FileSize(fileName) > 0)
        return 0;
    return Report(QStringLiteral("creating the new database"), pending, false);
}

int CheckDescriptionTable(dao::Database& database)
{
    WriteDebugLog(QStringLiteral("Looking for 'Description' table"), LogLevel);
    PendingError pending;
    if (!pending.Try([&] { database.TableDefs().Item(DescriptionTableShape().Name); }))
        WriteDebugLog(QStringLiteral("Can't find 'Description' table"), LogLevel);
    return CheckTable(database, DescriptionTableShape(),
                      {.FirstIndexIsPrimary = false,
                       .AcceptsOutOfMemoryAsAbsent = true,
                       .SetsAllowZeroLength = false,
                       .ReportsIndexFailure = false});
}

std::unique_ptr<dao::Recordset> OpenDescription(dao::Database& database, const QString& connect, PendingError& pending)
{
    WriteDebugLog(QStringLiteral("Opening 'Description' table"), LogLevel);
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] { recordset = database.OpenRecordset(QStringLiteral("Description")); });
    if (pending.Number() == dao::errServerTableNotFound && !connect.isEmpty()) {
        WriteDebugLog(QStringLiteral("Opening 'dbo.Description' table"), LogLevel);
        pending.Clear();
        pending.Try([&] { recordset = database.OpenRecordset(QStringLiteral("dbo.Description")); });
    }
    return recordset;
}

/// The one row, where the table has none yet.
void AddDescriptionRow(dao::Recordset& recordset, qint32 type, bool silent, QString& title)
{
    if (!silent && title.isEmpty()) {
        InputBoxRequest request;
        request.Prompt = QStringLiteral("Please enter a suitable description for this database");
        UserInterface::Current().InputBox(request, title);
    }
    if (title.isEmpty())
        title = QStringLiteral("You have to have a title!");
    recordset.AddNew();
    recordset.SetCollect(QStringLiteral("Description"), title.trimmed());
    recordset.SetCollect(QStringLiteral("Type"), type);
    recordset.Update();
}
/// Whether somebody else has added the row meanwhile.
bool HasRow(dao::Database& database, const QString& connect)
{
    PendingError pending;
    const auto recordset = OpenDescription(database, connect, pending);
    bool hasRow = false;
    pending.Try([&] { hasRow = recordset && !recordset->AtEOF(); });
    return hasRow;
}
} // namespace

qint16 DAO_DatabaseFunctions::ValidateDatabase(const QString& name, qint32 type, bool silent, QString& title,
                                               const QString& connect)
{
    WriteDebugLog(
        QStringLiteral("Started Validate Database: DBName='%1' Type=%2, SilentMode=%3, Title='%4' Connect='%5'")
            .arg(name, QString::number(type), LogText(silent), title, dao::DBEngine::WithoutPassword(connect)),
        LogLevel);
    const QString target = TargetName(name, connect);
    const qint16 created =
        connect.isEmpty() ? CreateLocalFile(target, silent) : CreateOnServer(target, connect, silent);
    if (created != 0)
        return created;

    WriteDebugLog(QStringLiteral("Opening Database"), LogLevel);
    PendingError pending;
    std::unique_ptr<dao::Database> database;
    if (!pending.Try([&] { database = OpenTarget(target, connect); })) {
        const QString where =
            connect.isEmpty() ? target : target + QStringLiteral(", ") + dao::DBEngine::WithoutPassword(connect);
        return Report(QStringLiteral("opening the database ") + where, pending, false);
    }
    if (const int number = CheckDescriptionTable(*database))
        return static_cast<qint16>(number);
    const auto recordset = OpenDescription(*database, connect, pending);
    bool isEmpty = false;
    if (pending.Number() == 0)
        pending.Try([&] { isEmpty = recordset->AtEOF(); });
    if (isEmpty && !pending.Try([&] { AddDescriptionRow(*recordset, type, silent, title); }) &&
        HasRow(*database, connect))
        pending.Clear();
    if (pending.Number() != 0)
        return Report(QStringLiteral("opening the description information"), pending, false);
    recordset->Close();
    database->Close();
    return 0;
}
