// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Database.h"

#include <QDateTime>

/// The tables of "Directory.mdb"; docs/directory.md describes them for its readers.
namespace DirectoryTables
{

/// Opens the directory's file, making it when it is not there. Several computers may do so at the same moment.
std::unique_ptr<dao::Database> OpenFile(const QString& fileName);

/// Adds the tables, fields and indexes that the file lacks. What stands already is kept as it is, also what is unknown
/// here, so that programs of different age share one directory.
void AddMissing(dao::Database& database);

/// Makes one of the tables that are made when they are first written, and what it lacks: "Answering",
/// "Answers" or "AutomaticAnswers".
void AddLater(dao::Database& database, const QString& table);

/// A snapshot of a SELECT over such tables; null where they have not been made yet.
std::unique_ptr<dao::Recordset> OpenIfThere(dao::Database& database, const QString& select);

/// Opens the table with the index in force.
std::unique_ptr<dao::Recordset> OpenTable(dao::Database& database, const QString& table, const QString& index);

/// Begins the change of the row with this reference, or of a new row for 0, in rows of index Main; the row's reference.
/// 3167 with the description when the row is gone.
qint32 BeginSave(dao::Recordset& rows, qint32 reference, const QString& description);

/// No error when there is no such row.
void DeleteRow(dao::Database& database, const QString& table, qint32 reference);

/// The day number that a date field holds for this moment, in universal time, and the way back.
double DayNumber(const QDateTime& moment);
QDateTime Moment(double dayNumber);

} // namespace DirectoryTables
