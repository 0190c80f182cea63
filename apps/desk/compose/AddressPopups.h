// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AddressBook.h"

#include <QFrame>
#include <QListWidget>

class QLabel;
class QToolButton;

/// The contacts that what is being typed may mean, under the caret. It never takes the focus: its box hands it the keys
/// that it obeys. Owned by its box.
class SuggestionList : public QListWidget
{
    Q_OBJECT

public:
    explicit SuggestionList(QWidget* parent);

    /// Shown with its corner at a point of the screen, within it; hidden when there are none. No row is chosen.
    void Show(const QList<AddressBook::Entry>& entries, const QRect& line);
    const AddressBook::Entry& At(int row) const { return Entries_.at(row); }
    /// -1 while none is chosen.
    int Chosen() const { return currentRow(); }
    /// Goes round, with no choice between the last and the first.
    void Step(int rows);

Q_SIGNALS:
    void RowClicked(int row);

private:
    QList<AddressBook::Entry> Entries_;
};

/// What can be done with a recipient that was clicked, beside it. It never takes the focus, so that the keyboard stays
/// with the box; the same stands in the box's menu. Owned by its box.
class AddressActions : public QFrame
{
    Q_OBJECT

public:
    explicit AddressActions(QWidget* parent);

    void Show(const QString& name, const QString& address, bool canRemove, const QRect& line);
    const QString& Name() const { return Name_; }
    const QString& Address() const { return Address_; }

Q_SIGNALS:
    void CopyWanted();
    void RemoveWanted();
    void ContactWanted();

private:
    QToolButton* AddButton(const char* name, const QString& text);

    QLabel* Label_;
    QToolButton* Remove_;
    QString Name_;
    QString Address_;
};
