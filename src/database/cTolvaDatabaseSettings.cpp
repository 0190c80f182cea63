// SPDX-License-Identifier: Apache-2.0

// The settings of a station as hosts see them.

#include "common/PendingError.h"
#include "database/BackupStore.h"
#include "database/LabelSettings.h"
#include "database/SettingsStore.h"
#include "database/StationContext.h"
#include "database/StationDetails.h"
#include "database/cTolvaDatabase.h"
#include "messages/FolderStore.h"
#include "messages/HighlightSettings.h"

QVariant cTolvaDatabase::DatabaseSetting(const QString& itemName, const QVariant& defaultValue) const
{
    return Settings_->Value(itemName, defaultValue);
}

void cTolvaDatabase::SetDatabaseSetting(const QString& itemName, const QVariant& value, const QVariant& defaultValue)
{
    Settings_->SetValue(itemName, value, defaultValue);
}

bool cTolvaDatabase::ReadDatabaseSettings()
{
    Station_->LastError = {};
    if (!IsOpen())
        return false;
    {
        const SettingsStore::Reading together(*Settings_);
        Backups_->ReadSettings();
        Highlights_->Read();
        LabelSettings::Read(*Settings_, AddressLabelsPageSetup_);
    }
    PendingError pending;
    const bool areFoldersRead = pending.Try([this] {
        Folders_->Load();
        if (Folders_->PutFixedFoldersRight())
            Folders_->Load();
    });
    Station_->LastError = pending;
    if (areFoldersRead)
        Backups_->UpdateTimer();
    return areFoldersRead;
}

bool cTolvaDatabase::WriteDatabaseSettings()
{
    Backups_->WriteSettings();
    Highlights_->Write();
    LabelSettings::Write(*Settings_, AddressLabelsPageSetup_);
    return true;
}

clsFont& cTolvaDatabase::MessageHighlightFont()
{
    return Highlights_->Font();
}

void cTolvaDatabase::SetLabelDefaults(cPageSetup& pageSetup)
{
    LabelSettings::SetDefaults(pageSetup);
}

// Backups.

bool cTolvaDatabase::EnableAutoBackup() const
{
    return Backups_->IsAutomatic();
}

void cTolvaDatabase::SetEnableAutoBackup(bool enable)
{
    Backups_->SetAutomatic(enable);
}

qint32 cTolvaDatabase::BackupInterval() const
{
    return Backups_->Interval();
}

void cTolvaDatabase::SetBackupInterval(qint32 minutes)
{
    Backups_->SetInterval(minutes);
}

qint16 cTolvaDatabase::BackupExpiryDays() const
{
    return Backups_->ExpiryDays();
}

void cTolvaDatabase::SetBackupExpiryDays(qint16 days)
{
    Backups_->SetExpiryDays(days);
}

bool cTolvaDatabase::BackupDatabase(bool forceBackup)
{
    return Backups_->Make(forceBackup);
}

bool cTolvaDatabase::MakesAutomaticBackups() const
{
    return Backups_->MakesAutomaticBackups();
}

void cTolvaDatabase::SetMakesAutomaticBackups(bool makes)
{
    Backups_->SetMakesAutomaticBackups(makes);
}

// What the station is called and where it is reached.

QString cTolvaDatabase::StationName() const
{
    return Settings_->Read(StationSettings::StationName);
}

void cTolvaDatabase::SetStationName(const QString& name)
{
    Settings_->WriteOrClear(StationSettings::StationName, name);
}

QString cTolvaDatabase::StationAddress() const
{
    return Settings_->Read(StationSettings::StationAddress);
}

void cTolvaDatabase::SetStationAddress(const QString& address)
{
    Settings_->Write(StationSettings::StationAddress, address);
}

QString cTolvaDatabase::StationPhoneNumber() const
{
    return Settings_->Read(StationSettings::StationPhoneNumber);
}

void cTolvaDatabase::SetStationPhoneNumber(const QString& number)
{
    Settings_->Write(StationSettings::StationPhoneNumber, number);
}

QString cTolvaDatabase::StationSMSPhoneNumber() const
{
    return Settings_->Read(StationSettings::StationSMSPhoneNumber);
}

void cTolvaDatabase::SetStationSMSPhoneNumber(const QString& number)
{
    Settings_->Write(StationSettings::StationSMSPhoneNumber, number);
}

QString cTolvaDatabase::StationCompanyNumber() const
{
    return Settings_->Read(StationSettings::StationCompanyNumber);
}

void cTolvaDatabase::SetStationCompanyNumber(const QString& number)
{
    Settings_->Write(StationSettings::StationCompanyNumber, number);
}

QString cTolvaDatabase::StationVATNumber() const
{
    return Settings_->Read(StationSettings::StationVATNumber);
}

void cTolvaDatabase::SetStationVATNumber(const QString& number)
{
    Settings_->Write(StationSettings::StationVATNumber, number);
}

QString cTolvaDatabase::StationCountry() const
{
    return Details_->Country();
}

void cTolvaDatabase::SetStationCountry(const QString& country)
{
    Details_->SetCountry(country);
}

QString cTolvaDatabase::StationAddressString(const QString& separator) const
{
    return StationDetails::OnOneLine(StationAddress(), separator);
}

QString cTolvaDatabase::CurrentSongFullName() const
{
    return Details_->CurrentSong();
}

void cTolvaDatabase::SetCurrentSongFullName(const QString& song)
{
    Details_->SetCurrentSong(song);
}
