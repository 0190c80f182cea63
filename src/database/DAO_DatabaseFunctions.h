// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/DatabaseInformation.h"
#include "platform/Export.h"
#include "platform/records/Database.h"

#include <QVariant>

class FileDialog;
class PendingError;

/// A database as a file, apart from any open connection, and the rows of its Settings table. Failures are told to the
/// user through ReportProblem and returned as the engine's error number; nothing here throws.
namespace DAO_DatabaseFunctions
{

/// Makes sure that the file exists and has its Description table with one row. Makes a missing or empty file (asking
/// first unless silent). title and type serve a new row only. 0, -1 when the user declines, or an error number.
TOLVA_EXPORT qint16 ValidateDatabase(const QString& name, qint32 type, bool silent, QString& title,
                                     const QString& connect);

/// Reads what the file says of itself. A file that the engine does not recognise is offered for compacting first.
/// Without reportErrors nothing is shown or asked. 0, -1 when there is no such file, or an error number; on failure
/// information is cleared or untouched.
TOLVA_EXPORT qint16 GetDatabaseInformation(const QString& name, DatabaseInformation& information, bool reportErrors,
                                           const QString& connect);

/// Puts a compacted copy's content into the database, which others may have open, and keeps the old content as
/// "NAME-0001.BAK" (the first free number). With an empty name the dialog, when there is one, asks for the file. False
/// when nothing was changed; failure, when given, then holds the error, if there was one. keptAs gets
/// the old content's file name.
TOLVA_EXPORT bool CompactRepairDatabase(const QString& name, FileDialog* dialog, const QString& initialFolder,
                                        bool silent, PendingError* failure = nullptr, QString* keptAs = nullptr);

/// The first free name of "NAME-0001.BAK" and so on.
TOLVA_EXPORT QString FreeKeepName(const QString& name);

/// Notes a backup in the Description table and gives the text that tells of it: Run, By and Name. Empty when it cannot
/// be noted, and for no database.
TOLVA_EXPORT QString RecordLastBackup(dao::Database* database, Date when, const QString& folderName);

/// The value of a setting from a recordset with Item and Value fields; defaultValue when it is absent or on any error.
/// The caller closes the recordset.
TOLVA_EXPORT QVariant ReadSettingValue(dao::Recordset* recordset, const QString& itemName,
                                       const QVariant& defaultValue);

/// Stores a setting in the text form of its type, or deletes its row when it equals the default. 0 or an error number.
TOLVA_EXPORT int WriteSettingValue(dao::Recordset* recordset, const QString& itemName, const QVariant& value,
                                   const QVariant& defaultValue, bool silent);

/// Creates the Settings table or adds what it lacks. 0 or an error number.
TOLVA_EXPORT int CheckSettingsTable(dao::Database& database);

} // namespace DAO_DatabaseFunctions
