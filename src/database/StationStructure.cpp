// SPDX-License-Identifier: Apache-2.0
#include "database/StationStructure.h"

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/StationFile.h"
#include "database/TableCheck.h"
#include "platform/records/DBEngine.h"

qint16 StationStructure::Validate(const QString& fileName, bool silent)
{
    PendingError pending;
    std::unique_ptr<dao::Database> database;
    if (!pending.Try([&] { database = dao::DBEngine::OpenDatabase(fileName); })) {
        ReportProblem(QStringLiteral("opening the database"), pending.Number(), silent, pending.Description());
        return static_cast<qint16>(pending.Number());
    }
    int code = 0;
    for (const TableShape* table :
         {&MessagesTableShape(), &MessageCategoriesTableShape(), &PrizesTableShape(), &PrizeWinnersTableShape()}) {
        if (code == 0)
            code = CheckTable(*database, *table, {.Silent = silent});
    }
    if (code == 0)
        code = DAO_DatabaseFunctions::CheckSettingsTable(*database);
    if (code == 0)
        database->Close();
    return static_cast<qint16>(code);
}

qint16 StationStructure::MakeEmpty(const QString& fileName, const QString& engine)
{
    PendingError pending;
    if (!pending.Try([&] { dao::DBEngine::CreateDatabase(fileName, QString(), engine)->Close(); }))
        return static_cast<qint16>(pending.Number());
    QString title;
    const qint16 code = DAO_DatabaseFunctions::ValidateDatabase(fileName, StationFile::Type, true, title, QString());
    return code == 0 ? Validate(fileName, true) : code;
}

LockingMode StationStructure::LockingModeOf(const dao::Database& database)
{
    WriteDebugLog(QStringLiteral("Creating ADO Connection"));
    LockingMode mode = LockingMode::Unknown;
    PendingError pending;
    pending.Try([&] {
        ado::Connection connection;
        connection.SetProvider(QStringLiteral("Microsoft.JET.OLEDB.4.0"));
        connection.SetProperty(QStringLiteral("Data Source"), database.Name());
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
