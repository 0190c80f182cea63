// SPDX-License-Identifier: Apache-2.0

// Measures the lists of messages and prizes, and the start of the desk, against the bare libraries underneath it.

#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"

#include <QApplication>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char** argv)
{
    // The list is drawn, but nobody needs to look.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const int large = QApplication::arguments().contains(QStringLiteral("--quick")) ? 10000 : 100000;
    const QTemporaryDir folder(QApplication::applicationDirPath() + QStringLiteral("/stations-XXXXXX"));
    Require(folder.isValid(), "no folder for the stations can be made");
    // Alone with this group, else with all.
    const bool isJetOnly = QApplication::arguments().contains(QStringLiteral("jet"));
    if (!isJetOnly) {
        std::fprintf(stderr, "Making a station of %d messages\n", large);
        const QString largeStation = folder.filePath(QStringLiteral("large"));
        MakeStation(largeStation, large);
        BenchListing(folder.filePath(QStringLiteral("small")), largeStation, large);
        BenchStart(folder.filePath(QStringLiteral("empty")), largeStation);
        BenchPrizes(folder.filePath(QStringLiteral("prizes")));
    }
    BenchJetListing(folder.filePath(QStringLiteral("jet")), large);
    const int failed = FailedComparisons();
    if (failed > 0)
        std::printf("%d above the limit\n", failed);
    return failed > 0 ? 1 : 0;
}
