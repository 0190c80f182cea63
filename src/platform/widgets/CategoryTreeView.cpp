// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/CategoryTreeView.h"

#include "platform/widgets/TextDelegate.h"
#include "platform/widgets/Twips.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalBlocker>

namespace
{
constexpr int KeyRole = Qt::UserRole;
constexpr int IconRole = Qt::UserRole + 1;
constexpr int SelectedIconRole = Qt::UserRole + 2;
constexpr int CountRole = Qt::UserRole + 3;
constexpr int KeyRestMilliseconds = 150;
constexpr int DragRestMilliseconds = 600;
constexpr int DragScrollMilliseconds = 40;
constexpr int EdgePixels = 16;

QString KeyOf(const QTreeWidgetItem* item)
{
    return item ? item->data(0, KeyRole).toString() : QString();
}
} // namespace

/// Asks before a typed text goes into a node.
class CategoryTreeDelegate final : public TextDelegate
{
public:
    explicit CategoryTreeDelegate(CategoryTreeView& tree) : TextDelegate(&tree), Tree_(tree) {}

    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override
    {
        const QString text = qobject_cast<QLineEdit*>(editor)->text();
        // What is told may rebuild the tree, and the node with it.
        const QPersistentModelIndex node(index);
        Tree_.EditedKey_ = index.data(KeyRole).toString();
        bool cancel = false;
        Q_EMIT Tree_.AfterLabelEdit(cancel, text);
        if (!cancel && node.isValid())
            model->setData(node, text, Qt::EditRole);
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem highlighted = option;
        if (!Tree_.DropHighlight_.isEmpty() && index.data(KeyRole).toString() == Tree_.DropHighlight_)
            highlighted.state |= QStyle::State_Selected | QStyle::State_Active;
        TextDelegate::paint(painter, highlighted, index);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        TextDelegate::initStyleOption(option, index);
        const int count = index.data(CountRole).toInt();
        if (count == 0)
            return;
        option->text += QStringLiteral(" (%1)").arg(option->locale.toString(count));
        option->font.setBold(true);
    }

private:
    CategoryTreeView& Tree_;
};

CategoryTreeView::CategoryTreeView(QWidget* parent) : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setColumnCount(1);
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setAcceptDrops(true);
    setDragEnabled(false);
    setDropIndicatorShown(false);
    setAutoScroll(true);
    setExpandsOnDoubleClick(true);
    setItemDelegate(new CategoryTreeDelegate(*this));
    KeyRest_.setSingleShot(true);
    KeyRest_.setInterval(KeyRestMilliseconds);
    connect(&KeyRest_, &QTimer::timeout, this, &CategoryTreeView::ChooseSelected);
    DragRest_.setSingleShot(true);
    DragRest_.setInterval(DragRestMilliseconds);
    connect(&DragRest_, &QTimer::timeout, this, [this] {
        if (QTreeWidgetItem* item = itemAt(DragPosition_))
            item->setExpanded(true);
    });
    DragScroll_.setInterval(DragScrollMilliseconds);
    connect(&DragScroll_, &QTimer::timeout, this, [this] {
        const bool isAbove = DragPosition_.y() < EdgePixels;
        QScrollBar* bar = verticalScrollBar();
        bar->setValue(bar->value() + (isAbove ? -1 : 1) * bar->singleStep());
    });
    connect(this, &QTreeWidget::itemSelectionChanged, this, [this] {
        ShowSelectedIcon(std::exchange(ShownSelected_, SelectedKey()), false);
        ShowSelectedIcon(ShownSelected_, true);
    });
}

bool CategoryTreeView::AddNode(const QString& parentKey, const QString& key, const QString& text, const QIcon& icon,
                               const QIcon& selectedIcon)
{
    if (Nodes_.contains(key))
        return false;
    auto* item = new QTreeWidgetItem({text});
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    item->setToolTip(0, QString());
    item->setData(0, KeyRole, key);
    Nodes_.insert(key, item);
    if (QTreeWidgetItem* parent = Nodes_.value(parentKey); parent && !parentKey.isEmpty())
        parent->addChild(item);
    else
        addTopLevelItem(item);
    SetNodeIcons(key, icon, selectedIcon);
    return true;
}

