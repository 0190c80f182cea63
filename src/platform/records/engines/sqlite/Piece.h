// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <initializer_list>

/// Pieces of SQLite text and how they combine. Private to the renderer.
namespace dao::sqlite
{

/// A piece of SQLite text: one word, a call, or something in parentheses, so that pieces combine without thought of
/// precedence.
struct Piece
{
    QByteArray Text;
    /// What SQLite's parser and its expression trees need for it; both are limited there.
    int ParserStack = 1;
    int TreeDepth = 1;
};

/// What an expression in pieces needs, raised by one of its parts; stackBefore: what SQLite's parser holds when it
/// comes to the part.
void Adopt(Piece& whole, const Piece& part, int stackBefore);
/// (left symbol right)
Piece Infix(const Piece& left, const char* symbol, const Piece& right);
/// (prefix operand)
Piece Prefixed(const char* prefix, const Piece& operand);
/// function(arguments)
Piece Call(const char* function, std::initializer_list<Piece> arguments);

} // namespace dao::sqlite
