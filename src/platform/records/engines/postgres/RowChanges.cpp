// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/MemoCheck.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/engines/postgres/RowAccess.h"
#include "platform/records/query/StoredValues.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>
#include <limits>

/// Reading by id, memos, and changes.
namespace dao::postgres
{

using engine::MemoFetch;
using engine::StoredMemo;

namespace
{

std::string_view View(const QByteArray& octets)
{
    return {octets.constData(), static_cast<std::size_t>(octets.size())};
}

/// An empty text is not Null, and QByteArray tells the two apart by its pointer.
QByteArray Kept(std::string_view octets)
{
    return octets.empty() ? QByteArrayLiteral("") : QByteArray(octets.data(), static_cast<qsizetype>(octets.size()));
}

} // namespace

void RowAccess::ReadBehind(qint64 id, MemoFetch memos, std::vector<Row>& rows)
{
    Command command{"SELECT " + ReadColumns(memos) + " FROM " + Rows_ + " WHERE id > $1 ORDER BY id LIMIT 200"};
    command.Values.AddInteger(id);
    const Result result = Connection_.Run(command);
    for (int row = 0; row < result.Rows(); ++row)
        Take(result, row, memos, rows.emplace_back());
}

std::vector<Row> RowAccess::ReadRows(std::span<const qint64> ids, MemoFetch memos)
{
    Command command{"SELECT " + ReadColumns(memos) + " FROM " + Rows_ + " WHERE id = ANY($1)"};
    command.Values.AddIntegers(ids);
    const Result result = Connection_.Run(command);
    QHash<qint64, int> places;
    for (int row = 0; row < result.Rows(); ++row)
        places.insert(result.Integer(row, 0), row);
    std::vector<Row> rows;
    rows.reserve(ids.size());
    for (const qint64 id : ids) {
        Row& row = rows.emplace_back();
        const int place = places.value(id, -1);
        if (place < 0)
            row.Id = engine::NoRow;
        else
            Take(result, place, memos, row);
    }
    return rows;
}

std::vector<StoredMemo> RowAccess::ReadMemos(int column, std::span<const qint64> ids, qint64 octetBudget)
{
    const QByteArray name = ColumnName(Table_, column);
    // As many as the budget takes, and one at least; the server knows their sizes without reading them.
    Command command{"SELECT ids.place, found.id, " + name + ", " + CheckName(column) +
                    " FROM (SELECT asked.id, asked.place, SUM(COALESCE(pg_catalog.octet_length(" + name +
                    "), 0)) OVER (ORDER BY asked.place) - COALESCE(pg_catalog.octet_length(" + name +
                    "), 0) AS before FROM pg_catalog.unnest($1) WITH ORDINALITY AS asked (id, place) "
                    "LEFT JOIN " +
                    Rows_ + " AS sized ON sized.id = asked.id) AS ids LEFT JOIN " + Rows_ +
                    " AS found ON found.id = ids.id WHERE ids.before <= $2 ORDER BY ids.place"};
    command.Values.AddIntegers(ids);
    command.Values.AddInteger(std::min(octetBudget, qint64{1} << 40));
    const Result result = Connection_.Run(command);
    std::vector<StoredMemo> memos;
    memos.reserve(static_cast<std::size_t>(result.Rows()));
    for (int row = 0; row < result.Rows(); ++row) {
        StoredMemo& memo = memos.emplace_back();
        memo.HasRow = !result.IsNull(row, 1);
        if (!memo.HasRow)
            continue;
        const bool isNull = result.IsNull(row, 2);
        if (isNull || result.IsNull(row, 3)) {
            memo.IsDamaged = isNull != result.IsNull(row, 3);
        } else {
            memo.IsDamaged = result.Integer(row, 3) != engine::MemoCheck(result.Integer(row, 1), result.Octets(row, 2));
        }
        if (!isNull)
            memo.Utf8 = Kept(result.Octets(row, 2));
    }
    return memos;
}

std::vector<std::optional<MemoBeginning>> RowAccess::ReadMemoBeginnings(int column, std::span<const qint64> ids,
                                                                        qsizetype mostOctets)
{
    const QByteArray name = ColumnName(Table_, column);
    Command command{"SELECT id, pg_catalog.substr(" + name + ", 1, $2::integer), pg_catalog.octet_length(" + name +
                    ") FROM " + Rows_ + " WHERE id = ANY($1)"};
    command.Values.AddIntegers(ids);
    command.Values.AddInteger(std::min<qint64>(mostOctets, std::numeric_limits<qint32>::max()));
    const Result result = Connection_.Run(command);
    QHash<qint64, int> places;
    for (int row = 0; row < result.Rows(); ++row)
        places.insert(result.Integer(row, 0), row);
    std::vector<std::optional<MemoBeginning>> beginnings;
    beginnings.reserve(ids.size());
    for (const qint64 id : ids) {
        const int place = places.value(id, -1);
        if (place < 0) {
            beginnings.emplace_back();
            continue;
        }
        if (result.IsNull(place, 1))
            beginnings.emplace_back(MemoBeginning{QByteArray(), true});
        else
            beginnings.emplace_back(
                MemoBeginning{Kept(result.Octets(place, 1)), result.Integer(place, 2) <= mostOctets});
    }
    return beginnings;
}

qint64 RowAccess::CountRows()
{
    return Connection_.Run(Command{"SELECT pg_catalog.count(*) FROM " + Rows_}).Integer(0, 0);
}

bool RowAccess::Exists(qint64 id)
{
    Command command{"SELECT 1 FROM " + Rows_ + " WHERE id = $1"};
    command.Values.AddInteger(id);
    return Connection_.Run(command).Rows() > 0;
}

qint64 RowAccess::LastId()
{
    const Result result = Connection_.Run(
        Command{"SELECT CASE WHEN is_called THEN last_value ELSE 0 END FROM " + IdSequence(Schema_, Table_.Id)});
    return result.Integer(0, 0);
}

Command RowAccess::DrawCommand() const
{
    return Command{"SELECT pg_catalog.nextval('" + IdSequence(Schema_, Table_.Id).replace('\'', "''") + "')"};
}

std::deque<qint64> RowAccess::DrawIds(int count)
{
    Command command = DrawCommand();
    if (count > 1) {
        const QByteArray sequence = '\'' + IdSequence(Schema_, Table_.Id).replace('\'', "''") + '\'';
        // No more than there are.
        command.Text += " FROM pg_catalog.generate_series(1, LEAST($1, (SELECT seqmax FROM pg_catalog.pg_sequence "
                        "WHERE seqrelid = " +
                        sequence + "::pg_catalog.regclass) - COALESCE(pg_catalog.pg_sequence_last_value(" + sequence +
                        "), 0)))";
        command.Values.AddInteger(count);
    }
    const Result result = Connection_.Run(command);
    std::deque<qint64> ids;
    for (int row = 0; row < result.Rows(); ++row)
        ids.push_back(result.Integer(row, 0));
    // Behind the last one the server says itself that there is none.
    return ids.empty() ? DrawIds(1) : ids;
}

void RowAccess::RaiseIds(qint64 last)
{
    const QByteArray sequence = IdSequence(Schema_, Table_.Id);
    Command command{"SELECT pg_catalog.setval('" + QByteArray(sequence).replace('\'', "''") + "', $1) FROM " +
                    sequence + " WHERE $1 > CASE WHEN is_called THEN last_value ELSE 0 END"};
    command.Values.AddInteger(last);
    Connection_.Run(command);
}

QList<QByteArray> RowAccess::AssignedNames(int column) const
{
    QList<QByteArray> names{ColumnName(Table_, column)};
    if (HasTwin(Table_, column))
        names += FoldedName(column);
    if (Table_.Columns[static_cast<std::size_t>(column)].IsMemo())
        names += CheckName(column);
    return names;
}

void RowAccess::AddAssigned(Parameters& values, qint64 id, const engine::Assignment& assignment) const
{
    const engine::Column& column = Table_.Columns[static_cast<std::size_t>(assignment.Column)];
    values.Add(*assignment.Value, KindOf(column.Type));
    const auto* text = std::get_if<QByteArray>(assignment.Value);
    if (HasTwin(Table_, assignment.Column)) {
        if (text == nullptr)
            values.AddNull(Kind::Octets);
        else
            values.AddOctets(View(Folded(View(*text))));
    }
    if (!column.IsMemo())
        return;
    if (text == nullptr)
        values.AddNull(Kind::Integer);
    else
        values.AddInteger(engine::MemoCheck(id, View(*text)));
}

Command RowAccess::InsertCommand(qint64 id, std::span<const engine::Assignment> values) const
{
    Command command;
    QByteArray names = "id, version";
    QByteArray places = "$1, $2";
    command.Values.AddInteger(id);
    // A row that later takes the id of a deleted one must not pass for it.
    command.Values.AddInteger(static_cast<qint64>(QRandomGenerator::global()->generate() >> 1U));
    int place = 3;
    for (const engine::Assignment& assignment : values) {
        if (assignment.Column == Table_.CounterColumn())
            continue;
        for (const QByteArray& name : AssignedNames(assignment.Column)) {
            names += ", " + name;
            places += ", $" + QByteArray::number(place++);
        }
        AddAssigned(command.Values, id, assignment);
    }
    command.Text = "INSERT INTO " + Rows_ + " (" + names + ") VALUES (" + places + ')';
    return command;
}

Command RowAccess::UpdateCommand(qint64 id, qint64 version, std::span<const engine::Assignment> values) const
{
    Command command;
    command.Text = "UPDATE " + Rows_ + " SET version = version + 1";
    command.Values.AddInteger(id);
    command.Values.AddInteger(version);
    int place = 3;
    for (const engine::Assignment& assignment : values) {
        for (const QByteArray& name : AssignedNames(assignment.Column))
            command.Text += ", " + name + " = $" + QByteArray::number(place++);
        AddAssigned(command.Values, id, assignment);
    }
    command.Text += " WHERE id = $1 AND version = $2";
    return command;
}

Command RowAccess::DeleteCommand(qint64 id) const
{
    Command command{"DELETE FROM " + Rows_ + " WHERE id = $1"};
    command.Values.AddInteger(id);
    return command;
}

} // namespace dao::postgres
