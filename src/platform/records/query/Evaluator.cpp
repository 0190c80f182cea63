// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/Evaluator.h"

#include "platform/records/TextCodec.h"
#include "platform/records/query/Arithmetic.h"
#include "platform/records/query/StoredValues.h"

#include <cmath>

namespace dao::query
{

using jetsql::AggregateFunction;
using jetsql::Operator;

namespace
{

StoredValue Truth(bool value)
{
    return value ? qint64{-1} : qint64{0};
}

StoredValue Not(const StoredValue& value)
{
    return IsNull(value) ? StoredValue() : Truth(RealIn(value) == 0);
}

bool Meets(Operator comparison, int order)
{
    switch (comparison) {
    case Operator::Equal:
        return order == 0;
    case Operator::NotEqual:
        return order != 0;
    case Operator::Less:
        return order < 0;
    case Operator::LessOrEqual:
        return order <= 0;
    case Operator::Greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

StoredValue Compare(Operator comparison, const StoredValue& left, const StoredValue& right)
{
    if (IsNull(left) || IsNull(right))
        return {};
    return Truth(Meets(comparison, CompareStored(left, right)));
}

StoredValue JoinTexts(const StoredValue& left, const StoredValue& right)
{
    if (IsNull(left) || IsNull(right))
        return {};
    return Concatenation(left, right);
}

} // namespace

StoredValue Evaluator::Value(const BoundExpression& expression) const
{
    if (const auto* column = std::get_if<BoundColumn>(&expression.Node))
        return Row_.ValueAt(*column);
    if (const auto* constant = std::get_if<BoundConstant>(&expression.Node))
        return constant->Value;
    if (const auto* parameter = std::get_if<BoundParameter>(&expression.Node))
        return Parameters_.At(*parameter);
    return Operation(std::get<BoundOperation>(expression.Node), expression.Type);
}

bool Evaluator::Holds(const BoundExpression& condition) const
{
    return RealIn(Value(condition)) != 0;
}

StoredValue Evaluator::Operation(const BoundOperation& operation, ValueType type) const
{
    const auto operand = [&](std::size_t place) { return Value(operation.Operands[place]); };
    switch (operation.Kind) {
    case Operator::Or:
        return Chain(operation, true);
    case Operator::And:
        return Chain(operation, false);
    case Operator::Not:
        return Not(operand(0));
    case Operator::Like:
        return Like(operation);
    case Operator::NotLike:
        return Not(Like(operation));
    case Operator::IsNull:
        return Truth(IsNull(operand(0)));
    case Operator::IsNotNull:
        return Truth(!IsNull(operand(0)));
    case Operator::Between:
        return Between(operation);
    case Operator::NotBetween:
        return Not(Between(operation));
    case Operator::In:
        return In(operation);
    case Operator::NotIn:
        return Not(In(operation));
    case Operator::Concatenate:
        return Concatenation(operand(0), operand(1));
    case Operator::Add:
        return type == ValueType::Text ? JoinTexts(operand(0), operand(1)) : Sum(operand(0), operand(1));
    case Operator::Subtract:
        return Difference(operand(0), operand(1));
    case Operator::Multiply:
        return Product(operand(0), operand(1));
    case Operator::Divide:
        return Quotient(operand(0), operand(1));
    case Operator::Modulo:
        return Remainder(operand(0), operand(1));
    case Operator::Negate:
        return Difference(qint64{0}, operand(0));
    default:
        return Comparison(operation);
    }
}

/// decisive: the value that settles the chain, true for OR and false for AND.
StoredValue Evaluator::Chain(const BoundOperation& operation, bool decisive) const
{
    bool isUnknown = false;
    for (const BoundExpression& operand : operation.Operands) {
        const StoredValue value = Value(operand);
        if (IsNull(value))
            isUnknown = true;
        else if ((RealIn(value) != 0) == decisive)
            return Truth(decisive);
    }
    return isUnknown ? StoredValue() : Truth(!decisive);
}

StoredValue Evaluator::Comparison(const BoundOperation& operation) const
{
    return Compare(operation.Kind, Value(operation.Operands[0]), Value(operation.Operands[1]));
}

StoredValue Evaluator::Between(const BoundOperation& operation) const
{
    const StoredValue value = Value(operation.Operands[0]);
    const StoredValue isAbove = Compare(Operator::GreaterOrEqual, value, Value(operation.Operands[1]));
    const StoredValue isBelow = Compare(Operator::LessOrEqual, value, Value(operation.Operands[2]));
    if (isAbove == Truth(false) || isBelow == Truth(false))
        return Truth(false);
    return IsNull(isAbove) || IsNull(isBelow) ? StoredValue() : Truth(true);
}

StoredValue Evaluator::In(const BoundOperation& operation) const
{
    const StoredValue value = Value(operation.Operands[0]);
    if (IsNull(value))
        return {};
    bool isUnknown = false;
    for (std::size_t i = 1; i < operation.Operands.size(); ++i) {
        const StoredValue candidate = Value(operation.Operands[i]);
        if (IsNull(candidate))
            isUnknown = true;
        else if (CompareStored(value, candidate) == 0)
            return Truth(true);
    }
    return isUnknown ? StoredValue() : Truth(false);
}

StoredValue Evaluator::Like(const BoundOperation& operation) const
{
    std::optional<jetsql::LikePattern> compiled;
    const jetsql::LikePattern* pattern = nullptr;
    if (const auto* constant = std::get_if<BoundPattern>(&operation.Operands[0].Node)) {
        pattern = constant->Compiled.get();
    } else {
        const StoredValue text = Value(operation.Operands[0]);
        if (IsNull(text))
            return {};
        pattern = &compiled.emplace(TextFromUtf8(TextIn(AsText(text))));
    }
    bool isUnknown = false;
    for (std::size_t i = 1; i < operation.Operands.size(); ++i) {
        const std::optional<bool> meets = IsLike(*pattern, Value(operation.Operands[i]));
        if (meets == true)
            return Truth(true);
        isUnknown = isUnknown || !meets;
    }
    return isUnknown ? StoredValue() : Truth(false);
}

void Accumulator::Add(const StoredValue& value)
{
    if (IsNull(value))
        return;
    ++Count_;
    switch (Function_) {
    case AggregateFunction::Count:
        return;
    case AggregateFunction::Sum:
        AddToSum(value);
        return;
    case AggregateFunction::Maximum:
    case AggregateFunction::Minimum:
        break;
    }
    const int order = Count_ == 1 ? 0 : CompareStored(value, Best_);
    if (Count_ == 1 || (Function_ == AggregateFunction::Maximum ? order > 0 : order < 0))
        Best_ = Kept(value);
}

void Accumulator::AddToSum(const StoredValue& value)
{
    RealSum_ += RealIn(value);
    const auto* whole = std::get_if<qint64>(&value);
    if (whole == nullptr)
        IsWhole_ = false;
    else if (IsWhole_ && !HasOverflown_)
        HasOverflown_ = qAddOverflow(WholeSum_, *whole, &WholeSum_);
}

StoredValue Accumulator::Result() const
{
    if (Function_ == AggregateFunction::Count)
        return Count_;
    if (Function_ != AggregateFunction::Sum)
        return Best_;
    if (Count_ == 0)
        return {};
    if (HasOverflown_)
        throw SumOverflow();
    if (IsWhole_)
        return WholeSum_;
    return std::isnan(RealSum_) ? StoredValue() : RealSum_;
}

Error SumOverflow()
{
    return Error(errOverflow, QStringLiteral("Overflow: the sum is too large."));
}

} // namespace dao::query
