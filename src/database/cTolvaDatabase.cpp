// SPDX-License-Identifier: Apache-2.0
#include "database/cTolvaDatabase.h"

#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupStore.h"
#include "database/HTMLTemplates.h"
#include "database/SettingsStore.h"
#include "database/StationContext.h"
#include "database/StationDetails.h"
#include "database/StationDialogs.h"
#include "database/StationFile.h"
#include "database/StationStructure.h"
#include "database/watch/StationWatch.h"
#include "messages/FolderStore.h"
#include "messages/HighlightSettings.h"
#include "messages/MessageStore.h"
#include "platform/directory/clsKVUser.h"
#include "prizes/PrizeStore.h"
#include "prizes/WinnerStore.h"

cTolvaDatabase::cTolvaDatabase()
    : Station_(std::make_unique<StationContext>()),
      Settings_(std::make_unique<SettingsStore>(*Station_)),
      Details_(std::make_unique<StationDetails>(*Station_, *Settings_)),
      Highlights_(std::make_unique<HighlightSettings>(*Settings_)),
      Folders_(std::make_unique<FolderStore>(*Station_)),
      Messages_(std::make_unique<MessageStore>(*Station_, *Settings_, *Details_, *Folders_, *Highlights_)),
      Prizes_(std::make_unique<PrizeStore>(*Station_, *Settings_)),
      Winners_(std::make_unique<WinnerStore>(*Station_, *Prizes_)),
      Backups_(std::make_unique<BackupStore>(*Station_, *Settings_)),
      Watch_(std::make_unique<StationWatch>(*this))
{
    SetLabelDefaults(AddressLabelsPageSetup_);
    connect(Messages_.get(), &MessageStore::MessageSaved, this, &cTolvaDatabase::MessageSaved);
    connect(Messages_.get(), &MessageStore::MessageDeleted, this, &cTolvaDatabase::MessageDeleted);
    connect(Prizes_.get(), &PrizeStore::PrizeSaved, this, &cTolvaDatabase::PrizeSaved);
    connect(Prizes_.get(), &PrizeStore::PrizeDeleted, this, &cTolvaDatabase::PrizeDeleted);
}

cTolvaDatabase::~cTolvaDatabase()
{
    if (IsOpen())
        CloseTolvaDatabase();
    Backups_->StopTimer();
}

// Opening and closing.

qint32 cTolvaDatabase::OpenTolvaDatabase(const QString& givenLocation, const QString& givenConnect)
{
    // The arguments may be this object's own properties, which closing empties.
    const QString location = givenLocation; // NOLINT(performance-unnecessary-copy-initialization)
    const QString connect = givenConnect;   // NOLINT(performance-unnecessary-copy-initialization)
    Station_->LastError = {};
    WriteDebugLog(QStringLiteral("Closing any previous Database"));
    CloseTolvaDatabase();
    StationFile file(*Station_);
    if (const qint32 result = file.Open(location, connect))
        return result;
    WriteDebugLog(QStringLiteral("Reading Database Settings"));
    const bool areSettingsRead = ReadDatabaseSettings();
    const qint32 failure = areSettingsRead ? -1 : LastErrorNumber();
    const bool isReady = InsistOnStationDetails(areSettingsRead);
    file.LogOpening(file.NameAndPath(), isReady);
    return isReady ? 0 : failure;
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
    if (Information().Path.isEmpty())
        return 0;
    StationFile file(*Station_);
    {
        const BusyPointer busy;
        WriteDebugLog(QStringLiteral("Unloading Handler Form"), 5);
        Backups_->StopTimer();
        file.Close();
    }
    file.LogClosing();
    file.Forget();
    WriteDebugLog(QStringLiteral("Database Closed"));
    return 0;
}

qint16 cTolvaDatabase::ValidateTolvaDatabase(const QString& fileName)
{
    return StationStructure::Validate(fileName, SilentMode());
}

