// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TextForm.h"

#include "platform/records/TextCodec.h"

#include <algorithm>
#include <cstring>

namespace dao::jet
{

namespace
{

constexpr char CompressedMark[] = "\xFF\xFE";
constexpr qsizetype CompressedMarkSize = 2;
constexpr qsizetype FewestCompressed = 3;
constexpr qsizetype MostCompressed = 1024;

void AppendUnits(const OctetView& stored, QString& text)
{
    if (stored.Size() % 2 != 0)
        throw Fault(QStringLiteral("a text ends in half a character"));
    const qsizetype before = text.size();
    text.resize(before + stored.Size() / 2);
    qFromLittleEndian<quint16>(stored.Data(), stored.Size() / 2, text.data() + before);
}

/// Units that are all ASCII, an octet each; a null array where one is not.
QByteArray AsciiIn(const OctetView& units)
{
    const qsizetype count = units.Size() / 2;
    QByteArray octets(count, Qt::Uninitialized);
    const char* const from = units.Data();
    char* const to = octets.data();
    unsigned char lower = 0;
    unsigned char upper = 0;
    for (qsizetype i = 0; i < count; ++i) {
        to[i] = from[2 * i];
        lower |= static_cast<unsigned char>(from[2 * i]);
        upper |= static_cast<unsigned char>(from[2 * i + 1]);
    }
    return lower < 0x80 && upper == 0 ? octets : QByteArray();
}

bool IsMarked(const OctetView& stored)
{
    return stored.Size() >= CompressedMarkSize &&
           std::equal(CompressedMark, CompressedMark + CompressedMarkSize, stored.Data());
}

qsizetype ZeroFrom(const OctetView& octets, qsizetype at, qsizetype step)
{
    while (at < octets.Size() && octets.Data()[at] != 0)
        at += step;
    return std::min(at, octets.Size());
}

/// A zero changes between one octet a character and two, where it stands as a character's lower octet would.
QString Expanded(const OctetView& stored)
{
    QString text;
    bool isShort = true;
    for (qsizetype at = 0; at < stored.Size();) {
        const qsizetype end = ZeroFrom(stored, at, isShort ? 1 : 2);
        if (isShort)
            text += QString::fromLatin1(stored.Data() + at, end - at);
        else
            AppendUnits(stored.Part(at, end - at), text);
        isShort = !isShort;
        at = end + 1;
    }
    return text;
}

} // namespace

QByteArray Utf8FromStored(const OctetView& stored)
{
    if (IsMarked(stored)) {
        const OctetView octets = stored.From(CompressedMarkSize);
        const QByteArray copy = octets.Copy();
        return copy.contains('\0') ? TextToUtf8(Expanded(octets)) : OctetsToUtf8(copy);
    }
    // Most of them, mails above all.
    if (stored.Size() > 0 && stored.Size() % 2 == 0) {
        const QByteArray ascii = AsciiIn(stored);
        if (!ascii.isNull())
            return ascii;
    }
    QString text;
    AppendUnits(stored, text);
    return TextToUtf8(text);
}

bool ReadsFromItsBeginning(const OctetView& beginning)
{
    return !IsMarked(beginning) ||
           std::memchr(beginning.Data(), 0, static_cast<std::size_t>(beginning.Size())) == nullptr;
}

QByteArray StoredFromText(const QString& text, bool mayCompress)
{
    const bool isShort = mayCompress && text.size() >= FewestCompressed && text.size() <= MostCompressed &&
                         std::all_of(text.cbegin(), text.cend(),
                                     [](QChar unit) { return unit.unicode() >= 1 && unit.unicode() <= 0xFF; });
    if (isShort)
        return QByteArray(CompressedMark, CompressedMarkSize) + text.toLatin1();
    QByteArray stored(2 * text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        qToLittleEndian<quint16>(text.at(i).unicode(), stored.data() + 2 * i);
    return stored;
}

void AppendName(QByteArray& octets, const QString& name)
{
    const QByteArray stored = StoredFromText(name, false);
    Append(octets, static_cast<quint16>(stored.size()));
    octets += stored;
}

} // namespace dao::jet
