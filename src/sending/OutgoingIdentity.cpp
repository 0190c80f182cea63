// SPDX-License-Identifier: Apache-2.0
#include "sending/OutgoingIdentity.h"

#include "messages/cMessage.h"

#include <QCryptographicHash>

namespace
{
constexpr qsizetype LongestIdentity = 250; // within a text field
}

QString OutgoingIdentity(const cMessage& message)
{
    const cdo::Message& mail = *message.CDOMessage();
    const QString messageID = mail.MessageID().trimmed();
    if (!messageID.isEmpty() && messageID.size() <= LongestIdentity)
        return messageID;
    QCryptographicHash digest(QCryptographicHash::Sha256);
    for (const QString& text : {messageID, mail.From(), mail.To(), mail.CC(), mail.BCC(), mail.Subject(),
                                mail.Header("Date"), mail.TextBody()}) {
        digest.addData(text.toUtf8());
        // Two neighbours are never taken for two others that read the same when they are joined.
        digest.addData(QByteArray(1, '\0'));
    }
    return QString::fromLatin1(digest.result().toHex());
}
