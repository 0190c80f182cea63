// SPDX-License-Identifier: Apache-2.0
#include "database/StationFile.h"

#include "common/FileHelper.h"
#include "common/MachineSettings.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupOffer.h"
#include "database/Collision.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/HTMLTemplates.h"
#include "database/LastAccess.h"
#include "database/StationContext.h"
#include "database/StationStructure.h"
#include "platform/records/DBEngine.h"
#include "platform/records/StoreReuse.h"

namespace
{
constexpr float StructureVersion = 1.071F;
enum AuditKind
{
    auditOpened = 1,
    auditClosed = 2
};

std::unique_ptr<dao::Recordset> OpenTable(dao::Database& database, const QString& name)
{
    return database.OpenRecordset(name, dao::dbOpenTable);
}
} // namespace

void StationFile::LogOpening(const QString& text, bool isDone) const
{
    Station_.LogEvent(auditOpened, QStringLiteral("Tolva Database Opened"), text, isDone ? 1 : 0);
}

void StationFile::LogClosing() const
{
    Station_.LogEvent(auditClosed, QStringLiteral("Tolva Database Closed"), NameAndPath(), 1);
}

qint32 StationFile::FailOpen(const QString& text, qint32 result) const
{
    LogOpening(text, false);
    return result;
}

qint32 StationFile::Open(const QString& location, const QString& connect)
{
    if (location.isEmpty())
        return FailOpen(QStringLiteral("No Database specified"), -1);
    const QString fileName = FileHelper::Join(location, QStringLiteral("Tolva.mdb"));
    if (!FileHelper::FolderExists(location))
        return FailOpen(QStringLiteral("'%1' - Path not found").arg(location), -1);

    const dao::StoreReuse oneOpening;
    WriteDebugLog(QStringLiteral("Validating Database (General)"));
    QString title = Title;
    if (const int code = DAO_DatabaseFunctions::ValidateDatabase(fileName, Type, true, title, connect)) {
        const QString hexadecimal = QString::number(static_cast<quint16>(code), 16).toUpper();
        return FailOpen(QStringLiteral("'%1' Failed validation (&H%2)").arg(fileName, hexadecimal), -code);
    }
    if (const qint32 result = ReadInformation(fileName, connect))
        return result;

    if (MachineSettings::AlwaysValidatesDatabases() || Station_.Information.Version < StructureVersion) {
        WriteDebugLog(QStringLiteral("Updating Database Structure"));
        if (const int code = StationStructure::Validate(fileName, Station_.IsSilent))
            return FailOpen(QStringLiteral("'%1' - Couldn't validate the Database's Structure").arg(fileName), code);
    }

    WriteDebugLog(QStringLiteral("Opening Database"));
    PendingError pending;
    OpenWithLockingMode(fileName, pending);
    if (Station_.Information.Description.isEmpty())
        AskForStationName(pending);

    WriteDebugLog(QStringLiteral("Checking Settings Table"));
    CheckSettingsIndex();
    if (!pending.Try([&] { BringUpToDate(location); })) {
        Station_.LastError = pending;
        return FailOpen(NameAndPath() + QStringLiteral(" - ") + pending.Description(), pending.Number());
    }
    return 0;
}

/// What the file says of itself; a damaged one may be replaced by a backup.
qint32 StationFile::ReadInformation(const QString& fileName, const QString& connect)
{
    WriteDebugLog(QStringLiteral("Reading Database Information"));
    const int code = DAO_DatabaseFunctions::GetDatabaseInformation(fileName, Station_.Information, true, QString());
    // A backup that was put back in this moment is no damage, nor is a lock that somebody else holds.
    if (code == 0 || !connect.isEmpty() || code == dao::errFileReplaced || code == dao::errLocked ||
        code == dao::errServer)
        return code;
    if (const qint32 result = OfferBackup(fileName, connect, code, Station_.IsSilent))
        return result;
    return DAO_DatabaseFunctions::GetDatabaseInformation(fileName, Station_.Information, true, QString());
}

/// The one step of the open whose error goes to the caller, with the reason of the open before it where that failed.
void StationFile::CheckSettingsIndex() const
{
    if (!Station_.Database && Station_.LastError)
        throw dao::Error(Station_.LastError.Number(), Station_.LastError.Description());
    const auto settings = OpenTable(Station_.OpenedDatabase(), QStringLiteral("Settings"));
    settings->SetIndex(QStringLiteral("Main"));
    settings->Close();
}

