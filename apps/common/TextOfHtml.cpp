// SPDX-License-Identifier: Apache-2.0
#include "TextOfHtml.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

namespace
{
QString CharacterOf(const QString& reference)
{
    static const QHash<QString, QString> named = {
        {QStringLiteral("amp"), QStringLiteral("&")},        {QStringLiteral("lt"), QStringLiteral("<")},
        {QStringLiteral("gt"), QStringLiteral(">")},         {QStringLiteral("quot"), QStringLiteral("\"")},
        {QStringLiteral("apos"), QStringLiteral("'")},       {QStringLiteral("nbsp"), QStringLiteral(" ")},
        {QStringLiteral("pound"), QStringLiteral("\u00A3")}, {QStringLiteral("euro"), QStringLiteral("\u20AC")},
        {QStringLiteral("copy"), QStringLiteral("\u00A9")},  {QStringLiteral("hellip"), QStringLiteral("\u2026")},
        {QStringLiteral("ndash"), QStringLiteral("\u2013")}, {QStringLiteral("mdash"), QStringLiteral("\u2014")},
        {QStringLiteral("lsquo"), QStringLiteral("\u2018")}, {QStringLiteral("rsquo"), QStringLiteral("\u2019")},
        {QStringLiteral("ldquo"), QStringLiteral("\u201C")}, {QStringLiteral("rdquo"), QStringLiteral("\u201D")},
    };
    if (!reference.startsWith(u'#'))
        return named.value(reference, u'&' + reference + u';');
    const bool isHexadecimal = reference.size() > 1 && reference.at(1).toLower() == u'x';
    bool isNumber = false;
    const char32_t character =
        isHexadecimal ? reference.mid(2).toUInt(&isNumber, 16) : reference.mid(1).toUInt(&isNumber);
    const bool isCharacter = isNumber && character > 0 && character <= 0x10FFFF && !QChar::isSurrogate(character);
    return isCharacter ? QString::fromUcs4(&character, 1) : QString(QChar::ReplacementCharacter);
}

QString ResolveReferences(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("&(#?[A-Za-z0-9]{1,10});"));
    QString result;
    qsizetype done = 0;
    for (auto it = pattern.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        result += QStringView(text).sliced(done, match.capturedStart() - done);
        result += CharacterOf(match.captured(1));
        done = match.capturedEnd();
    }
    result += QStringView(text).sliced(done);
    return result;
}

bool BeginsLine(const QString& element)
{
    static const QSet<QString> blocks = {QStringLiteral("br"),    QStringLiteral("p"),          QStringLiteral("div"),
                                         QStringLiteral("tr"),    QStringLiteral("li"),         QStringLiteral("h1"),
                                         QStringLiteral("h2"),    QStringLiteral("h3"),         QStringLiteral("h4"),
                                         QStringLiteral("ul"),    QStringLiteral("ol"),         QStringLiteral("hr"),
                                         QStringLiteral("table"), QStringLiteral("blockquote"), QStringLiteral("pre")};
    return blocks.contains(element);
}

/// The position behind an element whose content is no text, such as a script.
qsizetype BehindElement(const QString& html, const QString& element, qsizetype position)
{
    const qsizetype closing = html.indexOf(QStringLiteral("</") + element, position, Qt::CaseInsensitive);
    const qsizetype end = closing < 0 ? -1 : html.indexOf(u'>', closing);
    return end < 0 ? html.size() : end + 1;
}

/// The blank lines that blocks within blocks leave, and the blanks of the page's own layout.
QString Tidied(const QString& text)
{
    QStringList lines;
    for (const QString& line : text.split(u'\n')) {
        const QString words = line.simplified();
        if (!words.isEmpty() || (!lines.isEmpty() && !lines.last().isEmpty()))
            lines.append(words);
    }
    return lines.join(u'\n').trimmed();
}
} // namespace

QString TextOfHtml(const QString& html)
{
    QString text;
    qsizetype position = 0;
    while (position < html.size()) {
        const qsizetype tag = html.indexOf(u'<', position);
        QString words = html.mid(position, tag < 0 ? -1 : tag - position);
        // Line ends of the page are blanks; only elements begin lines.
        words.replace(u'\n', u' ').replace(u'\r', u' ');
        text += ResolveReferences(words);
        if (tag < 0)
            break;
        if (QStringView(html).sliced(tag).startsWith(u"<!--")) {
            const qsizetype end = html.indexOf(QStringLiteral("-->"), tag);
            position = end < 0 ? html.size() : end + 3;
            continue;
        }
        qsizetype nameEnd = tag + 1;
        while (nameEnd < html.size() && (html.at(nameEnd).isLetterOrNumber() || html.at(nameEnd) == u'/'))
            ++nameEnd;
        const QString element = html.mid(tag + 1, nameEnd - tag - 1).toLower().remove(u'/');
        const qsizetype end = html.indexOf(u'>', nameEnd);
        position = end < 0 ? html.size() : end + 1;
        const bool isClosing = tag + 1 < html.size() && html.at(tag + 1) == u'/';
        if (!isClosing && (element == u"script" || element == u"style" || element == u"head" || element == u"title"))
            position = BehindElement(html, element, position);
        if (BeginsLine(element))
            text += u'\n';
        else if (element == u"td" || element == u"th")
            text += u' ';
    }
    return Tidied(text);
}
