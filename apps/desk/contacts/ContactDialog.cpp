// SPDX-License-Identifier: Apache-2.0
#include "ContactDialog.h"

#include "ContactForm.h"
#include "ContactSaving.h"
#include "platform/widgets/Icons.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

ContactDialog::ContactDialog(EmbeddedDirectory& directory, const clsKVContact& proposed, QWidget* parent)
    : QDialog(parent), Directory_(directory), Form_(new ContactForm(this))
{
    setObjectName(QStringLiteral("contactDialog"));
    setWindowTitle(tr("New contact"));
    setWindowIcon(Icons::Get(QStringLiteral("users")));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    QPushButton* save = buttons->button(QDialogButtonBox::Save);
    save->setObjectName(QStringLiteral("saveContact"));
    save->setText(tr("&Save"));
    save->setDefault(true);
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Form_, 1);
    layout->addWidget(buttons);
    Form_->Type(proposed);
    Form_->FocusName();
    connect(buttons, &QDialogButtonBox::accepted, this, &ContactDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(sizeHint().expandedTo(QSize(420, 0)));
}

void ContactDialog::accept()
{
    auto contact = std::make_shared<clsKVContact>();
    if (!ContactSaving::SaveNew(Directory_, *Form_, *contact))
        return;
    Contact_ = contact;
    QDialog::accept();
}
