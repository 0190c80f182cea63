// SPDX-License-Identifier: Apache-2.0
#include "HistoryRows.h"

#include "platform/widgets/ListView.h"

namespace
{
/// "|ann@example.org|bob@example.org|" as people write it.
QString WithoutBars(const QString& key)
{
    return key.split(u'|', Qt::SkipEmptyParts).join(QStringLiteral(", "));
}
} // namespace

HistoryRows::HistoryRows(const ListView& list)
{
    for (int column = 0; column < list.ColumnCount(); ++column)
        Columns_.append(list.ColumnKey(column));
}

bool HistoryRows::AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues)
{
    Item item{key, texts, sortValues};
    for (qsizetype column = 0; column < item.Texts.size(); ++column) {
        if (Columns_.value(column) == u"FromKey")
            item.Texts[column] = WithoutBars(item.Texts.at(column));
    }
    Items_.append(item);
    return true;
}

void HistoryRows::PutInto(ListView& list) const
{
    const QString selected = list.SelectedKey();
    list.setUpdatesEnabled(false);
    list.Clear();
    for (const Item& item : Items_)
        list.AddListItem(item.Key, item.Texts, item.SortValues);
    if (list.HasItem(selected))
        list.SelectKey(selected);
    list.setUpdatesEnabled(true);
}
