// SPDX-License-Identifier: Apache-2.0

// The message operations of cTolvaDatabase: fetching, saving, copying, moving, deleting, and the change stamp.

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/ToldMove.h"
#include "messages/FolderStore.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/mail/MessageReader.h"

namespace
{
const QString MessagesTable = QStringLiteral("Messages");
const QString MainIndex = QStringLiteral("Main");
const QString FlagsColumn = QStringLiteral("Flags");
const QString LastChangedSetting = QStringLiteral("Messages.LastChanged");

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

cMessagePtr cTolvaDatabase::GetMessage(qint32 reference)
{
    cMessagePtr message;
    PendingError pending;
    pending.Try([&] { message = ReadMessage(reference); });
    KeepLastError(pending);
    return message;
}

cMessagePtr cTolvaDatabase::ReadMessage(qint32 reference)
{
    if (reference == 0 || !Database_)
        return nullptr;
    const auto recordset = Database_->OpenRecordset(MessagesTable, dao::dbOpenTable);
    auto message = std::make_shared<cMessage>();
    return message->ReadFromRecordSet(reference, recordset.get()) ? message : nullptr;
}

cMessagePtr cTolvaDatabase::GetMessage(dao::Recordset& row)
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

std::unique_ptr<cMessages> cTolvaDatabase::GetMessages(const QString& sqlQuery)
{
    if (!Database_)
        return nullptr;
    QString query = sqlQuery.trimmed();
    if (!query.isEmpty() && query.left(5).toUpper() != QLatin1String("WHERE"))
        query.prepend(QLatin1String("WHERE "));

    PendingError pending;
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] {
        recordset = Database_->OpenRecordset(QStringLiteral("SELECT * FROM [Messages] ") + query, dao::dbOpenSnapshot);
    });
    KeepLastError(pending);
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
    KeepLastError(pending);
    return isWhole && !pending ? std::move(messages) : nullptr;
}

std::unique_ptr<dao::Recordset> cTolvaDatabase::OpenMessageRows(const QStringList& columns, const QString& condition,
                                                                const QString& order) const
{
    QString query = QStringLiteral("SELECT [%1] FROM [Messages]").arg(columns.join(QStringLiteral("], [")));
    if (!condition.isEmpty())
        query += QStringLiteral(" WHERE ") + condition;
    if (!order.isEmpty())
        query += QStringLiteral(" ORDER BY ") + order;
    return OpenSnapshot(query);
}

std::unique_ptr<dao::Recordset> cTolvaDatabase::OpenSnapshot(const QString& sql) const
{
    return OpenedDatabase().OpenRecordset(sql, dao::dbOpenSnapshot);
}

bool cTolvaDatabase::SaveMessage(const cMessagePtr& message)
{
    KeepLastError(PendingError());
    if (DebugMode() != 0) {
        WriteDebugLog(message ? QStringLiteral("Started SaveMessage - Reference:%1 Message:%2")
                                    .arg(QString::number(message->Reference()), SubjectOf(message))
                              : QStringLiteral("Started SaveMessage - No Message Object"));
    }
    if (Location().isEmpty()) {
        ReportProblem(QStringLiteral("saving a Message because no Tolva Database has been opened"), 0, SilentMode_);
        WriteDebugLog(QStringLiteral("No Database File so exiting"));
        return false;
    }
    if (!message) {
        ReportProblem(QStringLiteral("saving a Message because no Message was supplied to save"), 0, SilentMode_);
        return false;
    }
    // Both change with the write.
    const bool wasEdited = message->Edited();
    const bool isNew = message->Reference() == 0;

    PendingError pending;
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] { recordset = OpenedDatabase().OpenRecordset(MessagesTable, dao::dbOpenTable); });
    const bool saved = recordset && StoreMessage(*message, *recordset, pending);
    recordset.reset();
    if (saved) {
        LogMessageSaving(*message, {isNew, 0, QString()});
        if (RaiseEvents_) {
            WriteDebugLog(QStringLiteral("Raising MessageSaved Event"));
            const ToldMove told(*this, ToldMessageMove_, CommittedMove_);
            Q_EMIT MessageSaved(message, wasEdited);
        }
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Message - ") + pending.Description());
        LogMessageSaving(*message, {isNew, pending.Number(), pending.Description()});
        KeepLastError(pending);
    }
    WriteDebugLog(QStringLiteral("Finished SaveMessage"));
    return saved;
}

