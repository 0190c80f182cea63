#pragma once

#include <QString>
#include <QStringView>

#include <string_view>
#include <vector>

namespace dao::jetsql
{

/// A compiled LIKE pattern; immutable, any thread. `*` is any run of characters, `?` one character, `#` one digit 0 to
/// 9, `[abc]` and `[a-z]` one of a set, `[!abc]` one outside it. A `[` that is never closed stands for itself,
/// because patterns are built around what people type; `[[]` is the deliberate way to write one. `[]` is nothing.
///
/// Case is ignored in all of Unicode by simple folding, so "É" meets "é" and "Σ" meets both "σ" and "ς", while "ß" does
/// not meet "ss". A character is a code point. Time is at most proportional to the text times the pattern.
class LikePattern
{
public:
    explicit LikePattern(QStringView pattern);

    bool Matches(QStringView text) const;
    /// Octets that are no UTF-8 count as characters that only wildcards meet; encoded surrogates as themselves.
    bool MatchesUtf8(std::string_view text) const;

private:
    struct Range
    {
        char32_t First;
        char32_t Last;
    };
    /// What one character of the text is held against.
    struct Element
    {
        enum class Kind
        {
            Character,
            AnyCharacter,
            Digit,
            OneOf,
            NoneOf
        };
        Kind ElementKind;
        char32_t Character = 0; ///< Folded.
        std::vector<Range> Ranges;
    };
    /// The elements between two stars.
    struct Segment
    {
        std::vector<Element> Elements;
        std::string Ascii;             ///< The folded text, when all elements are ASCII characters; else empty.
        bool HasLongRelatives = false; ///< Has a letter that a character beyond ASCII folds to.
    };

    static bool Meets(const Element& element, char32_t character);
    qsizetype ReadClass(QStringView pattern, qsizetype start, Segment& segment) const;
    void Finish(Segment& segment);

    template <typename Reader>
    static bool MatchesAt(const Segment& segment, Reader& reader);
    template <typename Reader>
    static bool Find(const Segment& segment, Reader& reader);
    template <typename Reader>
    static bool MatchesEnd(const Segment& segment, Reader reader);
    template <typename Reader>
    bool MatchesAll(Reader reader) const;

    /// Never empty; one more than there are runs of stars. The first is bound to the beginning, the last to the end.
    std::vector<Segment> Segments_;
};

} // namespace dao::jetsql
