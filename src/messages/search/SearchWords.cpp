// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchWords.h"

#include "common/SearchFold.h"
#include "messages/search/TextPieces.h"
#include "messages/search/WordSet.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <algorithm>

using namespace TextPieces;

namespace
{
// What is kept beside the words begins with a character that no word has.
constexpr char16_t AddressMark = 0xE001;
constexpr char16_t NumberMark = 0xE002;
constexpr char16_t IdentityMark = 0xE003;
constexpr char16_t SubjectMark = 0xE004;

/// The digits that a number has with or without a country code.
constexpr qsizetype TellingDigits = 9;
constexpr qsizetype LongestQuestion = 1000;
constexpr qsizetype MostWanted = 32;

std::string_view View(const QByteArray& octets)
{
    return {octets.constData(), static_cast<std::size_t>(octets.size())};
}

QByteArray Marked(char16_t mark, const QByteArray& text)
{
    return QString(QChar(mark)).toUtf8() + text;
}

QByteArray HashedTerm(char16_t mark, const QString& text)
{
    constexpr qsizetype Digits = 16;
    return Marked(mark, QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex().left(Digits));
}

QByteArray KeyOfDigits(const QByteArray& digits)
{
    qsizetype zeros = 0;
    while (zeros < digits.size() && digits.at(zeros) == '0')
        ++zeros;
    return Marked(NumberMark, digits.mid(zeros).right(TellingDigits));
}

QByteArray Utf8(const QList<uint>& characters, qsizetype begin, qsizetype count)
{
    const QList<char32_t> part(characters.begin() + begin, characters.begin() + begin + count);
    return QString::fromUcs4(part.constData(), count).toUtf8();
}

/// Of a run in a script without blanks: each two and three neighbours, and the last one, which begins none of them.
void AddNeighbours(QStringView run, WordSet& words)
{
    const QList<uint> characters = FoldedCharacters(run);
    for (qsizetype i = 0; i < characters.size(); ++i) {
        for (const qsizetype count : {qsizetype{2}, qsizetype{3}}) {
            if (i + count <= characters.size())
                words.Add(View(Utf8(characters, i, count)));
        }
    }
    if (!characters.isEmpty())
        words.Add(View(Utf8(characters, characters.size() - 1, 1)));
}

QList<SearchWords::Term> NeighbourTerms(QStringView run)
{
    const QList<uint> characters = FoldedCharacters(run);
    if (characters.size() == 1)
        return {{Utf8(characters, 0, 1), true}};
    const qsizetype count = std::min(characters.size(), qsizetype{3});
    QList<SearchWords::Term> terms;
    for (qsizetype i = 0; count > 0 && i + count <= characters.size(); ++i)
        terms.append({Utf8(characters, i, count), false});
    return terms;
}

QList<SearchWords::Term> TermsOf(QStringView text, const Piece& piece, bool isPrefix)
{
    const QStringView run = text.sliced(piece.Begin, piece.Size);
    if (piece.Kind == Kind::Dense)
        return NeighbourTerms(run);
    QList<SearchWords::Term> terms;
    ForEachFolded(run, piece, [&](std::string_view word) {
        terms.append({QByteArray(word.data(), static_cast<qsizetype>(word.size())), false});
    });
    // One letter begins a third of all words: nobody is helped by those.
    if (isPrefix && !terms.isEmpty() && piece.Kind == Kind::Letters && terms.last().Word.size() > 1)
        terms.last().IsPrefix = true;
    return terms;
}

QList<SearchWords::Alternatives> WantedPieces(QStringView text, bool endsInPrefix)
{
    QList<SearchWords::Alternatives> wanted;
    ForEachPiece(text, [&](const Piece& piece) {
        const bool isLast = piece.Begin + piece.Size == text.size();
        const QList<SearchWords::Term> terms = TermsOf(text, piece, endsInPrefix && isLast);
        const SearchWords::Alternatives alternatives{terms};
        if (!terms.isEmpty() && !wanted.contains(alternatives))
            wanted.append(alternatives);
    });
    return wanted;
}

/// By its key, as it is written without blanks, or piece by piece.
SearchWords::Alternatives WantedNumber(QStringView text, const NumberRun& run, bool isPrefix)
{
    QList<SearchWords::Term> pieces;
    const QStringView written = text.sliced(run.Begin, run.Size);
    for (const SearchWords::Alternatives& piece : WantedPieces(written, isPrefix))
        pieces += piece.first();
    return {{{KeyOfDigits(run.Digits), false}}, {{run.Digits, isPrefix}}, pieces};
}

bool IsMet(const QByteArray& word, const SearchWords::Term& term)
{
    return term.IsPrefix ? word.startsWith(term.Word) : word == term.Word;
}

QList<SearchWords::Term> AllTerms(const QList<SearchWords::Alternatives>& wanted)
{
    QList<SearchWords::Term> terms;
    for (const SearchWords::Alternatives& alternatives : wanted) {
        for (const QList<SearchWords::Term>& alternative : alternatives)
            terms += alternative;
    }
    return terms;
}

void AddNeighbourPlaces(QStringView run, qsizetype begin, const QList<SearchWords::Term>& terms,
                        QList<SearchWords::Place>& places)
{
    for (const SearchWords::Term& term : terms) {
        const QString wanted = QString::fromUtf8(term.Word);
        for (qsizetype at = 0; at + wanted.size() <= run.size(); ++at) {
            if (SearchFold::Folded(run.sliced(at, wanted.size()).toString()) == wanted)
                places.append({begin + at, wanted.size()});
        }
    }
}

QList<SearchWords::Place> Joined(QList<SearchWords::Place> places)
{
    std::sort(places.begin(), places.end(), [](const auto& a, const auto& b) { return a.Begin < b.Begin; });
    QList<SearchWords::Place> joined;
    for (const SearchWords::Place& place : places) {
        if (!joined.isEmpty() && place.Begin <= joined.last().Begin + joined.last().Size) {
            SearchWords::Place& last = joined.last();
            last.Size = std::max(last.Size, place.Begin + place.Size - last.Begin);
        } else {
            joined.append(place);
        }
    }
    return joined;
}
} // namespace

