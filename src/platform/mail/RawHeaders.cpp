// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/RawHeaders.h"

#include "platform/Ascii.h"
#include "platform/mail/HeaderBlock.h"
#include "platform/mail/HeaderText.h"

namespace cdo
{

namespace
{
/// A character in an encoded word of its own, the longest that mailers write.
constexpr qsizetype OctetsOfCharacter = 20;
constexpr qsizetype LongestEncodedWord = 1000;

bool IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r' && c != '\v');
}

/// Whether what follows the field begins with the octets there, so that the field ends where it seems to.
bool IsWholeField(const QByteArray& octets, const HeaderField& field)
{
    return field.End < octets.size() && octets.at(field.End) != ' ' && octets.at(field.End) != '\t';
}
} // namespace

QByteArray RawHeader(const QByteArray& octets, const HeaderField& field, qsizetype mostCharacters, bool* isWhole)
{
    qsizetype begin = field.ValueBegin;
    while (begin < field.End && IsSpace(octets.at(begin)))
        ++begin;
    const qsizetype length = field.End - begin;
    const qsizetype most = mostCharacters * OctetsOfCharacter + LongestEncodedWord;
    QByteArray value = octets.mid(begin, qMin(length, most));
    if (length <= most)
        return value;
    // Not within an encoded word.
    value.truncate(qMax(value.lastIndexOf(' '), most - LongestEncodedWord));
    if (isWhole != nullptr)
        *isWhole = false;
    return value;
}

QList<QByteArray> RawHeaders(const QByteArray& octets, const QList<QByteArray>& names, qsizetype mostCharacters)
{
    const HeaderBlock block(octets);
    QList<QByteArray> values;
    for (const QByteArray& name : names) {
        const HeaderField* field = block.Find(octets, name);
        values.append(field == nullptr ? QByteArray() : RawHeader(octets, *field, mostCharacters));
    }
    return values;
}

std::optional<QList<QByteArray>> RawHeadersOfBeginning(const QByteArray& utf8, bool isWhole,
                                                       const QList<QByteArray>& names, qsizetype mostCharacters)
{
    const HeaderBlock block(utf8);
    // With the empty line, or the end of the mail, all of the header is there.
    const bool hasAll = isWhole || block.IsTerminated();
    qsizetype end = hasAll ? block.End() : 0;
    QList<QByteArray> values;
    for (const QByteArray& name : names) {
        const HeaderField* field = block.Find(utf8, name);
        if (!hasAll && (field == nullptr || !IsWholeField(utf8, *field)))
            return std::nullopt;
        end = field == nullptr ? end : qMax(end, field->End);
        values.append(field == nullptr ? QByteArray() : RawHeader(utf8, *field, mostCharacters));
    }
    return IsAscii(QByteArrayView(utf8).first(end)) ? std::optional(values) : std::nullopt;
}

QString Cut(const QString& text, qsizetype mostCharacters)
{
    if (text.size() <= mostCharacters)
        return text;
    return text.left(text.at(mostCharacters - 1).isHighSurrogate() ? mostCharacters - 1 : mostCharacters);
}

QString DecodedHeader(QByteArrayView name, const QByteArray& raw, qsizetype mostCharacters, bool* isWhole)
{
    const QString text = IsAddressField(name) ? DecodeAddresses(raw) : DecodeHeader(raw);
    if (isWhole != nullptr && text.size() > mostCharacters)
        *isWhole = false;
    return Cut(text, mostCharacters);
}

} // namespace cdo
