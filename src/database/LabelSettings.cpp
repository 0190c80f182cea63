// SPDX-License-Identifier: Apache-2.0
#include "database/LabelSettings.h"

#include "common/cPageSetup.h"
#include "database/SettingsStore.h"

namespace
{
struct StoredValue
{
    const StationSettings::NumberSetting& Setting;
    qint32 (cPageSetup::*Get)() const;
    void (cPageSetup::*Set)(qint32);
};

/// In the order in which they are stored.
const StoredValue StoredValues[] = {
    {StationSettings::LabelColumns, &cPageSetup::NumberColumns, &cPageSetup::SetNumberColumns},
    {StationSettings::LabelRows, &cPageSetup::NumberRows, &cPageSetup::SetNumberRows},
    {StationSettings::LabelColumnWidth, &cPageSetup::ColumnWidth, &cPageSetup::SetColumnWidth},
    {StationSettings::LabelRowHeight, &cPageSetup::RowHeight, &cPageSetup::SetRowHeight},
    {StationSettings::LabelTopMargin, &cPageSetup::TopMargin, &cPageSetup::SetTopMargin},
    {StationSettings::LabelBottomMargin, &cPageSetup::BottomMargin, &cPageSetup::SetBottomMargin},
    {StationSettings::LabelLeftMargin, &cPageSetup::LeftMargin, &cPageSetup::SetLeftMargin},
    {StationSettings::LabelRightMargin, &cPageSetup::RightMargin, &cPageSetup::SetRightMargin},
};
} // namespace

/// The margins that hosts know to stay as they were are left alone.
void LabelSettings::SetDefaults(cPageSetup& pageSetup)
{
    pageSetup.SetNumberColumns(StationSettings::LabelColumns.Default);
    pageSetup.SetNumberRows(StationSettings::LabelRows.Default);
    pageSetup.SetColumnWidth(StationSettings::LabelColumnWidth.Default);
    pageSetup.SetRowHeight(StationSettings::LabelRowHeight.Default);
    pageSetup.SetTopMargin(StationSettings::LabelTopMargin.Default);
    pageSetup.SetLeftMargin(StationSettings::LabelLeftMargin.Default);
}

/// Not the present values where one is absent: another computer may have put it back to its default, which takes its
/// row away.
void LabelSettings::Read(const SettingsStore& settings, cPageSetup& pageSetup)
{
    for (const StoredValue& value : StoredValues)
        (pageSetup.*value.Set)(settings.Read(value.Setting));
}

void LabelSettings::Write(SettingsStore& settings, const cPageSetup& pageSetup)
{
    for (const StoredValue& value : StoredValues)
        settings.Write(value.Setting, (pageSetup.*value.Get)());
}
