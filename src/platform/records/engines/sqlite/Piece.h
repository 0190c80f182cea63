// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/jetsql/SyntaxTree.h"

#include <QByteArray>

#include <initializer_list>

/// Pieces of SQLite text and how they combine. Private to the renderer.
namespace dao::sqlite
{

enum class ValueType
{
    Unknown, ///< Null or a parameter.
    Number,
    Date,
    Text
};

/// A piece of SQLite text: one word, a call, or something in parentheses, so that pieces combine without thought of
/// precedence.
struct Piece
{
    QByteArray Text;
    ValueType Type = ValueType::Unknown;
    /// Whether it is SQLite's truth (1, 0 or Null) rather than a stored value, where true is -1.
    bool IsTruth = false;
    bool IsParameter = false;
    /// What SQLite's parser and its expression trees need for it; both are limited there.
    int ParserStack = 1;
    int TreeDepth = 1;
};

/// What an expression in pieces needs, raised by one of its parts; stackBefore: what SQLite's parser holds when it
/// comes to the part.
void Adopt(Piece& whole, const Piece& part, int stackBefore);
/// (left symbol right)
Piece Infix(const Piece& left, const char* symbol, const Piece& right);
/// function(arguments furtherArguments)
Piece Call(const char* function, std::initializer_list<Piece> arguments, const char* furtherArguments = "");
Piece AsTruth(Piece piece);
Piece AsType(Piece piece, ValueType type);

/// The constant that an expression is, or null.
const jetsql::Literal* AsLiteral(const jetsql::Expression& expression);
/// The text of a LIKE's pattern where that is a constant text; null for anything else.
const QString* PlainPattern(const jetsql::Expression& expression);
QString NumberText(const QVariant& number);
ValueType TypeOfLiteral(const jetsql::Literal& literal);
bool IsNumeric(ValueType type);

} // namespace dao::sqlite
