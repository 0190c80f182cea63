// SPDX-License-Identifier: Apache-2.0
#include "ContactBox.h"

#include "Words.h"
#include "contacts/ContactChooser.h"
#include "prizes/PrizeRows.h"
#include "station/DeskStation.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

ContactBox::ContactBox(DeskStation& station, const QString& name, const QString& accessibleName, QWidget* parent)
    : QWidget(parent),
      Station_(station),
      Name_(new QLineEdit(this)),
      Choose_(new QPushButton(tr("C&hoose..."), this)),
      Clear_(new QPushButton(tr("&None"), this))
{
    Name_->setObjectName(name);
    Name_->setAccessibleName(accessibleName);
    Name_->setReadOnly(true);
    Name_->setPlaceholderText(tr("Nobody"));
    Choose_->setObjectName(name + QStringLiteral("Choose"));
    Choose_->setAccessibleName(tr("%1: choose").arg(accessibleName));
    Choose_->setAutoDefault(false);
    Clear_->setObjectName(name + QStringLiteral("Clear"));
    Clear_->setAccessibleName(tr("%1: none").arg(accessibleName));
    Clear_->setAutoDefault(false);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Name_, 1);
    layout->addWidget(Choose_);
    layout->addWidget(Clear_);
    setFocusProxy(Choose_);
    // The proxy stands first in its place of the walk; the name is to be read, and copied, by the keyboard too.
    setTabOrder(Choose_, Clear_);
    setTabOrder(Clear_, Name_);
    connect(Choose_, &QPushButton::clicked, this, &ContactBox::Choose);
    connect(Clear_, &QPushButton::clicked, this, [this] {
        SetReference(0);
        Choose_->setFocus();
    });
    SetReference(0);
}

void ContactBox::SetReference(qint32 reference)
{
    QString name;
    try {
        name = reference > 0 ? PrizeRows::NameOf(Station_, reference) : QString();
    } catch (const dao::Error&) {
        name = tr("Contact %1 (the directory cannot be read now)").arg(reference);
    }
    const bool isNew = reference != Reference_;
    Reference_ = reference;
    Name_->setText(name);
    Name_->setToolTip(name);
    Name_->setCursorPosition(0);
    Clear_->setEnabled(reference > 0 && !IsReadOnly_);
    if (isNew)
        Q_EMIT Changed();
}

void ContactBox::SetReadOnly(bool readOnly)
{
    IsReadOnly_ = readOnly;
    Choose_->setEnabled(!readOnly);
    Clear_->setEnabled(!readOnly && Reference_ > 0);
}

void ContactBox::Choose()
{
    try {
        ContactChooser chooser(Station_.Directory(), window());
        if (chooser.exec() == QDialog::Accepted && chooser.Contact())
            SetReference(chooser.Contact()->Reference);
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}
