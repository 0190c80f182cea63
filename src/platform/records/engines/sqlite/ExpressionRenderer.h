// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/Piece.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"

#include <QHash>

#include <optional>

/// The part of the renderer that turns conditions and values into SQLite text. Private to the renderer.
namespace dao::sqlite
{

/// A table in reach of a query's names.
struct ScopeTable
{
    const TableInfo* Table;
    QString Qualifier;
};

struct ColumnReference
{
    int TableIndex;
    const ColumnInfo* Column;
};

class ExpressionRenderer
{
public:
    explicit ExpressionRenderer(RenderedSql& result) : Result_(result) {}

    /// 3075 when a table of that name is in reach already.
    void AddTable(const TableInfo& table, const jetsql::TableReference& reference);
    const std::vector<ScopeTable>& Tables() const { return Tables_; }
    /// The table by its qualifying name; -1 when there is none.
    int FindTable(const QString& qualifier) const;
    /// None when the name is a parameter; 3061 for what can be neither column nor parameter.
    std::optional<ColumnReference> Resolve(const jetsql::Name& name, qsizetype position) const;

    /// For WHERE and ON.
    QByteArray Condition(const jetsql::Expression& expression);
    Piece Value(const jetsql::Expression& expression);
    /// For ORDER BY and MAX: texts carry the collation.
    QByteArray Comparable(const jetsql::Expression& expression);
    static QByteArray Comparable(const Piece& value);
    QByteArray Column(const ColumnReference& reference) const;
    static ValueType TypeOf(DataTypeEnum type);

private:
    using Operands = std::vector<jetsql::Expression>;

    Piece Render(const jetsql::Expression& expression);
    Piece RenderName(const jetsql::Name& name, qsizetype position);
    Piece RenderAggregate(const jetsql::Aggregate& aggregate);
    Piece RenderOperation(const jetsql::Operation& operation);
    Piece RenderNot(const jetsql::Expression& operand);
    Piece RenderAnd(const Operands& operands);
    Piece RenderOr(const Operands& operands);
    void RenderPlainLikes(const Operands& operands, std::vector<Piece>& pieces);
    Piece RenderIsNull(const jetsql::Expression& operand, const char* test);
    Piece RenderComparison(const Operands& operands, const char* symbol);
    Piece RenderLike(const jetsql::Expression& text, const jetsql::Expression& pattern);
    Piece RenderBetween(const Operands& operands, const char* word);
    Piece RenderIn(const Operands& operands, const char* word);
    Piece RenderConcatenation(const Operands& operands);
    Piece RenderAddition(const Operands& operands);
    Piece RenderArithmetic(const Operands& operands, const char* symbol, ValueType type);
    Piece RenderSubtraction(const Operands& operands);
    Piece RenderModulo(const Operands& operands);
    Piece RenderDivision(const Operands& operands);
    Piece RenderNegation(const jetsql::Expression& operand);

    Piece TruthOf(const jetsql::Expression& expression);
    Piece NumberOf(const jetsql::Expression& expression);
    Piece TextToMatch(const jetsql::Expression& expression);
    Piece PatternOf(const jetsql::Expression& expression);
    static Piece LikeCall(const Piece& pattern, const std::vector<Piece>& texts);
    /// An expression as it is compared with something of that type: constants converted, parameters at run time.
    Piece ComparedWith(ValueType type, const jetsql::Expression& expression);
    Piece Constant(const jetsql::Literal& literal, ValueType wanted, qsizetype position);
    static Piece Chain(std::vector<Piece> pieces, const char* symbol);
    Piece Bind(const QVariant& value, ValueType type);
    Piece BindPatterns(const QStringList& patterns);
    static const Piece& Checked(const Piece& piece);

    RenderedSql& Result_;
    std::vector<ScopeTable> Tables_;
    QHash<QStringList, QByteArray> Patterns_; ///< The numbered parameter of each set of patterns bound so far.
};

[[noreturn]] void RaiseTypeMismatch(qsizetype position);

} // namespace dao::sqlite
