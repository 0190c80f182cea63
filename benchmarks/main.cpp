// SPDX-License-Identifier: Apache-2.0

// Measures Tolva against the bare libraries underneath it.

#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

namespace
{
int Verdict()
{
    const int failed = FailedComparisons();
    if (failed > 0)
        std::printf("%d above the limit\n", failed);
    return failed > 0 ? 1 : 0;
}
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const qsizetype writer = application.arguments().indexOf(QStringLiteral("--writer"));
    if (writer > 0)
        return WriteUntilTold(application.arguments().value(writer + 1));
    const bool quick = application.arguments().contains(QStringLiteral("--quick"));
    const int large = quick ? 10000 : 100000;
    const int megabytes = quick ? 10 : 50;

    // Beside the program, so that the figures are those of a disk and not of memory.
    const QTemporaryDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/stations-XXXXXX"));
    Require(folder.isValid(), "no folder for the stations can be made");
    PrintHeading();
    // First, while this process is small: a child's peak counts from the fork on.
    const qsizetype words = application.arguments().indexOf(QStringLiteral("--words"));
    if (words > 0) {
        BenchWords(folder.filePath(QStringLiteral("words")), application.arguments().value(words + 1).toInt());
        return Verdict();
    }
    BenchWords(folder.filePath(QStringLiteral("words")), quick ? 20000 : 100000);
    BenchFiling(folder.filePath(QStringLiteral("filing")), megabytes);
    BenchFilingOneMail(folder.filePath(QStringLiteral("one")));
    BenchFilingAMaildir(folder.filePath(QStringLiteral("maildir")), quick ? 2000 : 20000);
    BenchTemplates(quick ? 1000 : 10000);
    std::fprintf(stderr, "Making a station of %d messages\n", large);
    const QString largeStation = folder.filePath(QStringLiteral("large"));
    const QString smallStation = folder.filePath(QStringLiteral("small"));
    MakeStation(largeStation, large);
    MakeStation(smallStation, 100);

    BenchSaving(folder.filePath(QStringLiteral("saving")), quick ? 3 : 9);
    BenchReading(largeStation, large);
    BenchSearching(largeStation);
    BenchHistory(largeStation);
    BenchOpening(smallStation, largeStation);
    BenchBackup(folder.filePath(QStringLiteral("backup")), quick ? 100 : 1024);
    return Verdict();
}
