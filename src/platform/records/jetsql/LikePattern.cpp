// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/LikePattern.h"

#include "platform/records/jetsql/AsciiSearch.h"
#include "platform/records/jetsql/CaseFolding.h"

#include <algorithm>
#include <type_traits>
#include <vector>

namespace dao::jetsql
{
namespace
{
struct CharacterRange
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
    Kind ElementKind = Kind::Character;
    char32_t Character = 0; ///< Folded.
    std::vector<CharacterRange> Ranges{};
};

/// The elements between two stars.
struct Segment
{
    std::vector<Element> Elements;
    AsciiSearch Ascii; ///< The whole segment where it is nothing but ASCII characters, else empty.
};

bool IsInRanges(const std::vector<CharacterRange>& ranges, char32_t character)
{
    return std::any_of(ranges.begin(), ranges.end(), [character](const CharacterRange& range) {
        return character >= range.First && character <= range.Last;
    });
}

bool IsInSet(const Element& element, char32_t character)
{
    if (IsInRanges(element.Ranges, character))
        return true;
    // A range such as [A-Z] holds the cases as written, so each case of the character is tried.
    return character < firstInvalid &&
           (IsInRanges(element.Ranges, Fold(character)) || IsInRanges(element.Ranges, QChar::toLower(character)) ||
            IsInRanges(element.Ranges, QChar::toUpper(character)));
}

bool MeetsElement(const Element& element, char32_t character)
{
    switch (element.ElementKind) {
    case Element::Kind::Character:
        return Fold(character) == element.Character;
    case Element::Kind::AnyCharacter:
        return true;
    case Element::Kind::Digit:
        return character >= U'0' && character <= U'9';
    case Element::Kind::OneOf:
        return IsInSet(element, character);
    case Element::Kind::NoneOf:
        return !IsInSet(element, character);
    }
    return false;
}

/// Leaves the reader behind the segment, or anywhere when it does not match.
template <typename Reader>
bool MatchesHere(const Segment& segment, Reader& reader)
{
    for (const Element& element : segment.Elements) {
        if (reader.AtEnd() || !MeetsElement(element, reader.Next()))
            return false;
    }
    return true;
}

template <typename Reader>
bool FindByCharacters(const Segment& segment, Reader& reader)
{
    while (true) {
        Reader attempt = reader;
        if (MatchesHere(segment, attempt)) {
            reader = attempt;
            return true;
        }
        if (reader.AtEnd())
            return false;
        reader.Next();
    }
}

/// Moves the reader behind the first place where the segment matches.
template <typename Reader>
bool FindFirst(const Segment& segment, Reader& reader)
{
    if constexpr (std::is_same_v<Reader, Utf8Reader>) {
        if (!segment.Ascii.IsEmpty()) {
            const std::string_view rest = reader.Rest();
            const std::size_t place = segment.Ascii.Find(rest);
            // An earlier place may be spelt with characters that only fold to ASCII.
            if (!segment.Ascii.HasRelatives() || !HasRelativesOfAscii(rest.substr(0, place))) {
                if (place == std::string_view::npos)
                    return false;
                reader.MoveTo(rest.data() + place + segment.Ascii.Size());
                return true;
            }
        }
    }
    return FindByCharacters(segment, reader);
}

template <typename Reader>
bool MatchesEnd(const Segment& segment, Reader reader)
{
    if (segment.Elements.empty())
        return true;
    std::size_t characters = 0;
    for (Reader counter = reader; !counter.AtEnd(); counter.Next())
        ++characters;
    if (characters < segment.Elements.size())
        return false;
    for (std::size_t surplus = characters - segment.Elements.size(); surplus > 0; --surplus)
        reader.Next();
    return MatchesHere(segment, reader);
}

/// Takes the stretch of a pattern between two stars apart.
class SegmentCompiler
{
public:
    explicit SegmentCompiler(QStringView pattern) : Pattern_(pattern) {}

    std::vector<Segment> Compile()
    {
        std::vector<Segment> segments(1);
        while (Next_ < Pattern_.size()) {
            const QChar character = Pattern_[Next_];
            if (character == u'*') {
                ++Next_;
                // Several stars in a row are one; the empty segment between them would only cost time.
                if (segments.size() == 1 || !segments.back().Elements.empty())
                    segments.emplace_back();
                continue;
            }
            ReadElement(segments.back().Elements);
        }
        for (Segment& segment : segments)
            PrepareSearch(segment);
        return segments;
    }

private:
    void ReadElement(std::vector<Element>& elements)
    {
        const QChar character = Pattern_[Next_];
        if (character == u'[' && ReadClass(elements))
            return;
        if (character == u'?' || character == u'#') {
            ++Next_;
            elements.push_back({character == u'?' ? Element::Kind::AnyCharacter : Element::Kind::Digit});
            return;
        }
        elements.push_back({Element::Kind::Character, Fold(TakeCharacter())});
    }

