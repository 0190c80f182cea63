// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

/// A message file of a maildir.
struct MaildirFile
{
    QString Path;
    bool IsSeen = false; ///< The flag S.
};

/// Whether the folder is a maildir: it has the sub-folders cur and new.
bool IsMaildir(const QString& folder);

enum class MaildirEntries
{
    Files,     ///< And links to files.
    Everything ///< Folders, pipes and dangling links too.
};

/// The messages in new and cur, oldest name first. What stands in tmp is being delivered still, and hidden files are no
/// messages.
QList<MaildirFile> MaildirFiles(const QString& folder, MaildirEntries entries = MaildirEntries::Files);
