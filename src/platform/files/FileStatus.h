// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Why an operation on a file did not succeed, as far as somebody may act differently on it.
enum class FileError
{
    None,
    NotThere,        ///< No such file, or no such folder on the way to it.
    Exists,          ///< The name is taken.
    IsFolder,        ///< A folder bears the name.
    IsLink,          ///< A symbolic link bears the name; none is followed.
    NoPermission,    ///< This account may not.
    ReadOnly,        ///< Nobody may: the file system is read-only.
    Full,            ///< The disk, or what this account may use of it.
    OtherFileSystem, ///< A file cannot be renamed or linked to there.
    NotSupported,    ///< This file system has no such operation.
    Locked,          ///< Another process has the lock.
    Failed           ///< Anything else, a failing disk first of all.
};

/// How an operation on a file went.
class FileStatus
{
public:
    FileStatus() = default;
    explicit FileStatus(FileError error, int number = 0) : Error_(error), Number_(number) {}

    bool IsDone() const { return Error_ == FileError::None; }
    FileError Error() const { return Error_; }
    /// The system's own number; 0 where it had none.
    int Number() const { return Number_; }
    /// The disk failed or is full: nothing that another name or more rights would help.
    bool IsDiskFailure() const { return Error_ == FileError::Full || Error_ == FileError::Failed; }
    /// What is wrong and what to do, to stand behind "X could not be written: ". Empty when it is done.
    QString Words() const;

private:
    FileError Error_ = FileError::None;
    int Number_ = 0;
};
