// SPDX-License-Identifier: Apache-2.0
#include "doctor/PlaceDiagnosis.h"

#include "StationPlace.h"
#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "database/BackupFolders.h"
#include "database/HTMLTemplates.h"
#include "database/SettingText.h"
#include "database/StationSettings.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"
#include "platform/records/Recordset.h"

#include <QStorageInfo>

namespace
{
using Level = Finding::Level;

constexpr qint64 LeastRoom = 100LL * 1024 * 1024;

/// The text of a stored setting, or its default.
QVariant StoredSetting(dao::Database& station, const QString& key, const QVariant& whenAbsent)
{
    const auto rows = station.OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {key});
    return rows->NoMatch() ? whenAbsent : rows->Collect(QStringLiteral("Value"));
}

/// The newest that the clock does not say to be of tomorrow.
BackupFolders::Backup NewestOf(const QList<BackupFolders::Backup>& backups, Date now)
{
    BackupFolders::Backup newest;
    for (const BackupFolders::Backup& backup : backups) {
        if (!BackupFolders::IsFromTheFuture(backup, now) && backup.CreatedDate > newest.CreatedDate)
            newest = backup;
    }
    return newest;
}

QString MegabytesOf(qint64 octets)
{
    return QStringLiteral("%1 MB").arg(octets / (1024LL * 1024));
}
} // namespace

Finding PlaceDiagnosis::OfRights(const QString& folder)
{
    const QString subject = QStringLiteral("rights");
    for (const QString& name : {folder, StationPlace::FileIn(folder), StationPlace::DirectoryIn(folder),
                                StationPlace::DirectoryFileIn(folder)}) {
        if (!FileHelper::FileExists(name) && !FileHelper::FolderExists(name))
            continue;
        const FileStatus status = FileSystem::Current().MayWrite(name);
        if (!status.IsDone()) {
            return {subject, Level::Problem,
                    QStringLiteral("This account cannot write %1: %2").arg(name, status.Words()),
                    QStringLiteral("Give the station's folder, and all that is in it, to the account or its group.")};
        }
    }
    return {subject, Level::Good, QStringLiteral("This account may write the station and its directory."), QString()};
}

Finding PlaceDiagnosis::OfLocks(const QString& folder)
{
    const QString subject = QStringLiteral("locks");
    const QString kind = QString::fromLatin1(QStorageInfo(folder).fileSystemType());
    // Far behind what is ever locked or written; the content stays as it is.
    constexpr qint64 Place = Q_INT64_C(0x7000000000000000);
    const QString file = StationPlace::FileIn(folder);
    FileStatus status;
    const auto one = FileSystem::Current().Open(file, FileAccess::Change, status);
    const auto other = one ? FileSystem::Current().Open(file, FileAccess::Change, status) : nullptr;
    if (!other) {
        return {subject, Level::Note, QStringLiteral("Locks were not tried: %1").arg(status.Words()), QString()};
    }
    const FileStatus first = one->Lock(FileLock::Exclusive, Place, 1);
    if (first.Error() == FileError::Locked)
        return {subject, Level::Good, QStringLiteral("Locks are kept (%1).").arg(kind), QString()};
    const FileStatus second = other->Lock(FileLock::Exclusive, Place, 1);
    if (!first.IsDone() || second.Error() != FileError::Locked) {
        return {subject, Level::Problem,
                QStringLiteral("The file system (%1) does not keep locks: two computers would damage the station.")
                    .arg(kind),
                QStringLiteral("Move the station to a disk or share that keeps byte-range locks.")};
    }
    if (kind.startsWith(u"nfs") || kind.startsWith(u"cifs") || kind.startsWith(u"smb") || kind.startsWith(u"fuse.")) {
        return {subject, Level::Note,
                QStringLiteral("The station lies on a share (%1). Locks are kept on this computer; whether they are "
                               "between computers cannot be told from one.")
                    .arg(kind),
                QString()};
    }
    return {subject, Level::Good, QStringLiteral("Locks are kept (%1).").arg(kind), QString()};
}

