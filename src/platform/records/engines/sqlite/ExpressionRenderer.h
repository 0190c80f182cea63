// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/Piece.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"

#include <QHash>

/// The part of the renderer that turns conditions and values into SQLite text. Private to the renderer.
namespace dao::sqlite
{

class ExpressionRenderer
{
public:
    /// Of these sources; both live as long.
    ExpressionRenderer(const std::vector<query::BoundSource>& sources, RenderedSql& result)
        : Sources_(sources), Result_(result)
    {
    }

    /// For WHERE and ON.
    QByteArray Condition(const query::BoundExpression& expression);
    Piece Value(const query::BoundExpression& expression);
    /// For ORDER BY: texts carry the collation.
    QByteArray Comparable(const query::BoundExpression& expression);

private:
    using Operands = std::vector<query::BoundExpression>;

    /// A condition as SQLite's truth (1, 0 or Null), anything else as its value.
    Piece Render(const query::BoundExpression& expression);
    Piece RenderColumn(const query::BoundColumn& column) const;
    Piece RenderAggregate(const query::BoundAggregate& aggregate);
    Piece RenderOperation(const query::BoundOperation& operation, query::ValueType type);
    Piece RenderChain(const Operands& operands, const char* symbol);
    Piece RenderComparison(const Operands& operands, jetsql::Operator kind);
    Piece ComparedValue(const query::BoundExpression& operand, jetsql::Operator kind);
    Piece RenderLike(const Operands& operands);
    Piece RenderBetween(const Operands& operands, const char* word);
    Piece RenderIn(const Operands& operands, const char* word);
    Piece RenderInfix(const Operands& operands, const char* symbol);
    Piece RenderModulo(const Operands& operands);
    Piece RenderDivision(const Operands& operands);

    static Piece Chain(std::vector<Piece> pieces, const char* symbol);
    Piece Bind(Binding binding);
    Piece BindPattern(const query::BoundPattern& pattern);

    const std::vector<query::BoundSource>& Sources_;
    RenderedSql& Result_;
    QHash<QStringList, QByteArray> Patterns_; ///< The numbered parameter of each set of patterns bound so far.
};

} // namespace dao::sqlite
