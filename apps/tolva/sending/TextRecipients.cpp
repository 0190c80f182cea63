// SPDX-License-Identifier: Apache-2.0
#include "sending/TextRecipients.h"

#include "TextOfHtml.h"

#include <QRegularExpression>

QStringList TextRecipients(const cdo::Message& message)
{
    static const QRegularExpression separator(QStringLiteral("[,;]"));
    static const QRegularExpression inBrackets(QStringLiteral("<([^<>]*)>\\s*$"));
    static const QRegularExpression filling(QStringLiteral("[\\s()./-]"));
    static const QRegularExpression number(QStringLiteral("^\\+?[0-9]+$"));
    QStringList numbers;
    for (const QString& recipient : message.To().split(separator, Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = inBrackets.match(recipient);
        QString digits = match.hasMatch() ? match.captured(1) : recipient;
        digits.remove(filling);
        if (!number.match(digits).hasMatch())
            return {};
        if (!numbers.contains(digits))
            numbers.append(digits);
    }
    return numbers;
}

QString TextOfTextMessage(const cdo::Message& message)
{
    const QString body = message.TextBody();
    return body.isEmpty() ? TextOfHtml(message.HTMLBody()) : body;
}