bool cTolvaDatabase::DisplaySettings()
{
    const clsKVUser* user = Station_->CurrentUser();
    if (user && !user->ChangeSettings()) {
        UserInterface::Current().MessageBox(
            {QStringLiteral("You are not allowed to use or alter the Tolva Database's Settings"), QString(),
             MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
        return false;
    }
    return StationDialogs::InForce().DatabaseSettings(*this);
}

// What stands of the station and of this object.

bool cTolvaDatabase::IsOpen() const
{
    return Station_->Database != nullptr;
}

int cTolvaDatabase::Openings() const
{
    return Station_->Openings;
}

int cTolvaDatabase::DebugMode()
{
    return GeneralHelper::DebugMode();
}

void cTolvaDatabase::SetDebugMode(int level)
{
    GeneralHelper::SetDebugMode(level);
}

const QString& cTolvaDatabase::Description() const
{
    return Station_->Information.Description;
}

const QString& cTolvaDatabase::Location() const
{
    return Station_->Information.Location;
}

const DatabaseInformation& cTolvaDatabase::Information() const
{
    return Station_->Information;
}

QString cTolvaDatabase::DatabaseReference() const
{
    return FileHelper::WithoutExtension(Information().FileName);
}

LockingMode cTolvaDatabase::DatabaseLockingMode() const
{
    if (Location().isEmpty() || !IsOpen())
        return LockingMode::Unknown;
    return StationStructure::LockingModeOf(*Station_->Database);
}

bool cTolvaDatabase::SilentMode() const
{
    return Station_->IsSilent;
}

void cTolvaDatabase::SetSilentMode(bool silent)
{
    Station_->IsSilent = silent;
}

bool cTolvaDatabase::RaiseEvents() const
{
    return Station_->RaisesEvents;
}

void cTolvaDatabase::SetRaiseEvents(bool raise)
{
    Station_->RaisesEvents = raise;
}

bool cTolvaDatabase::StampsEveryChange() const
{
    return Station_->StampsEveryChange;
}

void cTolvaDatabase::SetStampsEveryChange(bool stamps)
{
    Station_->StampsEveryChange = stamps;
}

clsKVDirectory* cTolvaDatabase::DirectoryDatabase() const
{
    return Station_->Directory;
}

void cTolvaDatabase::SetDirectoryDatabase(clsKVDirectory* directory)
{
    Station_->Directory = directory;
}

int cTolvaDatabase::LastErrorNumber() const
{
    return Station_->LastError.Number();
}

const QString& cTolvaDatabase::LastErrorDescription() const
{
    return Station_->LastError.Description();
}

dao::Transaction cTolvaDatabase::BeginChange() const
{
    return dao::Transaction(Station_->OpenedDatabase());
}

bool cTolvaDatabase::BeginBeingTold() const
{
    return Station_->Database && Station_->Database->BeginBeingTold();
}

bool cTolvaDatabase::TakeChanges() const
{
    return Station_->Database && Station_->Database->TakeChanges();
}

dao::Database& cTolvaDatabase::File() const
{
    return Station_->OpenedDatabase();
}

std::unique_ptr<dao::Recordset> cTolvaDatabase::OpenSnapshot(const QString& sql) const
{
    return Station_->OpenSnapshot(sql);
}

// Page templates.

QString cTolvaDatabase::HTMLTemplatesLocation() const
{
    return HTMLTemplates::FolderOf(Location());
}

QStringList cTolvaDatabase::GetHTMLTemplateReferences(const QString& prefix) const
{
    return IsOpen() && !Location().isEmpty() ? HTMLTemplates::References(Location(), prefix) : QStringList();
}

QString cTolvaDatabase::GetHTMLTemplateFileName(const QString& prefix, const QString& reference) const
{
    return IsOpen() && !Location().isEmpty() ? HTMLTemplates::FileName(Location(), prefix, reference) : QString();
}
