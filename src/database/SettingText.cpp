#include "database/SettingText.h"

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
