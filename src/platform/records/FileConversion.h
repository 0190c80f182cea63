// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

#include <functional>

namespace dao
{

namespace engine
{
class Store;
}

/// Writes everything that a database file holds into a new file of the engine of that name, and compares every value
/// then. target must not exist. Automatic counters go on where they stood. advance is told how many of how many rows
/// are done, and stops it by answering false (32755).
///
/// Errors: those of opening; 3265 when no engine of that name makes files, 3251 when the file is of that engine
/// already, or holds what the other one cannot; 3428 for a memo that is damaged; 3260 when it is
/// changed meanwhile. They leave no target.
TOLVA_EXPORT void ConvertDatabase(const QString& source, const QString& target, const QString& engine,
                                  const std::function<bool(qint64 done, qint64 total)>& advance);

/// The name of the engine in whose format a database file is, "postgres" for one that stands for a database on a
/// server. Errors: those of opening.
TOLVA_EXPORT QString FormatOf(const QString& file);

/// Whether a database file has the format of that engine. Errors: those of opening, and 3265 when no engine of that
/// name makes files.
TOLVA_EXPORT bool HasFormat(const QString& file, const QString& engine);

/// The same into a database on a server that a file stands for (DBEngine::CreateLinkedDatabase) and that holds nothing
/// yet, in one transaction. Then put puts that file in the place of source; nobody can open the database before.
TOLVA_EXPORT void MoveIntoLinked(const QString& source, const QString& linkFile,
                                 const std::function<bool(qint64 done, qint64 total)>& advance,
                                 const std::function<void()>& put);
/// Opens a database whose move was cut off behind put; does nothing to any other.
TOLVA_EXPORT void FinishMoveIntoLinked(const QString& linkFile);

/// The same out of a database on a server that a file stands for, into a new file; nobody else changes it meanwhile.
/// Then the server's is closed, though kept, and put puts target in the place of the file that stood for it; what put
/// raises opens it again. Answers where on the server it is, in words. Errors: as ConvertDatabase, and 3260 when others
/// keep it busy.
TOLVA_EXPORT QString MoveOutOfLinked(const QString& linkFile, const QString& target, const QString& engine,
                                     const std::function<bool(qint64 done, qint64 total)>& advance,
                                     const std::function<void()>& put);

/// The same between stores that are open, in one transaction of the target, which holds no table of those names. What
/// is read back is compared outside that transaction, unless the target is in one of its caller's.
void CopyStore(engine::Store& source, engine::Store& target,
               const std::function<bool(qint64 done, qint64 total)>& advance);

} // namespace dao
