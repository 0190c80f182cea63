// SPDX-License-Identifier: Apache-2.0
#include "platform/html/PlainText.h"

#include "platform/html/SafeLink.h"

namespace
{
constexpr qsizetype LongestLinkedAddress = 2048;
/// Longer than any address, so that none is broken.
constexpr qsizetype LongestWord = 3000;
constexpr qsizetype LongestMailbox = 64;

/// Controls but tab and line ends, and the places of objects and frames in a rich text.
bool IsForbidden(char16_t character)
{
    if (character < 0x20)
        return character != u'\t' && character != u'\n' && character != u'\r';
    return character == 0x7F || character == 0xFFFC || character >= 0xFFFE ||
           (character >= 0xFDD0 && character <= 0xFDEF);
}

bool IsAddressCharacter(QChar character)
{
    return !character.isSpace() && character.isPrint() &&
           !QStringView(u"<>\"`{}|\\^\u201C\u201D\u00AB\u00BB").contains(character);
}

bool IsMailboxCharacter(QChar character)
{
    return character.isLetterOrNumber() || QStringView(u".!#$%&'*+/=?^_-~").contains(character);
}

bool IsHostCharacter(QChar character)
{
    return character.isLetterOrNumber() || character == u'.' || character == u'-';
}

bool StartsAt(const QString& text, qsizetype position, QLatin1String word)
{
    return QStringView(text).mid(position, word.size()).compare(word, Qt::CaseInsensitive) == 0;
}

/// The end of an address that begins at begin, without the punctuation of the sentence around it.
qsizetype EndOfAddress(const QString& text, qsizetype begin)
{
    qsizetype end = begin;
    int round = 0;
    int square = 0;
    while (end < text.size() && end - begin < LongestLinkedAddress && IsAddressCharacter(text.at(end))) {
        const QChar character = text.at(end);
        round += character == u'(' ? 1 : character == u')' ? -1 : 0;
        square += character == u'[' ? 1 : character == u']' ? -1 : 0;
        // A bracket that was opened before the address ends it.
        if (round < 0 || square < 0)
            break;
        ++end;
    }
    while (end > begin && QStringView(u".,;:!?'*_\u2019\u2026([").contains(text.at(end - 1)))
        --end;
    return end;
}

qsizetype EndOfHost(const QString& text, qsizetype begin)
{
    qsizetype end = begin;
    while (end < text.size() && end - begin < 255 && IsHostCharacter(text.at(end)))
        ++end;
    while (end > begin && !text.at(end - 1).isLetterOrNumber())
        --end;
    return end;
}

/// The address around an "@" that stands at this place; Length is 0 when there is none. Looks back no further than
/// first.
TextLink MailAddressAt(const QString& text, qsizetype at, qsizetype first)
{
    qsizetype begin = at;
    while (begin > first && at - begin < LongestMailbox && IsMailboxCharacter(text.at(begin - 1)))
        --begin;
    while (begin < at && !text.at(begin).isLetterOrNumber())
        ++begin;
    const qsizetype end = EndOfHost(text, at + 1);
    const QStringView host = QStringView(text).mid(at + 1, end - at - 1);
    if (begin == at || !host.contains(u'.') || host.startsWith(u'.') || host.contains(u".."))
        return {};
    const SafeLink link = ReadLink(QStringLiteral("mailto:") + text.mid(begin, end - begin));
    return link.Kind == LinkKind::Safe ? TextLink{begin, end - begin, link.Address} : TextLink{};
}

/// scanned: as far as there is no use in looking again.
TextLink WebAddressAt(const QString& text, qsizetype begin, qsizetype* scanned)
{
    const bool isBare = StartsAt(text, begin, QLatin1String("www."));
    const bool isWeb =
        isBare || StartsAt(text, begin, QLatin1String("http://")) || StartsAt(text, begin, QLatin1String("https://"));
    if (!isWeb && !StartsAt(text, begin, QLatin1String("mailto:")))
        return {};
    const qsizetype end = EndOfAddress(text, begin);
    *scanned = end;
    const QString address = text.mid(begin, end - begin);
    if (isBare && address.count(u'.') < 2)
        return {};
    if (!isWeb && !address.contains(u'@'))
        return {};
    const SafeLink link = ReadLink(isBare ? QStringLiteral("http://") + address : address);
    return link.Kind == LinkKind::Safe ? TextLink{begin, end - begin, link.Address} : TextLink{};
}
} // namespace

QList<TextLink> FindLinks(const QString& text)
{
    QList<TextLink> links;
    qsizetype done = 0;
    qsizetype scanned = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t character = text.at(i).unicode();
        TextLink link;
        if (character == u'@') {
            link = MailAddressAt(text, i, done);
        } else if (character == u'h' || character == u'H' || character == u'm' || character == u'M' ||
                   character == u'w' || character == u'W') {
            if (i >= scanned && (i == 0 || !text.at(i - 1).isLetterOrNumber()))
                link = WebAddressAt(text, i, &scanned);
        }
        if (link.Length == 0)
            continue;
        links.append(link);
        done = link.Position + link.Length;
        i = done - 1;
    }
    return links;
}

QString CleanText(const QString& text)
{
    QString clean;
    clean.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (character == u'\r') {
            if (i + 1 == text.size() || text.at(i + 1) != u'\n')
                clean += u'\n';
        } else if (!IsForbidden(character.unicode())) {
            clean += character;
        }
    }
    return clean;
}

QString EscapedText(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size() + text.size() / 16);
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'&':
            escaped += QLatin1String("&amp;");
            break;
        case u'<':
            escaped += QLatin1String("&lt;");
            break;
        case u'>':
            escaped += QLatin1String("&gt;");
            break;
        case u'"':
            escaped += QLatin1String("&quot;");
            break;
        default:
            if (!IsForbidden(character.unicode()))
                escaped += character;
        }
    }
    return escaped;
}

QString HtmlOfPlainText(const QString& text)
{
    const QString clean = CleanText(text);
    QString html = QStringLiteral("<div style=\"white-space:pre-wrap\">");
    qsizetype end = 0;
    for (const TextLink& link : FindLinks(clean)) {
        html += EscapedText(clean.mid(end, link.Position - end));
        html += QStringLiteral("<a href=\"%1\">%2</a>")
                    .arg(EscapedText(link.Address), EscapedText(clean.mid(link.Position, link.Length)));
        end = link.Position + link.Length;
    }
    return html + EscapedText(clean.mid(end)) + QStringLiteral("</div>");
}

QString BreakLongWords(const QString& text, qsizetype* wordLength)
{
    QString broken;
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i).isSpace()) {
            *wordLength = 0;
        } else if (++*wordLength > LongestWord && !text.at(i).isLowSurrogate()) {
            broken += QStringView(text).mid(copied, i - copied);
            broken += QChar(0x200B);
            copied = i;
            *wordLength = 1;
        }
    }
    if (broken.isEmpty())
        return text;
    broken += QStringView(text).mid(copied);
    return broken;
}
