// SPDX-License-Identifier: Apache-2.0

// tolva send: hands what waits in the Outbox to the programs that send it.

#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/JsonDate.h"
#include "common/ClockHelper.h"
#include "sending/OutgoingIdentity.h"
#include "sending/OutgoingState.h"
#include "sending/SendRun.h"

#include <QJsonArray>
#include <QProcess>
#include <QStandardPaths>

namespace
{
const QString SendmailOption = QStringLiteral("sendmail");
const QString GammuOption = QStringLiteral("gammu");
const QString TextsOption = QStringLiteral("sms");
const QString MessageOption = QStringLiteral("message");
const QString RateOption = QStringLiteral("per-minute");
const QString TimeLimitOption = QStringLiteral("time-limit");
const QString DryOption = QStringLiteral("dry-run");
const QString Right = QStringLiteral("send messages");

QString NameOf(SendNote::Kind kind)
{
    switch (kind) {
    case SendNote::Kind::Sent:
        return QStringLiteral("sent");
    case SendNote::Kind::WouldBeSent:
        return QStringLiteral("wouldBeSent");
    case SendNote::Kind::PutOff:
        return QStringLiteral("putOff");
    case SendNote::Kind::Refused:
        return QStringLiteral("refused");
    case SendNote::Kind::Unclear:
        return QStringLiteral("unclear");
    case SendNote::Kind::Withdrawn:
        return QStringLiteral("withdrawn");
    case SendNote::Kind::Held:
        return QStringLiteral("held");
    case SendNote::Kind::Waits:
        break;
    }
    return QStringLiteral("waits");
}

void TellInJson(const SendNote& note)
{
    Terminal::PrintJson({{QStringLiteral("reference"), note.Message},
                         {QStringLiteral("type"), TypeName(note.IsSMS)},
                         {QStringLiteral("outcome"), NameOf(note.What)},
                         {QStringLiteral("recipients"), QJsonArray::fromStringList(note.Recipients)},
                         {QStringLiteral("words"), note.Words},
                         {QStringLiteral("nextTry"), JsonDate(note.NextTry)}});
}

/// What went to standard output, what did not to standard error; what stays as it was is for those who look.
void TellInWords(const SendNote& note)
{
    const QString to = note.Recipients.join(QStringLiteral(", "));
    const QString words = note.Words.isEmpty() ? QString() : QStringLiteral(": ") + note.Words;
    const QString number = QString::number(note.Message);
    switch (note.What) {
    case SendNote::Kind::Sent:
        Terminal::PrintLine(QStringLiteral("%1  sent to %2").arg(number, to));
        return;
    case SendNote::Kind::WouldBeSent:
        Terminal::PrintLine(QStringLiteral("%1  would be sent to %2").arg(number, to));
        return;
    case SendNote::Kind::PutOff:
        Terminal::Complain(QStringLiteral("Message %1 to %2 is put off until %3%4")
                               .arg(number, to, ClockHelper::UTCToLocal(note.NextTry).GeneralDate(), words));
        return;
    case SendNote::Kind::Refused:
        Terminal::Complain(QStringLiteral("Message %1 to %2 was refused%3").arg(number, to, words));
        return;
    case SendNote::Kind::Unclear:
        Terminal::Complain(
            QStringLiteral("Message %1 to %2 may have gone out or not, and is not sent again by itself%3")
                .arg(number, to, words));
        return;
    default:
        Terminal::PrintLine(QStringLiteral("%1  %2%3").arg(number, NameOf(note.What), words));
    }
}

int NumberIn(const Arguments& arguments, const QString& option, int whenAbsent, int most)
{
    if (!arguments.Has(option))
        return whenAbsent;
    bool isNumber = false;
    const int number = arguments.Value(option).toInt(&isNumber);
    if (!isNumber || number < 1 || number > most)
        throw Failure(exitUsage, QStringLiteral("--%1 takes a number from 1 to %2.").arg(option).arg(most));
    return number;
}

QStringList CommandIn(const Arguments& arguments, const QString& option)
{
    const QStringList words = QProcess::splitCommand(arguments.Value(option));
    if (arguments.Has(option) && words.isEmpty())
        throw Failure(exitUsage, QStringLiteral("--%1 takes a program.").arg(option));
    return words;
}

/// The mail program where none is named: the one that every Unix has under this name, if there is one.
QStringList UsualMailProgram()
{
    const QString name = QStringLiteral("sendmail");
    QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty())
        path = QStandardPaths::findExecutable(name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/lib")});
    return path.isEmpty() ? QStringList() : QStringList{path};
}

SendOptions SendOptionsOf(const Arguments& arguments)
{
    constexpr int MostAMinute = 100000;
    constexpr int MostSeconds = 3600;
    SendOptions options;
    options.Type = arguments.Value(TypeOption);
    if (!options.Type.isEmpty() && options.Type != TypeName(false) && options.Type != TypeName(true))
        throw Failure(exitUsage, QStringLiteral("--type takes \"email\" or \"sms\"."));
    if (arguments.Has(GammuOption) && arguments.Has(TextsOption))
        throw Failure(exitUsage, QStringLiteral("--gammu and --sms do not go together."));
    options.IsGammu = arguments.Has(GammuOption);
    options.TextProgram = CommandIn(arguments, options.IsGammu ? GammuOption : TextsOption);
    options.MailProgram = CommandIn(arguments, SendmailOption);
    const bool sendsMails = options.Type != TypeName(true);
    if (sendsMails && options.MailProgram.isEmpty())
        options.MailProgram = UsualMailProgram();
    if (sendsMails && options.MailProgram.isEmpty()) {
        throw Failure(exitUnavailable,
                      QStringLiteral("There is no program \"sendmail\" on this computer. Name the one that sends mails "
                                     "with --sendmail, such as --sendmail msmtp, or leave mails alone with "
                                     "--type sms."));
    }
    options.FromAddress = arguments.Value(FromOption).trimmed();
    options.OnlyMessage = arguments.Has(MessageOption) ? ToReference(arguments.Value(MessageOption)) : 0;
    options.MostAMinute = NumberIn(arguments, RateOption, 0, MostAMinute);
    options.Seconds = NumberIn(arguments, TimeLimitOption, options.Seconds, MostSeconds);
    options.IsDry = arguments.Has(DryOption);
    return options;
}

int Send(const Arguments& arguments)
{
    const SendOptions options = SendOptionsOf(arguments);
    Station station(arguments);
    if (!options.IsDry)
        station.Require(DirectoryRight::CanEditMessages, Right);
    return SendRun(station, options, arguments.Has(JsonOption) ? TellInJson : TellInWords).Run();
}

QString NameOf(OutgoingState::Kind kind)
{
    switch (kind) {
    case OutgoingState::Kind::NotYet:
        return QStringLiteral("notYet");
    case OutgoingState::Kind::BeingSent:
        return QStringLiteral("beingSent");
    case OutgoingState::Kind::Sent:
        return QStringLiteral("sent");
    case OutgoingState::Kind::Refused:
        return QStringLiteral("refused");
    case OutgoingState::Kind::Unclear:
        return QStringLiteral("unclear");
    default:
        return QStringLiteral("waiting");
    }
}

void TellState(const cMessage& message, const OutgoingState& state, bool inJson)
{
    if (!inJson) {
        Terminal::PrintLine(QStringLiteral("%1  %2").arg(message.Reference()).arg(InWords(state)));
        return;
    }
    Terminal::PrintJson({{QStringLiteral("reference"), message.Reference()},
                         {QStringLiteral("state"), NameOf(state.What)},
                         {QStringLiteral("when"), JsonDate(ClockHelper::LocalToUTC(state.When))},
                         {QStringLiteral("words"), state.Words}});
}

/// What waits, due or not, with what became of it so far: a look, nothing more.
int ListStates(const Arguments& arguments)
{
    Station station(arguments);
    return station.Try([&] {
        const SendingLedger ledger(station.Directory().File());
        const auto rows = station.Database().OpenMessageRows(
            {QStringLiteral("Reference"), QStringLiteral("Flags")},
            QStringLiteral("[Category]=%1").arg(static_cast<int>(tmcOutbox)), QStringLiteral("[Reference]"));
        for (; !rows->AtEOF(); rows->MoveNext()) {
            if ((rows->Collect(QStringLiteral("Flags")).toInt() & mfSendPending) == 0)
                continue;
            const cMessagePtr message =
                station.Database().ReadMessage(rows->Collect(QStringLiteral("Reference")).toInt());
            if (message)
                TellState(*message, StateOf(*message, ledger), arguments.Has(JsonOption));
        }
        return exitOK;
    });
}

/// A message that waits, of which a person says what is to be.
cMessagePtr WaitingMessage(Station& station, const QString& words)
{
    const cMessagePtr message = station.Message(words);
    if (message->Category() != tmcOutbox || (message->Flags() & mfSendPending) == 0)
        throw Failure(exitData, QStringLiteral("Message %1 does not wait to be sent.").arg(words));
    return message;
}

void SendAgain(Station& station, const QString& words)
{
    const cMessagePtr message = WaitingMessage(station, words);
    SendingLedger ledger(station.Directory().File());
    if (station.Try([&] { return ledger.SendAgain(message->Reference()); }))
        return;
    if (station.Try([&] { return ledger.Find(message->Reference()).has_value(); }))
        throw Failure(exitTemporary, QStringLiteral("Message %1 is being sent at this moment.").arg(words));
}

void NoteWent(Station& station, const QString& words)
{
    const cMessagePtr message = WaitingMessage(station, words);
    station.Try(
        [&] { SendingLedger(station.Directory().File()).NoteWent(message->Reference(), OutgoingIdentity(*message)); });
    if (!station.Try(
            [&] { return station.Database().MarkMessageSent(message->Reference(), ClockHelper::CurrentTime()); }))
        throw station.WhyNot(message->Reference(), Right);
}

int RunSend(const Arguments& arguments)
{
    const QString word = arguments.Words().value(1);
    const QStringList references = arguments.Words().mid(2);
    if (word.isEmpty())
        return Send(arguments);
    if (word == u"state" && references.isEmpty())
        return ListStates(arguments);
    if ((word != u"again" && word != u"went") || references.isEmpty()) {
        throw Failure(exitUsage, QStringLiteral("Behind the folder comes nothing, \"state\", or \"again\" or \"went\" "
                                                "and messages' numbers."));
    }
    for (const QString& reference : references)
        ToReference(reference);
    Station station(arguments);
    station.Require(DirectoryRight::CanEditMessages, Right);
    for (const QString& reference : references) {
        if (word == u"again")
            SendAgain(station, reference);
        else
            NoteWent(station, reference);
    }
    return exitOK;
}
} // namespace

