// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "contacts/ContactSearch.h"
#include "platform/directory/EmbeddedDirectory.h"

#include <QDialog>

class ListView;
class QLabel;
class QLineEdit;
class QPushButton;

/// Lets the user choose one contact of the directory, or take in a new one on the spot: typing narrows the list, the
/// arrow keys walk it from the box, Enter chooses. The directory outlives it.
class ContactChooser : public QDialog
{
    Q_OBJECT

public:
    /// Raises dao::Error when the contacts cannot be read.
    explicit ContactChooser(EmbeddedDirectory& directory, QWidget* parent = nullptr);

    /// What is searched for at first: a name, a part of an address, a number in any form.
    void SetSearchText(const QString& text);
    /// What the accepting button says; "Choose" until it is set. May have an access key.
    void SetAction(const QString& text);
    /// What boxes of a new contact hold at first. Without it, what was searched for becomes the name or number.
    void SetProposal(const clsKVContact& contact);

    /// The chosen contact; null unless the dialog was accepted.
    clsKVContactPtr Contact() const { return Contact_; }

    void accept() override;

    /// Rows on show at most; who has more types another letter.
    static constexpr int MostRows = 200;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Fill();
    void MakeNew();
    clsKVContactPtr Selected() const;

    EmbeddedDirectory& Directory_;
    ContactSearch Search_;
    QList<clsKVContactPtr> Found_;
    clsKVContact Proposal_;
    clsKVContactPtr Contact_;
    QLineEdit* Box_;
    ListView* List_;
    QLabel* Note_;
    QPushButton* Choose_;
};