void SearchWords::Add(QStringView text, WordSet& words)
{
    ForEachPiece(text, [&](const Piece& piece) {
        const QStringView run = text.sliced(piece.Begin, piece.Size);
        if (piece.Kind == Kind::Dense)
            AddNeighbours(run, words);
        else
            ForEachFolded(run, piece, [&words](std::string_view word) { words.Add(word); });
    });
    ForEachNumber(text, [&](const NumberRun& run) {
        words.Add(View(KeyOfDigits(run.Digits)));
        if (run.Size != run.Digits.size())
            words.Add(View(run.Digits));
    });
}

QList<SearchWords::Alternatives> SearchWords::Wanted(const QString& typed, bool endsInPrefix)
{
    const QStringView text = QStringView(typed).left(LongestQuestion);
    QList<Alternatives> wanted;
    qsizetype done = 0;
    ForEachNumber(text, [&](const NumberRun& run) {
        wanted += WantedPieces(text.sliced(done, run.Begin - done), false);
        wanted.append(WantedNumber(text, run, endsInPrefix && run.Begin + run.Size == text.size()));
        done = run.Begin + run.Size;
    });
    wanted += WantedPieces(text.sliced(done), endsInPrefix);
    return wanted.mid(0, MostWanted);
}

QByteArray SearchWords::AddressTerm(const QString& address)
{
    return HashedTerm(AddressMark, address.trimmed().toLower());
}

QByteArray SearchWords::NumberTerm(const QString& number)
{
    QByteArray term;
    ForEachNumber(number, [&term](const NumberRun& run) { term = term.isEmpty() ? KeyOfDigits(run.Digits) : term; });
    return term;
}

QByteArray SearchWords::IdentityTerm(const QString& messageID)
{
    return HashedTerm(IdentityMark, messageID.trimmed());
}

QByteArray SearchWords::SubjectTerm(const QString& subject)
{
    static const QRegularExpression answered(
        QStringLiteral("^(\\s*(re|aw|fw|fwd|wg|sv|vs|antw|tr|rv)\\s*(\\[\\d+\\])?:)+"),
        QRegularExpression::CaseInsensitiveOption);
    QString plain = subject;
    plain.remove(answered);
    return HashedTerm(SubjectMark, SearchFold::Folded(plain.simplified()));
}

QList<SearchWords::Place> SearchWords::PlacesOf(const QString& text, const QList<Alternatives>& wanted)
{
    const QList<Term> terms = AllTerms(wanted);
    const auto isMet = [&terms](const QByteArray& word) {
        return std::any_of(terms.begin(), terms.end(), [&](const Term& term) { return IsMet(word, term); });
    };
    QList<Place> places;
    ForEachPiece(text, [&](const Piece& piece) {
        const QStringView run = QStringView(text).sliced(piece.Begin, piece.Size);
        if (piece.Kind == Kind::Dense) {
            AddNeighbourPlaces(run, piece.Begin, terms, places);
            return;
        }
        bool isHit = false;
        ForEachFolded(run, piece, [&](std::string_view word) {
            isHit = isHit || isMet(QByteArray(word.data(), static_cast<qsizetype>(word.size())));
        });
        if (isHit)
            places.append({piece.Begin, piece.Size});
    });
    ForEachNumber(text, [&](const NumberRun& run) {
        if (isMet(KeyOfDigits(run.Digits)))
            places.append({run.Begin, run.Size});
    });
    return Joined(places);
}
