// SPDX-License-Identifier: Apache-2.0
#include "PrizeSheet.h"

#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/clsKVDirectory.h"
#include "prizes/HoursText.h"

#include <cmath>

namespace
{
/// Empty for nobody.
QString NameOf(const clsKVDirectory& directory, qint32 contact)
{
    if (contact <= 0)
        return {};
    const clsKVContactPtr found = directory.GetContact(contact);
    if (!found)
        return QStringLiteral("Contact %1, who is not in the directory any more").arg(contact);
    const QString name = found->Name.simplified();
    return name.isEmpty() ? QStringLiteral("Contact %1, who has no name").arg(contact) : name;
}

/// "14 November 2026, 17:02", without a time where it has none: in words, so that no reader takes a day for a month.
QString MomentOf(Date date)
{
    const bool hasTime = date.DayNumber() != std::floor(date.DayNumber());
    return date.Format(hasTime ? QStringLiteral("d mmmm yyyy, hh:nn") : QStringLiteral("d mmmm yyyy"));
}

/// The hours go by universal time. Paper is read at any time of the year, so it always says so.
QString HoursWords(const cPrize& prize)
{
    const QString words = HoursText::InWords(HoursText::HoursOf(prize));
    const QString sentence = words.left(1).toUpper() + words.mid(1);
    const bool isLimited = words != HoursText::AtAnyTime && words != HoursText::Never;
    return isLimited ? sentence + QStringLiteral(" (universal time)") : sentence;
}

/// The slots of a prize stop at its count, which a crash may have left behind; the rows are what was won.
QList<PrizePage::Winner> WinnersOf(const cTolvaDatabase& database, const clsKVDirectory& directory, qint32 prize)
{
    QList<PrizePage::Winner> winners;
    const auto rows = database.OpenSnapshot(
        QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=%1 ORDER BY [WonDate], [Reference]")
            .arg(prize));
    for (; !rows->AtEOF(); rows->MoveNext()) {
        PrizePage::Winner winner;
        winner.Name = NameOf(directory, rows->Collect(QStringLiteral("WinnerReference")).toInt());
        winner.Won = MomentOf(RowValues::LocalDate(rows->Collect(QStringLiteral("WonDate"))));
        winner.Sent = MomentOf(RowValues::LocalDate(rows->Collect(QStringLiteral("SentDate"))));
        winner.Notes = rows->Collect(QStringLiteral("Notes")).toString();
        winners.append(winner);
    }
    return winners;
}
} // namespace

std::optional<PrizePage::Prize> PrizeSheet::Read(cTolvaDatabase& database, const clsKVDirectory& directory,
                                                 qint32 reference)
{
    const cPrizePtr stored = database.GetPrize(reference, false);
    if (!stored && database.LastErrorNumber() != 0)
        throw dao::Error(database.LastErrorNumber(), database.LastErrorDescription());
    if (!stored)
        return std::nullopt;
    PrizePage::Prize prize;
    prize.Reference = stored->Reference();
    prize.Title = stored->Title();
    prize.Script = stored->Script();
    prize.Notes = stored->Notes();
    prize.NotesToSupplier = stored->NotesToSupplier();
    prize.Supplier = NameOf(directory, stored->SupplierReference());
    prize.Start = MomentOf(stored->StartDate());
    prize.End = MomentOf(stored->EndDate());
    prize.Hours = HoursWords(*stored);
    prize.Supplied = stored->NumberSupplied();
    prize.Winners = WinnersOf(database, directory, reference);
    // A winner who is not counted has his unit all the same; one that is counted and has no row took one.
    prize.Won = qMax(stored->NumberWinners(), static_cast<qint32>(prize.Winners.size()));
    return prize;
}
