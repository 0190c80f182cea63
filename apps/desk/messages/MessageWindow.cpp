// SPDX-License-Identifier: Apache-2.0
#include "MessageWindow.h"

#include "AttachmentList.h"
#include "DisplayText.h"
#include "PreviewPane.h"
#include "RowRecovery.h"
#include "StoredState.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/Icons.h"
#include "search/SameMailNotice.h"
#include "sending/SendingNotice.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{
constexpr qsizetype LongestTitle = 300;
}

MessageWindow::MessageWindow(DeskStation& station, SearchService& search, const cMessagePtr& message, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      Station_(station),
      Message_(message),
      Menu_(menuBar()->addMenu(tr("&Message"))),
      Notice_(new NoticeBar(QStringLiteral("warning"), QString(), this)),
      Sending_(new SendingNotice(station, *this)),
      View_(new PreviewPane(this))
{
    setObjectName(QStringLiteral("messageWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    const QString subject = OneLine(cdo::HeaderBeginning(*message->CDOMessage(), "Subject", LongestTitle));
    setWindowTitle(subject.isEmpty() ? tr("(no subject)") : subject);
    Notice_->setObjectName(QStringLiteral("storedNotice"));
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Notice_);
    layout->addWidget(&Sending_->Bar());
    auto* same = new SameMailNotice(station, search, SameMailNotice::Place::InWindow, *this);
    connect(same, &SameMailNotice::MessageWanted, this, &MessageWindow::MessageWanted);
    layout->addWidget(&same->Bar());
    layout->addWidget(View_, 1);
    setCentralWidget(page);
    MakeActions();
    connect(Sending_, &SendingNotice::Decided, this, &MessageWindow::SendingDecided);
    connect(View_, &PreviewPane::WasRead, this, &MessageWindow::WasRead);
    connect(&View_->Attachments(), &AttachmentList::Saved, this,
            [this](const QString& words) { statusBar()->showMessage(words); });
    statusBar()->setSizeGripEnabled(false);
    View_->SetDamageAdvice([this](qint32 reference) {
        return RowRecovery::Advice(Station_.Folder(), RowRecovery::Kind::Message, reference);
    });
    View_->Select(message);
    Sending_->Show(message);
    same->Show(message);
    resize(760, 600);
}

void MessageWindow::SetShowsSentDate(bool shows)
{
    View_->SetShowsSentDate(shows);
}

void MessageWindow::MakeActions()
{
    auto* bar = addToolBar(tr("Message"));
    bar->setMovable(false);
    bar->setIconSize(QSize(16, 16));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](const char* name, const QString& icon, const QString& text, const QKeySequence& key) {
        auto* action = new QAction(Icons::Get(icon), text, this);
        action->setObjectName(QString::fromLatin1(name));
        action->setShortcut(key);
        Menu_->addAction(action);
        return action;
    };
    QAction* reply = add("reply", QStringLiteral("reply"), tr("&Reply"), QKeySequence(Qt::CTRL | Qt::Key_R));
    QAction* all = add("replyAll", QStringLiteral("replyall"), tr("Reply to &all"),
                       QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
    QAction* forward = add("forward", QStringLiteral("forward"), tr("&Forward"), QKeySequence(Qt::CTRL | Qt::Key_L));
    Menu_->addSeparator();
    QAction* award = add("awardToSender", QString(), tr("A&ward a prize to the sender..."),
                         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    QAction* print = add("printMessage", QStringLiteral("print"), tr("&Print..."), QKeySequence(Qt::CTRL | Qt::Key_P));
    QAction* contact =
        add("senderContact", QString(), tr("Sender's c&ontact..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K));
    Menu_->addAction(Sending_->Action());
    Menu_->addSeparator();
    QAction* close = add("closeMessage", QString(), tr("&Close"), QKeySequence(Qt::CTRL | Qt::Key_W));
    close->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::Key_Escape)});
    bar->addActions({reply, all, forward});
    connect(reply, &QAction::triggered, this, [this] { Q_EMIT ReplyWanted(Message_); });
    connect(all, &QAction::triggered, this, [this] { Q_EMIT ReplyToAllWanted(Message_); });
    connect(forward, &QAction::triggered, this, [this] { Q_EMIT ForwardWanted(Message_); });
    connect(award, &QAction::triggered, this, [this] { Q_EMIT AwardToSenderWanted(Message_); });
    connect(print, &QAction::triggered, this, [this] { Q_EMIT PrintWanted(Message_); });
    connect(contact, &QAction::triggered, this, [this] { Q_EMIT SenderContactWanted(Message_); });
    connect(close, &QAction::triggered, this, &QWidget::close);
}

void MessageWindow::CheckStored()
{
    if (!Station_.Database().IsOpen() || Message_->Reference() == 0)
        return;
    try {
        Notice_->Show(WhatBecameOf(*Message_, Station_));
    } catch (const dao::Error&) {
        // The desk's own window says that the station cannot be reached.
    }
}
