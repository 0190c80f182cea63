// SPDX-License-Identifier: Apache-2.0
#include "StationPlace.h"

#include "common/FileHelper.h"

namespace
{
constexpr char UserVariable[] = "TOLVA_USER";
}

QString StationPlace::FileIn(const QString& folder)
{
    return FileHelper::Join(folder, QStringLiteral("Tolva.mdb"));
}

QString StationPlace::DirectoryIn(const QString& folder)
{
    return FileHelper::Join(folder, QStringLiteral("Directory"));
}

QString StationPlace::DirectoryFileIn(const QString& folder)
{
    return FileHelper::Join(DirectoryIn(folder), QStringLiteral("Directory.mdb"));
}

bool StationPlace::HoldsStation(const QString& folder)
{
    return FileHelper::FileSize(FileIn(folder)) > 0;
}

QString StationPlace::DefaultUserName()
{
    const QString fromEnvironment = qEnvironmentVariable(UserVariable);
    return fromEnvironment.isEmpty() ? QStringLiteral("Technician") : fromEnvironment;
}
