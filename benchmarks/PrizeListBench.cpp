// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "common/ClockHelper.h"
#include "platform/records/DBEngine.h"
#include "prizes/PrizeHour.h"
#include "prizes/controls/uPrizesList.h"

#include <QTimer>

#include <vector>

namespace
{
constexpr int Prizes = 10000;
/// The others are for other hours of the day.
constexpr int Available = Prizes / 2;

void AddPrize(dao::Recordset& rows, int number)
{
    const QString allDay = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");
    const QString never(allDay.size(), u' ');
    rows.AddNew();
    const auto set = [&rows](const QString& name, const QVariant& value) { rows.SetCollect(name, value); };
    set(QStringLiteral("Title"), QStringLiteral("Two tickets for concert %1").arg(number));
    set(QStringLiteral("Script"), QStringLiteral("The whole harbour sings on Saturday! ").repeated(8));
    set(QStringLiteral("Notes"), QStringLiteral("Ask for a postal address."));
    set(QStringLiteral("NotesToSupplier"), QStringLiteral("Names by Friday noon."));
    for (const QString& name :
         {QStringLiteral("SupplierReference"), QStringLiteral("AddedByReference"), QStringLiteral("NumberWinners"),
          QStringLiteral("LastWonDate"), QStringLiteral("StartDate"), QStringLiteral("EndDate")})
        set(name, 0);
    set(QStringLiteral("AddedDate"), 46000.0 + number * 0.001);
    set(QStringLiteral("NumberSupplied"), 5);
    for (int day = 1; day <= PrizeHour::DaysAWeek; ++day)
        set(QStringLiteral("HourRestrictions%1").arg(day), number % 2 == 0 ? allDay : never);
    rows.Update();
}

void AddPrizes(cTolvaDatabase& station)
{
    const auto database = dao::DBEngine::OpenDatabase(station.Information().Path);
    dao::DBEngine::BeginTrans();
    const auto rows = database->OpenRecordset(QStringLiteral("Prizes"), dao::dbOpenTable);
    for (int number = 0; number < Prizes; ++number)
        AddPrize(*rows, number);
    dao::DBEngine::CommitTrans();
}

/// The prizes of this hour as the list asks for them, in SQLite's words.
QByteArray QueryOfThisHour()
{
    const PrizeHour hour = PrizeHour::At(ClockHelper::NowUTC());
    return QStringLiteral("SELECT Reference,* FROM Prizes WHERE NumberWinners<NumberSupplied"
                          " AND (StartDate IS NULL OR StartDate=0 OR StartDate<=%1)"
                          " AND (EndDate IS NULL OR EndDate=0 OR EndDate>=%1)"
                          " AND HourRestrictions%2 LIKE '%%3%'")
        .arg(ClockHelper::NowUTC().DayNumber(), 0, 'f', 0)
        .arg(hour.WeekDay)
        .arg(hour.Letter())
        .toUtf8();
}

/// Touches each column of the row; the octets, so that the work cannot be left out.
qint64 ReadRow(sqlite3_stmt* row)
{
    qint64 octets = 0;
    for (int column = 0; column < sqlite3_column_count(row); ++column) {
        if (sqlite3_column_text(row, column))
            octets += sqlite3_column_bytes(row, column);
    }
    return octets;
}

/// As anybody does it who must not hold up the other computers while the rows are shown: the query is read to its end,
/// then each prize by itself.
void QueryAndRead(sqlite3_stmt* query, sqlite3_stmt* byReference)
{
    std::vector<qint64> references;
    qint64 octets = 0;
    while (sqlite3_step(query) == SQLITE_ROW) {
        references.push_back(sqlite3_column_int64(query, 0));
        octets += ReadRow(query);
    }
    sqlite3_reset(query);
    for (const qint64 reference : references) {
        sqlite3_bind_int64(byReference, 1, reference);
        Require(sqlite3_step(byReference) == SQLITE_ROW, "a prize is missing");
        octets += ReadRow(byReference);
        sqlite3_reset(byReference);
    }
    Require(references.size() == Available && octets > 0, "prizes are missing");
}
/// One prize of the list changed on another computer.
void BenchPrizeChange(const QString& folder, BareDatabase& bare, uPrizesList& list)
{
    sqlite3_stmt* light = bare.Prepare("SELECT Reference, Title, NumberSupplied, NumberWinners, LastWonDate "
                                       "FROM Prizes ORDER BY Reference");
    auto* timer = list.findChild<QTimer*>(QStringLiteral("timerUpdateList"));
    Require(timer, "the list has no timer");
    list.SetCategory(plcAllPrizes);
    const auto other = OpenStation(folder);
    int supplied = 5;
    Compare(
        {"a tick after one prize of " + std::to_string(Prizes), "a bare select of the light columns", 2.0, 9, 1},
        [&] {
            qint64 octets = 0;
            while (sqlite3_step(light) == SQLITE_ROW)
                octets += ReadRow(light);
            sqlite3_reset(light);
            Require(octets > 0, "prizes are missing");
        },
        [&] { Require(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection), "the timer does not fire"); },
        [&] {
            const cPrizePtr prize = other->GetPrize(Prizes / 2, false);
            prize->SetNumberSupplied(++supplied);
            Require(other->SavePrize(prize), "the other computer cannot save");
        });
    Require(list.NumberItems() == Prizes, "prizes are missing in the list");
}
} // namespace

void BenchPrizes(const QString& folder)
{
    MakeStation(folder, 0);
    const auto station = OpenStation(folder);
    AddPrizes(*station);
    BareDatabase bare(folder + QStringLiteral("/Tolva.mdb"));
    sqlite3_stmt* query = bare.Prepare(QueryOfThisHour().constData());
    sqlite3_stmt* byReference = bare.Prepare("SELECT * FROM Prizes WHERE Reference=?");
    uPrizesList list;
    list.resize(1000, 700);
    list.setAttribute(Qt::WA_DontShowOnScreen);
    list.show();
    list.SetTolvaDatabase(station.get());
    list.SetCategory(plcAvailable);
    Compare(
        {"Available this hour, 10000 prizes", "the bare query, and one read a row shown", 2.0, 5, 1},
        [&] { QueryAndRead(query, byReference); },
        [&] {
            list.UpdateDisplay();
            Require(list.NumberItems() == Available, "the list does not show the prizes of this hour");
        });
    BenchPrizeChange(folder, bare, list);
}
