// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/Parser.h"

#include "platform/records/jetsql/ExpressionParser.h"

namespace dao::jetsql
{
namespace
{
class StatementParser
{
public:
    explicit StatementParser(QStringView text) : Tokens_(text), Expressions_(Tokens_) {}

    Statement Parse()
    {
        if (Tokens_.IsKeyword(QLatin1String("SELECT")))
            return ParseSelect();
        Statement result =
            Tokens_.IsKeyword(QLatin1String("UPDATE")) ? Statement(ParseUpdate()) : Statement(ParseDelete());
        ExpectEnd();
        return result;
    }

    SelectStatement ParseSelect()
    {
        Tokens_.ExpectKeyword(QLatin1String("SELECT"));
        SelectStatement select;
        ParseTop(select);
        do {
            select.Items.push_back(ParseItem());
        } while (Tokens_.AcceptSymbol(QLatin1String(",")));
        Tokens_.ExpectKeyword(QLatin1String("FROM"));
        ParseSource(select, 0);
        select.Where = ParseWhere();
        ParseOrder(select);
        ExpectEnd();
        return select;
    }

    Expression ParseCondition()
    {
        Expression condition = Expressions_.Parse();
        ExpectEnd();
        return condition;
    }

private:
    void ExpectEnd()
    {
        if (Tokens_.AcceptSymbol(QLatin1String(";")) && Tokens_.Peek().TokenKind != Token::Kind::End)
            Tokens_.Refuse(QStringLiteral("there is more text behind the semicolon"));
        if (Tokens_.Peek().TokenKind != Token::Kind::End)
            Tokens_.Refuse(QStringLiteral("an operator or the end of the query is missing"));
    }

    void ParseTop(SelectStatement& select)
    {
        // A field may be called Top, so the word counts only with a number behind it.
        if (!Tokens_.IsKeyword(QLatin1String("TOP")) || Tokens_.Peek(1).TokenKind != Token::Kind::Number)
            return;
        Tokens_.Take();
        const Token number = Tokens_.Take();
        bool valid = false;
        select.Top = number.Text.toLongLong(&valid);
        if (!valid)
            Tokens_.RefuseAt(QStringLiteral("TOP needs a whole number"), number.Position);
    }

    SelectItem ParseItem()
    {
        SelectItem item;
        item.Position = Tokens_.Peek().Position;
        if (Tokens_.AcceptSymbol(QLatin1String("*")))
            return item;
        if (Tokens_.IsName() && Tokens_.IsSymbol(QLatin1String("."), 1) && Tokens_.IsSymbol(QLatin1String("*"), 2)) {
            item.ItemKind = SelectItem::Kind::TableColumns;
            item.Table = Tokens_.Take().Text;
            Tokens_.Take();
            Tokens_.Take();
            return item;
        }
        item.ItemKind = SelectItem::Kind::Value;
        item.Value = IsAggregate() ? ParseAggregate() : Expressions_.Parse();
        if (Tokens_.AcceptKeyword(QLatin1String("AS")))
            item.Alias = Tokens_.ExpectName(QStringLiteral("the name behind AS"));
        return item;
    }

    bool IsAggregate() const
    {
        return Tokens_.IsSymbol(QLatin1String("("), 1) &&
               (Tokens_.IsKeyword(QLatin1String("COUNT")) || Tokens_.IsKeyword(QLatin1String("MAX")) ||
                Tokens_.IsKeyword(QLatin1String("MIN")) || Tokens_.IsKeyword(QLatin1String("SUM")));
    }

    Expression ParseAggregate()
    {
        const Token word = Tokens_.Take();
        Aggregate aggregate;
        const QString function = word.Text.toUpper();
        if (function == QLatin1String("MAX"))
            aggregate.Function = AggregateFunction::Maximum;
        else if (function == QLatin1String("MIN"))
            aggregate.Function = AggregateFunction::Minimum;
        else if (function == QLatin1String("SUM"))
            aggregate.Function = AggregateFunction::Sum;
        Tokens_.ExpectSymbol(QLatin1String("("));
        int depth = 1;
        if (aggregate.Function != AggregateFunction::Count || !Tokens_.AcceptSymbol(QLatin1String("*"))) {
            aggregate.Operand.push_back(Expressions_.Parse());
            depth += aggregate.Operand.front().Depth;
        }
        Tokens_.ExpectSymbol(QLatin1String(")"));
        return {std::move(aggregate), word.Position, depth};
    }

