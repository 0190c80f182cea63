// SPDX-License-Identifier: Apache-2.0
#include "sending/SendRun.h"

#include "Terminal.h"
#include "commands/PendingRows.h"
#include "common/ClockHelper.h"
#include "common/UserInterface.h"
#include "database/StationSettings.h"
#include "sending/GammuHandOver.h"
#include "sending/OutgoingIdentity.h"
#include "sending/OutgoingState.h"
#include "sending/TextRecipients.h"

#include <QCryptographicHash>

#include <csignal>

namespace
{
extern "C" void EndAsByCtrlC(int)
{
    std::raise(SIGINT);
}

/// While it lives, being told to end (a service that is stopped, a computer that is shut down) lets a hand-over come to
/// its end, as Ctrl-C does: broken off, nobody could say any more whether it went out.
class PatientEnd
{
public:
    PatientEnd() : Before_(std::signal(SIGTERM, EndAsByCtrlC)) {}
    ~PatientEnd() { std::signal(SIGTERM, Before_); }
    PatientEnd(const PatientEnd&) = delete;
    PatientEnd& operator=(const PatientEnd&) = delete;

private:
    void (*Before_)(int);
};

constexpr double FirstWait = 5;     // minutes
constexpr double LongestWait = 240; // minutes
constexpr double DaysOfTrying = 5;
constexpr int SecondsBeyondTheLimit = 60;

bool IsWaiting(const cMessagePtr& message)
{
    return message && message->Category() == tmcOutbox && (message->Flags() & mfSendPending) != 0;
}

/// How long to wait behind that many tries, in days: each time twice as long as before.
double WaitAfter(int attempts)
{
    double minutes = FirstWait;
    for (int i = 1; i < attempts && minutes < LongestWait; ++i)
        minutes *= 2;
    return qMin(minutes, LongestWait) / Date::MinutesADay;
}

/// The same for each try of the same message, so that a receiver knows a second copy.
QString MessageIDFor(const QString& identity, const QString& address)
{
    const QByteArray digest = QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256).toHex().left(32);
    return QStringLiteral("<%1@%2>").arg(QString::fromLatin1(digest), address.mid(address.lastIndexOf(u'@') + 1));
}
} // namespace

SendRun::SendRun(Station& station, const SendOptions& options, Tell tell)
    : Station_(station),
      Options_(options),
      Tell_(std::move(tell)),
      Ledger_(station.Directory().File()),
      StationName_(station.Database().StationName())
{
    if (!Options_.FromAddress.isEmpty())
        return;
    const StationSettings::TextSetting& address = StationSettings::StationEmailAddress;
    Options_.FromAddress = station.Database().DatabaseSetting(address.Key, address.Default).toString().trimmed();
}

void SendRun::Note(const SendNote& note)
{
    Tell_(note);
}

void SendRun::Count(ExitCode code)
{
    if (Result_ == exitOK)
        Result_ = code;
}

bool SendRun::HasProgramFor(const MessageRow& row) const
{
    return !(row.IsSMS ? Options_.TextProgram : Options_.MailProgram).isEmpty();
}

SendRun::Outgoing SendRun::Prepare(const cMessagePtr& message) const
{
    Outgoing outgoing;
    outgoing.Message = message;
    outgoing.Identity = OutgoingIdentity(*message);
    const cdo::Message& content = *message->CDOMessage();
    if (message->IsDamaged()) {
        outgoing.Problem = QStringLiteral("It is damaged: what is stored is not what was written.");
    } else if (message->MessageType() == emtSMS) {
        outgoing.Recipients = TextRecipients(content);
        outgoing.Text = TextOfTextMessage(content);
        if (outgoing.Recipients.isEmpty())
            outgoing.Problem = QStringLiteral("It has no telephone number to go to.");
    } else {
        const cdo::OutgoingMail mail =
            cdo::MakeOutgoing(content, {StationName_, Options_.FromAddress, ClockHelper::NowUTC().ToDateTime(Qt::UTC),
                                        MessageIDFor(outgoing.Identity, Options_.FromAddress)});
        outgoing.Recipients = mail.Recipients;
        outgoing.Octets = mail.Octets;
        outgoing.Problem = mail.Problem;
    }
    return outgoing;
}

/// As it is at this moment; nothing for a message that does not wait any more.
std::optional<SendRun::Outgoing> SendRun::Read(qint32 reference) const
{
    const cMessagePtr message = Station_.Database().ReadMessage(reference);
    if (!IsWaiting(message))
        return std::nullopt;
    return Prepare(message);
}

/// Marks what was accepted, and by somebody who died before he could mark it.
void SendRun::FinishAccepted()
{
    const QHash<qint32, SendingRecord> records = Ledger_.Open();
    for (const SendingRecord& record : records) {
        if (record.Stage != SendingStage::Accepted)
            continue;
        Mark(record);
    }
}