void CategoryTreeView::ClearNodes()
{
    KeyRest_.stop();
    Nodes_.clear();
    ShownSelected_.clear();
    DropHighlight_.clear();
    clear();
}

QString CategoryTreeView::NodeText(const QString& key) const
{
    const QTreeWidgetItem* item = Nodes_.value(key);
    return item ? item->text(0) : QString();
}

void CategoryTreeView::SetNodeCount(const QString& key, int count, const QString& spoken)
{
    QTreeWidgetItem* item = Nodes_.value(key);
    if (!item || item->data(0, CountRole).toInt() == count)
        return;
    item->setData(0, CountRole, count);
    item->setData(0, Qt::AccessibleTextRole, count > 0 ? item->text(0) + QStringLiteral(", ") + spoken : QVariant());
}

void CategoryTreeView::SetNodeIcons(const QString& key, const QIcon& icon, const QIcon& selectedIcon)
{
    QTreeWidgetItem* item = Nodes_.value(key);
    if (!item)
        return;
    item->setData(0, IconRole, icon);
    item->setData(0, SelectedIconRole, selectedIcon);
    item->setIcon(0, item->isSelected() ? selectedIcon : icon);
}

void CategoryTreeView::ShowSelectedIcon(const QString& key, bool selected)
{
    if (QTreeWidgetItem* item = Nodes_.value(key))
        item->setIcon(0, item->data(0, selected ? SelectedIconRole : IconRole).value<QIcon>());
}

QString CategoryTreeView::KeyOfItem(const QTreeWidgetItem& item) const
{
    return KeyOf(&item);
}

QString CategoryTreeView::ParentKey(const QString& key) const
{
    const QTreeWidgetItem* item = Nodes_.value(key);
    return item ? KeyOf(item->parent()) : QString();
}

void CategoryTreeView::Expand(const QString& key)
{
    if (QTreeWidgetItem* item = Nodes_.value(key))
        item->setExpanded(true);
}

bool CategoryTreeView::IsExpanded(const QString& key) const
{
    const QTreeWidgetItem* item = Nodes_.value(key);
    return item && item->isExpanded();
}

void CategoryTreeView::SortChildren(const QString& key)
{
    if (QTreeWidgetItem* item = Nodes_.value(key))
        item->sortChildren(0, Qt::AscendingOrder);
}

void CategoryTreeView::EnsureVisible(const QString& key)
{
    if (QTreeWidgetItem* item = Nodes_.value(key))
        scrollToItem(item);
}

QString CategoryTreeView::SelectedKey() const
{
    const QList<QTreeWidgetItem*> selected = selectedItems();
    return selected.isEmpty() ? QString() : KeyOf(selected.first());
}

bool CategoryTreeView::SelectNode(const QString& key)
{
    QTreeWidgetItem* item = Nodes_.value(key);
    if (!item)
        return false;
    KeyRest_.stop();
    setCurrentItem(item);
    item->setSelected(true);
    return true;
}

void CategoryTreeView::SetDropHighlight(const QString& key)
{
    if (key == DropHighlight_)
        return;
    DropHighlight_ = key;
    viewport()->update();
}

QString CategoryTreeView::HitTest(const QPointF& twips) const
{
    return KeyOf(itemAt(Twips::ToPixels(*this, twips.x()), Twips::ToPixels(*this, twips.y())));
}

void CategoryTreeView::StartLabelEdit()
{
    bool cancel = false;
    Q_EMIT BeforeLabelEdit(cancel);
    QTreeWidgetItem* item = Nodes_.value(SelectedKey());
    if (!cancel && item)
        editItem(item);
}

void CategoryTreeView::EndMouseTracking()
{
    Tracking_ = false;
    PressedKey_.clear();
    setState(QAbstractItemView::NoState);
}

