// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

/// The engines that the suites of the record store run over, and how a test comes by a fresh database of each. An
/// engine that makes files is among them by itself; one that serves connect strings takes a line in TestedEngines.cpp.

/// Where a database is. It is gone with its last owner.
struct DatabasePlace
{
    QString Name;    ///< A file, or a database's name on a server.
    QString Connect; ///< Empty for a file.
    std::shared_ptr<void> Owner{};
};

struct TestedEngine
{
    QString Name; ///< As it stands in the names of tests.
    /// Makes an empty database. folder: the test's own, for engines that keep files.
    std::function<DatabasePlace(const QString& folder)> MakeDatabase;
    /// How two texts stand to each other in its indexes: less than 0, 0, greater than 0.
    std::function<int(const QString& left, const QString& right)> CompareTexts;
};

const std::vector<TestedEngine>& TestedEngines();

/// The names of all engines, and of those whose databases are files.
std::vector<QString> AllEngines();
std::vector<QString> FileEngines();
DatabasePlace MakeDatabase(const QString& engine, const QString& folder);
int CompareTexts(const QString& engine, const QString& left, const QString& right);
