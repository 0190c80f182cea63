// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

#include <QDialog>

class ContactForm;

/// Takes in a new contact and saves it in the directory, which outlives the dialog. It stays open, with all that was
/// typed, until that worked or the user gives up.
class ContactDialog : public QDialog
{
    Q_OBJECT

public:
    /// proposed: what the boxes hold at first.
    ContactDialog(EmbeddedDirectory& directory, const clsKVContact& proposed, QWidget* parent = nullptr);

    /// The saved contact; null unless it was accepted.
    clsKVContactPtr Contact() const { return Contact_; }

    void accept() override;

private:
    EmbeddedDirectory& Directory_;
    ContactForm* Form_;
    clsKVContactPtr Contact_;
};
