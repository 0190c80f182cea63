// SPDX-License-Identifier: Apache-2.0
#include "RandomQueries.h"

using namespace dao;

namespace
{

const QStringList& Words()
{
    static const QStringList words = {
        QString(),
        QStringLiteral("a"),
        QStringLiteral("A"),
        QStringLiteral("ab"),
        QStringLiteral("É"),
        QStringLiteral("é"),
        QStringLiteral("ΣΑΣ"),
        QStringLiteral("σας"),
        QStringLiteral("5"),
        QStringLiteral(" 5.0 "),
        QStringLiteral("-1e2"),
        QStringLiteral("300 ") + QChar(0x212A),
        QStringLiteral("300 k"),
        QStringLiteral("😀"),
        QStringLiteral("x") + QChar(0xD83D),
        QStringLiteral("zz zz zz zz"),
    };
    return words;
}

QString Quoted(QString text)
{
    return u'\'' + text.replace(u'\'', QStringLiteral("''")) + u'\'';
}

engine::Column MakeColumn(const char* name, DataTypeEnum type, int size = 0, int attributes = 0)
{
    return {QString::fromLatin1(name), type, size, attributes, true};
}

} // namespace

engine::Table RandomQueries::FirstTable()
{
    engine::Table table;
    table.Name = QStringLiteral("T");
    table.Columns = {MakeColumn("Id", dbLong, 4, dbAutoIncrField),
                     MakeColumn("N", dbInteger, 2),
                     MakeColumn("L", dbLong, 4),
                     MakeColumn("D", dbDouble, 8),
                     MakeColumn("S", dbText, 20),
                     MakeColumn("W", dbDate, 8),
                     MakeColumn("B", dbBoolean, 1),
                     MakeColumn("M", dbMemo)};
    table.Indexes = {{QStringLiteral("Main"), true, true, {0}}};
    table.Complete();
    return table;
}

engine::Table RandomQueries::SecondTable()
{
    engine::Table table;
    table.Name = QStringLiteral("U");
    table.Columns = {MakeColumn("Key", dbLong, 4, dbAutoIncrField), MakeColumn("Ref", dbLong, 4),
                     MakeColumn("S", dbText, 20), MakeColumn("R", dbSingle, 4), MakeColumn("X", dbMemo)};
    table.Columns.back().AllowZeroLength = false;
    table.Indexes = {{QStringLiteral("Main"), true, true, {0}},
                     {QStringLiteral("ByRef"), false, false, {1}},
                     {QStringLiteral("ByText"), false, false, {2}}};
    table.Complete();
    return table;
}

StoredValue RandomQueries::ValueFor(const engine::Column& column)
{
    if (OneIn(5))
        return {};
    switch (column.Type) {
    case dbBoolean:
        return OneIn(2) ? qint64{-1} : qint64{0};
    case dbInteger:
    case dbLong:
        return qint64{Below(9)} - 3;
    case dbDate:
        return 45000.0 + Below(8) / 4.0;
    case dbText:
    case dbMemo: {
        const QByteArray text = OneOf(Words()).toUtf8();
        if (text.isEmpty() && !column.AllowZeroLength)
            return {};
        return text.isEmpty() ? QByteArrayLiteral("") : text;
    }
    default:
        return OneIn(8) ? 1e15 + Below(3) : Below(12) / 2.0 - 2;
    }
}

QString RandomQueries::Column(const QStringList& ofFirst, const QStringList& ofSecond)
{
    const bool isFirst = HasFirst_ && (!HasSecond_ || OneIn(2));
    const QString name = OneOf(isFirst ? ofFirst : ofSecond);
    const QString table = isFirst ? QStringLiteral("T") : QStringLiteral("U");
    switch (Below(HasFirst_ && HasSecond_ && name == QLatin1String("S") ? 2 : 4)) {
    case 0:
        return table + QStringLiteral(".") + name;
    case 1:
        return u'[' + table + u'.' + name + u']';
    case 2:
        return u'[' + name + u']';
    default:
        return name.toLower();
    }
}