/// Takes an accepted message to Sent. Where that cannot be, it is told, and tried again by the next run if it may be.
void SendRun::Mark(const SendingRecord& record)
{
    const auto stored = [&] {
        const cMessagePtr message = Station_.Database().ReadMessage(record.Message);
        return message && OutgoingIdentity(*message) == record.Identity ? message : nullptr;
    };
    const cMessagePtr message = stored();
    if (!IsWaiting(message) || !Station_.Database().MarkMessageSent(record.Message, ClockHelper::CurrentTime())) {
        const Failure why = Station_.WhyNot(record.Message, QStringLiteral("mark messages as sent"));
        const cMessagePtr now = stored();
        if (IsWaiting(now)) {
            Terminal::Complain(QStringLiteral("Message %1 was sent, but could not be marked as sent; the next run "
                                              "tries that again. %2")
                                   .arg(record.Message)
                                   .arg(why.Words()));
            Count(why.Code());
            return;
        }
        // Another run may have marked it in this moment.
        if (!now || now->Category() != tmcSent) {
            Terminal::Complain(QStringLiteral("Message %1 was sent; meanwhile somebody had taken it out of the "
                                              "Outbox, changed or deleted it.")
                                   .arg(record.Message));
        }
    }
    Ledger_.NoteMarked(record.Message);
}

ExitCode SendRun::Run()
{
    if (!Options_.MailProgram.isEmpty() && !Options_.FromAddress.contains(u'@')) {
        throw Failure(exitUnavailable, QStringLiteral("The station has no mail address to send from. Store it with: "
                                                      "tolva setting %1 %2 ADDRESS")
                                           .arg(Station_.Folder(), StationSettings::StationEmailAddress.Key));
    }
    return Station_.Try([&] {
        if (!Options_.IsDry)
            FinishAccepted();
        const QList<MessageRow> rows = PendingRows(Station_.Database(), Options_.Type);
        const auto progress = UserInterface::Current().Progress(QStringLiteral("Sending"));
        const PatientEnd patientEnd;
        bool isThere = Options_.OnlyMessage == 0;
        int done = 0;
        for (const MessageRow& row : rows) {
            if (Options_.OnlyMessage != 0 && row.Reference != Options_.OnlyMessage)
                continue;
            isThere = true;
            if (!progress->Advance(done++, static_cast<int>(rows.size())))
                return exitInterrupted;
            // A program that takes no texts keeps no mail waiting.
            bool& isOver = row.IsSMS ? TextsAreOver_ : MailsAreOver_;
            isOver = isOver || !Send(row);
        }
        if (!isThere) {
            throw Failure(exitData, QStringLiteral("Message %1 does not wait to be sent.").arg(Options_.OnlyMessage));
        }
        return Result_;
    });
}

/// False when the next message of its kind would fare no better.
bool SendRun::Send(const MessageRow& row)
{
    SendNote note;
    note.Message = row.Reference;
    note.IsSMS = row.IsSMS;
    if (!HasProgramFor(row)) {
        note.Words = QStringLiteral("no program is named that sends text messages");
        Note(note);
        return true;
    }
    if (Options_.IsDry)
        return TryDry(row, note);
    const std::optional<Outgoing> seen = Read(row.Reference);
    if (!seen)
        return true;
    note.Recipients = seen->Recipients;
    const std::optional<SendingRecord> before = Ledger_.Find(row.Reference);
    SendingLedger::Wish wish;
    wish.Message = row.Reference;
    wish.Identity = seen->Identity;
    // Each number of a text message takes its own time.
    wish.Seconds = Options_.Seconds * (row.IsSMS ? qMax<int>(1, static_cast<int>(seen->Recipients.size())) : 1) +
                   SecondsBeyondTheLimit;
    wish.MostAMinute = Options_.MostAMinute;
    wish.AtOnce = Options_.OnlyMessage != 0;
    SendingRecord record;
    const SendingLedger::Answer answer = Ledger_.Claim(wish, record);
    if (answer == SendingLedger::Answer::Claimed)
        return SendClaimed(row, record, before, note);
    note.Words = answer == SendingLedger::Answer::TooMany
                     ? QStringLiteral("as many as may be sent in a minute are under way")
                     : InWords(StateOf(*seen->Message, Ledger_));
    note.What = answer == SendingLedger::Answer::Held ? SendNote::Kind::Held : SendNote::Kind::Waits;
    if (answer == SendingLedger::Answer::TooEarly)
        note.NextTry = record.Until;
    Note(note);
    return answer != SendingLedger::Answer::TooMany;
}

bool SendRun::SendClaimed(const MessageRow& row, SendingRecord& record, const std::optional<SendingRecord>& before,
                          SendNote& note)
{
    // From here to the hand-over nothing else is done: what was seen before the claim may be another message by now.
    const std::optional<Outgoing> outgoing = Read(row.Reference);
    if (!outgoing || outgoing->Identity != record.Identity) {
        Ledger_.TakeBack(record, before);
        note.What = SendNote::Kind::Withdrawn;
        note.Words = QStringLiteral("taken out of the Outbox, or changed, at this moment");
        Note(note);
        return true;
    }
    HandOverResult result;
    if (!outgoing->Problem.isEmpty())
        result = {HandOverResult::Kind::Refused, outgoing->Problem};
    else
        result = row.IsSMS ? HandOverTexts(*outgoing, record) : HandOverMail(*outgoing);
    if (result.What == HandOverResult::Kind::NotStarted) {
        Ledger_.TakeBack(record, before);
        Terminal::Complain(result.Words);
        Count(exitUnavailable);
        return false;
    }
    const bool goesOn = Store(record, result, note);
    Note(note);
    return goesOn;
}

