// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/records/FileReport.h"

#include <QList>
#include <QString>

/// The dated folders that hold the copies of a station's database: "Backups/NAME" beside it, and in it one folder a
/// backup with the copy and a profile file that tells of it. Nothing here throws.
namespace BackupFolders
{

/// A folder with a profile file that is not empty.
struct Backup
{
    QString Name;     ///< Of the folder, such as "2026-11-21 14.05".
    QString Folder;   ///< Its whole path.
    QString Details;  ///< The profile file.
    QString Created;  ///< As it stands there.
    Date CreatedDate; ///< None when Created is no date.
};

/// How many of the newest sound backups stay however old they are.
constexpr int KeptAtLeast = 3;

/// Made later than the clock says it is, beyond what time zones explain: by a computer whose clock was wrong, or this
/// one's is. Such a backup is never the newest.
bool IsFromTheFuture(const Backup& backup, Date now);
/// The same of a moment; never of none.
bool IsInTheFuture(Date moment, Date now);

/// The folder of all backups of a database. reference: the database's file name without extension.
QString RootOf(const QString& location, const QString& reference);
/// The same from the database's whole name.
QString RootOf(const QString& databaseFile);
/// What a backup that begins at that time is called.
QString NameFor(Date started);

/// The backups in a root, in the order of their names. Folders without details are none.
QList<Backup> List(const QString& root);
/// The folders in a root that hold no details: left behind by a backup that failed or was ended.
QStringList Unfinished(const QString& root);
/// Writes the details of a backup made by this program on this computer. False when one of them cannot be written.
bool WriteDetails(const QString& folder, Date started, const QString& machineName);

/// The newest backups up to that many whose copies of the database open and read to their end, none from the future;
/// the newest first. fileName: the database's, without its folder. except: a folder that is passed over. Reads each of
/// them whole.
QList<Backup> NewestSound(const QString& root, const QString& fileName, int most, const QString& except = QString());
/// The first of them; nothing in Folder when there is none.
Backup NewestSound(const QString& root, const QString& fileName);
/// What is a link on the way to the backups of a database, or among them; its path, empty when nothing is. Nothing is
/// written through one.
QString LinkInTheWay(const QString& databaseFile);
/// What reading a database to its end says, when it opens and says what it is. Shows nothing.
dao::FileReport::State StateOf(const QString& databaseFile);
/// Whether nothing of it is lost: it is sound, or has indexes that compacting builds anew.
bool IsSound(const QString& databaseFile);

} // namespace BackupFolders
