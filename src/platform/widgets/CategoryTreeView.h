// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QTimer>
#include <QTreeWidget>

/// A tree whose nodes have keys: choosing, renaming and dropping on nodes are events for its user, who does the work.
/// A node chosen by the mouse is told at once, one chosen by the arrow keys when they rest, so that holding a key does
/// not crawl. All positions are twips of the viewport.
class CategoryTreeView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CategoryTreeView(QWidget* parent = nullptr);

    /// Keys are unique; a key that is there already is not added again. parentKey empty: at the top. selectedIcon shows
    /// while the node is selected.
    bool AddNode(const QString& parentKey, const QString& key, const QString& text, const QIcon& icon,
                 const QIcon& selectedIcon);
    void ClearNodes();
    bool HasNode(const QString& key) const { return Nodes_.contains(key); }
    int NodeCount() const { return static_cast<int>(Nodes_.size()); }
    /// These do nothing, and give nothing, for a key that is not there.
    QString NodeText(const QString& key) const;
    /// A number behind the node's text, which stands out with it; 0 for none. spoken: what a screen reader says of it.
    void SetNodeCount(const QString& key, int count, const QString& spoken);
    void SetNodeIcons(const QString& key, const QIcon& icon, const QIcon& selectedIcon);
    QString KeyOfItem(const QTreeWidgetItem& item) const;
    /// Empty at the top.
    QString ParentKey(const QString& key) const;
    void Expand(const QString& key);
    bool IsExpanded(const QString& key) const;
    /// Orders the children of a node by their texts.
    void SortChildren(const QString& key);
    void EnsureVisible(const QString& key);

    /// Empty for none. Selecting by code raises no event.
    QString SelectedKey() const;
    bool SelectNode(const QString& key);
    /// Where something would be dropped; empty for nowhere.
    QString DropHighlight() const { return DropHighlight_; }
    void SetDropHighlight(const QString& key);
    /// The node at a position; empty for none.
    QString HitTest(const QPointF& twips) const;
    /// Lets the user type another text for the selected node, after BeforeLabelEdit allowed it.
    void StartLabelEdit();
    bool IsEditingLabel() const { return state() == QAbstractItemView::EditingState; }
    /// Whose text was typed, at AfterLabelEdit: by then another node may be selected.
    const QString& EditedKey() const { return EditedKey_; }
    /// Ends a left-button gesture as a button-up would, so that a drag can start.
    void EndMouseTracking();

Q_SIGNALS:
    void NodeClick(const QString& Key);
    void BeforeLabelEdit(bool& Cancel);
    void AfterLabelEdit(bool& Cancel, const QString& NewText);
    /// Before the tree handles the key; an accepted event is swallowed.
    void KeyDown(QKeyEvent* event);
    void MouseDown(Qt::MouseButton button, QPointF twips);
    void MouseMove(Qt::MouseButtons buttons, QPointF twips);
    void MouseUp(Qt::MouseButton button, QPointF twips);
    /// The menu key was pressed.
    void PopupKey();
    /// A drag moves over the tree; effect is what a drop here would do, at first what the source proposes.
    void DragOver(const QMimeData& data, QPointF twips, Qt::DropAction& effect);
    void DragLeft();
    void Dropped(const QMimeData& data, QPointF twips, Qt::DropAction& effect);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    friend class CategoryTreeDelegate;

    QPointF ToTwips(const QPointF& pixels) const;
    void ShowSelectedIcon(const QString& key, bool selected);
    void ChooseSelected();
    void FollowDrag(const QPoint& position);
    void EndDrag();

    QHash<QString, QTreeWidgetItem*> Nodes_;
    QString ShownSelected_; ///< Bears the icon of a selected node.
    QString DropHighlight_;
    QString PressedKey_;
    QString EditedKey_;
    QTimer KeyRest_;
    QTimer DragRest_;   ///< Opens the folder under a drag that rests on it.
    QTimer DragScroll_; ///< Scrolls while a drag is at the edge.
    QPoint DragPosition_;
    bool Tracking_ = false;
};