HandOverResult SendRun::HandOverMail(const Outgoing& outgoing) const
{
    const QStringList words = {QStringLiteral("-i"), QStringLiteral("-f"), Options_.FromAddress, QStringLiteral("--")};
    return HandOver(Options_.MailProgram + words + outgoing.Recipients, outgoing.Octets, Options_.Seconds);
}

/// Number by number. What was accepted is kept in the record, so that nobody gets it twice when another number fails.
HandOverResult SendRun::HandOverTexts(const Outgoing& outgoing, SendingRecord& record)
{
    for (const QString& number : outgoing.Recipients) {
        if (record.Taken.contains(number))
            continue;
        HandOverResult result =
            Options_.IsGammu
                ? HandOverToGammu(Options_.TextProgram, number, outgoing.Text, Options_.Seconds)
                : HandOver(Options_.TextProgram + QStringList{number}, outgoing.Text.toUtf8(), Options_.Seconds);
        if (result.What != HandOverResult::Kind::Accepted) {
            if (outgoing.Recipients.size() > 1)
                result.Words.prepend(number + QStringLiteral(": "));
            return result;
        }
        record.Taken.append(number);
        // Settle stores the last one, with all that became of the message.
        const bool isLast = number == outgoing.Recipients.last();
        if (!isLast && !Ledger_.NoteTaken(record))
            return {HandOverResult::Kind::Unknown, QStringLiteral("somebody decided about it meanwhile")};
    }
    return {HandOverResult::Kind::Accepted, QString()};
}

/// Puts into the ledger what became of a message, and marks it if it was accepted. False when the next one of its kind
/// would fare no better.
bool SendRun::Store(SendingRecord& record, const HandOverResult& result, SendNote& note)
{
    using Kind = HandOverResult::Kind;
    const Date now = ClockHelper::NowUTC();
    record.Words = result.Words;
    note.Words = result.Words;
    switch (result.What) {
    case Kind::Accepted:
        record.Stage = SendingStage::Accepted;
        note.What = SendNote::Kind::Sent;
        break;
    case Kind::Later:
    case Kind::SetUp:
        record.Stage = SendingStage::PutOff;
        record.Until = Date(now.DayNumber() + WaitAfter(record.Attempts));
        note.What = SendNote::Kind::PutOff;
        note.NextTry = record.Until;
        if (result.What == Kind::Later && now.DayNumber() - record.FirstTry.DayNumber() > DaysOfTrying) {
            record.Stage = SendingStage::Refused;
            record.Words.prepend(QStringLiteral("tried for %1 days; at last: ").arg(DaysOfTrying));
        }
        break;
    case Kind::Refused:
        record.Stage = SendingStage::Refused;
        break;
    default:
        record.Stage = SendingStage::Unclear;
        note.What = SendNote::Kind::Unclear;
    }
    if (record.Stage == SendingStage::Refused) {
        note.What = SendNote::Kind::Refused;
        note.Words = record.Words;
    }
    Count(record.Stage == SendingStage::Accepted ? exitOK
          : result.What == Kind::SetUp           ? exitUnavailable
          : record.Stage == SendingStage::PutOff ? exitTemporary
                                                 : exitData);
    if (!Ledger_.Settle(record)) {
        Terminal::Complain(
            QStringLiteral("Somebody decided about message %1 while it was being sent; what became of it "
                           "here is not stored: %2")
                .arg(record.Message)
                .arg(record.Stage == SendingStage::Accepted ? QStringLiteral("it was accepted") : result.Words));
        Count(exitTemporary);
        return true;
    }
    if (record.Stage == SendingStage::Accepted)
        Mark(record);
    return result.What != Kind::SetUp;
}

bool SendRun::TryDry(const MessageRow& row, SendNote& note)
{
    const std::optional<Outgoing> outgoing = Read(row.Reference);
    if (!outgoing)
        return true;
    note.Recipients = outgoing->Recipients;
    const OutgoingState state = StateOf(*outgoing->Message, Ledger_);
    if (!outgoing->Problem.isEmpty()) {
        note.What = SendNote::Kind::Refused;
        note.Words = outgoing->Problem;
    } else if (state.NeedsDecision()) {
        note.What = SendNote::Kind::Held;
        note.Words = InWords(state);
    } else if (state.What == OutgoingState::Kind::Waiting ||
               (state.What == OutgoingState::Kind::NotYet &&
                (state.When <= ClockHelper::CurrentTime() || Options_.OnlyMessage != 0))) {
        note.What = SendNote::Kind::WouldBeSent;
    } else {
        note.Words = InWords(state);
    }
    Note(note);
    return true;
}
