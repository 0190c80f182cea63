// SPDX-License-Identifier: Apache-2.0
#include "MessageCommands.h"

#include "Words.h"
#include "common/UserInterface.h"
#include "database/RowCondition.h"
#include "platform/mail/MessageReader.h"
#include "station/DeskStation.h"

#include <QLocale>
#include <QScopeGuard>

#include <algorithm>

namespace
{
/// Messages whose columns are read by one statement.
constexpr qsizetype MessagesOfARead = 200;
/// Changes that are stored together: each store waits for the disk.
constexpr qsizetype ChangesTogether = 50;
constexpr qsizetype LongestSubjectOfReply = 1000;

} // namespace

MessageCommands::MessageCommands(DeskStation& station, DeskSettings& settings, uMessagesList& list, MessageUndo& undo,
                                 QWidget& window)
    : QObject(&window), Station_(station), Settings_(settings), List_(list), Undo_(undo), Window_(window)
{
}

bool MessageCommands::Do(MessagesListCommand command, const QList<qint32>& references)
{
    switch (command) {
    case MessagesListCommand::Delete:
        Delete(references);
        return true;
    case MessagesListCommand::MarkRead:
    case MessagesListCommand::MarkUnread:
        Mark(references, command == MessagesListCommand::MarkRead);
        return true;
    case MessagesListCommand::MarkAllRead:
    case MessagesListCommand::MarkAllUnread:
        MarkAll(references, command == MessagesListCommand::MarkAllRead);
        return true;
    case MessagesListCommand::LowPriority:
        SetPriority(references, -1);
        return true;
    case MessagesListCommand::NormalPriority:
        SetPriority(references, 0);
        return true;
    case MessagesListCommand::HighPriority:
        SetPriority(references, 1);
        return true;
    case MessagesListCommand::Export:
        if (references.size() > 1)
            Export(references);
        return references.size() > 1;
    case MessagesListCommand::Print:
        break;
    }
    return false;
}

QList<MessageCommands::Row> MessageCommands::RowsOf(const QList<qint32>& references) const
{
    static const QStringList columns = {QStringLiteral("Reference"), QStringLiteral("Category"),
                                        QStringLiteral("Flags"), QStringLiteral("Priority"),
                                        QStringLiteral("PersonalToContact")};
    QHash<qint32, Row> found;
    for (qsizetype first = 0; first < references.size(); first += MessagesOfARead) {
        const auto rows = Station_.Database().OpenMessageRows(
            columns, RowCondition::HasOneOf(references.mid(first, MessagesOfARead)));
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const auto number = [&](qsizetype column) { return rows->Collect(columns.at(column)).toInt(); };
            found.insert(number(0), {number(0), number(1), number(2), number(3), number(4)});
        }
    }
    QList<Row> result;
    for (const qint32 reference : references) {
        if (found.contains(reference))
            result.append(found.value(reference));
    }
    return result;
}

QString MessageCommands::SubjectOf(qint32 reference) const
{
    const cMessagePtr message = Station_.Database().ReadMessage(reference);
    return message ? cdo::HeaderBeginning(*message->CDOMessage(), "Subject", LongestSubjectOfReply) : QString();
}

MessageCommands::Result MessageCommands::ForEach(const QString& caption, const QList<Row>& rows,
                                                 const std::function<bool(const Row&)>& change)
{
    cTolvaDatabase& database = Station_.Database();
    const bool raises = database.RaiseEvents();
    database.SetRaiseEvents(false); // the list hears of all of them together
    const auto restore = qScopeGuard([&] { database.SetRaiseEvents(raises); });
    const BusyPointer busy;
    const auto progress = rows.size() > 1 ? UserInterface::Current().Progress(caption) : nullptr;
    Result result;
    for (qsizetype first = 0; first < rows.size(); first += ChangesTogether) {
        if (progress && !progress->Advance(first, rows.size())) {
            result.IsCancelled = true;
            return result;
        }
        QList<Row> done;
        try {
            dao::Transaction transaction = database.BeginChange();
            for (const Row& row : rows.mid(first, ChangesTogether)) {
                if (!Station_.MayEditMessage(row.PersonalToContact)) {
                    ++result.Refused;
                    continue;
                }
                if (change(row))
                    done.append(row);
                else if (database.LastErrorNumber() != 0)
                    throw dao::Error(database.LastErrorNumber(), database.LastErrorDescription());
            }
            transaction.Commit();
        } catch (const dao::Error& error) {
            // Of these none is done: they are stored together or not at all.
            result.ErrorNumber = error.Number();
            result.Error = error.Description();
            return result;
        }
        result.Done.append(done);
    }
    return result;
}

/// wanted: how many there were to do. rightWords: what is said of those that the user may not change.
void MessageCommands::TellProblems(const Result& result, qsizetype wanted, const QString& rightWords)
{
    if (result.ErrorNumber != 0) {
        const QString words = Station_.Words(result.ErrorNumber, result.Error);
        Words::Warn(wanted == 1
                        ? words
                        : tr("%1\n\nDone before that: %2 of %3.")
                              .arg(words, QLocale().toString(result.Done.size()), Words::CountMessages(wanted)));
    } else if (result.Refused > 0) {
        Words::Warn(wanted == 1
                        ? rightWords
                        : tr("%1\n\nThat is so for %2 of %3.")
                              .arg(rightWords, QLocale().toString(result.Refused), Words::CountMessages(wanted)));
    } else if (result.IsCancelled) {
        Q_EMIT Told(
            tr("Ended early: %1 of %2.").arg(QLocale().toString(result.Done.size()), Words::CountMessages(wanted)));
    } else if (result.Done.size() < wanted) {
        Q_EMIT Told(wanted == 1 ? tr("That message is not there any more: it was deleted on another computer.")
                                : tr("%1 were not there any more: they were deleted on another computer.")
                                      .arg(Words::CountMessages(wanted - result.Done.size())));
    }
}

