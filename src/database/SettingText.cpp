// SPDX-License-Identifier: Apache-2.0
#include "database/SettingText.h"

#include <charconv>

QString SettingText(const QVariant& value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    return value.toString();
}

qint32 SettingNumber(const QVariant& value, qint32 whenUnreadable)
{
    bool isNumber = false;
    const double number = value.toString().trimmed().toDouble(&isNumber);
    return isNumber && qAbs(number) < 2147483648.0 ? static_cast<qint32>(number) : whenUnreadable;
}

bool SettingFlag(const QVariant& value, bool whenUnreadable)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true"))
        return true;
    if (text == QLatin1String("false"))
        return false;
    return SettingNumber(value, whenUnreadable ? 1 : 0) != 0;
}

QString StampText(Date date)
{
    QString text = QString::number(date.IsNone() ? 0.0 : date.DayNumber(), 'f', 8);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text;
}

Date StampDate(const QVariant& value)
{
    // As StampText writes it, which each tick of each list reads: several times as quick as asking a locale.
    const QString text = value.toString();
    const QByteArray digits = text.toLatin1();
    double day = 0;
    const auto read = std::from_chars(digits.cbegin(), digits.cend(), day);
    if (read.ec != std::errc() || read.ptr != digits.cend())
        day = text.toDouble();
    return day > 0 ? Date(day) : Date();
}
