// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/MessageIdentities.h"

#include <QRegularExpression>

QStringList cdo::MessageIdentities(const QString& header)
{
    static const QRegularExpression identity(QStringLiteral("<[^<>\\s]+>"));
    QStringList identities;
    for (auto it = identity.globalMatch(header); it.hasNext();)
        identities.append(it.next().captured());
    return identities;
}
