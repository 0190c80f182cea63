// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class UserInterface;

namespace StationMaking
{
/// What holds a station: files in its folder, or a server.
struct Storage
{
    /// The name of the engine in whose format the station's file is; empty for what this machine is set to.
    QString Format;
    QString Connect; ///< Of the server; empty for files.
};

/// Makes a station with these details in a folder, which is made when it is not there, and with it its directory with
/// a first user who has all rights. The station's file gets its name when it is whole. In a directory that stands
/// already nobody is added, and the user must be one of it. Failure in words when that does not work; a station that
/// stands already is left alone. under: asked what is to be asked. country: of the station
/// (cTolvaDatabase::StationCountry); empty for this machine's default.
void Make(const QString& folder, const QString& name, const QString& phoneNumber, const QString& user,
          UserInterface& under, const QString& country = QString(), const Storage& storage = {});
/// Makes a folder for a station that is on a server already, as for one more computer. Failure in words.
void Join(const QString& folder, const QString& connect);
} // namespace StationMaking
