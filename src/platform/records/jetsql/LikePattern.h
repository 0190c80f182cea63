// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <QStringView>

#include <memory>
#include <string_view>

namespace dao::jetsql
{

/// A compiled LIKE pattern; immutable, cheap to copy, any thread. `*` is any run of characters, `?` one character, `#`
/// one digit 0 to 9, `[abc]` and `[a-z]` one of a set, `[!abc]` one outside it. A `[` that is never closed
/// stands for itself, because patterns are built around what people type; `[[]` is the deliberate way to write one, as
/// `[*]`, `[?]` and `[#]` are for the others. `[]` is nothing, `[!]` an exclamation mark, `[z-a]` the same as `[a-z]`.
///
/// Case is ignored in all of Unicode by simple folding, so "É" meets "é" and "Σ" meets both "σ" and "ς", while "ß" does
/// not meet "ss". A character is a code point. Time is at most the text's length times the pattern's.
class LikePattern
{
public:
    explicit LikePattern(QStringView pattern);
    /// Matches what any of the patterns matches; nothing when there are none.
    explicit LikePattern(const QStringList& patterns);

    bool Matches(QStringView text) const;
    /// Octets that are no UTF-8 count as characters that only wildcards meet; surrogates in UTF-8 form as themselves.
    bool MatchesUtf8(std::string_view text) const;

private:
    struct Program;
    std::shared_ptr<const Program> Program_;
};

} // namespace dao::jetsql
