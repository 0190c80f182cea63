// SPDX-License-Identifier: Apache-2.0
#include "MessageUndo.h"

#include "Words.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QLocale>
#include <QScopeGuard>

namespace
{
constexpr qsizetype MostSteps = 100;
constexpr qsizetype LongestSubjectInNotice = 60;

QString Shortened(const QString& subject)
{
    const QString line = subject.simplified();
    if (line.isEmpty())
        return MessageUndo::tr("The message");
    return u'“' + (line.size() > LongestSubjectInNotice ? line.left(LongestSubjectInNotice).trimmed() + u'…' : line) +
           u'”';
}

} // namespace

MessageUndo::MessageUndo(DeskStation& station, QWidget& window)
    : QObject(&window),
      Station_(station),
      Notice_(new NoticeBar(QStringLiteral("smallopenfolder"), tr("&Undo"), &window)),
      Action_(new QAction(tr("Undo the la&st change"), &window))
{
    Notice_->setObjectName(QStringLiteral("moveNotice"));
    Action_->setObjectName(QStringLiteral("undoMove"));
    Action_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    NoticeTimer_.setSingleShot(true);
    NoticeTimer_.setInterval(NoticeMilliseconds);
    connect(&NoticeTimer_, &QTimer::timeout, Notice_, [this] { Notice_->Show(QString()); });
    connect(Notice_, &NoticeBar::ButtonClicked, this, &MessageUndo::Undo);
    connect(Action_, &QAction::triggered, this, &MessageUndo::Undo);
    ShowState();
}

void MessageUndo::Take(Kind kind, const QList<Change>& changes, const QString& subject)
{
    Step step{kind, {}, QString()};
    for (const Change& change : changes) {
        if (change.Before != change.After)
            step.Changes.append(change);
    }
    if (step.Changes.isEmpty())
        return;
    step.Subject = step.Changes.size() == 1 ? Shortened(subject) : Words::CountMessages(step.Changes.size());
    if (Steps_.size() == MostSteps)
        Steps_.removeFirst();
    Steps_.append(step);
    // One that is only marked, or has another priority, shows that in its row.
    if (kind == Kind::Move || step.Changes.size() > 1) {
        Notice_->Show(NoticeOf(step));
        NoticeTimer_.start();
    }
    ShowState();
}

QString MessageUndo::NoticeOf(const Step& step) const
{
    const bool isOne = step.Changes.size() == 1;
    switch (step.What) {
    case Kind::Move:
        return (isOne ? tr("%1 was moved to %2.") : tr("%1 were moved to %2."))
            .arg(step.Subject, FolderName(step.Changes.first().After));
    case Kind::Mark:
        return step.Changes.first().After != 0 ? tr("%1 were marked as read.").arg(step.Subject)
                                               : tr("%1 were marked as unread.").arg(step.Subject);
    case Kind::Priority:
        break;
    }
    return tr("%1 have another priority.").arg(step.Subject);
}

void MessageUndo::Undo()
{
    if (Steps_.isEmpty())
        return;
    NoticeTimer_.stop();
    Notice_->Show(QString());
    Step& step = Steps_.last();
    // Lists hear of all of them together.
    cTolvaDatabase& database = Station_.Database();
    const bool raises = database.RaiseEvents();
    QList<qint32> references;
    Outcome last = Outcome::Back;
    qsizetype others = 0;
    {
        database.SetRaiseEvents(false);
        const auto restore = qScopeGuard([&] { database.SetRaiseEvents(raises); });
        while (!step.Changes.isEmpty()) {
            last = TakeBack(step.What, step.Changes.first());
            if (last == Outcome::Refused)
                break;
            references.append(step.Changes.first().Reference);
            others += last == Outcome::Back ? 0 : 1;
            if (step.Changes.size() == 1 && references.size() == 1)
                break; // its words need it
            step.Changes.removeFirst();
        }
    }
    const Step done = step;
    if (last != Outcome::Refused)
        Steps_.removeLast();
    ShowState();
    if (!references.isEmpty())
        Q_EMIT TakenBack(references);
    if (last == Outcome::Refused)
        Words::Warn(RefusedWords(done));
    else if (references.size() == 1)
        TellOne(done, last);
    else
        TellSeveral(done, references.size() - others, others);
}

