// SPDX-License-Identifier: Apache-2.0
#include "messages/MessageStore.h"

#include "common/ClockHelper.h"
#include "common/GeneralHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/SettingsStore.h"
#include "database/StationContext.h"
#include "database/StationDetails.h"
#include "database/watch/ToldMove.h"
#include "messages/FolderStore.h"
#include "messages/HighlightSettings.h"
#include "platform/directory/clsKVUser.h"
#include "platform/mail/MessageReader.h"
#include "platform/records/Transaction.h"

namespace
{
const QString MessagesTable = QStringLiteral("Messages");
const QString MainIndex = QStringLiteral("Main");
const QString FlagsColumn = QStringLiteral("Flags");
const QString CategoryColumn = QStringLiteral("Category");

/// Kinds of the user log.
enum AuditKind
{
    auditMessageAdded = 6,
    auditMessageEdited = 7,
    auditMessageDeleted = 8
};

/// text, followed by the error's words where there is one.
QString WithError(const QString& text, int number, const QString& description)
{
    return number == 0 ? text : text + QStringLiteral(" - ") + description;
}

QString SubjectOf(const cMessagePtr& message)
{
    return cdo::HeaderBeginning(*message->CDOMessage(), "Subject");
}
} // namespace

MessageStore::MessageStore(StationContext& station, SettingsStore& settings, StationDetails& details,
                           FolderStore& folders, HighlightSettings& highlights)
    : Station_(station), Settings_(settings), Details_(details), Folders_(folders), Highlights_(highlights)
{
}

cMessagePtr MessageStore::GetMessage(qint32 reference)
{
    cMessagePtr message;
    PendingError pending;
    pending.Try([&] { message = ReadMessage(reference); });
    Station_.LastError = pending;
    return message;
}

cMessagePtr MessageStore::ReadMessage(qint32 reference)
{
    if (reference == 0 || !Station_.Database)
        return nullptr;
    const auto recordset = Station_.Database->OpenRecordset(MessagesTable, dao::dbOpenTable);
    auto message = std::make_shared<cMessage>();
    return message->ReadFromRecordSet(reference, recordset.get()) ? message : nullptr;
}

cMessagePtr MessageStore::GetMessage(dao::Recordset& row)
{
    auto message = std::make_shared<cMessage>();
    try {
        return message->ReadFromRecordSet(0, &row) ? message : nullptr;
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errRecordDeleted)
            return nullptr;
        throw;
    }
}

std::unique_ptr<cMessages> MessageStore::GetMessages(const QString& sqlQuery)
{
    if (!Station_.Database)
        return nullptr;
    QString query = sqlQuery.trimmed();
    if (!query.isEmpty() && query.left(5).toUpper() != QLatin1String("WHERE"))
        query.prepend(QLatin1String("WHERE "));

    PendingError pending;
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] {
        recordset =
            Station_.Database->OpenRecordset(QStringLiteral("SELECT * FROM [Messages] ") + query, dao::dbOpenSnapshot);
    });
    Station_.LastError = pending;
    if (!recordset)
        return nullptr;

    auto messages = std::make_unique<cMessages>();
    bool isWhole = true;
    pending.Try([&] {
        for (; isWhole && !recordset->AtEOF(); recordset->MoveNext()) {
            const cMessagePtr message = GetMessage(*recordset);
            if (!message)
                continue; // deleted meanwhile
            isWhole = messages->Add(message);
        }
        if (!isWhole) {
            const int count = recordset->RecordCount();
            WriteDebugLog(QStringLiteral("GetMessages: %1 messages are more than a collection holds").arg(count));
            pending.Set(dao::errOverflow, QStringLiteral("These are %1 messages, and 32,767 are the most that can be "
                                                         "read together.")
                                              .arg(count));
        }
    });
    Station_.LastError = pending;
    return isWhole && !pending ? std::move(messages) : nullptr;
}

namespace
{
QString QueryOfRows(const QStringList& columns, const QString& condition, const QString& order)
{
    QString query = QStringLiteral("SELECT [%1] FROM [Messages]").arg(columns.join(QStringLiteral("], [")));
    if (!condition.isEmpty())
        query += QStringLiteral(" WHERE ") + condition;
    if (!order.isEmpty())
        query += QStringLiteral(" ORDER BY ") + order;
    return query;
}
} // namespace

