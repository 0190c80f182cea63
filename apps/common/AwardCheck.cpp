#include "AwardCheck.h"

#include "DisplayText.h"
#include "database/cTolvaDatabase.h"

namespace
{
[[noreturn]] void RaiseLastError(const cTolvaDatabase& database)
{
    throw dao::Error(database.LastErrorNumber(), database.LastErrorDescription());
}

QString Numbered(qint32 number, const QString& one, const QString& many)
{
    return QStringLiteral("%1 %2").arg(QString::number(number), number == 1 ? one : many);
}
} // namespace

AwardStanding AwardCheck::Read(cTolvaDatabase& database, qint32 prizeReference)
{
    AwardStanding standing;
    standing.Stored = database.StoredWinners(prizeReference);
    if (standing.Stored < 0)
        RaiseLastError(database);
    const cPrizePtr prize = database.GetPrize(prizeReference, false);
    if (!prize && database.LastErrorNumber() != 0)
        RaiseLastError(database);
    if (!prize)
        return standing;
    standing.IsPrizeThere = true;
    standing.Title = prize->Title();
    standing.Units = prize->NumberSupplied();
    standing.Counted = prize->NumberWinners();
    return standing;
}

AwardStanding AwardCheck::Settle(cTolvaDatabase& database, qint32 prizeReference)
{
    AwardStanding standing = Read(database, prizeReference);
    // While units are left, another computer may be between storing its winner and counting it, and would count it
    // twice.
    const bool isShort =
        standing.IsPrizeThere && standing.Stored >= standing.Units && standing.Counted < standing.Stored;
    if (!isShort)
        return standing;
    if (!database.CountStoredWinners(prizeReference) && database.LastErrorNumber() != 0)
        RaiseLastError(database);
    return Read(database, prizeReference);
}

QString AwardCheck::Warning(const AwardStanding& standing)
{
    if (!standing.IsPrizeThere && standing.Stored > 0) {
        return QStringLiteral("The prize was deleted at the same moment; %1 without it.")
            .arg(Numbered(standing.Stored, QStringLiteral("winner stands"), QStringLiteral("winners stand")));
    }
    if (!standing.IsPrizeThere || !standing.IsOverdrawn())
        return {};
    return QStringLiteral(
               "\"%1\" has %2, but %3: it was awarded elsewhere at the same moment, or the number supplied was "
               "lowered since. Take winners back, or put the number supplied right.")
        .arg(OneLine(standing.Title), Numbered(standing.Units, QStringLiteral("unit"), QStringLiteral("units")),
             Numbered(standing.Stored, QStringLiteral("winner"), QStringLiteral("winners")));
}
