// SPDX-License-Identifier: Apache-2.0
#include "SavedNotice.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace
{
std::function<void(const QString&)>& FolderOpener()
{
    static std::function<void(const QString&)> opener;
    return opener;
}
} // namespace

SavedNotice::SavedNotice(QWidget* parent) : NoticeBar(QStringLiteral("save"), tr("Open fol&der"), parent)
{
    setObjectName(QStringLiteral("savedNotice"));
    connect(this, &NoticeBar::ButtonClicked, this, [this] {
        Show(QString());
        if (FolderOpener())
            FolderOpener()(Folder_);
        else
            QDesktopServices::openUrl(QUrl::fromLocalFile(Folder_));
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
    Show(words);
}

void SavedNotice::SetFolderOpener(std::function<void(const QString&)> opener)
{
    FolderOpener() = std::move(opener);
}
