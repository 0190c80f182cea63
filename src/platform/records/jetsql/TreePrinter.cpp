// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/TreePrinter.h"

#include <QDate>
#include <QLocale>
#include <QTime>

#include <cmath>

namespace dao::jetsql
{
namespace
{
QString Bracketed(const QString& name)
{
    return u'[' + name + u']';
}

QString Qualified(const Name& name)
{
    return name.Table.isEmpty() ? Bracketed(name.Field) : Bracketed(name.Table) + u'.' + Bracketed(name.Field);
}

QLatin1String SymbolOf(Operator kind)
{
    switch (kind) {
    case Operator::Or:
        return QLatin1String(" OR ");
    case Operator::And:
        return QLatin1String(" AND ");
    case Operator::Equal:
        return QLatin1String(" = ");
    case Operator::NotEqual:
        return QLatin1String(" <> ");
    case Operator::Less:
        return QLatin1String(" < ");
    case Operator::LessOrEqual:
        return QLatin1String(" <= ");
    case Operator::Greater:
        return QLatin1String(" > ");
    case Operator::GreaterOrEqual:
        return QLatin1String(" >= ");
    case Operator::Like:
        return QLatin1String(" LIKE ");
    case Operator::NotLike:
        return QLatin1String(" NOT LIKE ");
    case Operator::Concatenate:
        return QLatin1String(" & ");
    case Operator::Add:
        return QLatin1String(" + ");
    case Operator::Subtract:
        return QLatin1String(" - ");
    case Operator::Modulo:
        return QLatin1String(" MOD ");
    case Operator::Multiply:
        return QLatin1String(" * ");
    case Operator::Divide:
        return QLatin1String(" / ");
    default:
        return QLatin1String();
    }
}

/// The day number as month/day/year with the time, which reads back to the same second.
QString DateText(double day)
{
    const double whole = std::trunc(day);
    const int seconds = qRound(std::abs(day - whole) * 86400);
    const QDate date = QDate(1899, 12, 30).addDays(static_cast<qint64>(whole));
    return u'#' + date.toString(u"yyyy-MM-dd ") + QTime(0, 0).addSecs(seconds).toString(u"hh:mm:ss") + u'#';
}

QString LiteralText(const Literal& literal)
{
    if (!literal.Value.isValid())
        return QStringLiteral("NULL");
    if (literal.ValueKind == Literal::Kind::Date)
        return DateText(literal.Value.toDouble());
    if (literal.Value.typeId() == QMetaType::QString)
        return u'\'' + literal.Value.toString().replace(u'\'', QStringLiteral("''")) + u'\'';
    if (literal.Value.typeId() == QMetaType::LongLong)
        return QString::number(literal.Value.toLongLong());
    // The mark of a fraction or exponent keeps a floating-point number one.
    const QString number = QString::number(literal.Value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return number.contains(u'.') || number.contains(u'e') ? number : number + QStringLiteral(".0");
}

QString Joined(const std::vector<Expression>& operands, std::size_t first, const QString& separator)
{
    QStringList texts;
    for (std::size_t i = first; i < operands.size(); ++i)
        texts.append(ToText(operands[i]));
    return texts.join(separator);
}

QString OperationText(const Operation& operation)
{
    const std::vector<Expression>& operands = operation.Operands;
    switch (operation.Kind) {
    case Operator::Not:
        return QStringLiteral("(NOT ") + ToText(operands[0]) + u')';
    case Operator::Negate:
        return QStringLiteral("(-") + ToText(operands[0]) + u')';
    case Operator::IsNull:
        return u'(' + ToText(operands[0]) + QStringLiteral(" IS NULL)");
    case Operator::IsNotNull:
        return u'(' + ToText(operands[0]) + QStringLiteral(" IS NOT NULL)");
    case Operator::Between:
    case Operator::NotBetween:
        return u'(' + ToText(operands[0]) +
               (operation.Kind == Operator::Between ? QStringLiteral(" BETWEEN ") : QStringLiteral(" NOT BETWEEN ")) +
               Joined(operands, 1, QStringLiteral(" AND ")) + u')';
    case Operator::In:
    case Operator::NotIn:
        return u'(' + ToText(operands[0]) +
               (operation.Kind == Operator::In ? QStringLiteral(" IN (") : QStringLiteral(" NOT IN (")) +
               Joined(operands, 1, QStringLiteral(", ")) + QStringLiteral("))");
    default:
        return u'(' + Joined(operands, 0, SymbolOf(operation.Kind)) + u')';
    }
}

QString AggregateText(const Aggregate& aggregate)
{
    const QString operand = aggregate.Operand.empty() ? QStringLiteral("*") : ToText(aggregate.Operand.front());
    switch (aggregate.Function) {
    case AggregateFunction::Count:
        return QStringLiteral("COUNT(") + operand + u')';
    case AggregateFunction::Maximum:
        return QStringLiteral("MAX(") + operand + u')';
    case AggregateFunction::Minimum:
        return QStringLiteral("MIN(") + operand + u')';
    case AggregateFunction::Sum:
        return QStringLiteral("SUM(") + operand + u')';
    }
    return QString();
}

QString TableText(const TableReference& table)
{
    const QString name = Bracketed(table.Table);
    return table.Alias.isEmpty() ? name : name + QStringLiteral(" AS ") + Bracketed(table.Alias);
}

QString ItemText(const SelectItem& item)
{
    if (item.ItemKind == SelectItem::Kind::AllColumns)
        return QStringLiteral("*");
    if (item.ItemKind == SelectItem::Kind::TableColumns)
        return Bracketed(item.Table) + QStringLiteral(".*");
    return item.Alias.isEmpty() ? ToText(*item.Value)
                                : ToText(*item.Value) + QStringLiteral(" AS ") + Bracketed(item.Alias);
}

QString WhereText(const std::optional<Expression>& where)
{
    return where ? QStringLiteral(" WHERE ") + ToText(*where) : QString();
}

QString SelectText(const SelectStatement& select)
{
    QString text = QStringLiteral("SELECT ");
    if (select.Top)
        text += QStringLiteral("TOP %1 ").arg(*select.Top);
    QStringList items;
    for (const SelectItem& item : select.Items)
        items.append(ItemText(item));
    text += items.join(QStringLiteral(", ")) + QStringLiteral(" FROM ") + TableText(select.From);
    for (const Join& join : select.Joins) {
        text += join.Kind == JoinKind::Left ? QStringLiteral(" LEFT JOIN ") : QStringLiteral(" INNER JOIN ");
        text += TableText(join.Table) + QStringLiteral(" ON ") + ToText(join.Condition);
    }
    text += WhereText(select.Where);
    QStringList terms;
    for (const SortTerm& term : select.OrderBy) {
        terms.append(ToText(term.Value) +
                     (term.Direction == SortDirection::Descending ? QStringLiteral(" DESC") : QString()));
    }
    return terms.isEmpty() ? text : text + QStringLiteral(" ORDER BY ") + terms.join(QStringLiteral(", "));
}

QString UpdateText(const UpdateStatement& update)
{
    QStringList assignments;
    for (const Assignment& assignment : update.Assignments)
        assignments.append(Qualified(assignment.Column) + QStringLiteral(" = ") + ToText(assignment.Value));
    return QStringLiteral("UPDATE ") + TableText(update.Table) + QStringLiteral(" SET ") +
           assignments.join(QStringLiteral(", ")) + WhereText(update.Where);
}
} // namespace

QString ToText(const Expression& expression)
{
    if (const Literal* literal = std::get_if<Literal>(&expression.Node))
        return LiteralText(*literal);
    if (const Name* name = std::get_if<Name>(&expression.Node))
        return Qualified(*name);
    if (const Operation* operation = std::get_if<Operation>(&expression.Node))
        return OperationText(*operation);
    return AggregateText(std::get<Aggregate>(expression.Node));
}

QString ToText(const Statement& statement)
{
    if (const SelectStatement* select = std::get_if<SelectStatement>(&statement))
        return SelectText(*select);
    if (const UpdateStatement* update = std::get_if<UpdateStatement>(&statement))
        return UpdateText(*update);
    const DeleteStatement& remove = std::get<DeleteStatement>(statement);
    return QStringLiteral("DELETE FROM ") + TableText(remove.Table) + WhereText(remove.Where);
}

} // namespace dao::jetsql
