// SPDX-License-Identifier: Apache-2.0
#include "common/cPageSetup.h"

#include "common/UserInterface.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"

namespace
{
struct StoredValue
{
    const char* Name;
    qint32 (cPageSetup::*Get)() const;
    void (cPageSetup::*Set)(qint32);
};

constexpr StoredValue StoredValues[] = {
    {"NumberColumns", &cPageSetup::NumberColumns, &cPageSetup::SetNumberColumns},
    {"NumberRows", &cPageSetup::NumberRows, &cPageSetup::SetNumberRows},
    {"ColumnWidth", &cPageSetup::ColumnWidth, &cPageSetup::SetColumnWidth},
    {"RowHeight", &cPageSetup::RowHeight, &cPageSetup::SetRowHeight},
    {"TopMargin", &cPageSetup::TopMargin, &cPageSetup::SetTopMargin},
    {"BottomMargin", &cPageSetup::BottomMargin, &cPageSetup::SetBottomMargin},
    {"LeftMargin", &cPageSetup::LeftMargin, &cPageSetup::SetLeftMargin},
    {"RightMargin", &cPageSetup::RightMargin, &cPageSetup::SetRightMargin},
};

/// A sheet as designed: what was never changed is not stored, so every reader and writer must start from these.
cPageSetup StationDefaults()
{
    cPageSetup defaults;
    cTolvaDatabase::SetLabelDefaults(defaults);
    return defaults;
}

QString KeyOf(const QString& prefix, const char* name)
{
    const bool needsPoint = !prefix.isEmpty() && !prefix.endsWith(QLatin1Char('.'));
    return prefix + (needsPoint ? QStringLiteral(".") : QString()) + QLatin1String(name);
}
} // namespace

void cPageSetup::DisplayPageSetupLabels()
{
    UserInterface::Current().PageSetupLabels(*this);
}

void cPageSetup::ReadSettings(const cTolvaDatabase* database, const QString& prefix, bool& success)
{
    if (!database)
        return;
    // Not the present values: another computer may have put one back to its default, which takes its row away.
    const cPageSetup defaults = StationDefaults();
    for (const StoredValue& value : StoredValues) {
        const qint32 whenAbsent = (defaults.*value.Get)();
        (this->*value.Set)(SettingNumber(database->DatabaseSetting(KeyOf(prefix, value.Name), whenAbsent), whenAbsent));
    }
    success = true;
}

void cPageSetup::WriteSettings(cTolvaDatabase* database, const QString& prefix, bool& success) const
{
    if (!database)
        return;
    const cPageSetup defaults = StationDefaults();
    for (const StoredValue& value : StoredValues)
        database->SetDatabaseSetting(KeyOf(prefix, value.Name), (this->*value.Get)(), (defaults.*value.Get)());
    success = true;
}
