// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Station.h"
#include "commands/MessageRow.h"
#include "platform/mail/OutgoingMail.h"
#include "sending/HandOver.h"
#include "sending/SendingLedger.h"

/// How a run sends.
struct SendOptions
{
    QStringList MailProgram; ///< Program and its first words; empty to leave mails alone.
    QStringList TextProgram; ///< The same for text messages.
    bool IsGammu = false; ///< TextProgram takes the words of gammu-smsd-inject; otherwise the number is its last word.
    QString FromAddress;  ///< Empty for the setting of the station.
    QString Type;         ///< "email", "sms", or empty for all.
    qint32 OnlyMessage = 0; ///< 0 for all. One that was put off is tried at once.
    int MostAMinute = 0;    ///< 0 for no limit.
    int Seconds = 120;      ///< For one message, or one number of a text message.
    bool IsDry = false;
};

/// What a run did about one message.
struct SendNote
{
    enum class Kind
    {
        Sent,
        WouldBeSent,
        PutOff,
        Refused,
        Unclear,
        Withdrawn, ///< Taken out of the Outbox before it was handed over.
        Waits,     ///< Nothing was tried: there is no program for it, somebody else sends it, it was put off, or the
                   ///< limit of a minute is reached.
        Held       ///< Nothing was tried: a person has to decide.
    };
    Kind What = Kind::Waits;
    qint32 Message = 0;
    bool IsSMS = false;
    QStringList Recipients;
    QString Words;
    Date NextTry; ///< Universal time; of what was put off.
};

/// One run over the messages that wait to be sent, of one program on one computer; others may run at the same time,
/// here and elsewhere. Each message is claimed in the ledger before it is handed over, and what became of it is stored
/// there before it is marked as sent, so that a death in between never lets it go out twice.
class SendRun
{
public:
    using Tell = std::function<void(const SendNote&)>;

    SendRun(Station& station, const SendOptions& options, Tell tell);

    /// Failure for what would stop every message. The code for the program's end otherwise.
    ExitCode Run();

private:
    struct Outgoing
    {
        cMessagePtr Message;
        QString Identity;
        QStringList Recipients;
        QByteArray Octets; ///< Of a mail.
        QString Text;      ///< Of a text message.
        QString Problem;
    };

    bool HasProgramFor(const MessageRow& row) const;
    std::optional<Outgoing> Read(qint32 reference) const;
    Outgoing Prepare(const cMessagePtr& message) const;
    void FinishAccepted();
    void Mark(const SendingRecord& record);
    bool Send(const MessageRow& row);
    bool SendClaimed(const MessageRow& row, SendingRecord& record, const std::optional<SendingRecord>& before,
                     SendNote& note);
    HandOverResult HandOverMail(const Outgoing& outgoing) const;
    HandOverResult HandOverTexts(const Outgoing& outgoing, SendingRecord& record);
    bool Store(SendingRecord& record, const HandOverResult& result, SendNote& note);
    bool TryDry(const MessageRow& row, SendNote& note);
    void Note(const SendNote& note);
    void Count(ExitCode code);

    Station& Station_;
    SendOptions Options_;
    Tell Tell_;
    SendingLedger Ledger_;
    QString StationName_;
    ExitCode Result_ = exitOK;
    bool MailsAreOver_ = false; ///< No more of them are tried.
    bool TextsAreOver_ = false;
};
