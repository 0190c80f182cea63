// SPDX-License-Identifier: Apache-2.0
#include "answering/AnsweringWatch.h"

#include <algorithm>

void AnsweringWatch::Take(const QList<AnsweringEntry>& entries, qint64 now)
{
    QHash<QString, Seen> seen;
    for (const AnsweringEntry& entry : entries) {
        const auto before = Seen_.constFind(entry.Entry);
        const bool isSame = before != Seen_.constEnd() && before->Last == entry;
        seen.insert(entry.Entry, {entry, isSame ? before->Changed : now});
    }
    Seen_ = std::move(seen);
}

QList<Answering> AnsweringWatch::Alive(qint64 now) const
{
    QList<Answering> alive;
    for (const Seen& seen : Seen_) {
        if (now - seen.Changed < AliveMilliseconds)
            alive.append({seen.Last.Message, seen.Last.Name, seen.Last.Seconds + (now - seen.Changed) / 1000});
    }
    std::sort(alive.begin(), alive.end(), [](const Answering& a, const Answering& b) {
        if (a.Message != b.Message)
            return a.Message < b.Message;
        return a.Seconds != b.Seconds ? a.Seconds > b.Seconds : a.Name < b.Name;
    });
    return alive;
}

QStringList AnsweringWatch::Forgotten(qint64 now) const
{
    QStringList entries;
    for (const Seen& seen : Seen_) {
        if (now - seen.Changed >= ForgottenMilliseconds)
            entries.append(seen.Last.Entry);
    }
    return entries;
}
