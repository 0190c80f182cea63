// SPDX-License-Identifier: Apache-2.0
#include "messages/search/TextPieces.h"

#include "common/SearchFold.h"
#include "messages/search/SearchWords.h"

#include <array>
#include <optional>

namespace
{
using TextPieces::Kind;
using TextPieces::NumberRun;
using TextPieces::Piece;

constexpr qsizetype FewestDigits = 7;
constexpr qsizetype MostDigits = 15;
/// As in ") (" or " - ".
constexpr qsizetype MostBetweenDigits = 3;

bool IsAsciiWord(char16_t character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'z') ||
           (character >= u'A' && character <= u'Z');
}

bool IsDense(char32_t character)
{
    constexpr char32_t LongVowel = 0x30FC;
    constexpr char32_t NarrowLongVowel = 0xFF70;
    if (character == LongVowel || character == NarrowLongVowel)
        return true;
    switch (QChar::script(character)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
    case QChar::Script_Thai:
    case QChar::Script_Lao:
    case QChar::Script_Khmer:
    case QChar::Script_Myanmar:
        return true;
    default:
        return false;
    }
}

/// What a character goes on with: nothing for what divides words; IsJoined for what belongs to any run before it.
struct Class
{
    std::optional<enum Kind> Kind;
    bool IsJoined = false;
};

Class ClassOf(char32_t character)
{
    if (character < 0x80)
        return {IsAsciiWord(static_cast<char16_t>(character)) ? std::optional(Kind::Letters) : std::nullopt};
    if (IsDense(character))
        return {Kind::Dense};
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return {std::nullopt, true};
    case QChar::Symbol_Other:
    case QChar::Symbol_Currency:
        return {character == 0xFFFD || character == 0xFFFC ? std::nullopt : std::optional(Kind::Symbol)};
    default:
        return {QChar::isLetterOrNumber(character) ? std::optional(Kind::Letters) : std::nullopt};
    }
}

struct Character
{
    char32_t Value = 0;
    qsizetype Size = 1;
};

/// Half characters are none.
Character CharacterAt(QStringView text, qsizetype place)
{
    const QChar first = text.at(place);
    if (!first.isSurrogate())
        return {first.unicode(), 1};
    if (first.isHighSurrogate() && place + 1 < text.size() && text.at(place + 1).isLowSurrogate())
        return {QChar::surrogateToUcs4(first, text.at(place + 1)), 2};
    return {0, 1};
}

bool IsFlagLetter(char32_t character)
{
    return character >= 0x1F1E6 && character <= 0x1F1FF;
}

qsizetype SizeOfSymbol(QStringView text, qsizetype place, const Character& symbol)
{
    const qsizetype next = place + symbol.Size;
    if (!IsFlagLetter(symbol.Value) || next >= text.size())
        return symbol.Size;
    const Character second = CharacterAt(text, next);
    return IsFlagLetter(second.Value) ? symbol.Size + second.Size : symbol.Size;
}

/// From a place on which a run of letters or of a dense script begins.
Piece PieceAt(QStringView text, qsizetype begin, enum Kind kind)
{
    Piece piece{kind, begin, 0, true};
    qsizetype place = begin;
    while (place < text.size()) {
        const char16_t unit = text.at(place).unicode();
        if (unit < 0x80) {
            if (kind != Kind::Letters || !IsAsciiWord(unit))
                break;
            ++place;
            continue;
        }
        const Character character = CharacterAt(text, place);
        const Class found = ClassOf(character.Value);
        if (!found.IsJoined && found.Kind != kind)
            break;
        piece.IsAscii = false;
        place += character.Size;
    }
    piece.Size = place - begin;
    return piece;
}

int DigitOf(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit < 0x80)
        return unit >= u'0' && unit <= u'9' ? unit - u'0' : -1;
    return character.digitValue();
}

