// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "KeepingList.h"
#include "Measure.h"
#include "Subjects.h"

namespace
{
/// Steps through the rows and touches each column.
int Scan(sqlite3_stmt* statement)
{
    int rows = 0;
    qint64 octets = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            if (sqlite3_column_text(statement, column))
                octets += sqlite3_column_bytes(statement, column);
        }
        ++rows;
    }
    sqlite3_reset(statement);
    Require(octets > 0, "nothing was scanned");
    return rows;
}

QByteArray Condition(const QByteArrayList& addresses)
{
    QByteArrayList conditions;
    for (const QByteArray& address : addresses) {
        for (const char* column : {"FromKey", "ToKey", "CcKey"})
            conditions.append(QByteArray(column) + " LIKE '%|" + address + "|%'");
    }
    return conditions.join(" OR ");
}

void BenchContact(const std::string& name, BareDatabase& bare, cTolvaDatabase& station, const QByteArrayList& addresses,
                  const QString& emails, const QString& phones)
{
    const QByteArray sql = "SELECT Reference, Subject, FromKey, Category, Sent FROM Messages WHERE " +
                           Condition(addresses) + " ORDER BY Sent DESC";
    sqlite3_stmt* scan = bare.Prepare(sql.constData());
    KeepingList list;
    int rows = 0;
    Compare(
        {name, "the bare scan of the same columns with LIKE", 1.5, 7, 1}, [&] { rows = Scan(scan); },
        [&] {
            station.FillMessagesListView(&list, emails, phones);
            Require(list.Count() == rows && rows > 0, "the history is not the same messages");
        });
}
} // namespace

void BenchHistory(const QString& largeStation)
{
    const auto station = OpenStation(largeStation);
    BareDatabase bare(largeStation + QStringLiteral("/Tolva.mdb"));
    BenchContact("history of one address", bare, *station, {"listener77@example.com"},
                 QStringLiteral("listener77@example.com"), QString());
    BenchContact("history of two addresses, two numbers", bare, *station,
                 {"listener77@example.com", "lt@example.org", "7700900123", "1632960123"},
                 QStringLiteral("listener77@example.com|lt@example.org"), QStringLiteral("07700 900123|01632 960123"));
}
