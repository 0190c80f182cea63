// The message operations of cTolvaDatabase: fetching, saving, copying, moving, deleting, and the change stamp.

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/clsKVDirectory.h"

#include <QScopedValueRollback>

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

/// text, followed by the pending error's words where there is one.
QString WithError(const QString& text, const PendingError& pending)
{
    return pending.Number() == 0 ? text : text + QStringLiteral(" - ") + pending.Description();
}

QString SubjectOf(const cMessagePtr& message)
{
    return message->CDOMessage()->Subject();
}
} // namespace

cMessagePtr cTolvaDatabase::GetMessage(qint32 reference)
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
    for (; !recordset->AtEOF(); recordset->MoveNext()) {
        cMessagePtr message;
        if (!pending.Try([&] { message = GetMessage(*recordset); })) {
            KeepLastError(pending);
            return nullptr;
        }
        if (!message)
            continue; // deleted meanwhile
        if (!messages->Add(message)) {
            WriteDebugLog(QStringLiteral("GetMessages: %1 messages are more than a collection holds")
                              .arg(recordset->RecordCount()));
            return nullptr;
        }
    }
    return messages;
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
    const auto recordset = OpenedDatabase().OpenRecordset(MessagesTable, dao::dbOpenTable);
    // Both change with the write.
    const bool wasEdited = message->Edited();
    const bool isNew = message->Reference() == 0;
    const int kind = isNew ? auditMessageAdded : auditMessageEdited;
    const QString title = isNew ? QStringLiteral("Message Added") : QStringLiteral("Message Edited");

    PendingError pending;
    const bool saved = message->WriteToRecordSet(recordset.get(), HighlightWords_, MessageHighlightFont_, pending);
    if (saved) {
        WriteDebugLog(QStringLiteral("Setting LastMessageFiled"));
        const StampMove move = MoveLastChanged(LastChangedSetting);
        LogDatabaseEvent(kind, title, SubjectOf(message), 1);
        if (RaiseEvents_) {
            WriteDebugLog(QStringLiteral("Raising MessageSaved Event"));
            const QScopedValueRollback<StampMove> told(ToldMessageMove_, move);
            Q_EMIT MessageSaved(message, wasEdited);
        }
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Message - ") + pending.Description());
        LogDatabaseEvent(kind, title, WithError(SubjectOf(message), pending), 0);
        KeepLastError(pending);
    }
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SaveMessage"));
    return saved;
}

/// The checks that copying and moving share; null when one of them fails.
cMessagePtr cTolvaDatabase::MessageForChange(qint32 reference, enTolvaMessageCategories newCategory)
{
    KeepLastError(PendingError());
    if (Location().isEmpty() || reference <= 0 || !MessageCategories_->FindCategory(newCategory))
        return nullptr;
    cMessagePtr message = GetMessage(reference);
    return message && MayEditMessage(*message) ? message : nullptr;
}

/// Runs a change on a message's row. False when the table cannot be opened or the row is gone; otherwise what went
/// wrong, if anything did, is in pending and belongs into the user log.
bool cTolvaDatabase::ChangeMessageRow(qint32 reference, const std::function<void(dao::Recordset&)>& change,
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
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isThere = !recordset->NoMatch();
        if (isThere)
            change(*recordset);
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
    // One column alone: the keys, the highlights and the change stamp stay as they are.
    const auto move = [newCategory](dao::Recordset& row) {
        row.Edit();
        row.SetCollect(QStringLiteral("Category"), newCategory);
        row.Update();
    };
    PendingError pending;
    if (!ChangeMessageRow(reference, move, pending))
        return false;
    message->SetCategory(newCategory);
    const clsCategory* category = MessageCategories_->FindCategory(newCategory);
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
    PendingError pending;
    if (!ChangeMessageRow(reference, remove, pending))
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
    PendingError pending;
    if (!ChangeMessageRow(reference, change, pending))
        return false;
    const bool changed = pending.Number() == 0;
    const StampMove move = changed ? MoveLastChanged(LastChangedSetting) : StampMove();
    FinishMessageChange(auditMessageEdited, QStringLiteral("Message Edited"), SubjectOf(message), pending);
    if (changed && RaiseEvents_) {
        const QScopedValueRollback<StampMove> told(ToldMessageMove_, move);
        Q_EMIT MessageSaved(message, true);
    }
    return changed;
}

bool cTolvaDatabase::DeleteMessagesOfCategory(enTolvaMessageCategories category)
{
    PendingError pending;
    const bool deleted = pending.Try([&] {
        OpenedDatabase().Execute(
            QStringLiteral("DELETE FROM [Messages] WHERE [Category]=%1").arg(static_cast<int>(category)));
    });
    KeepLastError(pending);
    return deleted;
}

void cTolvaDatabase::FinishMessageChange(int kind, const QString& title, const QString& text,
                                         const PendingError& pending)
{
    LogDatabaseEvent(kind, title, WithError(text, pending), pending.Number() == 0 ? 1 : 0);
    KeepLastError(pending);
}

/// Messages personal to the user go by one right, all others, those of other people too, by another.
bool cTolvaDatabase::MayEditMessage(const cMessage& message) const
{
    if (FixedCategoryBusy_)
        return true;
    const clsKVUser* user = CurrentUser();
    if (!user)
        return false;
    return message.PersonalToContact() == user->Reference() ? user->CanEditPersonalMessages() : user->CanEditMessages();
}

Date cTolvaDatabase::LastMessageChanged() const
{
    return StampDate(DatabaseSetting(LastChangedSetting, QString()));
}

void cTolvaDatabase::SetLastMessageChanged(Date changeDate)
{
    SetDatabaseSetting(LastChangedSetting, StampText(changeDate), QString());
}
