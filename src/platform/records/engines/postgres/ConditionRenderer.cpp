// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/ConditionRenderer.h"

#include "platform/records/TextCodec.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/query/StoredValues.h"

#include <cmath>

namespace dao::postgres
{

using jetsql::Operator;
using query::BoundExpression;
using query::BoundOperation;

namespace
{

constexpr char NullTruth[] = "NULL::boolean";
/// Whole numbers up to here are the same as floating-point ones.
constexpr double LargestExact = 9007199254740992.0; // 2^53

const char* SymbolOf(Operator kind)
{
    switch (kind) {
    case Operator::Equal:
        return " = ";
    case Operator::NotEqual:
        return " <> ";
    case Operator::Less:
        return " < ";
    case Operator::LessOrEqual:
        return " <= ";
    case Operator::Greater:
        return " > ";
    default:
        return " >= ";
    }
}

std::optional<QByteArray> Not(const std::optional<QByteArray>& condition)
{
    if (!condition)
        return std::nullopt;
    return "(NOT " + *condition + ')';
}

} // namespace

std::optional<QByteArray> FoldedLike(const QString& pattern)
{
    for (const QChar character : pattern) {
        if (character == u'?' || character == u'#' || character == u'[')
            return std::nullopt;
    }
    const QByteArray utf8 = TextToUtf8(pattern);
    QByteArray like;
    for (const char octet : Folded({utf8.constData(), static_cast<std::size_t>(utf8.size())})) {
        if (octet == '*') {
            like += '%';
            continue;
        }
        if (octet == '%' || octet == '_' || octet == '\\')
            like += '\\';
        like += octet;
    }
    return like;
}

std::optional<QByteArray> ConditionRenderer::Condition(const BoundExpression& expression)
{
    const int count = Values_.Count();
    Text text = Render(expression);
    if (!text)
        Values_.Truncate(count);
    return text;
}

QByteArray ConditionRenderer::Conjuncts(const BoundExpression& expression, bool& isWhole)
{
    const auto* operation = std::get_if<BoundOperation>(&expression.Node);
    if (operation == nullptr || operation->Kind != Operator::And) {
        const Text text = Condition(expression);
        isWhole = isWhole && text.has_value();
        return text.value_or(QByteArray());
    }
    QList<QByteArray> said;
    for (const BoundExpression& operand : operation->Operands) {
        const QByteArray text = Conjuncts(operand, isWhole);
        if (!text.isEmpty())
            said += text;
    }
    return said.join(" AND ");
}

std::optional<QByteArray> ConditionRenderer::Render(const BoundExpression& expression)
{
    if (const auto* operation = std::get_if<BoundOperation>(&expression.Node))
        return Operation(*operation);
    const std::optional<Side> side = SideOf(expression);
    if (!side)
        return std::nullopt;
    if (side->Column < 0) {
        if (query::IsNull(side->Value))
            return NullTruth;
        return query::RealIn(side->Value) != 0 ? QByteArrayLiteral("TRUE") : QByteArrayLiteral("FALSE");
    }
    if (IsTextType(Table_.Columns[static_cast<std::size_t>(side->Column)].Type))
        return std::nullopt;
    return '(' + ColumnName(Table_, side->Column) + " <> 0)";
}

std::optional<QByteArray> ConditionRenderer::Operation(const BoundOperation& operation)
{
    const Operands& operands = operation.Operands;
    switch (operation.Kind) {
    case Operator::Or:
        return Chain(operands, " OR ");
    case Operator::And:
        return Chain(operands, " AND ");
    case Operator::Not:
        return Not(Render(operands[0]));
    case Operator::Equal:
    case Operator::NotEqual:
    case Operator::Less:
    case Operator::LessOrEqual:
    case Operator::Greater:
    case Operator::GreaterOrEqual:
        return Comparison(operands[0], operands[1], SymbolOf(operation.Kind));
    case Operator::IsNull:
    case Operator::IsNotNull: {
        const auto* column = std::get_if<query::BoundColumn>(&operands[0].Node);
        if (column == nullptr || column->Source != 0)
            return std::nullopt;
        return '(' + ColumnName(Table_, column->Column) +
               (operation.Kind == Operator::IsNull ? " IS NULL)" : " IS NOT NULL)");
    }
    case Operator::Between:
        return Between(operands);
    case Operator::NotBetween:
        return Not(Between(operands));
    case Operator::In:
        return In(operands);
    case Operator::NotIn:
        return Not(In(operands));
    case Operator::Like:
        return Like(operands);
    case Operator::NotLike:
        return Not(Like(operands));
    default:
        return std::nullopt;
    }
}

std::optional<QByteArray> ConditionRenderer::Chain(const Operands& operands, const char* symbol)
{
    QList<QByteArray> said;
    for (const BoundExpression& operand : operands) {
        const Text text = Render(operand);
        if (!text)
            return std::nullopt;
        said += *text;
    }
    return '(' + said.join(symbol) + ')';
}

bool ConditionRenderer::IsComparable(int column) const
{
    return !IsTextType(Table_.Columns[static_cast<std::size_t>(column)].Type) || HasTwin(Table_, column);
}

std::optional<ConditionRenderer::Side> ConditionRenderer::SideOf(const BoundExpression& expression) const
{
    Side side;
    if (const auto* column = std::get_if<query::BoundColumn>(&expression.Node)) {
        if (column->Source != 0 || !IsComparable(column->Column))
            return std::nullopt;
        side.Column = column->Column;
    } else if (const auto* constant = std::get_if<query::BoundConstant>(&expression.Node)) {
        side.Value = constant->Value;
    } else if (const auto* parameter = std::get_if<query::BoundParameter>(&expression.Node)) {
        side.Value = Parameters_.At(*parameter);
    } else {
        return std::nullopt;
    }
    return side;
}

QByteArray ConditionRenderer::Place(const StoredValue& value, Kind kind)
{
    Values_.Add(value, kind);
    return '$' + QByteArray::number(Values_.Count());
}

std::optional<QByteArray> ConditionRenderer::ValueFor(int column, const StoredValue& value)
{
    const engine::Column& definition = Table_.Columns[static_cast<std::size_t>(column)];
    const bool isText = std::holds_alternative<QByteArray>(value);
    if (isText != IsTextType(definition.Type))
        return std::nullopt;
    if (isText)
        return Place(KeyValue(definition, value), Kind::Octets);
    const double real = query::RealIn(value);
    if (!(std::abs(real) <= LargestExact))
        return std::nullopt;
    const bool isWhole = std::trunc(real) == real;
    return Place(value, KindOf(definition.Type) == Kind::Integer && isWhole ? Kind::Integer : Kind::Real);
}

std::optional<QByteArray> ConditionRenderer::Comparison(const BoundExpression& left, const BoundExpression& right,
                                                        const char* symbol)
{
    const std::optional<Side> first = SideOf(left);
    const std::optional<Side> second = SideOf(right);
    if (!first || !second || (first->Column < 0 && second->Column < 0))
        return std::nullopt;
    if ((first->Column < 0 && query::IsNull(first->Value)) || (second->Column < 0 && query::IsNull(second->Value)))
        return NullTruth;
    const auto isText = [this](int column) {
        return IsTextType(Table_.Columns[static_cast<std::size_t>(column)].Type);
    };
    if (first->Column >= 0 && second->Column >= 0) {
        if (isText(first->Column) != isText(second->Column))
            return std::nullopt;
        return '(' + KeyName(Table_, first->Column) + symbol + KeyName(Table_, second->Column) + ')';
    }
    const bool isColumnFirst = first->Column >= 0;
    const int column = isColumnFirst ? first->Column : second->Column;
    const Text value = ValueFor(column, isColumnFirst ? second->Value : first->Value);
    if (!value)
        return std::nullopt;
    const QByteArray name = KeyName(Table_, column);
    return '(' + (isColumnFirst ? name : *value) + symbol + (isColumnFirst ? *value : name) + ')';
}

std::optional<QByteArray> ConditionRenderer::Between(const Operands& operands)
{
    const Text lower = Comparison(operands[0], operands[1], " >= ");
    const Text upper = Comparison(operands[0], operands[2], " <= ");
    if (!lower || !upper)
        return std::nullopt;
    return '(' + *lower + " AND " + *upper + ')';
}

std::optional<QByteArray> ConditionRenderer::In(const Operands& operands)
{
    QList<QByteArray> said;
    for (std::size_t i = 1; i < operands.size(); ++i) {
        const Text equal = Comparison(operands[0], operands[i], " = ");
        if (!equal)
            return std::nullopt;
        said += *equal;
    }
    return '(' + said.join(" OR ") + ')';
}

QByteArray ConditionRenderer::EntryLookedFor(const QString& pattern)
{
    constexpr qsizetype EndOctets = 2;
    const QString entry = pattern.mid(EndOctets, pattern.size() - 2 * EndOctets);
    const bool isEntry = pattern.size() > 2 * EndOctets && pattern.startsWith(QLatin1String("*|")) &&
                         pattern.endsWith(QLatin1String("|*")) && !entry.contains(u'*') && !entry.contains(u'|');
    if (!isEntry)
        return {};
    const QByteArray utf8 = TextToUtf8(entry);
    return EntriesOf(Place(Folded({utf8.constData(), static_cast<std::size_t>(utf8.size())}), Kind::Octets));
}

std::optional<QByteArray> ConditionRenderer::Like(const Operands& operands)
{
    const auto* pattern = std::get_if<query::BoundPattern>(&operands[0].Node);
    if (pattern == nullptr || pattern->Texts.isEmpty())
        return std::nullopt;
    QList<QByteArray> said;
    for (const QString& text : pattern->Texts) {
        const std::optional<QByteArray> like = FoldedLike(text);
        if (!like)
            return std::nullopt;
        const QByteArray place = Place(*like, Kind::Octets);
        const QByteArray lookedFor = EntryLookedFor(text);
        for (std::size_t i = 1; i < operands.size(); ++i) {
            const auto* column = std::get_if<query::BoundColumn>(&operands[i].Node);
            if (column == nullptr || column->Source != 0 || !HasTwin(Table_, column->Column))
                return std::nullopt;
            const QByteArray name = FoldedName(column->Column);
            const QByteArray narrowed =
                lookedFor.isEmpty() ? QByteArray() : EntriesOf(name) + " @> " + lookedFor + " AND ";
            said += '(' + narrowed + name + " LIKE " + place + ')';
        }
    }
    return '(' + said.join(" OR ") + ')';
}

} // namespace dao::postgres
