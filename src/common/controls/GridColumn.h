// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/FlexGrid.h"

#include <cstddef>

/// One column of a list's grid, a line of the list's table: what it is called, how wide it is, what it says. Row: what
/// the texts of a row are made of. Space: what the widths depend on. Rows stand in the order of the list's query.
template <typename Row, typename Space>
struct GridColumn
{
    const char* Caption;
    double (*Width)(const Space& space); ///< In twips; 0 hides it.
    QString (*Text)(const Row& row);
};

/// An empty grid of these columns and its heading.
template <typename Row, typename Space, std::size_t Count>
void MakeColumns(FlexGrid& grid, const GridColumn<Row, Space> (&columns)[Count])
{
    grid.SetRows(1);
    grid.SetCols(static_cast<int>(Count));
    for (std::size_t i = 0; i < Count; ++i) {
        const int column = static_cast<int>(i);
        grid.SetTextMatrix(0, column, QLatin1String(columns[i].Caption));
        grid.SetColAlignment(column, Qt::AlignLeft | Qt::AlignVCenter);
    }
}

template <typename Row, typename Space, std::size_t Count>
void SizeColumnsOf(FlexGrid& grid, const GridColumn<Row, Space> (&columns)[Count], const Space& space)
{
    for (std::size_t i = 0; i < Count; ++i)
        grid.SetColWidth(static_cast<int>(i), columns[i].Width(space));
}
