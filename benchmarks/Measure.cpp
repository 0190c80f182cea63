// SPDX-License-Identifier: Apache-2.0
#include "Measure.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
int failed = 0;

double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void Print(const std::string& name, const std::string& floor, const std::string& subject, double ratio, double limit,
           const std::string& floorWords)
{
    const bool isAbove = ratio > limit;
    failed += isAbove ? 1 : 0;
    std::printf("%-34s %12s %12s %7.2f %6.2f  %-5s %s\n", name.c_str(), floor.c_str(), subject.c_str(), ratio, limit,
                isAbove ? "ABOVE" : "ok", floorWords.c_str());
    std::fflush(stdout);
}

std::string TimeText(double seconds)
{
    char text[32];
    if (seconds < 1e-3)
        std::snprintf(text, sizeof text, "%.1f us", seconds * 1e6);
    else if (seconds < 1)
        std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
    else
        std::snprintf(text, sizeof text, "%.2f s", seconds);
    return text;
}
} // namespace

void PrintHeading()
{
    std::printf("%-34s %12s %12s %7s %6s  %-5s %s\n", "operation", "floor", "Tolva", "ratio", "limit", "", "the floor");
}

void Compare(const Comparison& comparison, const std::function<void()>& floor, const std::function<void()>& subject,
             const std::function<void()>& prepare)
{
    // The first run of each warms caches and does not count.
    floor();
    prepare();
    subject();
    std::vector<double> floors;
    std::vector<double> subjects;
    for (int round = 0; round < comparison.Rounds; ++round) {
        floors.push_back(Seconds(floor));
        prepare();
        subjects.push_back(Seconds(subject));
    }
    const double floorTime = Median(floors) / comparison.OperationsARound;
    const double subjectTime = Median(subjects) / comparison.OperationsARound;
    Print(comparison.Name, TimeText(floorTime), TimeText(subjectTime), subjectTime / floorTime, comparison.Limit,
          comparison.Floor);
}

void Report(const std::string& name, const std::string& floorWords, double floor, double subject, double limit,
            const std::string& unit)
{
    char floorText[32];
    char subjectText[32];
    std::snprintf(floorText, sizeof floorText, "%.1f %s", floor, unit.c_str());
    std::snprintf(subjectText, sizeof subjectText, "%.1f %s", subject, unit.c_str());
    Print(name, floorText, subjectText, subject / floor, limit, floorWords);
}

void Tell(const std::string& name, double value, const std::string& unit)
{
    std::printf("%-34s %12s %9.1f %s\n", name.c_str(), "", value, unit.c_str());
    std::fflush(stdout);
}

void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "tolvaBench: %s\n", what);
    std::exit(2);
}

int FailedComparisons()
{
    return failed;
}

void WriteFile(const QString& name, const QByteArray& octets)
{
    QFile file(name);
    Require(file.open(QIODevice::WriteOnly) && file.write(octets) == octets.size(), "a file cannot be written");
}
