// SPDX-License-Identifier: Apache-2.0

// tolva pending: the messages that wait to be sent, for a mailer that sends them.

#include "FolderPaths.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/MessageTable.h"
#include "commands/PendingExport.h"
#include "commands/PendingRows.h"
#include "common/ClockHelper.h"
#include "sending/OutgoingIdentity.h"

namespace
{
const QString ExportOption = QStringLiteral("export");

void CheckType(const Arguments& arguments)
{
    const QString type = arguments.Value(TypeOption, TypeName(false));
    if (type != TypeName(false) && type != TypeName(true))
        throw Failure(exitUsage, QStringLiteral("--type takes \"email\" or \"sms\"."));
}

int ListPending(const Arguments& arguments, Station& station)
{
    const QList<MessageRow> pending =
        station.Try([&] { return PendingRows(station.Database(), arguments.Value(TypeOption)); });
    if (arguments.Has(JsonOption)) {
        const QString folder = FolderPath(FolderPaths(station.Folders()), tmcOutbox);
        for (const MessageRow& row : pending)
            Terminal::PrintJson(ToJson(row, folder));
        return exitOK;
    }
    if (pending.isEmpty())
        Terminal::Complain(QStringLiteral("No messages."));
    const MessageTable table(false);
    for (const MessageRow& row : pending)
        table.Print(row, row.Received, row.To);
    return exitOK;
}

int ExportPending(const Arguments& arguments, Station& station)
{
    SendingLedger ledger(station.Directory().File());
    PendingExport folder(arguments.Value(ExportOption), arguments.Has(ForceOption), ledger);
    const QList<MessageRow> pending =
        station.Try([&] { return PendingRows(station.Database(), arguments.Value(TypeOption)); });
    for (const MessageRow& row : pending) {
        const cMessagePtr message = station.Try([&] { return station.Database().ReadMessage(row.Reference); });
        // Somebody may have taken it back since the list was read.
        if (message && message->Category() == tmcOutbox && (message->Flags() & mfSendPending) != 0)
            station.Try([&] { folder.Write(*message); });
    }
    return folder.Result();
}

void MarkSent(Station& station, qint32 reference)
{
    const cMessagePtr message = station.Message(QString::number(reference));
    const bool isMarked = (message->Flags() & mfSendPending) != 0;
    if (!isMarked && message->Category() == tmcSent) {
        Terminal::Complain(QStringLiteral("Message %1 is marked as sent already.").arg(reference));
        return;
    }
    if (!isMarked || message->Category() != tmcOutbox) {
        const QString folder = FolderPath(FolderPaths(station.Folders()), message->Category());
        throw Failure(exitData, QStringLiteral("Message %1 is not waiting to be sent: it is in %2%3.")
                                    .arg(QString::number(reference), folder,
                                         isMarked ? QString() : QStringLiteral(" and not marked to be sent")));
    }
    if (!station.Try([&] { return station.Database().MarkMessageSent(reference, ClockHelper::CurrentTime()); }))
        throw station.WhyNot(reference, QStringLiteral("mark messages as sent"));
    // Behind the mark: what dies in between is shown as one that may have gone out, and as sent at the same time.
    station.Try([&] { SendingLedger(station.Directory().File()).NoteWent(reference, OutgoingIdentity(*message)); });
}

int RunPending(const Arguments& arguments)
{
    CheckType(arguments);
    if (arguments.Words().size() == 1) {
        Station station(arguments);
        return arguments.Has(ExportOption) ? ExportPending(arguments, station) : ListPending(arguments, station);
    }
    if (arguments.Words().at(1) != u"sent" || arguments.Words().size() < 3)
        throw Failure(exitUsage, QStringLiteral("Behind the folder comes nothing, or \"sent\" and messages' numbers."));
    QList<qint32> references;
    for (const QString& words : arguments.Words().mid(2))
        references.append(ToReference(words));
    Station station(arguments);
    station.Require(DirectoryRight::CanEditMessages, QStringLiteral("mark messages as sent"));
    for (const qint32 reference : references)
        MarkSent(station, reference);
    return exitOK;
}
} // namespace

CommandDefinition PendingCommand()
{
    return {
        QStringLiteral("pending"),
        QStringLiteral("Lists the messages that wait to be sent, hands them out, marks them as sent."),
        {QStringLiteral("pending FOLDER [--type email|sms] [--json]"),
         QStringLiteral("pending FOLDER --export DIR [--type email|sms] [--force]"),
         QStringLiteral("pending FOLDER sent REF...")},
        QStringLiteral(
            "Pending are the messages in the Outbox that are marked to be sent and whose time has come. A mailer "
            "exports\n"
            "them, renames REF.eml (or REF.sms) to REF.sending, hands it over, renames it to REF.sent, and marks the\n"
            "message as sent. A message with a REF.sending or REF.sent in DIR is not exported again, so that none "
            "goes\n"
            "out twice. docs/hookups.md has the scripts. Marking needs the right to edit messages."),
        {{ExportOption, QStringLiteral("DIR"), QStringLiteral("Writes each as a file, and prints its path.")},
         {TypeOption, QStringLiteral("TYPE"), QStringLiteral("Only those of type \"email\" or \"sms\".")},
         {ForceOption, QString(), QStringLiteral("Replaces files that hold something else.")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva pending /srv/station --export /var/spool/tolva-out --type email"),
        1,
        -1,
        RunPending,
    };
}
