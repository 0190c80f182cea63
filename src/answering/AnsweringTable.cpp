// SPDX-License-Identifier: Apache-2.0
#include "answering/AnsweringTable.h"

#include "platform/directory/DirectoryTables.h"
#include "platform/records/Recordset.h"
#include "platform/records/Transaction.h"

namespace
{
const QString AnsweringRows = QStringLiteral("Answering");
const QString AnsweringEntryField = QStringLiteral("Entry");
const QString AnsweringMessageField = QStringLiteral("Message");
const QString AnsweringNameField = QStringLiteral("Name");
const QString AnsweringSecondsField = QStringLiteral("Seconds");
} // namespace

QList<AnsweringEntry> AnsweringTable::Read() const
{
    QList<AnsweringEntry> entries;
    const auto rows = DirectoryTables::OpenIfThere(
        File_, QStringLiteral("SELECT [Entry], [Message], [Name], [Seconds] FROM [Answering] ORDER BY [Entry]"));
    for (; rows && !rows->AtEOF(); rows->MoveNext()) {
        entries.append({rows->Collect(AnsweringEntryField).toString(), rows->Collect(AnsweringMessageField).toInt(),
                        rows->Collect(AnsweringNameField).toString(), rows->Collect(AnsweringSecondsField).toInt()});
    }
    return entries;
}

void AnsweringTable::Write(const QList<AnsweringEntry>& present, const QStringList& gone)
{
    DirectoryTables::AddLater(File_, AnsweringRows);
    dao::Transaction transaction(File_);
    const auto rows = DirectoryTables::OpenTable(File_, AnsweringRows, QStringLiteral("Main"));
    for (const AnsweringEntry& entry : present) {
        rows->Seek(dao::SeekComparison::Equal, {entry.Entry});
        if (rows->NoMatch())
            rows->AddNew();
        else
            rows->Edit();
        rows->SetCollect(AnsweringEntryField, entry.Entry);
        rows->SetCollect(AnsweringMessageField, entry.Message);
        rows->SetCollect(AnsweringNameField, entry.Name);
        rows->SetCollect(AnsweringSecondsField, entry.Seconds);
        rows->Update();
    }
    for (const QString& entry : gone) {
        rows->Seek(dao::SeekComparison::Equal, {entry});
        if (!rows->NoMatch())
            rows->Delete();
    }
    transaction.Commit();
}
