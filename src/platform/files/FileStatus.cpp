// SPDX-License-Identifier: Apache-2.0
#include "platform/files/FileStatus.h"

QString FileStatus::Words() const
{
    switch (Error_) {
    case FileError::None:
        return {};
    case FileError::NotThere:
        return QStringLiteral("there is no such file or folder.");
    case FileError::Exists:
        return QStringLiteral("something of that name is there already.");
    case FileError::IsFolder:
        return QStringLiteral("it is a folder.");
    case FileError::IsLink:
        return QStringLiteral("it is a link, and nothing is written through one. Name the file itself, or take the "
                              "link away.");
    case FileError::NoPermission:
        return QStringLiteral("this account may not write there. Its technician can allow it, or choose another "
                              "folder.");
    case FileError::ReadOnly:
        return QStringLiteral("the disk can only be read. Make it writable, or choose another folder.");
    case FileError::Full:
        return QStringLiteral("the disk is full. Make room and try again.");
    case FileError::OtherFileSystem:
        return QStringLiteral("it lies on another disk.");
    case FileError::NotSupported:
        return QStringLiteral("this disk's file system cannot do that.");
    case FileError::Locked:
        return QStringLiteral("it is locked by another computer or program. Try again in a moment.");
    case FileError::Failed:
        break;
    }
    const QString detail = Number_ != 0 ? qt_error_string(Number_) : QString();
    return detail.isEmpty() ? QStringLiteral("the disk reports an error.")
                            : QStringLiteral("the disk reports an error (%1).").arg(detail);
}
