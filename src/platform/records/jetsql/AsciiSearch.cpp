// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/AsciiSearch.h"

#include "platform/Ascii.h"
#include "platform/records/jetsql/CaseFolding.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace dao::jetsql
{

AsciiSearch::AsciiSearch(std::string folded)
    : Needle_(std::move(folded)),
      HasRelatives_(Needle_.find_first_of("ks") != std::string::npos),
      First_(MakeProbe(Needle_.front())),
      Last_(MakeProbe(Needle_.back()))
{
}

AsciiSearch::Probe AsciiSearch::MakeProbe(char octet)
{
    const bool isLetter = octet >= 'a' && octet <= 'z';
    return {static_cast<unsigned char>(octet), static_cast<unsigned char>(isLetter ? 0x20 : 0)};
}

bool AsciiSearch::MeetsAt(const char* text) const
{
    for (std::size_t i = 0; i < Needle_.size(); ++i) {
        if (FoldAscii(static_cast<unsigned char>(text[i])) != static_cast<unsigned char>(Needle_[i]))
            return false;
    }
    return true;
}

std::size_t AsciiSearch::Find(std::string_view text) const
{
    if (text.size() < Needle_.size())
        return std::string_view::npos;
    const std::size_t places = text.size() - Needle_.size() + 1;
    const char* const first = text.data();
    const char* const last = first + Needle_.size() - 1;
    std::size_t place = 0;
#if defined(__SSE2__)
    // Sixteen places at a time by their first and last octet; the rest of the needle is compared only where both are
    // right.
    const __m128i firstOctet = _mm_set1_epi8(static_cast<char>(First_.Octet));
    const __m128i firstBit = _mm_set1_epi8(static_cast<char>(First_.CaseBit));
    const __m128i lastOctet = _mm_set1_epi8(static_cast<char>(Last_.Octet));
    const __m128i lastBit = _mm_set1_epi8(static_cast<char>(Last_.CaseBit));
    for (; place + 16 <= places; place += 16) {
        const __m128i firsts = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first + place));
        const __m128i lasts = _mm_loadu_si128(reinterpret_cast<const __m128i*>(last + place));
        const __m128i right = _mm_and_si128(_mm_cmpeq_epi8(_mm_or_si128(firsts, firstBit), firstOctet),
                                            _mm_cmpeq_epi8(_mm_or_si128(lasts, lastBit), lastOctet));
        for (unsigned int mask = static_cast<unsigned int>(_mm_movemask_epi8(right)); mask != 0; mask &= mask - 1) {
            const std::size_t candidate = place + static_cast<std::size_t>(std::countr_zero(mask));
            if (MeetsAt(first + candidate))
                return candidate;
        }
    }
#endif
    for (; place < places; ++place) {
        if ((static_cast<unsigned char>(first[place]) | First_.CaseBit) == First_.Octet &&
            (static_cast<unsigned char>(last[place]) | Last_.CaseBit) == Last_.Octet && MeetsAt(first + place))
            return place;
    }
    return std::string_view::npos;
}

bool HasRelativesOfAscii(std::string_view text)
{
    return !IsAscii(text) &&
           (text.find("\xC5\xBF") != std::string_view::npos || text.find("\xE2\x84\xAA") != std::string_view::npos);
}

} // namespace dao::jetsql
