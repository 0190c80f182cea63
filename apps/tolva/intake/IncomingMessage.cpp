// SPDX-License-Identifier: Apache-2.0
#include "intake/IncomingMessage.h"

#include <QByteArrayView>

namespace
{
constexpr int LinesLookedAt = 50;
constexpr qsizetype OctetsLookedAt = qsizetype{64} * 1024;

bool IsNameOctet(char octet)
{
    return (octet >= 'a' && octet <= 'z') || (octet >= 'A' && octet <= 'Z') || (octet >= '0' && octet <= '9') ||
           octet == '-' || octet == '_' || octet == '.';
}

/// "Name:", also with blanks before the colon, as careless senders write it.
bool IsHeaderField(QByteArrayView line)
{
    qsizetype i = 0;
    while (i < line.size() && IsNameOctet(line.at(i)))
        ++i;
    const qsizetype nameLength = i;
    while (i < line.size() && (line.at(i) == ' ' || line.at(i) == '\t'))
        ++i;
    return nameLength > 0 && i < line.size() && line.at(i) == ':';
}
} // namespace

QString WhyNotMail(const QByteArray& octets)
{
    if (octets.isEmpty())
        return QStringLiteral("is empty");
    const QByteArrayView head = QByteArrayView(octets).first(qMin(octets.size(), OctetsLookedAt));
    qsizetype start = head.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    bool isAllBlank = true;
    for (int line = 0; line < LinesLookedAt && start < head.size(); ++line) {
        qsizetype end = head.indexOf('\n', start);
        if (end < 0)
            end = head.size();
        const QByteArrayView text = head.sliced(start, end - start).trimmed();
        if (IsHeaderField(head.sliced(start, end - start)))
            return QString();
        // Blank lines may stand before the header; the first one behind it ends it.
        if (text.isEmpty() && !isAllBlank)
            break;
        isAllBlank = isAllBlank && text.isEmpty();
        start = end + 1;
    }
    return isAllBlank && head.size() == octets.size() ? QStringLiteral("is empty")
                                                      : QStringLiteral("is not a mail message");
}

void RemoveEnvelopeLine(QByteArray& octets)
{
    if (!octets.startsWith("From "))
        return;
    const qsizetype end = octets.indexOf('\n');
    if (end >= 0 && end + 1 < octets.size())
        octets.remove(0, end + 1);
}
