// SPDX-License-Identifier: Apache-2.0
#include "SendingDesk.h"

#include "SendingNotice.h"
#include "SendingWatch.h"
#include "messageslist/uMessagesList.h"

#include <QLabel>
#include <QMainWindow>

SendingDesk::SendingDesk(DeskStation& station, uMessagesList& list, QMainWindow& window)
    : QObject(&window),
      List_(list),
      Notice_(new SendingNotice(station, window)),
      Watch_(new SendingWatch(station)),
      Unsent_(new QLabel(&window))
{
    Watch_->setParent(this);
    Unsent_->setObjectName(QStringLiteral("unsent"));
    Unsent_->setTextFormat(Qt::PlainText);
    Unsent_->setContentsMargins(6, 0, 6, 0);
    Unsent_->hide();
    connect(Notice_, &SendingNotice::Decided, this, &SendingDesk::CountUnsent);
    const QPointer<SendingDesk> self(this);
    List_.SetDateNotes([self](qint32 message) { return self ? self->NoteOf(message) : QString(); });
    connect(Watch_, &SendingWatch::OutboxChanged, &List_, &uMessagesList::RedrawDateNotes);
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &SendingDesk::LookAtOutbox);
    LookTimer_.start();
    UnsentTimer_.setInterval(UnsentMilliseconds);
    connect(&UnsentTimer_, &QTimer::timeout, this, &SendingDesk::CountUnsent);
    UnsentTimer_.start();
    CountUnsent();
}

QString SendingDesk::NoteOf(qint32 message)
{
    if (List_.Category() == tmcOutbox)
        return Watch_->OutboxNote(message);
    return List_.Category() == tmcSent ? Watch_->SentNote(message) : QString();
}

void SendingDesk::LookAtOutbox()
{
    if (List_.Category() != tmcOutbox || !List_.isVisible())
        return;
    Watch_->RefreshIfChanged();
    ShowUnsent();
}

void SendingDesk::TakeUpdate()
{
    Watch_->ForgetSent();
    CountUnsent();
}

QString SendingDesk::UnsentWords() const
{
    const OutboxCount count = Watch_->Count();
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
    Watch_->Refresh();
    ShowUnsent();
}

void SendingDesk::ShowUnsent()
{
    const QString words = UnsentWords();
    Unsent_->setText(words);
    Unsent_->setVisible(!words.isEmpty());
}
