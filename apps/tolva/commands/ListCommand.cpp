// SPDX-License-Identifier: Apache-2.0

// tolva list: what messages there are.

#include "FindText.h"
#include "FolderPaths.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/MessageTable.h"
#include "common/GeneralHelper.h"
#include "platform/mail/MessageReader.h"

namespace
{
const QString WhereOption = QStringLiteral("where");
const QString SortOption = QStringLiteral("sort");

/// Up to this many messages the list opens each mail for its sender's name; a longer list shows addresses, so that it
/// need not read gigabytes.
constexpr int NamesShownFor = 500;

QString FindCondition(const QString& typed)
{
    const QString pattern = QStringLiteral("\"*") + LiteralPattern(typed) + QStringLiteral("*\"");
    QStringList conditions;
    for (const char* column : {"Subject", "FromKey", "ToKey", "CcKey"})
        conditions.append(QStringLiteral("[%1] LIKE %2").arg(QLatin1String(column), pattern));
    // A whole number is found in all of its spellings.
    const QString number = GeneralHelper::PhoneNumberKey(typed);
    for (const char* column : {"FromKey", "ToKey", "CcKey"}) {
        if (!number.isEmpty())
            conditions.append(QStringLiteral("[%1] LIKE \"*|%2|*\"").arg(QLatin1String(column), number));
    }
    return conditions.join(QStringLiteral(" OR "));
}

QString ConditionOf(const Arguments& arguments, Station& station)
{
    QStringList conditions;
    if (arguments.Has(CategoryOption)) {
        const qint32 category = FindFolder(station.Folders(), arguments.Value(CategoryOption));
        conditions.append(QStringLiteral("[Category]=%1").arg(category));
    }
    if (!arguments.Value(FindOption).isEmpty())
        conditions.append(u'(' + FindCondition(arguments.Value(FindOption)) + u')');
    if (!arguments.Value(WhereOption).trimmed().isEmpty())
        conditions.append(u'(' + arguments.Value(WhereOption) + u')');
    return conditions.join(QStringLiteral(" AND "));
}

QString OrderOf(const Arguments& arguments)
{
    const QString sort = arguments.Value(SortOption, QStringLiteral("sent")).toLower();
    if (sort == u"sent")
        return QStringLiteral("[Sent] DESC, [Reference]");
    if (sort == u"received")
        return QStringLiteral("[Received] DESC, [Reference]");
    throw Failure(exitUsage, QStringLiteral("--sort takes \"sent\" or \"received\"."));
}

std::unique_ptr<dao::Recordset> OpenRows(const Arguments& arguments, Station& station)
{
    const QString condition = ConditionOf(arguments, station);
    const QString order = OrderOf(arguments);
    try {
        return station.Database().OpenMessageRows(MessageRowColumns(), condition, order);
    } catch (const dao::Error& error) {
        const bool isOfCondition = error.Number() == dao::errSyntax || error.Number() == dao::errTooFewParameters ||
                                   error.Number() == dao::errTypeMismatch || error.Number() == dao::errTableNotFound;
        if (isOfCondition && arguments.Has(WhereOption))
            throw Failure(exitUsage, QStringLiteral("--where: %1").arg(error.Description()));
        throw station.FailureOfStation(error.Number(), error.Description());
    }
}

/// The sender as the mail names it: "Postcard Pete", or the address where there is no name. Of a damaged mail the
/// address that stands in its row.
QString SenderOf(dao::Recordset& rows, const MessageRow& row, QList<qint32>& damaged)
{
    if (row.IsSMS)
        return row.From;
    QByteArray octets;
    try {
        octets = rows[MailColumn].Octets();
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errMemoDamaged && error.Number() != dao::errFileDamaged)
            throw;
        damaged.append(row.Reference);
        return row.From;
    }
    const cdo::Message mail(octets);
    const QString from = cdo::HeaderBeginning(mail, "From").trimmed();
    QString name = from.left(from.indexOf(u'<')).trimmed();
    if (name.size() > 1 && name.startsWith(u'"') && name.endsWith(u'"'))
        name = name.mid(1, name.size() - 2);
    if (!name.isEmpty())
        return name;
    return row.From.isEmpty() ? from : row.From;
}

/// The messages that it met whose mail is damaged.
QList<qint32> PrintTable(dao::Recordset& rows, const Arguments& arguments, const QHash<qint32, QString>& folders)
{
    QList<qint32> damaged;
    const MessageTable table(!arguments.Has(CategoryOption));
    const bool sortsByReceived = arguments.Value(SortOption).toLower() == u"received";
    const bool showsNames = rows.RecordCount() <= NamesShownFor;
    for (; !rows.AtEOF(); rows.MoveNext()) {
        const MessageRow row = ReadMessageRow(rows);
        table.Print(row, sortsByReceived ? row.Received : row.Sent,
                    showsNames ? SenderOf(rows, row, damaged) : row.From, FolderPath(folders, row.Category));
    }
    return damaged;
}

void PrintJson(dao::Recordset& rows, const QHash<qint32, QString>& folders)
{
    for (; !rows.AtEOF(); rows.MoveNext()) {
        const MessageRow row = ReadMessageRow(rows);
        const QJsonObject object = ToJson(row, FolderPath(folders, row.Category));
        Terminal::PrintJson(object);
    }
}

int RunList(const Arguments& arguments)
{
    OrderOf(arguments); // a wrong one is told before anything is opened
    Station station(arguments);
    const auto rows = OpenRows(arguments, station);
    const QHash<qint32, QString> folders = FolderPaths(station.Folders());
    QList<qint32> damaged;
    station.Try([&] {
        if (arguments.Has(JsonOption))
            PrintJson(*rows, folders);
        else if (rows->AtEOF())
            Terminal::Complain(QStringLiteral("No messages."));
        else
            damaged = PrintTable(*rows, arguments, folders);
    });
    for (const qint32 reference : std::as_const(damaged)) {
        Terminal::Complain(QStringLiteral("Message %1 is damaged: its mail is not what was saved. What to do: tolva "
                                          "check %2")
                               .arg(reference)
                               .arg(station.Folder()));
    }
    return damaged.isEmpty() ? exitOK : exitData;
}
} // namespace

CommandDefinition ListCommand()
{
    return {
        QStringLiteral("list"),
        QStringLiteral("Lists messages, the newest first."),
        {QStringLiteral("list FOLDER [--category C] [--find TEXT] [--where SQL] [--sort sent|received] [--json]")},
        QStringLiteral(
            "A line shows the number, the flags (N unread, P personal, H highlighted, ! urgent, S text message), the\n"
            "date, the sender, the subject and, when no folder is asked for, the folder."),
        {{CategoryOption, QStringLiteral("C"), QStringLiteral("The messages of one folder.")},
         {FindOption, QStringLiteral("TEXT"), QStringLiteral("Those with this text in subject or addresses.")},
         {WhereOption, QStringLiteral("SQL"), QStringLiteral("Those that meet a condition, as after WHERE.")},
         {SortOption, QStringLiteral("ORDER"), QStringLiteral("By the date \"sent\" (the default) or \"received\".")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva list /srv/station --category Inbox --find \"ferry?\""),
        1,
        1,
        RunList,
    };
}
