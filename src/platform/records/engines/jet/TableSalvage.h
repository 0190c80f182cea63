// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/RowSalvage.h"

#include <map>

namespace dao::jet
{

/// A table of another file that the damaged one may have as well.
struct TableHint
{
    QString Name;
    TableDefinition Definition;
    QByteArray Properties;
};

/// The users' tables of a file that can be read whole; none of any other.
std::vector<TableHint> HintsFrom(const QString& fileName);

/// The pages of a file by what they say they are; maps and indexes are not asked.
struct PagesByOwner
{
    std::map<quint32, std::vector<quint32>> Rows; ///< By the table's page; in order.
    std::vector<quint32> Definitions;
};

/// Looks at each page of a file once. step: called for each.
PagesByOwner LookAtPages(PageFile& file, const std::function<void()>& step);

/// A table whose rows are to be saved.
struct FoundTable
{
    QString Name;
    TableDefinition Definition{};
    /// The definition is another file's, or one that is not as it was stored.
    bool NeedsSeals = false;
    bool HasRowCount = true; ///< What its definition counts is to be believed.
    QByteArray Properties{}; ///< Empty where nobody knows them.
    QStringList Notes{};
};

/// What a damaged file still tells of its tables.
struct FoundTables
{
    std::vector<FoundTable> Tables;
    QStringList Notes; ///< Of damage.
    QStringList LeftBehind;
    /// Pages of rows of tables of which nothing else is left.
    std::vector<quint32> Stray;
};

/// For how many rows the largest index of a table has entries; nothing when none can be walked to its end.
std::optional<qint64> CountEntries(PageFile& file, const TableDefinition& table);

/// Finds the users' tables by the list of tables, by definitions that it does not name, and by hints.
FoundTables FindTables(SalvagedFile& salvaged, const PagesByOwner& pages, const std::vector<TableHint>& hints);

} // namespace dao::jet
