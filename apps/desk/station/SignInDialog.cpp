// SPDX-License-Identifier: Apache-2.0
#include "SignInDialog.h"

#include "platform/widgets/Icons.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

SignInDialog::SignInDialog(const QStringList& users, const QString& proposed, QWidget* parent)
    : QDialog(parent), List_(new QListWidget(this))
{
    setObjectName(QStringLiteral("signInDialog"));
    setWindowTitle(tr("Sign in"));
    setWindowIcon(Icons::Get(QStringLiteral("tolva")));
    auto* question = new QLabel(tr("&Who are you?"), this);
    question->setBuddy(List_);
    List_->setObjectName(QStringLiteral("users"));
    List_->setAccessibleName(tr("Users of this station"));
    List_->setIconSize(QSize(16, 16));
    for (const QString& user : users) {
        auto* item = new QListWidgetItem(Icons::Get(QStringLiteral("head")), user, List_);
        if (user.compare(proposed, Qt::CaseInsensitive) == 0)
            List_->setCurrentItem(item);
    }
    if (!List_->currentItem())
        List_->setCurrentRow(0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Sign in"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(List_, &QListWidget::itemActivated, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addWidget(List_);
    layout->addWidget(buttons);
    resize(300, 280);
}

QString SignInDialog::User() const
{
    return List_->currentItem() ? List_->currentItem()->text() : QString();
}
