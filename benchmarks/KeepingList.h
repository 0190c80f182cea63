// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/ListViewObject.h"

#include <QList>

/// A list that keeps what it is given, as cheaply as a list can.
class KeepingList : public ListViewObject
{
public:
    int ColumnCount() const override { return static_cast<int>(Keys_.size()); }
    QString ColumnKey(int column) const override { return Keys_.at(column); }
    void ClearItems() override { Items_.clear(); }
    bool AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues) override
    {
        Items_.append({key, texts, sortValues});
        return true;
    }
    qsizetype Count() const { return Items_.size(); }

private:
    struct Item
    {
        QString Key;
        QStringList Texts;
        QVariantList SortValues;
    };
    const QStringList Keys_{QStringLiteral("Subject"), QStringLiteral("FromKey"), QStringLiteral("FOLDER"),
                            QStringLiteral("SENT")};
    QList<Item> Items_;
};