QString RandomQueries::NumberLiteral()
{
    static const QStringList tame = {QStringLiteral("0"),     QStringLiteral("1"),   QStringLiteral("-1"),
                                     QStringLiteral("2"),     QStringLiteral("5"),   QStringLiteral("2.5"),
                                     QStringLiteral("-.5"),   QStringLiteral("1e1"), QStringLiteral("TRUE"),
                                     QStringLiteral("FALSE"), QStringLiteral("NULL")};
    static const QStringList wild = {QStringLiteral("9223372036854775807"),
                                     QStringLiteral("-9223372036854775807"),
                                     QStringLiteral("9007199254740993"),
                                     QStringLiteral("9007199254740992.0"),
                                     QStringLiteral("1e308"),
                                     QStringLiteral("1e-308"),
                                     QStringLiteral("4503599627370496.5"),
                                     QStringLiteral("40000")};
    return OneOf(!IsTame_ && OneIn(6) ? wild : tame);
}

QString RandomQueries::Number(int depth)
{
    static const QStringList operators = {QStringLiteral(" + "), QStringLiteral(" - "), QStringLiteral(" * "),
                                          QStringLiteral(" MOD "), QStringLiteral(" / ")};
    switch (Below(depth <= 0 ? 6 : 10)) {
    case 0:
        return NumberLiteral();
    case 1:
        return OneIn(3) ? QStringLiteral("[p%1]").arg(Below(3)) : NumberLiteral();
    case 6:
        return QStringLiteral("-(%1)").arg(Number(depth - 1));
    case 7:
        return u'(' + Condition(depth - 2) + u')';
    case 8:
    case 9:
        return u'(' + Number(depth - 1) + operators.at(Below(IsTame_ ? 4 : 5)) + Number(depth - 1) + u')';
    default:
        if (IsTame_)
            return Column({QStringLiteral("Id"), QStringLiteral("N"), QStringLiteral("L"), QStringLiteral("B")},
                          {QStringLiteral("Key"), QStringLiteral("Ref")});
        return Column(
            {QStringLiteral("Id"), QStringLiteral("N"), QStringLiteral("L"), QStringLiteral("D"), QStringLiteral("B")},
            {QStringLiteral("Key"), QStringLiteral("Ref"), QStringLiteral("R")});
    }
}

QString RandomQueries::Text(int depth)
{
    switch (Below(depth <= 0 ? 5 : 8)) {
    case 0:
        return Quoted(OneOf(Words()));
    case 1:
        return OneIn(3) ? QStringLiteral("[p%1]").arg(Below(3)) : Quoted(OneOf(Words()));
    case 5:
        return u'(' + Text(depth - 1) + QStringLiteral(" + ") + Text(depth - 1) + u')';
    case 6:
        return u'(' + Text(depth - 1) + QStringLiteral(" & ") + Number(depth - 1) + u')';
    case 7:
        return u'(' + Text(depth - 1) + QStringLiteral(" & ") + Text(depth - 1) + u')';
    default:
        return Column({QStringLiteral("S"), QStringLiteral("M")}, {QStringLiteral("S"), QStringLiteral("X")});
    }
}

QString RandomQueries::Date(int depth)
{
    if (!HasFirst_ || OneIn(3))
        return OneIn(2) ? QStringLiteral("#2023-03-15#") : QStringLiteral("#3/16/2023 12:00#");
    if (depth > 0 && OneIn(3))
        return QStringLiteral("(W + ") + NumberLiteral() + u')';
    return QStringLiteral("W");
}

QString RandomQueries::Anything(int depth)
{
    switch (Below(4)) {
    case 0:
        return Text(depth);
    case 1:
        return Date(depth);
    case 2:
        return QStringLiteral("NULL");
    default:
        return Number(depth);
    }
}

QString RandomQueries::Comparison(int depth)
{
    static const QStringList symbols = {QStringLiteral(" = "),  QStringLiteral(" <> "), QStringLiteral(" < "),
                                        QStringLiteral(" <= "), QStringLiteral(" > "),  QStringLiteral(" >= ")};
    switch (Below(12)) {
    case 0:
        return Date(depth) + OneOf(symbols) + Date(0);
    case 1:
        return Number(depth) + OneOf(symbols) + Quoted(OneOf(Words()));
    case 2:
        return NumberLiteral() + OneOf(symbols) + Text(depth);
    case 3:
        return OneIn(3) ? Anything(depth) + OneOf(symbols) + Anything(depth) : Text(0) + OneOf(symbols) + Text(0);
    case 4:
    case 5:
    case 6:
    case 7:
        return Text(depth) + OneOf(symbols) + Text(depth);
    default:
        return Number(depth) + OneOf(symbols) + Number(depth);
    }
}

