// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/SyntaxTree.h"

#include "platform/records/Error.h"

#include <algorithm>

namespace dao::jetsql
{
namespace
{
bool IsChain(Operator kind)
{
    return kind == Operator::And || kind == Operator::Or;
}

void AppendFlat(std::vector<Expression>& operands, Operator kind, Expression operand)
{
    Operation* inner = IsChain(kind) ? std::get_if<Operation>(&operand.Node) : nullptr;
    if (inner == nullptr || inner->Kind != kind) {
        operands.push_back(std::move(operand));
        return;
    }
    std::move(inner->Operands.begin(), inner->Operands.end(), std::back_inserter(operands));
}
} // namespace

Expression MakeOperation(Operator kind, std::vector<Expression> operands)
{
    Expression result;
    result.Position = operands.front().Position;
    Operation operation;
    operation.Kind = kind;
    operation.Operands.reserve(operands.size());
    for (Expression& operand : operands)
        AppendFlat(operation.Operands, kind, std::move(operand));
    int deepest = 0;
    for (const Expression& operand : operation.Operands)
        deepest = std::max(deepest, operand.Depth);
    result.Depth = deepest + 1;
    result.Node = std::move(operation);
    if (result.Depth > MaximumDepth)
        throw Error(errSyntax, QStringLiteral("Syntax error in the query: the expression that begins at character %1 "
                                              "is too complex.")
                                   .arg(result.Position + 1));
    return result;
}

std::optional<Expression> Both(std::optional<Expression> left, std::optional<Expression> right)
{
    if (!left)
        return right;
    if (!right)
        return left;
    std::vector<Expression> operands;
    operands.push_back(std::move(*left));
    operands.push_back(std::move(*right));
    return MakeOperation(Operator::And, std::move(operands));
}

} // namespace dao::jetsql
