// SPDX-License-Identifier: Apache-2.0
#include "WinnerCounts.h"

#include "DisplayText.h"
#include "platform/records/Database.h"
#include "platform/records/Recordset.h"

#include <algorithm>

namespace
{
const QString Prizes = QStringLiteral("Prizes");
const QString Winners = QStringLiteral("PrizeWinners");
const QString Reference = QStringLiteral("Reference");
const QString Title = QStringLiteral("Title");
const QString NumberSupplied = QStringLiteral("NumberSupplied");
const QString NumberWinners = QStringLiteral("NumberWinners");
const QString PrizeReference = QStringLiteral("PrizeReference");

struct PrizeCount
{
    QString Title;
    int Units = 0;
    int Counted = 0; ///< A number below 0 counts as none.
    int Stored = 0;
};

std::map<qint32, PrizeCount> ReadPrizes(dao::Database& database)
{
    std::map<qint32, PrizeCount> prizes;
    const auto rows = database.OpenRecordset(Prizes, dao::dbOpenTable);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        prizes[rows->Collect(Reference).toInt()] = {rows->Collect(Title).toString(),
                                                    rows->Collect(NumberSupplied).toInt(),
                                                    std::max(0, rows->Collect(NumberWinners).toInt()), 0};
    }
    return prizes;
}

QString Numbered(int number, const QString& noun)
{
    return QStringLiteral("%1 %2").arg(number).arg(number == 1 ? noun : noun + u's');
}

QString Miscount(qint32 reference, const PrizeCount& prize)
{
    return QStringLiteral("Prize %1 (\"%2\") counts %3, but %4. \"tolva prize recount\" puts the count right.")
        .arg(QString::number(reference), OneLine(prize.Title), Numbered(prize.Counted, QStringLiteral("winner")),
             prize.Stored == 1 ? QStringLiteral("1 is stored") : QStringLiteral("%1 are stored").arg(prize.Stored));
}

QString Excess(qint32 reference, const PrizeCount& prize)
{
    return QStringLiteral("Prize %1 (\"%2\") has %3, but %4. \"tolva prize remove-winner\" takes a winner back; if "
                          "there are more units, \"tolva prize edit\" says so with --supplied.")
        .arg(QString::number(reference), OneLine(prize.Title), Numbered(prize.Units, QStringLiteral("unit")),
             Numbered(prize.Stored, QStringLiteral("winner")));
}
} // namespace

WinnerCounts::Disagreements WinnerCounts::Find(dao::Database& database)
{
    Disagreements found;
    std::map<qint32, PrizeCount> prizes = ReadPrizes(database);
    const auto rows = database.OpenRecordset(Winners, dao::dbOpenTable);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const qint32 reference = rows->Collect(PrizeReference).toInt();
        const qint32 winner = rows->Collect(Reference).toInt();
        if (const auto prize = prizes.find(reference); prize != prizes.end()) {
            ++prize->second.Stored;
            continue;
        }
        found[{Winners, winner}] = {
            QStringLiteral("winners of no prize"),
            QStringLiteral(
                "Winner %1 is of prize %2, which does not exist. \"tolva prize remove-winner\" takes it away.")
                .arg(winner)
                .arg(reference)};
    }
    for (const auto& [reference, prize] : prizes) {
        if (prize.Stored != prize.Counted)
            found[{NumberWinners, reference}] = {QStringLiteral("prizes with a wrong count of winners"),
                                                 Miscount(reference, prize)};
        if (prize.Stored > prize.Units)
            found[{NumberSupplied, reference}] = {QStringLiteral("prizes with more winners than units"),
                                                  Excess(reference, prize)};
    }
    return found;
}
