// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "sending/OutgoingState.h"

#include <QObject>
#include <QTimer>

class DeskStation;
class NoticeBar;
class QAction;
class QMainWindow;

/// The line above a message that says what became of its sending, with "Send again". It only looks, now and then: other
/// computers send. Owned by its window; the station outlives it.
class SendingNotice : public QObject
{
    Q_OBJECT

public:
    SendingNotice(DeskStation& station, QMainWindow& window);

    NoticeBar& Bar() { return *Bar_; }
    /// "Send again", for a menu.
    QAction* Action() const { return Again_; }

    /// The message that is on show; null for none.
    void Show(const cMessagePtr& message);

    /// How often it looks what became of the message.
    static constexpr int LookMilliseconds = 3000;

public Q_SLOTS:
    /// Asks what to do about a message that may have gone out already.
    void SendAgain();

Q_SIGNALS:
    /// Somebody has decided over the message.
    void Decided();

private:
    enum class Decision
    {
        SendAgain,
        ItWent,
        Nothing
    };

    void Look();
    OutgoingState StateNow();
    Decision Ask(const OutgoingState& state) const;
    void Decide(Decision decision);

    DeskStation& Station_;
    QMainWindow& Window_;
    cMessagePtr Message_;
    bool IsInOutbox_ = false; ///< As it is stored.
    NoticeBar* Bar_;
    QAction* Again_;
    QTimer LookTimer_;
};
