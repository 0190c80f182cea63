// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>
#include <variant>
#include <vector>

/// The syntax tree of a query. Plain values: made by Parser.h, copied and changed freely, owned by whoever holds them.
/// The tree knows no schema: whether a name is a column or a parameter is decided by the engine that runs it.
namespace dao::jetsql
{

/// A constant. Null is an invalid QVariant; numbers are qint64 or double, TRUE and FALSE the qint64 -1 and 0.
struct Literal
{
    enum class Kind
    {
        Value,
        Date ///< Value is a double, days since 30 December 1899.
    };
    QVariant Value;
    Kind ValueKind = Kind::Value;
};

/// Field or Table.Field, as it was spelt and without brackets. "[Table.Field]" in one pair of brackets has an empty
/// Table and the whole text in Field; whoever knows the schema splits it at the dot where no column has that name.
struct Name
{
    QString Table;
    QString Field;
};

enum class Operator
{
    Or,  ///< Two or more operands; never directly an operand of another Or.
    And, ///< Two or more operands; never directly an operand of another And.
    Not,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Like,    ///< Text, pattern.
    NotLike, ///< Text, pattern.
    IsNull,
    IsNotNull,
    Between,    ///< Value, lower, upper.
    NotBetween, ///< Value, lower, upper.
    In,         ///< Value, then one or more candidates.
    NotIn,      ///< Value, then one or more candidates.
    Concatenate,
    Add,
    Subtract,
    Modulo,
    Multiply,
    Divide,
    Negate
};

struct Expression;

struct Operation
{
    Operator Kind = Operator::And;
    std::vector<Expression> Operands;
};

enum class AggregateFunction
{
    Count,
    Maximum,
    Minimum,
    Sum
};

/// COUNT(*) has no operand, every other aggregate has one. Only directly in a column of a SELECT.
struct Aggregate
{
    AggregateFunction Function = AggregateFunction::Count;
    std::vector<Expression> Operand;
};

struct Expression
{
    std::variant<Literal, Name, Operation, Aggregate> Node;
    /// Where it begins in the text, in UTF-16 units from 0, for error messages.
    qsizetype Position = 0;
    /// Levels of operations: 1 for a literal or name. Bounded by MaximumDepth, so that recursion over a tree is safe.
    int Depth = 1;
};

/// Levels of operations that a tree may have; more is error 3075.
inline constexpr int MaximumDepth = 200;

struct TableReference
{
    QString Table;
    QString Alias; ///< Empty without one.
    qsizetype Position = 0;

    /// The name by which columns are qualified.
    const QString& QualifyingName() const { return Alias.isEmpty() ? Table : Alias; }
};

enum class JoinKind
{
    Inner,
    Left
};

struct Join
{
    JoinKind Kind = JoinKind::Inner;
    TableReference Table;
    Expression Condition;
};

/// One item of a SELECT list: every column, every column of a table, or a value.
struct SelectItem
{
    enum class Kind
    {
        AllColumns,
        TableColumns,
        Value
    };
    Kind ItemKind = Kind::AllColumns;
    QString Table;                   ///< For TableColumns.
    std::optional<Expression> Value; ///< For Value.
    QString Alias;                   ///< Empty without AS.
    qsizetype Position = 0;
};

enum class SortDirection
{
    Ascending,
    Descending
};

struct SortTerm
{
    Expression Value;
    SortDirection Direction = SortDirection::Ascending;
};

struct SelectStatement
{
    std::optional<qint64> Top;
    std::vector<SelectItem> Items;
    TableReference From;
    std::vector<Join> Joins;
    std::optional<Expression> Where;
    std::vector<SortTerm> OrderBy;
};

struct Assignment
{
    Name Column;
    Expression Value;
    qsizetype Position = 0;
};

struct UpdateStatement
{
    TableReference Table;
    std::vector<Assignment> Assignments;
    std::optional<Expression> Where;
};

struct DeleteStatement
{
    TableReference Table;
    std::optional<Expression> Where;
};

using Statement = std::variant<SelectStatement, UpdateStatement, DeleteStatement>;

/// An operation over its operands; an And within an And (or an Or within an Or) becomes one. Error 3075 when it
/// would be deeper than MaximumDepth.
Expression MakeOperation(Operator kind, std::vector<Expression> operands);

/// left AND right, without nesting one And in another. Either may be absent; both absent gives none. Joins a
/// query's condition with a further criterion.
std::optional<Expression> Both(std::optional<Expression> left, std::optional<Expression> right);

} // namespace dao::jetsql
