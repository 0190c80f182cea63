// SPDX-License-Identifier: Apache-2.0

// The structure of a station database: the checks of cTolvaDatabase, and its locking mode.

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/TableCheck.h"
#include "database/cTolvaDatabase.h"
#include "platform/records/DBEngine.h"

qint16 cTolvaDatabase::ValidateTolvaDatabase(const QString& fileName)
{
    PendingError pending;
    std::unique_ptr<dao::Database> database;
    if (!pending.Try([&] { database = dao::DBEngine::OpenDatabase(fileName); })) {
        ReportProblem(QStringLiteral("opening the database"), pending.Number(), SilentMode_, pending.Description());
        return static_cast<qint16>(pending.Number());
    }
    int code = CheckMessagesTable(*database);
    if (code == 0)
        code = CheckMessageCategoriesTable(*database);
    if (code == 0)
        code = CheckPrizesTable(*database);
    if (code == 0)
        code = CheckPrizeWinnersTable(*database);
    if (code == 0)
        code = DAO_DatabaseFunctions::CheckSettingsTable(*database);
    if (code == 0)
        database->Close();
    return static_cast<qint16>(code);
}

int cTolvaDatabase::CheckMessagesTable(dao::Database& database) const
{
    return CheckTable(database, MessagesTableShape(), {.Silent = SilentMode_});
}

int cTolvaDatabase::CheckMessageCategoriesTable(dao::Database& database) const
{
    return CheckTable(database, MessageCategoriesTableShape(), {.Silent = SilentMode_});
}

int cTolvaDatabase::CheckPrizesTable(dao::Database& database) const
{
    return CheckTable(database, PrizesTableShape(), {.Silent = SilentMode_});
}

int cTolvaDatabase::CheckPrizeWinnersTable(dao::Database& database) const
{
    return CheckTable(database, PrizeWinnersTableShape(), {.Silent = SilentMode_});
}

LockingMode cTolvaDatabase::DatabaseLockingMode() const
{
    if (Location().isEmpty())
        return LockingMode::Unknown;
    WriteDebugLog(QStringLiteral("Creating ADO Connection"));
    LockingMode mode = LockingMode::Unknown;
    PendingError pending;
    pending.Try([&] {
        ado::Connection connection;
        connection.SetProvider(QStringLiteral("Microsoft.JET.OLEDB.4.0"));
        connection.SetProperty(QStringLiteral("Data Source"), OpenedDatabase().Name());
        connection.SetCursorLocation(2);
        WriteDebugLog(QStringLiteral("Opening database (ADO)"));
        connection.Open();
        const bool isRecord = connection.Property(QStringLiteral("Jet OLEDB:Database Locking Mode")).toInt() == 1;
        mode = isRecord ? LockingMode::RecordLevel : LockingMode::PageLevel;
    });
    if (pending.Number() != 0)
        WriteDebugLog(QStringLiteral("Failed - ") + pending.Description());
    return mode;
}
