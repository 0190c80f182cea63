// SPDX-License-Identifier: Apache-2.0
#include "PredicateModel.h"

#include <QList>

#include <cmath>
#include <functional>
#include <stdexcept>

using namespace dao::jetsql;

namespace PredicateModel
{
namespace
{
QList<char32_t> Folded(const QString& text)
{
    QList<char32_t> result;
    const QList<uint> characters = text.toUcs4();
    for (uint character : characters)
        result.append(QChar::toCaseFolded(character));
    return result;
}

QVariant Truth(bool value)
{
    return value ? qint64{-1} : qint64{0};
}

bool IsTrue(const QVariant& value)
{
    return value.isValid() && value.toDouble() != 0;
}

int Compare(const QVariant& left, const QVariant& right)
{
    if (left.typeId() == QMetaType::QString) {
        const QList<char32_t> a = Folded(left.toString());
        const QList<char32_t> b = Folded(right.toString());
        return a == b ? 0 : (std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end()) ? -1 : 1);
    }
    const double difference = left.toDouble() - right.toDouble();
    return (difference > 0) - (difference < 0);
}

/// Only * and ? and characters.
bool IsLike(const QList<char32_t>& text, qsizetype at, const QList<char32_t>& pattern, qsizetype next)
{
    if (next == pattern.size())
        return at == text.size();
    if (pattern[next] == U'*')
        return IsLike(text, at, pattern, next + 1) || (at < text.size() && IsLike(text, at + 1, pattern, next));
    return at < text.size() && (pattern[next] == U'?' || pattern[next] == text[at]) &&
           IsLike(text, at + 1, pattern, next + 1);
}

QVariant CompareAs(const QVariant& left, const QVariant& right, const std::function<bool(int)>& test)
{
    if (!left.isValid() || !right.isValid())
        return {};
    return Truth(test(Compare(left, right)));
}

QVariant Not(const QVariant& value)
{
    return value.isValid() ? Truth(!IsTrue(value)) : QVariant();
}

/// decisive: the value that settles the chain: true for OR, false for AND.
QVariant Chain(const std::vector<Expression>& operands, const Row& row, bool decisive)
{
    bool unknown = false;
    for (const Expression& operand : operands) {
        const QVariant value = Evaluate(operand, row);
        if (!value.isValid())
            unknown = true;
        else if (IsTrue(value) == decisive)
            return Truth(decisive);
    }
    return unknown ? QVariant() : Truth(!decisive);
}

QVariant In(const std::vector<Expression>& operands, const Row& row)
{
    const QVariant value = Evaluate(operands[0], row);
    if (!value.isValid())
        return {};
    bool unknown = false;
    for (std::size_t i = 1; i < operands.size(); ++i) {
        const QVariant candidate = Evaluate(operands[i], row);
        if (!candidate.isValid())
            unknown = true;
        else if (Compare(value, candidate) == 0)
            return Truth(true);
    }
    return unknown ? QVariant() : Truth(false);
}

QVariant Between(const std::vector<Expression>& operands, const Row& row)
{
    const QVariant value = Evaluate(operands[0], row);
    const QVariant low = CompareAs(value, Evaluate(operands[1], row), [](int order) { return order >= 0; });
    const QVariant high = CompareAs(value, Evaluate(operands[2], row), [](int order) { return order <= 0; });
    if ((low.isValid() && !IsTrue(low)) || (high.isValid() && !IsTrue(high)))
        return Truth(false);
    return low.isValid() && high.isValid() ? Truth(true) : QVariant();
}

QVariant Like(const QVariant& text, const QVariant& pattern)
{
    if (!text.isValid() || !pattern.isValid())
        return {};
    return Truth(IsLike(Folded(text.toString()), 0, Folded(pattern.toString()), 0));
}

QVariant Arithmetic(Operator kind, const QVariant& left, const QVariant& right)
{
    if (kind == Operator::Concatenate)
        return left.isValid() || right.isValid() ? QVariant(left.toString() + right.toString()) : QVariant();
    if (!left.isValid() || !right.isValid() || (kind == Operator::Divide && right.toDouble() == 0))
        return {};
    switch (kind) {
    case Operator::Add:
        return left.toDouble() + right.toDouble();
    case Operator::Subtract:
        return left.toDouble() - right.toDouble();
    case Operator::Multiply:
        return left.toDouble() * right.toDouble();
    case Operator::Divide:
        return left.toDouble() / right.toDouble();
    default:
        throw std::logic_error("an operator that the model does not know");
    }
}

QVariant EvaluateOperation(const Operation& operation, const Row& row)
{
    const auto operand = [&](std::size_t i) { return Evaluate(operation.Operands[i], row); };
    switch (operation.Kind) {
    case Operator::Or:
        return Chain(operation.Operands, row, true);
    case Operator::And:
        return Chain(operation.Operands, row, false);
    case Operator::Not:
        return Not(operand(0));
    case Operator::Equal:
        return CompareAs(operand(0), operand(1), [](int order) { return order == 0; });
    case Operator::NotEqual:
        return CompareAs(operand(0), operand(1), [](int order) { return order != 0; });
    case Operator::Less:
        return CompareAs(operand(0), operand(1), [](int order) { return order < 0; });
    case Operator::LessOrEqual:
        return CompareAs(operand(0), operand(1), [](int order) { return order <= 0; });
    case Operator::Greater:
        return CompareAs(operand(0), operand(1), [](int order) { return order > 0; });
    case Operator::GreaterOrEqual:
        return CompareAs(operand(0), operand(1), [](int order) { return order >= 0; });
    case Operator::Like:
        return Like(operand(0), operand(1));
    case Operator::NotLike:
        return Not(Like(operand(0), operand(1)));
    case Operator::IsNull:
        return Truth(!operand(0).isValid());
    case Operator::IsNotNull:
        return Truth(operand(0).isValid());
    case Operator::Between:
        return Between(operation.Operands, row);
    case Operator::NotBetween:
        return Not(Between(operation.Operands, row));
    case Operator::In:
        return In(operation.Operands, row);
    case Operator::NotIn:
        return Not(In(operation.Operands, row));
    case Operator::Negate:
        return operand(0).isValid() ? QVariant(-operand(0).toDouble()) : QVariant();
    default:
        return Arithmetic(operation.Kind, operand(0), operand(1));
    }
}
} // namespace

QVariant Evaluate(const Expression& expression, const Row& row)
{
    if (const Literal* literal = std::get_if<Literal>(&expression.Node))
        return literal->Value;
    if (const Name* name = std::get_if<Name>(&expression.Node))
        return row.value(name->Field);
    return EvaluateOperation(std::get<Operation>(expression.Node), row);
}

bool Keeps(const Expression& condition, const Row& row)
{
    return IsTrue(Evaluate(condition, row));
}

} // namespace PredicateModel
