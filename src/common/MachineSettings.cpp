// SPDX-License-Identifier: Apache-2.0
#include "common/MachineSettings.h"

#include "common/ProfileHelper.h"

namespace
{
const QString GeneralKey = QStringLiteral("SOFTWARE\\Kelvarin");
const QString DatabasesKey = QStringLiteral("SOFTWARE\\Kelvarin\\Utils\\Databases");

QVariant Value(const QString& key, const char* name, const QVariant& defaultValue)
{
    return ProfileHelper::ReadRegistryValue(QLatin1String(ProfileHelper::LocalMachine), key, QLatin1String(name),
                                            defaultValue);
}
} // namespace

QString MachineSettings::DebugPath()
{
    return Value(GeneralKey, "DebugPath", QString()).toString();
}

QString MachineSettings::Country()
{
    return Value(GeneralKey, "Country", QStringLiteral("GB")).toString();
}

bool MachineSettings::MasksPhoneNumbers()
{
    return Value(GeneralKey, "MaskPhoneNumbers", 0).toInt() != 0;
}

bool MachineSettings::AlwaysValidatesDatabases()
{
    return Value(GeneralKey, "AlwaysValidateDatabases", false).toBool();
}

bool MachineSettings::UsesRecordLevelLocking()
{
    return Value(DatabasesKey, "UseRecordLevelLocking", true).toBool();
}

bool MachineSettings::KeepsSearchIndex()
{
    return Value(DatabasesKey, "KeepSearchIndex", true).toBool();
}

QString MachineSettings::EngineOfNewDatabases()
{
    return Value(DatabasesKey, "NewDatabaseEngine", QString()).toString();
}
