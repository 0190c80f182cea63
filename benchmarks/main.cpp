// SPDX-License-Identifier: Apache-2.0

// Measures Tolva against the bare libraries underneath it.

#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>
#include <vector>

namespace
{
int Verdict()
{
    const int failed = FailedComparisons();
    if (failed > 0)
        std::printf("%d above the limit\n", failed);
    return failed > 0 ? 1 : 0;
}

struct Group
{
    const char* Name;
    std::function<void()> Run;
};

void BenchStationOf(const QString& folder, int messages, const QString& smallFolder)
{
    std::fprintf(stderr, "Making a station of %d messages\n", messages);
    MakeStation(folder, messages);
    MakeStation(smallFolder, 100);
    BenchReading(folder, messages);
    BenchSearching(folder);
    BenchHistory(folder);
    BenchOpening(smallFolder, folder);
}
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const qsizetype writer = arguments.indexOf(QStringLiteral("--writer"));
    if (writer > 0)
        return WriteUntilTold(arguments.value(writer + 1));
    const bool quick = arguments.contains(QStringLiteral("--quick"));
    const int large = quick ? 10000 : 100000;
    const qsizetype words = arguments.indexOf(QStringLiteral("--words"));

    // Beside the program, so that the figures are those of a disk and not of memory.
    const QTemporaryDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/stations-XXXXXX"));
    Require(folder.isValid(), "no folder for the stations can be made");
    const auto in = [&](const char* name) { return folder.filePath(QLatin1String(name)); };
    const std::vector<Group> groups = {
        // First, while this process is small: a child's peak counts from the fork on.
        {"words",
         [&] {
             constexpr int MostBesideNotmuch = 100'000; // which takes hours for a million
             const int count = words > 0 ? arguments.value(words + 1).toInt() : quick ? 20'000 : 100'000;
             const qsizetype kept = arguments.indexOf(QStringLiteral("--kept"));
             BenchWords(kept > 0 ? arguments.value(kept + 1) : in("words"), count,
                        count <= MostBesideNotmuch || arguments.contains(QStringLiteral("--notmuch")));
         }},
        {"large-mail", [&] { BenchFiling(in("filing"), quick ? 10 : 50); }},
        {"one-mail", [&] { BenchFilingOneMail(in("one")); }},
        {"maildir", [&] { BenchFilingAMaildir(in("maildir"), quick ? 2000 : 20000); }},
        {"templates", [&] { BenchTemplates(quick ? 1000 : 10000); }},
        {"saving", [&] { BenchSaving(in("saving"), quick ? 3 : 9); }},
        {"station", [&] { BenchStationOf(in("large"), large, in("small")); }},
        {"jet", [&] { BenchJet(in("jet"), large, quick ? 2000 : 20000); }},
        {"server", [&] { BenchServer(in("server"), large, quick ? 3 : 9); }},
        {"backup", [&] { BenchBackup(in("backup"), quick ? 100 : 1024); }},
    };
    const qsizetype only = arguments.indexOf(QStringLiteral("--only"));
    const QString wanted = words > 0 ? QStringLiteral("words") : only > 0 ? arguments.value(only + 1) : QString();
    PrintHeading();
    bool isKnown = wanted.isEmpty();
    for (const Group& group : groups) {
        if (!wanted.isEmpty() && wanted != QLatin1String(group.Name))
            continue;
        isKnown = true;
        group.Run();
    }
    Require(isKnown, "there is no group of that name");
    return Verdict();
}