bool cTolvaDatabase::LogMessageSaving(const cMessage& message, const MessageSaving& saving) const
{
    return LogDatabaseEvent(
        saving.IsNew ? auditMessageAdded : auditMessageEdited,
        saving.IsNew ? QStringLiteral("Message Added") : QStringLiteral("Message Edited"),
        WithError(cdo::HeaderBeginning(*message.CDOMessage(), "Subject"), saving.ErrorNumber, saving.ErrorDescription),
        saving.IsSaved() ? 1 : 0);
}

/// The row and the change stamp, together or not at all.
bool cTolvaDatabase::StoreMessage(cMessage& message, dao::Recordset& recordset, PendingError& pending)
{
    const qint32 reference = message.Reference();
    bool isStored = false;
    pending.Try([&] {
        dao::Transaction transaction;
        if (!message.WriteToRecordSet(&recordset, HighlightWords_, MessageHighlightFont_,
                                      KeyCountry(message.MessageType()), pending))
            return;
        WriteDebugLog(QStringLiteral("Setting LastMessageFiled"));
        isStored = CommitWithStamp(transaction, LastChangedSetting, pending);
        // Otherwise the row is not there after all: the next try is to make a new one.
        if (!isStored)
            message.SetReference(reference);
    });
    return isStored;
}

/// The checks that copying and moving share; null when one of them fails.
cMessagePtr cTolvaDatabase::MessageForChange(qint32 reference, enTolvaMessageCategories newCategory)
{
    KeepLastError(PendingError());
    // The tree finds 0 too: its root, which is no folder.
    if (Location().isEmpty() || reference <= 0 || newCategory <= 0 || !Folders_->Tree().FindCategory(newCategory))
        return nullptr;
    cMessagePtr message = GetMessage(reference);
    return message && MayEditMessage(*message) ? message : nullptr;
}

