// SPDX-License-Identifier: Apache-2.0

// The commands of the messages list. What needs a window is handed to the host in an event.

#include "common/FileDialog.h"
#include "common/controls/StationListHandler.h"
#include "database/LastError.h"
#include "messageslist/MessageFile.h"
#include "messageslist/MessagesListColumns.h"
#include "messageslist/uMessagesList.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/FlexGrid.h"

#include <QScopeGuard>

#include <any>

namespace
{
/// Hide read only, ask before overwriting, keep the current folder.
constexpr int ExportFlags = 2054;

/// A message record out of any object; error 13 for what is none.
cMessagePtr ToMessageRecord(const std::any& object)
{
    if (const auto* message = std::any_cast<cMessagePtr>(&object))
        return *message;
    throw dao::Error(dao::errTypeMismatch, QStringLiteral("Type mismatch"));
}

void SetRead(cMessage& message, bool read)
{
    message.SetFlags(read ? message.Flags() | mfRead : message.Flags() & ~mfRead);
}

/// As much as a question and the name of a file have room for.
constexpr qsizetype LongestSubject = 1000;

/// Whole as far as people write them: one of megabytes would hold the window up.
QString SubjectOf(const cMessagePtr& message)
{
    return cdo::HeaderBeginning(*message->CDOMessage(), "Subject");
}

QString ShortSubjectOf(const cMessagePtr& message)
{
    return cdo::HeaderBeginning(*message->CDOMessage(), "Subject", LongestSubject);
}

QString ProposedFileName(QString subject)
{
    subject.removeIf([](QChar character) { return QStringLiteral(":*?\\/").contains(character); });
    return subject + QStringLiteral(".eml");
}
} // namespace

cMessagePtr uMessagesList::SelectedMessage() const
{
    return clsTolvaDatabase_ ? clsTolvaDatabase_->ReadMessage(SelectedReference_) : nullptr;
}

/// Asks the host first. True when it did it by itself, or took the list away.
bool uMessagesList::IsTakenByHost(MessagesListCommand command)
{
    const bool isOfAll = command == MessagesListCommand::MarkAllRead || command == MessagesListCommand::MarkAllUnread;
    const QPointer<uMessagesList> self(this);
    bool isTaken = false;
    Q_EMIT CommandWanted(command, isOfAll ? References() : SelectedReferences(), isTaken);
    return isTaken || !self;
}

void uMessagesList::PriorityCommand(MessagesListCommand command)
{
    IsTakenByHost(command);
}

void uMessagesList::NewCommand()
{
    if (!clsTolvaDatabase_)
        return;
    const QPointer<uMessagesList> self(this);
    Q_EMIT NewMessage(std::make_shared<cMessage>());
    // The rows that are the same stay as they are.
    if (self)
        Display(Reading::ChangedRows);
}

void uMessagesList::OpenCommand()
{
    if (const cMessagePtr message = SelectedMessage())
        Q_EMIT OpenMessage(message);
    else if (clsTolvaDatabase_ && SelectedReference_ > 0)
        Q_EMIT MessageGone();
}

void uMessagesList::PrintCommand()
{
    if (IsTakenByHost(MessagesListCommand::Print))
        return;
    if (const cMessagePtr message = SelectedMessage())
        Q_EMIT PrintMessage(message);
}

/// The new record is made as a bare mail, which is no message record: the command ends in the error of that assignment,
/// and hosts that offer a reply meet it with their own.
void uMessagesList::ReplyCommand()
{
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    bool isTaken = false;
    Q_EMIT ReplyWanted(message, isTaken);
    if (isTaken)
        return;
    const cMessagePtr reply = ToMessageRecord(std::make_shared<cdo::Message>());
    reply->CDOMessage()->SetTo(message->CDOMessage()->From());
    reply->CDOMessage()->SetSubject(QStringLiteral("RE: ") + SubjectOf(message));
    Q_EMIT NewMessage(reply);
}

void uMessagesList::ForwardCommand()
{
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    const auto forward = std::make_shared<cMessage>();
    forward->CDOMessage()->SetTo(QString());
    forward->CDOMessage()->SetSubject(QStringLiteral("FW: ") + SubjectOf(message));
    Q_EMIT NewMessage(forward);
}

void uMessagesList::CopyCommand()
{
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    message->SetReference(0);
    message->CDOMessage()->SetSubject(QStringLiteral("Copy of ") + message->CDOMessage()->Subject());
    Q_EMIT NewMessage(message);
}

