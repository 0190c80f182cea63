// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The columns of the prizes list's grid. The first is the hidden key of the row.
enum PrizesListColumn
{
    colReference,
    colTitle,
    columnCount
};

/// Words and names that several sources of the prizes list share.
namespace PrizesListNames
{
inline const QString AllPrizes = QStringLiteral("<All Prizes>");
} // namespace PrizesListNames
