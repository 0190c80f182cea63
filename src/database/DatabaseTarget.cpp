// SPDX-License-Identifier: Apache-2.0
#include "database/DatabaseTarget.h"

#include "platform/records/DBEngine.h"

QString DAO_DatabaseFunctions::TargetName(const QString& name, const QString& connect)
{
    const QString extension = QStringLiteral(".mdb");
    return connect.isEmpty() && name.right(4).toLower() != extension ? name + extension : name;
}

std::unique_ptr<dao::Database> DAO_DatabaseFunctions::OpenTarget(const QString& name, const QString& connect)
{
    if (connect.isEmpty())
        return dao::DBEngine::OpenDatabase(name);
    return dao::DBEngine::OpenDatabase(name, dao::dbDriverNoPrompt, false,
                                       connect + QStringLiteral(";Database=") + name);
}

QString DAO_DatabaseFunctions::LogText(bool flag)
{
    return flag ? QStringLiteral("True") : QStringLiteral("False");
}
