// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

/// One thing that was looked at.
struct Finding
{
    enum class Level
    {
        Good,
        Note,   ///< Nothing is wrong, but somebody may want to know.
        Problem ///< Something is wrong; Advice says what to do.
    };
    QString Subject; ///< One word, such as "backups".
    Level How = Level::Good;
    QString Words;
    QString Advice;
};

/// Looks over everything that a station needs to work, in seconds; what takes longer is the work of "check". Nothing is
/// changed: the station is opened for reading alone, and nothing is made, not even by the opening. Nothing is thrown:
/// what cannot be looked at is a finding.
namespace Diagnosis
{
/// How far to look.
enum class Depth
{
    Quick,
    WithBackup ///< The newest backup is read whole.
};

QList<Finding> Of(const QString& folder, Depth depth);
} // namespace Diagnosis