std::unique_ptr<dao::Recordset> MessageStore::OpenMessageRows(const QStringList& columns, const QString& condition,
                                                              const QString& order) const
{
    return Station_.OpenSnapshot(QueryOfRows(columns, condition, order));
}

quint64 MessageStore::MarkOfMessageRows(const QStringList& columns, const QString& condition,
                                        const QString& order) const
{
    return Station_.OpenedDatabase().MarkOf(QueryOfRows(columns, condition, order));
}

bool MessageStore::SaveMessage(const cMessagePtr& message)
{
    Station_.LastError = {};
    if (GeneralHelper::DebugMode() != 0) {
        WriteDebugLog(message ? QStringLiteral("Started SaveMessage - Reference:%1 Message:%2")
                                    .arg(QString::number(message->Reference()), SubjectOf(message))
                              : QStringLiteral("Started SaveMessage - No Message Object"));
    }
    if (Station_.Information.Location.isEmpty()) {
        ReportProblem(QStringLiteral("saving a Message because no Tolva Database has been opened"), 0,
                      Station_.IsSilent);
        WriteDebugLog(QStringLiteral("No Database File so exiting"));
        return false;
    }
    if (!message) {
        ReportProblem(QStringLiteral("saving a Message because no Message was supplied to save"), 0, Station_.IsSilent);
        return false;
    }
    // Both change with the write.
    const bool wasEdited = message->Edited();
    const bool isNew = message->Reference() == 0;

    PendingError pending;
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] { recordset = Station_.OpenedDatabase().OpenRecordset(MessagesTable, dao::dbOpenTable); });
    const bool saved = recordset && StoreMessage(*message, *recordset, pending);
    recordset.reset();
    if (saved) {
        LogMessageSaving(*message, {isNew, 0, QString()});
        if (Station_.RaisesEvents) {
            WriteDebugLog(QStringLiteral("Raising MessageSaved Event"));
            const ToldMove told(*this, ToldMove_, CommittedMove_);
            Q_EMIT MessageSaved(message, wasEdited);
        }
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Message - ") + pending.Description());
        LogMessageSaving(*message, {isNew, pending.Number(), pending.Description()});
        Station_.LastError = pending;
    }
    WriteDebugLog(QStringLiteral("Finished SaveMessage"));
    return saved;
}

bool MessageStore::LogMessageSaving(const cMessage& message, const MessageSaving& saving) const
{
    return Station_.LogEvent(
        saving.IsNew ? auditMessageAdded : auditMessageEdited,
        saving.IsNew ? QStringLiteral("Message Added") : QStringLiteral("Message Edited"),
        WithError(cdo::HeaderBeginning(*message.CDOMessage(), "Subject"), saving.ErrorNumber, saving.ErrorDescription),
        saving.IsSaved() ? 1 : 0);
}

/// The row and the change stamp, together or not at all.
bool MessageStore::StoreMessage(cMessage& message, dao::Recordset& recordset, PendingError& pending)
{
    const qint32 reference = message.Reference();
    bool isStored = false;
    pending.Try([&] {
        dao::Transaction transaction;
        if (!message.WriteToRecordSet(&recordset, Highlights_.Words(), Highlights_.Font(),
                                      Details_.KeyCountry(message.MessageType()), pending))
            return;
        WriteDebugLog(QStringLiteral("Setting LastMessageFiled"));
        isStored = CommitWithStamp(transaction, pending);
        // Otherwise the row is not there after all: the next try is to make a new one.
        if (!isStored)
            message.SetReference(reference);
    });
    return isStored;
}

/// The checks that copying and moving share; null when one of them fails.
cMessagePtr MessageStore::MessageForChange(qint32 reference, enTolvaMessageCategories newCategory)
{
    Station_.LastError = {};
    // The tree finds 0 too: its root, which is no folder.
    if (Station_.Information.Location.isEmpty() || reference <= 0 || newCategory <= 0 ||
        !Folders_.Tree().FindCategory(newCategory))
        return nullptr;
    cMessagePtr message = GetMessage(reference);
    return message && MayEditMessage(*message) ? message : nullptr;
}

