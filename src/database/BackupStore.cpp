// SPDX-License-Identifier: Apache-2.0
#include "database/BackupStore.h"

#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/MachineHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "database/BackupTimer.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/Leftovers.h"
#include "database/SettingsStore.h"
#include "database/StationContext.h"
#include "database/StationDialogs.h"
#include "platform/files/WholeFile.h"
#include "platform/records/Transaction.h"

namespace
{
const QString Blank = QStringLiteral(" ");
constexpr qint64 MillisecondsAMinute = 60000;
constexpr qint64 MillisecondsADay = 86400000;
constexpr qint64 StaleMinutes = 5;

/// The notice that a backup is being made, for the life of a scope. Without it the backup is made all the same.
class NoticeScope
{
public:
    NoticeScope() { Show(true); }
    ~NoticeScope() { Show(false); }
    NoticeScope(const NoticeScope&) = delete;
    NoticeScope& operator=(const NoticeScope&) = delete;

private:
    static void Show(bool shown)
    {
        PendingError ignored;
        ignored.Try([shown] { StationDialogs::InForce().SetBackupNotice(shown); });
    }
};

/// Whole ones, towards the past.
qint64 WholeBetween(Date from, Date to, qint64 milliseconds)
{
    const qint64 between = from.ToDateTime(Qt::UTC).msecsTo(to.ToDateTime(Qt::UTC));
    return between >= 0 ? between / milliseconds : -((-between + milliseconds - 1) / milliseconds);
}

/// Folders that may go once a newer backup stands, and the date that the displays of their deletion tell: the last one
/// that was read.
struct Expired
{
    QStringList Folders;
    QString Date;
};

Expired FindExpired(const QString& root, Date now, int expiryDays)
{
    Expired expired;
    for (const BackupFolders::Backup& backup : BackupFolders::List(root)) {
        expired.Date = backup.CreatedDate.IsNone() ? backup.Created : backup.CreatedDate.GeneralDate();
        if (!backup.CreatedDate.IsNone() && WholeBetween(backup.CreatedDate, now, MillisecondsADay) > expiryDays)
            expired.Folders.append(backup.Folder);
    }
    return expired;
}

/// Makes the folder that a backup goes into, not through a link. failure: why it cannot.
bool MakeFolder(const QString& databaseFile, const QString& folder, PendingError& failure)
{
    const QString link = LinkBelow(FileHelper::FolderOf(databaseFile), folder);
    if (link.isEmpty() && FileHelper::CreateFolder(folder))
        return true;
    failure.Set(dao::errNotAValidPath,
                link.isEmpty() ? QStringLiteral("'%1' cannot be made.").arg(folder)
                               : QStringLiteral("'%1' is a link, and no backup is written through one.").arg(link));
    return false;
}

/// Deletes what is expired but the newest sound ones: a clock that was wrong once must not take them all away. newest:
/// the backup that was made just now, which stays beside them.
void DeleteExpired(const Expired& expired, const QString& root, const QString& fileName, const QString& newest)
{
    if (expired.Folders.isEmpty())
        return;
    QStringList kept{newest};
    for (const auto& backup : BackupFolders::NewestSound(root, fileName, BackupFolders::KeptAtLeast, newest))
        kept.append(backup.Folder);
    for (const QString& old : expired.Folders) {
        if (!kept.contains(old))
            FileHelper::DeleteWithProgress(old, QStringLiteral("Deleting Backup from ") + expired.Date);
    }
}
} // namespace

BackupStore::BackupStore(StationContext& station, SettingsStore& settings)
    : Station_(station),
      Settings_(settings),
      MachineName_(MachineHelper::ComputerName()),
      Interval_(StationSettings::BackupInterval.Default),
      IsAutomatic_(StationSettings::EnableAutoBackup.Default)
{
}

BackupStore::~BackupStore()
{
    StopTimer();
}

void BackupStore::ReadSettings()
{
    Interval_ = Settings_.Read(StationSettings::BackupInterval);
    IsAutomatic_ = Settings_.Read(StationSettings::EnableAutoBackup);
}

void BackupStore::WriteSettings()
{
    Settings_.Write(StationSettings::BackupInterval, Interval_);
    Settings_.Write(StationSettings::EnableAutoBackup, IsAutomatic_);
}

void BackupStore::SetAutomatic(bool automatic)
{
    IsAutomatic_ = automatic;
    Settings_.Write(StationSettings::EnableAutoBackup, automatic);
}

void BackupStore::SetInterval(qint32 minutes)
{
    Interval_ = minutes;
    Settings_.Write(StationSettings::BackupInterval, minutes);
}

qint16 BackupStore::ExpiryDays() const
{
    return static_cast<qint16>(Settings_.Read(StationSettings::BackupExpiryDays));
}

