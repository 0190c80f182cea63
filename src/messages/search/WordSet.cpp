// SPDX-License-Identifier: Apache-2.0
#include "messages/search/WordSet.h"

#include <functional>

namespace
{
constexpr std::size_t FewestSlots = 256;
} // namespace

/// Where the word stands, or would.
std::size_t WordSet::SlotOf(std::string_view word) const
{
    const std::size_t mask = Slots_.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(word) & mask;
    while (Slots_[slot] != 0 && At(Words_[Slots_[slot] - 1]) != word)
        slot = (slot + 1) & mask;
    return slot;
}

void WordSet::Widen()
{
    Slots_.assign(Slots_.empty() ? FewestSlots : Slots_.size() * 2, 0);
    for (std::size_t i = 0; i < Words_.size(); ++i)
        Slots_[SlotOf(At(Words_[i]))] = static_cast<quint32>(i + 1);
}

void WordSet::Add(std::string_view word)
{
    if (word.empty() || IsFull())
        return;
    if (Words_.size() * 2 >= Slots_.size())
        Widen();
    const std::size_t slot = SlotOf(word);
    if (Slots_[slot] != 0)
        return;
    if (!Joined_.empty())
        Joined_ += ' ';
    Words_.push_back({Joined_.size(), word.size()});
    Joined_ += word;
    Slots_[slot] = static_cast<quint32>(Words_.size());
}

bool WordSet::Contains(std::string_view word) const
{
    return !Words_.empty() && Slots_[SlotOf(word)] != 0;
}

void WordSet::Clear()
{
    Joined_.clear();
    Words_.clear();
    Slots_.clear();
}
