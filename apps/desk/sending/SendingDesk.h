// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "sending/OutgoingState.h"

#include <QObject>
#include <QTimer>

class DeskStation;
class NoticeBar;
class QAction;
class QLabel;
class QMainWindow;

/// What the desk's main window shows of messages that go out: what became of the selected one, with "Send again", and
/// in the status bar what has not gone out for an hour or waits for somebody to decide. It only looks, now and then:
/// other computers send. Owned by the main window; the station outlives it.
class SendingDesk : public QObject
{
    Q_OBJECT

public:
    SendingDesk(DeskStation& station, QMainWindow& window);

    /// For the place above the message, and for the status bar.
    NoticeBar& Notice() { return *Notice_; }
    QLabel& Unsent() { return *Unsent_; }
    /// "Send again", for a menu.
    QAction* Action() const { return Again_; }

    /// The message that is selected; null for none.
    void Show(const cMessagePtr& message);

    /// How often it looks what became of the selected message, and how often at the whole Outbox.
    static constexpr int LookMilliseconds = 3000;
    static constexpr int UnsentMilliseconds = 60 * 1000;

public Q_SLOTS:
    /// Asks what to do about a message that may have gone out already.
    void SendAgain();
    /// Looks at the whole Outbox.
    void CountUnsent();

private:
    enum class Decision
    {
        SendAgain,
        ItWent,
        Nothing
    };

    void Look();
    OutgoingState StateNow() const;
    Decision Ask(const OutgoingState& state) const;
    void Decide(Decision decision);
    QString UnsentWords() const;

    DeskStation& Station_;
    QMainWindow& Window_;
    cMessagePtr Message_;
    NoticeBar* Notice_;
    QLabel* Unsent_;
    QAction* Again_;
    QTimer LookTimer_;
    QTimer UnsentTimer_;
};
