// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

class ListViewObject;
class StationContext;

/// What prizes have to do with one contact of the directory. Errors are kept as the station's last one.
namespace PrizeHistory
{

/// As cTolvaDatabase::FillPrizesListView.
void Fill(StationContext& station, ListViewObject* list, qint32 contactReference);
/// As cTolvaDatabase::GetNumberWinsForContact.
qint32 NumberOfWins(StationContext& station, qint32 contactReference);

} // namespace PrizeHistory
