// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QObject>
#include <QString>

#include <memory>

class BackupTimer;
class SettingsStore;
class StationContext;

/// The backups of an open station: when one is made by itself, and making it. Owned by cTolvaDatabase, over its context
/// and settings, which outlive it.
class BackupStore : public QObject
{
    Q_OBJECT

public:
    BackupStore(StationContext& station, SettingsStore& settings);
    ~BackupStore() override;

    /// Reads what is kept of the settings: whether and how often.
    void ReadSettings();
    /// Stores the same.
    void WriteSettings();
    bool IsAutomatic() const { return IsAutomatic_; }
    void SetAutomatic(bool automatic);
    /// Minutes: 60 or 1440.
    qint32 Interval() const { return Interval_; }
    void SetInterval(qint32 minutes);
    /// Days; 0 keeps every backup. Not kept.
    qint16 ExpiryDays() const;
    void SetExpiryDays(qint16 days);
    /// As cTolvaDatabase::MakesAutomaticBackups.
    bool MakesAutomaticBackups() const { return MakesAutomaticBackups_; }
    void SetMakesAutomaticBackups(bool makes) { MakesAutomaticBackups_ = makes; }

    /// As cTolvaDatabase::BackupDatabase.
    bool Make(bool forceBackup);

    /// Runs the timer of automatic backups as the settings say, which looks at once whether it is time for one: the
    /// station may be closed or destroyed by whoever acts while that shows its progress.
    void UpdateTimer();
    /// For good: no backup begins any more until UpdateTimer.
    void StopTimer();

private:
    bool IsAnnounced(Date now) const;
    bool IsRecent(Date now) const;
    bool MakeAnnounced(Date now, bool forceBackup);

    StationContext& Station_;
    SettingsStore& Settings_;
    QString MachineName_;
    qint32 Interval_;
    bool IsAutomatic_;
    bool IsBegun_ = false; ///< An object makes one backup in its life.
    bool MakesAutomaticBackups_ = true;
    std::shared_ptr<BackupTimer> Timer_;
};
