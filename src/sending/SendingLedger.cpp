// SPDX-License-Identifier: Apache-2.0
#include "sending/SendingLedger.h"

#include "common/ClockHelper.h"
#include "common/MachineHelper.h"
#include "database/RowValues.h"
#include "platform/records/QueryDef.h"
#include "platform/records/Recordset.h"
#include "platform/records/Transaction.h"

#include <QCoreApplication>
#include <QUuid>

namespace
{
const QString Table = QStringLiteral("Sending");
const QString MessageField = QStringLiteral("Message");
const QString IdentityField = QStringLiteral("Identity");
const QString StageField = QStringLiteral("State");
const QString WhenField = QStringLiteral("When");
const QString FirstTryField = QStringLiteral("FirstTry");
const QString UntilField = QStringLiteral("Until");
const QString AttemptsField = QStringLiteral("Attempts");
const QString ClaimField = QStringLiteral("Claim");
const QString ComputerField = QStringLiteral("Computer");
const QString ProcessField = QStringLiteral("Process");
const QString TakenField = QStringLiteral("Taken");
const QString WordsField = QStringLiteral("Words");

/// In the place of a claim: nobody of these programs has one.
const QString HandedOutClaim = QStringLiteral("handed out as a file");

constexpr qsizetype LongestName = 255; // of a text field
constexpr double SecondsADay = 86400;

Date DateOf(const dao::Recordset& row, const QString& field)
{
    return Date(row.Collect(field).toDouble());
}

using RowValues::Stored;

QVariant Stored(const QString& text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

SendingRecord ReadRow(const dao::Recordset& row)
{
    SendingRecord record;
    record.Message = row.Collect(MessageField).toInt();
    record.Identity = row.Collect(IdentityField).toString();
    record.Stage = static_cast<SendingStage>(row.Collect(StageField).toInt());
    record.When = DateOf(row, WhenField);
    record.FirstTry = DateOf(row, FirstTryField);
    record.Until = DateOf(row, UntilField);
    record.Attempts = row.Collect(AttemptsField).toInt();
    record.Claim = row.Collect(ClaimField).toString();
    record.Computer = row.Collect(ComputerField).toString();
    record.Process = row.Collect(ProcessField).toLongLong();
    record.Taken = row.Collect(TakenField).toString().split(u'\n', Qt::SkipEmptyParts);
    record.Words = row.Collect(WordsField).toString();
    return record;
}

void WriteRow(dao::Recordset& row, const SendingRecord& record)
{
    row.SetCollect(MessageField, record.Message);
    row.SetCollect(IdentityField, Stored(record.Identity));
    row.SetCollect(StageField, static_cast<int>(record.Stage));
    row.SetCollect(WhenField, Stored(record.When));
    row.SetCollect(FirstTryField, Stored(record.FirstTry));
    row.SetCollect(UntilField, Stored(record.Until));
    row.SetCollect(AttemptsField, record.Attempts);
    row.SetCollect(ClaimField, Stored(record.Claim));
    row.SetCollect(ComputerField, Stored(record.Computer.left(LongestName)));
    row.SetCollect(ProcessField, static_cast<qint32>(record.Process));
    row.SetCollect(TakenField, Stored(record.Taken.join(u'\n')));
    row.SetCollect(WordsField, Stored(record.Words));
}

std::unique_ptr<dao::Recordset> OpenTable(dao::Database& file)
{
    std::unique_ptr<dao::Recordset> rows = file.OpenRecordset(Table, dao::dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    return rows;
}

/// The rows with the one of that message as the current one; false when there is none.
bool Seek(dao::Recordset& rows, qint32 message)
{
    rows.Seek(dao::SeekComparison::Equal, {message});
    return !rows.NoMatch();
}

/// Writes over the row of the message, or adds one.
void Store(dao::Recordset& rows, const SendingRecord& record)
{
    if (Seek(rows, record.Message))
        rows.Edit();
    else
        rows.AddNew();
    WriteRow(rows, record);
    rows.Update();
}

/// What keeps somebody from handing a message over; Claimed for nothing.
SendingLedger::Answer Hindrance(const SendingRecord& record, Date now, bool atOnce)
{
    switch (record.Stage) {
    case SendingStage::HandingOver:
        return record.IsUnclear(now) ? SendingLedger::Answer::Held : SendingLedger::Answer::Busy;
    case SendingStage::PutOff:
        return atOnce || record.Until <= now ? SendingLedger::Answer::Claimed : SendingLedger::Answer::TooEarly;
    case SendingStage::Released:
        return SendingLedger::Answer::Claimed;
    default:
        return SendingLedger::Answer::Held;
    }
}
} // namespace

bool SendingRecord::IsHandedOut() const
{
    return Stage == SendingStage::Unclear && Claim == HandedOutClaim;
}

std::optional<SendingRecord> SendingLedger::Find(qint32 message) const
{
    const auto rows = OpenTable(File_);
    if (!Seek(*rows, message))
        return std::nullopt;
    return ReadRow(*rows);
}

QHash<qint32, SendingRecord> SendingLedger::Open() const
{
    QHash<qint32, SendingRecord> records;
    const auto rows = File_.OpenRecordset(QStringLiteral("SELECT * FROM [Sending] WHERE [State] IN (1, 2, 4, 5, 6, 7)"),
                                          dao::dbOpenSnapshot);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const SendingRecord record = ReadRow(*rows);
        records.insert(record.Message, record);
    }
    return records;
}

QHash<qint32, Date> SendingLedger::SentBetween(qint32 first, qint32 last) const
{
    QHash<qint32, Date> sent;
    const auto rows = File_.OpenRecordset(QStringLiteral("SELECT [Message], [When] FROM [Sending] WHERE [Message]>=%1 "
                                                         "AND [Message]<=%2 AND [State] IN (2, 3)")
                                              .arg(first)
                                              .arg(last),
                                          dao::dbOpenSnapshot);
    for (; !rows->AtEOF(); rows->MoveNext())
        sent.insert(rows->Collect(MessageField).toInt(), Date(rows->Collect(WhenField).toDouble()));
    return sent;
}

int SendingLedger::BegunWithinAMinute() const
{
    const double since = ClockHelper::NowUTC().DayNumber() - 60 / SecondsADay;
    const auto query = File_.CreateQueryDef(
        QString(), QStringLiteral("SELECT [Message] FROM [Sending] WHERE [When]>[Since] AND [State]<>7"));
    query->Parameters().Item(QStringLiteral("Since")).SetValue(since);
    return query->OpenRecordset(dao::dbOpenSnapshot)->RecordCount();
}

SendingLedger::Answer SendingLedger::Claim(const Wish& wish, SendingRecord& record)
{
    dao::Transaction transaction(File_);
    const Date now = ClockHelper::NowUTC();
    const auto rows = OpenTable(File_);
    record = SendingRecord();
    if (Seek(*rows, wish.Message)) {
        record = ReadRow(*rows);
        // Another content under the number is another message, but not while the old one is being handed over.
        const bool isSame = record.Identity == wish.Identity;
        const bool isBusy = record.Stage == SendingStage::HandingOver && !record.IsUnclear(now);
        const Answer hindrance = Hindrance(record, now, wish.AtOnce);
        if (isBusy || (isSame && hindrance != Answer::Claimed))
            return hindrance;
        if (!isSame)
            record = SendingRecord();
    }
    if (wish.MostAMinute > 0 && BegunWithinAMinute() >= wish.MostAMinute)
        return Answer::TooMany;
    record.Message = wish.Message;
    record.Identity = wish.Identity;
    record.Stage = SendingStage::HandingOver;
    record.When = now;
    if (record.FirstTry.IsNone())
        record.FirstTry = now;
    record.Until = Date(now.DayNumber() + wish.Seconds / SecondsADay);
    ++record.Attempts;
    record.Claim = QUuid::createUuid().toString(QUuid::WithoutBraces);
    record.Computer = MachineHelper::ComputerName();
    record.Process = QCoreApplication::applicationPid();
    Store(*rows, record);
    transaction.Commit();
    return Answer::Claimed;
}

template <typename Change>
bool SendingLedger::ChangeRow(qint32 message, Change change)
{
    dao::Transaction transaction(File_);
    const auto rows = OpenTable(File_);
    if (!Seek(*rows, message))
        return false;
    SendingRecord record = ReadRow(*rows);
    if (!change(record))
        return false;
    rows->Edit();
    WriteRow(*rows, record);
    rows->Update();
    transaction.Commit();
    return true;
}

bool SendingLedger::NoteTaken(const SendingRecord& record)
{
    return ChangeRow(record.Message, [&](SendingRecord& stored) {
        if (stored.Claim != record.Claim || stored.Stage != SendingStage::HandingOver)
            return false;
        stored.Taken = record.Taken;
        return true;
    });
}

bool SendingLedger::Settle(const SendingRecord& record)
{
    return ChangeRow(record.Message, [&](SendingRecord& stored) {
        if (stored.Claim != record.Claim || stored.Stage != SendingStage::HandingOver)
            return false;
        stored = record;
        stored.When = ClockHelper::NowUTC();
        return true;
    });
}

void SendingLedger::TakeBack(const SendingRecord& claimed, const std::optional<SendingRecord>& before)
{
    dao::Transaction transaction(File_);
    const auto rows = OpenTable(File_);
    if (!Seek(*rows, claimed.Message) || ReadRow(*rows).Claim != claimed.Claim)
        return;
    if (before) {
        rows->Edit();
        WriteRow(*rows, *before);
        rows->Update();
    } else {
        rows->Delete();
    }
    transaction.Commit();
}

void SendingLedger::NoteMarked(qint32 message)
{
    ChangeRow(message, [](SendingRecord& stored) {
        if (stored.Stage != SendingStage::Accepted)
            return false;
        stored.Stage = SendingStage::Sent;
        return true;
    });
}

bool SendingLedger::NoteHandedOut(qint32 message, const QString& identity, const QString& words, SendingRecord& record)
{
    dao::Transaction transaction(File_);
    const auto rows = OpenTable(File_);
    record = SendingRecord();
    if (Seek(*rows, message)) {
        record = ReadRow(*rows);
        const bool isBusy = record.Stage == SendingStage::HandingOver && !record.IsUnclear(ClockHelper::NowUTC());
        const bool isSame = record.Identity == identity;
        if (isSame && record.IsHandedOut())
            return true;
        const bool mayGo = record.Stage == SendingStage::Released || record.Stage == SendingStage::PutOff ||
                           record.Stage == SendingStage::Refused;
        if (isBusy || (isSame && !mayGo))
            return false;
    }
    record = SendingRecord();
    record.Message = message;
    record.Identity = identity;
    record.Stage = SendingStage::Unclear;
    record.When = ClockHelper::NowUTC();
    record.Claim = HandedOutClaim;
    record.Computer = MachineHelper::ComputerName();
    record.Words = words;
    Store(*rows, record);
    transaction.Commit();
    return true;
}

bool SendingLedger::SendAgain(qint32 message)
{
    return ChangeRow(message, [](SendingRecord& stored) {
        const Date now = ClockHelper::NowUTC();
        if (stored.Stage == SendingStage::HandingOver && !stored.IsUnclear(now))
            return false;
        // Whoever got it for certain gets it once more only when everybody is to.
        if (stored.Stage == SendingStage::Sent || stored.Stage == SendingStage::Accepted)
            stored.Taken.clear();
        stored.Stage = SendingStage::Released;
        stored.When = now;
        stored.FirstTry = Date();
        stored.Until = Date();
        stored.Attempts = 0;
        stored.Claim.clear();
        return true;
    });
}

void SendingLedger::NoteWent(qint32 message, const QString& identity)
{
    dao::Transaction transaction(File_);
    const auto rows = OpenTable(File_);
    SendingRecord record;
    if (Seek(*rows, message))
        record = ReadRow(*rows);
    record.Message = message;
    record.Identity = identity;
    record.Stage = SendingStage::Sent;
    record.When = ClockHelper::NowUTC();
    record.Claim.clear();
    Store(*rows, record);
    transaction.Commit();
}
