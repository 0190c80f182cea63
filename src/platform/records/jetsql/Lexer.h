// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringView>

#include <vector>

/// The words of the query dialect. Pure functions; any thread.
namespace dao::jetsql
{

struct Token
{
    enum class Kind
    {
        Word,          ///< A name or keyword as it stands.
        BracketedName, ///< A name; brackets taken off.
        Text,          ///< A text; quotes taken off, doubled ones made single.
        Date,          ///< What stands between number signs.
        Number,
        Symbol, ///< One of ( ) , ; . ! = <> < > <= >= + - * / &
        End
    };
    Kind TokenKind = Kind::End;
    QString Text;
    qsizetype Position = 0; ///< In UTF-16 units from 0.
};

/// All tokens of a text, with one of kind End behind the last. Error 3075 for what is no token.
std::vector<Token> Tokenise(QStringView text);

/// Throws error 3075: the reason, the position and some of the text there.
[[noreturn]] void RaiseSyntaxError(const QString& reason, QStringView text, qsizetype position);

} // namespace dao::jetsql
