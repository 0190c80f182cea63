// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include <optional>

class DeskStation;
class QLineEdit;

/// The address from which the station's mail goes out, at all computers. Nothing is stored until OK, and the dialog
/// stays open for what is no address or could not be stored. The station is open and outlives it.
class MailAddressDialog : public QDialog
{
    Q_OBJECT

public:
    /// dao::Error where the address cannot be read: what was not read must not be written back.
    explicit MailAddressDialog(DeskStation& station, QWidget* parent = nullptr);

    void accept() override;

private:
    QString Stored() const;
    std::optional<QString> Store(const QString& address);
    bool MayReplace(const QString& theirs);

    DeskStation& Station_;
    QLineEdit* Address_;
    QString Shown_; ///< As it was stored when the dialog last looked.
};
