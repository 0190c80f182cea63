// SPDX-License-Identifier: Apache-2.0
#include "MoveUndo.h"

#include "Words.h"
#include "platform/mail/MessageReader.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>

namespace
{
constexpr qsizetype MostMoves = 100;
constexpr qsizetype LongestSubject = 60;

QString Shortened(const QString& subject)
{
    const QString line = subject.simplified();
    if (line.isEmpty())
        return MoveUndo::tr("The message");
    return u'“' + (line.size() > LongestSubject ? line.left(LongestSubject).trimmed() + u'…' : line) + u'”';
}
} // namespace

MoveUndo::MoveUndo(DeskStation& station, QWidget& window)
    : QObject(&window),
      Station_(station),
      Notice_(new NoticeBar(QStringLiteral("smallopenfolder"), tr("&Undo"), &window)),
      Action_(new QAction(tr("&Undo delete or move"), &window))
{
    Notice_->setObjectName(QStringLiteral("moveNotice"));
    Action_->setObjectName(QStringLiteral("undoMove"));
    Action_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    NoticeTimer_.setSingleShot(true);
    NoticeTimer_.setInterval(NoticeMilliseconds);
    connect(&NoticeTimer_, &QTimer::timeout, Notice_, [this] { Notice_->Show(QString()); });
    connect(Notice_, &NoticeBar::ButtonClicked, this, &MoveUndo::Undo);
    connect(Action_, &QAction::triggered, this, &MoveUndo::Undo);
    ShowState();
}

void MoveUndo::Take(const cMessagePtr& message, enTolvaMessageCategories from)
{
    if (message->Category() == from)
        return;
    if (Moves_.size() == MostMoves)
        Moves_.removeFirst();
    Moves_.append({message->Reference(), from, message->Category(),
                   Shortened(cdo::HeaderBeginning(*message->CDOMessage(), "Subject"))});
    Notice_->Show(tr("%1 was moved to %2.").arg(Moves_.last().Subject, FolderName(message->Category())));
    NoticeTimer_.start();
    ShowState();
}

void MoveUndo::Undo()
{
    if (Moves_.isEmpty())
        return;
    NoticeTimer_.stop();
    Notice_->Show(QString());
    const Move move = Moves_.last();
    if (!TakeBack(move))
        return;
    Moves_.removeLast();
    ShowState();
    Q_EMIT MovedBack(move.Reference);
}

void MoveUndo::Forget()
{
    Moves_.clear();
    NoticeTimer_.stop();
    Notice_->Show(QString());
    ShowState();
}

bool MoveUndo::TakeBack(const Move& move)
{
    cTolvaDatabase& database = Station_.Database();
    const cMessagePtr message = database.GetMessage(move.Reference);
    if (!message && database.LastErrorNumber() == 0) {
        Q_EMIT Told(tr("%1 cannot be taken back: it was deleted for ever meanwhile.").arg(move.Subject));
        return true;
    }
    if (message && message->Category() != move.To) {
        Q_EMIT Told(tr("%1 stays where it is: somebody moved it to %2 meanwhile.")
                        .arg(move.Subject, FolderName(message->Category())));
        return true;
    }
    if (message && !database.MessageCategories().FindCategory(move.From)) {
        Words::Warn(tr("%1 stays in %2: the folder that it came from was deleted meanwhile.")
                        .arg(move.Subject, FolderName(move.To)));
        return true;
    }
    if (!message || !database.MoveMessage(move.Reference, move.From)) {
        Words::Warn(database.LastErrorNumber() != 0
                        ? Station_.Words(database.LastErrorNumber(), database.LastErrorDescription())
                        : tr("You have no right to move %1 back. A technician can.").arg(move.Subject));
        return false;
    }
    Q_EMIT Told(tr("%1 is in %2 again.").arg(move.Subject, FolderName(move.From)));
    return true;
}

QString MoveUndo::FolderName(qint32 reference) const
{
    const clsCategory* folder = Station_.Database().MessageCategories().FindCategory(reference);
    return folder ? folder->Description() : tr("another folder");
}

void MoveUndo::ShowState()
{
    Action_->setEnabled(!Moves_.isEmpty());
}
