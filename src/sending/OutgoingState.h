// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sending/SendingLedger.h"

class cMessage;

/// What became of a message that is to go out, for a person to read.
struct OutgoingState
{
    enum class Kind
    {
        None,      ///< It is not to go out, or nobody here knows of its sending.
        Waiting,   ///< Until it is handed over; When is since when, as far as that is known.
        NotYet,    ///< Until When, because its writer or a server wants it so; Words, when there are any, say why.
        BeingSent, ///< Since When.
        Sent,      ///< Accepted at When.
        Refused,   ///< At When; Words say why.
        Unclear    ///< It may have gone out at When; Words, when there are any, say what is known.
    };
    Kind What = Kind::None;
    Date When; ///< Local time; may be none.
    QString Words;

    /// Whether a person has to decide before it goes out.
    bool NeedsDecision() const { return What == Kind::Refused || What == Kind::Unclear; }
};

/// What of a message's row counts for that.
struct OutgoingRow
{
    qint32 Category = 0;
    qint32 Flags = 0;
    Date Sent; ///< Local time, as all of these.
    Date SendAfter;
    QString Identity; ///< See OutgoingIdentity.h.

    /// Whether it is in the Outbox and marked to be sent.
    bool IsWaiting() const;
};

/// record: what the ledger holds under the message's number; nothing when it holds nothing.
TOLVA_EXPORT OutgoingState StateOf(const OutgoingRow& row, const std::optional<SendingRecord>& record);

/// Of a message as it was read.
TOLVA_EXPORT OutgoingState StateOf(const cMessage& message, const SendingLedger& ledger);

/// One sentence without its full stop: "Waiting to be sent", "Refused on 22 Nov 2026 at 13:57: no such mailbox". Empty
/// for none.
TOLVA_EXPORT QString InWords(const OutgoingState& state);

/// The same in a few words for a row of a list: "waiting", "refused: no such mailbox".
TOLVA_EXPORT QString InShort(const OutgoingState& state);
