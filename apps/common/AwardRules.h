#pragma once

#include "common/Date.h"

#include <QString>

#include <optional>

class cTolvaDatabase;

/// The rules that a station sets for its awards, beyond those of the store. dao::Error when the station cannot be read.
namespace AwardRules
{

/// A winner's field has 16 bits.
inline constexpr qint32 HighestWinnerReference = 32767;

/// Whether only users who may manage prizes award them.
bool NeedsRight(const cTolvaDatabase& database);
/// Days after a win within which the next award to the same contact is to be thought over; 0 for none.
int EligibleDays(const cTolvaDatabase& database);

struct EarlierWin
{
    qint32 PrizeReference = 0;
    Date WonDate; ///< Local time.
};
/// The contact's last win within those days.
std::optional<EarlierWin> RecentWin(const cTolvaDatabase& database, qint32 contact);

} // namespace AwardRules
