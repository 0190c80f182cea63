// SPDX-License-Identifier: Apache-2.0
#include "SpellingWords.h"

#include <QChar>

#include <algorithm>

namespace
{
/// No word of a language is longer, and dictionaries take no longer ones.
constexpr qsizetype LongestWord = 64;
constexpr char16_t CurlyApostrophe = 0x2019;
constexpr char16_t LetterApostrophe = 0x02BC;
constexpr char16_t WideApostrophe = 0xFF07;
constexpr char16_t Hyphen = 0x2010;
constexpr char16_t FirmHyphen = 0x2011;
constexpr char16_t SoftHyphen = 0x00AD;

/// One character of a text, which may take two of its units.
struct Letter
{
    char32_t Code = 0;
    qsizetype Length = 1;
};

Letter LetterAt(QStringView text, qsizetype place)
{
    const QChar first = text.at(place);
    if (first.isHighSurrogate() && place + 1 < text.size() && text.at(place + 1).isLowSurrogate())
        return {QChar::surrogateToUcs4(first, text.at(place + 1)), 2};
    return {first.unicode(), 1};
}

bool IsApostrophe(char32_t code)
{
    return code == U'\'' || code == CurlyApostrophe || code == LetterApostrophe || code == WideApostrophe;
}

/// What may stand between two letters of one word.
bool IsJoiner(char32_t code)
{
    constexpr char32_t joiners[] = {
        U'-',   Hyphen, FirmHyphen, SoftHyphen, 0x200C /* non-joiner */, 0x200D /* joiner */, 0x00B7 /* middle point */,
        0x05F3, 0x05F4 /* Hebrew marks */};
    return IsApostrophe(code) || std::find(std::begin(joiners), std::end(joiners), code) != std::end(joiners);
}

/// Hebrew abbreviations have a quotation mark before their last letter.
bool IsHebrewMark(QStringView text, qsizetype place)
{
    return text.at(place) == u'"' && place > 0 && place + 1 < text.size() &&
           text.at(place - 1).script() == QChar::Script_Hebrew && text.at(place + 1).script() == QChar::Script_Hebrew;
}

bool IsOfWord(char32_t code)
{
    return QChar::isLetterOrNumber(code) || QChar::isMark(code);
}

bool HasNoBlanks(char32_t code)
{
    switch (QChar::script(code)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Thai:
    case QChar::Script_Lao:
    case QChar::Script_Khmer:
    case QChar::Script_Myanmar:
    case QChar::Script_Tibetan:
        return true;
    default:
        return false;
    }
}

/// Between blanks: an address, a link, a file's name, a mark of its own kind; nothing that a person spells.
bool IsName(QStringView piece)
{
    static const QString starts = QStringLiteral("#/\\~");
    static const QString holders = QStringLiteral("@_=\\");
    if (starts.contains(piece.front()) || piece.startsWith(u"www.", Qt::CaseInsensitive) ||
        piece.contains(QLatin1String("://")) || piece.count(u'/') > 1)
        return true;
    for (qsizetype i = 0; i < piece.size(); ++i) {
        if (holders.contains(piece.at(i)))
            return true;
        const bool isInner = i > 0 && i + 1 < piece.size();
        if (piece.at(i) == u'.' && isInner && piece.at(i - 1).isLetterOrNumber() && piece.at(i + 1).isLetterOrNumber())
            return true;
    }
    return false;
}

/// "DJ" of "DJs" and "DJ's".
QStringView WithoutEnding(QStringView word)
{
    if (!word.endsWith(u's'))
        return word;
    word.chop(1);
    if (!word.isEmpty() && IsApostrophe(word.back().unicode()))
        word.chop(1);
    return word;
}

/// Two letters at least, and capitals alone.
bool IsAbbreviation(QStringView word)
{
    int letters = 0;
    for (qsizetype i = 0; i < word.size();) {
        const Letter letter = LetterAt(word, i);
        i += letter.Length;
        if (!QChar::isLetter(letter.Code))
            continue;
        if (!QChar::isUpper(letter.Code))
            return false;
        ++letters;
    }
    return letters > 1;
}

bool IsToBeJudged(QStringView word)
{
    if (word.size() > LongestWord)
        return false;
    int letters = 0;
    for (qsizetype i = 0; i < word.size();) {
        const Letter letter = LetterAt(word, i);
        i += letter.Length;
        if (QChar::isNumber(letter.Code) || HasNoBlanks(letter.Code))
            return false;
        if (QChar::isLetter(letter.Code))
            ++letters;
    }
    return letters > 1 && !IsAbbreviation(word) && !IsAbbreviation(WithoutEnding(word));
}

/// Adds the words of what stands between two blanks from start to end.
void AddWords(QStringView line, qsizetype start, qsizetype end, QList<WordPlace>& words)
{
    qsizetype begin = -1;
    qsizetype last = -1; // Behind the last letter.
    const auto close = [&] {
        if (begin >= 0 && IsToBeJudged(line.mid(begin, last - begin)))
            words.append({begin, last - begin});
        begin = -1;
    };
    for (qsizetype i = start; i < end;) {
        const Letter letter = LetterAt(line, i);
        // A mark alone begins no word; an apostrophe that counts as a letter neither.
        const bool isLetter =
            IsOfWord(letter.Code) && letter.Code != LetterApostrophe && (begin >= 0 || !QChar::isMark(letter.Code));
        if (isLetter) {
            if (begin < 0)
                begin = i;
            last = i + letter.Length;
        } else if (begin >= 0) {
            // One joiner, with a letter behind it.
            const bool joins = (IsJoiner(letter.Code) || IsHebrewMark(line, i)) && last == i;
            if (!joins)
                close();
        }
        i += letter.Length;
    }
    close();
}
} // namespace

QList<WordPlace> SpellingWords::In(QStringView line)
{
    QList<WordPlace> words;
    for (qsizetype start = 0; start < line.size();) {
        if (line.at(start).isSpace()) {
            ++start;
            continue;
        }
        qsizetype end = start;
        while (end < line.size() && !line.at(end).isSpace())
            ++end;
        // In brackets or quotation marks it is one as well.
        qsizetype first = start;
        while (first + 1 < end && QStringLiteral("(<[\"'\u201C\u2018\u201E").contains(line.at(first)))
            ++first;
        if (!IsName(line.mid(first, end - first)))
            AddWords(line, start, end, words);
        start = end;
    }
    return words;
}

QString SpellingWords::Plain(QStringView word)
{
    QString plain = word.toString().normalized(QString::NormalizationForm_C);
    for (QChar& character : plain) {
        if (IsApostrophe(character.unicode()))
            character = u'\'';
        else if (character == QChar(Hyphen) || character == QChar(FirmHyphen))
            character = u'-';
    }
    return plain.remove(QChar(SoftHyphen));
}

QString SpellingWords::LikeTyped(QString suggestion, QStringView word)
{
    for (const char16_t curly : {CurlyApostrophe, LetterApostrophe}) {
        if (word.contains(QChar(curly)))
            return suggestion.replace(u'\'', QChar(curly));
    }
    return suggestion;
}
