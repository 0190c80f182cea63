// SPDX-License-Identifier: Apache-2.0

// The rows of prizes and their winners: how cPrize and cPrizeWinner read and write the tables Prizes and PrizeWinners.

#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/RowValues.h"
#include "platform/records/Recordset.h"
#include "prizes/PrizeHour.h"
#include "prizes/RowWriter.h"
#include "prizes/cPrize.h"

#include <array>

using RowValues::LocalDateOrNone;
using RowValues::NumberOr;

namespace
{
const QString MainIndex = QStringLiteral("Main");

namespace Column
{
// Of both tables.
const QString Reference = QStringLiteral("Reference");
const QString Notes = QStringLiteral("Notes");
const QString NotesToSupplier = QStringLiteral("NotesToSupplier");
// Of Prizes.
const QString Title = QStringLiteral("Title");
const QString SupplierReference = QStringLiteral("SupplierReference");
const QString AddedByReference = QStringLiteral("AddedByReference");
const QString AddedDate = QStringLiteral("AddedDate");
const QString NumberSupplied = QStringLiteral("NumberSupplied");
const QString NumberWinners = QStringLiteral("NumberWinners");
const QString LastWonDate = QStringLiteral("LastWonDate");
const QString StartDate = QStringLiteral("StartDate");
const QString EndDate = QStringLiteral("EndDate");
const QString Script = QStringLiteral("Script");
// Of PrizeWinners.
const QString PrizeReference = QStringLiteral("PrizeReference");
const QString WinnerReference = QStringLiteral("WinnerReference");
const QString AwardedByReference = QStringLiteral("AwardedByReference");
const QString WonDate = QStringLiteral("WonDate");
const QString SentByReference = QStringLiteral("SentByReference");
const QString SentDate = QStringLiteral("SentDate");
} // namespace Column

const QString& HoursColumn(qint16 weekDay)
{
    static const auto names = [] {
        std::array<QString, PrizeHour::DaysAWeek> columns;
        for (std::size_t day = 0; day < columns.size(); ++day)
            columns[day] = QStringLiteral("HourRestrictions") + QString::number(day + 1);
        return columns;
    }();
    return names.at(static_cast<std::size_t>(weekDay - 1));
}

/// None is the number 0, not Null: conditions of other software compare the column with 0.
QVariant DateToStore(Date local)
{
    return local.IsNone() ? QVariant(0) : QVariant(ClockHelper::LocalToUTC(local).DayNumber());
}
} // namespace

bool cPrize::ReadFromRecordSet(qint32 prizeReference, dao::Recordset* recordset)
{
    if (!recordset)
        return false;
    if (prizeReference != 0) {
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {prizeReference});
        if (recordset->NoMatch())
            return false;
    }
    const auto column = [recordset](const QString& name) { return recordset->Collect(name); };
    SetReference(NumberOr(column(Column::Reference), 0));
    SetTitle(column(Column::Title).toString());
    SetSupplierReference(NumberOr(column(Column::SupplierReference), 0));
    SetAddedByReference(NumberOr(column(Column::AddedByReference), 0));
    SetAddedDate(LocalDateOrNone(column(Column::AddedDate)));
    SetNumberSupplied(NumberOr(column(Column::NumberSupplied), 0));
    SetNumberWinners(NumberOr(column(Column::NumberWinners), 0));
    SetLastWonDate(LocalDateOrNone(column(Column::LastWonDate)));
    SetStartDate(LocalDateOrNone(column(Column::StartDate)));
    SetEndDate(LocalDateOrNone(column(Column::EndDate)));
    for (qint16 day = 1; day <= PrizeHour::DaysAWeek; ++day) {
        // A day without a text is a day without restrictions, as a new prize has it.
        const QString hours = column(HoursColumn(day)).toString();
        if (!hours.isEmpty())
            SetAvailableHours(day, hours);
    }
    SetScript(column(Column::Script).toString());
    SetNotes(column(Column::Notes).toString());
    SetNotesToSupplier(column(Column::NotesToSupplier).toString());
    return true;
}

