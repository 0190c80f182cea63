// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>
#include <QStringList>
#include <QVariant>

/// A list view of the host, as far as the logic fills one: columns with keys that the host has chosen, and entries with
/// keys. The controls' ListView is one. The host owns it.
class TOLVA_EXPORT ListViewObject
{
public:
    virtual ~ListViewObject() = default;

    /// What kind of object the host passed; only a "ListView" is filled.
    virtual QString TypeName() const { return QStringLiteral("ListView"); }
    virtual int ColumnCount() const = 0;
    /// column: from 0. Empty for a column without a key.
    virtual QString ColumnKey(int column) const = 0;
    /// Takes the entries away; columns stay.
    virtual void ClearItems() = 0;
    /// Adds an entry below the others. texts: one for each column. sortValues: for each column a date or number that
    /// stands behind its text, invalid for none. False when the key is already there, and nothing is added then.
    virtual bool AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues = {}) = 0;
};
