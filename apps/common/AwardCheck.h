#pragma once

#include <QString>

class cTolvaDatabase;

/// Two computers that award a prize at the same moment both see its last unit, and both winners are stored. The
/// programs look again after each award, say what stands in the station, and let the user take a winner back.
struct AwardStanding
{
    bool IsPrizeThere = false;
    QString Title;
    qint32 Units = 0;   ///< How many of the prize there are.
    qint32 Counted = 0; ///< What the prize says of its winners.
    qint32 Stored = 0;  ///< The winners that are stored.

    /// More winners than units: one of them has to be taken back.
    bool IsOverdrawn() const { return Stored > Units; }
};

namespace AwardCheck
{

/// What stands now. dao::Error when it cannot be read.
AwardStanding Read(cTolvaDatabase& database, qint32 prizeReference);

/// After a winner was stored or taken back: reads what stands, and where a prize without a unit left counts fewer
/// winners than are stored, puts that right, so that nobody is offered a unit that is gone. dao::Error when it cannot
/// be read or stored; the winner itself is not touched.
AwardStanding Settle(cTolvaDatabase& database, qint32 prizeReference);

/// What the user has to be told, in whole sentences; empty when all is in order. It names every cause that there may
/// be, for what stands does not tell which it was. How a winner is taken back stands in the program's own words behind
/// it.
QString Warning(const AwardStanding& standing);

} // namespace AwardCheck
