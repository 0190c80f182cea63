// SPDX-License-Identifier: Apache-2.0
#include "platform/records/TestedEngines.h"

#include "platform/records/ServedEngine.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/engines/jet/TextKey.h"
#include "support/TestServer.h"

#include <QDir>

#include <iostream>

namespace
{

dao::engine::EngineRegistry& Registry()
{
    return dao::engine::EngineRegistry::Instance();
}

bool IsAvailable(const dao::engine::Engine& engine)
{
    QString reason;
    if (engine.IsAvailable(reason))
        return true;
    std::cerr << "engine " << qPrintable(engine.Name()) << " not tested: " << qPrintable(reason) << '\n';
    return false;
}

int CompareFolded(const QString& left, const QString& right)
{
    return QString::compare(left.toCaseFolded(), right.toCaseFolded());
}

/// Jet's indexes have the order of the office programs that made the format: letters with marks stand with those
/// without, signs in front of digits, other scripts behind. Its keys are proved elsewhere on the files of such
/// programs.
int CompareAsJet(const QString& left, const QString& right)
{
    QByteArray leftKey;
    QByteArray rightKey;
    dao::jet::AppendTextKey(left, dao::jet::TextOrder::Extended, leftKey);
    dao::jet::AppendTextKey(right, dao::jet::TextOrder::Extended, rightKey);
    return leftKey.compare(rightKey);
}

/// A file named Test.mdb in the test's folder.
TestedEngine FileEngine(const QString& name)
{
    return {name,
            [name](const QString& folder) {
                const QString file = QDir(folder).filePath(QStringLiteral("Test.mdb"));
                Registry().Named(name).Create(file);
                return DatabasePlace{file, QString()};
            },
            name == QLatin1String("jet") ? CompareAsJet : CompareFolded};
}

DatabasePlace MakeSchema(const QString&)
{
    const TestServer::Schema schema = TestServer::Shared().NewSchema();
    return {QString(), TestServer::Shared().Connect(schema.Name), schema.Owner};
}

std::vector<TestedEngine> FindEngines()
{
    std::vector<TestedEngine> engines;
    for (const auto& engine : Registry().Engines()) {
        if (engine->Capabilities().Creates && IsAvailable(*engine))
            engines.push_back(FileEngine(engine->Name()));
    }
    if (TestServer::IsInstalled())
        engines.push_back({QStringLiteral("postgres"), MakeSchema, CompareFolded});
    Registry().Register(MakeServedEngine());
    engines.push_back({ServedEngineName(), MakeServedDatabase, CompareFolded});
    return engines;
}

} // namespace

const std::vector<TestedEngine>& TestedEngines()
{
    static const std::vector<TestedEngine> engines = FindEngines();
    return engines;
}

std::vector<QString> AllEngines()
{
    std::vector<QString> names;
    for (const TestedEngine& engine : TestedEngines())
        names.push_back(engine.Name);
    return names;
}

std::vector<QString> FileEngines()
{
    std::vector<QString> names = AllEngines();
    std::erase_if(names, [](const QString& name) { return !Registry().Named(name).Capabilities().Creates; });
    return names;
}

namespace
{
const TestedEngine& Tested(const QString& engine)
{
    for (const TestedEngine& tested : TestedEngines()) {
        if (tested.Name == engine)
            return tested;
    }
    throw std::invalid_argument("no engine under test is named " + engine.toStdString());
}
} // namespace

DatabasePlace MakeDatabase(const QString& engine, const QString& folder)
{
    return Tested(engine).MakeDatabase(folder);
}

int CompareTexts(const QString& engine, const QString& left, const QString& right)
{
    return Tested(engine).CompareTexts(left, right);
}
