// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class cTolvaDatabase;

/// Where this computer keeps the search indexes of an account: in its cache folder, one file a station.
namespace SearchPlace
{

/// Whether this machine's settings want one at all.
bool IsWanted();
/// The file for the open station. dao::Error where the station cannot be read; asks a server anew.
QString FileFor(const cTolvaDatabase& station);
/// The file for the station that SearchFollowing::IdentityOf answered this for.
QString FileOf(const QByteArray& identity);
/// Where the station itself lies.
QByteArray PlaceOf(const cTolvaDatabase& station);
/// The folder of all of them.
QString Folder();

} // namespace SearchPlace
