// SPDX-License-Identifier: Apache-2.0
#include "PrizeSettingsDialog.h"

#include "prizes/PrizeAwards.h"
#include "station/DeskStation.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

PrizeSettingsDialog::PrizeSettingsDialog(DeskStation& station, QWidget* parent)
    : QDialog(parent),
      Station_(station),
      Days_(new QSpinBox(this)),
      NeedsRight_(new QCheckBox(tr("Only users who may &manage prizes award them"), this))
{
    setObjectName(QStringLiteral("prizeSettings"));
    setWindowTitle(tr("Prizes"));
    Days_->setObjectName(QStringLiteral("eligibleDays"));
    Days_->setAccessibleName(tr("Days that a winner waits for the next prize"));
    Days_->setRange(0, PrizeAwards::MostEligibleDays);
    Days_->setSpecialValueText(tr("Never ask"));
    Days_->setSuffix(tr(" days"));
    Days_->setValue(PrizeAwards::EligibleDays(station));
    NeedsRight_->setObjectName(QStringLiteral("awardNeedsRight"));
    NeedsRight_->setChecked(PrizeAwards::NeedsRight(station));
    auto* hint = new QLabel(tr("Awarding a prize to somebody who won in these days asks first."), this);
    hint->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("ok"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    auto* form = new QFormLayout;
    form->addRow(tr("A &winner waits:"), Days_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(hint);
    layout->addWidget(NeedsRight_);
    layout->addStretch(1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &PrizeSettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Days_->setFocus();
}

void PrizeSettingsDialog::accept()
{
    PrizeAwards::SetEligibleDays(Station_, Days_->value());
    PrizeAwards::SetNeedsRight(Station_, NeedsRight_->isChecked());
    QDialog::accept();
}
