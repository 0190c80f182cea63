// SPDX-License-Identifier: Apache-2.0

// The files that go with a message: chosen, dropped, taken out again.

#include "BodyEdit.h"
#include "ComposeWindow.h"
#include "Words.h"
#include "common/FileDialog.h"
#include "platform/widgets/Icons.h"
#include "window/FileChoice.h"
#include "window/FileNames.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QListWidget>
#include <QMimeData>
#include <QMimeDatabase>

namespace
{
constexpr int FileRowsShown = 3;
} // namespace

void ComposeWindow::ShowFiles()
{
    FileList_->clear();
    for (const ComposedFile& file : Files_) {
        const QString text = QStringLiteral("%1  (%2)")
                                 .arg(FileNames::Cleaned(file.FileName), FileNames::SizeInWords(file.Content.size()));
        auto* item = new QListWidgetItem(Icons::Get(QStringLiteral("attach")), text, FileList_);
        item->setToolTip(text);
    }
    FileList_->setVisible(!Files_.isEmpty());
    const int rows = qBound(1, static_cast<int>((Files_.size() + 1) / 2), FileRowsShown);
    FileList_->setFixedHeight(rows * (fontMetrics().height() + 10) + 8);
    Remove_->setEnabled(false);
}

QString ComposeWindow::WhyNotAdded(const QString& path, qint64 together, ComposedFile& file) const
{
    const QFileInfo information(path);
    const QString name = information.fileName();
    if (!information.exists())
        return tr("\u201C%1\u201D is not there any more.").arg(name);
    if (information.isDir())
        return tr("\u201C%1\u201D is a folder. Only files can be attached.").arg(name);
    if (!information.isFile())
        return tr("\u201C%1\u201D is no ordinary file.").arg(name);
    if (information.size() > LargestFile) {
        return tr("\u201C%1\u201D is too large to be mailed: it has %2, and 25 MB are the most.")
            .arg(name, FileNames::SizeInWords(information.size()));
    }
    if (together + information.size() > LargestFile)
        return tr("With \u201C%1\u201D the attachments would have more than 25 MB together.").arg(name);
    QFile content(path);
    if (!content.open(QIODevice::ReadOnly))
        return tr("\u201C%1\u201D cannot be read: %2.").arg(name, content.errorString());
    file.FileName = name;
    file.Content = content.readAll();
    if (content.error() != QFileDevice::NoError)
        return tr("\u201C%1\u201D cannot be read: %2.").arg(name, content.errorString());
    file.ContentType = QMimeDatabase().mimeTypeForFileNameAndData(name, file.Content).name().toLatin1();
    return QString();
}

bool ComposeWindow::AddFiles(const QStringList& paths)
{
    if (Base_.Type == emtSMS) {
        Words::Warn(tr("A text message takes no attachments."));
        return false;
    }
    QStringList problems;
    for (const QString& path : paths) {
        qint64 together = 0;
        for (const ComposedFile& file : Files_)
            together += file.Content.size();
        ComposedFile file;
        const QString problem = WhyNotAdded(path, together, file);
        if (problem.isEmpty())
            Files_.append(file);
        else
            problems.append(problem);
    }
    ShowFiles();
    if (!problems.isEmpty())
        Words::Warn(problems.join(u'\n'));
    return problems.isEmpty();
}

void ComposeWindow::ChooseFiles()
{
    const auto dialog = FileDialog::Create();
    dialog->DialogTitle = tr("Attach a file...");
    dialog->Filter = QStringLiteral("All Files (*.*)|*.*");
    dialog->Flags = FileDialog::FileMustExist | FileDialog::HideReadOnly;
    if (const std::optional<QString> path = FileChoice::ToOpen(*dialog))
        AddFiles({*path});
}

void ComposeWindow::RemoveSelectedFiles()
{
    for (qsizetype i = Files_.size() - 1; i >= 0; --i) {
        if (FileList_->item(static_cast<int>(i))->isSelected())
            Files_.removeAt(i);
    }
    ShowFiles();
    if (Files_.isEmpty())
        Body_->setFocus();
}

void ComposeWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!BodyEdit::FilesIn(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void ComposeWindow::dropEvent(QDropEvent* event)
{
    AddFiles(BodyEdit::FilesIn(event->mimeData()));
    event->acceptProposedAction();
}
