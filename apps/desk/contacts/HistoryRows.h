// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/ListViewObject.h"

#include <QList>

class ListView;

/// The messages of a contact as a list is to show them, before it does: so that it is filled anew only where it would
/// show something else. Addresses stand in it as people write them. A value.
class HistoryRows : public ListViewObject
{
public:
    /// list: whose columns are filled.
    explicit HistoryRows(const ListView& list);

    int ColumnCount() const override { return static_cast<int>(Columns_.size()); }
    QString ColumnKey(int column) const override { return Columns_.value(column); }
    void ClearItems() override { Items_.clear(); }
    bool AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues = {}) override;

    int Count() const { return static_cast<int>(Items_.size()); }
    /// In the place of what the list shows. What is selected there stays so where it is shown again.
    void PutInto(ListView& list) const;

    friend bool operator==(const HistoryRows& a, const HistoryRows& b) { return a.Items_ == b.Items_; }

private:
    struct Item
    {
        QString Key;
        QStringList Texts;
        QVariantList SortValues;

        friend bool operator==(const Item&, const Item&) = default;
    };

    QStringList Columns_;
    QList<Item> Items_;
};
