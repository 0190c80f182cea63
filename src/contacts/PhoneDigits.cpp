// SPDX-License-Identifier: Apache-2.0
#include "contacts/PhoneDigits.h"

QString PhoneDigits(const QString& text)
{
    QString digits;
    for (const QChar character : text) {
        if (character.digitValue() >= 0)
            digits += QChar(u'0' + character.digitValue());
    }
    return digits;
}