void uMessagesList::ExportCommand()
{
    if (IsTakenByHost(MessagesListCommand::Export))
        return;
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    const auto dialog = FileDialog::Create();
    dialog->CancelError = true;
    dialog->DialogTitle = QStringLiteral("Export Email Message as...");
    dialog->Filter = QStringLiteral("E-mail File (*.eml)|*.eml|All Files (*.*)|*.*");
    dialog->FilterIndex = 1;
    dialog->DefaultExt = QStringLiteral("eml");
    dialog->InitDir = QString();
    dialog->Flags = ExportFlags;
    dialog->Filename = ProposedFileName(ShortSubjectOf(message));
    try {
        dialog->ShowSave();
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errCancelled)
            return;
        throw;
    }
    SaveMessageAsEml(message, dialog->Filename);
}

void uMessagesList::DeleteCommand()
{
    if (!IsTakenByHost(MessagesListCommand::Delete))
        DeleteMessage();
}

void uMessagesList::DeleteMessage()
{
    if (SelectedReference_ <= 0)
        return;
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    const bool permanently = message->Category() == tmcDeleted;
    // The box runs window events, and the deletion is told.
    const QPointer<uMessagesList> self(this);
    const QPointer<cTolvaDatabase> database = clsTolvaDatabase_;
    if (permanently) {
        const QString question =
            QStringLiteral("Are you sure you want to permanently delete '%1'?").arg(ShortSubjectOf(message));
        if (!UserInterface::Confirm(question))
            return;
    }
    if (!database)
        return;
    if (!database->DeleteMessage(message->Reference(), permanently)) {
        RaiseLastError(*database);
        return;
    }
    if (!self)
        return;
    const enTolvaMessageCategories from = message->Category();
    message->SetCategory(tmcDeleted);
    ShowChanges(WhenGone::SelectNext);
    if (self && !permanently)
        Q_EMIT MessageMoved(message, from);
}

void uMessagesList::MarkCommand(bool read)
{
    if (IsTakenByHost(read ? MessagesListCommand::MarkRead : MessagesListCommand::MarkUnread))
        return;
    if (!clsTolvaDatabase_)
        return;
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    SetRead(*message, read);
    const QPointer<uMessagesList> self(this);
    cTolvaDatabase& database = *clsTolvaDatabase_;
    if (!database.SaveMessage(message))
        RaiseLastError(database);
    else if (self)
        UpdateRowBold(message);
}

void uMessagesList::MarkAllCommand(bool read)
{
    if (!clsTolvaDatabase_ ||
        IsTakenByHost(read ? MessagesListCommand::MarkAllRead : MessagesListCommand::MarkAllUnread))
        return;
    const BusyPointer busy;
    if (DisplayMessageList_)
        MarkAllRows(read);
    else
        MarkAllOfQuery(read);
}

/// Rows are judged by their looks: one that is not bold because it has no date counts as read.
void uMessagesList::MarkAllRows(bool read)
{
    if (IsBusy_)
        return;
    const int current = grdList_->Row();
    const QPointer<uMessagesList> self(this);
    const ReadTarget target = Target();
    IsBusy_ = true;
    grdList_->SetRedraw(false);
    const auto restore = qScopeGuard([&] {
        if (!self)
            return;
        if (current > 0)
            SelectRow(current);
        IsBusy_ = false;
        grdList_->SetRedraw(true);
    });
    const auto progress = UserInterface::Current().Progress(tr("Marking messages"));
    const int rows = grdList_->Rows();
    for (int row = 1; row < rows; ++row) {
        if (grdList_->CellFontBold(row, colHead) != read)
            continue;
        if (!progress->Advance(row, rows) || !self || Target() != target)
            return;
        const cMessagePtr message = clsTolvaDatabase_->ReadMessage(ReferenceOfRow(row));
        if (!message)
            continue;
        SetRead(*message, read);
        if (!clsTolvaDatabase_->SaveMessage(message))
            RaiseLastError(*clsTolvaDatabase_);
        if (!self || Target() != target)
            return;
        grdList_->SetCellFontBold(row, colHead, colSubject, !read);
    }
}

void uMessagesList::MarkAllOfQuery(bool read)
{
    clsTolvaDatabase_->SetRaiseEvents(false);
    const QPointer<uMessagesList> self(this);
    const QPointer<cTolvaDatabase> database(clsTolvaDatabase_);
    const auto restore = qScopeGuard([&] {
        if (database)
            database->SetRaiseEvents(true);
    });
    const auto messages = database->GetMessages(CurrentQuery_);
    if (!messages) {
        // Without a folder and a find text the query is none, and marks nothing.
        if (database->LastErrorNumber() != dao::errSyntax)
            RaiseLastError(*database);
        return;
    }
    for (int i = 1; i <= messages->Count(); ++i) { // an index of 16 bits would not end after 32,767
        const cMessagePtr message = messages->Message(static_cast<qint16>(i));
        SetRead(*message, read);
        if (!database->SaveMessage(message))
            RaiseLastError(*database);
    }
    if (self)
        Q_EMIT UpdateDisplay(CurrentQuery_);
}
