// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringView>

#include <optional>

namespace dao::jetsql
{

/// The day number (days since 30 December 1899, the time as the fraction) of what stands between number signs: a date,
/// a time, or both. None when it is no date.
///
/// Dates: 11/21/2026 (month first; where that is no date, such as 21/11/2026, the day first), 2026-11-21, 21 Nov 2026,
/// November 21, 2026, with / - . or blanks between. Two-digit years 00 to 29 are 2000 to 2029, 30 to 99 are 1930 to
/// 1999. Times: 14:30, 14:30:59, 2:30 PM. Month names are English whatever the machine's language, so that a
/// stored query means the same everywhere.
std::optional<double> ParseDateLiteral(QStringView text);

} // namespace dao::jetsql
