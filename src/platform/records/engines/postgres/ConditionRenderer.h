// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/postgres/Command.h"
#include "platform/records/query/BoundTree.h"
#include "platform/records/query/ParameterTable.h"

#include <optional>

/// Says conditions in the server's SQL, where that means exactly what the evaluator means, with the values of one run
/// in their places. What cannot be said so is left to the evaluator.
namespace dao::postgres
{

class ConditionRenderer
{
public:
    /// Of the columns of the query's first source. All live as long; values is added to.
    ConditionRenderer(const engine::Table& table, const query::ParameterTable& parameters, Parameters& values)
        : Table_(table), Parameters_(parameters), Values_(values)
    {
    }

    /// Nothing where it cannot be said.
    std::optional<QByteArray> Condition(const query::BoundExpression& expression);
    /// Those of the conditions joined by AND that can be said; empty for none. isWhole: whether that was all.
    QByteArray Conjuncts(const query::BoundExpression& expression, bool& isWhole);

private:
    using Text = std::optional<QByteArray>;
    using Operands = std::vector<query::BoundExpression>;

    /// One side of a comparison.
    struct Side
    {
        int Column = -1; ///< Or else a value.
        StoredValue Value;
    };

    Text Render(const query::BoundExpression& expression);
    Text Operation(const query::BoundOperation& operation);
    Text Chain(const Operands& operands, const char* symbol);
    Text Comparison(const query::BoundExpression& left, const query::BoundExpression& right, const char* symbol);
    Text Between(const Operands& operands);
    Text In(const Operands& operands);
    /// For a pattern that looks for one entry between bars what an index of entries can tell; empty for any other.
    QByteArray EntryLookedFor(const QString& pattern);
    Text Like(const Operands& operands);
    std::optional<Side> SideOf(const query::BoundExpression& expression) const;
    bool IsComparable(int column) const;
    Text ValueFor(int column, const StoredValue& value);
    QByteArray Place(const StoredValue& value, Kind kind);

    const engine::Table& Table_;
    const query::ParameterTable& Parameters_;
    Parameters& Values_;
};

/// The server's LIKE pattern over folded octets; nothing for a pattern of more than texts and '*'.
std::optional<QByteArray> FoldedLike(const QString& pattern);

} // namespace dao::postgres