bool StandsInNumbers(QChar character)
{
    switch (character.unicode()) {
    case u' ':
    case u'-':
    case u'.':
    case u'(':
    case u')':
    case u'/':
    case 0x00A0:
    case 0x2007:
    case 0x2009:
    case 0x202F:
    case 0x2010:
    case 0x2011:
    case 0x2012:
    case 0x2013:
        return true;
    default:
        return false;
    }
}

NumberRun NumberAt(QStringView text, qsizetype begin)
{
    NumberRun run{begin, 0, {}};
    qsizetype between = 0;
    for (qsizetype place = begin; place < text.size() && between <= MostBetweenDigits; ++place) {
        const int digit = DigitOf(text.at(place));
        if (digit >= 0) {
            run.Digits += static_cast<char>('0' + digit);
            run.Size = place + 1 - begin;
            between = 0;
        } else if (StandsInNumbers(text.at(place))) {
            ++between;
        } else {
            break;
        }
    }
    return run;
}

/// One word of letters that are folded already.
void TakeWord(QStringView word, const std::function<void(std::string_view)>& take)
{
    QStringView cut = word.left(SearchWords::LongestWord);
    if (!cut.isEmpty() && cut.back().isHighSurrogate())
        cut.chop(1);
    const QByteArray utf8 = cut.toUtf8();
    take({utf8.constData(), static_cast<std::size_t>(utf8.size())});
}

void TakeAscii(QStringView run, const std::function<void(std::string_view)>& take)
{
    std::array<char, SearchWords::LongestWord> word{};
    const qsizetype size = std::min(run.size(), qsizetype{SearchWords::LongestWord});
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t unit = run.at(i).unicode();
        word[static_cast<std::size_t>(i)] = static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + 32 : unit);
    }
    take({word.data(), static_cast<std::size_t>(size)});
}
} // namespace

void TextPieces::ForEachPiece(QStringView text, const std::function<void(const Piece&)>& take)
{
    qsizetype place = 0;
    while (place < text.size()) {
        const Character character = CharacterAt(text, place);
        const Class found = ClassOf(character.Value);
        if (!found.Kind) {
            place += character.Size;
            continue;
        }
        const Piece piece = *found.Kind == Kind::Symbol
                                ? Piece{Kind::Symbol, place, SizeOfSymbol(text, place, character), false}
                                : PieceAt(text, place, *found.Kind);
        take(piece);
        place += piece.Size;
    }
}

void TextPieces::ForEachFolded(QStringView run, const Piece& piece, const std::function<void(std::string_view)>& take)
{
    if (piece.IsAscii) {
        TakeAscii(run, take);
        return;
    }
    // Folding is not bounded by the length of a word, and what lies behind it does not count.
    QString folded = SearchFold::Folded(run.left(4 * qsizetype{SearchWords::LongestWord}).toString());
    if (piece.Kind == Kind::Symbol && folded.size() == 1 && folded.front().unicode() >= 0x80) {
        TakeWord(folded, take);
        return;
    }
    qsizetype begin = 0;
    for (qsizetype place = 0; place <= folded.size(); ++place) {
        const bool isWithin = place < folded.size() && (folded.at(place).isLetterOrNumber() ||
                                                        folded.at(place).isMark() || folded.at(place).isSurrogate());
        if (isWithin) {
            const int digit = folded.at(place).digitValue();
            if (digit >= 0)
                folded[place] = QChar(u'0' + digit);
            continue;
        }
        if (place > begin)
            TakeWord(QStringView(folded).sliced(begin, place - begin), take);
        begin = place + 1;
    }
}

QList<uint> TextPieces::FoldedCharacters(QStringView run)
{
    return SearchFold::Folded(run.toString()).toUcs4();
}

void TextPieces::ForEachNumber(QStringView text, const std::function<void(const NumberRun&)>& take)
{
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (DigitOf(text.at(place)) < 0)
            continue;
        const NumberRun run = NumberAt(text, place);
        if (run.Digits.size() >= FewestDigits && run.Digits.size() <= MostDigits)
            take(run);
        place = run.Begin + run.Size - 1;
    }
}
