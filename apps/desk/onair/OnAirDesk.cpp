// SPDX-License-Identifier: Apache-2.0
#include "OnAirDesk.h"

#include "OnAirEntries.h"
#include "Words.h"
#include "database/LastError.h"
#include "messages/onair/RunningOrder.h"
#include "platform/widgets/Icons.h"
#include "printing/PrintDialog.h"
#include "station/DeskStation.h"

#include <QAction>
#include <QMainWindow>

OnAirDesk::OnAirDesk(DeskStation& station, DeskSettings& settings, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      Settings_(settings),
      Put_(new QAction(tr("Put on the running order"), &window)),
      Show_(new QAction(tr("&On air..."), &window))
{
    Put_->setObjectName(QStringLiteral("putOnAir"));
    Put_->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_O);
    // Its menu is that of messages; the key works on the page of prizes too.
    window.addAction(Put_);
    Show_->setObjectName(QStringLiteral("showOnAir"));
    Show_->setShortcut(Qt::Key_F8);
    connect(Put_, &QAction::triggered, this, &OnAirDesk::Wanted);
    connect(Show_, &QAction::triggered, this, &OnAirDesk::ShowWindow);
}

template <typename Work>
void OnAirDesk::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
    if (Window_)
        Window_->Look();
    Look();
}

void OnAirDesk::Tell(qsizetype put, qsizetype present, const QString& what)
{
    if (put == 0 && present == 0)
        Q_EMIT Told(tr("There is nothing selected for the running order."));
    else if (put == 0)
        Q_EMIT Told(tr("On the running order already: %1").arg(what));
    else
        Q_EMIT Told(present == 0 ? tr("Put on the running order: %1").arg(what)
                                 : tr("Put on the running order: %1; %2 stood there already").arg(what).arg(present));
}

void OnAirDesk::PutMessages(const QList<qint32>& messages)
{
    Run([&] {
        RunningOrder order(Station_.Database().File());
        qsizetype put = 0;
        qsizetype present = 0;
        for (const qint32 reference : messages) {
            const cMessagePtr message = Station_.Database().ReadMessage(reference);
            if (!message)
                continue; // deleted meanwhile
            const bool wasThere = order.Add(OnAirEntries::OfMessage(*message, Station_)).WasThere;
            (wasThere ? present : put)++;
        }
        Tell(put, present, Words::CountMessages(put == 0 ? present : put));
    });
}

void OnAirDesk::PutPrize(qint32 reference)
{
    Run([&] {
        const cPrizePtr prize = reference > 0 ? Station_.Database().GetPrize(reference, false) : nullptr;
        if (!prize)
            return Tell(0, 0, QString());
        const bool wasThere =
            RunningOrder(Station_.Database().File()).Add(OnAirEntries::OfPrize(*prize, Station_)).WasThere;
        Tell(wasThere ? 0 : 1, wasThere ? 1 : 0, prize->Title().simplified());
    });
}

void OnAirDesk::ShowWindow()
{
    if (!Window_) {
        Window_ = new OnAirWindow(Station_, Settings_);
        connect(Window_, &OnAirWindow::Changed, this, &OnAirDesk::Look);
        connect(Window_, &OnAirWindow::PrintWanted, this,
                [this](const PrintJob& job) { Q_EMIT PrintWanted(job, Window_); });
        Q_EMIT WindowOpened(Window_);
    }
    Window_->show();
    Window_->raise();
    Window_->activateWindow();
}

void OnAirDesk::Look()
{
    QSet<qint32> messages;
    try {
        if (!Station_.Database().IsOpen())
            return;
        messages = RunningOrder(Station_.Database().File()).WaitingMessages();
    } catch (const dao::Error&) {
        return; // The window says when the station cannot be reached.
    }
    if (messages == Messages_)
        return;
    Messages_ = messages;
    Q_EMIT Changed();
}

QString OnAirDesk::NoteOf(qint32 message) const
{
    return Messages_.contains(message) ? tr("On the running order") : QString();
}
