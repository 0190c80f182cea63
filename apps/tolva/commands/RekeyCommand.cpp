// SPDX-License-Identifier: Apache-2.0

// tolva rekey: the search keys of all messages in the form of today.

#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"

#include <QJsonObject>

namespace
{
/// Messages a transaction: others wait for one of them at most, and an interruption loses one at most.
constexpr qsizetype BatchSize = 200;

QList<qint32> AllReferences(Station& station)
{
    const auto rows =
        station.Database().OpenMessageRows({QStringLiteral("Reference")}, QString(), QStringLiteral("[Reference]"));
    QList<qint32> references;
    for (; !rows->AtEOF(); rows->MoveNext())
        references.append(rows->Collect(QStringLiteral("Reference")).toInt());
    return references;
}

struct RekeyCounts
{
    qsizetype Read = 0;
    int Changed = 0;
    bool IsWhole = true;
};

RekeyCounts RewriteAll(Station& station)
{
    const QList<qint32> references = station.Try([&] { return AllReferences(station); });
    const auto progress = station.Terminal().Progress(QStringLiteral("Writing the keys"));
    RekeyCounts counts;
    while (counts.Read < references.size()) {
        const qsizetype last = qMin(counts.Read + BatchSize, references.size()) - 1;
        counts.Changed += station.Try(
            [&] { return station.Database().RewriteMessageKeys(references.at(counts.Read), references.at(last)); });
        counts.Read = last + 1;
        if (!progress->Advance(counts.Read, references.size()) && counts.Read < references.size()) {
            counts.IsWhole = false;
            break;
        }
    }
    return counts;
}

int RunRekey(const Arguments& arguments)
{
    Station station(arguments);
    station.Require(DirectoryRight::ChangeSettings, QStringLiteral("write the keys of messages anew"));
    const RekeyCounts counts = RewriteAll(station);
    if (arguments.Has(JsonOption)) {
        Terminal::PrintJson({{QStringLiteral("country"), station.Database().StationCountry()},
                             {QStringLiteral("read"), counts.Read},
                             {QStringLiteral("changed"), counts.Changed},
                             {QStringLiteral("whole"), counts.IsWhole}});
    } else {
        Terminal::PrintLine(QStringLiteral("read %1, changed %2").arg(counts.Read).arg(counts.Changed));
    }
    if (counts.IsWhole)
        return exitOK;
    Terminal::Complain(QStringLiteral("Ended early by Ctrl-C; what is changed stays, and the next run does the rest."));
    return exitInterrupted;
}
} // namespace

CommandDefinition RekeyCommand()
{
    return {
        QStringLiteral("rekey"),
        QStringLiteral("Writes the search keys of all messages anew."),
        {QStringLiteral("rekey FOLDER [--json]")},
        QStringLiteral(
            "For stations whose Station.Country has changed, or whose messages were filed by an older version: their\n"
            "numbers are found again. Messages whose keys are right are left alone, others may go on working\n"
            "meanwhile, and what was ended early is finished by the next run. Needs the right to change settings."),
        {{JsonOption, QString(), QStringLiteral("Prints one JSON object.")}, Station::UserOption()},
        QStringLiteral("tolva rekey /srv/station"),
        1,
        1,
        RunRekey,
    };
}
