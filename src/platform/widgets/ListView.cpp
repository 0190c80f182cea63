// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/ListView.h"

#include "platform/widgets/TextDelegate.h"
#include "platform/widgets/Twips.h"

#include <QCollator>
#include <QHeaderView>
#include <QKeyEvent>

#include <utility>

namespace
{
constexpr int SortRole = Qt::UserRole + 1;

const QCollator& NaturalOrder()
{
    static const QCollator collator = [] {
        QCollator made;
        made.setNumericMode(true);
        made.setCaseSensitivity(Qt::CaseInsensitive);
        return made;
    }();
    return collator;
}

class ListItem : public QTreeWidgetItem
{
public:
    ListItem(QString key, const QStringList& texts) : QTreeWidgetItem(texts, UserType), Key(std::move(key))
    {
        setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren);
    }

    QVariant data(int column, int role) const override
    {
        if (role == Qt::AccessibleTextRole)
            return AccessibleText(column);
        if (role == Qt::TextAlignmentRole && treeWidget() != nullptr)
            return treeWidget()->headerItem()->data(column, role);
        return QTreeWidgetItem::data(column, role);
    }

    bool operator<(const QTreeWidgetItem& other) const override
    {
        const int column = treeWidget()->sortColumn();
        const QVariant value = data(column, SortRole);
        const QVariant otherValue = other.data(column, SortRole);
        if (value.isValid() && otherValue.isValid()) {
            const QPartialOrdering order = QVariant::compare(value, otherValue);
            if (order != QPartialOrdering::Unordered)
                return order == QPartialOrdering::Less;
        }
        if (value.isValid() != otherValue.isValid())
            return value.isValid();
        return NaturalOrder().compare(text(column), other.text(column)) < 0;
    }

    const QString Key;
    qint32 Tag = 0;

private:
    /// The focus of a row lies in one column, from where the whole of it is to be heard.
    QString AccessibleText(int column) const
    {
        if (column != 0)
            return text(column);
        QStringList parts;
        for (int i = 0; i < columnCount(); ++i) {
            const bool hidden = treeWidget() != nullptr && treeWidget()->isColumnHidden(i);
            if (!hidden && !text(i).isEmpty())
                parts.append(text(i));
        }
        return parts.join(QStringLiteral(", "));
    }
};

ListItem* AsListItem(QTreeWidgetItem* item)
{
    return static_cast<ListItem*>(item);
}
} // namespace

ListView::ListView(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(0);
    setItemDelegate(new TextDelegate(this));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setExpandsOnDoubleClick(false);
    setSortingEnabled(true);
    sortByColumn(-1, Qt::AscendingOrder);
    header()->setMinimumSectionSize(0);
    header()->setSectionsMovable(false);
    connect(header(), &QHeaderView::sectionClicked, this, &ListView::ColumnClick);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &ListView::TellSelection);
    connect(this, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item) { Q_EMIT ItemClick(AsListItem(item)->Key); });
    connect(this, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { Q_EMIT ItemActivated(AsListItem(item)->Key); });
}

void ListView::Clear()
{
    Items_.clear();
    clear();
    sortByColumn(-1, Qt::AscendingOrder);
    TellSelection();
}

int ListView::AddColumn(const QString& text, double twips, Qt::Alignment alignment, const QString& key)
{
    const int column = ColumnCount();
    ColumnKeys_.append(key);
    setColumnCount(ColumnCount());
    headerItem()->setText(column, text);
    headerItem()->setTextAlignment(column, alignment);
    SetColumnTwips(column, twips);
    return column;
}

int ListView::ColumnNamed(const QString& key) const
{
    for (int column = 0; column < ColumnCount(); ++column) {
        if (ColumnKey(column).compare(key, Qt::CaseInsensitive) == 0)
            return column;
    }
    return -1;
}

void ListView::SetColumnTwips(int column, double twips)
{
    const int pixels = Twips::ToPixels(*this, twips);
    setColumnHidden(column, pixels <= 0);
    if (pixels > 0)
        setColumnWidth(column, pixels);
}