    TableReference ParseTable()
    {
        TableReference table;
        table.Position = Tokens_.Peek().Position;
        table.Table = Tokens_.ExpectName(QStringLiteral("a table's name"));
        // A name with its database and owner in front, either of which may be left out between two dots.
        while (Tokens_.AcceptSymbol(QLatin1String("."))) {
            table.Table += u'.';
            if (!Tokens_.IsSymbol(QLatin1String(".")))
                table.Table += Tokens_.ExpectQualifiedPart(QStringLiteral("a table's name"));
        }
        if (Tokens_.AcceptKeyword(QLatin1String("AS")) || Tokens_.IsName())
            table.Alias = Tokens_.ExpectName(QStringLiteral("the table's name behind AS"));
        return table;
    }

    /// A table and the joins behind it; what stands on the left may be in parentheses.
    void ParseSource(SelectStatement& select, int nesting)
    {
        if (nesting > MaximumDepth)
            Tokens_.Refuse(QStringLiteral("the joins are nested too deeply"));
        if (Tokens_.AcceptSymbol(QLatin1String("("))) {
            ParseSource(select, nesting + 1);
            Tokens_.ExpectSymbol(QLatin1String(")"));
        } else {
            select.From = ParseTable();
        }
        while (Tokens_.IsKeyword(QLatin1String("LEFT")) || Tokens_.IsKeyword(QLatin1String("INNER")))
            select.Joins.push_back(ParseJoin());
    }

    Join ParseJoin()
    {
        Join join;
        join.Kind = Tokens_.IsKeyword(QLatin1String("LEFT")) ? JoinKind::Left : JoinKind::Inner;
        Tokens_.Take();
        if (join.Kind == JoinKind::Left)
            Tokens_.AcceptKeyword(QLatin1String("OUTER"));
        Tokens_.ExpectKeyword(QLatin1String("JOIN"));
        join.Table = ParseTable();
        Tokens_.ExpectKeyword(QLatin1String("ON"));
        join.Condition = Expressions_.Parse();
        return join;
    }

    std::optional<Expression> ParseWhere()
    {
        if (!Tokens_.AcceptKeyword(QLatin1String("WHERE")))
            return std::nullopt;
        return Expressions_.Parse();
    }

    void ParseOrder(SelectStatement& select)
    {
        if (!Tokens_.AcceptKeyword(QLatin1String("ORDER")))
            return;
        Tokens_.ExpectKeyword(QLatin1String("BY"));
        do {
            SortTerm term{Expressions_.Parse(), SortDirection::Ascending};
            if (Tokens_.AcceptKeyword(QLatin1String("DESC")))
                term.Direction = SortDirection::Descending;
            else
                Tokens_.AcceptKeyword(QLatin1String("ASC"));
            select.OrderBy.push_back(std::move(term));
        } while (Tokens_.AcceptSymbol(QLatin1String(",")));
    }

    UpdateStatement ParseUpdate()
    {
        Tokens_.Take();
        UpdateStatement update;
        update.Table = ParseTable();
        Tokens_.ExpectKeyword(QLatin1String("SET"));
        do {
            Assignment assignment;
            assignment.Position = Tokens_.Peek().Position;
            assignment.Column = Expressions_.ParseName();
            Tokens_.ExpectSymbol(QLatin1String("="));
            assignment.Value = Expressions_.Parse();
            update.Assignments.push_back(std::move(assignment));
        } while (Tokens_.AcceptSymbol(QLatin1String(",")));
        update.Where = ParseWhere();
        return update;
    }

    DeleteStatement ParseDelete()
    {
        if (!Tokens_.AcceptKeyword(QLatin1String("DELETE")))
            Tokens_.Refuse(QStringLiteral("a query begins with SELECT, UPDATE or DELETE"));
        // "DELETE FROM t", "DELETE * FROM t" and "DELETE t.* FROM t" are the same.
        const qsizetype position = Tokens_.Peek().Position;
        QString named;
        if (Tokens_.IsName()) {
            named = Tokens_.Take().Text;
            Tokens_.ExpectSymbol(QLatin1String("."));
            Tokens_.ExpectSymbol(QLatin1String("*"));
        } else {
            Tokens_.AcceptSymbol(QLatin1String("*"));
        }
        Tokens_.ExpectKeyword(QLatin1String("FROM"));
        DeleteStatement result;
        result.Table = ParseTable();
        if (!named.isEmpty() && named.compare(result.Table.QualifyingName(), Qt::CaseInsensitive) != 0)
            Tokens_.RefuseAt(QStringLiteral("rows are deleted from the table behind FROM only"), position);
        result.Where = ParseWhere();
        return result;
    }

    TokenStream Tokens_;
    ExpressionParser Expressions_;
};
} // namespace

Statement ParseStatement(QStringView text)
{
    return StatementParser(text).Parse();
}

SelectStatement ParseSelect(QStringView text)
{
    return StatementParser(text).ParseSelect();
}

Expression ParseCondition(QStringView text)
{
    return StatementParser(text).ParseCondition();
}

} // namespace dao::jetsql
