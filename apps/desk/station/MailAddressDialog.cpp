// SPDX-License-Identifier: Apache-2.0
#include "MailAddressDialog.h"

#include "DeskStation.h"
#include "StoredSetting.h"
#include "Words.h"
#include "common/UserInterface.h"
#include "compose/Addresses.h"
#include "platform/records/Transaction.h"

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
    const BusyPointer busy; // another computer may have to be waited for
    return StoredSetting::Read(Station_.Database(), Setting()).trimmed();
}

/// What another computer has stored since the dialog looked, and then nothing is written; none where the address is
/// stored. Nobody stores another one between the look and the write.
std::optional<QString> MailAddressDialog::Store(const QString& address)
{
    const BusyPointer busy;
    const cTolvaDatabase& station = Station_.Database();
    dao::Transaction change = station.BeginChange();
    const QString now = StoredSetting::Read(station, Setting()).trimmed();
    if (now != Shown_ && now != address)
        return now;
    StoredSetting::Write(station, Setting(), address);
    change.Commit();
    return std::nullopt;
}

/// Whether what another computer stored meanwhile is to be replaced.
bool MailAddressDialog::MayReplace(const QString& theirs)
{
    Shown_ = theirs;
    const QString words =
        theirs.isEmpty() ? tr("taken the address away") : tr("set the address to \u201C%1\u201D").arg(theirs);
    return UserInterface::Confirm(
        tr("Another computer has %1 meanwhile. Do you want to replace that by what stands here?").arg(words));
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
    try {
        while (const std::optional<QString> theirs = Store(typed)) {
            if (!MayReplace(*theirs))
                return;
        }
    } catch (const dao::Error& error) {
        Words::Warn(tr("The address could not be stored. %1").arg(Station_.Words(error.Number(), error.Description())));
        return;
    }
    QDialog::accept();
}
