// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QDialog>

class DeskStation;
class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

/// Lets the user choose a prize for a contact: those of this hour, or all available ones. The station outlives it.
class PrizeChooser : public QDialog
{
    Q_OBJECT

public:
    /// Raises dao::Error when the prizes cannot be read.
    PrizeChooser(DeskStation& station, const clsKVContact& winner, QWidget* parent = nullptr);

    /// The chosen prize; 0 for none.
    qint32 Prize() const;
    /// Who is to win it; the user may have chosen somebody else.
    const clsKVContact& Winner() const { return Winner_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Fill();
    void ShowWinner();
    void ChooseWinner();

    DeskStation& Station_;
    clsKVContact Winner_;
    QLabel* Heading_;
    QLineEdit* Find_;
    QListWidget* List_;
    QLabel* Empty_;
    QCheckBox* All_;
    QPushButton* Award_;
};
