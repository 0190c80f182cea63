// SPDX-License-Identifier: Apache-2.0

// The commands of the prizes list. What needs a window is handed to the host in an event.

#include "common/UserInterface.h"
#include "prizes/controls/uPrizesList.h"

namespace
{
} // namespace

cPrizePtr uPrizesList::SelectedPrize(bool withWinners) const
{
    return clsTolvaDatabase_ ? clsTolvaDatabase_->GetPrize(SelectedReference_, withWinners) : nullptr;
}

void uPrizesList::NewCommand()
{
    if (!clsTolvaDatabase_)
        return;
    const auto prize = std::make_shared<cPrize>();
    if (clsCurrentUser_)
        prize->SetAddedByReference(clsCurrentUser_->Reference());
    const QPointer<uPrizesList> self(this);
    Q_EMIT NewPrize(prize);
    if (self)
        UpdateDisplay();
}

void uPrizesList::OpenCommand()
{
    if (const cPrizePtr prize = SelectedPrize(true))
        Q_EMIT OpenPrize(prize);
}

void uPrizesList::PrintCommand()
{
    if (const cPrizePtr prize = SelectedPrize(true))
        Q_EMIT PrintPrize(prize);
}

/// The count of winners and the last win stay those of the source.
void uPrizesList::CopyCommand()
{
    const cPrizePtr prize = SelectedPrize(false);
    if (!prize)
        return;
    const cPrizePtr copy = prize->CopyAsNew();
    copy->SetTitle(QStringLiteral("Copy of ") + prize->Title());
    Q_EMIT NewPrize(copy);
}

void uPrizesList::DeleteCommand()
{
    if (!clsTolvaDatabase_ || SelectedReference_ <= 0)
        return;
    const cPrizePtr prize = SelectedPrize(true);
    if (!prize)
        return;
    // The boxes run window events: the selection, the station or the list itself may be another one after them.
    const QPointer<uPrizesList> self(this);
    const QPointer<cTolvaDatabase> database = clsTolvaDatabase_;
    if (!UserInterface::Confirm(
            QStringLiteral("Are you sure you want to delete this Prize (and any details of it's winners))?")))
        return;
    const qint32 winners = prize->NumberWinners();
    if (winners > 0) {
        const QString plural = winners > 1 ? QStringLiteral("s") : QString();
        if (!UserInterface::Confirm(
                QStringLiteral("This Prize has already been allocated to %1 winner%2!\n\nAre you ABSOLUTELY sure "
                               "you want to delete this Prize and winner allocations?")
                    .arg(QString::number(winners), plural)))
            return;
    }
    if (database && database->DeletePrize(prize->Reference()) && self)
        UpdateDisplay();
}
