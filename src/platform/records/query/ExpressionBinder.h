// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/BoundTree.h"

/// The part of the binder that takes conditions and values. Private to the binder.
namespace dao::query
{

class ExpressionBinder
{
public:
    explicit ExpressionBinder(const engine::Schema& schema) : Schema_(schema) {}

    /// 3078, and 3075 when a table of that name is in reach already.
    void AddSource(const jetsql::TableReference& reference);
    const std::vector<BoundSource>& Sources() const { return Sources_; }
    std::vector<BoundSource> TakeSources() { return std::move(Sources_); }
    BoundParameters TakeParameters() { return std::move(Parameters_); }
    void JoinLast(jetsql::JoinKind kind, BoundExpression condition);
    /// The source by its qualifying name; -1 when there is none.
    int FindSource(const QString& qualifier) const;
    /// None when the name is a parameter; 3061 for what can be neither column nor parameter.
    std::optional<BoundColumn> Resolve(const jetsql::Name& name, qsizetype position) const;
    const engine::Column& ColumnAt(const BoundColumn& column) const;
    BoundExpression Column(const BoundColumn& column) const;

    /// For WHERE and ON.
    BoundExpression Condition(const jetsql::Expression& expression);
    BoundExpression Value(const jetsql::Expression& expression);

private:
    using Operands = std::vector<jetsql::Expression>;

    BoundExpression BindName(const jetsql::Name& name, qsizetype position);
    BoundExpression BindAggregate(const jetsql::Aggregate& aggregate);
    BoundExpression BindOperation(const jetsql::Operation& operation);
    BoundExpression BindOr(const Operands& operands);
    std::vector<BoundExpression> BindPlainLikes(const Operands& operands);
    BoundExpression BindComparison(const jetsql::Operation& operation);
    BoundExpression BindLike(const jetsql::Operation& operation);
    BoundExpression BindAmong(const jetsql::Operation& operation);
    BoundExpression BindConcatenation(const Operands& operands);
    BoundExpression BindAddition(const Operands& operands);
    BoundExpression BindArithmetic(jetsql::Operator kind, BoundExpression left, const jetsql::Expression& operand);

    BoundExpression NumberOf(const jetsql::Expression& expression);
    BoundExpression TextToMatch(const jetsql::Expression& expression);
    BoundExpression PatternOf(const jetsql::Expression& expression);
    /// An expression as it is compared with something of that type: constants converted, parameters at run time.
    BoundExpression ComparedWith(ValueType type, const jetsql::Expression& expression);
    /// A parameter as it is compared or computed with something of that type; anything else as it is.
    BoundExpression Converted(BoundExpression value, ValueType type);

    const engine::Schema& Schema_;
    std::vector<BoundSource> Sources_;
    BoundParameters Parameters_;
};

[[noreturn]] void RaiseTypeMismatch(qsizetype position);
ValueType TypeOf(DataTypeEnum type);

} // namespace dao::query
