// SPDX-License-Identifier: Apache-2.0

// tolva repair: a new file of what can be read from a damaged one.

#include "CollectingUserInterface.h"
#include "Failure.h"
#include "Station.h"
#include "StationRepair.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/Confirmation.h"

#include <QJsonArray>

namespace
{
const QString DryRunOption = QStringLiteral("dry-run");

QJsonObject JsonOf(const dao::RepairedTable& table)
{
    QJsonArray numbers;
    for (const qint64 number : table.LostNumbers)
        numbers.append(number);
    return {{QStringLiteral("name"), table.Name},
            {QStringLiteral("saved"), table.Saved},
            {QStringLiteral("lost"), table.Lost},
            {QStringLiteral("mayLackMore"), table.MayLackMore},
            {QStringLiteral("withoutSum"), table.Unsealed},
            {QStringLiteral("lostNumbers"), numbers},
            {QStringLiteral("notes"), QJsonArray::fromStringList(table.Notes)}};
}

void PrintJson(const StationRepair::Result& done)
{
    QJsonArray tables;
    for (const dao::RepairedTable& table : done.Report.Tables)
        tables.append(JsonOf(table));
    Terminal::PrintJson({{QStringLiteral("damaged"), done.IsNeeded},
                         {QStringLiteral("tables"), tables},
                         {QStringLiteral("notes"), QJsonArray::fromStringList(done.Report.Notes)},
                         {QStringLiteral("leftBehind"), QJsonArray::fromStringList(done.Report.LeftBehind)},
                         {QStringLiteral("sizeBefore"), done.SizeBefore},
                         {QStringLiteral("sizeAfter"), done.SizeAfter},
                         {QStringLiteral("kept"), done.KeepName.isEmpty() ? QJsonValue() : QJsonValue(done.KeepName)}});
}

void PrintTable(const dao::RepairedTable& table)
{
    QString line = QStringLiteral("%1: %2 rows saved, %3 lost").arg(table.Name).arg(table.Saved).arg(table.Lost);
    if (table.MayLackMore)
        line += QStringLiteral(" or more");
    if (table.Unsealed > 0)
        line += QStringLiteral("; %1 of those saved carry no sum, so that a change on the disk would not show in them")
                    .arg(table.Unsealed);
    Terminal::PrintLine(line);
    if (!table.LostNumbers.isEmpty()) {
        QStringList numbers;
        for (const qint64 number : table.LostNumbers)
            numbers += QString::number(number);
        Terminal::PrintLine(QStringLiteral("  lost, by their numbers: %1").arg(numbers.join(QStringLiteral(", "))));
    }
    for (const QString& note : table.Notes)
        Terminal::PrintLine(QStringLiteral("  ") + note);
}

void PrintWords(const StationRepair::Result& done)
{
    for (const dao::RepairedTable& table : done.Report.Tables)
        PrintTable(table);
    for (const QString& note : done.Report.Notes + done.Report.LeftBehind)
        Terminal::PrintLine(note);
    if (!done.KeepName.isEmpty())
        Terminal::PrintLine(QStringLiteral("The damaged file is kept as %1").arg(done.KeepName));
    else
        Terminal::PrintLine(done.IsNeeded ? QStringLiteral("Nothing was changed.")
                                          : QStringLiteral("The station is sound; nothing was changed."));
}

int RunRepair(const Arguments& arguments)
{
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    const bool isDry = arguments.Has(DryRunOption);
    const QString question =
        QStringLiteral("Replace the station in %1 by what can be read of it? The damaged file is kept.")
            .arg(arguments.Folder());
    if (!isDry && !Confirmation::IsGiven(arguments, question)) {
        Terminal::Complain(QStringLiteral("Nothing was changed."));
        return exitDeclined;
    }
    const StationRepair::Result done = [&] {
        try {
            return StationRepair::Run(arguments.Folder(),
                                      isDry ? StationRepair::Put::Nowhere : StationRepair::Put::InPlace);
        } catch (const Failure& failure) {
            if (failure.Code() != exitInterrupted)
                throw;
            throw Failure(exitInterrupted, QStringLiteral("Ended early by Ctrl-C; nothing was changed."));
        }
    }();
    if (arguments.Has(JsonOption))
        PrintJson(done);
    else
        PrintWords(done);
    return done.Report.IsWhole() ? exitOK : exitData;
}
} // namespace

CommandDefinition RepairCommand()
{
    return {
        QStringLiteral("repair"),
        QStringLiteral("Saves what can be read from a damaged station into a new file."),
        {QStringLiteral("repair FOLDER [--dry-run] [--yes] [--json]")},
        QStringLiteral(
            "For files of office programs (\"tolva convert\"); of others it says what to do instead. A sound backup "
            "is\n"
            "worth more: see \"tolva backups --check\". Each row comes over as it was stored or not at all. What was "
            "saved\n"
            "and what not is printed table by table; the exit code is 0 when that is all, and 65 when something is "
            "lost.\n"
            "The damaged file stays beside the new one as Tolva-damaged-0001.BAK, or the next free number. A sound "
            "station\n"
            "is left alone. On a terminal you are asked first, unless --yes is given. --user is taken for the sake of\n"
            "scripts and not used."),
        {{DryRunOption, QString(), QStringLiteral("Says what would be saved, and changes nothing.")},
         {Confirmation::YesOption(), QString(), QStringLiteral("Does not ask.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva repair /srv/station --dry-run"),
        1,
        1,
        RunRepair,
    };
}
