// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/BoundTree.h"

#include <QByteArray>
#include <QStringList>

#include <memory>
#include <variant>
#include <vector>

/// Renders bound queries as SQLite text with bound values. Pure functions; any thread. The text needs the functions and
/// the collation of SqlFunctions.h on its connection. Nothing of a query's own text stands in the
/// rendered text but the number behind TOP and aliases of tables in double quotes: other names are the schema's
/// spelling, constants are bound.
namespace dao::sqlite
{

/// What stands behind ?1, ?2 and so on.
using Binding = std::variant<StoredValue,
                             std::shared_ptr<const jetsql::LikePattern>, ///< See BindLikePattern.
                             query::BoundParameter>;

struct RenderedSql
{
    QByteArray Text; ///< UTF-8.
    std::vector<Binding> Bindings;
};

struct RenderedSelect : RenderedSql
{
    /// For each column of the query its place in the rendered text's result, from 0; -1 when it was left out.
    std::vector<int> SqlColumns;
};

struct SelectOptions
{
    enum class Output
    {
        AllColumns,
        WithoutMemos, ///< Memo columns of tables are not selected, to be fetched by row id.
        Mark,         ///< One column instead: a number made of all columns but memos (jet_mark).
        None          ///< Only the leading columns, for a list of keys.
    };
    /// Hidden columns, such as "rowid", put before the output: all of them for each table in order of FROM. A row
    /// that a LEFT JOIN did not find has Null there. Refused with 3251 for an aggregate.
    QStringList LeadingColumns;
    Output Columns = Output::AllColumns;
};

/// Errors: 3075 an expression that is too much for SQLite, 3251 see above.
RenderedSelect RenderSelect(const query::BoundSelect& select, const SelectOptions& options = {});

/// An UPDATE or DELETE. hiddenAssignments: the engine's own, appended to SET as it stands, such as
/// "\"version\" = \"version\" + 1". Assigned values pass through the function that holds them to the column's type and
/// size; see StoredValueError in SqlFunctions.h. hasChecks: whether memos have check columns, which are set as well.
RenderedSql RenderChange(const query::BoundChange& change, const QByteArray& hiddenAssignments = {},
                         bool hasChecks = false);

/// A name in double quotes.
QByteArray QuoteName(const QString& name);

} // namespace dao::sqlite
