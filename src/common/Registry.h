// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <optional>

/// Per-machine settings by key path and value name. The machine's own is a profile file, "Kelvarin/Tolva.ini" in the
/// system's configuration folder or the file that the environment variable TOLVA_REGISTRY names, whose sections are the
/// key paths ("[SOFTWARE\Kelvarin]"); on Windows it is the real registry. Tests install one of their own.
class Registry
{
public:
    virtual ~Registry() = default;
    /// Nothing when there is no such value.
    virtual std::optional<QString> Read(const QString& root, const QString& key, const QString& value) const = 0;

    static const Registry& Current();
    /// Does not take ownership; null goes back to the machine's own.
    static void SetCurrent(const Registry* registry);
};
