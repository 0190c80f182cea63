// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

/// The user's choice of a file name. The logic asks Create for one, sets what it needs and shows it; the program
/// installs the real dialog at start, tests a scripted one.
class TOLVA_EXPORT FileDialog
{
public:
    /// Of Flags.
    enum Flag : int
    {
        OverwritePrompt = 2,
        HideReadOnly = 4,
        KeepFolder = 8,
        SeveralFiles = 512,
        FileMustExist = 4096
    };
    using Factory = std::function<std::unique_ptr<FileDialog>()>;

    virtual ~FileDialog() = default;

    /// A fresh dialog, never null. Before SetFactory it is one that every user cancels.
    static std::unique_ptr<FileDialog> Create();
    /// What Create calls from now on; an empty one goes back to the cancelled dialog. Returns the one before.
    static Factory SetFactory(Factory factory);

    QString Filter;      ///< "Databases|*.MDB", pairs of words and pattern.
    int FilterIndex = 1; ///< From 1.
    QString DialogTitle;
    int Flags = 0;
    bool CancelError = false;
    QString InitDir;
    QString Filename;      ///< The proposed name, and the chosen one with its whole path afterwards.
    QStringList Filenames; ///< All that were chosen to be opened, with SeveralFiles.
    QString DefaultExt;    ///< Without the dot; what a typed name without an extension gets.

    /// Asks for a file to open; Filename and FilterIndex hold the choice afterwards. When the user cancels both stay as
    /// they were, and dao::Error 32755 is thrown when CancelError is set.
    virtual void ShowOpen() = 0;
    /// The same for a file to save to. The file is not made.
    virtual void ShowSave() = 0;
};
