#pragma once

#include <QString>

/// The subjects, each with its comparisons. large: messages of the large station.
void BenchSaving(const QString& folder, int messages);
void BenchReading(const QString& largeStation, int large);
void BenchSearching(const QString& largeStation);
void BenchOpening(const QString& smallStation, const QString& largeStation);
void BenchFiling(const QString& folder, int megabytes);
