// SPDX-License-Identifier: Apache-2.0
#include "commands/JsonDate.h"

#include <QDateTime>

QJsonValue JsonDate(Date universal)
{
    if (universal.IsNone())
        return QJsonValue();
    return universal.ToDateTime(Qt::UTC).toString(Qt::ISODate);
}
