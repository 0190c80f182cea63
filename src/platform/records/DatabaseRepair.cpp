// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DatabaseRepair.h"

#include "platform/records/FileOpening.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/engines/FileRepairer.h"

#include <QFileInfo>

#include <algorithm>

namespace dao
{

namespace
{

/// By its first octets, or, where they are gone, by what is left behind them.
engine::Engine& EngineOfDamaged(const QString& file)
{
    try {
        return EngineOfFile(file);
    } catch (const Error& error) {
        if (error.Number() != errUnrecognisedFormat)
            throw;
        const auto& engines = engine::EngineRegistry::Instance().Engines();
        const auto found = std::find_if(engines.begin(), engines.end(), [&](const auto& engine) {
            auto* repairer = dynamic_cast<engine::FileRepairer*>(engine.get());
            return repairer != nullptr && repairer->RecognisesRemains(file);
        });
        if (found == engines.end())
            throw;
        return **found;
    }
}

} // namespace

RepairReport RepairDatabase(const QString& source, const QString& target, const QStringList& hints,
                            const std::function<bool(qint64 done, qint64 total)>& advance)
{
    engine::Engine& engine = EngineOfDamaged(source);
    RequireFolder(target);
    auto* repairer = dynamic_cast<engine::FileRepairer*>(&engine);
    if (repairer == nullptr)
        throw Error(errNotSupported, QStringLiteral("A file of this format is not repaired row by row."));
    return repairer->Repair(QFileInfo(source).absoluteFilePath(), QFileInfo(target).absoluteFilePath(), hints, advance);
}

QString FormatOfDamaged(const QString& file)
{
    return EngineOfDamaged(file).Name();
}

} // namespace dao
