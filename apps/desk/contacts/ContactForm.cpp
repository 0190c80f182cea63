// SPDX-License-Identifier: Apache-2.0
#include "ContactForm.h"

#include "ContactConflict.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

namespace
{
constexpr int LongestDetail = 255;
constexpr int OtherLines = 3;
} // namespace

ContactForm::ContactForm(QWidget* parent) : QWidget(parent), Other_(new QPlainTextEdit(this))
{
    auto* layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    Name_ = AddBox(*layout, "contactName", tr("&Name:"), tr("Name"));
    Mobile_ = AddBox(*layout, "contactMobile", tr("&Mobile:"), tr("Mobile number"));
    Telephone_ = AddBox(*layout, "contactTelephone", tr("&Telephone:"), tr("Telephone number"));
    Email_ = AddBox(*layout, "contactEmail", tr("&E-mail:"), tr("E-mail address"));
    SecondEmail_ = AddBox(*layout, "contactSecondEmail", tr("Second e-mai&l:"), tr("Second e-mail address"));
    Other_->setObjectName(QStringLiteral("contactOther"));
    Other_->setAccessibleName(tr("Other details"));
    Other_->setTabChangesFocus(true);
    Other_->setMinimumHeight(Other_->fontMetrics().lineSpacing() * OtherLines);
    auto* label = new QLabel(tr("&Other:"), this);
    label->setBuddy(Other_);
    layout->addRow(label, Other_);
    connect(Other_, &QPlainTextEdit::textChanged, this, &ContactForm::Changed);
}

QLineEdit* ContactForm::AddBox(QFormLayout& layout, const char* name, const QString& label, const QString& accessible)
{
    auto* box = new QLineEdit(this);
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(accessible);
    box->setMaxLength(LongestDetail);
    connect(box, &QLineEdit::textChanged, this, &ContactForm::Changed);
    auto* caption = new QLabel(label, this);
    caption->setBuddy(box);
    layout.addRow(caption, box);
    return box;
}

void ContactForm::SetContact(const clsKVContact& contact)
{
    Type(contact);
    // What the boxes make of it: a line break in a name is a blank there, and no change of the user's.
    Shown_ = contact;
    Boxed_ = Contact();
    Q_EMIT Changed();
}

void ContactForm::Type(const clsKVContact& contact)
{
    {
        const QSignalBlocker blocker(this);
        Name_->setText(contact.Name);
        Mobile_->setText(contact.Mobile);
        Telephone_->setText(contact.Telephone);
        Email_->setText(contact.Email);
        SecondEmail_->setText(contact.SecondEmail);
        Other_->setPlainText(contact.Other);
        for (QLineEdit* box : {Name_, Mobile_, Telephone_, Email_, SecondEmail_})
            box->setCursorPosition(0);
    }
    Q_EMIT Changed();
}

clsKVContact ContactForm::Contact() const
{
    clsKVContact contact;
    contact.Reference = Shown_.Reference;
    contact.Name = Name_->text().simplified();
    contact.Mobile = Mobile_->text().trimmed();
    contact.Telephone = Telephone_->text().trimmed();
    contact.Email = Email_->text().trimmed();
    contact.SecondEmail = SecondEmail_->text().trimmed();
    contact.Other = Other_->toPlainText().trimmed();
    return contact;
}

clsKVContact ContactForm::Edited() const
{
    return ContactConflict::Combined(Boxed_, Contact(), Shown_);
}

bool ContactForm::IsChanged() const
{
    return Contact() != Boxed_;
}

QString ContactForm::TakeProblem()
{
    if (!Contact().Name.isEmpty())
        return QString();
    FocusName();
    return tr("A contact needs a name.");
}

void ContactForm::FocusName()
{
    Name_->setFocus(Qt::OtherFocusReason);
}
