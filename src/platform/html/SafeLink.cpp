// SPDX-License-Identifier: Apache-2.0
#include "platform/html/SafeLink.h"

#include <QUrl>

namespace
{
constexpr qsizetype LongestAddress = 8192;

bool IsInvisible(QChar character)
{
    return character.isSpace() || character.category() == QChar::Other_Control ||
           character.category() == QChar::Other_Format || character.category() == QChar::Other_NotAssigned;
}

/// The first characters without those that cannot be seen, in lower case: enough to know the scheme by.
QString VisibleStart(const QString& address)
{
    constexpr qsizetype Enough = 64;
    QString start;
    for (const QChar character : address) {
        if (start.size() == Enough)
            break;
        if (!IsInvisible(character))
            start += character.toLower();
    }
    return start;
}

QString WithoutInvisible(const QString& address)
{
    QString text;
    for (const QChar character : address.trimmed()) {
        if (character == u' ')
            text += QStringLiteral("%20");
        else if (!IsInvisible(character))
            text += character;
    }
    return text;
}

bool IsActive(QStringView scheme)
{
    for (const char* name : {"javascript", "data", "vbscript", "file", "livescript", "mocha", "about", "blob",
                             "filesystem", "view-source", "jar", "res", "mhtml", "mk", "ms-its", "shell"}) {
        if (scheme == QLatin1String(name))
            return true;
    }
    return false;
}
} // namespace

SafeLink ReadLink(const QString& address)
{
    const QString start = VisibleStart(address);
    if (start.startsWith(u'#'))
        return {LinkKind::Place, QString()};
    const qsizetype colon = start.indexOf(u':');
    const QStringView scheme = QStringView(start).left(std::max(colon, qsizetype{0}));
    if (IsActive(scheme))
        return {LinkKind::Active, QString()};
    const bool isMail = scheme == u"mailto";
    if ((!isMail && scheme != u"http" && scheme != u"https") || address.size() > LongestAddress)
        return {};

    const QUrl url(WithoutInvisible(address), QUrl::TolerantMode);
    if (!url.isValid() || url.scheme() != scheme || (isMail ? url.path().isEmpty() : url.host().isEmpty()))
        return {};
    return {LinkKind::Safe, QString::fromLatin1(url.toEncoded())};
}

QString ContentIDOf(const QString& address)
{
    const QString trimmed = address.trimmed();
    if (trimmed.size() > LongestAddress || !trimmed.startsWith(QLatin1String("cid:"), Qt::CaseInsensitive))
        return {};
    QString id = QUrl::fromPercentEncoding(trimmed.mid(4).toUtf8()).trimmed();
    if (id.startsWith(u'<') && id.endsWith(u'>'))
        id = id.mid(1, id.size() - 2);
    return id;
}
