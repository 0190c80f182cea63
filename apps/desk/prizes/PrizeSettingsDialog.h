// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

class DeskStation;
class QCheckBox;
class QSpinBox;

/// The station's rules for awards. The station outlives it.
class PrizeSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PrizeSettingsDialog(DeskStation& station, QWidget* parent = nullptr);

    void accept() override;

private:
    DeskStation& Station_;
    QSpinBox* Days_;
    QCheckBox* NeedsRight_;
};
