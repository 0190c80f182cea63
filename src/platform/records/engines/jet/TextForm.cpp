// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TextForm.h"

#include "platform/records/TextCodec.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr char Mark[] = "\xFF\xFE";
constexpr qsizetype MarkSize = 2;
constexpr qsizetype FewestCompressed = 3;
constexpr qsizetype MostCompressed = 1024;

void AppendUnits(const OctetView& stored, QString& text)
{
    if (stored.Size() % 2 != 0)
        throw Fault(QStringLiteral("a text ends in half a character"));
    const qsizetype before = text.size();
    text.resize(before + stored.Size() / 2);
    for (qsizetype i = 0; i < stored.Size() / 2; ++i)
        text[before + i] = QChar(stored.U16(2 * i));
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
    if (stored.Size() >= MarkSize && std::equal(Mark, Mark + MarkSize, stored.Data())) {
        const OctetView octets = stored.From(MarkSize);
        const QByteArray copy = octets.Copy();
        return copy.contains('\0') ? TextToUtf8(Expanded(octets)) : OctetsToUtf8(copy);
    }
    QString text;
    AppendUnits(stored, text);
    return TextToUtf8(text);
}

QByteArray StoredFromText(const QString& text, bool mayCompress)
{
    const bool isShort = mayCompress && text.size() >= FewestCompressed && text.size() <= MostCompressed &&
                         std::all_of(text.cbegin(), text.cend(),
                                     [](QChar unit) { return unit.unicode() >= 1 && unit.unicode() <= 0xFF; });
    if (isShort)
        return QByteArray(Mark, MarkSize) + text.toLatin1();
    QByteArray stored(2 * text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        qToLittleEndian<quint16>(text.at(i).unicode(), stored.data() + 2 * i);
    return stored;
}

} // namespace dao::jet
