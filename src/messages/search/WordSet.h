// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <string>
#include <string_view>
#include <vector>

/// Words of a message, each once, in the order in which they came. A value of its owner.
class WordSet
{
public:
    /// No message is told from others by more; what comes behind them is left out.
    static constexpr std::size_t MostWords = 100'000;

    /// word: UTF-8 without blanks; an empty one is none.
    void Add(std::string_view word);
    std::size_t Count() const { return Words_.size(); }
    bool IsFull() const { return Words_.size() >= MostWords; }
    bool Contains(std::string_view word) const;
    /// All of them, divided by blanks.
    std::string_view Joined() const { return Joined_; }
    void Clear();

private:
    struct Place
    {
        std::size_t Begin;
        std::size_t Size;
    };

    std::string_view At(const Place& place) const { return std::string_view(Joined_).substr(place.Begin, place.Size); }
    std::size_t SlotOf(std::string_view word) const;
    void Widen();

    std::string Joined_;
    std::vector<Place> Words_;
    std::vector<quint32> Slots_; ///< By hash: a word's number from 1 on, 0 for none. A power of two, at most half full.
};
