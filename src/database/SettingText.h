// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QString>
#include <QVariant>

/// The text form in which a setting is stored: True and False, numbers with a point, texts as they stand.
QString SettingText(const QVariant& value);

/// A stored setting as a number or flag; whenUnreadable for text that is neither.
qint32 SettingNumber(const QVariant& value, qint32 whenUnreadable);
bool SettingFlag(const QVariant& value, bool whenUnreadable);

/// The stamp of a last change, which lists on other computers compare: the day number to eight decimal places, without
/// zeros at its end, empty for none.
QString StampText(Date date);
/// None for what is no stamp.
Date StampDate(const QVariant& value);
