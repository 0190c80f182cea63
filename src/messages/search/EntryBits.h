// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/SearchIndex.h"
#include "platform/StableHash.h"

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

/// A number made of a row, which stands in it: a row that a disk changed is known by it.
inline qint64 ProofOf(qint64 document, const MessageState& state)
{
    quint64 proof = 1;
    for (const qint64 value : {document, qint64{state.Reference}, static_cast<qint64>(state.Content), state.Seconds,
                               qint64{state.Category}, qint64{Of(state)}})
        proof = StableHash::Mixed(proof, static_cast<quint64>(value));
    return static_cast<qint64>(proof);
}
} // namespace EntryBits
