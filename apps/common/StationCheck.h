// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include <functional>

/// Reading a whole station, and telling what is wrong with it. Nothing is written, and others may have it open.
namespace StationCheck
{
struct FolderCount
{
    QString Path; ///< The folder's names from the top, divided by "/".
    int Messages = 0;
};

struct Report
{
    bool IsWhole = true; ///< False when the user ended it.
    bool IsRead = false; ///< Whether the messages could be counted.
    QString Summary;     ///< How many problems of which kinds; empty when there are none.
    QList<FolderCount> Folders;

    bool IsSound() const { return IsWhole && Summary.isEmpty(); }
    int Messages() const;
};

/// Reads every value of the station in the folder and of its directory once, with its progress on display. tell: called
/// with each problem, in words. Failure when a file is locked or cannot be read for want of permission.
Report Run(const QString& folder, const std::function<void(const QString&)>& tell);
} // namespace StationCheck