void BackupStore::SetExpiryDays(qint16 days)
{
    Settings_.Write(StationSettings::BackupExpiryDays, days);
}

bool BackupStore::Make(bool forceBackup)
{
    if (Station_.Information.Path.isEmpty() || !Station_.Database || IsBegun_)
        return false;
    IsBegun_ = true;
    const Date now = ClockHelper::CurrentTime();
    if (!forceBackup && (IsAnnounced(now) || IsRecent(now))) {
        IsBegun_ = false;
        return false;
    }
    // From here on it stays set.
    if (forceBackup)
        return MakeAnnounced(now, true);
    const NoticeScope notice;
    return MakeAnnounced(now, false);
}

/// By another computer, a short while ago. What this one announced itself is left from a crash.
bool BackupStore::IsAnnounced(Date now) const
{
    const QString running = Settings_.Read(StationSettings::BackupRunning);
    if (running.isEmpty() || GetKeyValue(running, QStringLiteral("By"), Blank).trimmed() == MachineName_.trimmed())
        return false;
    const auto started = Date::Parse(GetKeyValue(running, QStringLiteral("Started"), Blank));
    // One from a clock that was years ahead would keep everybody waiting for years.
    return started && !BackupFolders::IsInTheFuture(*started, now) &&
           WholeBetween(*started, now, MillisecondsAMinute) < StaleMinutes;
}

/// Whether the day, or the hour, has its backup.
bool BackupStore::IsRecent(Date now) const
{
    // Nobody could note the backup, so that each opening would make another one.
    if (Station_.Database && !Station_.Database->Updatable())
        return true;
    const QString last = Settings_.Read(StationSettings::LastBackup);
    const auto run = Date::Parse(GetKeyValue(last, QStringLiteral("Run"), Blank));
    if (!run)
        return false;
    const QDateTime then = run->ToDateTime(Qt::UTC);
    const QDateTime present = now.ToDateTime(Qt::UTC);
    const bool isToday = then.date() == present.date();
    switch (Interval_) {
    case 1440:
        return isToday;
    case 60:
        return isToday && then.time().hour() == present.time().hour();
    default:
        return false;
    }
}

/// The backup itself, announced while it runs.
bool BackupStore::MakeAnnounced(Date now, bool forceBackup)
{
    const DatabaseInformation& information = Station_.Information;
    const QString root =
        BackupFolders::RootOf(information.Location, FileHelper::WithoutExtension(information.FileName));
    const int expiryDays = ExpiryDays();
    const Expired expired = expiryDays > 0 ? FindExpired(root, now, expiryDays) : Expired();

    QString running = GeneralHelper::SetKeyValue(QString(), QStringLiteral("Started"), now.GeneralDate());
    running = GeneralHelper::SetKeyValue(running, QStringLiteral("By"), MachineName_);
    Settings_.Write(StationSettings::BackupRunning, running);

    Leftovers::Remove(information.Path);
    const QString name = BackupFolders::NameFor(now);
    const QString folder = FileHelper::Join(root, name);
    PendingError failure;
    const bool hasFolder = MakeFolder(information.Path, folder, failure);
    dao::Transaction().Commit();
    const bool isMade =
        hasFolder &&
        FileHelper::CopyWithProgress(information.Path, folder, QStringLiteral("Backing up the Database"), &failure) &&
        BackupFolders::WriteDetails(folder, now, MachineName_);
    Station_.LastError = failure;
    if (!Station_.Database) // closed by the host while the copy showed its progress
        return isMade;
    if (isMade) {
        Settings_.Write(StationSettings::LastBackup,
                        DAO_DatabaseFunctions::RecordLastBackup(Station_.Database.get(), now, name));
        // Only now: what was there before goes when its successor has been read whole and can be found again.
        DeleteExpired(expired, root, FileHelper::FileNameOf(information.Path), folder);
    } else if (forceBackup) {
        UserInterface::Current().MessageBox({QStringLiteral("A backup of the Directory database could not be be made"),
                                             QString(), MessageBoxButtons::OK, MessageBoxIcon::Exclamation,
                                             MessageBoxAnswer::OK});
    }
    Settings_.Write(StationSettings::BackupRunning, QString());
    return isMade;
}

void BackupStore::UpdateTimer()
{
    if (!IsAutomatic_ || !MakesAutomaticBackups_) {
        StopTimer();
        return;
    }
    if (!Timer_)
        Timer_ = std::make_shared<BackupTimer>(*this, [this] { Make(false); });
    Timer_->Start(Interval_);
}

void BackupStore::StopTimer()
{
    if (!Timer_)
        return;
    Timer_->Stop();
    Timer_.reset();
}