bool ListView::AddItem(const QString& key, const QStringList& texts, const QIcon& icon)
{
    if (key.isEmpty() || Items_.contains(key))
        return false;
    auto* item = new ListItem(key, texts);
    item->setIcon(0, icon);
    Items_.insert(key, item);
    addTopLevelItem(item);
    return true;
}

bool ListView::AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues)
{
    if (!AddItem(key, texts))
        return false;
    for (int column = 0; column < static_cast<int>(sortValues.size()); ++column) {
        if (sortValues.at(column).isValid())
            SetSortValue(key, column, sortValues.at(column));
    }
    return true;
}

bool ListView::RemoveItem(const QString& key)
{
    QTreeWidgetItem* item = Items_.take(key);
    delete item;
    TellSelection();
    return item != nullptr;
}

QStringList ListView::Keys() const
{
    QStringList keys;
    for (int i = 0; i < topLevelItemCount(); ++i)
        keys.append(AsListItem(topLevelItem(i))->Key);
    return keys;
}

QString ListView::SubItem(const QString& key, int column) const
{
    const QTreeWidgetItem* item = Items_.value(key);
    return item == nullptr ? QString() : item->text(column);
}

void ListView::SetSubItem(const QString& key, int column, const QString& text)
{
    QTreeWidgetItem* item = Items_.value(key);
    if (item != nullptr && column >= 0 && column < ColumnCount())
        item->setText(column, text);
}

void ListView::SetSortValue(const QString& key, int column, const QVariant& value)
{
    QTreeWidgetItem* item = Items_.value(key);
    if (item != nullptr && column >= 0 && column < ColumnCount())
        item->setData(column, SortRole, value);
}

void ListView::SetIcon(const QString& key, const QIcon& icon)
{
    QTreeWidgetItem* item = Items_.value(key);
    if (item != nullptr)
        item->setIcon(0, icon);
}

qint32 ListView::Tag(const QString& key) const
{
    QTreeWidgetItem* item = Items_.value(key);
    return item == nullptr ? 0 : AsListItem(item)->Tag;
}

void ListView::SetTag(const QString& key, qint32 tag)
{
    QTreeWidgetItem* item = Items_.value(key);
    if (item != nullptr)
        AsListItem(item)->Tag = tag;
}

QString ListView::HitTest(const QPoint& position) const
{
    QTreeWidgetItem* item = itemAt(position);
    return item == nullptr ? QString() : AsListItem(item)->Key;
}

QString ListView::SelectedKey() const
{
    const QList<QTreeWidgetItem*> selected = selectedItems();
    return selected.isEmpty() ? QString() : AsListItem(selected.first())->Key;
}

bool ListView::SelectKey(const QString& key)
{
    QTreeWidgetItem* item = Items_.value(key);
    if (item == nullptr && !key.isEmpty())
        return false;
    // Told when it is done: whoever hears of it may fill the list anew, and the item would be gone in the middle.
    IsSelecting_ = true;
    setCurrentItem(item);
    if (item != nullptr)
        scrollToItem(item);
    else
        clearSelection();
    IsSelecting_ = false;
    TellSelection();
    return true;
}

void ListView::TellSelection()
{
    const QString key = SelectedKey();
    if (IsSelecting_ || key == ToldKey_)
        return;
    ToldKey_ = key;
    Q_EMIT SelectedKeyChanged(key);
}

QItemSelectionModel::SelectionFlags ListView::selectionCommand(const QModelIndex& index, const QEvent*) const
{
    // No key takes the selection away from the row it stands on.
    return index.isValid() ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                           : QItemSelectionModel::SelectionFlags(QItemSelectionModel::NoUpdate);
}

void ListView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const QString key = SelectedKey();
        event->setAccepted(!key.isEmpty());
        if (!key.isEmpty())
            Q_EMIT ItemActivated(key);
        return;
    }
    const QString before = SelectedKey();
    QTreeWidget::keyPressEvent(event);
    const QString after = SelectedKey();
    if (!after.isEmpty() && after != before)
        Q_EMIT ItemClick(after);
}
