// SPDX-License-Identifier: Apache-2.0

// Reading what a database file says of itself.

#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/DatabaseTarget.h"
#include "platform/records/DBEngine.h"

namespace
{
constexpr int LogLevel = 5;

void Report(const QString& text, const PendingError& pending, bool silent)
{
    ReportProblem(text, pending.Number(), silent, pending.Description());
}

/// Whether the server holds a database of that name.
bool ExistsOnServer(const QString& name, const QString& connect, bool silent)
{
    PendingError pending;
    std::unique_ptr<dao::Workspace> workspace;
    if (!pending.Try(
            [&] { workspace = dao::DBEngine::CreateWorkspace(QString(), QString(), QString(), dao::dbUseODBC); })) {
        Report(QStringLiteral("opening a DB Workspace"), pending, silent);
    }
    std::unique_ptr<dao::Connection> connection;
    if (workspace && !pending.Try([&] {
            connection = workspace->OpenConnection(QString(), dao::dbDriverNoPrompt, false, connect);
        })) {
        Report(QStringLiteral("connecting to '%1'").arg(dao::DBEngine::WithoutPassword(connect)), pending, silent);
    }
    if (!connection) {
        WriteDebugLog(QStringLiteral("Exit: connection not opened"));
        return false;
    }
    std::unique_ptr<dao::Recordset> databases;
    const QString query = QStringLiteral("Select * from master..sysdatabases WHERE Name='%1'").arg(name);
    if (!pending.Try([&] { databases = connection->OpenRecordset(query); }))
        Report(QStringLiteral("retrieving the list of databases"), pending, silent);
    const bool exists = databases && databases->RecordCount() != 0;
    if (!exists)
        WriteDebugLog(QStringLiteral("Exit: database not found"));
    return exists;
}

QString TextOf(const QVariant& value)
{
    return value.isValid() ? value.toString() : QString();
}

/// Description and type are in every file. A file older than the other fields still reads.
void ReadRow(const dao::Recordset& recordset, DatabaseInformation& information, PendingError& pending)
{
    pending.Try([&] {
        information.Description = TextOf(recordset.Collect(QStringLiteral("Description")));
        information.Type = recordset.Collect(QStringLiteral("Type")).toInt();
    });
    if (pending.Number() != 0)
        return;
    PendingError older;
    older.Try([&] {
        information.Version = recordset.Collect(QStringLiteral("Version")).toFloat();
        const QString lastAccessed = TextOf(recordset.Collect(QStringLiteral("LastAccessed")));
        information.LastAccessed = Date::Parse(lastAccessed).value_or(Date());
        information.LastAccessedSoftware = TextOf(recordset.Collect(QStringLiteral("LastAccessedSoftware")));
        information.LastBackup = TextOf(recordset.Collect(QStringLiteral("LastBackup")));
    });
}

/// Fills the record from an open database; what goes wrong stays in pending.
void ReadDatabase(dao::Database& database, const QString& name, DatabaseInformation& information, bool reportErrors,
                  bool isLocal, PendingError& pending)
{
    std::unique_ptr<dao::Recordset> recordset;
    bool isEmpty = false;
    // The table's first page is read when its first row is asked for.
    if (!pending.Try([&] {
            recordset = database.OpenRecordset(QStringLiteral("Description"));
            isEmpty = recordset->AtEOF();
            if (isLocal)
                information.EngineVersion = database.Version();
        })) {
        if (reportErrors)
            Report(QStringLiteral("opening the description information in the database\n\n") + name, pending, false);
        return;
    }
    if (!isEmpty) {
        ReadRow(*recordset, information, pending);
    } else if (reportErrors) {
        UserInterface::Current().MessageBox(
            {QStringLiteral("There was no Description information in the database.\n\n%1\n\n"
                            "Please contact Kelvarin Ltd.")
                 .arg(name),
             QString(), MessageBoxButtons::OK, MessageBoxIcon::Stop, MessageBoxAnswer::OK});
    }
}
} // namespace

qint16 DAO_DatabaseFunctions::GetDatabaseInformation(const QString& name, DatabaseInformation& information,
                                                     bool reportErrors, const QString& connect)
{
    WriteDebugLog(QStringLiteral("Started GetDatabaseInformation: DBName='%1', ReportErrors=%2, Connect='%3'")
                      .arg(name, LogText(reportErrors), dao::DBEngine::WithoutPassword(connect)),
                  LogLevel);
    const bool isLocal = connect.isEmpty();
    const QString target = TargetName(name, connect);
    if (!isLocal && !ExistsOnServer(target, connect, !reportErrors))
        return -1;
    if (isLocal && FileHelper::FileSize(target) <= 0) {
        WriteDebugLog(QStringLiteral("Exit: File not found"));
        return -1;
    }

    PendingError pending;
    std::unique_ptr<dao::Database> database;
    pending.Try([&] { database = OpenTarget(target, connect); });
    if (pending.Number() == dao::errUnrecognisedFormat) {
        pending.Clear();
        if (isLocal && !CompactRepairDatabase(target, nullptr, QString(), !reportErrors)) {
            WriteDebugLog(QStringLiteral("Exit: DB Could not be compact/repaired"));
            return -1;
        }
        pending.Try([&] { database = OpenTarget(target, connect); });
    }
    information = DatabaseInformation();
    if (database) {
        ReadDatabase(*database, target, information, reportErrors, isLocal, pending);
    } else if (reportErrors) {
        Report(QStringLiteral("opening the database to read it's information\n\n") + target, pending, false);
    }
    if (pending.Number() == 0) {
        information.Path = target;
        information.FileName = FileHelper::FileNameOf(target);
        information.Location = isLocal ? FileHelper::FolderOf(target) : target;
        information.Connect = connect;
        information.IsServerDatabase = !isLocal;
    }
    if (database) {
        PendingError ignored;
        ignored.Try([&] { database->Close(); });
    }
    WriteDebugLog(QStringLiteral("Finished GetDatabaseInformation"), LogLevel);
    return static_cast<qint16>(pending.Number());
}