/// Runs a change on a message's row. False when the table cannot be opened or the row is gone; otherwise what went
/// wrong, if anything did, is in pending and belongs into the user log.
bool cTolvaDatabase::ChangeMessageRow(qint32 reference, const std::function<void(dao::Recordset&)>& change, Stamp stamp,
                                      PendingError& pending)
{
    std::unique_ptr<dao::Recordset> recordset;
    const bool opened = pending.Try([&] {
        recordset = OpenedDatabase().OpenRecordset(MessagesTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
    });
    KeepLastError(pending);
    if (!opened)
        return false;
    bool isThere = true;
    pending.Try([&] {
        dao::Transaction transaction;
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isThere = !recordset->NoMatch();
        if (!isThere)
            return;
        change(*recordset);
        if (stamp == Stamp::Moves || StampsEveryChange_)
            CommitWithStamp(transaction, LastChangedSetting, pending);
        else
            transaction.Commit();
    });
    return isThere;
}

bool cTolvaDatabase::CopyMessage(qint32 reference, enTolvaMessageCategories newCategory)
{
    const cMessagePtr message = MessageForChange(reference, newCategory);
    if (!message)
        return false;
    const cMessagePtr copy = message->Copy();
    copy->SetReference(0);
    copy->SetCategory(newCategory);
    return SaveMessage(copy);
}

bool cTolvaDatabase::MoveMessage(qint32 reference, enTolvaMessageCategories newCategory)
{
    const cMessagePtr message = MessageForChange(reference, newCategory);
    if (!message)
        return false;
    // One column alone: the keys and the highlights stay as they are.
    const auto move = [newCategory](dao::Recordset& row) {
        row.Edit();
        row.SetCollect(QStringLiteral("Category"), newCategory);
        row.Update();
    };
    PendingError pending;
    if (!ChangeMessageRow(reference, move, Stamp::MovesIfWanted, pending))
        return false;
    message->SetCategory(newCategory);
    const clsCategory* category = Folders_->Tree().FindCategory(newCategory);
    const QString target = category ? QStringLiteral(" ") + category->Description()
                                    : QStringLiteral(" (%1)").arg(static_cast<int>(newCategory));
    FinishMessageChange(auditMessageEdited, QStringLiteral("Message Edited"),
                        SubjectOf(message) + QStringLiteral(" Moved to Category") + target, pending);
    if (pending.Number() == 0 && RaiseEvents_)
        Q_EMIT MessageSaved(message, true);
    return pending.Number() == 0;
}

bool cTolvaDatabase::DeleteMessage(qint32 reference, bool deletePermanently)
{
    KeepLastError(PendingError());
    if (Location().isEmpty() || reference <= 0)
        return false;
    PendingError pending;
    const cMessagePtr message = GetMessage(reference);
    if (!message || !MayEditMessage(*message))
        return false;
    const auto remove = [deletePermanently](dao::Recordset& row) {
        if (deletePermanently) {
            row.Delete();
            return;
        }
        row.Edit();
        row.SetCollect(QStringLiteral("Category"), tmcDeleted);
        row.Update();
    };
    if (!ChangeMessageRow(reference, remove, Stamp::MovesIfWanted, pending))
        return false;
    // 0 tells a list that the message is gone, 5 that it went to the bin.
    message->SetCategory(deletePermanently ? static_cast<enTolvaMessageCategories>(0) : tmcDeleted);
    FinishMessageChange(auditMessageDeleted, QStringLiteral("Message Deleted"), SubjectOf(message), pending);
    if (pending.Number() == 0 && RaiseEvents_)
        Q_EMIT MessageDeleted(message);
    return pending.Number() == 0;
}

bool cTolvaDatabase::ChangeMessageFlags(qint32 reference, qint32 set, qint32 clear)
{
    KeepLastError(PendingError());
    if (Location().isEmpty() || reference <= 0)
        return false;
    PendingError pending;
    const cMessagePtr message = GetMessage(reference);
    if (!message || !MayEditMessage(*message))
        return false;
    const auto change = [&](dao::Recordset& row) {
        row.Edit();
        const qint32 flags = (row.Collect(FlagsColumn).toInt() | set) & ~clear;
        row.SetCollect(FlagsColumn, flags);
        row.Update();
        message->SetFlags(flags);
    };
    if (!ChangeMessageRow(reference, change, Stamp::Moves, pending))
        return false;
    const bool changed = pending.Number() == 0;
    FinishMessageChange(auditMessageEdited, QStringLiteral("Message Edited"), SubjectOf(message), pending);
    if (changed && RaiseEvents_) {
        const ToldMove told(*this, ToldMessageMove_, CommittedMove_);
        Q_EMIT MessageSaved(message, true);
    }
    return changed;
}

bool cTolvaDatabase::DeleteMessagesOfCategory(enTolvaMessageCategories category)
{
    PendingError pending;
    pending.Try([&] {
        dao::Transaction transaction;
        OpenedDatabase().Execute(
            QStringLiteral("DELETE FROM [Messages] WHERE [Category]=%1").arg(static_cast<int>(category)));
        if (StampsEveryChange_)
            CommitWithStamp(transaction, LastChangedSetting, pending);
        else
            transaction.Commit();
    });
    KeepLastError(pending);
    return pending.Number() == 0;
}

void cTolvaDatabase::FinishMessageChange(int kind, const QString& title, const QString& text,
                                         const PendingError& pending)
{
    LogDatabaseEvent(kind, title, WithError(text, pending.Number(), pending.Description()),
                     pending.Number() == 0 ? 1 : 0);
    KeepLastError(pending);
}

/// Messages personal to the user go by one right, all others, those of other people too, by another.
bool cTolvaDatabase::MayEditMessage(const cMessage& message)
{
    bool isAllowed = false;
    PendingError pending;
    pending.Try([&] {
        const clsKVUser* user = CurrentUser();
        if (!user)
            return;
        isAllowed = message.PersonalToContact() == user->Reference() ? user->CanEditPersonalMessages()
                                                                     : user->CanEditMessages();
    });
    KeepLastError(pending);
    return isAllowed;
}

Date cTolvaDatabase::LastMessageChanged() const
{
    return StampDate(DatabaseSetting(LastChangedSetting, QString()));
}

void cTolvaDatabase::SetLastMessageChanged(Date changeDate)
{
    SetDatabaseSetting(LastChangedSetting, StampText(changeDate), QString());
}