void MessageUndo::Forget()
{
    Steps_.clear();
    NoticeTimer_.stop();
    Notice_->Show(QString());
    ShowState();
}

MessageUndo::Outcome MessageUndo::TakeBack(Kind kind, const Change& change)
{
    cTolvaDatabase& database = Station_.Database();
    const cMessagePtr message = database.GetMessage(change.Reference);
    if (!message)
        return database.LastErrorNumber() == 0 ? Outcome::Gone : Outcome::Refused;
    switch (kind) {
    case Kind::Move:
        if (message->Category() != change.After) {
            FolderNow_ = message->Category();
            return Outcome::MovedOn;
        }
        if (!database.MessageCategories().FindCategory(change.Before))
            return Outcome::NoFolder;
        return database.MoveMessage(change.Reference, static_cast<enTolvaMessageCategories>(change.Before))
                   ? Outcome::Back
                   : Outcome::Refused;
    case Kind::Mark:
        if ((message->Flags() & mfRead) != change.After)
            return Outcome::MovedOn;
        return database.ChangeMessageFlags(change.Reference, change.Before, change.After) ? Outcome::Back
                                                                                          : Outcome::Refused;
    case Kind::Priority:
        if (message->Priority() != change.After)
            return Outcome::MovedOn;
        return Station_.ChangePriority(change.Reference, change.Before) ? Outcome::Back : Outcome::Refused;
    }
    return Outcome::Refused;
}

void MessageUndo::TellOne(const Step& step, Outcome outcome)
{
    const Change& change = step.Changes.first();
    switch (outcome) {
    case Outcome::Gone:
        Q_EMIT Told(tr("%1 cannot be taken back: it was deleted for ever meanwhile.").arg(step.Subject));
        break;
    case Outcome::MovedOn:
        Q_EMIT Told(step.What == Kind::Move
                        ? tr("%1 stays where it is: somebody moved it to %2 meanwhile.")
                              .arg(step.Subject, FolderName(FolderNow_))
                        : tr("%1 stays as it is: somebody has changed it meanwhile.").arg(step.Subject));
        break;
    case Outcome::NoFolder:
        Words::Warn(tr("%1 stays in %2: the folder that it came from was deleted meanwhile.")
                        .arg(step.Subject, FolderName(change.After)));
        break;
    default:
        Q_EMIT Told(step.What == Kind::Move ? tr("%1 is in %2 again.").arg(step.Subject, FolderName(change.Before))
                                            : tr("%1 is as it was before.").arg(step.Subject));
    }
}

void MessageUndo::TellSeveral(const Step& step, qsizetype back, qsizetype others)
{
    QString words = step.What == Kind::Move ? tr("Back where they were: %1.").arg(Words::CountMessages(back))
                                            : tr("As they were before: %1.").arg(Words::CountMessages(back));
    if (others > 0)
        words += u' ' + tr("Somebody has moved, changed or deleted %1 meanwhile.").arg(Words::CountMessages(others));
    Q_EMIT Told(words);
}

QString MessageUndo::RefusedWords(const Step& step) const
{
    cTolvaDatabase& database = Station_.Database();
    if (database.LastErrorNumber() != 0)
        return Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
    return step.What == Kind::Move ? tr("You have no right to move %1 back. A technician can.").arg(step.Subject)
                                   : tr("You have no right to change %1 back. A technician can.").arg(step.Subject);
}

QString MessageUndo::FolderName(qint32 reference) const
{
    const clsCategory* folder = Station_.Database().MessageCategories().FindCategory(reference);
    return folder ? folder->Description() : tr("another folder");
}

void MessageUndo::ShowState()
{
    Action_->setEnabled(!Steps_.isEmpty());
}