CommandDefinition SendCommand()
{
    return {
        QStringLiteral("send"),
        QStringLiteral("Sends the messages that wait to be sent, by the programs of this computer."),
        {QStringLiteral("send FOLDER [--sendmail PROGRAM] [--gammu PROGRAM|--sms PROGRAM] [--message REF] [--dry-run]"),
         QStringLiteral("send FOLDER state [--json]"), QStringLiteral("send FOLDER again REF..."),
         QStringLiteral("send FOLDER went REF...")},
        QStringLiteral(
            "Each message is handed to a program; what the program accepted is marked as sent. What was refused, or "
            "may have\n"
            "gone out or not, is held back until somebody decides: \"again\" sends it again, \"went\" marks it as "
            "sent, and \"state\"\n"
            "shows what waits and why. What nobody took this time is tried again by itself, with growing waits. "
            "Several runs at\n"
            "once, here and on other computers, send nothing twice. Sending needs the right to edit messages."),
        {{SendmailOption, QStringLiteral("PROGRAM"),
          QStringLiteral("Sends mails and takes what sendmail takes, such as \"msmtp -a studio\" (else sendmail).")},
         {GammuOption, QStringLiteral("PROGRAM"),
          QStringLiteral("Sends text messages and takes what gammu-smsd-inject takes.")},
         {TextsOption, QStringLiteral("PROGRAM"),
          QStringLiteral("Sends a text message from standard input to the number that is its last word.")},
         {FromOption, QStringLiteral("ADDRESS"),
          QStringLiteral("Mails go out from here (else the setting Station.EmailAddress).")},
         {TypeOption, QStringLiteral("TYPE"), QStringLiteral("Only those of type \"email\" or \"sms\".")},
         {MessageOption, QStringLiteral("REF"), QStringLiteral("Only this one, also if it was put off.")},
         {RateOption, QStringLiteral("N"), QStringLiteral("So many in a minute at most, of all computers together.")},
         {TimeLimitOption, QStringLiteral("SECONDS"), QStringLiteral("How long one message may take (120).")},
         {DryOption, QString(), QStringLiteral("Says what would be sent, and does nothing.")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva send /srv/station --sendmail msmtp --gammu gammu-smsd-inject"),
        1,
        -1,
        RunSend,
    };
}