    char32_t TakeCharacter()
    {
        const char16_t first = Pattern_[Next_++].unicode();
        if (!QChar::isHighSurrogate(first) || Next_ >= Pattern_.size() || !Pattern_[Next_].isLowSurrogate())
            return first;
        return QChar::surrogateToUcs4(first, Pattern_[Next_++].unicode());
    }

    /// False, and nothing taken, when the bracket is never closed.
    bool ReadClass(std::vector<Element>& elements)
    {
        const qsizetype end = EndOfClass();
        if (end < 0)
            return false;
        ++Next_;
        Element element;
        element.ElementKind = Element::Kind::OneOf;
        if (Pattern_[Next_] == u'!' && Next_ + 1 < end) {
            element.ElementKind = Element::Kind::NoneOf;
            ++Next_;
        }
        while (Next_ < end) {
            const char32_t first = TakeCharacter();
            char32_t last = first;
            if (Next_ + 1 < end && Pattern_[Next_] == u'-') {
                ++Next_;
                last = TakeCharacter();
            }
            element.Ranges.push_back({std::min(first, last), std::max(first, last)});
        }
        ++Next_;
        if (!element.Ranges.empty())
            elements.push_back(std::move(element));
        return true;
    }

    /// Of the class that begins at the place reached; what lies behind the last ] of the pattern is looked for once.
    qsizetype EndOfClass()
    {
        if (NothingCloses_)
            return -1;
        const qsizetype end = Pattern_.indexOf(u']', Next_ + 1);
        NothingCloses_ = end < 0;
        return end;
    }

    static void PrepareSearch(Segment& segment)
    {
        std::string ascii;
        for (const Element& element : segment.Elements) {
            if (element.ElementKind != Element::Kind::Character || element.Character >= 0x80)
                return;
            ascii.push_back(static_cast<char>(element.Character));
        }
        if (!ascii.empty())
            segment.Ascii = AsciiSearch(std::move(ascii));
    }

    QStringView Pattern_;
    qsizetype Next_ = 0;
    bool NothingCloses_ = false;
};
} // namespace

struct LikePattern::Program
{
    /// One pattern taken apart.
    struct Alternative
    {
        explicit Alternative(QStringView pattern) : Segments(SegmentCompiler(pattern).Compile())
        {
            IsPlainSearch = Segments.size() == 3 && Segments.front().Elements.empty() && !Segments[1].Ascii.IsEmpty() &&
                            Segments.back().Elements.empty();
        }

        /// One more than there are runs of stars. The first is bound to the text's beginning, the last to its end.
        std::vector<Segment> Segments;
        /// ASCII text between two stars, the form that most searches have.
        bool IsPlainSearch = false;

        /// Each segment between stars is taken where it first matches: what a later place could still reach, this one
        /// can. So there is no going back.
        template <typename Reader>
        bool Matches(Reader reader) const
        {
            if (!MatchesHere(Segments.front(), reader))
                return false;
            if (Segments.size() == 1)
                return reader.AtEnd();
            for (std::size_t i = 1; i + 1 < Segments.size(); ++i) {
                if (!FindFirst(Segments[i], reader))
                    return false;
            }
            return MatchesEnd(Segments.back(), reader);
        }

        bool MatchesUtf8(std::string_view text) const
        {
            if (!IsPlainSearch)
                return Matches(Utf8Reader(text));
            const AsciiSearch& search = Segments[1].Ascii;
            if (search.Find(text) != std::string_view::npos)
                return true;
            return search.HasRelatives() && HasRelativesOfAscii(text) && Matches(Utf8Reader(text));
        }
    };
    std::vector<Alternative> Alternatives;
};

LikePattern::LikePattern(QStringView pattern)
{
    Program program;
    program.Alternatives.emplace_back(pattern);
    Program_ = std::make_shared<const Program>(std::move(program));
}

LikePattern::LikePattern(const QStringList& patterns)
{
    Program program;
    program.Alternatives.reserve(static_cast<std::size_t>(patterns.size()));
    for (const QString& pattern : patterns)
        program.Alternatives.emplace_back(pattern);
    Program_ = std::make_shared<const Program>(std::move(program));
}

bool LikePattern::Matches(QStringView text) const
{
    return std::any_of(Program_->Alternatives.begin(), Program_->Alternatives.end(),
                       [&](const Program::Alternative& pattern) { return pattern.Matches(Utf16Reader(text)); });
}

bool LikePattern::MatchesUtf8(std::string_view text) const
{
    return std::any_of(Program_->Alternatives.begin(), Program_->Alternatives.end(),
                       [&](const Program::Alternative& pattern) { return pattern.MatchesUtf8(text); });
}

} // namespace dao::jetsql
