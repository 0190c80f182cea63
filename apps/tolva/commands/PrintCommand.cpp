// SPDX-License-Identifier: Apache-2.0

// tolva print: messages on pages, as an HTML page or a PDF file.

#include "FolderPaths.h"
#include "PagePrinting.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/PageOutput.h"

namespace
{
const QString BoldOption = QStringLiteral("unread-bold");
const QString ItalicOption = QStringLiteral("pending-italic");
const QString PageEachOption = QStringLiteral("page-each");

/// All that can be told before the station is opened.
void CheckUsageOfPrint(const Arguments& arguments)
{
    PageOutput::CheckUsage(arguments, QStringLiteral("print"));
    const bool hasReferences = arguments.Words().size() > 2;
    if (hasReferences == arguments.Has(CategoryOption))
        throw Failure(exitUsage, hasReferences
                                     ? QStringLiteral("Numbers of messages and --category exclude each other.")
                                     : QStringLiteral("Name messages by their numbers, or a folder with "
                                                      "--category. See: tolva print --help"));
    for (const QString& words : arguments.Words().mid(2))
        ToReference(words);
    PageOutput::CheckFile(arguments);
}

QList<qint32> ReferencesOfFolder(Station& station, const QString& folder)
{
    const qint32 category = FindFolder(station.Folders(), folder);
    return station.Try([&] {
        const auto rows = station.Database().OpenMessageRows({QStringLiteral("Reference")},
                                                             QStringLiteral("[Category]=%1").arg(category),
                                                             QStringLiteral("[Sent] DESC, [Reference]"));
        QList<qint32> references;
        for (; !rows->AtEOF(); rows->MoveNext())
            references.append(rows->Collect(QStringLiteral("Reference")).toInt());
        return references;
    });
}

/// False when Ctrl-C ended it early. A message of the folder that is deleted meanwhile is left out.
bool PrepareFolder(PagePrinting::PreparedMessages& prepared, Station& station, const QList<qint32>& references)
{
    const auto progress = station.Terminal().Progress(QStringLiteral("Reading messages"));
    qint64 done = 0;
    for (const qint32 reference : references) {
        if (!progress->Advance(done++, references.size()))
            return false;
        const cMessagePtr message = station.Try([&] { return station.Database().ReadMessage(reference); });
        if (message && !prepared.Add(message))
            throw Failure(exitData, QStringLiteral("These are more messages than one page takes (32,767)."));
    }
    return true;
}

int RunPrint(const Arguments& arguments)
{
    CheckUsageOfPrint(arguments);
    Station station(arguments);
    const PagePrinting::PageTemplate pageTemplate =
        PagePrinting::FindTemplate(station.Database(), arguments.Words().at(1));
    PagePrinting::PreparedMessages prepared;
    if (arguments.Has(CategoryOption)) {
        const QList<qint32> references = ReferencesOfFolder(station, arguments.Value(CategoryOption));
        if (!PrepareFolder(prepared, station, references)) {
            Terminal::Complain(QStringLiteral("Ended early by Ctrl-C; nothing was written."));
            return exitInterrupted;
        }
    }
    for (const QString& words : arguments.Words().mid(2))
        prepared.Add(station.Message(words));

    PagePrinting::PageOptions options;
    options.UnreadIsBold = arguments.Has(BoldOption);
    options.PendingIsItalic = arguments.Has(ItalicOption);
    options.PageEach = arguments.Has(PageEachOption);
    const SafeDocument document = prepared.Fill(pageTemplate, options);
    if (const QString words = PagePrinting::WithheldWords(prepared.CountWithheld()); !words.isEmpty())
        Terminal::Complain(words);
    PageOutput::Write(arguments, document);
    return exitOK;
}
} // namespace

CommandDefinition PrintCommand()
{
    return {
        QStringLiteral("print"),
        QStringLiteral("Writes messages to an HTML page or a PDF file."),
        {QStringLiteral("print FOLDER TEMPLATE REF... -o FILE"),
         QStringLiteral("print FOLDER TEMPLATE --category C -o FILE")},
        QStringLiteral(
            "TEMPLATE is one of the station's page templates by its name, such as \"Message-Single message\" or\n"
            "\"Studio list\", or the path of a template file. FILE ends in .html or .pdf and appears when it is "
            "whole;\n"
            "\"-\" is an HTML page on standard output. Nothing in a message runs on the page, and nothing is fetched "
            "for\n"
            "it; what was left out for that is said on standard error."),
        {PageOutput::FileOption(),
         {CategoryOption, QStringLiteral("C"), QStringLiteral("All messages of a folder, the newest first.")},
         {BoldOption, QString(), QStringLiteral("Bodies of unread messages in bold.")},
         {ItalicOption, QString(), QStringLiteral("Bodies of messages that wait to be sent in italics.")},
         {PageEachOption, QString(), QStringLiteral("Each message begins a page.")},
         PageOutput::PaperOption(),
         PageOutput::ForceOption(),
         Station::UserOption()},
        QStringLiteral("tolva print /srv/station \"Studio list\" --category Requests -o tonight.pdf"),
        2,
        -1,
        RunPrint,
    };
}
