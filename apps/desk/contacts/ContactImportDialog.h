// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "contacts/ContactImport.h"

#include <QDialog>

class QRadioButton;

/// Shows what a file of business cards would bring: who is new, who is known by what, which cards are cut off. The user
/// says what becomes of the known ones, or gives up. Changes nothing itself.
class ContactImportDialog : public QDialog
{
    Q_OBJECT

public:
    ContactImportDialog(const QList<ContactImport::Entry>& plan, const QStringList& problems,
                        QWidget* parent = nullptr);

    ContactImport::Duplicates Duplicates() const;

    /// Rows on show at most; of the known ones all come first.
    static constexpr int MostRows = 500;

private:
    QRadioButton* Skip_ = nullptr;
    QRadioButton* Update_ = nullptr;
    QRadioButton* Add_ = nullptr;
};
