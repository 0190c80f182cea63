// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "window/NoticeBar.h"

#include <functional>

/// One line that says where something was saved, with a button that opens the folder and takes the line away. Where no
/// program opens it the line stays, and says so.
class SavedNotice : public NoticeBar
{
    Q_OBJECT

public:
    explicit SavedNotice(QWidget* parent = nullptr);

    /// "Saved as PATH".
    void ShowFile(const QString& path);
    void ShowIn(const QString& words, const QString& folder);

    /// What opens a folder instead of the system's program, true where it did; an empty one goes back to that.
    static void SetFolderOpener(std::function<bool(const QString& folder)> opener);

private:
    QString Folder_;
    QString Words_;
};
