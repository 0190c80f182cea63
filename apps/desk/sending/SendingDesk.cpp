// SPDX-License-Identifier: Apache-2.0
#include "SendingDesk.h"

#include "Words.h"
#include "common/ClockHelper.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/Recordset.h"
#include "sending/OutboxCount.h"
#include "sending/OutgoingIdentity.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>

SendingDesk::SendingDesk(DeskStation& station, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      Window_(window),
      Notice_(new NoticeBar(QStringLiteral("foldersending"), tr("Send a&gain..."), &window)),
      Unsent_(new QLabel(&window)),
      Again_(new QAction(tr("Send a&gain..."), &window))
{
    Notice_->setObjectName(QStringLiteral("sendingNotice"));
    Unsent_->setObjectName(QStringLiteral("unsent"));
    Unsent_->setTextFormat(Qt::PlainText);
    Unsent_->setContentsMargins(6, 0, 6, 0);
    Unsent_->hide();
    Again_->setObjectName(QStringLiteral("sendAgain"));
    Again_->setEnabled(false);
    connect(Again_, &QAction::triggered, this, &SendingDesk::SendAgain);
    connect(Notice_, &NoticeBar::ButtonClicked, this, &SendingDesk::SendAgain);
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &SendingDesk::Look);
    UnsentTimer_.setInterval(UnsentMilliseconds);
    connect(&UnsentTimer_, &QTimer::timeout, this, &SendingDesk::CountUnsent);
    UnsentTimer_.start();
    CountUnsent();
}

void SendingDesk::Show(const cMessagePtr& message)
{
    Message_ = message;
    // Of all others nothing becomes any more.
    if (message && message->Category() == tmcOutbox)
        LookTimer_.start();
    else
        LookTimer_.stop();
    Look();
}

/// None where it cannot be read; the window says that the station cannot be reached.
OutgoingState SendingDesk::StateNow() const
{
    const bool mayGoOut = Message_ && (Message_->Category() == tmcOutbox || Message_->Category() == tmcSent);
    if (!mayGoOut || !Station_.Directory().IsOpen())
        return {};
    try {
        return StateOf(*Message_, SendingLedger(Station_.Directory().File()));
    } catch (const dao::Error&) {
        return {};
    }
}

void SendingDesk::Look()
{
    const OutgoingState state = StateNow();
    const bool isOut = Message_ && Message_->Category() == tmcOutbox;
    const bool mayDecide =
        state.NeedsDecision() || (state.What == OutgoingState::Kind::NotYet && !state.Words.isEmpty());
    Again_->setEnabled(isOut && mayDecide);
    const QString words = InWords(state);
    Notice_->Show(words.isEmpty() ? QString() : words + u'.');
    Notice_->ShowButton(isOut && mayDecide);
}

SendingDesk::Decision SendingDesk::Ask(const OutgoingState& state) const
{
    if (state.What != OutgoingState::Kind::Unclear)
        return Decision::SendAgain;
    QMessageBox box(&Window_);
    box.setObjectName(QStringLiteral("sendAgainBox"));
    box.setIcon(QMessageBox::Question);
    // It quotes what a server said.
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(tr("Send again"));
    box.setText(tr("%1.\n\nWhoever has it already gets it twice when it is sent again. The log of the mail server "
                   "says whether it went.")
                    .arg(InWords(state)));
    const QPushButton* again = box.addButton(tr("&Send again"), QMessageBox::AcceptRole);
    const QPushButton* went = box.addButton(tr("&It went out"), QMessageBox::ActionRole);
    QPushButton* cancel = box.addButton(tr("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == again)
        return Decision::SendAgain;
    return box.clickedButton() == went ? Decision::ItWent : Decision::Nothing;
}

void SendingDesk::SendAgain()
{
    const clsKVUser* user = Station_.Directory().CurrentUser();
    if (!user || !user->CanEditMessages()) {
        Words::Warn(tr("You have no right to send messages here."));
        return;
    }
    const OutgoingState state = StateNow();
    if (state.NeedsDecision() || state.What == OutgoingState::Kind::NotYet)
        Decide(Ask(state));
    Look();
    CountUnsent();
}

void SendingDesk::Decide(Decision decision)
{
    // The message of the time of the question: while it stood open another one may have been selected.
    const cMessagePtr message = Message_;
    if (decision == Decision::Nothing || !message)
        return;
    try {
        SendingLedger ledger(Station_.Directory().File());
        if (decision == Decision::SendAgain) {
            if (!ledger.SendAgain(message->Reference()))
                Words::Warn(tr("The message is being sent at this moment."));
            return;
        }
        ledger.NoteWent(message->Reference(), OutgoingIdentity(*message));
        cTolvaDatabase& database = Station_.Database();
        if (!database.MarkMessageSent(message->Reference(), ClockHelper::CurrentTime())) {
            Words::Warn(database.LastErrorNumber() == 0
                            ? tr("The message does not wait to be sent any more.")
                            : Station_.Words(database.LastErrorNumber(), database.LastErrorDescription()));
        }
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}

/// Of the columns alone: no mail is read.
QString SendingDesk::UnsentWords() const
{
    const auto rows = Station_.Database().OpenMessageRows(OutboxCount::Columns(), OutboxCount::Condition(), QString());
    const OutboxCount count = CountOutbox(*rows, SendingLedger(Station_.Directory().File()).Open());
    const int decisions = count.Decisions;
    const int late = count.Late;
    QStringList words;
    if (decisions > 0)
        words.append(decisions == 1 ? tr("1 message was not sent: see the Outbox")
                                    : tr("%1 messages were not sent: see the Outbox").arg(decisions));
    if (late > 0)
        words.append(late == 1 ? tr("1 message unsent for an hour") : tr("%1 messages unsent for an hour").arg(late));
    return words.join(QStringLiteral("; "));
}

void SendingDesk::CountUnsent()
{
    QString words;
    if (Station_.Database().IsOpen() && Station_.Directory().IsOpen()) {
        try {
            words = UnsentWords();
        } catch (const dao::Error&) {
            // The window says that the station cannot be reached.
        }
    }
    Unsent_->setText(words);
    Unsent_->setVisible(!words.isEmpty());
}
