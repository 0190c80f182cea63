// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <string>

/// What is measured against what. Both run in turns in the same process, so that both meet the same machine; the
/// figures are medians.
struct Comparison
{
    std::string Name;
    std::string Floor; ///< What the floor does, in words.
    double Limit = 0;  ///< The ratio that must not be exceeded.
    int Rounds = 5;    ///< How often each side runs.
    int OperationsARound = 1;
};

/// Runs and prints one comparison; counts it as failed when the ratio is above its limit. prepare runs in front of each
/// subject and is not measured.
void Compare(
    const Comparison& comparison, const std::function<void()>& floor, const std::function<void()>& subject,
    const std::function<void()>& prepare = [] {});

/// Prints one figure that is no time, against its limit.
void Report(const std::string& name, const std::string& floorWords, double floor, double subject, double limit,
            const std::string& unit);

/// Prints a figure that has no limit.
void Tell(const std::string& name, double value, const std::string& unit);

/// Ends the run with words when a measured operation did not do its work: a wrong answer must not be a quick one.
void Require(bool condition, const char* what);

void WriteFile(const QString& name, const QByteArray& octets);

void PrintHeading();
/// Comparisons above their limits.
int FailedComparisons();
