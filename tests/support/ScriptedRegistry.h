// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/ProfileHelper.h"
#include "common/Registry.h"

#include <QMap>

/// The machine's settings as the test wants them, empty at first. In force from its making to its destruction.
class ScriptedRegistry final : public Registry
{
public:
    ScriptedRegistry() { SetCurrent(this); }
    ~ScriptedRegistry() override { SetCurrent(nullptr); }
    ScriptedRegistry(const ScriptedRegistry&) = delete;
    ScriptedRegistry& operator=(const ScriptedRegistry&) = delete;

    /// key: such as "SOFTWARE\Kelvarin".
    void Set(const QString& key, const QString& value, const QString& text) { Values_[Path(key, value)] = text; }
    void Remove(const QString& key, const QString& value) { Values_.remove(Path(key, value)); }

    std::optional<QString> Read(const QString& root, const QString& key, const QString& value) const override
    {
        const auto found = Values_.constFind(Path(key, value));
        if (root != QLatin1String(ProfileHelper::LocalMachine) || found == Values_.constEnd())
            return std::nullopt;
        return *found;
    }

private:
    static QString Path(QString key, const QString& value)
    {
        return (key.replace(u'/', u'\\') + u'\\' + value).toLower();
    }

    QMap<QString, QString> Values_;
};