QString RandomQueries::Like(int depth)
{
    static const QStringList patterns = {
        QStringLiteral("'*'"),  QStringLiteral("'*a*'"), QStringLiteral("'?'"),      QStringLiteral("'#'"),
        QStringLiteral("'É*'"), QStringLiteral("'*k'"),  QStringLiteral("'[a-c]*'"), QStringLiteral("'*σ*'"),
        QStringLiteral("5"),    QStringLiteral("NULL"),  QStringLiteral("''"),       QStringLiteral("'*z z*'")};
    const QString word = OneIn(4) ? QStringLiteral(" NOT LIKE ") : QStringLiteral(" LIKE ");
    const QString text = OneIn(6) ? Number(depth) : Text(depth);
    return text + word + (OneIn(6) ? Text(depth) : OneOf(patterns));
}

QString RandomQueries::Among(int depth)
{
    const bool isText = OneIn(2);
    const auto value = [&](int deep) { return isText ? Text(deep) : Number(deep); };
    const QString negation = OneIn(3) ? QStringLiteral(" NOT") : QString();
    if (OneIn(2))
        return value(depth) + negation + QStringLiteral(" BETWEEN ") + value(0) + QStringLiteral(" AND ") + value(0);
    QStringList candidates;
    for (int count = 1 + Below(4); count > 0; --count)
        candidates.append(value(0));
    return value(depth) + negation + QStringLiteral(" IN (") + candidates.join(QStringLiteral(", ")) + u')';
}

QString RandomQueries::Chained(const char* word, int depth)
{
    QStringList conditions;
    for (int count = 2 + Below(3); count > 0; --count)
        conditions.append(u'(' + Condition(depth - 1) + u')');
    return conditions.join(QString::fromLatin1(word));
}

QString RandomQueries::Condition(int depth)
{
    switch (depth <= 0 ? 3 + Below(8) : Below(11)) {
    case 0:
        return Chained(" AND ", depth);
    case 1:
        return Chained(" OR ", depth);
    case 2:
        return QStringLiteral("NOT (") + Condition(depth - 1) + u')';
    case 3:
    case 4:
        return Like(depth - 1);
    case 5:
        return Among(depth - 1);
    case 6:
        return Anything(depth - 1) + (OneIn(2) ? QStringLiteral(" IS NULL") : QStringLiteral(" IS NOT NULL"));
    case 7:
        return Number(depth - 1);
    default:
        return Comparison(depth - 1);
    }
}

QString RandomQueries::Source()
{
    HasFirst_ = true;
    HasSecond_ = true;
    const QString kind = OneIn(2) ? QStringLiteral(" LEFT JOIN ") : QStringLiteral(" INNER JOIN ");
    switch (Below(8)) {
    case 0:
    case 1:
        HasFirst_ = false;
        return QStringLiteral("U");
    case 2:
        return QStringLiteral("T") + kind + QStringLiteral("U ON T.L = U.Ref");
    case 3:
        return QStringLiteral("U") + kind + QStringLiteral("T ON (U.S = T.S AND ") + Condition(1) + u')';
    case 4:
        return QStringLiteral("T") + kind + QStringLiteral("U ON ") + Condition(1);
    default:
        HasSecond_ = false;
        return QStringLiteral("T");
    }
}

QString RandomQueries::Items()
{
    if (OneIn(3))
        return QStringLiteral("*");
    QStringList items;
    for (int count = 1 + Below(3); count > 0; --count) {
        QString item = Anything(2);
        if (OneIn(3))
            item = OneIn(2) && HasFirst_ ? QStringLiteral("T.*") : Column({QStringLiteral("M")}, {QStringLiteral("X")});
        items.append(item);
    }
    return items.join(QStringLiteral(", "));
}

