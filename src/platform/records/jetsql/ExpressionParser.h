// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/jetsql/Lexer.h"
#include "platform/records/jetsql/SyntaxTree.h"

namespace dao::jetsql
{

/// The tokens of one query and the place reached in them. Every refusal is error 3075.
class TokenStream
{
public:
    explicit TokenStream(QStringView text) : Text_(text), Tokens_(Tokenise(text)) {}

    const Token& Peek(std::size_t ahead = 0) const { return Tokens_[qMin(Next_ + ahead, Tokens_.size() - 1)]; }
    Token Take() { return Next_ + 1 < Tokens_.size() ? Tokens_[Next_++] : Tokens_.back(); }

    bool IsKeyword(QLatin1String keyword, std::size_t ahead = 0) const;
    bool IsSymbol(QLatin1String symbol, std::size_t ahead = 0) const;
    bool AcceptKeyword(QLatin1String keyword);
    bool AcceptSymbol(QLatin1String symbol);
    void ExpectKeyword(QLatin1String keyword);
    void ExpectSymbol(QLatin1String symbol);

    /// Whether the next token can be a name: in brackets, or a word that is no keyword.
    bool IsName(std::size_t ahead = 0) const;
    /// what: what the name would name, for the message.
    QString ExpectName(const QString& what);
    /// A name behind a dot, where keywords are names as well.
    QString ExpectQualifiedPart(const QString& what);

    [[noreturn]] void Refuse(const QString& reason) const { RaiseSyntaxError(reason, Text_, Peek().Position); }
    [[noreturn]] void RefuseAt(const QString& reason, qsizetype position) const
    {
        RaiseSyntaxError(reason, Text_, position);
    }

private:
    QStringView Text_;
    std::vector<Token> Tokens_;
    std::size_t Next_ = 0;
};

/// Conditions and values, by precedence from loose to tight: OR; AND; NOT; comparison, LIKE, IS, BETWEEN, IN; &; + -;
/// MOD; * /; sign.
class ExpressionParser
{
public:
    explicit ExpressionParser(TokenStream& tokens) : Tokens_(tokens) {}

    Expression Parse() { return ParseOr(); }
    /// [Field], Table.Field or Table!Field.
    Name ParseName();

private:
    class Level;

    Expression ParseOr();
    Expression ParseAnd();
    Expression ParseNot();
    Expression ParseComparison();
    Expression ParseComparisonTail(Expression left);
    Expression ParseBetween(Expression value, Operator kind);
    Expression ParseIn(Expression value, Operator kind);
    Expression ParseArithmetic(int loosest);
    Expression ParseSign();
    Expression ParsePrimary();
    Expression ParseNumber();
    Expression ParseDate();

    TokenStream& Tokens_;
    int Nesting_ = 0;
};

} // namespace dao::jetsql
