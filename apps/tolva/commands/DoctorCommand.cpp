// SPDX-License-Identifier: Apache-2.0

// tolva doctor: looks over everything a station needs and says what is wrong and what to do.

#include "Failure.h"
#include "Station.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "doctor/Diagnosis.h"

namespace
{
const QString QuickOption = QStringLiteral("quick");

QString NameOf(Finding::Level level)
{
    switch (level) {
    case Finding::Level::Good:
        return QStringLiteral("good");
    case Finding::Level::Note:
        return QStringLiteral("note");
    default:
        return QStringLiteral("problem");
    }
}

void Tell(const Finding& finding, bool inJson)
{
    if (inJson) {
        Terminal::PrintJson({{QStringLiteral("subject"), finding.Subject},
                             {QStringLiteral("level"), NameOf(finding.How)},
                             {QStringLiteral("words"), finding.Words},
                             {QStringLiteral("advice"), finding.Advice}});
        return;
    }
    Terminal::PrintLine(
        QStringLiteral("%1  %2  %3").arg(NameOf(finding.How), -7).arg(finding.Subject, -9).arg(finding.Words));
    if (!finding.Advice.isEmpty())
        Terminal::PrintLine(QStringLiteral("%1What to do: %2").arg(QString(), 20).arg(finding.Advice));
}

int RunDoctor(const Arguments& arguments)
{
    const QString& folder = arguments.Folder();
    if (!StationPlace::HoldsStation(folder)) {
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1. A lost one comes back from a backup "
                                                  "with: tolva restore %1")
                                       .arg(folder));
    }
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    int problems = 0;
    const auto depth = arguments.Has(QuickOption) ? Diagnosis::Depth::Quick : Diagnosis::Depth::WithBackup;
    for (const Finding& finding : Diagnosis::Of(folder, depth)) {
        problems += finding.How == Finding::Level::Problem ? 1 : 0;
        Tell(finding, arguments.Has(JsonOption));
    }
    return problems == 0 ? exitOK : exitData;
}
} // namespace

CommandDefinition DoctorCommand()
{
    return {
        QStringLiteral("doctor"),
        QStringLiteral("Looks over everything a station needs, and says what is wrong and what to do."),
        {QStringLiteral("doctor FOLDER [--quick] [--json]")},
        QStringLiteral(
            "Nothing is changed. Looked at are the file, the directory, locks, rights and room in their place, the "
            "newest\n"
            "backup, the clock, the page templates, when the last message came, and what waits to be sent. Every "
            "value of\n"
            "the station is read by \"tolva check\" instead. The exit code is 0 when nothing is wrong and 65 when "
            "something is.\n"
            "--user is taken for the sake of scripts and not used."),
        {{QuickOption, QString(), QStringLiteral("Does not read the newest backup whole.")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva doctor /srv/station"),
        1,
        1,
        RunDoctor,
    };
}
