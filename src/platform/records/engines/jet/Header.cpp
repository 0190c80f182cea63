// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/Header.h"

#include "platform/records/Error.h"

#include <array>
#include <cstring>
#include <numeric>

namespace dao::jet
{

namespace
{

constexpr int MarkAt = 4;
constexpr char JetMark[] = "Standard Jet DB"; // With the closing zero.
constexpr char AceMark[] = "Standard ACE DB";
constexpr int VersionAt = 0x14;
constexpr quint8 Jet3 = 0;
constexpr quint8 Jet4 = 1;
constexpr int PasswordAt = 0x42;
constexpr int PasswordSize = 40;
constexpr int CreatedAt = 0x72;

/// The octets that RC4 makes of the format's fixed key.
std::array<quint8, MaskedSize> MakeKeyStream()
{
    constexpr std::array<quint8, 4> Key{0xC7, 0xDA, 0x39, 0x6B};
    std::array<quint8, 256> state{};
    std::iota(state.begin(), state.end(), quint8(0));
    for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
        j = (j + state[i] + Key[i % Key.size()]) % state.size();
        std::swap(state[i], state[j]);
    }
    std::array<quint8, MaskedSize> stream{};
    std::size_t i = 0;
    std::size_t j = 0;
    for (quint8& octet : stream) {
        i = (i + 1) % state.size();
        j = (j + state[i]) % state.size();
        std::swap(state[i], state[j]);
        octet = state[static_cast<quint8>(state[i] + state[j])];
    }
    return stream;
}

/// A file without a password holds the mask itself there, which the day of its creation gives.
bool HoldsPassword(const OctetView& page, double created)
{
    const bool isDay = created > -2147483648.0 && created < 2147483648.0; // False for what is no number as well.
    const qint32 day = isDay ? static_cast<qint32>(created) : 0;
    for (int at = 0; at < PasswordSize; at += 4) {
        if (page.Read<qint32>(PasswordAt + at) != day)
            return true;
    }
    return false;
}

} // namespace

void Mask(char* masked)
{
    static const std::array<quint8, MaskedSize> stream = MakeKeyStream();
    for (const quint8 octet : stream) {
        *masked = static_cast<char>(static_cast<quint8>(*masked) ^ octet);
        ++masked;
    }
}

bool IsOfFamily(const QByteArray& firstOctets)
{
    return firstOctets.size() > VersionAt && firstOctets.startsWith(QByteArray("\0\1\0\0", 4)) &&
           (std::memcmp(firstOctets.constData() + MarkAt, JetMark, sizeof(JetMark)) == 0 ||
            std::memcmp(firstOctets.constData() + MarkAt, AceMark, sizeof(AceMark)) == 0);
}

Header ReadHeader(const OctetView& firstPage)
{
    QByteArray octets = firstPage.Part(0, HeaderOctets).Copy();
    Mask(octets.data() + MaskedAt);
    const OctetView page(octets);
    Header header;
    header.Version = page.U8(VersionAt);
    header.IsAce = std::memcmp(page.Data() + MarkAt, AceMark, sizeof(AceMark)) == 0;
    header.CodePage = page.U16(0x3C);
    header.EncodingKey = page.U32(0x3E);
    header.Created = page.Read<double>(CreatedAt);
    header.HasPassword = HoldsPassword(page, header.Created);
    header.Build = page.U16(0x6A);
    header.SortOrder = page.U16(0x6E);
    header.SortVersion = page.U8(0x71);
    return header;
}

void RequireReadable(const Header& header, const QString& fileName)
{
    if (header.IsAce || header.Version > Jet4) {
        throw Error(errUnrecognisedFormat,
                    QStringLiteral("'%1' has the format of later office programs (.accdb). Save it there in the format "
                                   "of 2000 or of 2002-2003 (.mdb) and open that file.")
                        .arg(fileName));
    }
    if (header.Version == Jet3) {
        throw Error(errUnrecognisedFormat,
                    QStringLiteral("'%1' has the format of 1997 or older (Jet 3). Convert it to the format of 2000 or "
                                   "of 2002-2003 with the office program that it comes from and open that file.")
                        .arg(fileName));
    }
    if (header.EncodingKey != 0) {
        throw Error(errNotSupported, QStringLiteral("'%1' is encoded. Decode it with the office program that it comes "
                                                    "from, or compact it there without encoding, and try again.")
                                         .arg(fileName));
    }
    if (header.HasPassword) {
        throw Error(errNotSupported, QStringLiteral("'%1' is protected by a password. Take the password away with the "
                                                    "office program that it comes from and try again.")
                                         .arg(fileName));
    }
}

} // namespace dao::jet
