// SPDX-License-Identifier: Apache-2.0
#include "database/TableCheck.h"

#include "common/PendingError.h"
#include "common/kvGeneral.h"

namespace
{
using namespace dao;

constexpr int errOutOfMemory = 7;

bool MeansAbsent(const PendingError& pending, const TableCheckRules& rules)
{
    return pending.Number() == errItemNotFound ||
           (rules.AcceptsOutOfMemoryAsAbsent && pending.Number() == errOutOfMemory);
}

int Report(const QString& text, const PendingError& pending, const TableCheckRules& rules)
{
    ReportProblem(text, pending.Number(), rules.Silent, pending.Description());
    return pending.Number();
}

void AppendField(TableDef& table, const FieldShape& shape, const TableCheckRules& rules)
{
    auto field = table.CreateField(shape.Name, shape.Type, shape.Size);
    field->SetAttributes(shape.Attributes);
    if (rules.SetsAllowZeroLength && (shape.Type == dbText || shape.Type == dbMemo))
        field->SetAllowZeroLength(true);
    table.Fields().Append(std::move(field));
}

void AppendIndex(TableDef& table, const IndexShape& shape, bool isFirst, const TableCheckRules& rules)
{
    auto index = table.CreateIndex(shape.Name);
    if (isFirst) {
        index->SetPrimary(rules.FirstIndexIsPrimary);
        index->SetUnique(true);
    }
    for (const QString& name : shape.Fields)
        index->Fields().Append(index->CreateField(name));
    table.Indexes().Append(std::move(index));
}

/// A table must have one field to be appended, so the first is made with it; the others follow like missing ones.
int CreateTable(Database& database, const TableShape& shape, const TableCheckRules& rules)
{
    PendingError pending;
    pending.Try([&] {
        auto table = database.CreateTableDef(shape.Name);
        AppendField(*table, shape.Fields.first(), rules);
        database.TableDefs().Append(std::move(table));
    });
    // Another computer that opens the same new file may have been quicker; its table is as good.
    if (pending.Number() == 0 || pending.Number() == errTableExists)
        return 0;
    return Report(QStringLiteral("creating the %1 Table").arg(shape.Name), pending, rules);
}

/// Whether another computer that brings the same file up to date has been quicker with this part of it. part: of the
/// table as it stands now.
template <typename Part>
bool StandsByNow(Database& database, const TableShape& shape, Part&& part)
{
    PendingError pending;
    return pending.Try([&] { part(database.TableDefs().Item(shape.Name)); });
}

int CheckFields(Database& database, TableDef& table, const TableShape& shape, const TableCheckRules& rules)
{
    for (const FieldShape& field : shape.Fields) {
        PendingError pending;
        if (pending.Try([&] { table.Fields().Item(field.Name); }))
            continue;
        if (!MeansAbsent(pending, rules))
            return Report(QStringLiteral("checking the %1 field").arg(field.Name), pending, rules);
        pending.Clear();
        const auto find = [&](TableDef& now) { now.Fields().Item(field.Name); };
        if (!pending.Try([&] { AppendField(table, field, rules); }) && !StandsByNow(database, shape, find))
            return Report(QStringLiteral("adding the %1 field").arg(field.Name), pending, rules);
    }
    return 0;
}

/// An index that cannot be made does not stop the check: the data can be read all the same, only a Seek will fail.
void CheckIndexes(Database& database, TableDef& table, const TableShape& shape, const TableCheckRules& rules)
{
    for (const IndexShape& index : shape.Indexes) {
        PendingError pending;
        if (pending.Try([&] { table.Indexes().Item(index.Name); }) || !MeansAbsent(pending, rules))
            continue;
        pending.Clear();
        const bool isFirst = &index == &shape.Indexes.first();
        const auto find = [&](TableDef& now) { now.Indexes().Item(index.Name); };
        if (pending.Try([&] { AppendIndex(table, index, isFirst, rules); }) || !rules.ReportsIndexFailure ||
            StandsByNow(database, shape, find))
            continue;
        // The missing blank stands in the words that are known from the field.
        const QString words = rules.QuotesIndexName ? QStringLiteral("adding the index '%1' to the %2 table")
                                                    : QStringLiteral("adding the index%1 to the %2 table");
        Report(words.arg(index.Name, shape.Name), pending, rules);
    }
}
} // namespace

int CheckTable(Database& database, const TableShape& shape, const TableCheckRules& rules)
{
    TableDef* table = nullptr;
    const auto find = [&] { table = &database.TableDefs().Item(shape.Name); };
    PendingError pending;
    if (!pending.Try(find)) {
        if (const int number = CreateTable(database, shape, rules))
            return number;
        pending.Clear();
        pending.Try(find);
    }
    if (!table)
        return Report(QStringLiteral("checking the %1 field").arg(shape.Fields.first().Name), pending, rules);
    if (const int number = CheckFields(database, *table, shape, rules))
        return number;
    CheckIndexes(database, *table, shape, rules);
    return 0;
}
