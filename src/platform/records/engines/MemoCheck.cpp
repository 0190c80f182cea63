// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/MemoCheck.h"

#include <QtEndian>

#include <array>
#include <cstring>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define TOLVA_CRC_INSTRUCTION
#include <nmmintrin.h>
#endif

namespace dao::engine
{

namespace
{

constexpr quint32 Polynomial = 0x82F63B78; // with its bits in reverse
constexpr std::size_t Slices = 8;
using Table = std::array<std::array<quint32, 256>, Slices>;

/// Table[k][v]: what the octet v adds to the sum when k octets follow it.
constexpr Table MakeTable()
{
    Table table{};
    for (quint32 value = 0; value < 256; ++value) {
        quint32 sum = value;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? Polynomial : 0U);
        table[0][value] = sum;
    }
    for (std::size_t slice = 1; slice < Slices; ++slice) {
        for (std::size_t value = 0; value < 256; ++value) {
            const quint32 before = table[slice - 1][value];
            table[slice][value] = (before >> 8U) ^ table[0][before & 0xFFU];
        }
    }
    return table;
}

constexpr Table SliceTable = MakeTable();

#ifdef TOLVA_CRC_INSTRUCTION
__attribute__((target("sse4.2"))) quint32 Crc32cByInstruction(std::string_view octets, quint32 sum)
{
    quint64 state = ~sum;
    const char* at = octets.data();
    std::size_t left = octets.size();
    for (; left >= sizeof(quint64); left -= sizeof(quint64), at += sizeof(quint64)) {
        quint64 word = 0;
        std::memcpy(&word, at, sizeof(word));
        state = _mm_crc32_u64(state, word);
    }
    auto narrow = static_cast<quint32>(state);
    for (; left > 0; --left, ++at)
        narrow = _mm_crc32_u8(narrow, static_cast<unsigned char>(*at));
    return ~narrow;
}
#endif

} // namespace

quint32 Crc32cByTable(std::string_view octets, quint32 sum)
{
    quint32 state = ~sum;
    const auto* at = reinterpret_cast<const unsigned char*>(octets.data());
    std::size_t left = octets.size();
    for (; left >= Slices; left -= Slices, at += Slices) {
        const quint32 low = qFromLittleEndian<quint32>(at) ^ state;
        const quint32 high = qFromLittleEndian<quint32>(at + 4);
        state = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            state ^= SliceTable[7 - i][(low >> (8 * i)) & 0xFFU];
            state ^= SliceTable[3 - i][(high >> (8 * i)) & 0xFFU];
        }
    }
    for (; left > 0; --left, ++at)
        state = (state >> 8U) ^ SliceTable[0][(state ^ *at) & 0xFFU];
    return ~state;
}

quint32 Crc32c(std::string_view octets, quint32 sum)
{
#ifdef TOLVA_CRC_INSTRUCTION
    static const bool hasInstruction = __builtin_cpu_supports("sse4.2") != 0;
    if (hasInstruction)
        return Crc32cByInstruction(octets, sum);
#endif
    return Crc32cByTable(octets, sum);
}

MemoSum::MemoSum(qint64 rowId)
{
    std::array<char, sizeof(qint64)> id{};
    qToLittleEndian(rowId, id.data());
    Sum_ = Crc32c({id.data(), id.size()});
}

qint64 MemoCheck(qint64 rowId, std::string_view utf8)
{
    MemoSum sum(rowId);
    sum.Add(utf8);
    return sum.Value();
}

} // namespace dao::engine