QString RandomQueries::Aggregates()
{
    QStringList items;
    for (int count = 1 + Below(3); count > 0; --count) {
        switch (Below(5)) {
        case 0:
            items.append(QStringLiteral("COUNT(*)"));
            break;
        case 1:
            IsTame_ = true;
            items.append(QStringLiteral("SUM(%1)").arg(Number(2)));
            IsTame_ = false;
            break;
        case 2:
            items.append(QStringLiteral("COUNT(%1)").arg(Anything(2)));
            break;
        default:
            items.append((OneIn(2) ? QStringLiteral("MAX(%1)") : QStringLiteral("MIN(%1)")).arg(Anything(2)));
            break;
        }
    }
    return items.join(QStringLiteral(", "));
}

QString RandomQueries::Where(int depth)
{
    if (OneIn(6))
        return QString();
    const QString keyed = HasFirst_  ? QStringLiteral("Id = ") + Number(0)
                          : OneIn(2) ? QStringLiteral("U.S = ") + Text(0)
                                     : Number(0) + QStringLiteral(" = Ref");
    if (OneIn(5))
        return QStringLiteral(" WHERE ") + keyed + (OneIn(2) ? QString() : QStringLiteral(" AND ") + Number(1));
    return QStringLiteral(" WHERE ") + Condition(depth);
}

RandomQueries::Select RandomQueries::MakeSelect()
{
    Select select;
    const bool isAggregate = OneIn(5);
    const QString source = Source();
    const QString items = isAggregate ? Aggregates() : Items();
    const QString where = Where(3);
    QStringList order;
    for (int count = Below(3); count > 0 && !isAggregate; --count)
        order.append(Anything(1) + (OneIn(2) ? QStringLiteral(" DESC") : QString()));
    select.IsOrdered = isAggregate || OneIn(2);
    if (select.IsOrdered && !isAggregate) {
        if (HasFirst_)
            order.append(QStringLiteral("Id"));
        if (HasSecond_)
            order.append(QStringLiteral("Key DESC"));
    }
    const QString top = select.IsOrdered && OneIn(4) ? QStringLiteral("TOP %1 ").arg(Below(9)) : QString();
    select.Text = QStringLiteral("SELECT ") + top + items + QStringLiteral(" FROM ") + source + where;
    if (!order.isEmpty())
        select.Text += QStringLiteral(" ORDER BY ") + order.join(QStringLiteral(", "));
    return select;
}

RandomQueries::Change RandomQueries::MakeChange()
{
    Change change;
    HasFirst_ = OneIn(2);
    HasSecond_ = !HasFirst_;
    const QString table = HasFirst_ ? QStringLiteral("T") : QStringLiteral("U");
    const QString where = Where(2);
    if (OneIn(4)) {
        change.Text = QStringLiteral("DELETE FROM ") + table + where;
        return change;
    }
    QStringList columns =
        HasFirst_ ? QStringList{QStringLiteral("N"), QStringLiteral("L"), QStringLiteral("D"),     QStringLiteral("S"),
                                QStringLiteral("W"), QStringLiteral("B"), QStringLiteral("[T.M]"), QStringLiteral("M")}
                  : QStringList{QStringLiteral("Ref"), QStringLiteral("S"), QStringLiteral("R"), QStringLiteral("X")};
    QStringList assignments;
    for (int count = OneIn(3) ? 2 : 1; count > 0; --count) {
        assignments.append(OneOf(columns) + QStringLiteral(" = ") + Anything(2));
        ++change.Assignments;
    }
    if (OneIn(40))
        assignments.append(HasFirst_ ? QStringLiteral("[T.Id] = 9") : QStringLiteral("Nothing = 9"));
    change.Text =
        QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") + assignments.join(QStringLiteral(", ")) + where;
    return change;
}

engine::ParameterValues RandomQueries::MakeParameters()
{
    engine::ParameterValues values;
    for (int i = 0; i < 3; ++i) {
        if (OneIn(30))
            continue;
        QVariant value;
        switch (Below(6)) {
        case 0:
            value = Below(7) - 2;
            break;
        case 1:
            value = Below(12) / 2.0 - 2;
            break;
        case 2:
            value = QStringLiteral(" %1 ").arg(Below(6));
            break;
        case 3:
            value = OneOf(Words());
            break;
        case 4:
            value = OneIn(2) ? QVariant(true) : QVariant(QDateTime(QDate(2023, 3, 15), QTime(6, 0), Qt::UTC));
            break;
        default:
            break;
        }
        values.push_back({QStringLiteral("P%1").arg(i), value});
    }
    return values;
}
