// SPDX-License-Identifier: Apache-2.0
#include "messages/onair/RunningOrder.h"

#include "common/ClockHelper.h"
#include "database/RowValues.h"
#include "database/TableCheck.h"
#include "platform/records/Recordset.h"
#include "platform/records/Transaction.h"

namespace
{
const QString OnAirReferenceField = QStringLiteral("Reference");
const QString OnAirPositionField = QStringLiteral("Position");
const QString OnAirMessageField = QStringLiteral("Message");
const QString OnAirPrizeField = QStringLiteral("Prize");
const QString OnAirArrivedField = QStringLiteral("Arrived");
const QString OnAirFromField = QStringLiteral("From");
const QString OnAirOriginalField = QStringLiteral("Original");
const QString OnAirTextField = QStringLiteral("Text");
const QString OnAirAddedByField = QStringLiteral("AddedBy");
const QString OnAirStateField = QStringLiteral("State");
const QString OnAirWhenField = QStringLiteral("When");
const QString OnAirStateByField = QStringLiteral("StateBy");

constexpr qsizetype LongestOnAirName = 255; // of a text field

QString FitOnAirName(const QString& name)
{
    const bool cutsCharacter = name.size() > LongestOnAirName && name.at(LongestOnAirName - 1).isHighSurrogate();
    return name.left(cutsCharacter ? LongestOnAirName - 1 : LongestOnAirName);
}

OnAirEntry ReadEntry(const dao::Recordset& row)
{
    OnAirEntry entry;
    entry.Reference = row.Collect(OnAirReferenceField).toInt();
    entry.Position = row.Collect(OnAirPositionField).toDouble();
    entry.Message = row.Collect(OnAirMessageField).toInt();
    entry.Prize = row.Collect(OnAirPrizeField).toInt();
    entry.Arrived = Date(row.Collect(OnAirArrivedField).toDouble());
    entry.From = row.Collect(OnAirFromField).toString();
    entry.Original = row.Collect(OnAirOriginalField).toString();
    entry.Text = row.Collect(OnAirTextField).toString();
    entry.AddedBy = row.Collect(OnAirAddedByField).toString();
    entry.State = static_cast<OnAirState>(row.Collect(OnAirStateField).toInt());
    entry.When = Date(row.Collect(OnAirWhenField).toDouble());
    entry.StateBy = row.Collect(OnAirStateByField).toString();
    return entry;
}

std::unique_ptr<dao::Recordset> OpenOrder(dao::Database& file)
{
    std::unique_ptr<dao::Recordset> rows = file.OpenRecordset(OnAirTableShape().Name, dao::dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    return rows;
}

bool SeekEntry(dao::Recordset& rows, qint32 reference)
{
    rows.Seek(dao::SeekComparison::Equal, {reference});
    return !rows.NoMatch();
}

bool IsOrderAbsent(const dao::Error& error)
{
    return error.Number() == dao::errTableNotFound || error.Number() == dao::errServerTableNotFound;
}

bool IsSameSubject(const OnAirEntry& a, const OnAirEntry& b)
{
    return (a.Message != 0 && a.Message == b.Message) || (a.Prize != 0 && a.Prize == b.Prize);
}
} // namespace

QList<OnAirEntry> RunningOrder::Read() const
{
    QList<OnAirEntry> entries;
    try {
        const auto rows = File_.OpenRecordset(QStringLiteral("SELECT * FROM [OnAir] ORDER BY [Position], [Reference]"),
                                              dao::dbOpenSnapshot);
        for (; !rows->AtEOF(); rows->MoveNext())
            entries.append(ReadEntry(*rows));
    } catch (const dao::Error& error) {
        if (!IsOrderAbsent(error))
            throw;
    }
    return entries;
}

QSet<qint32> RunningOrder::WaitingMessages() const
{
    QSet<qint32> messages;
    try {
        const auto rows = File_.OpenRecordset(
            QStringLiteral("SELECT [Message] FROM [OnAir] WHERE [State]=0 AND [Message]<>0"), dao::dbOpenSnapshot);
        for (; !rows->AtEOF(); rows->MoveNext())
            messages.insert(rows->Collect(OnAirMessageField).toInt());
    } catch (const dao::Error& error) {
        if (!IsOrderAbsent(error))
            throw;
    }
    return messages;
}

RunningOrder::Added RunningOrder::Add(const OnAirEntry& entry)
{
    if (const int number = CheckTable(File_, OnAirTableShape(), {.Silent = true}))
        throw dao::Error(number, QStringLiteral("The running order cannot be made."));
    dao::Transaction transaction(File_);
    const QList<OnAirEntry> present = Read();
    for (const OnAirEntry& other : present) {
        if (other.State == OnAirState::Waiting && IsSameSubject(other, entry))
            return {other.Reference, true};
    }
    const auto rows = OpenOrder(File_);
    rows->AddNew();
    const qint32 reference = rows->Collect(OnAirReferenceField).toInt();
    rows->SetCollect(OnAirPositionField, present.isEmpty() ? 1.0 : present.last().Position + 1);
    rows->SetCollect(OnAirMessageField, entry.Message);
    rows->SetCollect(OnAirPrizeField, entry.Prize);
    rows->SetCollect(OnAirArrivedField, RowValues::Stored(entry.Arrived));
    rows->SetCollect(OnAirFromField, FitOnAirName(entry.From));
    rows->SetCollect(OnAirOriginalField, entry.Original);
    rows->SetCollect(OnAirTextField, entry.Text);
    rows->SetCollect(OnAirAddedByField, FitOnAirName(entry.AddedBy));
    rows->SetCollect(OnAirStateField, static_cast<int>(OnAirState::Waiting));
    rows->SetCollect(OnAirStateByField, QString());
    rows->Update();
    transaction.Commit();
    return {reference, false};
}

/// change: false to leave the row alone.
RunningOrder::Outcome RunningOrder::Change(qint32 reference, const std::function<bool(dao::Recordset& row)>& change)
{
    try {
        dao::Transaction transaction(File_);
        const auto rows = OpenOrder(File_);
        if (!SeekEntry(*rows, reference))
            return Outcome::Gone;
        if (!change(*rows))
            return Outcome::Changed;
        transaction.Commit();
        return Outcome::Done;
    } catch (const dao::Error& error) {
        if (IsOrderAbsent(error))
            return Outcome::Gone;
        throw;
    }
}

RunningOrder::Outcome RunningOrder::SetState(qint32 reference, OnAirState before, OnAirState state, const QString& who)
{
    return Change(reference, [&](dao::Recordset& row) {
        if (ReadEntry(row).State != before)
            return false;
        row.Edit();
        row.SetCollect(OnAirStateField, static_cast<int>(state));
        row.SetCollect(OnAirWhenField,
                       state == OnAirState::Waiting ? QVariant() : RowValues::Stored(ClockHelper::NowUTC()));
        row.SetCollect(OnAirStateByField, state == OnAirState::Waiting ? QString() : FitOnAirName(who));
        row.Update();
        return true;
    });
}

RunningOrder::Outcome RunningOrder::SetText(qint32 reference, const QString& before, const QString& text)
{
    return Change(reference, [&](dao::Recordset& row) {
        const OnAirEntry entry = ReadEntry(row);
        if (entry.Text != before)
            return false;
        row.Edit();
        row.SetCollect(OnAirTextField, text.trimmed().isEmpty() ? entry.Original : text);
        row.Update();
        return true;
    });
}

RunningOrder::Outcome RunningOrder::MoveUp(qint32 reference)
{
    return Move(reference, -1);
}

RunningOrder::Outcome RunningOrder::MoveDown(qint32 reference)
{
    return Move(reference, 1);
}

RunningOrder::Outcome RunningOrder::Move(qint32 reference, int step)
{
    return Change(reference, [&](dao::Recordset& rows) {
        QList<OnAirEntry> others = Read();
        qsizetype place = 0;
        while (place < others.size() && others.at(place).Reference != reference)
            ++place;
        others.removeAt(place);
        const qsizetype wanted = place + step;
        if (wanted >= 0 && wanted <= others.size())
            PutBetween(rows, others, wanted, reference);
        return true;
    });
}

/// Between its neighbours' numbers, where there is one; otherwise all are numbered anew.
void RunningOrder::PutBetween(dao::Recordset& rows, const QList<OnAirEntry>& others, qsizetype place, qint32 reference)
{
    const auto put = [&rows](qint32 entry, double position) {
        if (!SeekEntry(rows, entry))
            return;
        rows.Edit();
        rows.SetCollect(OnAirPositionField, position);
        rows.Update();
    };
    const double before = place > 0 ? others.at(place - 1).Position : others.value(0).Position - 2;
    const double behind = place < others.size() ? others.at(place).Position : before + 2;
    const double between = before + (behind - before) / 2;
    if (between > before && between < behind)
        return put(reference, between);
    double position = 0;
    for (qsizetype i = 0; i <= others.size(); ++i) {
        if (i == place)
            put(reference, ++position);
        if (i < others.size())
            put(others.at(i).Reference, ++position);
    }
}

RunningOrder::Outcome RunningOrder::Remove(qint32 reference)
{
    return Change(reference, [](dao::Recordset& row) {
        row.Delete();
        return true;
    });
}

int RunningOrder::Empty()
{
    if (Read().isEmpty())
        return 0;
    dao::Transaction transaction(File_);
    const int taken = File_.Execute(QStringLiteral("DELETE FROM [OnAir]"));
    transaction.Commit();
    return taken;
}
