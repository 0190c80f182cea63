// SPDX-License-Identifier: Apache-2.0
#include "FileChoice.h"

#include "common/FileDialog.h"
#include "common/FileHelper.h"
#include "common/UserInterface.h"
#include "platform/records/Error.h"

#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>

namespace
{
std::optional<QString> Choose(FileDialog& dialog, void (FileDialog::*show)())
{
    dialog.CancelError = true;
    try {
        (dialog.*show)();
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errCancelled)
            UserInterface::Current().RunTimeError(error);
        return std::nullopt;
    }
    return dialog.Filename.isEmpty() ? std::nullopt : std::optional(dialog.Filename);
}

std::function<QString(const QString&)>& Chooser()
{
    static std::function<QString(const QString&)> chooser;
    return chooser;
}
} // namespace

std::optional<QString> FileChoice::ToOpen(FileDialog& dialog)
{
    return Choose(dialog, &FileDialog::ShowOpen);
}

std::optional<QString> FileChoice::ToSave(FileDialog& dialog)
{
    return Choose(dialog, &FileDialog::ShowSave);
}

QString FileChoice::Folder(QWidget* window, const QString& title, const QString& start)
{
    return Chooser() ? Chooser()(start) : QFileDialog::getExistingDirectory(window, title, start);
}

void FileChoice::SetFolderChooser(std::function<QString(const QString& start)> chooser)
{
    Chooser() = std::move(chooser);
}

QString FileChoice::StartFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return FileHelper::FolderExists(folder) ? folder : QDir::homePath();
}
