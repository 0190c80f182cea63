// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/ExpressionRenderer.h"

#include "platform/records/Error.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include <algorithm>
#include <initializer_list>

namespace dao::sqlite
{

using jetsql::AggregateFunction;
using jetsql::Expression;
using jetsql::Literal;
using jetsql::Name;
using jetsql::Operation;
using jetsql::Operator;

namespace
{
// SQLite's parser has a stack of 100 places, some of which the statement around an expression takes, and refuses
// expression trees deeper than 1000.
constexpr int maximumParserStack = 80;
constexpr int maximumTreeDepth = 900;
// Operands joined in one go: wide enough for few parentheses, narrow enough for shallow trees.
constexpr std::size_t chainWidth = 8;

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
} // namespace

void RaiseTypeMismatch(qsizetype position)
{
    throw Error(errTypeMismatch,
                QStringLiteral("Type mismatch in the query at character %1: the values there cannot be compared or "
                               "computed with each other.")
                    .arg(position + 1));
}

ValueType ExpressionRenderer::TypeOf(DataTypeEnum type)
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

void ExpressionRenderer::AddTable(const TableInfo& table, const jetsql::TableReference& reference)
{
    const QString& qualifier = reference.Alias.isEmpty() ? table.Name : reference.Alias;
    if (FindTable(qualifier) >= 0)
        throw Error(errSyntax, QStringLiteral("Syntax error in the query: '%1' is named twice behind FROM, at "
                                              "character %2.")
                                   .arg(qualifier)
                                   .arg(reference.Position + 1));
    Tables_.push_back({&table, qualifier});
}

int ExpressionRenderer::FindTable(const QString& qualifier) const
{
    for (std::size_t i = 0; i < Tables_.size(); ++i) {
        if (Tables_[i].Qualifier.compare(qualifier, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

namespace
{
const ColumnInfo* FindColumn(const TableInfo& table, const QString& name)
{
    for (const ColumnInfo& column : table.Columns) {
        if (column.Name.compare(name, Qt::CaseInsensitive) == 0)
            return &column;
    }
    return nullptr;
}

[[noreturn]] void RaiseUnknownColumn(const QString& name, qsizetype position, const QString& reason)
{
    throw Error(
        errTooFewParameters,
        QStringLiteral("The name '%1' at character %2 of the query %3.").arg(name).arg(position + 1).arg(reason));
}
} // namespace

std::optional<ColumnReference> ExpressionRenderer::Resolve(const Name& name, qsizetype position) const
{
    if (!name.Table.isEmpty()) {
        const int index = FindTable(name.Table);
        const ColumnInfo* column =
            index < 0 ? nullptr : FindColumn(*Tables_[static_cast<std::size_t>(index)].Table, name.Field);
        if (column == nullptr)
            RaiseUnknownColumn(name.Table + u'.' + name.Field, position, QStringLiteral("is no column of its tables"));
        return ColumnReference{index, column};
    }
    std::optional<ColumnReference> found;
    for (std::size_t i = 0; i < Tables_.size(); ++i) {
        if (const ColumnInfo* column = FindColumn(*Tables_[i].Table, name.Field)) {
            if (found)
                RaiseUnknownColumn(name.Field, position, QStringLiteral("is a column of more than one of its tables"));
            found = ColumnReference{static_cast<int>(i), column};
        }
    }
    const qsizetype dot = name.Field.indexOf(u'.');
    if (!found && dot > 0 && FindTable(name.Field.left(dot)) >= 0)
        return Resolve({name.Field.left(dot), name.Field.mid(dot + 1)}, position);
    return found;
}

QByteArray ExpressionRenderer::Column(const ColumnReference& reference) const
{
    const ScopeTable& table = Tables_[static_cast<std::size_t>(reference.TableIndex)];
    return QuoteName(table.Qualifier) + '.' + QuoteName(reference.Column->Name);
}

QByteArray ExpressionRenderer::Condition(const Expression& expression)
{
    return TruthOf(expression).Text;
}

Piece ExpressionRenderer::Value(const Expression& expression)
{
    Piece piece = Render(expression);
    if (!piece.IsTruth)
        return piece;
    Piece value = AsType(piece, ValueType::Number);
    value.Text = "(-" + piece.Text + ')';
    value.IsTruth = false;
    Adopt(value, piece, 2);
    return Checked(value);
}

QByteArray ExpressionRenderer::Comparable(const Piece& value)
{
    return IsNumeric(value.Type) ? value.Text : value.Text + " COLLATE " + CollationName;
}

QByteArray ExpressionRenderer::Comparable(const Expression& expression)
{
    return Comparable(Value(expression));
}

Piece ExpressionRenderer::TruthOf(const Expression& expression)
{
    Piece piece = Render(expression);
    if (piece.Type == ValueType::Text)
        RaiseTypeMismatch(expression.Position);
    return piece;
}

Piece ExpressionRenderer::Render(const Expression& expression)
{
    if (const Literal* literal = AsLiteral(expression))
        return Bind(literal->Value, TypeOfLiteral(*literal));
    if (const Name* name = std::get_if<Name>(&expression.Node))
        return RenderName(*name, expression.Position);
    if (const Operation* operation = std::get_if<Operation>(&expression.Node))
        return Checked(RenderOperation(*operation));
    return Checked(RenderAggregate(std::get<jetsql::Aggregate>(expression.Node)));
}

const Piece& ExpressionRenderer::Checked(const Piece& piece)
{
    if (piece.ParserStack > maximumParserStack || piece.TreeDepth > maximumTreeDepth)
        throw Error(errSyntax, QStringLiteral("Syntax error in the query: an expression is too complex."));
    return piece;
}

Piece ExpressionRenderer::RenderName(const Name& name, qsizetype position)
{
    Piece piece;
    piece.ParserStack = 3;
    piece.TreeDepth = 3;
    if (const std::optional<ColumnReference> reference = Resolve(name, position)) {
        piece.Text = Column(*reference);
        piece.Type = TypeOf(reference->Column->Type);
        return piece;
    }
    QStringList& parameters = Result_.Parameters;
    auto known = std::find_if(parameters.begin(), parameters.end(), [&](const QString& parameter) {
        return parameter.compare(name.Field, Qt::CaseInsensitive) == 0;
    });
    const int index = static_cast<int>(known - parameters.begin());
    if (known == parameters.end())
        parameters.append(name.Field);
    Result_.Bindings.emplace_back(NamedParameter{index});
    piece.Text = '?' + QByteArray::number(static_cast<qlonglong>(Result_.Bindings.size()));
    piece.IsParameter = true;
    return piece;
}

Piece ExpressionRenderer::RenderAggregate(const jetsql::Aggregate& aggregate)
{
    if (aggregate.Operand.empty()) {
        Piece all;
        all.Text = "COUNT(*)";
        all.ParserStack = 5;
        return AsType(all, ValueType::Number);
    }
    if (aggregate.Function == AggregateFunction::Sum)
        return AsType(Call("SUM", {NumberOf(aggregate.Operand.front())}), ValueType::Number);
    Piece operand = Value(aggregate.Operand.front());
    if (aggregate.Function == AggregateFunction::Count)
        return AsType(Call("COUNT", {operand}), ValueType::Number);
    const ValueType type = operand.Type;
    operand.Text = Comparable(operand);
    return AsType(Call(aggregate.Function == AggregateFunction::Maximum ? "MAX" : "MIN", {operand}), type);
}

Piece ExpressionRenderer::RenderOperation(const Operation& operation)
{
    const Operands& operands = operation.Operands;
    switch (operation.Kind) {
    case Operator::Or:
        return RenderOr(operands);
    case Operator::And:
        return RenderAnd(operands);
    case Operator::Not:
        return RenderNot(operands[0]);
    case Operator::Equal:
    case Operator::NotEqual:
    case Operator::Less:
    case Operator::LessOrEqual:
    case Operator::Greater:
    case Operator::GreaterOrEqual:
        return RenderComparison(operands, SymbolOf(operation.Kind));
    case Operator::Like:
        return RenderLike(operands[0], operands[1]);
    case Operator::NotLike: {
        Piece like = RenderLike(operands[0], operands[1]);
        like.Text = "(NOT " + like.Text + ')';
        like.ParserStack += 2;
        ++like.TreeDepth;
        return like;
    }
    case Operator::IsNull:
        return RenderIsNull(operands[0], "IS NULL");
    case Operator::IsNotNull:
        return RenderIsNull(operands[0], "IS NOT NULL");
    case Operator::Between:
        return RenderBetween(operands, "BETWEEN");
    case Operator::NotBetween:
        return RenderBetween(operands, "NOT BETWEEN");
    case Operator::In:
        return RenderIn(operands, "IN");
    case Operator::NotIn:
        return RenderIn(operands, "NOT IN");
    case Operator::Concatenate:
        return RenderConcatenation(operands);
    case Operator::Add:
        return RenderAddition(operands);
    case Operator::Subtract:
        return RenderSubtraction(operands);
    case Operator::Modulo:
        return RenderModulo(operands);
    case Operator::Multiply:
        return RenderArithmetic(operands, "*", ValueType::Number);
    case Operator::Divide:
        return RenderDivision(operands);
    case Operator::Negate:
        return RenderNegation(operands[0]);
    }
    return {};
}

Piece ExpressionRenderer::RenderNot(const Expression& operand)
{
    const Piece truth = TruthOf(operand);
    Piece result;
    result.Text = "(NOT " + truth.Text + ')';
    Adopt(result, truth, 2);
    return AsTruth(result);
}

Piece ExpressionRenderer::RenderAnd(const Operands& operands)
{
    std::vector<Piece> pieces;
    pieces.reserve(operands.size());
    for (const Expression& operand : operands)
        pieces.push_back(TruthOf(operand));
    return Chain(std::move(pieces), "AND");
}

Piece ExpressionRenderer::RenderOr(const Operands& operands)
{
    std::vector<Piece> pieces;
    for (const Expression& operand : operands) {
        if (PlainPattern(operand) == nullptr)
            pieces.push_back(TruthOf(operand));
    }
    RenderPlainLikes(operands, pieces);
    return Chain(std::move(pieces), "OR");
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
    return AsTruth(std::move(pieces.front()));
}

Piece ExpressionRenderer::RenderIsNull(const Expression& operand, const char* test)
{
    const Piece value = Render(operand);
    Piece result;
    result.Text = '(' + value.Text + ' ' + test + ')';
    result.ParserStack = 4;
    Adopt(result, value, 1);
    return AsTruth(result);
}

Piece ExpressionRenderer::RenderComparison(const Operands& operands, const char* symbol)
{
    Piece left;
    Piece right;
    if (AsLiteral(operands[0]) != nullptr) {
        right = Value(operands[1]);
        left = ComparedWith(right.Type, operands[0]);
    } else {
        left = Value(operands[0]);
        right = ComparedWith(left.Type, operands[1]);
        if (left.IsParameter)
            left = ComparedWith(right.Type, operands[0]);
    }
    if (!IsNumeric(left.Type) && !IsNumeric(right.Type)) {
        left.Text = Comparable(left);
        left.ParserStack = std::max(left.ParserStack, 3);
        ++left.TreeDepth;
    }
    return AsTruth(Infix(left, symbol, right));
}

Piece ExpressionRenderer::ComparedWith(ValueType type, const Expression& expression)
{
    if (const Literal* literal = AsLiteral(expression))
        return Constant(*literal, type, expression.Position);
    Piece piece = Value(expression);
    if (piece.IsParameter && type == ValueType::Text)
        return AsType(Call("jet_text", {piece}), ValueType::Text);
    if (piece.IsParameter && IsNumeric(type))
        return NumberOf(expression);
    if ((type == ValueType::Text && IsNumeric(piece.Type)) || (IsNumeric(type) && piece.Type == ValueType::Text))
        RaiseTypeMismatch(expression.Position);
    return piece;
}

Piece ExpressionRenderer::Constant(const Literal& literal, ValueType wanted, qsizetype position)
{
    const ValueType own = TypeOfLiteral(literal);
    if (own == ValueType::Unknown || wanted == ValueType::Unknown)
        return Bind(literal.Value, own);
    if (wanted == ValueType::Text && own == ValueType::Number)
        return Bind(NumberText(literal.Value), ValueType::Text);
    if (IsNumeric(wanted) && own == ValueType::Text) {
        bool valid = false;
        const double number = literal.Value.toString().trimmed().toDouble(&valid);
        if (!valid)
            RaiseTypeMismatch(position);
        return Bind(number, ValueType::Number);
    }
    if ((wanted == ValueType::Text) != (own == ValueType::Text))
        RaiseTypeMismatch(position);
    return Bind(literal.Value, own);
}

Piece ExpressionRenderer::RenderBetween(const Operands& operands, const char* word)
{
    Piece value = Value(operands[0]);
    const Piece lower = ComparedWith(value.Type, operands[1]);
    const Piece upper = ComparedWith(value.Type, operands[2]);
    Piece result;
    Adopt(result, value, 1);
    Adopt(result, lower, 3);
    Adopt(result, upper, 5);
    result.ParserStack = std::max(result.ParserStack, 6);
    result.TreeDepth += 2;
    result.Text = '(' + Comparable(value) + ' ' + word + ' ' + lower.Text + " AND " + upper.Text + ')';
    return AsTruth(result);
}

Piece ExpressionRenderer::RenderIn(const Operands& operands, const char* word)
{
    const Piece value = Value(operands[0]);
    Piece result;
    Adopt(result, value, 1);
    result.Text = '(' + Comparable(value) + ' ' + word + " (";
    for (std::size_t i = 1; i < operands.size(); ++i) {
        const Piece candidate = ComparedWith(value.Type, operands[i]);
        if (i > 1)
            result.Text += ", ";
        result.Text += candidate.Text;
        Adopt(result, candidate, 6);
    }
    result.Text += "))";
    ++result.TreeDepth;
    return AsTruth(result);
}

Piece ExpressionRenderer::RenderConcatenation(const Operands& operands)
{
    const Piece left = TextToMatch(operands[0]);
    const Piece right = TextToMatch(operands[1]);
    return AsType(Call("jet_concatenate", {left, right}), ValueType::Text);
}

Piece ExpressionRenderer::RenderAddition(const Operands& operands)
{
    const Piece left = Value(operands[0]);
    if (left.Type != ValueType::Text)
        return RenderArithmetic(operands, "+", ValueType::Number);
    const Piece right = Value(operands[1]);
    if (IsNumeric(right.Type))
        RaiseTypeMismatch(operands[1].Position);
    return AsType(Infix(left, "||", right), ValueType::Text);
}

Piece ExpressionRenderer::RenderArithmetic(const Operands& operands, const char* symbol, ValueType type)
{
    const Piece left = NumberOf(operands[0]);
    const Piece right = NumberOf(operands[1]);
    const bool isDate = left.Type == ValueType::Date || right.Type == ValueType::Date;
    return AsType(Infix(left, symbol, right), isDate ? ValueType::Date : type);
}

/// The time between two days is a number; a day before or after another by a number is a day.
Piece ExpressionRenderer::RenderSubtraction(const Operands& operands)
{
    const Piece left = NumberOf(operands[0]);
    const Piece right = NumberOf(operands[1]);
    const bool isDate = left.Type == ValueType::Date && right.Type != ValueType::Date;
    return AsType(Infix(left, "-", right), isDate ? ValueType::Date : ValueType::Number);
}

Piece ExpressionRenderer::RenderModulo(const Operands& operands)
{
    const auto whole = [this](const Expression& operand) {
        Piece number = NumberOf(operand);
        number.Text = "CAST(ROUND(" + number.Text + ") AS INTEGER)";
        number.ParserStack += 7;
        number.TreeDepth += 2;
        return number;
    };
    const Piece left = whole(operands[0]);
    return AsType(Infix(left, "%", whole(operands[1])), ValueType::Number);
}

Piece ExpressionRenderer::RenderDivision(const Operands& operands)
{
    Piece left = NumberOf(operands[0]);
    left.Text = "CAST(" + left.Text + " AS REAL)";
    left.ParserStack = std::max(left.ParserStack + 2, 5);
    ++left.TreeDepth;
    return AsType(Infix(left, "/", NumberOf(operands[1])), ValueType::Number);
}

Piece ExpressionRenderer::RenderNegation(const Expression& operand)
{
    const Piece number = NumberOf(operand);
    Piece result;
    result.Text = "(-" + number.Text + ')';
    Adopt(result, number, 2);
    return AsType(result, ValueType::Number);
}

Piece ExpressionRenderer::NumberOf(const Expression& expression)
{
    if (const Literal* literal = AsLiteral(expression))
        return Constant(*literal, ValueType::Number, expression.Position);
    const Piece piece = Value(expression);
    if (piece.Type == ValueType::Text)
        RaiseTypeMismatch(expression.Position);
    if (piece.Type != ValueType::Unknown)
        return piece;
    const QByteArray furtherArguments = ", " + QByteArray::number(dbDouble) + ", 0, 0";
    return AsType(Call("jet_store", {piece}, furtherArguments.constData()), ValueType::Number);
}

Piece ExpressionRenderer::Bind(const QVariant& value, ValueType type)
{
    Result_.Bindings.emplace_back(value);
    Piece piece;
    piece.Text = '?' + QByteArray::number(static_cast<qlonglong>(Result_.Bindings.size()));
    piece.Type = type;
    return piece;
}

} // namespace dao::sqlite
