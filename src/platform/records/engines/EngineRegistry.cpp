// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/EngineRegistry.h"

#include "platform/records/engines/jet/JetEngine.h"
#include "platform/records/engines/postgres/PostgresEngine.h"
#include "platform/records/engines/sqlite/SqliteEngine.h"

#include <algorithm>

namespace dao::engine
{

namespace
{

constexpr char UsualEngine[] = "sqlite";

Engine& RequireAvailable(Engine& engine)
{
    QString reason;
    if (!engine.IsAvailable(reason)) {
        throw Error(errNotSupported,
                    QStringLiteral("The database engine '%1' is not available: %2").arg(engine.Name(), reason));
    }
    return engine;
}

} // namespace

EngineRegistry& EngineRegistry::Instance()
{
    static EngineRegistry registry;
    return registry;
}

EngineRegistry::EngineRegistry()
{
    Register(sqlite::MakeSqliteEngine());
    Register(jet::MakeJetEngine());
    Register(postgres::MakePostgresEngine());
}

void EngineRegistry::Register(std::unique_ptr<Engine> engine)
{
    for (const auto& other : Engines_) {
        if (other->Name() == engine->Name()) {
            throw Error(errTableExists,
                        QStringLiteral("An engine named '%1' is registered already.").arg(engine->Name()));
        }
    }
    Engines_.push_back(std::move(engine));
}

void EngineRegistry::Unregister(const QString& name)
{
    const auto found = std::find_if(Engines_.begin(), Engines_.end(),
                                    [&](const std::unique_ptr<Engine>& engine) { return engine->Name() == name; });
    if (found == Engines_.end())
        throw Error(errItemNotFound, QStringLiteral("No engine is named '%1'.").arg(name));
    Engines_.erase(found);
}

Engine& EngineRegistry::Named(const QString& name) const
{
    for (const auto& engine : Engines_) {
        if (engine->Name() == name)
            return *engine;
    }
    throw Error(errItemNotFound, QStringLiteral("No engine is named '%1'.").arg(name));
}

QStringList EngineRegistry::MakersOfFiles() const
{
    QStringList names;
    for (const auto& engine : Engines_) {
        if (engine->Capabilities().Creates)
            names.append(engine->Name());
    }
    return names;
}

Engine& EngineRegistry::ForNewFiles(const QString& name) const
{
    const QString wanted = name.trimmed().isEmpty() ? QString::fromLatin1(UsualEngine) : name.trimmed();
    for (const auto& engine : Engines_) {
        if (engine->Capabilities().Creates && engine->Name().compare(wanted, Qt::CaseInsensitive) == 0)
            return RequireAvailable(*engine);
    }
    throw Error(errItemNotFound, QStringLiteral("No database engine that makes new files is named '%1'. Use one of "
                                                "these: %2.")
                                     .arg(wanted, MakersOfFiles().join(QStringLiteral(", "))));
}

Engine& EngineRegistry::ForFile(const QByteArray& firstOctets) const
{
    for (const auto& engine : Engines_) {
        if (engine->RecognisesFile(firstOctets))
            return RequireAvailable(*engine);
    }
    throw Error(errUnrecognisedFormat, QStringLiteral("Unrecognised database format."));
}

Engine& EngineRegistry::ForConnect(const QString& connect) const
{
    for (const auto& engine : Engines_) {
        if (engine->RecognisesConnect(connect))
            return RequireAvailable(*engine);
    }
    // The connect string itself stays out of the text: it may hold a password.
    throw Error(errNotSupported, QStringLiteral("No database engine serves this connection string."));
}

std::vector<std::unique_ptr<FileLock>> EngineRegistry::LockOut(const QString& fileName) const
{
    std::vector<std::unique_ptr<FileLock>> locks;
    for (const auto& engine : Engines_) {
        if (auto lock = engine->LockOut(fileName))
            locks.push_back(std::move(lock));
    }
    return locks;
}

QStringList EngineRegistry::CompanionsOf(const QString& fileName) const
{
    QStringList names;
    for (const auto& engine : Engines_)
        names += engine->CompanionsOf(fileName);
    return names;
}

} // namespace dao::engine
