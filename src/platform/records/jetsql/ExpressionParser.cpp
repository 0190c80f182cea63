// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/ExpressionParser.h"

#include "platform/records/jetsql/DateLiteral.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dao::jetsql
{
namespace
{
constexpr std::array keywords = {
    QLatin1String("AND"),   QLatin1String("AS"),     QLatin1String("ASC"),   QLatin1String("BETWEEN"),
    QLatin1String("BY"),    QLatin1String("DELETE"), QLatin1String("DESC"),  QLatin1String("FALSE"),
    QLatin1String("FROM"),  QLatin1String("IN"),     QLatin1String("INNER"), QLatin1String("IS"),
    QLatin1String("JOIN"),  QLatin1String("LEFT"),   QLatin1String("LIKE"),  QLatin1String("MOD"),
    QLatin1String("NOT"),   QLatin1String("NULL"),   QLatin1String("ON"),    QLatin1String("OR"),
    QLatin1String("ORDER"), QLatin1String("SELECT"), QLatin1String("SET"),   QLatin1String("TRUE"),
    QLatin1String("WHERE"), QLatin1String("UPDATE"),
};

struct Symbol
{
    QLatin1String Text;
    Operator Kind;
    int Tightness;
};

constexpr std::array comparisons = {
    Symbol{QLatin1String("="), Operator::Equal, 0},   Symbol{QLatin1String("<>"), Operator::NotEqual, 0},
    Symbol{QLatin1String("<"), Operator::Less, 0},    Symbol{QLatin1String("<="), Operator::LessOrEqual, 0},
    Symbol{QLatin1String(">"), Operator::Greater, 0}, Symbol{QLatin1String(">="), Operator::GreaterOrEqual, 0},
};

// A sign or NOT in parentheses is two levels of the text and one of the tree, and a tree of the greatest depth must
// still be readable from its printed form.
constexpr int maximumNesting = 2 * MaximumDepth;

constexpr int loosestArithmetic = 1;
constexpr std::array arithmetic = {
    Symbol{QLatin1String("&"), Operator::Concatenate, 1}, Symbol{QLatin1String("+"), Operator::Add, 2},
    Symbol{QLatin1String("-"), Operator::Subtract, 2},    Symbol{QLatin1String("MOD"), Operator::Modulo, 3},
    Symbol{QLatin1String("*"), Operator::Multiply, 4},    Symbol{QLatin1String("/"), Operator::Divide, 4},
};

template <typename Table>
const Symbol* FindSymbol(const Table& table, const TokenStream& tokens)
{
    for (const Symbol& symbol : table) {
        if (tokens.IsSymbol(symbol.Text) || tokens.IsKeyword(symbol.Text))
            return &symbol;
    }
    return nullptr;
}

template <typename... Operands>
Expression Combine(Operator kind, Operands... operands)
{
    std::vector<Expression> list;
    list.reserve(sizeof...(operands));
    (list.push_back(std::move(operands)), ...);
    return MakeOperation(kind, std::move(list));
}

Expression MakeLiteral(const QVariant& value, qsizetype position, Literal::Kind kind = Literal::Kind::Value)
{
    return {Literal{value, kind}, position, 1};
}
} // namespace

bool TokenStream::IsKeyword(QLatin1String keyword, std::size_t ahead) const
{
    const Token& token = Peek(ahead);
    return token.TokenKind == Token::Kind::Word && token.Text.compare(keyword, Qt::CaseInsensitive) == 0;
}

bool TokenStream::IsSymbol(QLatin1String symbol, std::size_t ahead) const
{
    const Token& token = Peek(ahead);
    return token.TokenKind == Token::Kind::Symbol && token.Text == symbol;
}

bool TokenStream::AcceptKeyword(QLatin1String keyword)
{
    if (!IsKeyword(keyword))
        return false;
    ++Next_;
    return true;
}

bool TokenStream::AcceptSymbol(QLatin1String symbol)
{
    if (!IsSymbol(symbol))
        return false;
    ++Next_;
    return true;
}

void TokenStream::ExpectKeyword(QLatin1String keyword)
{
    if (!AcceptKeyword(keyword))
        Refuse(QString(keyword) + QStringLiteral(" is missing"));
}

void TokenStream::ExpectSymbol(QLatin1String symbol)
{
    if (!AcceptSymbol(symbol))
        Refuse(QString(symbol) + QStringLiteral(" is missing"));
}

bool TokenStream::IsName(std::size_t ahead) const
{
    const Token& token = Peek(ahead);
    if (token.TokenKind == Token::Kind::BracketedName)
        return true;
    return token.TokenKind == Token::Kind::Word &&
           std::none_of(keywords.begin(), keywords.end(),
                        [&](QLatin1String keyword) { return token.Text.compare(keyword, Qt::CaseInsensitive) == 0; });
}

QString TokenStream::ExpectName(const QString& what)
{
    if (!IsName())
        Refuse(what + QStringLiteral(" is missing"));
    return Take().Text;
}

QString TokenStream::ExpectQualifiedPart(const QString& what)
{
    if (Peek().TokenKind == Token::Kind::Word)
        return Take().Text;
    return ExpectName(what);
}

/// One level of nesting for the life of the object, so that no text can exhaust the stack.
class ExpressionParser::Level
{
public:
    explicit Level(ExpressionParser& parser) : Parser_(parser)
    {
        if (Parser_.Nesting_ >= maximumNesting)
            Parser_.Tokens_.Refuse(QStringLiteral("the expression is nested too deeply"));
        ++Parser_.Nesting_;
    }
    ~Level() { --Parser_.Nesting_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    ExpressionParser& Parser_;
};

Expression ExpressionParser::ParseOr()
{
    std::vector<Expression> operands;
    operands.push_back(ParseAnd());
    while (Tokens_.AcceptKeyword(QLatin1String("OR")))
        operands.push_back(ParseAnd());
    return operands.size() == 1 ? std::move(operands.front()) : MakeOperation(Operator::Or, std::move(operands));
}

Expression ExpressionParser::ParseAnd()
{
    std::vector<Expression> operands;
    operands.push_back(ParseNot());
    while (Tokens_.AcceptKeyword(QLatin1String("AND")))
        operands.push_back(ParseNot());
    return operands.size() == 1 ? std::move(operands.front()) : MakeOperation(Operator::And, std::move(operands));
}

Expression ExpressionParser::ParseNot()
{
    const qsizetype position = Tokens_.Peek().Position;
    if (!Tokens_.AcceptKeyword(QLatin1String("NOT")))
        return ParseComparison();
    const Level level(*this);
    Expression result = Combine(Operator::Not, ParseNot());
    result.Position = position;
    return result;
}

Expression ExpressionParser::ParseComparison()
{
    Expression left = ParseArithmetic(loosestArithmetic);
    while (true) {
        if (const Symbol* symbol = FindSymbol(comparisons, Tokens_)) {
            Tokens_.Take();
            left = Combine(symbol->Kind, std::move(left), ParseArithmetic(loosestArithmetic));
        } else if (Tokens_.IsKeyword(QLatin1String("IS")) || Tokens_.IsKeyword(QLatin1String("LIKE")) ||
                   Tokens_.IsKeyword(QLatin1String("BETWEEN")) || Tokens_.IsKeyword(QLatin1String("IN")) ||
                   Tokens_.IsKeyword(QLatin1String("NOT"))) {
            left = ParseComparisonTail(std::move(left));
        } else {
            return left;
        }
    }
}

Expression ExpressionParser::ParseComparisonTail(Expression left)
{
    if (Tokens_.AcceptKeyword(QLatin1String("IS"))) {
        const bool negated = Tokens_.AcceptKeyword(QLatin1String("NOT"));
        Tokens_.ExpectKeyword(QLatin1String("NULL"));
        return Combine(negated ? Operator::IsNotNull : Operator::IsNull, std::move(left));
    }
    const bool negated = Tokens_.AcceptKeyword(QLatin1String("NOT"));
    if (Tokens_.AcceptKeyword(QLatin1String("LIKE")))
        return Combine(negated ? Operator::NotLike : Operator::Like, std::move(left),
                       ParseArithmetic(loosestArithmetic));
    if (Tokens_.AcceptKeyword(QLatin1String("BETWEEN")))
        return ParseBetween(std::move(left), negated ? Operator::NotBetween : Operator::Between);
    if (Tokens_.AcceptKeyword(QLatin1String("IN")))
        return ParseIn(std::move(left), negated ? Operator::NotIn : Operator::In);
    Tokens_.Refuse(QStringLiteral("an operator is missing"));
}

Expression ExpressionParser::ParseBetween(Expression value, Operator kind)
{
    Expression lower = ParseArithmetic(loosestArithmetic);
    Tokens_.ExpectKeyword(QLatin1String("AND"));
    Expression upper = ParseArithmetic(loosestArithmetic);
    return Combine(kind, std::move(value), std::move(lower), std::move(upper));
}

Expression ExpressionParser::ParseIn(Expression value, Operator kind)
{
    std::vector<Expression> operands;
    operands.push_back(std::move(value));
    Tokens_.ExpectSymbol(QLatin1String("("));
    do {
        operands.push_back(ParseArithmetic(loosestArithmetic));
    } while (Tokens_.AcceptSymbol(QLatin1String(",")));
    Tokens_.ExpectSymbol(QLatin1String(")"));
    return MakeOperation(kind, std::move(operands));
}

Expression ExpressionParser::ParseArithmetic(int loosest)
{
    Expression left = ParseSign();
    while (const Symbol* symbol = FindSymbol(arithmetic, Tokens_)) {
        if (symbol->Tightness < loosest)
            break;
        Tokens_.Take();
        left = Combine(symbol->Kind, std::move(left), ParseArithmetic(symbol->Tightness + 1));
    }
    return left;
}

Expression ExpressionParser::ParseSign()
{
    const qsizetype position = Tokens_.Peek().Position;
    if (Tokens_.IsSymbol(QLatin1String("+"))) {
        const Level level(*this);
        Tokens_.Take();
        return ParseSign();
    }
    if (!Tokens_.AcceptSymbol(QLatin1String("-")))
        return ParsePrimary();
    const Level level(*this);
    Expression operand = ParseSign();
    // A negative number is a constant, not a computation.
    if (Literal* literal = std::get_if<Literal>(&operand.Node); literal && literal->ValueKind == Literal::Kind::Value) {
        if (literal->Value.typeId() == QMetaType::LongLong)
            return MakeLiteral(-literal->Value.toLongLong(), position);
        if (literal->Value.typeId() == QMetaType::Double)
            return MakeLiteral(-literal->Value.toDouble(), position);
    }
    Expression result = Combine(Operator::Negate, std::move(operand));
    result.Position = position;
    return result;
}

Expression ExpressionParser::ParsePrimary()
{
    const qsizetype position = Tokens_.Peek().Position;
    if (Tokens_.IsSymbol(QLatin1String("("))) {
        const Level level(*this);
        Tokens_.Take();
        Expression inner = ParseOr();
        Tokens_.ExpectSymbol(QLatin1String(")"));
        return inner;
    }
    if (Tokens_.Peek().TokenKind == Token::Kind::Number)
        return ParseNumber();
    if (Tokens_.Peek().TokenKind == Token::Kind::Date)
        return ParseDate();
    if (Tokens_.Peek().TokenKind == Token::Kind::Text)
        return MakeLiteral(Tokens_.Take().Text, position);
    if (Tokens_.AcceptKeyword(QLatin1String("TRUE")))
        return MakeLiteral(qint64{-1}, position);
    if (Tokens_.AcceptKeyword(QLatin1String("FALSE")))
        return MakeLiteral(qint64{0}, position);
    if (Tokens_.AcceptKeyword(QLatin1String("NULL")))
        return MakeLiteral(QVariant(), position);
    if (!Tokens_.IsName())
        Tokens_.Refuse(QStringLiteral("a value is missing"));
    if (Tokens_.IsSymbol(QLatin1String("("), 1))
        Tokens_.Refuse(QStringLiteral("functions cannot be used here"));
    return {ParseName(), position, 1};
}

Name ExpressionParser::ParseName()
{
    Name name;
    name.Field = Tokens_.ExpectName(QStringLiteral("a field's name"));
    if (Tokens_.AcceptSymbol(QLatin1String(".")) || Tokens_.AcceptSymbol(QLatin1String("!"))) {
        name.Table = name.Field;
        name.Field = Tokens_.ExpectQualifiedPart(QStringLiteral("a field's name"));
    }
    return name;
}

Expression ExpressionParser::ParseNumber()
{
    const Token token = Tokens_.Take();
    bool valid = false;
    const qint64 whole = token.Text.toLongLong(&valid);
    if (valid)
        return MakeLiteral(whole, token.Position);
    const double number = token.Text.toDouble(&valid);
    if (!valid || !std::isfinite(number))
        Tokens_.RefuseAt(QStringLiteral("the number is too large"), token.Position);
    return MakeLiteral(number, token.Position);
}

Expression ExpressionParser::ParseDate()
{
    const Token token = Tokens_.Take();
    const std::optional<double> day = ParseDateLiteral(token.Text);
    if (!day)
        Tokens_.RefuseAt(QStringLiteral("there is no such date or time"), token.Position);
    return MakeLiteral(*day, token.Position, Literal::Kind::Date);
}

} // namespace dao::jetsql
