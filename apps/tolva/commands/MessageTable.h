// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "commands/MessageRow.h"

/// The plain form of a list of messages: one line each, its columns fitted to the terminal.
class MessageTable
{
public:
    explicit MessageTable(bool showsFolder);

    /// date: universal time. who: the sender or the recipients. folder: its path, when the table shows it.
    void Print(const MessageRow& row, Date date, const QString& who, const QString& folder = QString()) const;

private:
    bool ShowsFolder_;
    int WhoWidth_;
    int SubjectWidth_;
    int FolderWidth_;
};
