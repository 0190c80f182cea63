// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "window/NoticeBar.h"

#include <functional>

/// One line that says where something was saved, with a button that opens the folder and takes the line away.
class SavedNotice : public NoticeBar
{
    Q_OBJECT

public:
    explicit SavedNotice(QWidget* parent = nullptr);

    /// "Saved as PATH".
    void ShowFile(const QString& path);
    void ShowIn(const QString& words, const QString& folder);

    /// What opens a folder instead of the system's program; an empty one goes back to that.
    static void SetFolderOpener(std::function<void(const QString& folder)> opener);

private:
    QString Folder_;
};