void CategoryTreeView::keyPressEvent(QKeyEvent* event)
{
    // What the editor of a label leaves over, such as its Enter, comes here as its parent.
    if (IsEditingLabel())
        return;
    event->ignore();
    Q_EMIT KeyDown(event);
    if (event->isAccepted())
        return;
    const QString before = SelectedKey();
    QTreeWidget::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space) {
        event->accept(); // or a dialog around the tree takes it for its default button
        ChooseSelected();
    } else if (SelectedKey() != before)
        KeyRest_.start();
}

void CategoryTreeView::ChooseSelected()
{
    KeyRest_.stop();
    if (const QString key = SelectedKey(); !key.isEmpty())
        Q_EMIT NodeClick(key);
}

void CategoryTreeView::mousePressEvent(QMouseEvent* event)
{
    const QPointF twips = ToTwips(event->position());
    Tracking_ = event->button() == Qt::LeftButton;
    PressedKey_ = Tracking_ ? HitTest(twips) : QString();
    if (event->button() != Qt::RightButton)
        QTreeWidget::mousePressEvent(event);
    Q_EMIT MouseDown(event->button(), twips);
}

void CategoryTreeView::mouseMoveEvent(QMouseEvent* event)
{
    Q_EMIT MouseMove(event->buttons(), ToTwips(event->position()));
    // The tree's own tracking would select whatever the pointer comes across.
}

void CategoryTreeView::mouseReleaseEvent(QMouseEvent* event)
{
    const QPointF twips = ToTwips(event->position());
    const bool clicked = event->button() == Qt::LeftButton && Tracking_ && !PressedKey_.isEmpty() &&
                         HitTest(twips) == PressedKey_ && SelectedKey() == PressedKey_;
    const QString key = PressedKey_;
    if (event->button() != Qt::RightButton)
        QTreeWidget::mouseReleaseEvent(event);
    Tracking_ = false;
    PressedKey_.clear();
    Q_EMIT MouseUp(event->button(), twips);
    if (clicked)
        Q_EMIT NodeClick(key);
}

void CategoryTreeView::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        Q_EMIT PopupKey();
    event->accept();
}

void CategoryTreeView::dragEnterEvent(QDragEnterEvent* event)
{
    // Taken whatever it is, so that the moves arrive: they say what each place would do.
    event->accept();
}

void CategoryTreeView::dragMoveEvent(QDragMoveEvent* event)
{
    FollowDrag(event->position().toPoint());
    Qt::DropAction effect = event->proposedAction();
    Q_EMIT DragOver(*event->mimeData(), ToTwips(event->position()), effect);
    if (effect == Qt::IgnoreAction) {
        event->ignore();
        return;
    }
    event->setDropAction(effect);
    event->accept();
}

void CategoryTreeView::FollowDrag(const QPoint& position)
{
    if (itemAt(position) != itemAt(DragPosition_) || !DragRest_.isActive())
        DragRest_.start();
    DragPosition_ = position;
    const bool isAtEdge = position.y() < EdgePixels || position.y() >= viewport()->height() - EdgePixels;
    if (!isAtEdge)
        DragScroll_.stop();
    else if (!DragScroll_.isActive())
        DragScroll_.start();
}

void CategoryTreeView::EndDrag()
{
    DragRest_.stop();
    DragScroll_.stop();
}

void CategoryTreeView::dragLeaveEvent(QDragLeaveEvent*)
{
    EndDrag();
    Q_EMIT DragLeft();
}

void CategoryTreeView::dropEvent(QDropEvent* event)
{
    EndDrag();
    Qt::DropAction effect = Qt::IgnoreAction;
    Q_EMIT Dropped(*event->mimeData(), ToTwips(event->position()), effect);
    if (effect == Qt::IgnoreAction) {
        event->ignore();
        return;
    }
    event->setDropAction(effect);
    event->accept();
}

QPointF CategoryTreeView::ToTwips(const QPointF& pixels) const
{
    return {Twips::FromPixels(*this, pixels.x()), Twips::FromPixels(*this, pixels.y())};
}
