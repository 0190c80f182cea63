// SPDX-License-Identifier: Apache-2.0
#include "answering/AnsweredNumbers.h"

#include "common/ClockHelper.h"
#include "platform/directory/DirectoryTables.h"
#include "platform/records/Recordset.h"
#include "platform/records/Transaction.h"

#include <algorithm>

namespace
{
const QString AutomaticAnswersTable = QStringLiteral("AutomaticAnswers");
const QString AnsweredNumberField = QStringLiteral("Number");
const QString AnsweredWhenField = QStringLiteral("When");
/// In days. Clocks of two computers differ by less; a row from further ahead is one of a clock that was wrong.
constexpr double DaysKept = 1;
constexpr double SecondsOfDay = 86400;

QString AsLiteral(double dayNumber)
{
    return QString::number(dayNumber, 'f', 8);
}

std::unique_ptr<dao::Recordset> RowOf(dao::Database& file, const QString& number)
{
    auto rows = DirectoryTables::OpenTable(file, AutomaticAnswersTable, QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {number});
    return rows;
}
} // namespace

bool AnsweredNumbers::Claim(const QString& number, Date asked)
{
    DirectoryTables::AddLater(File_, AutomaticAnswersTable);
    dao::Transaction transaction(File_);
    const double now = ClockHelper::NowUTC().DayNumber();
    File_.Execute(QStringLiteral("DELETE FROM [AutomaticAnswers] WHERE [When]<%1 OR [When]>%2")
                      .arg(AsLiteral(now - DaysKept), AsLiteral(now + DaysKept)));
    const auto rows = RowOf(File_, number);
    const bool isThere = !rows->NoMatch();
    if (isThere && (now - rows->Collect(AnsweredWhenField).toDouble()) * SecondsOfDay < Seconds)
        return false;
    if (isThere)
        rows->Edit();
    else
        rows->AddNew();
    rows->SetCollect(AnsweredNumberField, number);
    rows->SetCollect(AnsweredWhenField, std::max(now, asked.DayNumber()));
    rows->Update();
    transaction.Commit();
    return true;
}

void AnsweredNumbers::TakeBack(const QString& number)
{
    dao::Transaction transaction(File_);
    const auto rows = RowOf(File_, number);
    if (!rows->NoMatch())
        rows->Delete();
    transaction.Commit();
}
