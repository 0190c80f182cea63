// SPDX-License-Identifier: Apache-2.0
#include "common/MachineHelper.h"

#include <QSysInfo>

QString MachineHelper::ComputerName()
{
    const QString name = QSysInfo::machineHostName();
    return name.isEmpty() ? QStringLiteral("localhost") : name;
}
