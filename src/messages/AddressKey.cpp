// SPDX-License-Identifier: Apache-2.0
#include "messages/AddressKey.h"

#include "common/GeneralHelper.h"

#include <QStringList>

namespace
{
constexpr QLatin1Char Bar('|');

QString BareAddress(const QString& element)
{
    const qsizetype bracket = element.indexOf(QLatin1Char('<'));
    if (bracket <= 0)
        return element;
    QString address = element.mid(bracket);
    address.removeIf([](QChar c) { return c == QLatin1Char('<') || c == QLatin1Char('>') || c == QLatin1Char(' '); });
    return address;
}

QString SMSKeyEntry(const QString& address, const QString& country)
{
    QString number = GeneralHelper::NormalisePhoneNumber(address, 1, country);
    qsizetype zeros = 0;
    while (zeros < number.size() && number.at(zeros) == QLatin1Char('0'))
        ++zeros;
    return number.mid(zeros);
}
} // namespace

QString MakeAddressKey(const QString& addresses, enMsgType type, const QString& country)
{
    if (addresses.isEmpty())
        return QString();
    QStringList entries;
    const QStringList elements = addresses.split(QLatin1Char(','));
    for (const QString& element : elements) {
        const QString address = BareAddress(element);
        if (type == emtEmail) {
            entries.append(address);
        } else if (type == emtSMS && !address.isEmpty()) {
            const QString number = SMSKeyEntry(address, country);
            if (!number.isEmpty())
                entries.append(number);
        }
    }
    const QString key = entries.join(Bar);
    return key.isEmpty() ? key : Bar + key + Bar;
}

QString FitAddressKey(const QString& key, int size)
{
    if (key.size() <= size)
        return key;
    const qsizetype lastBar = key.lastIndexOf(Bar, size - 1);
    return lastBar > 0 ? key.left(lastBar + 1) : QString();
}
