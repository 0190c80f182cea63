// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringView>

#include <functional>
#include <string_view>

/// Where the words of a text stand, before anything is made of them. The helper of SearchWords; nobody else needs it.
namespace TextPieces
{

enum class Kind
{
    Letters, ///< Letters and digits of a script that divides its words.
    Dense,   ///< Characters of a script that does not.
    Symbol   ///< One emoji, flag or sign.
};

struct Piece
{
    enum Kind Kind = Kind::Letters;
    qsizetype Begin = 0;
    qsizetype Size = 0;
    bool IsAscii = true;
};

void ForEachPiece(QStringView text, const std::function<void(const Piece&)>& take);

/// The words that a piece of letters or a symbol is for the search, in UTF-8: mostly one, several where a character
/// stands for words with something between them. The view is good within the call.
void ForEachFolded(QStringView run, const Piece& piece, const std::function<void(std::string_view)>& take);
/// The characters of a dense run, folded.
QList<uint> FoldedCharacters(QStringView run);

/// Digits as a telephone number may be written, with what people put between them.
struct NumberRun
{
    qsizetype Begin = 0;
    qsizetype Size = 0;
    QByteArray Digits;
};

/// Those with as many digits as telephone numbers have.
void ForEachNumber(QStringView text, const std::function<void(const NumberRun&)>& take);

} // namespace TextPieces
