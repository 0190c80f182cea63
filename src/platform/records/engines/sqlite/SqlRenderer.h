// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Types.h"
#include "platform/records/jetsql/LikePattern.h"
#include "platform/records/jetsql/SyntaxTree.h"

#include <QByteArray>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <variant>
#include <vector>

/// Renders syntax trees as SQLite text with bound values. Pure functions; any thread. The text needs the functions and
/// the collation of SqlFunctions.h on its connection. Nothing of a query's own text stands in the
/// rendered text but the number behind TOP and aliases of tables in double quotes: other names are the schema's
/// spelling, constants are bound.
///
/// Types: a constant is converted to the type of the column it is compared with (Category = "5" is a comparison of
/// numbers, Title = 5 one of texts); what cannot be converted, such as Category = "five" or a date against a text
/// column, is error 13 with the place rather than a condition that never holds. Texts compare by the collation
/// JET. TRUE is -1. Division gives a floating-point number, and Null when it is by zero.
namespace dao::sqlite
{

struct ColumnInfo
{
    QString Name;
    DataTypeEnum Type = dbText;
    int Size = 0;
    bool AllowZeroLength = false;
    int Attributes = 0;
    /// Of a memo that has one: the column of its check, quoted, which an UPDATE of the memo sets as well.
    QByteArray CheckColumn = {};
};

struct TableInfo
{
    QString Name;
    std::vector<ColumnInfo> Columns; ///< In order, without the engine's hidden ones.
};

/// What the renderer asks the engine.
class Schema
{
public:
    virtual ~Schema() = default;
    /// The table of that name in any case, or null. The pointer is used only until the rendering call returns.
    virtual const TableInfo* FindTable(const QString& name) const = 0;
};

/// What stands behind ?1, ?2 and so on.
struct NamedParameter
{
    int Index; ///< In RenderedSql::Parameters.
};
using Binding = std::variant<QVariant,                                   ///< Null, qint64, double or QString.
                             std::shared_ptr<const jetsql::LikePattern>, ///< See BindLikePattern.
                             NamedParameter>;

struct RenderedSql
{
    QByteArray Text; ///< UTF-8.
    std::vector<Binding> Bindings;
    /// Names in the query that are no columns, each once, in order of appearance and as first spelt. Values are bound
    /// as they are: a text stays a text.
    QStringList Parameters;
};

/// One column of a SELECT as its recordset shows it.
struct OutputColumn
{
    QString Name;   ///< Alias, or the field's name, or Table.Field where several columns bear the same name.
    QString Table;  ///< Empty for a computed value.
    QString Field;  ///< Empty for a computed value.
    int TableIndex; ///< In RenderedSelect::Tables; -1 for a computed value.
    DataTypeEnum Type;
    int Size;
    bool AllowZeroLength;
    int Attributes;
    int SqlColumn; ///< Place in the rendered text's result, from 0; -1 when it was left out.
};

struct RenderedSelect : RenderedSql
{
    std::vector<OutputColumn> Columns;
    QStringList Tables; ///< The schema's spelling, in order of FROM.
    /// One table, nothing but its own columns, no aggregate: a row of the result is a row of the table.
    bool Updatable = false;
};

struct SelectOptions
{
    enum class Output
    {
        AllColumns,
        WithoutMemos, ///< Memo columns are described and not selected, to be fetched by row id.
        None          ///< Only the leading columns, for a list of keys.
    };
    /// Hidden columns, such as "rowid", put before the output: all of them for each table in order of FROM. A row
    /// that a LEFT JOIN did not find has Null there. Refused with 3251 for an aggregate.
    QStringList LeadingColumns;
    Output Columns = Output::AllColumns;
};

/// Errors: 3078 no such table, 3061 a qualified name that is no column (or a plain one that several tables have,
/// as 3079 has no place in the store's list), 13 types that cannot be compared, 3075 too complex, 3251 see above.
RenderedSelect RenderSelect(const jetsql::SelectStatement& statement, const Schema& schema,
                            const SelectOptions& options = {});

/// hiddenAssignments: the engine's own, appended to SET as it stands, such as "\"version\" = \"version\" + 1".
/// Assigned values pass through the function that holds them to the column's type and size; see
/// StoredValueError in SqlFunctions.h.
RenderedSql RenderUpdate(const jetsql::UpdateStatement& statement, const Schema& schema,
                         const QByteArray& hiddenAssignments = {});

RenderedSql RenderDelete(const jetsql::DeleteStatement& statement, const Schema& schema);

/// A name in double quotes.
QByteArray QuoteName(const QString& name);

} // namespace dao::sqlite
