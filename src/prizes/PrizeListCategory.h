// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// The kinds of lists of prizes.
enum enPrizeListCategory : qint32
{
    plcAvailable = 1,        ///< In stock, within its dates, and this hour allows it.
    plcAllAvailable = 2,     ///< In stock and within its dates.
    plcAllPrizes = 3,        ///< All of them.
    plcWonPrizes = 4,        ///< With a winner at least.
    plcRecentlyWonPrizes = 5 ///< Won in the last seven days.
};
