// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QVariantMap>

/// The named properties of a control as a host's form keeps them. A value equal to its default is not stored. A plain
/// value.
class TOLVA_EXPORT PropertyBag
{
public:
    QVariant ReadProperty(const QString& name, const QVariant& defaultValue) const
    {
        return Values_.value(name, defaultValue);
    }
    void WriteProperty(const QString& name, const QVariant& value, const QVariant& defaultValue)
    {
        if (value == defaultValue)
            Values_.remove(name);
        else
            Values_.insert(name, value);
    }
    /// What is stored.
    const QVariantMap& Values() const { return Values_; }

private:
    QVariantMap Values_;
};
