// SPDX-License-Identifier: Apache-2.0

// Opening and closing a station: the steps of cTolvaDatabase in their order.

#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "common/MachineSettings.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/Collision.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/cTolvaDatabase.h"
#include "platform/records/DBEngine.h"

namespace
{
constexpr float StructureVersion = 1.071F;
enum AuditKind
{
    auditOpened = 1,
    auditClosed = 2
};

const QString OpenedTitle = QStringLiteral("Tolva Database Opened");
const QString LastAccessed = QStringLiteral("LastAccessed");
const QString LastAccessedSoftware = QStringLiteral("LastAccessedSoftware");

std::unique_ptr<dao::Recordset> OpenTable(dao::Database& database, const QString& name)
{
    return database.OpenRecordset(name, dao::dbOpenTable);
}
} // namespace

qint32 cTolvaDatabase::FailOpen(const QString& text, qint32 result)
{
    LogDatabaseEvent(auditOpened, OpenedTitle, text, 0);
    return result;
}

qint32 cTolvaDatabase::OpenTolvaDatabase(const QString& givenLocation, const QString& givenConnect)
{
    // The arguments may be this object's own properties, which closing empties.
    const QString location = givenLocation;
    const QString connect = givenConnect;
    KeepLastError(PendingError());
    WriteDebugLog(QStringLiteral("Closing any previous Database"));
    CloseTolvaDatabase();
    if (location.isEmpty())
        return FailOpen(QStringLiteral("No Database specified"), -1);
    const QString fileName = FileHelper::Join(location, QStringLiteral("Tolva.mdb"));
    if (!FileHelper::FolderExists(location))
        return FailOpen(QStringLiteral("'%1' - Path not found").arg(location), -1);

    WriteDebugLog(QStringLiteral("Validating Database (General)"));
    QString title = QStringLiteral("Kelvarin Tolva Database");
    if (const int code = DAO_DatabaseFunctions::ValidateDatabase(fileName, TolvaDatabaseType, true, title, connect)) {
        const QString hexadecimal = QString::number(static_cast<quint16>(code), 16).toUpper();
        return FailOpen(QStringLiteral("'%1' Failed validation (&H%2)").arg(fileName, hexadecimal), -code);
    }

    WriteDebugLog(QStringLiteral("Reading Database Information"));
    if (const int code = DAO_DatabaseFunctions::GetDatabaseInformation(fileName, Information_, true, QString())) {
        // A backup that was put back in this moment is no damage, nor is a lock that somebody else holds.
        if (!connect.isEmpty() || code == dao::errFileReplaced || code == dao::errLocked)
            return code;
        if (const qint32 result = OfferBackupOfCorruptedDatabase(fileName, connect, code))
            return result;
    }

    if (MachineSettings::AlwaysValidatesDatabases() || Information_.Version < StructureVersion) {
        WriteDebugLog(QStringLiteral("Updating Database Structure"));
        if (const int code = ValidateTolvaDatabase(fileName))
            return FailOpen(QStringLiteral("'%1' - Couldn't validate the Database's Structure").arg(fileName), code);
    }

    WriteDebugLog(QStringLiteral("Opening Database"));
    PendingError pending;
    OpenWithLockingMode(fileName, pending);
    if (Information_.Description.isEmpty())
        AskForStationName(pending);

    WriteDebugLog(QStringLiteral("Checking Settings Table"));
    CheckSettingsIndex();
    if (!pending.Try([&] { BringUpToDate(location); })) {
        KeepLastError(pending);
        return FailOpen(NameAndPath() + QStringLiteral(" - ") + pending.Description(), pending.Number());
    }

    WriteDebugLog(QStringLiteral("Reading Database Settings"));
    const bool areSettingsRead = ReadDatabaseSettings();
    const qint32 failure = areSettingsRead ? -1 : LastErrorNumber_;
    const bool isReady = InsistOnStationDetails(areSettingsRead);
    LogDatabaseEvent(auditOpened, OpenedTitle, NameAndPath(), isReady ? 1 : 0);
    return isReady ? 0 : failure;
}

/// The one step of the open whose error goes to the caller, with the reason of the open before it where that failed.
void cTolvaDatabase::CheckSettingsIndex() const
{
    if (!Database_ && LastErrorNumber_ != 0)
        throw dao::Error(LastErrorNumber_, LastErrorDescription_);
    const auto settings = OpenTable(OpenedDatabase(), QStringLiteral("Settings"));
    settings->SetIndex(QStringLiteral("Main"));
    settings->Close();
}

