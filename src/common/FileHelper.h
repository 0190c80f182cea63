// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

class PendingError;

/// Files and folders by name. Nothing here throws; a false or negative result is the failure.
namespace FileHelper
{

bool FolderExists(const QString& folder);
bool FileExists(const QString& file);
/// Octets; -1 when the file does not exist.
qint64 FileSize(const QString& file);
/// Makes the folder and its missing parents; true when it stands afterwards.
bool CreateFolder(const QString& folder);

/// The folder without a closing separator; empty for a bare file name.
QString FolderOf(const QString& file);
QString FileNameOf(const QString& file);
/// The file name without its last extension.
QString BaseNameOf(const QString& file);
/// The whole path without its last extension.
QString WithoutExtension(const QString& file);
/// One path from a folder and a name, with the platform's separator.
QString Join(const QString& folder, const QString& name);

/// Copies a file into a folder, or onto a file name when target is no folder. The copy appears under its name only when
/// it is whole and on the disk; a failure or a cancelled display leaves what was there before. A link that bears the
/// name is replaced, and what it points to stays as it is.
/// A database is copied by the record store, as it stands at one moment however many computers write to it, and its
/// copy has been opened and read whole. failure: what stopped it, where the record store says.
bool CopyWithProgress(const QString& source, const QString& target, const QString& caption,
                      PendingError* failure = nullptr);
/// Deletes a file, or a folder with all it holds. True when it is gone.
/// A symbolic link goes, not what it points to. A cancelled display leaves what was not yet deleted.
bool DeleteWithProgress(const QString& target, const QString& caption);
/// Renames a file onto a name that is free, never over another file; across file systems by a copy. False when nothing
/// was renamed.
bool RenameWithProgress(const QString& oldName, const QString& newName, const QString& caption);

/// The text of a file: UTF-8, or Latin-1 where it is not valid UTF-8; a byte order mark goes. Empty when it cannot be
/// read.
QString ReadTextFile(const QString& file);
/// Replaces the whole file (UTF-8) at once: a reader sees the old text or the new one. Not through a link.
bool WriteTextFile(const QString& file, const QString& text);

/// The bytes as text by the rule of ReadTextFile; a mark of UTF-16 or UTF-32 is obeyed as well.
QString DecodeText(const QByteArray& bytes);
/// As WriteTextFile, for bytes.
bool ReplaceFile(const QString& file, const QByteArray& bytes);

} // namespace FileHelper
