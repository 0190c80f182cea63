// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QString>

/// What a database file says of itself. Path is not empty exactly while a database has been opened.
struct DatabaseInformation
{
    QString Path; ///< Full file name, always ending in ".mdb" for a local file.
    QString FileName;
    QString Connect; ///< Empty for a local file.
    QString Description;
    float Version = 0; ///< Structure version; 0 when the file has none.
    QString EngineVersion;
    qint32 Type = 0;
    QString Location; ///< Folder of the file; for a server database its name.
    Date LastAccessed;
    QString LastAccessedSoftware;
    QString LastBackup;
    bool IsServerDatabase = false;
};