void StationFile::BringUpToDate(const QString& location)
{
    if (Station_.Information.Version < StructureVersion)
        WriteStructureVersion();
    HTMLTemplates::Refresh(location);
}

QString StationFile::NameAndPath() const
{
    return QStringLiteral("%1 (%2)").arg(Station_.Information.Description, Station_.Information.Path);
}

/// The first opener fixes the locking mode for all later ones, so a connection that asks for record locks stands
/// while the database is opened. Its failure stops nothing: the file then opens in the mode it has.
void StationFile::OpenWithLockingMode(const QString& fileName, PendingError& pending)
{
    std::unique_ptr<ado::Connection> connection;
    if (MachineSettings::UsesRecordLevelLocking()) {
        WriteDebugLog(QStringLiteral("Opening ADO Connection to Database"));
        connection = std::make_unique<ado::Connection>();
        PendingError failure;
        failure.Try([&] {
            connection->SetProvider(QStringLiteral("Microsoft.JET.OLEDB.4.0"));
            connection->SetProperty(QStringLiteral("Data Source"), fileName);
            WriteDebugLog(QStringLiteral("Setting ADO Locking mode to Record Level"));
            connection->SetProperty(QStringLiteral("Jet OLEDB:Database Locking Mode"), 1);
            connection->SetCursorLocation(2);
            WriteDebugLog(QStringLiteral("Opening database (ADO)"));
            connection->Open();
        });
        if (failure.Number() != 0) {
            WriteDebugLog(QStringLiteral("Failed - ") + failure.Description());
            connection.reset();
        }
    }
    WriteDebugLog(QStringLiteral("Opening database (DAO)"));
    ++Station_.Openings;
    if (!pending.Try([&] { Station_.Database = dao::DBEngine::OpenDatabase(fileName); }))
        Station_.LastError = pending;
    if (connection) {
        WriteDebugLog(QStringLiteral("Closing database (ADO)"));
        PendingError ignored;
        ignored.Try([&] { connection->Close(); });
        // Whatever went wrong so far shows at the first table that is used.
        pending.Clear();
    }
}

/// A nameless database is named by its user. Cancelling leaves it nameless, and the question returns at the next open.
void StationFile::AskForStationName(PendingError& pending)
{
    if (pending.Number() != 0)
        WriteDebugLog(QStringLiteral("Error opening database ") + pending.Description());
    pending.Try([&] {
        const auto recordset = OpenTable(Station_.OpenedDatabase(), QStringLiteral("Description"));
        if (recordset->AtEOF())
            return;
        dao::Field& field = (*recordset)[QStringLiteral("Description")];
        InputBoxRequest request;
        request.Prompt = QStringLiteral("What is the name of your Station?\n\n"
                                        "(Your database will be given this name as well)");
        request.Title = QStringLiteral("Open Tolva Database");
        request.Default = QStringLiteral("My Radio Station Name");
        request.MaxLength = field.Size() == 0 ? 250 : field.Size();
        QString name;
        if (UserInterface::Current().InputBox(request, name) != 0)
            return;
        recordset->Edit();
        field.SetValue(name);
        recordset->Update();
        Station_.Information.Description = name;
    });
}

void StationFile::WriteStructureVersion()
{
    WriteDebugLog(QStringLiteral("Updating Database version number to 1.071"));
    UntilNobodyInterferes([&] {
        const auto recordset = OpenTable(Station_.OpenedDatabase(), QStringLiteral("Description"));
        recordset->MoveFirst();
        if (recordset->NoMatch())
            recordset->AddNew();
        else
            recordset->Edit();
        recordset->SetCollect(QStringLiteral("Version"), static_cast<double>(StructureVersion));
        recordset->Update();
    });
}

void StationFile::Close()
{
    NoteLastAccess(Station_);
    if (!Station_.Database)
        return;
    PendingError ignored;
    ignored.Try([&] { Station_.Database->Close(); });
    Station_.Database.reset();
}

void StationFile::Forget()
{
    DatabaseInformation& information = Station_.Information;
    information.EngineVersion = QStringLiteral("0");
    information.Version = 0;
    information.Type = 0;
    information.Description.clear();
    information.Path.clear();
    information.FileName.clear();
    information.Location.clear();
}
