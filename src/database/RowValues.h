// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/ClockHelper.h"

#include <QVariant>

/// Values of a row as the records hold them: Null stands for a number's default and for no date. Pure functions.
namespace RowValues
{

inline qint32 NumberOr(const QVariant& value, qint32 whenNull)
{
    return value.isValid() ? value.toInt() : whenNull;
}

/// The local time of a stored universal one.
inline Date LocalDate(const QVariant& value)
{
    return ClockHelper::UTCToLocal(Date(value.isValid() ? value.toDouble() : 0.0));
}

/// The same, but a stored date of 0 or less is none, like Null.
inline Date LocalDateOrNone(const QVariant& value)
{
    return value.toDouble() > 0 ? LocalDate(value) : Date();
}

/// A stored date as it stands there; none for Null.
inline Date UniversalDate(const QVariant& value)
{
    return value.isValid() ? Date(value.toDouble()) : Date();
}

/// A universal date as it is stored: Null for none.
inline QVariant Stored(Date date)
{
    return date.IsNone() ? QVariant() : QVariant(date.DayNumber());
}

} // namespace RowValues
