// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QList>

#include <optional>

class cTolvaDatabase;

/// Which messages of a station are the same as another one. All raise dao::Error.
namespace SameMails
{
enum class Sameness
{
    Octets,     ///< What the same sender hands over once more.
    ButForTrace ///< What came by another route as well, too.
};

/// Whether the message of that number is the same mail, or the same text message: sender and text. False where there is
/// none.
bool IsSame(cTolvaDatabase& database, const cMessage& message, qint32 reference, Sameness sameness);

/// Those whose light columns say the same date and subject, of all or of those that are named; no mail is read.
QList<qint32> Alike(cTolvaDatabase& database, const cMessage& message,
                    const std::optional<QList<qint32>>& among = std::nullopt);

/// Of how much of a subject Alike goes by: less than a row keeps of it.
inline constexpr qsizetype SubjectLength = 200;
} // namespace SameMails
