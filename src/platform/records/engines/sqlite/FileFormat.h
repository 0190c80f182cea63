// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QtGlobal>

/// The fixed points of our files; docs/record-store.md describes them.
namespace dao::sqlite
{

/// "TLV1" at offset 68 of the file.
inline constexpr quint32 ApplicationId = 0x544C5631;
/// Of the files that are made: their memos carry checks. Files of the version before have none; they stay as they are
/// until they are compacted.
inline constexpr int FormatVersion = 2;
inline constexpr int FormatVersionWithoutChecks = 1;
inline constexpr char VersionText[] = "1.0";

/// How the names of all that is ours begin. Tables and fields of the user may not.
inline constexpr char16_t ReservedMark = u'~';
/// SQLite's name for a table's row id, which no field may take.
inline constexpr char RowIdName[] = "_rowid_";
inline constexpr char VersionColumn[] = "\"~version\"";
/// The size of all of a row's memos together, so that a row can be read with its memos only where they are small. Null
/// when it is not known.
inline constexpr char OctetsColumn[] = "\"~octets\"";
/// How the name of the column begins that holds the check of a memo; the memo's name follows. Null beside a memo that
/// is Null, else MemoCheck of the row id and the memo's octets.
inline constexpr char CheckColumnMark[] = "~check.";
/// Memos of up to this size are read along with a row that was looked up.
inline constexpr int SmallMemoOctets = 65536;

} // namespace dao::sqlite
