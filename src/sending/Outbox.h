// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sending/OutgoingState.h"
#include "sending/SendingLedger.h"

#include <QStringList>

#include <functional>

/// What is marked to be sent in the Outbox, counted.
struct OutboxCount
{
    int All = 0;
    int Late = 0;      ///< It could have gone out since more than UnsentSeconds.
    int Decisions = 0; ///< It was refused, or may have gone out or not.

    /// After what time a message that could have gone out counts as late.
    static constexpr double UnsentSeconds = 3600;
};

/// What is marked to be sent in the Outbox at one moment, and what the ledger holds of it. No mail is read for it. A
/// plain value.
class TOLVA_EXPORT Outbox
{
public:
    /// The columns of a message's row that count, and which rows to open with them.
    static QStringList Columns();
    static QString Condition();

    /// OutgoingIdentity of a message. Asked where dates do not tell whether the ledger speaks of what lies in the
    /// Outbox now or of what was sent under that number before: where the clocks of two computers differ.
    using IdentityOf = std::function<QString(qint32 message)>;

    Outbox() = default;
    /// records: what the ledger holds. Raises dao::Error.
    Outbox(dao::Recordset& rows, const QHash<qint32, SendingRecord>& records, const IdentityOf& identityOf = {});

    OutboxCount Count() const;
    /// What became of one of them; none for a message that does not wait there.
    OutgoingState StateOf(qint32 message) const;
    /// Whether a machine wrote it; false for a message that does not wait there.
    bool IsAutomatic(qint32 message) const { return Rows_.value(message).IsAutomatic; }
    /// Those of which it differs from what it was.
    QList<qint32> ChangesSince(const Outbox& before) const;

private:
    /// Universal time.
    struct Row
    {
        Date Sent;
        Date SendAfter;
        bool IsAutomatic = false;

        friend bool operator==(const Row&, const Row&) = default;
    };

    bool IsSameAs(const Outbox& other, qint32 message) const;

    QHash<qint32, Row> Rows_;
    QHash<qint32, SendingRecord> Records_; ///< Of these rows alone.
};
