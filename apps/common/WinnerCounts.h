// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <map>
#include <utility>

namespace dao
{
class Database;
}

/// Whether the prizes of a station and its winners agree. They are two tables, which other software may write one after
/// the other: ended in between, it leaves a winner who is not counted, a unit that is not given back, or winners of a
/// prize that is deleted.
namespace WinnerCounts
{

/// One disagreement each, by what is wrong and the number of its row: its kind, and what it is and how it is put right
/// in words.
using Disagreements = std::map<std::pair<QString, qint32>, std::pair<QString, QString>>;

/// What disagrees now. Somebody who awards a prize at this moment shows up as well: only what stands there twice is
/// wrong. dao::Error when the tables cannot be read.
Disagreements Find(dao::Database& database);

} // namespace WinnerCounts
