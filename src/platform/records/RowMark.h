// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/StableHash.h"
#include "platform/records/RowFormat.h"

#include <bit>

namespace dao
{

/// A number made of what a cell says: the same in every process. 0 for Null and for a memo that was not read.
inline quint64 HashOf(const CellView& cell)
{
    switch (cell.CellKind) {
    case CellView::Kind::Integer:
        return std::bit_cast<quint64>(cell.Integer);
    case CellView::Kind::Real:
        return std::bit_cast<quint64>(cell.Real);
    case CellView::Kind::Text:
        return StableHash::Of(cell.Text);
    case CellView::Kind::Null:
    case CellView::Kind::Deferred:
        break;
    }
    return 0;
}

/// Makes one number of the numbers of a row's cells, or of those of rows, in their order. Never 0.
class RowMark
{
public:
    void Add(quint64 number) { Number_ = StableHash::Mixed(Number_, number); }
    quint64 Number() const { return Number_ == 0 ? 1 : Number_; }

private:
    quint64 Number_ = 1;
};

} // namespace dao
