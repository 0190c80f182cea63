// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/PendingError.h"
#include "database/DatabaseInformation.h"
#include "platform/records/Database.h"

#include <QObject>

#include <memory>

class clsKVDirectory;
class clsKVUser;

/// What the stores of one station share: the opened file, who works with it, what the host has switched on, and the
/// last error. cTolvaDatabase owns it together with the stores, all of which it outlives. On the user interface thread.
class StationContext : public QObject
{
    Q_OBJECT

public:
    std::unique_ptr<dao::Database> Database; ///< Null while no file is open.
    int Openings = 0;                        ///< As cTolvaDatabase::Openings.
    DatabaseInformation Information;
    clsKVDirectory* Directory = nullptr; ///< The host's; null for none.
    bool IsSilent = false;               ///< Failures are logged without a message box.
    bool RaisesEvents = true;
    bool StampsEveryChange = false; ///< As cTolvaDatabase::StampsEveryChange.
    PendingError LastError;         ///< Of the last operation that answered false or nothing.

    /// dao::Error 3420 while no file is open.
    dao::Database& OpenedDatabase() const;
    /// A snapshot of a SELECT. dao::Error as the query does, and 3420.
    std::unique_ptr<dao::Recordset> OpenSnapshot(const QString& sql) const;

    /// Null without a directory, and while nobody is signed in.
    clsKVUser* CurrentUser() const;
    /// 0 for nobody.
    qint32 CurrentUserReference() const;
    /// An entry in the current user's log; in a transaction it follows the commit. code: 1 for what was done, 0 for
    /// what was not. False without a user, and when the log is known to have failed.
    bool LogEvent(int kind, const QString& title, const QString& text, int code) const;
};
