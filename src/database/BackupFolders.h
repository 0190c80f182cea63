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

/// The newest backup whose copy of the database opens and reads to its end; nothing in Folder when there is none.
/// fileName: the database's, without its folder.
Backup NewestSound(const QString& root, const QString& fileName);
/// What reading a database to its end says, when it opens and says what it is. Shows nothing.
dao::FileReport::State StateOf(const QString& databaseFile);
/// Whether nothing of it is lost: it is sound, or has indexes that compacting builds anew.
bool IsSound(const QString& databaseFile);

} // namespace BackupFolders
