// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// How far the sending of one message has come.
enum class SendingStage
{
    HandingOver = 1, ///< Somebody has claimed it and hands it over, or died over it.
    Accepted = 2,    ///< The program has it; the message is not marked as sent yet.
    Sent = 3,        ///< And marked.
    PutOff = 4,      ///< Nobody took it this time; tried again by itself from Until on.
    Refused = 5,     ///< Nobody took it and nobody will as it is.
    Unclear = 6,     ///< It may have gone out. Never sent again by itself.
    Released = 7     ///< Somebody wants it to be sent again.
};

/// What the ledger holds of one message. All dates are universal time.
struct SendingRecord
{
    qint32 Message = 0;
    QString Identity; ///< Of what was sent under that number; see OutgoingIdentity.h.
    SendingStage Stage = SendingStage::Released;
    Date When;     ///< Since when it is in this stage.
    Date FirstTry; ///< When the first of the tries began.
    Date Until;    ///< HandingOver: whoever claimed it is done by then. PutOff: when it is tried again.
    int Attempts = 0;
    QString Claim;    ///< Of the try under way, or the last one.
    QString Computer; ///< Where that is made.
    qint64 Process = 0;
    QStringList Taken; ///< Recipients for whom it was accepted already, where they are served one by one.
    QString Words;     ///< What the program said.

    /// Whether it was handed out as a file, for a program that marks it when it went.
    bool IsHandedOut() const;
    /// Whether it may have gone out: so it was told, or whoever handed it over has not been heard of in time.
    bool IsUnclear(Date now) const
    {
        return Stage == SendingStage::Unclear || (Stage == SendingStage::HandingOver && Until < now);
    }
};

/// Who sends which message, and what became of it: the table "Sending" in the directory's file, which all computers of
/// a station see. It lies beside the station, so that putting back a backup does not bring back that something was not
/// sent yet. Every change is one transaction and durable when the call returns. Owned by whoever made it, over the file
/// that outlives it. All raise dao::Error.
class TOLVA_EXPORT SendingLedger
{
public:
    explicit SendingLedger(dao::Database& directoryFile) : File_(directoryFile) {}

    std::optional<SendingRecord> Find(qint32 message) const;
    /// All that are not sent and marked, by message.
    QHash<qint32, SendingRecord> Open() const;
    /// When those of these numbers went out that did, by message; one statement.
    QHash<qint32, Date> SentBetween(qint32 first, qint32 last) const;

    enum class Answer
    {
        Claimed,
        Busy,     ///< Somebody else hands it over at this moment.
        Held,     ///< Its record says why: sent or accepted already, refused, or unclear.
        TooEarly, ///< It was put off.
        TooMany   ///< As many as may begin in a minute have begun.
    };
    struct Wish
    {
        qint32 Message = 0;
        QString Identity;
        int Seconds = 0;     ///< How long handing it over takes at most.
        int MostAMinute = 0; ///< Of all computers together; 0 for no limit.
        bool AtOnce = false; ///< Also when it was put off.
    };
    /// Claims a message in one step: of all who ask for it one is answered Claimed, and hands it over. record: what
    /// stands there afterwards.
    Answer Claim(const Wish& wish, SendingRecord& record);
    /// Keeps record.Taken while a claim goes on, so that whoever decides over a hand-over that broke off does not send
    /// to them once more. False as for Settle.
    bool NoteTaken(const SendingRecord& record);
    /// Ends a claim with what became of it: record.Stage, Until, Taken and Words. False when the claim is not in force
    /// any more: somebody has decided over the message meanwhile, and nothing is stored.
    bool Settle(const SendingRecord& record);
    /// Takes a claim back behind which nothing was handed over; what was known before the claim stays.
    void TakeBack(const SendingRecord& claimed, const std::optional<SendingRecord>& before);
    /// Accepted becomes sent.
    void NoteMarked(qint32 message);

    /// That a message is handed out as a file, so that nobody here sends it as well: it may have gone out from now on,
    /// until it is marked or somebody decides. words: where to. False, with what stands there in record, when it is
    /// being handed over or was, or may have gone out in another way.
    bool NoteHandedOut(qint32 message, const QString& identity, const QString& words, SendingRecord& record);

    /// What a person decides. SendAgain: it waits again, for those of its recipients who do not have it, also when it
    /// may have gone out; False when the ledger holds nothing of it, or it is being handed over. NoteWent: it went out.
    bool SendAgain(qint32 message);
    void NoteWent(qint32 message, const QString& identity);

private:
    template <typename Change>
    bool ChangeRow(qint32 message, Change change);
    int BegunWithinAMinute() const;

    dao::Database& File_;
};
