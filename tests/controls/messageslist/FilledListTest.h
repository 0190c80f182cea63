// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messageslist/MessagesListTest.h"
#include "platform/widgets/OverlayPanel.h"

#include <QTimer>

#include <functional>

/// A messages list with mails in its station, and the other computers that change the same file.
class FilledListTest : public MessagesListTest
{
protected:
    FilledListTest();

    /// The reference of a mail saved into the Inbox, after change altered it. It has no date of its own, so that mails
    /// stand in the order in which they were saved.
    qint32 Save(const QString& subject, const std::function<void(cMessage&)>& change = {});
    qint32 SaveIn(const QString& subject, enTolvaMessageCategories category);
    /// "Message 1" and so on, saved in one go; their references.
    QList<qint32> SaveMany(int count);
    /// Another program's connection to the same file, made on the first call.
    cTolvaDatabase& OtherComputer();
    /// Saves a mail into the Inbox from the other computer, a second later.
    qint32 SaveElsewhere(const QString& subject);
    /// The polling timer fires once; whatever it finds is done on return.
    void Tick();
    /// References that MessageSelected told since the last call, 0 for none.
    QList<qint32> TakeSelections() { return std::exchange(Selections_, {}); }
    /// Fires once at the n-th yield from now, 1 for the next.
    void AtYield(int n, const std::function<void()>& action);

    QTimer& Timer() const { return Child<QTimer>("timerUpdateList"); }
    OverlayPanel& Loading() const { return Child<OverlayPanel>("picLoading"); }
    OverlayPanel& NoMessages() const { return Child<OverlayPanel>("picNoMessages"); }

private:
    std::unique_ptr<cTolvaDatabase> Other_;
    QList<qint32> Selections_;
};