void cTolvaDatabase::BringUpToDate(const QString& location)
{
    if (Information_.Version < StructureVersion)
        WriteStructureVersion();
    RefreshHTMLTemplates(location);
}

QString cTolvaDatabase::NameAndPath() const
{
    return QStringLiteral("%1 (%2)").arg(Description(), Information_.Path);
}

/// The first opener fixes the locking mode for all later ones, so a connection that asks for record locks stands
/// while the database is opened. Its failure stops nothing: the file then opens in the mode it has.
void cTolvaDatabase::OpenWithLockingMode(const QString& fileName, PendingError& pending)
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
    ++Openings_;
    if (!pending.Try([&] { Database_ = dao::DBEngine::OpenDatabase(fileName); }))
        KeepLastError(pending);
    if (connection) {
        WriteDebugLog(QStringLiteral("Closing database (ADO)"));
        PendingError ignored;
        ignored.Try([&] { connection->Close(); });
        // Whatever went wrong so far shows at the first table that is used.
        pending.Clear();
    }
}

/// A nameless database is named by its user. Cancelling leaves it nameless, and the question returns at the next open.
void cTolvaDatabase::AskForStationName(PendingError& pending)
{
    if (pending.Number() != 0)
        WriteDebugLog(QStringLiteral("Error opening database ") + pending.Description());
    pending.Try([&] {
        const auto recordset = OpenTable(OpenedDatabase(), QStringLiteral("Description"));
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
        Information_.Description = name;
    });
}

void cTolvaDatabase::WriteStructureVersion()
{
    WriteDebugLog(QStringLiteral("Updating Database version number to 1.071"));
    UntilNobodyInterferes([&] {
        const auto recordset = OpenTable(OpenedDatabase(), QStringLiteral("Description"));
        recordset->MoveFirst();
        if (recordset->NoMatch())
            recordset->AddNew();
        else
            recordset->Edit();
        recordset->SetCollect(QStringLiteral("Version"), static_cast<double>(StructureVersion));
        recordset->Update();
    });
}

bool cTolvaDatabase::InsistOnStationDetails(bool settingsRead)
{
    if (!settingsRead || (!StationPhoneNumber().isEmpty() && !StationName().isEmpty()))
        return settingsRead;
    UserInterface::Current().MessageBox(
        {QStringLiteral("You must enter a Name and Phone Number for your station before you can continue"), QString(),
         MessageBoxButtons::OK, MessageBoxIcon::Information, MessageBoxAnswer::OK});
    return DisplaySettings();
}

qint32 cTolvaDatabase::CloseTolvaDatabase()
{
    if (Information_.Path.isEmpty())
        return 0;
    {
        const BusyPointer busy;
        WriteDebugLog(QStringLiteral("Unloading Handler Form"), 5);
        UnloadBackupTimer();
        WriteLastAccess();
        if (Database_) {
            PendingError ignored;
            ignored.Try([&] { Database_->Close(); });
            Database_.reset();
        }
    }
    LogDatabaseEvent(auditClosed, QStringLiteral("Tolva Database Closed"), NameAndPath(), 1);
    Information_.EngineVersion = QStringLiteral("0");
    Information_.Version = 0;
    Information_.Type = 0;
    Information_.Description.clear();
    Information_.Path.clear();
    Information_.FileName.clear();
    Information_.Location.clear();
    WriteDebugLog(QStringLiteral("Database Closed"));
    return 0;
}

void cTolvaDatabase::WriteLastAccess()
{
    PendingError ignored;
    ignored.Try([&] {
        const auto recordset = OpenTable(OpenedDatabase(), QStringLiteral("Description"));
        if (!recordset->AtEOF())
            recordset->MoveFirst();
        const QString now = ClockHelper::CurrentTime().GeneralDate();
        const QString software = QStringLiteral("Tolva - %1.%2.%3")
                                     .arg(TOLVA_VERSION_MAJOR)
                                     .arg(TOLVA_VERSION_MINOR)
                                     .arg(TOLVA_VERSION_REVISION);
        if (recordset->Collect(LastAccessed).toString() == now &&
            recordset->Collect(LastAccessedSoftware).toString() == software)
            return; // by the same version within the same second: nothing would change
        recordset->Edit();
        recordset->SetCollect(LastAccessed, now);
        recordset->SetCollect(LastAccessedSoftware, software);
        recordset->Update();
    });
}
