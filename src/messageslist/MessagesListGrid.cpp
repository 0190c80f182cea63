// SPDX-License-Identifier: Apache-2.0

// The grid's keys and mouse in the messages list, and the drag of a message out of it.

#include "common/FileHelper.h"
#include "common/controls/StationListHandler.h"
#include "common/kvGeneral.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/MessageFile.h"
#include "messageslist/MessagesListColumns.h"
#include "messageslist/MessagesListTexts.h"
#include "messageslist/uMessagesList.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/DragData.h"
#include "platform/widgets/FlexGrid.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QScopeGuard>

/// More than any folder takes, so that a subject that is cut here names no file either way.
constexpr qsizetype LongestFileName = 1000;

void uMessagesList::TakeGridKey(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_F2:
        event->accept();
        break;
    case Qt::Key_F5:
        event->accept();
        Handle("grdMessages_KeyDown", [this] { UpdateDisplay(); });
        break;
    case Qt::Key_Delete:
        event->accept();
        Handle("grdMessages_KeyDown", [this] {
            const QPointer<uMessagesList> self(this);
            if (!IsTakenByHost(MessagesListCommand::Delete) && self && Entry("mnuDelete")->isEnabled())
                DeleteMessage();
        });
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        Handle("grdMessages_KeyDown", [this] { OpenCommand(); });
        break;
    default:
        break;
    }
}
/// None from the edge.
bool uMessagesList::IsDragStart(const QPointF& twips) const
{
    return twips.x() > 0;
}

void uMessagesList::StartGridDrag()
{
    const QPointer<uMessagesList> self(this);
    const auto finish = qScopeGuard([self] {
        if (self)
            self->GridDragging_ = false;
    });
    const cMessagePtr message = SelectedMessage();
    if (!message)
        return;
    const QList<qint32> references = SelectedReferences();
    auto* dragged = new DragData; // the drag destroys it
    QString text = QStringLiteral("%1 Reference=\"%2\"").arg(MessagesListTexts::MessageWord).arg(message->Reference());
    if (references.size() > 1) {
        QStringList numbers;
        for (const qint32 reference : references)
            numbers.append(QString::number(reference));
        text += QStringLiteral(" %1=\"%2\"").arg(MessagesListTexts::AllKey, numbers.join(u','));
    }
    dragged->SetText(text);
    dragged->PromiseFiles([self, references] { return self ? self->WritePromisedFiles(references) : QStringList(); });
    DragRunner::Run(*grdList_, dragged, Qt::CopyAction | Qt::MoveAction);
}

QStringList uMessagesList::WritePromisedFiles(const QList<qint32>& references)
{
    QStringList files;
    for (const qint32 reference : references) {
        Handle("grdMessages_OLESetData", [&] {
            if (const QString file = WritePromisedFile(reference); !file.isEmpty())
                files.append(file);
        });
    }
    return files;
}

/// Writes a dragged message, whatever is selected by now, into the folder of temporary files when a target asks for the
/// promised file; its path. The file is named by the subject as it stands; a subject that leads out of that folder
/// gives no file.
QString uMessagesList::WritePromisedFile(qint32 reference)
{
    const cMessagePtr message = clsTolvaDatabase_ ? clsTolvaDatabase_->ReadMessage(reference) : nullptr;
    const QString temporary = GetTempFile(QString(), QStringLiteral("TMP"));
    if (!message || temporary.isEmpty())
        return QString();
    QFile::remove(temporary);
    const QString folder = FileHelper::FolderOf(temporary);
    const QString subject = cdo::HeaderBeginning(*message->CDOMessage(), "Subject", LongestFileName);
    const QString path = FileHelper::Join(folder, subject + QStringLiteral(".eml"));
    if (QFileInfo(path).absolutePath() != QFileInfo(temporary).absolutePath() || subject.contains(u'\0')) {
        throw dao::Error(
            dao::errNotSupported,
            QStringLiteral("\"%1\" cannot be the name of a file. Please export the message.").arg(subject));
    }
    SaveMessageAsEml(message, path);
    if (!PromisedFiles_.contains(path))
        PromisedFiles_.append(path);
    return path;
}

void uMessagesList::SetRowNotes(std::function<QString(qint32 reference)> noteOf)
{
    std::function<QString(int row)> ofRow;
    if (noteOf)
        ofRow = [this, noteOf = std::move(noteOf)](int row) { return noteOf(ReferenceOfRow(row)); };
    grdList_->SetRowNotes(colSubject, std::move(ofRow));
}

void uMessagesList::ShowRowNotes()
{
    grdList_->ShowNotes();
}
