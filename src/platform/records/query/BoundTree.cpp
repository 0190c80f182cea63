// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/BoundTree.h"

namespace dao::query
{

using jetsql::Operator;

bool IsTruth(const BoundExpression& expression)
{
    const auto* operation = std::get_if<BoundOperation>(&expression.Node);
    if (operation == nullptr)
        return false;
    switch (operation->Kind) {
    case Operator::Concatenate:
    case Operator::Add:
    case Operator::Subtract:
    case Operator::Modulo:
    case Operator::Multiply:
    case Operator::Divide:
    case Operator::Negate:
        return false;
    default:
        return true;
    }
}

} // namespace dao::query
