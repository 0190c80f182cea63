// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace dao::jetsql
{

/// Looks for one ASCII text in many others without regard to the case of A to Z. Works on octets and allocates nothing,
/// so it suits rows by the hundred thousand. Immutable; any thread.
class AsciiSearch
{
public:
    AsciiSearch() = default;
    /// folded: not empty, in lower case, all below U+0080.
    explicit AsciiSearch(std::string folded);

    bool IsEmpty() const { return Needle_.empty(); }
    std::size_t Size() const { return Needle_.size(); }
    /// Whether another character beyond ASCII folds to one of the letters here: U+212A to k and U+017F to s.
    bool HasRelatives() const { return HasRelatives_; }

    /// The octet at which the text first occurs, or npos. Relatives are not seen.
    std::size_t Find(std::string_view text) const;

private:
    bool MeetsAt(const char* text) const;

    std::string Needle_;
    bool HasRelatives_ = false;
    /// An octet of the needle and the bit that its other case differs by (0 where there is none).
    struct Probe
    {
        unsigned char Octet = 0;
        unsigned char CaseBit = 0;
    };
    static Probe MakeProbe(char octet);
    Probe First_;
    Probe Last_;
};

/// Whether a text has U+212A or U+017F.
bool HasRelativesOfAscii(std::string_view text);

} // namespace dao::jetsql
