// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/AnsweringTable.h"
#include "platform/Export.h"

#include <QHash>

/// Somebody who is answering a message now.
struct Answering
{
    qint32 Message = 0;
    QString Name;
    qint64 Seconds = 0; ///< For how long.

    friend bool operator==(const Answering&, const Answering&) = default;
};

/// Tells the living entries of "Answering" from those that a crash left, by the clock of who reads alone: an entry
/// lives while its count of seconds is seen to change, and for a while after it was seen first. No two computers'
/// clocks are ever compared. Moments are milliseconds of any clock that only runs forward. A plain value.
class TOLVA_EXPORT AnsweringWatch
{
public:
    /// An entry that has not changed for so long is nobody's any more,
    static constexpr qint64 AliveMilliseconds = 60'000;
    /// and after this long whoever writes next removes it: its desk may only have been held up.
    static constexpr qint64 ForgottenMilliseconds = 180'000;
    /// How often a desk tells that its windows still stand: twice may be missed.
    static constexpr qint64 BeatMilliseconds = 20'000;

    /// What stands in the table at that moment; own entries left out.
    void Take(const QList<AnsweringEntry>& entries, qint64 now);
    /// Who is answering, by the message and then by who has done so for longest.
    QList<Answering> Alive(qint64 now) const;
    /// What nobody keeps any more.
    QStringList Forgotten(qint64 now) const;

private:
    struct Seen
    {
        AnsweringEntry Last;
        qint64 Changed = 0;
    };
    QHash<QString, Seen> Seen_;
};
