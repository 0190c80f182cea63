// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"
#include "common/kvGeneral.h"

#include <QStringList>

#include <algorithm>

namespace
{
QString WithDelimiterInFront(const QString& text, const QString& delimiter)
{
    return text.startsWith(delimiter, Qt::CaseInsensitive) ? text : delimiter + text;
}

QString Find(const QString& text, const QString& key, const QString& delimiter, const QString& separator,
             Qt::CaseSensitivity sensitivity)
{
    const QString whole = WithDelimiterInFront(text, delimiter);
    const QString wanted = WithDelimiterInFront(key, delimiter) + separator;
    const qsizetype found = whole.indexOf(wanted, 0, sensitivity);
    if (found < 0)
        return {};
    const qsizetype start = found + wanted.size();
    qsizetype next = 0;
    if (start >= whole.size() || whole.at(start) != u'"')
        return GeneralHelper::NextToken(whole, start, delimiter, next);
    return GeneralHelper::NextToken(whole, start + 1, QStringLiteral("\""), next);
}

/// The nearest value that the form can hold: it has no way to write a double quote or a line end within a value.
QString Storable(QString value)
{
    for (QChar& character : value) {
        if (character == u'"')
            character = u'\'';
        else if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
                 character == QChar::ParagraphSeparator)
            character = u' ';
    }
    return value;
}

/// The entries of a text with one blank between them; blanks within quotes part nothing.
QStringList Entries(const QString& text)
{
    QStringList entries;
    QString entry;
    bool quoted = false;
    for (const QChar character : text) {
        if (character == u'"')
            quoted = !quoted;
        if (character == u' ' && !quoted) {
            entries.append(entry);
            entry.clear();
        } else {
            entry += character;
        }
    }
    if (quoted) // a text that was cut: what is added behind it must not become part of the value
        entry += u'"';
    entries.append(entry);
    entries.removeAll(QString());
    return entries;
}

/// Puts entry in place of the first one that begins with start, takes any further ones out, or appends it.
void Replace(QStringList& entries, const QString& start, const QString& entry, Qt::CaseSensitivity sensitivity)
{
    const auto isThisKey = [&](const QString& other) { return other.startsWith(start, sensitivity); };
    const auto first = std::find_if(entries.begin(), entries.end(), isThisKey);
    if (first == entries.end()) {
        entries.append(entry);
        return;
    }
    *first = entry;
    entries.erase(std::remove_if(first + 1, entries.end(), isThisKey), entries.end());
}
} // namespace

QString GetKeyValue(const QString& text, const QString& key, const QString& delimiter, bool, const QString& separator)
{
    return Find(text, key, delimiter, separator, Qt::CaseSensitive);
}

QString GetKeyValueCaseInsensitive(const QString& text, const QString& key, const QString& delimiter, bool,
                                   const QString& separator)
{
    return Find(text, key, delimiter, separator, Qt::CaseInsensitive);
}

QString GeneralHelper::SetKeyValue(const QString& text, const QString& key, const QString& value)
{
    const QString stored = Storable(value);
    const bool quoted = stored.isEmpty() || stored.contains(u' ');
    const QString entry = key + (quoted ? QStringLiteral("=\"") + stored + u'"' : u'=' + stored);
    QStringList entries = Entries(text);
    Replace(entries, key + u'=', entry, Qt::CaseSensitive);
    const QString result = entries.join(u' ');
    // Another entry's value may hold what looks like this key; in front nothing hides it.
    if (GetKeyValue(result, key, QStringLiteral(" ")) == stored)
        return result;
    entries.removeOne(entry);
    entries.prepend(entry);
    return entries.join(u' ');
}

QString GeneralHelper::SetLineKeyValue(const QString& text, const QString& key, const QString& value)
{
    const QString lineEnd = text.contains(u"\r\n") ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QStringList lines;
    for (const QString& line : QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")).split(u'\n'))
        lines.append(line);
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    Replace(lines, key + u'=', key + QStringLiteral("=\"") + Storable(value) + u'"', Qt::CaseInsensitive);
    return lines.join(lineEnd);
}
