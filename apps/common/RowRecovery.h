// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/BackupFolders.h"

#include <QVariantMap>

#include <optional>

/// Finding a row of a station whose long texts are damaged in the station's backups, and putting these back from there.
/// Nothing else of the row is fetched: it stays as it is now. Of a message that is its mail, of a prize its script and
/// notes, of a winner the notes.
namespace RowRecovery
{
enum class Kind
{
    Message,
    Prize,
    Winner
};

/// Where a row of the station stands.
enum class State
{
    NotThere,
    Sound,
    Damaged
};

/// Where the texts come from.
struct Source
{
    BackupFolders::Backup Backup; ///< Without a name: from the station itself.
    QVariantMap Texts;            ///< By column.
    bool AreDamaged;              ///< In the station; otherwise none of its texts was.
    QVariantList Identity;        ///< What makes it the same row there and here.
};

/// Of what kind the rows of a table are, and nothing for other tables.
std::optional<Kind> KindOf(const QString& table);
/// "message", "prize" or "winner".
QString NameOf(Kind kind);
/// What a column is called when somebody is told of it, such as "notes to the supplier".
QString TextName(const QString& column);

/// dao::Error when the station cannot be read.
State StateOf(const QString& folder, Kind kind, qint32 reference);

/// The newest backup that holds the damaged texts of the row of that number sound, or all of its texts where none is
/// damaged. It has to be the same one there: a message received at the same moment, from the same sender and with the
/// same subject, a prize added at the same moment by the same user, a winner of the same prize who is the same contact
/// and won at the same moment. name: of the one backup to look into; empty for all. Backups that cannot be read are
/// passed over. Nothing when there is none, or no such row in the station.
std::optional<Source> Find(const QString& folder, Kind kind, qint32 reference, const QString& name = QString());

/// What stands of the damaged texts in the station, for right, where no backup has them. Never of a message, whose
/// octets are to be those that came. Nothing where none is damaged, or there is no such row.
std::optional<Source> AsStored(const QString& folder, Kind kind, qint32 reference);

/// What to do about a damaged row, in a sentence: the backup that has it sound and the command that fetches it, or that
/// none has it, and what can be done then.
QString Advice(const QString& folder, Kind kind, qint32 reference);

/// Puts the texts into the row, in one transaction. dao::Error when that fails, 3197 and 3167 when somebody else
/// changed, mended or deleted the row meanwhile; nothing is changed then.
void PutBack(const QString& folder, Kind kind, qint32 reference, const Source& source);
} // namespace RowRecovery
