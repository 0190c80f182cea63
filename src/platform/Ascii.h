// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArrayView>

#include <cstring>
#include <string_view>

/// Whether all octets are ASCII (0x00 to 0x7F). At the speed of the memory, for whole mails are asked about.
inline bool IsAscii(std::string_view octets)
{
    // Blocks large enough for the compiler to make vector operations of them.
    constexpr std::size_t Words = 16;
    constexpr std::size_t Block = Words * sizeof(quint64);
    const char* at = octets.data();
    std::size_t left = octets.size();
    for (; left >= Block; left -= Block, at += Block) {
        quint64 words[Words];
        std::memcpy(words, at, Block);
        quint64 seen = 0;
        for (const quint64 word : words)
            seen |= word;
        if ((seen & Q_UINT64_C(0x8080808080808080)) != 0)
            return false;
    }
    quint64 seen = 0;
    for (; left >= sizeof(quint64); left -= sizeof(quint64), at += sizeof(quint64)) {
        quint64 word = 0;
        std::memcpy(&word, at, sizeof word);
        seen |= word;
    }
    for (; left > 0; --left, ++at)
        seen |= static_cast<unsigned char>(*at);
    return (seen & Q_UINT64_C(0x8080808080808080)) == 0;
}

inline bool IsAscii(QByteArrayView octets)
{
    return IsAscii(std::string_view(octets.data(), static_cast<std::size_t>(octets.size())));
}
