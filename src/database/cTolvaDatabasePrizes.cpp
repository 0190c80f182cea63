// SPDX-License-Identifier: Apache-2.0

// The prizes of a station as hosts see them.

#include "database/cTolvaDatabase.h"
#include "prizes/Hotlists.h"
#include "prizes/PrizeHistory.h"
#include "prizes/PrizeStore.h"
#include "prizes/WinnerStore.h"

Date cTolvaDatabase::LastPrizeChanged() const
{
    return Prizes_->LastChanged();
}

void cTolvaDatabase::SetLastPrizeChanged(Date changeDate)
{
    Prizes_->SetLastChanged(changeDate);
}

const StampMove& cTolvaDatabase::ToldPrizeMove() const
{
    return Prizes_->ToldStampMove();
}

cPrizePtr cTolvaDatabase::GetPrize(qint32 prizeReference, bool getWinners)
{
    return getWinners ? Winners_->PrizeWithWinners(prizeReference) : Prizes_->Get(prizeReference);
}

cPrizePtr cTolvaDatabase::GetPrize(dao::Recordset& row)
{
    return PrizeStore::Get(row);
}

cPrizeWinnerPtr cTolvaDatabase::GetPrizeWinner(qint32 reference)
{
    return Winners_->Get(reference);
}

bool cTolvaDatabase::GetPrizeWinners(const cPrizePtr& prize)
{
    return Winners_->FillSlots(prize);
}

bool cTolvaDatabase::SavePrize(const cPrizePtr& prize)
{
    return Prizes_->Save(prize);
}

bool cTolvaDatabase::DeletePrize(qint32 reference)
{
    return Prizes_->Delete(reference);
}

cPrizeWinnerPtr cTolvaDatabase::GetNewPrizeWinner(const cPrizePtr& prize)
{
    return Winners_->MakeNew(prize);
}

bool cTolvaDatabase::SavePrizeWinner(const cPrizeWinnerPtr& prizeWinner)
{
    return Winners_->Save(prizeWinner);
}

bool cTolvaDatabase::DeletePrizeWinner(qint32 reference)
{
    return Winners_->Delete(reference);
}

qint32 cTolvaDatabase::StoredWinners(qint32 prizeReference)
{
    return Winners_->CountStored(prizeReference);
}

bool cTolvaDatabase::CountStoredWinners(qint32 prizeReference)
{
    return Winners_->TakeStoredCount(prizeReference, WinnerStore::Counting::MayRaise);
}

bool cTolvaDatabase::RecountWinners(qint32 prizeReference)
{
    return Winners_->TakeStoredCount(prizeReference, WinnerStore::Counting::MayLower);
}

void cTolvaDatabase::FillPrizesListView(ListViewObject* lvwPrizes, qint32 contactReference)
{
    PrizeHistory::Fill(*Station_, lvwPrizes, contactReference);
}

qint32 cTolvaDatabase::GetNumberWinsForContact(qint32 contactReference)
{
    return PrizeHistory::NumberOfWins(*Station_, contactReference);
}

QString cTolvaDatabase::LoadAvailableHoursHotlist(QObject* parentForm)
{
    return Hotlists::LoadAvailableHours(*Station_, parentForm);
}

bool cTolvaDatabase::SaveAvailableHoursHotlist(const QString& availableHours, QObject* parentForm)
{
    return Hotlists::SaveAvailableHours(*Station_, availableHours, parentForm);
}
