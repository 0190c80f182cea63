// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

/// The timer behind the automatic backups of an open station. Made and kept by BackupStore from the reading of the
/// settings to the closing; what is shown of a backup is StationDialogs::SetBackupNotice.
class BackupTimer : public QObject, public std::enable_shared_from_this<BackupTimer>
{
    Q_OBJECT

public:
    /// makeBackup: looks whether a backup is due, and makes it. Not called once owner is gone.
    BackupTimer(const QObject& owner, std::function<void()> makeBackup);

    /// Spreads the checks over a random time for the interval between backups (minutes), so that computers that share
    /// a station do not all look at the same moment, looks at once if it is time, and runs from then on.
    void Start(qint32 backupInterval);
    /// For good: no backup begins any more.
    void Stop();

    /// Seconds between two checks.
    qint32 CheckInterval() const { return CheckInterval_; }
    /// None before the first check.
    Date LastCheck() const { return LastCheck_; }
    const QTimer& tmrBackup() const { return tmrBackup_; }

    /// What the timer does. An error of a backup goes to UserInterface::RunTimeError.
    void Tick();

private:
    QPointer<const QObject> Owner_;
    std::function<void()> MakeBackup_;
    QTimer tmrBackup_;
    qint32 CheckInterval_ = 1800;
    Date LastCheck_;
};
