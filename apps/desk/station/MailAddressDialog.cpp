// SPDX-License-Identifier: Apache-2.0
#include "MailAddressDialog.h"

#include "DeskStation.h"
#include "Words.h"
#include "common/UserInterface.h"
#include "compose/Addresses.h"
#include "database/StationSettings.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr int LongestAddress = 254;
constexpr int BoxWidth = 320;

const StationSettings::TextSetting& Setting()
{
    return StationSettings::StationEmailAddress;
}
} // namespace

MailAddressDialog::MailAddressDialog(DeskStation& station, QWidget* parent)
    : QDialog(parent), Station_(station), Address_(new QLineEdit(this)), Shown_(Stored())
{
    setObjectName(QStringLiteral("mailAddressDialog"));
    setWindowTitle(tr("The station's e-mail address"));
    Address_->setObjectName(QStringLiteral("stationEmailAddress"));
    Address_->setAccessibleName(tr("E-mail address"));
    Address_->setMinimumWidth(BoxWidth);
    Address_->setText(Shown_);
    Address_->setMaxLength(qMax(LongestAddress, static_cast<int>(Shown_.size())));
    Address_->setPlaceholderText(QStringLiteral("studio@example.org"));
    auto* hint = new QLabel(tr("Mail that is written from now on goes out from this address, at all computers of the "
                               "station. Without one no mail goes out."),
                            this);
    hint->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("ok"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    auto* form = new QFormLayout;
    form->addRow(tr("&E-mail address:"), Address_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(hint);
    layout->addStretch(1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &MailAddressDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Address_->setFocus();
}

QString MailAddressDialog::Stored() const
{
    return Station_.Database().DatabaseSetting(Setting().Key, Setting().Default).toString().trimmed();
}

void MailAddressDialog::accept()
{
    const QString typed = Address_->text().trimmed();
    if (!typed.isEmpty() && !Addresses::IsPlausible(typed)) {
        Address_->setFocus();
        Words::Warn(
            tr("\u201C%1\u201D is no e-mail address. Write the address alone, like studio@example.org.").arg(typed));
        return;
    }
    const QString now = Stored();
    if (now != Shown_ && now != typed) {
        Shown_ = now;
        const QString theirs =
            now.isEmpty() ? tr("taken the address away") : tr("set the address to \u201C%1\u201D").arg(now);
        if (!UserInterface::Confirm(
                tr("Another computer has %1 meanwhile. Do you want to replace that by what stands here?").arg(theirs)))
            return;
    }
    {
        const BusyPointer busy; // another computer may have to be waited for
        Station_.Database().SetDatabaseSetting(Setting().Key, typed, Setting().Default);
    }
    // A station that can only be read takes no setting and says nothing of it.
    if (Stored() != typed) {
        Words::Warn(tr("The address could not be stored, so the one before still holds. Check that this computer may "
                       "write in the station's folder, then press OK again."));
        return;
    }
    QDialog::accept();
}
