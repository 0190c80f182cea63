// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/ExpressionBinder.h"

#include "platform/records/Error.h"
#include "platform/records/TextCodec.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>

namespace dao::query
{

using jetsql::AggregateFunction;
using jetsql::Expression;
using jetsql::Literal;
using jetsql::Name;
using jetsql::Operation;
using jetsql::Operator;

namespace
{

const Literal* AsLiteral(const Expression& expression)
{
    return std::get_if<Literal>(&expression.Node);
}

ValueType TypeOfLiteral(const Literal& literal)
{
    if (!literal.Value.isValid())
        return ValueType::Unknown;
    if (literal.ValueKind == Literal::Kind::Date)
        return ValueType::Date;
    return literal.Value.typeId() == QMetaType::QString ? ValueType::Text : ValueType::Number;
}

StoredValue StoredOf(const Literal& literal)
{
    switch (literal.Value.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::Double:
        return literal.Value.toDouble();
    case QMetaType::QString:
        return TextToUtf8(literal.Value.toString());
    default:
        return static_cast<qint64>(literal.Value.toLongLong());
    }
}

BoundExpression MakeConstant(StoredValue value, ValueType type)
{
    return {BoundConstant{std::move(value)}, type};
}

/// A literal as something of the type wanted.
BoundExpression Constant(const Literal& literal, ValueType wanted, qsizetype position)
{
    const ValueType own = TypeOfLiteral(literal);
    if (own == ValueType::Unknown || wanted == ValueType::Unknown)
        return MakeConstant(StoredOf(literal), own);
    if (wanted == ValueType::Text && own == ValueType::Number)
        return MakeConstant(AsText(StoredOf(literal)), ValueType::Text);
    if (IsNumeric(wanted) && own == ValueType::Text) {
        bool valid = false;
        const double number = literal.Value.toString().trimmed().toDouble(&valid);
        if (!valid)
            RaiseTypeMismatch(position);
        return MakeConstant(number, ValueType::Number);
    }
    if ((wanted == ValueType::Text) != (own == ValueType::Text))
        RaiseTypeMismatch(position);
    return MakeConstant(StoredOf(literal), own);
}

template <typename... Values>
BoundExpression MakeOperation(Operator kind, ValueType type, Values... values)
{
    BoundOperation operation;
    operation.Kind = kind;
    operation.Operands.reserve(sizeof...(values));
    (operation.Operands.push_back(std::move(values)), ...);
    return {std::move(operation), type};
}

BoundExpression MakeChain(Operator kind, std::vector<BoundExpression> operands)
{
    return {BoundOperation{kind, std::move(operands)}, ValueType::Number};
}

[[noreturn]] void RaiseUnknownColumn(const QString& name, qsizetype position, const QString& reason)
{
    throw Error(
        errTooFewParameters,
        QStringLiteral("The name '%1' at character %2 of the query %3.").arg(name).arg(position + 1).arg(reason));
}

bool IsParameter(const BoundExpression& value)
{
    return std::holds_alternative<BoundParameter>(value.Node);
}

} // namespace

void RaiseTypeMismatch(qsizetype position)
{
    throw Error(errTypeMismatch,
                QStringLiteral("Type mismatch in the query at character %1: the values there cannot be compared or "
                               "computed with each other.")
                    .arg(position + 1));
}

ValueType TypeOf(DataTypeEnum type)
{
    switch (type) {
    case dbText:
    case dbMemo:
        return ValueType::Text;
    case dbDate:
        return ValueType::Date;
    default:
        return ValueType::Number;
    }
}

void ExpressionBinder::AddSource(const jetsql::TableReference& reference)
{
    engine::TablePtr table = Schema_.Find(reference.Table);
    if (!table)
        throw Error(errTableNotFound,
                    QStringLiteral("The input table or query '%1' cannot be found.").arg(reference.Table));
    const QString& qualifier = reference.Alias.isEmpty() ? table->Name : reference.Alias;
    if (FindSource(qualifier) >= 0)
        throw Error(errSyntax, QStringLiteral("Syntax error in the query: '%1' is named twice behind FROM, at "
                                              "character %2.")
                                   .arg(qualifier)
                                   .arg(reference.Position + 1));
    BoundSource& source = Sources_.emplace_back();
    source.Qualifier = qualifier;
    source.Table = std::move(table);
}

void ExpressionBinder::JoinLast(jetsql::JoinKind kind, BoundExpression condition)
{
    Sources_.back().Kind = kind;
    Sources_.back().Condition = std::move(condition);
}

int ExpressionBinder::FindSource(const QString& qualifier) const
{
    for (std::size_t i = 0; i < Sources_.size(); ++i) {
        if (Sources_[i].Qualifier.compare(qualifier, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

std::optional<BoundColumn> ExpressionBinder::Resolve(const Name& name, qsizetype position) const
{
    if (!name.Table.isEmpty()) {
        const int source = FindSource(name.Table);
        const int column = source < 0 ? -1 : Sources_[static_cast<std::size_t>(source)].Table->FindColumn(name.Field);
        if (column < 0)
            RaiseUnknownColumn(name.Table + u'.' + name.Field, position, QStringLiteral("is no column of its tables"));
        return BoundColumn{source, column};
    }
    std::optional<BoundColumn> found;
    for (std::size_t i = 0; i < Sources_.size(); ++i) {
        const int column = Sources_[i].Table->FindColumn(name.Field);
        if (column < 0)
            continue;
        if (found)
            RaiseUnknownColumn(name.Field, position, QStringLiteral("is a column of more than one of its tables"));
        found = BoundColumn{static_cast<int>(i), column};
    }
    const qsizetype dot = name.Field.indexOf(u'.');
    if (!found && dot > 0 && FindSource(name.Field.left(dot)) >= 0)
        return Resolve({name.Field.left(dot), name.Field.mid(dot + 1)}, position);
    return found;
}

const engine::Column& ExpressionBinder::ColumnAt(const BoundColumn& column) const
{
    return Sources_[static_cast<std::size_t>(column.Source)].Table->Columns[static_cast<std::size_t>(column.Column)];
}

BoundExpression ExpressionBinder::Column(const BoundColumn& column) const
{
    return {column, TypeOf(ColumnAt(column).Type)};
}

BoundExpression ExpressionBinder::Condition(const Expression& expression)
{
    BoundExpression condition = Value(expression);
    if (condition.Type == ValueType::Text)
        RaiseTypeMismatch(expression.Position);
    return Converted(std::move(condition), ValueType::Number);
}

BoundExpression ExpressionBinder::Value(const Expression& expression)
{
    if (const Literal* literal = AsLiteral(expression))
        return MakeConstant(StoredOf(*literal), TypeOfLiteral(*literal));
    if (const Name* name = std::get_if<Name>(&expression.Node))
        return BindName(*name, expression.Position);
    if (const Operation* operation = std::get_if<Operation>(&expression.Node))
        return BindOperation(*operation);
    return BindAggregate(std::get<jetsql::Aggregate>(expression.Node));
}

BoundExpression ExpressionBinder::BindName(const Name& name, qsizetype position)
{
    if (const std::optional<BoundColumn> column = Resolve(name, position))
        return Column(*column);
    QStringList& names = Parameters_.Names;
    const auto known = std::find_if(names.begin(), names.end(), [&](const QString& other) {
        return other.compare(name.Field, Qt::CaseInsensitive) == 0;
    });
    const int index = static_cast<int>(known - names.begin());
    if (known == names.end()) {
        names.append(name.Field);
        Parameters_.AreNumbers.push_back(false);
        Parameters_.AreTexts.push_back(false);
    }
    return {BoundParameter{index, ParameterUse::AsIs}, ValueType::Unknown};
}

BoundExpression ExpressionBinder::BindAggregate(const jetsql::Aggregate& aggregate)
{
    BoundAggregate bound;
    bound.Function = aggregate.Function;
    ValueType type = ValueType::Number;
    if (!aggregate.Operand.empty()) {
        const Expression& operand = aggregate.Operand.front();
        bound.Operand.push_back(aggregate.Function == AggregateFunction::Sum ? NumberOf(operand) : Value(operand));
        if (aggregate.Function == AggregateFunction::Maximum || aggregate.Function == AggregateFunction::Minimum)
            type = bound.Operand.front().Type;
    }
    return {std::move(bound), type};
}

BoundExpression ExpressionBinder::BindOperation(const Operation& operation)
{
    const Operands& operands = operation.Operands;
    switch (operation.Kind) {
    case Operator::Or:
        return BindOr(operands);
    case Operator::And: {
        std::vector<BoundExpression> conditions;
        conditions.reserve(operands.size());
        for (const Expression& operand : operands)
            conditions.push_back(Condition(operand));
        return MakeChain(Operator::And, std::move(conditions));
    }
    case Operator::Not:
        return MakeOperation(Operator::Not, ValueType::Number, Condition(operands[0]));
    case Operator::Equal:
    case Operator::NotEqual:
    case Operator::Less:
    case Operator::LessOrEqual:
    case Operator::Greater:
    case Operator::GreaterOrEqual:
        return BindComparison(operation);
    case Operator::Like:
    case Operator::NotLike:
        return BindLike(operation);
    case Operator::IsNull:
    case Operator::IsNotNull:
        return MakeOperation(operation.Kind, ValueType::Number, Value(operands[0]));
    case Operator::Between:
    case Operator::NotBetween:
    case Operator::In:
    case Operator::NotIn:
        return BindAmong(operation);
    case Operator::Concatenate:
        return BindConcatenation(operands);
    case Operator::Add:
        return BindAddition(operands);
    case Operator::Subtract:
    case Operator::Modulo:
    case Operator::Multiply:
    case Operator::Divide: {
        BoundExpression left = NumberOf(operands[0]);
        return BindArithmetic(operation.Kind, std::move(left), operands[1]);
    }
    case Operator::Negate:
        return MakeOperation(Operator::Negate, ValueType::Number, NumberOf(operands[0]));
    }
    return {};
}

BoundExpression ExpressionBinder::BindComparison(const Operation& operation)
{
    const Operands& operands = operation.Operands;
    BoundExpression left;
    BoundExpression right;
    if (const Literal* literal = AsLiteral(operands[0])) {
        right = Value(operands[1]);
        left = Constant(*literal, right.Type, operands[0].Position);
        right = Converted(std::move(right), left.Type);
    } else {
        left = Value(operands[0]);
        right = ComparedWith(left.Type, operands[1]);
        left = Converted(std::move(left), right.Type);
    }
    return MakeOperation(operation.Kind, ValueType::Number, std::move(left), std::move(right));
}

BoundExpression ExpressionBinder::ComparedWith(ValueType type, const Expression& expression)
{
    if (const Literal* literal = AsLiteral(expression))
        return Constant(*literal, type, expression.Position);
    BoundExpression value = Value(expression);
    if ((type == ValueType::Text && IsNumeric(value.Type)) || (IsNumeric(type) && value.Type == ValueType::Text))
        RaiseTypeMismatch(expression.Position);
    return Converted(std::move(value), type);
}

BoundExpression ExpressionBinder::Converted(BoundExpression value, ValueType type)
{
    if (!IsParameter(value) || type == ValueType::Unknown)
        return value;
    BoundParameter& parameter = std::get<BoundParameter>(value.Node);
    const bool isText = type == ValueType::Text;
    parameter.Use = isText ? ParameterUse::AsText : ParameterUse::AsNumber;
    (isText ? Parameters_.AreTexts : Parameters_.AreNumbers)[static_cast<std::size_t>(parameter.Index)] = true;
    value.Type = isText ? ValueType::Text : ValueType::Number;
    return value;
}

BoundExpression ExpressionBinder::BindAmong(const Operation& operation)
{
    std::vector<BoundExpression> operands;
    operands.reserve(operation.Operands.size());
    operands.push_back(Value(operation.Operands[0]));
    // What has no type of its own takes that of the first beside it that has one.
    ValueType type = operands.front().Type;
    for (std::size_t i = 1; i < operation.Operands.size(); ++i) {
        operands.push_back(ComparedWith(type, operation.Operands[i]));
        if (type == ValueType::Unknown)
            type = operands.back().Type;
    }
    for (BoundExpression& operand : operands)
        operand = Converted(std::move(operand), type);
    return MakeChain(operation.Kind, std::move(operands));
}

BoundExpression ExpressionBinder::BindConcatenation(const Operands& operands)
{
    BoundExpression left = TextToMatch(operands[0]);
    BoundExpression right = TextToMatch(operands[1]);
    return MakeOperation(Operator::Concatenate, ValueType::Text, std::move(left), std::move(right));
}

BoundExpression ExpressionBinder::BindAddition(const Operands& operands)
{
    BoundExpression left = Value(operands[0]);
    // What is bound already is not bound again: a sum of many terms would take twice as long for each.
    if (left.Type != ValueType::Text)
        return BindArithmetic(Operator::Add, Converted(std::move(left), ValueType::Number), operands[1]);
    BoundExpression right = Value(operands[1]);
    if (IsNumeric(right.Type))
        RaiseTypeMismatch(operands[1].Position);
    return MakeOperation(Operator::Add, ValueType::Text, std::move(left), Converted(std::move(right), ValueType::Text));
}

/// A day before or after another by a number is a day; the time between two days is a number.
BoundExpression ExpressionBinder::BindArithmetic(Operator kind, BoundExpression left, const Expression& operand)
{
    BoundExpression right = NumberOf(operand);
    const bool isLeftDate = left.Type == ValueType::Date;
    const bool isRightDate = right.Type == ValueType::Date;
    bool isDate = false;
    if (kind == Operator::Subtract)
        isDate = isLeftDate && !isRightDate;
    else if (kind == Operator::Add || kind == Operator::Multiply)
        isDate = isLeftDate || isRightDate;
    return MakeOperation(kind, isDate ? ValueType::Date : ValueType::Number, std::move(left), std::move(right));
}

BoundExpression ExpressionBinder::NumberOf(const Expression& expression)
{
    if (const Literal* literal = AsLiteral(expression))
        return Constant(*literal, ValueType::Number, expression.Position);
    BoundExpression value = Value(expression);
    if (value.Type == ValueType::Text)
        RaiseTypeMismatch(expression.Position);
    return Converted(std::move(value), ValueType::Number);
}

} // namespace dao::query
