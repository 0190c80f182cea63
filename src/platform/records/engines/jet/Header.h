// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Octets.h"

namespace dao::jet
{

/// What the first page says of its file.
struct Header
{
    quint8 Version = 0; ///< 1 for Jet 4.
    bool IsAce = false; ///< The mark of the later format with the ending .accdb.
    quint16 CodePage = 0;
    quint32 EncodingKey = 0; ///< 0 when the pages are not encoded.
    bool HasPassword = false;
    quint16 Build = 0; ///< Of the engine that made the file.
    quint16 SortOrder = 0;
    quint8 SortVersion = 0;
    double Created = 0; ///< A day number.
};

inline constexpr int HeaderOctets = 0xA0; ///< As many as ReadHeader needs.
inline constexpr int CommitCountsAt = 0xE00;
inline constexpr int CommitCountsSize = 512;
inline constexpr int MaskedAt = 0x18;
inline constexpr int MaskedSize = 128;

/// Whether a file that begins with these octets is of the family, readable or not.
bool IsOfFamily(const QByteArray& firstOctets);
/// Fault when the octets are too few.
Header ReadHeader(const OctetView& firstPage);
/// Errors in words that say what to do: 3343 for the older and the later formats, 3251 for an encoded file and for one
/// with a password.
void RequireReadable(const Header& header, const QString& fileName);
/// Masks and unmasks the header's hidden octets, in place.
void Mask(char* masked);

} // namespace dao::jet
