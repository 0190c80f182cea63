// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

/// Numbers made of values that are the same in every process and on every day, so that they may be kept: Qt's own
/// hashes begin with another seed in each. Not for secrets.
namespace StableHash
{
/// Takes a value into a number that stands for those before it.
inline std::uint64_t Mixed(std::uint64_t number, std::uint64_t value)
{
    number = (number ^ value) * 0x9E3779B97F4A7C15ULL;
    return number ^ (number >> 29);
}

inline std::uint64_t Of(std::string_view octets)
{
    std::uint64_t hash = Mixed(1, octets.size());
    std::size_t place = 0;
    for (; place + sizeof(std::uint64_t) <= octets.size(); place += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, octets.data() + place, sizeof word);
        hash = Mixed(hash, word);
    }
    for (; place < octets.size(); ++place)
        hash = Mixed(hash, static_cast<unsigned char>(octets[place]));
    return hash;
}
} // namespace StableHash
