// SPDX-License-Identifier: Apache-2.0

// tolva search, tolva index: the words of all messages.

#include "FolderPaths.h"
#include "SearchFolders.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/MessageTable.h"
#include "commands/StationIndex.h"
#include "database/RowCondition.h"

#include <QJsonObject>

namespace
{
const QString BestOption = QStringLiteral("best");
constexpr int UsualLimit = 50;

int LimitOf(const Arguments& arguments)
{
    if (!arguments.Has(LimitOption))
        return UsualLimit;
    bool isNumber = false;
    const int limit = arguments.Value(LimitOption).toInt(&isNumber);
    if (!isNumber || limit < 1)
        throw Failure(exitUsage, QStringLiteral("--limit takes a number from 1 on."));
    return limit;
}

/// As the station has them at this moment: what was erased since it was found is left out.
QHash<qint32, MessageRow> ReadRows(Station& station, const std::vector<SearchHit>& hits)
{
    constexpr std::size_t RowsOfRead = 500;
    QHash<qint32, MessageRow> rows;
    for (std::size_t first = 0; first < hits.size(); first += RowsOfRead) {
        QList<qint32> references;
        for (std::size_t i = first; i < std::min(first + RowsOfRead, hits.size()); ++i)
            references.append(hits[i].Reference);
        const auto found = station.Database().OpenMessageRows(MessageRowColumns(), RowCondition::HasOneOf(references));
        for (; !found->AtEOF(); found->MoveNext()) {
            const MessageRow row = ReadMessageRow(*found);
            rows.insert(row.Reference, row);
        }
    }
    return rows;
}

void PrintHits(Station& station, const SearchResult& result, bool isJson)
{
    const QHash<qint32, QString> folders = FolderPaths(station.Folders());
    const QHash<qint32, MessageRow> rows = ReadRows(station, result.Hits);
    const MessageTable table(true);
    for (const SearchHit& hit : result.Hits) {
        const auto row = rows.constFind(hit.Reference);
        if (row == rows.constEnd())
            continue;
        const QString folder = FolderPath(folders, row->Category);
        if (isJson)
            Terminal::PrintJson(ToJson(*row, folder));
        else
            table.Print(*row, row->Sent.IsNone() ? row->Received : row->Sent, row->From, folder);
    }
}

/// What the user should know about the answer.
void TellOf(const SearchQuestion& question, const SearchOptions& options, const SearchResult& result)
{
    if (question.IsCut)
        Terminal::Complain(QStringLiteral("More was asked for than is searched; the beginning was."));
    if (options.Folders && options.Folders->isEmpty())
        Terminal::Complain(QStringLiteral("There is no folder whose name begins like that."));
    if (result.Count == 0)
        Terminal::Complain(QStringLiteral("No messages."));
    else if (result.Count > static_cast<qint64>(result.Hits.size()))
        Terminal::Complain(QStringLiteral("The first %1 of %2 messages; more with --limit.")
                               .arg(result.Hits.size())
                               .arg(result.Count));
}

int RunSearch(const Arguments& arguments)
{
    SearchOptions options;
    options.Most = LimitOf(arguments);
    options.Order = arguments.Has(BestOption) ? SearchOrder::BestFirst : SearchOrder::NewestFirst;
    const SearchQuestion question =
        SearchQuestion::Of(arguments.Words().mid(1).join(u' '), SearchQuestion::Reading::Finished);
    if (question.IsEmpty())
        throw Failure(exitUsage, QStringLiteral("There is nothing to search for in these words."));
    Station station(arguments);
    StationIndex index(station);
    const bool isWhole = index.BringUpToDate(Looking::AtNote);
    options.Folders = FoldersMeant(question, FolderPaths(station.Folders()));
    const SearchResult result = index.Find(question, options);
    station.Try([&] { PrintHits(station, result, arguments.Has(JsonOption)); });
    TellOf(question, options, result);
    if (isWhole)
        return exitOK;
    Terminal::Complain(QStringLiteral("Ended early by Ctrl-C: the first %1 percent of the messages were searched.")
                           .arg(index.Total() > 0 ? 100 * index.Count() / index.Total() : 100));
    return exitInterrupted;
}

int RunIndex(const Arguments& arguments)
{
    Station station(arguments);
    StationIndex index(station);
    index.Check();
    const bool isWhole = index.BringUpToDate(Looking::AtAll);
    const qint64 count = index.Count();
    if (arguments.Has(JsonOption))
        Terminal::PrintJson({{QStringLiteral("messages"), index.Total()},
                             {QStringLiteral("indexed"), count},
                             {QStringLiteral("whole"), isWhole}});
    else
        Terminal::PrintLine(QStringLiteral("%1 of %2 messages are in the index").arg(count).arg(index.Total()));
    if (isWhole)
        return exitOK;
    Terminal::Complain(QStringLiteral("Ended early by Ctrl-C; the next run does the rest."));
    return exitInterrupted;
}
} // namespace

CommandDefinition SearchCommand()
{
    return {
        QStringLiteral("search"),
        QStringLiteral("Finds messages by the words in them."),
        {QStringLiteral("search FOLDER WORDS... [--best] [--limit N] [--json]")},
        QStringLiteral(
            "Subjects, names, addresses, texts, pages as they are shown, the names of attachments and attached texts "
            "are\n"
            "searched, in any case, with or without accents. All words have to be there. These narrow: from:NAME,\n"
            "to:NAME, in:FOLDER, after:DATE, before:DATE, has:attachment, is:unread, is:read, is:sms, is:email; all\n"
            "else is looked for as it stands. The first search of a station reads all of its messages once."),
        {{BestOption, QString(), QStringLiteral("Those with the words in the subject first, else the newest.")},
         {LimitOption, QStringLiteral("N"), QStringLiteral("Prints that many at most (50).")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva search /srv/station lighthouse from:pete"),
        2,
        -1,
        RunSearch,
    };
}

CommandDefinition IndexCommand()
{
    return {
        QStringLiteral("index"),
        QStringLiteral("Brings the search index of this computer up to date."),
        {QStringLiteral("index FOLDER [--json]")},
        QStringLiteral(
            "The desk and \"tolva search\" do so by themselves. What was ended early goes on where it stood. The "
            "index\n"
            "lies in the cache folder of this account, never in the station, and can be deleted at any time."),
        {{JsonOption, QString(), QStringLiteral("Prints one JSON object.")}, Station::UserOption()},
        QStringLiteral("tolva index /srv/station"),
        1,
        1,
        RunIndex,
    };
}
