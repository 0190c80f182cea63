// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

class ListViewObject;
class StationContext;
class StationDetails;
class cTolvaDatabase;
class clsCategory;

/// What a contact and the station wrote to each other.
namespace MessageHistory
{

/// As cTolvaDatabase::FillMessagesListView. folders: whose names the list shows. details: in the form of whose
/// country numbers are compared.
void Fill(StationContext& station, const clsCategory& folders, const StationDetails& details, ListViewObject* list,
          const QString& emailAddresses, const QString& phoneNumbers);

/// The same, but of these messages alone, which costs no walk through all of them: for who has an idea which they may
/// be. What Fill would not show is not shown here either. dao::Error for what cannot be read.
void FillAmong(cTolvaDatabase& station, ListViewObject& list, const QString& emailAddresses,
               const QString& phoneNumbers, const QList<qint32>& references);

} // namespace MessageHistory
