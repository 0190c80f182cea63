// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/BackupFolders.h"

#include <QVariant>

#include <optional>

/// Finding a message whose mail is damaged in the backups of its station, and putting it back from there. Nothing but
/// its mail is fetched: folder, flags and the like stay as they are.
namespace MessageRecovery
{
/// A backup that holds the message sound.
struct Source
{
    BackupFolders::Backup Backup;
    QVariant Mail;         ///< The value of its column.
    QVariantList Identity; ///< What makes it the same message there and here.
};

/// The newest backup that holds the message of that number sound: received at the same moment, from the same sender and
/// with the same subject, so that it is the same one. name: of the one backup to look into; empty for all. Backups that
/// cannot be read are passed over. Nothing when there is none, or no such message in the station.
std::optional<Source> Find(const QString& folder, qint32 reference, const QString& name = QString());

/// What to do about a damaged message, in a sentence: the backup that has it sound and the command that fetches it, or
/// that none has it.
QString Advice(const QString& folder, qint32 reference);

/// Puts the mail into the message's row, in one transaction. dao::Error when that fails, 3197 and 3167 when somebody
/// else changed or deleted the message meanwhile; nothing is changed then.
void PutBack(const QString& folder, qint32 reference, const Source& source);
} // namespace MessageRecovery
