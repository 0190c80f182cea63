// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

class DeskStation;
class QLineEdit;

/// The address from which the station's mail goes out, at all computers. Nothing is stored until OK, and the dialog
/// stays open for what is no address or could not be stored. The station is open and outlives it.
class MailAddressDialog : public QDialog
{
    Q_OBJECT

public:
    explicit MailAddressDialog(DeskStation& station, QWidget* parent = nullptr);

    void accept() override;

private:
    QString Stored() const;

    DeskStation& Station_;
    QLineEdit* Address_;
    QString Shown_; ///< As it was stored when the dialog last looked.
};