Finding PlaceDiagnosis::OfSpace(const QString& folder)
{
    const QString subject = QStringLiteral("space");
    const std::optional<qint64> room = FileSystem::Current().FreeSpace(folder);
    if (!room)
        return {subject, Level::Note, QStringLiteral("How much room there is cannot be told."), QString()};
    const qint64 size = FileHelper::FileSize(StationPlace::FileIn(folder));
    if (*room < qMax(LeastRoom, size + size / 10)) {
        return {subject, Level::Problem,
                QStringLiteral("There are %1 of room, too little for a backup or a compaction of the station of %2.")
                    .arg(MegabytesOf(*room), MegabytesOf(size)),
                QStringLiteral("Make room on that disk.")};
    }
    return {subject, Level::Good, QStringLiteral("There are %1 of room.").arg(MegabytesOf(*room)), QString()};
}

Finding PlaceDiagnosis::OfTemplates(const QString& folder)
{
    const QString subject = QStringLiteral("templates");
    if (HTMLTemplates::References(folder, QStringLiteral("Message")).isEmpty()) {
        return {subject, Level::Problem,
                QStringLiteral("There are no page templates for messages in %1, so none can be printed.")
                    .arg(HTMLTemplates::FolderOf(folder)),
                QStringLiteral("They come with the package and are put there when the station is opened; look whether "
                               "this account may write there.")};
    }
    return {subject, Level::Good, QStringLiteral("Page templates are there."), QString()};
}

Finding PlaceDiagnosis::OfBackups(const QString& folder, dao::Database& station, bool readsNewest)
{
    const QString subject = QStringLiteral("backups");
    const QString file = StationPlace::FileIn(folder);
    const Date now = ClockHelper::CurrentTime();
    const bool isAutomatic = SettingFlag(StoredSetting(station, StationSettings::EnableAutoBackup.Key, QVariant()),
                                         StationSettings::EnableAutoBackup.Default);
    const qint32 interval = SettingNumber(StoredSetting(station, StationSettings::BackupInterval.Key, QVariant()),
                                          StationSettings::BackupInterval.Default);
    const BackupFolders::Backup newest = NewestOf(BackupFolders::List(BackupFolders::RootOf(file)), now);
    const QString make = QStringLiteral("tolva backup %1").arg(folder);
    if (newest.Folder.isEmpty())
        return {subject, Level::Problem, QStringLiteral("There is no backup of the station."), make};
    const double days = now.DayNumber() - newest.CreatedDate.DayNumber();
    // A weekend without anybody at the desk is no mishap; twice the time between two backups and three days is.
    constexpr double LongestPause = 3;
    if (days > LongestPause && (!isAutomatic || days > 2 * interval / Date::MinutesADay)) {
        return {subject, Level::Problem,
                QStringLiteral("The newest backup, \"%1\", is %2 days old.").arg(newest.Name).arg(int(days)),
                isAutomatic ? make
                            : make + QStringLiteral("; no backups are made by themselves: tolva setting %1 %2 True")
                                         .arg(folder, StationSettings::EnableAutoBackup.Key)};
    }
    const QString copy = FileHelper::Join(newest.Folder, FileHelper::FileNameOf(file));
    if (FileHelper::FileSize(copy) <= 0 || (readsNewest && !BackupFolders::IsSound(copy))) {
        return {subject, Level::Problem, QStringLiteral("The newest backup, \"%1\", is damaged.").arg(newest.Name),
                make};
    }
    const QString read = readsNewest ? QStringLiteral(" and reads to its end") : QString();
    return {subject, isAutomatic ? Level::Good : Level::Note,
            QStringLiteral("The newest backup is \"%1\"%2.%3")
                .arg(newest.Name, read, isAutomatic ? QString() : QStringLiteral(" None is made by itself.")),
            QString()};
}
