// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/Piece.h"

#include <algorithm>

namespace dao::sqlite
{

void Adopt(Piece& whole, const Piece& part, int stackBefore)
{
    whole.ParserStack = std::max(whole.ParserStack, part.ParserStack + stackBefore);
    whole.TreeDepth = std::max(whole.TreeDepth, part.TreeDepth + 1);
}

Piece Infix(const Piece& left, const char* symbol, const Piece& right)
{
    Piece result;
    result.Text = "(" + left.Text + ' ' + symbol + ' ' + right.Text + ')';
    Adopt(result, left, 1);
    Adopt(result, right, 3);
    return result;
}

Piece Prefixed(const char* prefix, const Piece& operand)
{
    Piece result;
    result.Text = '(' + QByteArray(prefix) + operand.Text + ')';
    Adopt(result, operand, 2);
    return result;
}

Piece Call(const char* function, std::initializer_list<Piece> arguments)
{
    Piece result;
    result.Text = QByteArray(function) + '(';
    for (const Piece& argument : arguments) {
        if (!result.Text.endsWith('('))
            result.Text += ", ";
        result.Text += argument.Text;
        Adopt(result, argument, 5);
    }
    result.Text += ')';
    return result;
}

} // namespace dao::sqlite
