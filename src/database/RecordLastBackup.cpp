// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"
#include "common/MachineHelper.h"
#include "common/PendingError.h"
#include "database/DAO_DatabaseFunctions.h"

QString DAO_DatabaseFunctions::RecordLastBackup(dao::Database* database, Date when, const QString& folderName)
{
    if (!database)
        return QString();
    QString text = GeneralHelper::SetKeyValue(QString(), QStringLiteral("Run"), when.GeneralDate());
    text = GeneralHelper::SetKeyValue(text, QStringLiteral("By"), MachineHelper::ComputerName());
    text = GeneralHelper::SetKeyValue(text, QStringLiteral("Name"), folderName);
    PendingError pending;
    pending.Try([&] {
        const auto query = database->CreateQueryDef(
            QString(), QStringLiteral("UPDATE Description SET Description.LastBackup = [LastBackupDate];"));
        query->Parameters().Item(QStringLiteral("LastBackupDate")).SetValue(text);
        query->Execute();
    });
    return pending ? QString() : text;
}