bool cPrize::WriteToRecordSet(dao::Recordset* recordset, PendingError& pending, std::optional<BusyPointer>& busy)
{
    WriteDebugLog(QStringLiteral("Started cPrize:WriteToRecordSet"));
    if (!recordset)
        return false;
    RowWriter row(*recordset, pending, QStringLiteral("Prize"));
    if (AddedDate_.IsNone())
        SetAddedDate(ClockHelper::CurrentTime());
    const qint32 reference = row.Begin(Reference_);

    WriteDebugLog(QStringLiteral("Setting Title"));
    row.Set(Column::Title, Title_);
    row.Set(Column::SupplierReference, SupplierReference_);
    row.Set(Column::AddedByReference, AddedByReference_);
    row.Set(Column::AddedDate, ClockHelper::LocalToUTC(AddedDate_).DayNumber());
    row.Set(Column::NumberSupplied, NumberSupplied_);
    row.Set(Column::NumberWinners, NumberWinners_);
    row.Set(Column::LastWonDate, DateToStore(LastWonDate_));
    row.Set(Column::StartDate, DateToStore(StartDate_));
    row.Set(Column::EndDate, DateToStore(EndDate_));
    for (qint16 day = 1; day <= PrizeHour::DaysAWeek; ++day)
        row.Set(HoursColumn(day), AvailableHours(day));
    row.Set(Column::Script, Script_);
    row.Set(Column::Notes, Notes_);
    row.Set(Column::NotesToSupplier, NotesToSupplier_);

    const bool saved = row.Update();
    busy.reset();
    if (saved) {
        // A number that stood for a vanished row stays: the caller's events carry it.
        if (Reference_ == 0)
            SetReference(reference);
        SetEdited(false);
    }
    WriteDebugLog(QStringLiteral("Finished WriteToRecordSet"));
    return saved;
}

bool cPrizeWinner::ReadFromRecordSet(dao::Recordset* recordset)
{
    if (!recordset)
        return false;
    const auto column = [recordset](const QString& name) { return recordset->Collect(name); };
    SetReference(NumberOr(column(Column::Reference), 0));
    SetPrizeReference(NumberOr(column(Column::PrizeReference), 0));
    SetWinnerReference(NumberOr(column(Column::WinnerReference), 0));
    SetAwardedByReference(NumberOr(column(Column::AwardedByReference), 0));
    SetWonDate(LocalDateOrNone(column(Column::WonDate)));
    SetSentByReference(NumberOr(column(Column::SentByReference), 0));
    SetSentDate(LocalDateOrNone(column(Column::SentDate)));
    SetNotes(column(Column::Notes).toString());
    SetNotesToSupplier(column(Column::NotesToSupplier).toString());
    return true;
}

bool cPrizeWinner::WriteToRecordSet(dao::Recordset* recordset, PendingError& pending, std::optional<BusyPointer>& busy)
{
    WriteDebugLog(QStringLiteral("Started cPrizeWinner:WriteToRecordSet"));
    if (!recordset)
        return false;
    RowWriter row(*recordset, pending, QStringLiteral("Prize Winner"));
    if (WonDate_.IsNone())
        SetWonDate(ClockHelper::CurrentTime());
    const qint32 reference = row.Begin(Reference_);

    WriteDebugLog(QStringLiteral("Setting References"));
    row.Set(Column::PrizeReference, PrizeReference_);
    row.Set(Column::WinnerReference, WinnerReference_);
    row.Set(Column::AwardedByReference, AwardedByReference_);
    row.Set(Column::WonDate, ClockHelper::LocalToUTC(WonDate_).DayNumber());
    row.Set(Column::SentByReference, SentByReference_);
    row.Set(Column::SentDate, ClockHelper::LocalToUTC(SentDate_).DayNumber());
    row.Set(Column::Notes, Notes_);
    row.Set(Column::NotesToSupplier, NotesToSupplier_);

    const bool saved = row.Update();
    busy.reset();
    if (saved) {
        if (Reference_ == 0)
            SetReference(reference);
        SetEdited(false);
    }
    WriteDebugLog(QStringLiteral("Finished WriteToRecordSet"));
    return saved;
}
