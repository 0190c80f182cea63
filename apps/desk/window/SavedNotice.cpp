// SPDX-License-Identifier: Apache-2.0
#include "SavedNotice.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace
{
std::function<bool(const QString&)>& FolderOpener()
{
    static std::function<bool(const QString&)> opener;
    return opener;
}
} // namespace

SavedNotice::SavedNotice(QWidget* parent) : NoticeBar(QStringLiteral("save"), tr("Open fol&der"), parent)
{
    setObjectName(QStringLiteral("savedNotice"));
    connect(this, &NoticeBar::ButtonClicked, this, [this] {
        const bool isOpened =
            FolderOpener() ? FolderOpener()(Folder_) : QDesktopServices::openUrl(QUrl::fromLocalFile(Folder_));
        Show(isOpened ? QString() : tr("%1. No program opens folders on this computer.").arg(Words_));
    });
}

void SavedNotice::ShowFile(const QString& path)
{
    const QFileInfo file(path);
    ShowIn(tr("Saved as %1").arg(QDir::toNativeSeparators(file.absoluteFilePath())), file.absolutePath());
}

void SavedNotice::ShowIn(const QString& words, const QString& folder)
{
    Folder_ = folder;
    Words_ = words;
    Show(words);
}

void SavedNotice::SetFolderOpener(std::function<bool(const QString&)> opener)
{
    FolderOpener() = std::move(opener);
}
