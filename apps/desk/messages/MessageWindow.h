// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QMainWindow>

class DeskStation;
class NoticeBar;
class PreviewPane;
class QMenu;
class SearchService;
class SendingNotice;

/// One message in a window of its own. It shows what was opened, and says so when another computer deletes or moves it
/// meanwhile, what became of one that goes out, and where the same one is as well. Deletes itself on closing. The
/// station and the search outlive it.
class MessageWindow : public QMainWindow
{
    Q_OBJECT

public:
    MessageWindow(DeskStation& station, SearchService& search, const cMessagePtr& message, QWidget* parent = nullptr);

    qint32 Reference() const { return Message_->Reference(); }
    PreviewPane& View() { return *View_; }
    /// For what else can be done with the message.
    QMenu& Menu() const { return *Menu_; }
    /// As PreviewPane has it.
    void SetShowsSentDate(bool shows);

public Q_SLOTS:
    /// Looks whether the message is still where it was.
    void CheckStored();

Q_SIGNALS:
    void ReplyWanted(const cMessagePtr& message);
    void ReplyToAllWanted(const cMessagePtr& message);
    void ForwardWanted(const cMessagePtr& message);
    void AwardToSenderWanted(const cMessagePtr& message);
    void PrintWanted(const cMessagePtr& message);
    void SenderContactWanted(const cMessagePtr& message);
    void WasRead(qint32 reference);
    /// Somebody wants to see this one.
    void MessageWanted(qint32 reference);
    /// Somebody has decided here over a message that was not sent.
    void SendingDecided();

private:
    void MakeActions();

    DeskStation& Station_;
    cMessagePtr Message_;
    QMenu* Menu_;
    NoticeBar* Notice_;
    SendingNotice* Sending_;
    PreviewPane* View_;
};
