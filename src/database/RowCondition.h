// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

/// Conditions of queries over a station's tables. Pure functions.
namespace RowCondition
{

/// Of the rows that bear one of these references, whatever holds them: "[Reference] IN (1,2,3)". None bears one of an
/// empty list.
template <typename References>
QString HasOneOf(const References& references)
{
    QStringList numbers;
    for (const qint32 reference : references)
        numbers.append(QString::number(reference));
    return numbers.isEmpty() ? QStringLiteral("[Reference] IS NULL")
                             : QStringLiteral("[Reference] IN (%1)").arg(numbers.join(u','));
}

} // namespace RowCondition
