// SPDX-License-Identifier: Apache-2.0

// The tree of the kinds of prize lists.

#include "common/UserPreferences.h"
#include "common/controls/StationListHandler.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/Icons.h"
#include "prizes/controls/PrizesListNames.h"
#include "prizes/controls/uPrizesList.h"

#include <utility>

namespace
{
QString NodeKey(qint32 category)
{
    return QLatin1Char('c') + QString::number(category);
}
} // namespace

void uPrizesList::UpdateCategories()
{
    if (!HasDatabase())
        return;
    const QString selected = treeCategories_->SelectedKey();
    treeCategories_->ClearNodes();
    const QIcon closed = Icons::Get(QStringLiteral("smallclosedfolder"));
    const QIcon open = Icons::Get(QStringLiteral("smallopenfolder"));
    const std::pair<enPrizeListCategory, QString> kinds[] = {
        {plcAvailable, QStringLiteral("Available this hour")},
        {plcAllAvailable, QStringLiteral("All Available Prizes")},
        {plcRecentlyWonPrizes, QStringLiteral("Recently Won Prizes")},
        {plcWonPrizes, QStringLiteral("Won Prizes")},
        {plcAllPrizes, QStringLiteral("All Prizes")},
    };
    for (const auto& [category, title] : kinds)
        treeCategories_->AddNode(QString(), NodeKey(category), title, closed, open);
    // A kind chosen by the arrow keys may still wait for them to rest.
    if (treeCategories_->SelectNode(selected))
        TakeNodeClick(selected);
    else
        SetCategory(CurrentCategory_);
}

void uPrizesList::SetCategory(enPrizeListCategory category)
{
    if (category < 0 || category > plcRecentlyWonPrizes)
        return;
    // A property throws nothing at who sets it.
    HandleReading("Category", [&] {
        const QString key = NodeKey(category);
        if (treeCategories_->SelectNode(key))
            TakeNodeClick(key);
    });
}

void uPrizesList::TakeNodeClick(const QString& key)
{
    const auto category = static_cast<enPrizeListCategory>(QStringView(key).mid(1).toInt());
    if (category == CurrentCategory_)
        return;
    CurrentCategory_ = category;
    const QPointer<uPrizesList> self(this);
    if (clsCurrentUser_)
        clsCurrentUser_->SetPreference(UserPreferences::PrizeKind.Name, static_cast<qint32>(category));
    // Who hears of the preference may take the list away. The tree gets its focus back with the rows.
    if (self)
        UpdateDisplay();
}
