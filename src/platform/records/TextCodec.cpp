// SPDX-License-Identifier: Apache-2.0
#include "platform/records/TextCodec.h"

#include "platform/Ascii.h"
#include "platform/records/Error.h"

namespace dao
{

namespace
{

bool HasLoneSurrogate(const QString& text)
{
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const QChar unit = text.at(i);
        if (!unit.isSurrogate())
            continue;
        if (unit.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate())
            ++i;
        else
            return true;
    }
    return false;
}

/// Whether UTF-8 text holds the three-octet form of a surrogate, ED A0..BF xx.
bool HasEncodedSurrogate(std::string_view utf8)
{
    const char* at = utf8.data();
    const char* const end = at + utf8.size();
    while (at != end) {
        at = static_cast<const char*>(std::memchr(at, 0xED, static_cast<std::size_t>(end - at)));
        if (at == nullptr)
            return false;
        if (end - at >= 3 && static_cast<unsigned char>(at[1]) >= 0xA0)
            return true;
        ++at;
    }
    return false;
}

void AppendThreeOctets(QByteArray& utf8, char16_t unit)
{
    utf8.append(static_cast<char>(0xE0 | (unit >> 12)));
    utf8.append(static_cast<char>(0x80 | ((unit >> 6) & 0x3F)));
    utf8.append(static_cast<char>(0x80 | (unit & 0x3F)));
}

} // namespace

QByteArray TextToUtf8(const QString& text)
{
    if (!HasLoneSurrogate(text))
        return text.toUtf8();
    QByteArray utf8;
    utf8.reserve(text.size() * 3);
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (!unit.isSurrogate())
            continue;
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        utf8.append(QStringView(text).mid(start, i - start).toUtf8());
        AppendThreeOctets(utf8, unit.unicode());
        start = i + 1;
    }
    utf8.append(QStringView(text).mid(start).toUtf8());
    return utf8;
}

QString TextFromUtf8(std::string_view utf8)
{
    if (!HasEncodedSurrogate(utf8))
        return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    QString text;
    text.reserve(static_cast<qsizetype>(utf8.size()));
    std::size_t start = 0;
    for (std::size_t i = 0; i + 2 < utf8.size(); ++i) {
        const auto first = static_cast<unsigned char>(utf8[i]);
        const auto second = static_cast<unsigned char>(utf8[i + 1]);
        const auto third = static_cast<unsigned char>(utf8[i + 2]);
        if (first != 0xED || second < 0xA0 || (third & 0xC0) != 0x80)
            continue;
        text.append(QString::fromUtf8(utf8.data() + start, static_cast<qsizetype>(i - start)));
        text.append(QChar(static_cast<char16_t>(0xD000 | ((second & 0x3F) << 6) | (third & 0x3F))));
        i += 2;
        start = i + 1;
    }
    text.append(QString::fromUtf8(utf8.data() + start, static_cast<qsizetype>(utf8.size() - start)));
    return text;
}

QByteArray OctetsToUtf8(const QByteArray& octets)
{
    if (IsAscii(octets))
        return octets;
    qsizetype wide = 0;
    for (const char octet : octets)
        wide += (static_cast<unsigned char>(octet) >> 7);
    QByteArray utf8(octets.size() + wide, Qt::Uninitialized);
    char* out = utf8.data();
    for (const char octet : octets) {
        const auto value = static_cast<unsigned char>(octet);
        if (value < 0x80) {
            *out++ = octet;
        } else {
            *out++ = static_cast<char>(0xC0 | (value >> 6));
            *out++ = static_cast<char>(0x80 | (value & 0x3F));
        }
    }
    return utf8;
}

QByteArray OctetsFromUtf8(const QByteArray& utf8)
{
    if (IsAscii(utf8))
        return utf8;
    QByteArray octets(utf8.size(), Qt::Uninitialized);
    char* out = octets.data();
    const char* const end = utf8.constData() + utf8.size();
    for (const char* at = utf8.constData(); at != end; ++at) {
        const auto first = static_cast<unsigned char>(*at);
        if (first < 0x80) {
            *out++ = *at;
            continue;
        }
        if ((first != 0xC2 && first != 0xC3) || at + 1 == end)
            throw Error(errTypeMismatch, QStringLiteral("Type mismatch: the text has characters above U+00FF."));
        ++at;
        *out++ = static_cast<char>(((first & 0x03) << 6) | (static_cast<unsigned char>(*at) & 0x3F));
    }
    octets.truncate(out - octets.constData());
    return octets;
}

QByteArray OctetsIfAll(std::string_view utf8)
{
    std::size_t wide = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto first = static_cast<unsigned char>(utf8[i]);
        if (first < 0x80)
            continue;
        if ((first != 0xC2 && first != 0xC3) || ++i == utf8.size() ||
            (static_cast<unsigned char>(utf8[i]) & 0xC0U) != 0x80U)
            return {};
        ++wide;
    }
    QByteArray octets(static_cast<qsizetype>(utf8.size() - wide), Qt::Uninitialized);
    char* out = octets.data();
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto first = static_cast<unsigned char>(utf8[i]);
        *out++ = first < 0x80
                     ? utf8[i]
                     : static_cast<char>(((first & 0x03U) << 6U) | (static_cast<unsigned char>(utf8[++i]) & 0x3FU));
    }
    return octets;
}

QByteArray OctetsFromAnything(const QByteArray& utf8)
{
    QByteArray octets(utf8.size(), Qt::Uninitialized);
    char* out = octets.data();
    const char* const end = utf8.constData() + utf8.size();
    for (const char* at = utf8.constData(); at != end; ++at) {
        const auto first = static_cast<unsigned char>(*at);
        const auto second = at + 1 == end ? 0U : static_cast<unsigned char>(at[1]);
        if ((first == 0xC2 || first == 0xC3) && (second & 0xC0U) == 0x80U) {
            *out++ = static_cast<char>(((first & 0x03U) << 6U) | (second & 0x3FU));
            ++at;
        } else {
            *out++ = *at;
        }
    }
    octets.truncate(out - octets.constData());
    return utf8.isNull() ? QByteArray() : octets;
}

} // namespace dao
