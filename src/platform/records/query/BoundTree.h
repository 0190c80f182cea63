// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/jetsql/LikePattern.h"

#include <memory>
#include <optional>
#include <variant>
#include <vector>

/// A query whose names are resolved and whose types are checked: what engines render or evaluate. Made by Binder.h from
/// a syntax tree and a schema; plain values, owned by whoever holds them, any thread. It keeps the tables alive that it
/// speaks of, and is of no use once the schema changed.
namespace dao::query
{

enum class ValueType
{
    Unknown, ///< Null or a parameter.
    Number,
    Date,
    Text
};

/// Converted already to the type of what it is compared or computed with.
struct BoundConstant
{
    StoredValue Value;
};

struct BoundColumn
{
    int Source = 0; ///< In ResultShape::Sources, or 0 in a change.
    int Column = 0;

    bool operator==(const BoundColumn&) const = default;
};

/// How a parameter's value is taken. The conversions are done once, when a run begins.
enum class ParameterUse
{
    AsIs,
    AsNumber, ///< Error 3421 for a text that is no number.
    AsText
};

struct BoundParameter
{
    int Index = 0; ///< In BoundParameters::Names.
    ParameterUse Use = ParameterUse::AsIs;
};

/// The constant pattern of a LIKE: what any of the texts describes.
struct BoundPattern
{
    QStringList Texts;
    std::shared_ptr<const jetsql::LikePattern> Compiled;
};

struct BoundExpression;

/// As in the syntax tree, but for LIKE and NOT LIKE: the pattern first (a BoundPattern where it is constant, else any
/// value), then one or more texts; true where any of them meets it, else Null where the pattern or any text is Null.
/// An OR of LIKEs with constant patterns over columns arrives here as few such operations. Add over texts (type Text)
/// joins them, and is Null where either is.
struct BoundOperation
{
    jetsql::Operator Kind = jetsql::Operator::And;
    std::vector<BoundExpression> Operands;
};

/// COUNT(*) has no operand.
struct BoundAggregate
{
    jetsql::AggregateFunction Function = jetsql::AggregateFunction::Count;
    std::vector<BoundExpression> Operand;
};

struct BoundExpression
{
    std::variant<BoundConstant, BoundColumn, BoundParameter, BoundPattern, BoundOperation, BoundAggregate> Node;
    ValueType Type = ValueType::Unknown;
};

/// Names of a query that are no columns.
struct BoundParameters
{
    QStringList Names; ///< Each once, in order of appearance and as first spelt.
    /// For each name: whether a use asks for that form.
    std::vector<bool> AreNumbers;
    std::vector<bool> AreTexts;
};

struct BoundSource
{
    engine::TablePtr Table;
    QString Qualifier; ///< The alias, or the table's own name.
    /// Of a source that is joined: how, and on what. The first has none.
    jetsql::JoinKind Kind = jetsql::JoinKind::Inner;
    std::optional<BoundExpression> Condition;
};

struct BoundSortTerm
{
    BoundExpression Value;
    jetsql::SortDirection Direction = jetsql::SortDirection::Ascending;
};

struct BoundSelect
{
    engine::ResultShape Shape;
    BoundParameters Parameters;
    std::vector<BoundSource> Sources;     ///< In order of FROM; each condition speaks of those up to its own.
    std::vector<BoundExpression> Outputs; ///< One for each column of the shape.
    std::optional<BoundExpression> Where;
    std::vector<BoundSortTerm> OrderBy;
    std::optional<qint64> Top;
};

struct BoundAssignment
{
    int Column = 0;
    BoundExpression Value;
};

/// An UPDATE, or a DELETE, which assigns nothing.
struct BoundChange
{
    BoundSource Source;
    BoundParameters Parameters;
    std::vector<BoundAssignment> Assignments;
    std::optional<BoundExpression> Where;
};

/// Whether the expression is a condition: SQL engines have truth values of their own, here they are -1 and 0.
bool IsTruth(const BoundExpression& expression);

inline bool IsNumeric(ValueType type)
{
    return type == ValueType::Number || type == ValueType::Date;
}

} // namespace dao::query
