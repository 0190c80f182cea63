// SPDX-License-Identifier: Apache-2.0
#include "answering/AnswerLedger.h"

#include "database/RowValues.h"
#include "platform/directory/DirectoryTables.h"
#include "platform/records/Recordset.h"
#include "platform/records/Transaction.h"

namespace
{
const QString AnswersTable = QStringLiteral("Answers");
const QString AnswersMessage = QStringLiteral("Message");
const QString AnswersArrived = QStringLiteral("Arrived");
const QString AnswersAnswer = QStringLiteral("Answer");
const QString AnswersName = QStringLiteral("Name");
const QString AnswersWhen = QStringLiteral("When");

AnsweredMessage OriginalOf(const dao::Recordset& row)
{
    return {row.Collect(AnswersMessage).toInt(), Date(row.Collect(AnswersArrived).toDouble())};
}
} // namespace

void AnswerLedger::Note(const QList<AnsweredMessage>& originals, qint32 answer, const QString& name, Date when)
{
    if (originals.isEmpty())
        return;
    DirectoryTables::AddLater(File_, AnswersTable);
    dao::Transaction transaction(File_);
    const auto rows = DirectoryTables::OpenTable(File_, AnswersTable, QStringLiteral("Main"));
    for (const AnsweredMessage& original : originals) {
        rows->Seek(dao::SeekComparison::Equal, {original.Message, answer});
        if (rows->NoMatch())
            rows->AddNew();
        else
            rows->Edit();
        rows->SetCollect(AnswersMessage, original.Message);
        rows->SetCollect(AnswersArrived, RowValues::Stored(original.Arrived));
        rows->SetCollect(AnswersAnswer, answer);
        rows->SetCollect(AnswersName, name);
        rows->SetCollect(AnswersWhen, RowValues::Stored(when));
        rows->Update();
    }
    transaction.Commit();
}

QList<AnsweredMessage> AnswerLedger::OriginalsOf(qint32 answer) const
{
    QList<AnsweredMessage> originals;
    const auto rows = DirectoryTables::OpenIfThere(
        File_,
        QStringLiteral("SELECT [Message], [Arrived] FROM [Answers] WHERE [Answer]=%1 ORDER BY [Message]").arg(answer));
    for (; rows && !rows->AtEOF(); rows->MoveNext())
        originals.append(OriginalOf(*rows));
    return originals;
}

QList<FiledAnswer> AnswerLedger::Since(Date when) const
{
    QList<FiledAnswer> answers;
    // No moment lies before 1899, and the condition leaves drafts out, which have none.
    const QString since = QString::number(when.IsNone() ? 0 : when.DayNumber(), 'f', 8);
    const auto rows = DirectoryTables::OpenIfThere(
        File_,
        QStringLiteral("SELECT [Message], [Arrived], [Name], [When] FROM [Answers] WHERE [When]>=%1").arg(since));
    for (; rows && !rows->AtEOF(); rows->MoveNext())
        answers.append(
            {OriginalOf(*rows), rows->Collect(AnswersName).toString(), Date(rows->Collect(AnswersWhen).toDouble())});
    return answers;
}
