// SPDX-License-Identifier: Apache-2.0
#include "messageslist/CategoryTreeFill.h"

#include "platform/directory/clsCategory.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/Icons.h"

#include <QHash>
#include <QScrollBar>
#include <QSet>

#include <utility>
#include <vector>

namespace
{
const QString ClosedFolder = QStringLiteral("smallclosedfolder");
const QString OpenFolder = QStringLiteral("smallopenfolder");

void AddCategory(const clsCategory& category, const QString& parentKey, const QString& prefix, CategoryTreeView& tree)
{
    const QIcon own = Icons::Get(category.IconReference());
    tree.AddNode(parentKey, prefix + QString::number(category.Reference()), category.Description(),
                 own.isNull() ? Icons::Get(ClosedFolder) : own, own.isNull() ? Icons::Get(OpenFolder) : own);
}

/// Parents before children, siblings in order; a deep tree needs no deep stack.
void AddCategories(const clsCategory& root, const QString& prefix, CategoryTreeView& tree)
{
    std::vector<std::pair<const clsCategory*, QString>> waiting{{&root, QString()}};
    for (std::size_t next = 0; next < waiting.size(); ++next) {
        const auto [parent, parentKey] = waiting[next];
        for (int i = 1; i <= parent->SubCategoryCount(); ++i) {
            const clsCategory& category = *parent->SubCategory(i);
            AddCategory(category, parentKey, prefix, tree);
            waiting.emplace_back(&category, prefix + QString::number(category.Reference()));
        }
    }
}

QStringList ExpandedKeys(const CategoryTreeView& tree)
{
    QStringList keys;
    for (QTreeWidgetItemIterator item(const_cast<CategoryTreeView*>(&tree)); *item; ++item) {
        if ((*item)->isExpanded())
            keys.append(tree.KeyOfItem(**item));
    }
    return keys;
}
} // namespace

QString CategoryKey(qint32 reference)
{
    return QLatin1Char('c') + QString::number(reference);
}

qint32 CategoryOfKey(const QString& key)
{
    return QStringView(key).mid(1).toInt();
}

void FillTree(const clsCategory& root, CategoryTreeView& tree, const QString& prefix)
{
    const QStringList expanded = ExpandedKeys(tree);
    const QString selected = tree.SelectedKey();
    const int scrolled = tree.verticalScrollBar()->value();
    tree.setUpdatesEnabled(false);
    tree.ClearNodes();
    AddCategories(root, prefix, tree);
    for (const QString& key : expanded)
        tree.Expand(key);
    if (!selected.isEmpty())
        tree.SelectNode(selected);
    tree.verticalScrollBar()->setValue(scrolled);
    tree.setUpdatesEnabled(true);
}

quint64 FolderSignature(const clsCategory& root)
{
    std::size_t signature = 1;
    std::vector<const clsCategory*> waiting{&root};
    for (std::size_t next = 0; next < waiting.size(); ++next) {
        const clsCategory& parent = *waiting[next];
        signature = qHashMulti(signature, parent.Reference(), parent.SubCategoryCount());
        for (int i = 1; i <= parent.SubCategoryCount(); ++i) {
            const clsCategory* const category = parent.SubCategory(i);
            signature = qHashMulti(signature, category->Description(), category->IconReference());
            waiting.push_back(category);
        }
    }
    return signature;
}
