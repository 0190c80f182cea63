// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

/// The free functions that everything shares: the diagnostics log, the one way of reporting a failure, temporary file
/// names, key-value texts and a checked rename.

/// What a line does to the indent of the log.
enum class IndentAction : qint16
{
    Leave = 0,
    RaiseAfter = 1,
    LowerBefore = 2,
    ResetBefore = 3
};

/// Appends one line to today's diagnostics log when the debug level (GeneralHelper::DebugMode) asks for it: 0 logs
/// nothing, -1 everything, otherwise lines up to that level; a line of level -1 counts as 5. The file is opened and
/// closed for every line, so that the line survives the process. A failed write is ignored; a folder that cannot be
/// made is shown to the user at every line. From level 10 on a line has the process's memory in bytes as well: working
/// set and page file (see ProcessMemory), each to the right of 10 places.
TOLVA_EXPORT void WriteDebugLog(const QString& text, int level = 1, IndentAction action = IndentAction::Leave);

/// Tells the user and the log "There was a problem " + text, and the description of the error when there is one.
/// text: present participle, such as "opening the database". silent: no message box; the log is written all the
/// same. Returns the full text. description: the pending error's own words, which are told with the number in
/// brackets; without them the system is asked for its text of the number (some numbers of the engine are the system's
/// as well, and mean something else there). 0: no error, whatever description says.
TOLVA_EXPORT QString ReportProblem(const QString& text, int errorNumber, bool silent,
                                   const QString& description = QString());

/// The name of a fresh file in folder (empty: the user's temporary folder), made by this call unless an extension other
/// than "tmp" is asked for (then the name is free and the file does not exist yet). Empty when that fails.
TOLVA_EXPORT QString GetTempFile(const QString& folder, const QString& extension);

/// The value of one key in a short text of key="value" entries; empty when the key is absent. The key is found as a
/// whole word: at the start of the text or after the delimiter. A quoted value ends at its closing quote, another at
/// the next delimiter. The quotes are never part of it; unquote takes off those that
/// the value has itself, which this form cannot hold. The search is a plain one: it also finds what looks like the key
/// within a quoted value.
TOLVA_EXPORT QString GetKeyValue(const QString& text, const QString& key, const QString& delimiter, bool unquote = true,
                                 const QString& separator = QStringLiteral("="));
/// The same with the key compared without regard to case.
TOLVA_EXPORT QString GetKeyValueCaseInsensitive(const QString& text, const QString& key, const QString& delimiter,
                                                bool unquote = true, const QString& separator = QStringLiteral("="));

/// Renames a file to a name that is free. Both names need a folder. Refusals are shown to the user. False when nothing
/// was renamed.
TOLVA_EXPORT bool RenameWithChecks(const QString& oldName, const QString& newName);
