// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/onair/OnAirEntry.h"
#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QList>
#include <QSet>

#include <functional>

/// The running order of a station: what is to be read out, one after the other, the same at all desks. It is the table
/// "OnAir" of the station's file, made when something is put on it for the first time. Every change is one transaction,
/// in which the order is read anew, and durable when the call returns. Whoever made this owns it; the file outlives it.
/// Raises dao::Error.
class TOLVA_EXPORT RunningOrder
{
public:
    explicit RunningOrder(dao::Database& stationFile) : File_(stationFile) {}

    /// In their order; none where nothing was ever put on it.
    QList<OnAirEntry> Read() const;

    /// The messages among those that wait, without their texts.
    QSet<qint32> WaitingMessages() const;

    struct Added
    {
        qint32 Reference = 0;
        bool WasThere = false; ///< The message or prize waits in the order already: that entry's number.
    };
    /// Puts an entry at the end. Its reference, position and state are made here.
    Added Add(const OnAirEntry& entry);

    enum class Outcome
    {
        Done,
        Gone,   ///< Somebody has taken it off the order.
        Changed ///< Somebody has changed it; nothing was stored.
    };
    /// before: the state that the user saw. who: for the record.
    Outcome SetState(qint32 reference, OnAirState before, OnAirState state, const QString& who);
    /// before: the text that the user changed. An empty text is the original again.
    Outcome SetText(qint32 reference, const QString& before, const QString& text);
    /// By one place towards the front, or towards the end. At the end of the order nothing moves.
    Outcome MoveUp(qint32 reference);
    Outcome MoveDown(qint32 reference);
    Outcome Remove(qint32 reference);
    /// Takes everything off it; how much that was.
    int Empty();

private:
    Outcome Change(qint32 reference, const std::function<bool(dao::Recordset& row)>& change);
    Outcome Move(qint32 reference, int step);
    void PutBetween(dao::Recordset& rows, const QList<OnAirEntry>& others, qsizetype place, qint32 reference);

    dao::Database& File_;
};