/// Runs a change on a message's row, which answers whether there is anything to be changed. False when the table cannot
/// be opened, or nothing is changed; otherwise what went wrong, if anything did, is in pending and belongs into the
/// user log.
bool MessageStore::ChangeMessageRow(qint32 reference, const std::function<bool(dao::Recordset&)>& change, Stamp stamp,
                                    PendingError& pending)
{
    std::unique_ptr<dao::Recordset> recordset;
    const bool opened = pending.Try([&] {
        recordset = Station_.OpenedDatabase().OpenRecordset(MessagesTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
    });
    Station_.LastError = pending;
    if (!opened)
        return false;
    bool isChanged = true;
    pending.Try([&] {
        // The row stays as it is found until it is changed.
        dao::Transaction transaction(Station_.OpenedDatabase());
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isChanged = !recordset->NoMatch() && change(*recordset);
        if (!isChanged)
            return;
        if (stamp == Stamp::Moves || Station_.StampsEveryChange)
            CommitWithStamp(transaction, pending);
        else
            transaction.Commit();
    });
    return isChanged;
}

/// Changes columns of a message that the user may edit, in its row and in the object that the event brings, and tells
/// of it. logged: behind the subject in the user log. False when nothing was changed.
bool MessageStore::EditMessageRow(qint32 reference, const std::function<bool(dao::Recordset&, cMessage&)>& edit,
                                  const QString& logged)
{
    const BusyPointer busy; // a row holds its mail, however large
    Station_.LastError = {};
    if (Station_.Information.Location.isEmpty() || reference <= 0)
        return false;
    PendingError pending;
    const cMessagePtr message = GetMessage(reference);
    if (!message || !MayEditMessage(*message))
        return false;
    const auto change = [&](dao::Recordset& row) { return edit(row, *message); };
    if (!ChangeMessageRow(reference, change, Stamp::Moves, pending))
        return false;
    const bool changed = pending.Number() == 0;
    FinishMessageChange(auditMessageEdited, QStringLiteral("Message Edited"), SubjectOf(message) + logged, pending);
    if (changed && Station_.RaisesEvents) {
        const ToldMove told(*this, ToldMove_, CommittedMove_);
        Q_EMIT MessageSaved(message, true);
    }
    return changed;
}

bool MessageStore::CopyMessage(qint32 reference, enTolvaMessageCategories newCategory)
{
    const cMessagePtr message = MessageForChange(reference, newCategory);
    if (!message)
        return false;
    const cMessagePtr copy = message->Copy();
    copy->SetReference(0);
    copy->SetCategory(newCategory);
    return SaveMessage(copy);
}

bool MessageStore::MoveMessage(qint32 reference, enTolvaMessageCategories newCategory)
{
    const BusyPointer busy;
    const cMessagePtr message = MessageForChange(reference, newCategory);
    if (!message)
        return false;
    // One column alone: the keys and the highlights stay as they are.
    const auto move = [newCategory](dao::Recordset& row) {
        row.Edit();
        row.SetCollect(CategoryColumn, newCategory);
        row.Update();
        return true;
    };
    PendingError pending;
    if (!ChangeMessageRow(reference, move, Stamp::MovesIfWanted, pending))
        return false;
    message->SetCategory(newCategory);
    const clsCategory* category = Folders_.Tree().FindCategory(newCategory);
    const QString target = category ? QStringLiteral(" ") + category->Description()
                                    : QStringLiteral(" (%1)").arg(static_cast<int>(newCategory));
    FinishMessageChange(auditMessageEdited, QStringLiteral("Message Edited"),
                        SubjectOf(message) + QStringLiteral(" Moved to Category") + target, pending);
    if (pending.Number() == 0 && Station_.RaisesEvents)
        Q_EMIT MessageSaved(message, true);
    return pending.Number() == 0;
}

bool MessageStore::DeleteMessage(qint32 reference, bool deletePermanently)
{
    const BusyPointer busy;
    Station_.LastError = {};
    if (Station_.Information.Location.isEmpty() || reference <= 0)
        return false;
    PendingError pending;
    const cMessagePtr message = GetMessage(reference);
    if (!message || !MayEditMessage(*message))
        return false;
    const auto remove = [deletePermanently](dao::Recordset& row) {
        if (deletePermanently) {
            row.Delete();
            return true;
        }
        row.Edit();
        row.SetCollect(CategoryColumn, tmcDeleted);
        row.Update();
        return true;
    };
    if (!ChangeMessageRow(reference, remove, Stamp::MovesIfWanted, pending))
        return false;
    // 0 tells a list that the message is gone, 5 that it went to the bin.
    message->SetCategory(deletePermanently ? static_cast<enTolvaMessageCategories>(0) : tmcDeleted);
    FinishMessageChange(auditMessageDeleted, QStringLiteral("Message Deleted"), SubjectOf(message), pending);
    if (pending.Number() == 0 && Station_.RaisesEvents)
        Q_EMIT MessageDeleted(message);
    return pending.Number() == 0;
}

bool MessageStore::ChangeMessageFlags(qint32 reference, qint32 set, qint32 clear)
{
    const auto change = [&](dao::Recordset& row, cMessage& message) {
        row.Edit();
        const qint32 flags = (row.Collect(FlagsColumn).toInt() | set) & ~clear;
        row.SetCollect(FlagsColumn, flags);
        row.Update();
        message.SetFlags(flags);
        return true;
    };
    return EditMessageRow(reference, change, QString());
}

bool MessageStore::MarkMessageSent(qint32 reference, Date sent)
{
    const auto mark = [&](dao::Recordset& row, cMessage& message) {
        const qint32 flags = row.Collect(FlagsColumn).toInt();
        if (row.Collect(CategoryColumn).toInt() != tmcOutbox || (flags & mfSendPending) == 0)
            return false;
        row.Edit();
        row.SetCollect(FlagsColumn, flags & ~mfSendPending);
        row.SetCollect(CategoryColumn, tmcSent);
        if (message.Sent().IsNone()) {
            row.SetCollect(QStringLiteral("Sent"), ClockHelper::LocalToUTC(sent).DayNumber());
            message.SetSent(sent);
        }
        row.Update();
        message.SetFlags(flags & ~mfSendPending);
        message.SetCategory(tmcSent);
        return true;
    };
    return EditMessageRow(reference, mark, QStringLiteral(" Sent"));
}

bool MessageStore::DeleteMessagesOfCategory(enTolvaMessageCategories category)
{
    PendingError pending;
    pending.Try([&] {
        dao::Transaction transaction;
        Station_.OpenedDatabase().Execute(
            QStringLiteral("DELETE FROM [Messages] WHERE [Category]=%1").arg(static_cast<int>(category)));
        if (Station_.StampsEveryChange)
            CommitWithStamp(transaction, pending);
        else
            transaction.Commit();
    });
    Station_.LastError = pending;
    return pending.Number() == 0;
}

void MessageStore::FinishMessageChange(int kind, const QString& title, const QString& text, const PendingError& pending)
{
    Station_.LogEvent(kind, title, WithError(text, pending.Number(), pending.Description()),
                      pending.Number() == 0 ? 1 : 0);
    Station_.LastError = pending;
}

/// Messages personal to the user go by one right, all others, those of other people too, by another.
bool MessageStore::MayEditMessage(const cMessage& message)
{
    bool isAllowed = false;
    PendingError pending;
    pending.Try([&] {
        const clsKVUser* user = Station_.CurrentUser();
        if (!user)
            return;
        isAllowed = message.PersonalToContact() == user->Reference() ? user->CanEditPersonalMessages()
                                                                     : user->CanEditMessages();
    });
    Station_.LastError = pending;
    return isAllowed;
}

bool MessageStore::CommitWithStamp(dao::Transaction& transaction, PendingError& pending)
{
    return Settings_.CommitWithStamp(transaction, StationSettings::MessagesLastChanged, pending, CommittedMove_);
}

Date MessageStore::LastChanged() const
{
    return Settings_.Stamp(StationSettings::MessagesLastChanged);
}

void MessageStore::SetLastChanged(Date changeDate)
{
    Settings_.SetStamp(StationSettings::MessagesLastChanged, changeDate);
}
