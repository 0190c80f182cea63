// SPDX-License-Identifier: Apache-2.0
#include "database/StationContext.h"

#include "platform/directory/clsKVDirectory.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/Transaction.h"

#include <QPointer>

namespace
{
/// This library's number in the class column of a directory's user log.
constexpr int UserLogClass = 32;
} // namespace

dao::Database& StationContext::OpenedDatabase() const
{
    if (!Database)
        throw dao::Error(dao::errObjectInvalid, QStringLiteral("No Tolva Database has been opened."));
    return *Database;
}

std::unique_ptr<dao::Recordset> StationContext::OpenSnapshot(const QString& sql) const
{
    return OpenedDatabase().OpenRecordset(sql, dao::dbOpenSnapshot);
}

clsKVUser* StationContext::CurrentUser() const
{
    return Directory ? Directory->CurrentUser() : nullptr;
}

qint32 StationContext::CurrentUserReference() const
{
    const clsKVUser* user = CurrentUser();
    return user ? user->Reference() : 0;
}

/// Without a directory or a signed-in user there is no log to write to. In a transaction the entry follows the commit:
/// it lies in another file, whose failure is not the change's.
bool StationContext::LogEvent(int kind, const QString& title, const QString& text, int code) const
{
    if (!CurrentUser())
        return false;
    const auto isLogged = std::make_shared<bool>(true);
    dao::Transaction::AfterCommit([self = QPointer<const StationContext>(this), isLogged, kind, title, text, code] {
        // Whatever the host's log meets, the change that it tells of stands.
        PendingError ignored;
        ignored.Try([&] {
            clsKVUser* user = self ? self->CurrentUser() : nullptr;
            *isLogged = user && user->LogEvent(UserLogClass, kind, title, text, code, 0);
        });
    });
    return *isLogged;
}
