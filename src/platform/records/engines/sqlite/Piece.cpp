// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/Piece.h"

#include <algorithm>

namespace dao::sqlite
{

using jetsql::Expression;
using jetsql::Literal;
using jetsql::Operation;
using jetsql::Operator;

const Literal* AsLiteral(const Expression& expression)
{
    return std::get_if<Literal>(&expression.Node);
}

QString NumberText(const QVariant& number)
{
    return number.typeId() == QMetaType::Double ? QString::number(number.toDouble(), 'g', 15)
                                                : QString::number(number.toLongLong());
}

ValueType TypeOfLiteral(const Literal& literal)
{
    if (!literal.Value.isValid())
        return ValueType::Unknown;
    if (literal.ValueKind == Literal::Kind::Date)
        return ValueType::Date;
    return literal.Value.typeId() == QMetaType::QString ? ValueType::Text : ValueType::Number;
}

bool IsNumeric(ValueType type)
{
    return type == ValueType::Number || type == ValueType::Date;
}

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

Piece Call(const char* function, std::initializer_list<Piece> arguments, const char* furtherArguments)
{
    Piece result;
    result.Text = QByteArray(function) + '(';
    for (const Piece& argument : arguments) {
        if (!result.Text.endsWith('('))
            result.Text += ", ";
        result.Text += argument.Text;
        Adopt(result, argument, 5);
    }
    result.Text += furtherArguments;
    result.Text += ')';
    return result;
}

Piece AsTruth(Piece piece)
{
    piece.Type = ValueType::Number;
    piece.IsTruth = true;
    return piece;
}

Piece AsType(Piece piece, ValueType type)
{
    piece.Type = type;
    return piece;
}

const QString* PlainPattern(const Expression& expression)
{
    const Operation* operation = std::get_if<Operation>(&expression.Node);
    if (operation == nullptr || operation->Kind != Operator::Like)
        return nullptr;
    const Literal* literal = AsLiteral(operation->Operands[1]);
    if (literal == nullptr || literal->Value.typeId() != QMetaType::QString)
        return nullptr;
    return static_cast<const QString*>(literal->Value.constData());
}

} // namespace dao::sqlite
