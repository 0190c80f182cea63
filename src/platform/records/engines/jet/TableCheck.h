// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/IndexCheck.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/UsageMap.h"

#include <map>
#include <set>

namespace dao::jet
{

/// What the tables of a file share in an examination.
struct CheckedFile
{
    PageFile& File;
    Findings& Found;
    PageOwners& Owners;
    int Maps = 0; ///< The owner of the pages on which maps stand.
    /// The octets of long values that may still be read: no more than the file has, or they overlap.
    qint64 LongOctetsLeft = 0;
};

/// Looks at one table: its maps, each of its pages, each row and value, and its indexes. Owns nothing.
class TableCheck
{
public:
    TableCheck(CheckedFile& checked, const CatalogueObject& object) : Checked_(checked), Object_(object) {}

    void Run();

private:
    /// A page map whose pages are claimed for somebody. Nothing, as a finding, when it cannot be read.
    void ClaimMapPage(quint32 pointer);
    std::vector<quint32> ClaimMap(quint32 pointer, int owner, const QString& whose);
    void RequirePartOf(quint32 freeMap, const std::vector<quint32>& owned, const QString& whose);
    void CheckColumns();
    void ClaimIndexes();
    void CheckPage(quint32 number);
    void CheckPageHeader(const DataPage& page);
    void CheckRow(RowPlace place, const DataPage& page, const DataPage::Slot& slot);
    void CheckMoves();
    void CheckValues(const RowCells& cells, RowPlace place);
    void CheckLongValue(const ColumnDefinition& column, const OctetView& stored, RowPlace place);
    void ExpectEntries(const RowCells& cells, RowPlace place);
    void CheckCounts();
    QString Named(const QString& what) const { return what + QStringLiteral(" of the table ") + Object_.Name; }

    CheckedFile& Checked_;
    const CatalogueObject& Object_;
    TableDefinition Table_;
    int Owner_ = 0;
    std::vector<quint32> Pages_;
    std::map<quint16, int> LongOwners_; ///< By the column's number.
    std::vector<int> IndexOwners_;
    std::vector<std::vector<ExpectedEntry>> Expected_; ///< For each index.
    std::set<RowPlace> Hidden_;                        ///< Rows that moved, and nobody has led to so far.
    std::set<quint32> Pieces_;                         ///< Of long values.
    std::vector<std::pair<RowPlace, RowPlace>> Moves_;
    qint64 Rows_ = 0;
    qint64 HighestCounter_ = 0;
};

} // namespace dao::jet