void MessageCommands::Delete(const QList<qint32>& references)
{
    const QList<Row> rows = RowsOf(references);
    const bool isForEver =
        std::any_of(rows.begin(), rows.end(), [](const Row& row) { return row.Category == tmcDeleted; });
    const QString subject = rows.size() == 1 ? SubjectOf(rows.first().Reference) : QString();
    if (isForEver &&
        !UserInterface::Confirm(
            rows.size() == 1
                ? tr("Are you sure you want to permanently delete '%1'?").arg(subject)
                : tr("Are you sure you want to permanently delete %1?").arg(Words::CountMessages(rows.size()))))
        return;
    const Result result = ForEach(tr("Deleting messages"), rows, [this](const Row& row) {
        return Station_.Database().DeleteMessage(row.Reference, row.Category == tmcDeleted);
    });
    List_.ShowChanges(StationList::WhenGone::SelectNext);
    QList<MessageUndo::Change> changes;
    for (const Row& row : result.Done) {
        if (row.Category != tmcDeleted)
            changes.append({row.Reference, row.Category, tmcDeleted});
    }
    Undo_.Take(MessageUndo::Kind::Move, changes, subject);
    TellProblems(result, references.size(),
                 tr("You have no right to delete this message. A technician can give it to you."));
}

void MessageCommands::MoveTo(const QList<qint32>& references, enTolvaMessageCategories folder)
{
    const QList<Row> rows = RowsOf(references);
    const QString subject = rows.size() == 1 ? SubjectOf(rows.first().Reference) : QString();
    const Result result = ForEach(tr("Moving messages"), rows, [&](const Row& row) {
        return row.Category == folder || Station_.Database().MoveMessage(row.Reference, folder);
    });
    List_.ShowChanges(StationList::WhenGone::SelectNext);
    QList<MessageUndo::Change> changes;
    for (const Row& row : result.Done)
        changes.append({row.Reference, row.Category, folder});
    Undo_.Take(MessageUndo::Kind::Move, changes, subject);
    if (result.Done.isEmpty() && result.ErrorNumber == 0 && result.Refused == 0 && !rows.isEmpty() &&
        !result.IsCancelled)
        Words::Warn(tr("%1 is not there any more: another computer deleted it.").arg(FolderName(folder)));
    else
        TellProblems(result, references.size(),
                     tr("You have no right to move this message. A technician can give it to you."));
}

void MessageCommands::Mark(const QList<qint32>& references, bool isRead)
{
    const qint32 after = isRead ? mfRead : 0;
    const Result result = ForEach(tr("Marking messages"), RowsOf(references), [&](const Row& row) {
        return (row.Flags & mfRead) == after ||
               Station_.Database().ChangeMessageFlags(row.Reference, after, mfRead & ~after);
    });
    List_.ShowChanges();
    QList<MessageUndo::Change> changes;
    for (const Row& row : result.Done)
        changes.append({row.Reference, row.Flags & mfRead, after});
    const QString subject = references.size() == 1 ? SubjectOf(references.first()) : QString();
    Undo_.Take(MessageUndo::Kind::Mark, changes, subject);
    TellProblems(result, references.size(),
                 tr("You have no right to change this message. A technician can give it to you."));
}

/// All rows on show. Asked with the number, since one wrong entry of the menu would take away what nobody has read.
void MessageCommands::MarkAll(const QList<qint32>& references, bool isRead)
{
    const qint32 after = isRead ? mfRead : 0;
    QList<qint32> others;
    for (const Row& row : RowsOf(references)) {
        if ((row.Flags & mfRead) != after)
            others.append(row.Reference);
    }
    if (others.isEmpty()) {
        Q_EMIT Told(isRead ? tr("There is no unread message here.") : tr("There is no read message here."));
        return;
    }
    if (UserInterface::Confirm(isRead
                                   ? tr("Do you want to mark %1 as read?").arg(Words::CountMessages(others.size()))
                                   : tr("Do you want to mark %1 as unread?").arg(Words::CountMessages(others.size()))))
        Mark(others, isRead);
}

void MessageCommands::SetPriority(const QList<qint32>& references, qint32 priority)
{
    const Result result = ForEach(tr("Changing priorities"), RowsOf(references), [&](const Row& row) {
        return row.Priority == priority || Station_.ChangePriority(row.Reference, priority);
    });
    List_.ShowChanges();
    QList<MessageUndo::Change> changes;
    for (const Row& row : result.Done)
        changes.append({row.Reference, row.Priority, priority});
    const QString subject = references.size() == 1 ? SubjectOf(references.first()) : QString();
    Undo_.Take(MessageUndo::Kind::Priority, changes, subject);
    TellProblems(result, references.size(),
                 tr("You have no right to change this message. A technician can give it to you."));
}

void MessageCommands::CopyTo(const QList<qint32>& references, enTolvaMessageCategories folder)
{
    const Result result = ForEach(tr("Copying messages"), RowsOf(references), [&](const Row& row) {
        return Station_.Database().CopyMessage(row.Reference, folder);
    });
    List_.ShowChanges();
    if (!result.Done.isEmpty())
        Q_EMIT Told(tr("Copied to %1: %2.").arg(FolderName(folder), Words::CountMessages(result.Done.size())));
    TellProblems(result, references.size(),
                 tr("You have no right to copy this message. A technician can give it to you."));
}

QString MessageCommands::FolderName(qint32 folder) const
{
    const clsCategory* category = Station_.Database().MessageCategories().FindCategory(folder);
    return category ? category->Description() : tr("The folder");
}
