// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/KeyCondition.h"

#include "platform/records/query/StoredValues.h"

#include <algorithm>

namespace dao::query
{

using jetsql::Operator;

namespace
{

/// Whether an expression speaks of sources before that one only.
bool IsKnownBefore(const BoundExpression& expression, int source)
{
    if (const auto* column = std::get_if<BoundColumn>(&expression.Node))
        return column->Source < source;
    const auto* operation = std::get_if<BoundOperation>(&expression.Node);
    return operation == nullptr ||
           std::all_of(operation->Operands.begin(), operation->Operands.end(),
                       [source](const BoundExpression& operand) { return IsKnownBefore(operand, source); });
}

KeyCondition KeyOf(const BoundOperation& equality, int source)
{
    for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
        const auto* column = std::get_if<BoundColumn>(&equality.Operands[side].Node);
        const BoundExpression& value = equality.Operands[1 - side];
        if (column != nullptr && column->Source == source && IsKnownBefore(value, source))
            return {column, &value};
    }
    return {};
}

} // namespace

KeyCondition FindKey(const BoundExpression& condition, int source)
{
    const auto* operation = std::get_if<BoundOperation>(&condition.Node);
    if (operation == nullptr)
        return {};
    if (operation->Kind == Operator::Equal)
        return KeyOf(*operation, source);
    if (operation->Kind != Operator::And)
        return {};
    for (const BoundExpression& operand : operation->Operands) {
        const KeyCondition key = FindKey(operand, source);
        if (key.Column != nullptr)
            return key;
    }
    return {};
}

void ForEachCandidate(const BoundSource& source, const std::optional<BoundExpression>& where,
                      const Evaluator& constants, TableRows& rows, const TableRows::Visitor& visit)
{
    const KeyCondition key = where ? FindKey(*where, 0) : KeyCondition();
    if (key.Column != nullptr) {
        const StoredValue value = constants.Value(*key.Value);
        if (IsNull(value) || rows.ForEachRowWith(source.Table, key.Column->Column, value, visit))
            return;
    }
    rows.ForEachRow(source.Table, visit);
}

} // namespace dao::query
