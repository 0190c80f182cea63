#pragma once

#include <QString>

/// The user's choice of a file name. The host brings the real dialog, tests a scripted one.
class FileDialog
{
public:
    virtual ~FileDialog() = default;

    QString Filter;      ///< "Databases|*.MDB", pairs of words and pattern.
    int FilterIndex = 1; ///< From 1.
    QString DialogTitle;
    int Flags = 0; ///< 4: hide read only, 4096: the file must exist, 2: ask before overwriting, 8: keep the folder.
    bool CancelError = false;
    QString InitDir;
    QString Filename;
    QString DefaultExt;

    /// Asks for a file to open; Filename holds it afterwards. dao::Error 32755 when the user cancels and CancelError is
    /// set.
    virtual void ShowOpen() = 0;
};
