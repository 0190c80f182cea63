// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/watch/FileWatch.h"
#include "sending/Outbox.h"

#include <QObject>

class DeskStation;

/// What of all that goes out became known: of the Outbox as it was looked at last, and of sent messages in blocks that
/// are read when the first of one is asked for. So a row of a list costs no statement of its own. The station outlives
/// it.
class SendingWatch : public QObject
{
    Q_OBJECT

public:
    explicit SendingWatch(DeskStation& station) : Station_(station) {}

    /// Looks at the Outbox again. Nothing is told where it cannot be read: the window says that the station cannot be
    /// reached.
    void Refresh();
    /// The same where somebody may have written to the ledger since.
    void RefreshIfChanged();
    /// Forgets the sent ones, which are other ones now.
    void ForgetSent() { Blocks_.clear(); }

    OutboxCount Count() const { return Outbox_.Count(); }
    /// What became of a message in the Outbox or among the sent ones, for its row in the list; empty for nothing.
    QString OutboxNote(qint32 message) const;
    QString SentNote(qint32 message);

Q_SIGNALS:
    void OutboxChanged(const QList<qint32>& messages);

private:
    bool Read();
    /// One that went out.
    struct SentOne
    {
        Date When; ///< Universal time.
        bool IsAutomatic = false;
    };
    QHash<qint32, SentOne> ReadBlock(qint32 first, qint32 last) const;

    DeskStation& Station_;
    FileWatch Ledger_;
    Outbox Outbox_;
    QHash<qint32, QHash<qint32, SentOne>> Blocks_; ///< By the block's number.
};
