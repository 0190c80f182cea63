// SPDX-License-Identifier: Apache-2.0
#include "SendingNotice.h"

#include "Words.h"
#include "common/ClockHelper.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/Recordset.h"
#include "sending/OutgoingIdentity.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>

SendingNotice::SendingNotice(DeskStation& station, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      Window_(window),
      Bar_(new NoticeBar(QStringLiteral("foldersending"), tr("Send a&gain..."), &window)),
      Again_(new QAction(tr("Send a&gain..."), &window))
{
    Bar_->setObjectName(QStringLiteral("sendingNotice"));
    Again_->setObjectName(QStringLiteral("sendAgain"));
    Again_->setEnabled(false);
    connect(Again_, &QAction::triggered, this, &SendingNotice::SendAgain);
    connect(Bar_, &NoticeBar::ButtonClicked, this, &SendingNotice::SendAgain);
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &SendingNotice::Look);
}

void SendingNotice::Show(const cMessagePtr& message)
{
    Message_ = message;
    Look();
}

/// By its row as it is at this moment: a window keeps showing the message that was opened. None where that cannot be
/// read; the window says that the station cannot be reached.
OutgoingState SendingNotice::StateNow()
{
    IsInOutbox_ = false;
    const bool mayGoOut = Message_ && (Message_->Category() == tmcOutbox || Message_->Category() == tmcSent);
    if (!mayGoOut || !Station_.Database().IsOpen() || !Station_.Directory().IsOpen())
        return {};
    IsInOutbox_ = Message_->Category() == tmcOutbox;
    try {
        const auto row = Station_.Database().OpenMessageRows(
            {QStringLiteral("Category"), QStringLiteral("Flags"), QStringLiteral("Sent"), QStringLiteral("SendAfter")},
            QStringLiteral("[Reference]=%1").arg(Message_->Reference()));
        if (row->AtEOF())
            return {};
        const auto date = [&](const QString& column) {
            return ClockHelper::UTCToLocal(Date(row->Collect(column).toDouble()));
        };
        const OutgoingRow stored{row->Collect(QStringLiteral("Category")).toInt(),
                                 row->Collect(QStringLiteral("Flags")).toInt(), date(QStringLiteral("Sent")),
                                 date(QStringLiteral("SendAfter")), OutgoingIdentity(*Message_)};
        IsInOutbox_ = stored.Category == tmcOutbox;
        return StateOf(stored, SendingLedger(Station_.Directory().File()).Find(Message_->Reference()));
    } catch (const dao::Error&) {
        return {};
    }
}

void SendingNotice::Look()
{
    const OutgoingState state = StateNow();
    // Of all others nothing becomes any more.
    if (IsInOutbox_ != LookTimer_.isActive())
        IsInOutbox_ ? LookTimer_.start() : LookTimer_.stop();
    const bool mayDecide =
        state.NeedsDecision() || (state.What == OutgoingState::Kind::NotYet && !state.Words.isEmpty());
    Again_->setEnabled(IsInOutbox_ && mayDecide);
    QStringList sentences;
    if (Message_ && (Message_->Flags() & mfAutomatic) != 0)
        sentences.append(tr("Written automatically."));
    if (const QString words = InWords(state); !words.isEmpty())
        sentences.append(words + u'.');
    Bar_->Show(sentences.join(u' '));
    Bar_->ShowButton(IsInOutbox_ && mayDecide);
}

SendingNotice::Decision SendingNotice::Ask(const OutgoingState& state) const
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

void SendingNotice::SendAgain()
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
    Q_EMIT Decided();
}

void SendingNotice::Decide(Decision decision)
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
