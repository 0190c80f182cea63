// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// What a repair got out of a damaged database file, and what not.
namespace dao
{

struct RepairedTable
{
    QString Name;
    qint64 Saved = 0;
    qint64 Lost = 0; ///< Rows; as many as the file still tells of.
    /// Some of the file that tells how many rows there were is gone: more may be lost than is said.
    bool MayLackMore = false;
    /// Of those that were saved: rows that carry no sum, as other programs store them. Whether a value in them was
    /// changed on the disk, nobody can tell.
    qint64 Unsealed = 0;
    QList<qint64> LostNumbers; ///< Of the automatic counter, where a row still tells it; the first ones.
    QStringList Notes;         ///< What else became of it, in sentences.

    bool IsWhole() const { return Lost == 0 && !MayLackMore; }
};

struct RepairReport
{
    QList<RepairedTable> Tables;
    QStringList Notes;      ///< Of damage that concerns no single table, in sentences.
    QStringList LeftBehind; ///< What the file holds, sound or not, and the new one cannot, in sentences.

    bool IsWhole() const
    {
        for (const RepairedTable& table : Tables) {
            if (!table.IsWhole())
                return false;
        }
        return Notes.isEmpty();
    }
};

} // namespace dao
