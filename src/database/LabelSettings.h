// SPDX-License-Identifier: Apache-2.0
#pragma once

class SettingsStore;
class cPageSetup;

/// The geometry of a station's sheet of address labels among its settings.
namespace LabelSettings
{

/// As cTolvaDatabase::SetLabelDefaults.
void SetDefaults(cPageSetup& pageSetup);
void Read(const SettingsStore& settings, cPageSetup& pageSetup);
void Write(SettingsStore& settings, const cPageSetup& pageSetup);

} // namespace LabelSettings
