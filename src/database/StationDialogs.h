// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

class QObject;
class UserInterface;
class cTolvaDatabase;

namespace dao
{
class Recordset;
}

/// The dialogs in which a user works on a station, which a user interface may have besides the boxes and questions of
/// UserInterface: its class derives from both. Each operation is answered here as by somebody who cancels, or who sees
/// nothing. Used on the user interface thread alone.
class TOLVA_EXPORT StationDialogs
{
public:
    virtual ~StationDialogs() = default;

    /// Those of a user interface: the object itself, or one that shows nothing where it has none.
    static StationDialogs& Of(UserInterface& userInterface);
    /// Those of the user interface in force.
    static StationDialogs& InForce();

    /// The dialog of the station's settings. False when the user cancelled it. Closing its window counts as confirmed,
    /// though it stores nothing.
    virtual bool DatabaseSettings(cTolvaDatabase& database);
    /// The dialog that chooses a hotlist to load, or names one to save. hotListType: 0, the hours of prizes (prefix
    /// "HR."). settings: the table Settings, on its index Main. The whole Item, or empty when the user chose none.
    virtual QString GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode, QObject* parentForm);
    /// Shows or hides the window that says that a backup is being made by itself. A failure stops nothing.
    virtual void SetBackupNotice(bool shown);
};
