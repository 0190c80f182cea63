// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/ExpressionRenderer.h"

#include "platform/records/Error.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include <algorithm>

namespace dao::sqlite
{

using jetsql::AggregateFunction;
using jetsql::Operator;
using query::BoundExpression;
using query::BoundOperation;
using query::ValueType;

namespace
{
// SQLite's parser has a stack of 100 places, some of which the statement around an expression takes, and refuses
// expression trees deeper than 1000.
constexpr int maximumParserStack = 80;
constexpr int maximumTreeDepth = 900;
// Operands joined in one go: wide enough for few parentheses, narrow enough for shallow trees.
constexpr std::size_t chainWidth = 8;
// SQLite's functions take at most 127 arguments.
constexpr std::size_t maximumLikeTexts = 100;

const char* SymbolOf(Operator kind)
{
    switch (kind) {
    case Operator::Equal:
        return "=";
    case Operator::NotEqual:
        return "<>";
    case Operator::Less:
        return "<";
    case Operator::LessOrEqual:
        return "<=";
    case Operator::Greater:
        return ">";
    default:
        return ">=";
    }
}

Piece Checked(Piece piece)
{
    if (piece.ParserStack > maximumParserStack || piece.TreeDepth > maximumTreeDepth)
        throw Error(errSyntax, QStringLiteral("Syntax error in the query: an expression is too complex."));
    return piece;
}

QByteArray Collated(const QByteArray& text, ValueType type)
{
    return IsNumeric(type) ? text : text + " COLLATE " + CollationName;
}
} // namespace

QByteArray ExpressionRenderer::Condition(const BoundExpression& expression)
{
    return Render(expression).Text;
}

Piece ExpressionRenderer::Value(const BoundExpression& expression)
{
    const Piece piece = Render(expression);
    return IsTruth(expression) ? Checked(Prefixed("-", piece)) : piece;
}

QByteArray ExpressionRenderer::Comparable(const BoundExpression& expression)
{
    return Collated(Value(expression).Text, expression.Type);
}

Piece ExpressionRenderer::Render(const BoundExpression& expression)
{
    if (const auto* constant = std::get_if<query::BoundConstant>(&expression.Node))
        return Bind(constant->Value);
    if (const auto* column = std::get_if<query::BoundColumn>(&expression.Node))
        return RenderColumn(*column);
    if (const auto* parameter = std::get_if<query::BoundParameter>(&expression.Node))
        return Bind(*parameter);
    if (const auto* pattern = std::get_if<query::BoundPattern>(&expression.Node))
        return BindPattern(*pattern);
    if (const auto* aggregate = std::get_if<query::BoundAggregate>(&expression.Node))
        return Checked(RenderAggregate(*aggregate));
    return Checked(RenderOperation(std::get<BoundOperation>(expression.Node), expression.Type));
}

Piece ExpressionRenderer::RenderColumn(const query::BoundColumn& column) const
{
    const query::BoundSource& source = Sources_[static_cast<std::size_t>(column.Source)];
    Piece piece;
    piece.Text = QuoteName(source.Qualifier) + '.' +
                 QuoteName(source.Table->Columns[static_cast<std::size_t>(column.Column)].Name);
    piece.ParserStack = 3;
    piece.TreeDepth = 3;
    return piece;
}

Piece ExpressionRenderer::RenderAggregate(const query::BoundAggregate& aggregate)
{
    if (aggregate.Operand.empty()) {
        Piece all;
        all.Text = "COUNT(*)";
        all.ParserStack = 5;
        return all;
    }
    const BoundExpression& operand = aggregate.Operand.front();
    Piece value = Value(operand);
    switch (aggregate.Function) {
    case AggregateFunction::Count:
        return Call("COUNT", {value});
    case AggregateFunction::Sum:
        return Call("SUM", {value});
    case AggregateFunction::Maximum:
    case AggregateFunction::Minimum:
        break;
    }
    value.Text = Collated(value.Text, operand.Type);
    return Call(aggregate.Function == AggregateFunction::Maximum ? "MAX" : "MIN", {value});
}

Piece ExpressionRenderer::RenderOperation(const BoundOperation& operation, ValueType type)
{
    const Operands& operands = operation.Operands;
    switch (operation.Kind) {
    case Operator::Or:
        return RenderChain(operands, "OR");
    case Operator::And:
        return RenderChain(operands, "AND");
    case Operator::Not:
        return Prefixed("NOT ", Render(operands[0]));
    case Operator::Equal:
    case Operator::NotEqual:
    case Operator::Less:
    case Operator::LessOrEqual:
    case Operator::Greater:
    case Operator::GreaterOrEqual:
        return RenderComparison(operands, operation.Kind);
    case Operator::Like:
        return RenderLike(operands);
    case Operator::NotLike:
        return Prefixed("NOT ", RenderLike(operands));
    case Operator::IsNull:
        return Infix(Render(operands[0]), "IS", {"NULL"});
    case Operator::IsNotNull:
        return Infix(Render(operands[0]), "IS NOT", {"NULL"});
    case Operator::Between:
        return RenderBetween(operands, "BETWEEN");
    case Operator::NotBetween:
        return RenderBetween(operands, "NOT BETWEEN");
    case Operator::In:
        return RenderIn(operands, "IN");
    case Operator::NotIn:
        return RenderIn(operands, "NOT IN");
    case Operator::Concatenate: {
        const Piece left = Value(operands[0]);
        return Call("jet_concatenate", {left, Value(operands[1])});
    }
    case Operator::Add:
        return RenderInfix(operands, type == ValueType::Text ? "||" : "+");
    case Operator::Subtract:
        return RenderInfix(operands, "-");
    case Operator::Modulo:
        return RenderModulo(operands);
    case Operator::Multiply:
        return RenderInfix(operands, "*");
    case Operator::Divide:
        return RenderDivision(operands);
    case Operator::Negate:
        return Prefixed("-", Value(operands[0]));
    }
    return {};
}

Piece ExpressionRenderer::RenderChain(const Operands& operands, const char* symbol)
{
    std::vector<Piece> pieces;
    pieces.reserve(operands.size());
    for (const BoundExpression& operand : operands)
        pieces.push_back(Render(operand));
    return Chain(std::move(pieces), symbol);
}

Piece ExpressionRenderer::Chain(std::vector<Piece> pieces, const char* symbol)
{
    // The piece that needs most stack comes first, where it costs SQLite's parser least.
    const auto needsLess = [](const Piece& left, const Piece& right) { return left.ParserStack < right.ParserStack; };
    while (pieces.size() > 1) {
        const auto deepest = std::max_element(pieces.begin(), pieces.end(), needsLess);
        if (deepest->ParserStack > maximumParserStack / 4)
            std::rotate(pieces.begin(), deepest, deepest + 1);
        std::vector<Piece> joined;
        for (std::size_t start = 0; start < pieces.size(); start += chainWidth) {
            const std::size_t end = std::min(pieces.size(), start + chainWidth);
            if (end - start == 1) {
                joined.push_back(std::move(pieces[start]));
                continue;
            }
            Piece group;
            group.Text = "(";
            for (std::size_t i = start; i < end; ++i) {
                if (i > start)
                    group.Text += QByteArray(" ") + symbol + ' ';
                group.Text += pieces[i].Text;
                Adopt(group, pieces[i], i > start ? 3 : 1);
            }
            group.Text += ')';
            group.TreeDepth += static_cast<int>(end - start);
            joined.push_back(std::move(group));
        }
        pieces = std::move(joined);
    }
    return std::move(pieces.front());
}

Piece ExpressionRenderer::RenderComparison(const Operands& operands, Operator kind)
{
    Piece left = ComparedValue(operands[0], kind);
    const Piece right = ComparedValue(operands[1], kind);
    if (!IsNumeric(operands[0].Type) && !IsNumeric(operands[1].Type)) {
        left.Text = Collated(left.Text, operands[0].Type);
        left.ParserStack = std::max(left.ParserStack, 3);
        ++left.TreeDepth;
    }
    return Infix(left, SymbolOf(kind), right);
}

/// SQLite joins over a column without an index by an index and a Bloom filter that it makes for the query. The filter
/// goes by the length of texts, and loses rows where two spellings of one text take different room: the Kelvin sign is
/// three octets, the k that it equals one. A plus in front of the column keeps SQLite from making either.
Piece ExpressionRenderer::ComparedValue(const BoundExpression& operand, Operator kind)
{
    Piece piece = Value(operand);
    const auto* column = std::get_if<query::BoundColumn>(&operand.Node);
    if (column == nullptr || kind != Operator::Equal || operand.Type != ValueType::Text || Sources_.size() == 1)
        return piece;
    const engine::Table& table = *Sources_[static_cast<std::size_t>(column->Source)].Table;
    const bool isIndexed = std::any_of(table.Indexes.begin(), table.Indexes.end(),
                                       [column](const auto& index) { return index.Columns.front() == column->Column; });
    return isIndexed ? piece : Prefixed("+", piece);
}

Piece ExpressionRenderer::RenderLike(const Operands& operands)
{
    const Piece pattern = Value(operands[0]);
    std::vector<Piece> calls;
    for (std::size_t start = 1; start < operands.size(); start += maximumLikeTexts) {
        Piece call;
        call.Text = "jet_like(" + pattern.Text;
        Adopt(call, pattern, 5);
        const std::size_t end = std::min(operands.size(), start + maximumLikeTexts);
        for (std::size_t i = start; i < end; ++i) {
            const Piece text = Value(operands[i]);
            call.Text += ", " + text.Text;
            Adopt(call, text, 5);
        }
        call.Text += ')';
        calls.push_back(std::move(call));
    }
    return Chain(std::move(calls), "OR");
}

Piece ExpressionRenderer::RenderBetween(const Operands& operands, const char* word)
{
    const Piece value = Value(operands[0]);
    const Piece lower = Value(operands[1]);
    const Piece upper = Value(operands[2]);
    Piece result;
    Adopt(result, value, 1);
    Adopt(result, lower, 3);
    Adopt(result, upper, 5);
    result.ParserStack = std::max(result.ParserStack, 6);
    result.TreeDepth += 2;
    result.Text =
        '(' + Collated(value.Text, operands[0].Type) + ' ' + word + ' ' + lower.Text + " AND " + upper.Text + ')';
    return result;
}

Piece ExpressionRenderer::RenderIn(const Operands& operands, const char* word)
{
    // With one candidate SQLite takes it for a comparison.
    const Piece value = ComparedValue(operands[0], Operator::Equal);
    Piece result;
    Adopt(result, value, 1);
    result.Text = '(' + Collated(value.Text, operands[0].Type) + ' ' + word + " (";
    for (std::size_t i = 1; i < operands.size(); ++i) {
        const Piece candidate = ComparedValue(operands[i], Operator::Equal);
        if (i > 1)
            result.Text += ", ";
        result.Text += candidate.Text;
        Adopt(result, candidate, 6);
    }
    result.Text += "))";
    ++result.TreeDepth;
    return result;
}

Piece ExpressionRenderer::RenderInfix(const Operands& operands, const char* symbol)
{
    const Piece left = Value(operands[0]);
    return Infix(left, symbol, Value(operands[1]));
}

Piece ExpressionRenderer::RenderModulo(const Operands& operands)
{
    const auto whole = [this](const BoundExpression& operand) {
        Piece number = Value(operand);
        number.Text = "CAST(ROUND(" + number.Text + ") AS INTEGER)";
        number.ParserStack += 7;
        number.TreeDepth += 2;
        return number;
    };
    const Piece left = whole(operands[0]);
    return Infix(left, "%", whole(operands[1]));
}

Piece ExpressionRenderer::RenderDivision(const Operands& operands)
{
    Piece left = Value(operands[0]);
    left.Text = "CAST(" + left.Text + " AS REAL)";
    left.ParserStack = std::max(left.ParserStack + 2, 5);
    ++left.TreeDepth;
    return Infix(left, "/", Value(operands[1]));
}

Piece ExpressionRenderer::Bind(Binding binding)
{
    Result_.Bindings.push_back(std::move(binding));
    Piece piece;
    piece.Text = '?' + QByteArray::number(static_cast<qlonglong>(Result_.Bindings.size()));
    return piece;
}

Piece ExpressionRenderer::BindPattern(const query::BoundPattern& pattern)
{
    QByteArray& place = Patterns_[pattern.Texts];
    if (place.isEmpty())
        place = Bind(pattern.Compiled).Text;
    Piece piece;
    piece.Text = place;
    return piece;
}

} // namespace dao::sqlite
