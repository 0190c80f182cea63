// SPDX-License-Identifier: Apache-2.0
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"

void BenchOpening(const QString& smallStation, const QString& largeStation)
{
    constexpr int Opens = 5;
    const auto openAndClose = [](const QString& folder) {
        for (int i = 0; i < Opens; ++i)
            OpenStation(folder)->CloseTolvaDatabase();
    };
    // The same but for the noise of a dozen durable writes.
    Compare(
        {"opening the large station", "opening a station with 100 messages", 1.25, 7, Opens},
        [&] { openAndClose(smallStation); }, [&] { openAndClose(largeStation); });
}
