// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>
#include <QVariant>

/// Settings of the machine, and profile (INI) files.
namespace ProfileHelper
{

/// The root that all of this system's machine settings live under.
inline constexpr char LocalMachine[] = "HKEY_LOCAL_MACHINE";

/// A value of the registry in force (see Registry); defaultValue when it is absent. The result has the type of
/// defaultValue (bool, int or text); what cannot be read as such is the default.
TOLVA_EXPORT QVariant ReadRegistryValue(const QString& root, const QString& key, const QString& value,
                                        const QVariant& defaultValue);

/// A value of a plain profile file: "[section]", "key=value"; sections and keys without regard to case, the value as it
/// stands without the blanks around it and one pair of quotes. The default when file, section or key is absent. A file
/// that is not there is looked for in its folder under the same name in any case.
TOLVA_EXPORT QString ReadIniString(const QString& section, const QString& key, const QString& defaultValue,
                                   const QString& file);
/// Writes one value and leaves the rest of the file as it stands, comments included; finds the file in the same way.
/// False when that fails, or when a profile file cannot hold such a section or key. Line ends in the value become
/// blanks.
TOLVA_EXPORT bool WriteIniString(const QString& section, const QString& key, const QString& value, const QString& file);
/// The same for programs that read a profile file in the machine's ANSI code page: the file stays Latin-1, and what
/// that does not hold is a question mark.
TOLVA_EXPORT bool WriteIniStringA(const QString& section, const QString& key, const QString& value,
                                  const QString& file);

/// The file itself, or the one in its folder whose name differs in case alone; the name as it stands when there is
/// neither.
TOLVA_EXPORT QString ExistingFile(const QString& file);

} // namespace ProfileHelper
