// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/SearchIndex.h"

#include <cstring>
#include <string_view>

/// How the index stores what is either so or not, and how it knows that what stands in it is what was written.
namespace EntryBits
{
inline constexpr quint8 SMS = 1;
inline constexpr quint8 Unread = 2;
inline constexpr quint8 Files = 4;

inline quint8 Of(const MessageState& state)
{
    return static_cast<quint8>((state.IsSMS ? SMS : 0) | (state.IsUnread ? Unread : 0) | (state.HasFiles ? Files : 0));
}

inline void Take(quint8 bits, MessageState& state)
{
    state.IsSMS = (bits & SMS) != 0;
    state.IsUnread = (bits & Unread) != 0;
    state.HasFiles = (bits & Files) != 0;
}

inline quint64 Mixed(quint64 number, quint64 value)
{
    number = (number ^ value) * 0x9E3779B97F4A7C15ULL;
    return number ^ (number >> 29);
}

/// Of any octets, the same in every process.
inline quint64 HashOf(std::string_view octets)
{
    quint64 hash = Mixed(1, octets.size());
    std::size_t place = 0;
    for (; place + sizeof(quint64) <= octets.size(); place += sizeof(quint64)) {
        quint64 word = 0;
        std::memcpy(&word, octets.data() + place, sizeof word);
        hash = Mixed(hash, word);
    }
    for (; place < octets.size(); ++place)
        hash = Mixed(hash, static_cast<unsigned char>(octets[place]));
    return hash;
}

/// A number made of a row, which stands in it: a row that a disk changed is known by it.
inline qint64 ProofOf(qint64 document, const MessageState& state)
{
    quint64 proof = 1;
    for (const qint64 value : {document, qint64{state.Reference}, static_cast<qint64>(state.Content), state.Seconds,
                               qint64{state.Category}, qint64{Of(state)}})
        proof = Mixed(proof, static_cast<quint64>(value));
    return static_cast<qint64>(proof);
}
} // namespace EntryBits
