// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QObject>
#include <QTimer>

class DeskStation;
class QLabel;
class QMainWindow;
class SendingNotice;
class SendingWatch;
class uMessagesList;

/// What the desk's main window shows of messages that go out: what became of the selected one, of each in its row, and
/// in the status bar what has not gone out for an hour or waits for somebody to decide. It only looks, now and then:
/// other computers send. Owned by the main window; the station and the list outlive it.
class SendingDesk : public QObject
{
    Q_OBJECT

public:
    SendingDesk(DeskStation& station, uMessagesList& list, QMainWindow& window);

    /// For the place above the message, and for the status bar.
    SendingNotice& Notice() { return *Notice_; }
    QLabel& Unsent() { return *Unsent_; }

    /// How often it looks at the Outbox while that is on show, and how often all the time.
    static constexpr int LookMilliseconds = 3000;
    static constexpr int UnsentMilliseconds = 60 * 1000;

public Q_SLOTS:
    /// Looks at the whole Outbox.
    void CountUnsent();
    /// The list shows other rows, or the same ones anew.
    void TakeUpdate();

private:
    QString NoteOf(qint32 message);
    void LookAtOutbox();
    void ShowUnsent();
    QString UnsentWords() const;

    uMessagesList& List_;
    SendingNotice* Notice_;
    SendingWatch* Watch_;
    QLabel* Unsent_;
    QTimer LookTimer_;
    QTimer UnsentTimer_;
};
