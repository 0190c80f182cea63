// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/ListViewObject.h"
#include "platform/Export.h"

#include <QHash>
#include <QTreeWidget>

/// A flat list with columns whose entries are known by a key, one selected at a time. Keys are told apart by case.
/// What is asked of a key that is not there reads as empty or 0 and ignores being set. One thread.
///
/// A click on a heading sorts by that column, a second one the other way round; texts in their natural order ("Track 9"
/// before "Track 10"), cells with a sort value before those and by that value. Until a heading is clicked, and after
/// Clear(), entries stand in the order they were added in.
class TOLVA_EXPORT ListView : public QTreeWidget, public ListViewObject
{
    Q_OBJECT

public:
    explicit ListView(QWidget* parent = nullptr);

    /// Takes the entries away; columns stay.
    void Clear();
    /// To the right of those there are; twips 0 hides it. The last one fills what the others leave. Returns its number,
    /// from 0. key: the column's own, for who looks columns up.
    int AddColumn(const QString& text, double twips, Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter,
                  const QString& key = QString());
    int ColumnCount() const override { return static_cast<int>(ColumnKeys_.size()); }
    QString ColumnKey(int column) const override { return ColumnKeys_.value(column); }
    /// The column with this key (without regard to case), -1 for none.
    int ColumnNamed(const QString& key) const;
    void SetColumnTwips(int column, double twips);

    /// texts: one for each column from 0 on. false, and nothing changes, when the key is empty or already there.
    bool AddItem(const QString& key, const QStringList& texts, const QIcon& icon = {});
    bool AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues = {}) override;
    void ClearItems() override { Clear(); }
    bool RemoveItem(const QString& key);
    bool HasItem(const QString& key) const { return Items_.contains(key); }
    int ItemCount() const { return static_cast<int>(Items_.size()); }
    /// In the order they stand in.
    QStringList Keys() const;

    QString SubItem(const QString& key, int column) const;
    void SetSubItem(const QString& key, int column, const QString& text);
    /// A number or date that the cell is sorted by instead of its text; an invalid one takes it away.
    void SetSortValue(const QString& key, int column, const QVariant& value);
    void SetIcon(const QString& key, const QIcon& icon);
    /// A number of the user's own with each entry, 0 at first.
    qint32 Tag(const QString& key) const;
    void SetTag(const QString& key, qint32 tag);

    /// The entry at a position of the viewport, in pixels; empty for none.
    QString HitTest(const QPoint& position) const;
    /// Empty when none is selected.
    QString SelectedKey() const;
    /// Selects and scrolls to it; an empty key selects none. false when the key is not there.
    bool SelectKey(const QString& key);

Q_SIGNALS:
    /// The selected entry is another one now, or none (empty), by the user's doing or by code.
    void SelectedKeyChanged(const QString& key);
    /// The user clicked the entry with the left button or came to it with the keys.
    void ItemClick(const QString& key);
    /// By a double click, or Enter, which is then kept from the window's default button.
    void ItemActivated(const QString& key);
    /// After the list was sorted by it.
    void ColumnClick(int column);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event = nullptr) const override;

private:
    void TellSelection();

    QStringList ColumnKeys_;
    QString ToldKey_;
    bool IsSelecting_ = false; ///< SelectKey is at work.
    QHash<QString, QTreeWidgetItem*> Items_;
};
