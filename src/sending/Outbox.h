// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sending/SendingLedger.h"

#include <QStringList>

/// What is marked to be sent in the Outbox, counted.
struct OutboxCount
{
    int All = 0;
    int Late = 0;      ///< It could have gone out since more than UnsentSeconds.
    int Decisions = 0; ///< It was refused, or may have gone out or not.

    /// After what time a message that could have gone out counts as late.
    static constexpr double UnsentSeconds = 3600;

    /// The columns of a message's row that count, and which rows to open with them.
    static QStringList Columns();
    static QString Condition();
};

/// Counts such rows; no mail is read. records: what the ledger holds of them. Raises dao::Error.
TOLVA_EXPORT OutboxCount CountOutbox(dao::Recordset& rows, const QHash<qint32, SendingRecord>& records);
