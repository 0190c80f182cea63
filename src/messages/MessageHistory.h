// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class ListViewObject;
class StationContext;
class StationDetails;
class clsCategory;

/// What a contact and the station wrote to each other.
namespace MessageHistory
{

/// As cTolvaDatabase::FillMessagesListView. folders: whose names the list shows. details: in the form of whose
/// country numbers are compared.
void Fill(StationContext& station, const clsCategory& folders, const StationDetails& details, ListViewObject* list,
          const QString& emailAddresses, const QString& phoneNumbers);

} // namespace MessageHistory
