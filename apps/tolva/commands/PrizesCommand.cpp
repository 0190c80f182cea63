// SPDX-License-Identifier: Apache-2.0

// tolva prizes: what prizes there are.

#include "DisplayText.h"
#include "FindText.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/JsonDate.h"
#include "commands/ListColumns.h"
#include "common/ClockHelper.h"
#include "prizes/PrizeQuery.h"

namespace
{
const QString NowOption = QStringLiteral("now");
const QString AllOption = QStringLiteral("all");
const QString WonOption = QStringLiteral("won");
const QString RecentOption = QStringLiteral("recent");

constexpr int StockWidth = 9;

/// Failure (usage) for several kinds at once.
enPrizeListCategory KindOf(const Arguments& arguments)
{
    const std::pair<QString, enPrizeListCategory> kinds[] = {{NowOption, plcAvailable},
                                                             {AllOption, plcAllPrizes},
                                                             {WonOption, plcWonPrizes},
                                                             {RecentOption, plcRecentlyWonPrizes}};
    enPrizeListCategory kind = plcAllAvailable;
    for (const auto& [option, category] : kinds) {
        if (!arguments.Has(option))
            continue;
        if (kind != plcAllAvailable)
            throw Failure(exitUsage, QStringLiteral("--now, --all, --won and --recent exclude each other."));
        kind = category;
    }
    return kind;
}

/// What a list shows of a prize, from the columns of its row alone.
struct PrizeRow
{
    explicit PrizeRow(const dao::Recordset& rows)
        : Reference(rows.Collect(QStringLiteral("Reference")).toInt()),
          Title(rows.Collect(QStringLiteral("Title")).toString()),
          Supplied(rows.Collect(QStringLiteral("NumberSupplied")).toInt()),
          Winners(rows.Collect(QStringLiteral("NumberWinners")).toInt()),
          Start(rows.Collect(QStringLiteral("StartDate")).toDouble()),
          End(rows.Collect(QStringLiteral("EndDate")).toDouble()),
          LastWon(rows.Collect(QStringLiteral("LastWonDate")).toDouble())
    {
    }

    qint32 Reference;
    QString Title;
    qint32 Supplied;
    qint32 Winners;
    Date Start; ///< Universal time.
    Date End;
    Date LastWon;
};

void PrintRow(const PrizeRow& row, bool showsWin)
{
    const Date date = ClockHelper::UTCToLocal(showsWin ? row.LastWon : row.End);
    const QString stock = QStringLiteral("%1/%2").arg(qMax(0, row.Supplied - row.Winners)).arg(row.Supplied);
    const int rest =
        qMax(20, Terminal::Width() - ListColumns::ReferenceWidth - StockWidth - ListColumns::DateWidth - 3);
    QString line = QString::number(row.Reference).rightJustified(ListColumns::ReferenceWidth) + u' ' +
                   stock.rightJustified(StockWidth) + u' ' +
                   date.Format(QStringLiteral("yyyy-mm-dd hh:nn")).leftJustified(ListColumns::DateWidth) + u' ' +
                   Cell(row.Title, rest);
    while (line.endsWith(u' '))
        line.chop(1);
    Terminal::PrintLine(line);
}

void PrintJson(const PrizeRow& row)
{
    const QJsonObject object{
        {QStringLiteral("reference"), row.Reference},       {QStringLiteral("title"), row.Title},
        {QStringLiteral("supplied"), row.Supplied},         {QStringLiteral("winners"), row.Winners},
        {QStringLiteral("start"), JsonDate(row.Start)},     {QStringLiteral("end"), JsonDate(row.End)},
        {QStringLiteral("lastWon"), JsonDate(row.LastWon)},
    };
    Terminal::PrintJson(object);
}

int RunPrizes(const Arguments& arguments)
{
    const enPrizeListCategory kind = KindOf(arguments);
    Station station(arguments);
    const QString condition =
        PrizeQuery::Condition(kind, LiteralPattern(arguments.Value(FindOption)), ClockHelper::NowUTC());
    station.Try([&] {
        const auto rows = station.Database().OpenSnapshot(QStringLiteral("SELECT * FROM [Prizes] ") + condition);
        if (rows->AtEOF() && !arguments.Has(JsonOption))
            Terminal::Complain(QStringLiteral("There are no matching prizes."));
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const PrizeRow row(*rows);
            if (arguments.Has(JsonOption))
                PrintJson(row);
            else
                PrintRow(row, kind == plcWonPrizes || kind == plcRecentlyWonPrizes);
        }
    });
    return exitOK;
}
} // namespace

CommandDefinition PrizesCommand()
{
    return {
        QStringLiteral("prizes"),
        QStringLiteral("Lists prizes, those that are available unless another kind is asked for."),
        {QStringLiteral("prizes FOLDER [--now|--all|--won|--recent] [--find TEXT] [--json]")},
        QStringLiteral(
            "A line shows the number, how many are left of how many, the last day (with --won and --recent the last\n"
            "win) and the title. Day and hour of what is available are those of universal time."),
        {{NowOption, QString(), QStringLiteral("Those that may be given away in this hour.")},
         {AllOption, QString(), QStringLiteral("All prizes.")},
         {WonOption, QString(), QStringLiteral("Those that were won.")},
         {RecentOption, QString(), QStringLiteral("Those that were won in the last seven days.")},
         {FindOption, QStringLiteral("TEXT"), QStringLiteral("Those with this text in title or notes.")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva prizes /srv/station --now"),
        1,
        1,
        RunPrizes,
    };
}
