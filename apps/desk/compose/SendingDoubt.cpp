// SPDX-License-Identifier: Apache-2.0
#include "SendingDoubt.h"

#include <QObject>
#include <QRegularExpression>
#include <QSet>

namespace
{
/// The lines that the window did not open with, and that quote nobody.
QString OwnText(const Composition& written, const Composition& begun)
{
    const QStringList before = begun.Body.split(u'\n');
    const QSet<QString> given(before.begin(), before.end());
    QStringList own;
    for (const QString& line : written.Body.split(u'\n')) {
        if (!line.startsWith(u'>') && !given.contains(line) && !line.trimmed().isEmpty())
            own.append(line);
    }
    return own.join(u'\n');
}

bool SpeaksOfFiles(const QString& text)
{
    // The words of the language, divided by blanks.
    for (const QString& word : QObject::tr("attached attachment attachments").split(u' ', Qt::SkipEmptyParts)) {
        const QRegularExpression whole(QStringLiteral("\\b%1\\b").arg(QRegularExpression::escape(word)),
                                       QRegularExpression::CaseInsensitiveOption |
                                           QRegularExpression::UseUnicodePropertiesOption);
        if (text.contains(whole))
            return true;
    }
    return false;
}
} // namespace

QString SendingDoubt(const Composition& written, const Composition& begun)
{
    if (!written.Files.isEmpty())
        return QString();
    if (written.Subject.trimmed().isEmpty() && written.Body.trimmed().isEmpty())
        return QObject::tr("This message has neither a subject nor a text.");
    const QString own = OwnText(written, begun);
    const bool isReply = !begun.InReplyTo.isEmpty();
    if (isReply && own.isEmpty())
        return QObject::tr("You have written nothing in this reply.");
    if (SpeaksOfFiles(own))
        return QObject::tr("The text speaks of an attachment, and there is none.");
    return QString();
}
