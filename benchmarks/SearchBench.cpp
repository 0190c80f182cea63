// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "platform/records/DBEngine.h"

void BenchSearching(const QString& largeStation)
{
    const QString fileName = largeStation + QStringLiteral("/Tolva.mdb");
    const auto database = dao::DBEngine::OpenDatabase(fileName);
    BareDatabase bare(fileName);

    sqlite3_stmt* scan = bare.Prepare("SELECT FromKey, ToKey, CcKey FROM Messages");
    const QString search =
        QStringLiteral("SELECT [Reference] FROM [Messages] WHERE ([FromKey] LIKE \"*|listener77@example.com|*\" "
                       "OR [ToKey] LIKE \"*|listener77@example.com|*\" "
                       "OR [CcKey] LIKE \"*|listener77@example.com|*\")");
    Compare(
        {"LIKE over three key columns", "the bare scan of the three columns", 1.5, 7, 1},
        [&] {
            qint64 octets = 0;
            while (sqlite3_step(scan) == SQLITE_ROW) {
                for (int column = 0; column < 3; ++column) {
                    if (sqlite3_column_text(scan, column))
                        octets += sqlite3_column_bytes(scan, column);
                }
            }
            sqlite3_reset(scan);
            Require(octets > 0, "nothing was scanned");
        },
        [&] {
            const auto rows = database->OpenRecordset(search, dao::dbOpenSnapshot);
            Require(rows->RecordCount() > 0, "nothing was found");
        });
}
