// SPDX-License-Identifier: Apache-2.0
#include "LabelTexts.h"

#include "contacts/ContactOrder.h"
#include "station/DeskStation.h"

#include <QSet>

#include <algorithm>

namespace
{
const QString ReferenceColumn = QStringLiteral("Reference");

bool IsBefore(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) < 0;
}
} // namespace

LabelTexts::Entry LabelTexts::EntryOf(const clsKVContact& contact)
{
    QStringList lines;
    QString address = contact.Other;
    address.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    int emptyLines = 0;
    for (const QString& line : address.split(u'\n')) {
        // What stands below two empty lines is about the contact and no address.
        emptyLines = line.trimmed().isEmpty() ? emptyLines + 1 : 0;
        if (emptyLines == 2 && !lines.isEmpty())
            break;
        if (emptyLines == 0)
            lines.append(line.trimmed());
    }
    Entry entry;
    entry.Name = contact.Name.simplified();
    entry.HasAddress = !lines.isEmpty();
    if (!entry.Name.isEmpty())
        lines.prepend(entry.Name);
    entry.Text = lines.join(u'\n');
    return entry;
}

QList<LabelTexts::Entry> LabelTexts::Contacts(DeskStation& station)
{
    QList<Entry> entries;
    for (const clsKVContactPtr& contact : ContactOrder::ByName(station.Directory().Contacts()))
        entries.append(EntryOf(*contact));
    return entries;
}

QList<LabelTexts::Prize> LabelTexts::Prizes(DeskStation& station)
{
    QList<Prize> prizes;
    const auto rows = station.Database().OpenSnapshot(QStringLiteral("SELECT [Reference], [Title] FROM [Prizes]"));
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const qint32 reference = rows->Collect(ReferenceColumn).toInt();
        const QString title = rows->Collect(QStringLiteral("Title")).toString().simplified();
        prizes.append({reference, title.isEmpty() ? QStringLiteral("Prize %1").arg(reference) : title});
    }
    std::stable_sort(prizes.begin(), prizes.end(),
                     [](const Prize& a, const Prize& b) { return IsBefore(a.Title, b.Title); });
    return prizes;
}

LabelTexts::Winners LabelTexts::WinnersOf(DeskStation& station, qint32 prize)
{
    Winners winners;
    QSet<qint32> met;
    const auto rows = station.Database().OpenSnapshot(
        QStringLiteral("SELECT [WinnerReference] FROM [PrizeWinners] WHERE [PrizeReference]=%1").arg(prize));
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const qint32 reference = rows->Collect(QStringLiteral("WinnerReference")).toInt();
        if (met.contains(reference))
            continue;
        met.insert(reference);
        if (const clsKVContactPtr contact = station.Directory().GetContact(reference))
            winners.Entries.append(EntryOf(*contact));
        else
            ++winners.Missing;
    }
    std::stable_sort(winners.Entries.begin(), winners.Entries.end(),
                     [](const Entry& a, const Entry& b) { return IsBefore(a.Name, b.Name); });
    return winners;
}
