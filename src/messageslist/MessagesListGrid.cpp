// SPDX-License-Identifier: Apache-2.0

// The grid's keys and mouse in the messages list, and the drag of a message out of it.

#include "common/FileHelper.h"
#include "common/controls/StationListHandler.h"
#include "common/kvGeneral.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/MessageFile.h"
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
        if (Entry("mnuDelete")->isEnabled())
            Handle("grdMessages_KeyDown", [this] { DeleteCommand(); });
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
    auto* dragged = new DragData; // the drag destroys it
    dragged->SetText(
        QStringLiteral("%1 Reference=\"%2\"").arg(MessagesListTexts::MessageWord).arg(message->Reference()));
    dragged->PromiseFiles(
        [self, reference = message->Reference()] { return self ? self->WritePromisedFile(reference) : QStringList(); });
    DragRunner::Run(*grdList_, dragged, Qt::CopyAction | Qt::MoveAction);
}

/// Writes the dragged message, whatever is selected by now, into the folder of temporary files when a target asks for
/// the promised file. The file is named by the subject as it stands; a subject that leads out of that folder gives no
/// file.
QStringList uMessagesList::WritePromisedFile(qint32 reference)
{
    QStringList files;
    Handle("grdMessages_OLESetData", [&] {
        const cMessagePtr message = clsTolvaDatabase_ ? clsTolvaDatabase_->ReadMessage(reference) : nullptr;
        const QString temporary = GetTempFile(QString(), QStringLiteral("TMP"));
        if (!message || temporary.isEmpty())
            return;
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
        files.append(path);
    });
    return files;
}
