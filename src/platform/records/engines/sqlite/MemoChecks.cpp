// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/MemoChecks.h"

#include "platform/records/engines/sqlite/FileCheck.h"
#include "platform/records/engines/sqlite/FileCopy.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"

namespace dao::sqlite
{

void BackfillChecks(const QString& file)
{
    Connection connection(file, Connection::Mode::ReadWrite);
    if (FormatOf(connection) != FormatVersionWithoutChecks)
        return;
    connection.Execute("BEGIN IMMEDIATE");
    const engine::SchemaPtr schema = ReadSchema(connection, nullptr);
    for (const engine::TablePtr& table : schema->Tables) {
        const QByteArray name = QuoteName(table->Name);
        QByteArrayList values;
        for (const engine::Column& column : table->Columns) {
            if (!column.IsMemo())
                continue;
            const QByteArray check = CheckColumn(column);
            connection.Execute("ALTER TABLE " + name + " ADD COLUMN " + check + " INTEGER");
            values += check + " = jet_check(" + QuoteName(column.Name) + ", " + RowIdName + ')';
        }
        if (!values.isEmpty())
            connection.Execute("UPDATE " + name + " SET " + values.join(", "));
    }
    connection.Execute(QByteArrayLiteral("PRAGMA user_version=") + QByteArray::number(FormatVersion));
    connection.Execute("COMMIT");
}

void RepairIndexes(const QString& file, const QString& copy)
{
    CopyFile(file, copy, {});
    Connection connection(copy, Connection::Mode::ReadWrite);
    try {
        connection.Execute("REINDEX");
    } catch (const Error& error) {
        if (error.Number() != errDuplicateValue)
            throw;
        throw Error(errFileDamaged,
                    QStringLiteral("The database '%1' is damaged: a unique value is there twice.").arg(file));
    }
}

void FinishCompaction(const QString& copy)
{
    BackfillChecks(copy);
    const FileReport report = ExamineFile(copy, {});
    if (report.Verdict != FileReport::State::Sound)
        throw Error(errFileDamaged, QStringLiteral("The database is damaged. (%1)").arg(report.Faults.value(0)));
}

} // namespace dao::sqlite
