// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QMainWindow>

class DeskStation;
class NoticeBar;
class PreviewPane;
class QMenu;

/// One message in a window of its own. It shows what was opened, and says so when another computer deletes or moves it
/// meanwhile. Deletes itself on closing. The station outlives it.
class MessageWindow : public QMainWindow
{
    Q_OBJECT

public:
    MessageWindow(DeskStation& station, const cMessagePtr& message, QWidget* parent = nullptr);

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

private:
    void MakeActions();

    DeskStation& Station_;
    cMessagePtr Message_;
    QMenu* Menu_;
    NoticeBar* Notice_;
    PreviewPane* View_;
};
