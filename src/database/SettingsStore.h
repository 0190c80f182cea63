// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/StationSettings.h"
#include "database/watch/ChangeStamp.h"
#include "platform/records/Recordset.h"

#include <QVariant>

class PendingError;
class StationContext;

namespace dao
{
class Transaction;
}

/// The named values of a station, which all its computers share: read from the file at each call and stored at once.
/// Owned by cTolvaDatabase, over its context, which outlives it.
class SettingsStore
{
public:
    enum class Failure
    {
        Shown, ///< To the user, whatever SilentMode says.
        Silent ///< Logged alone.
    };

    /// While it lives, values are read from the table that it has opened: for many in a row. Ends before the station is
    /// closed; does not nest.
    class Reading
    {
    public:
        explicit Reading(SettingsStore& settings);
        ~Reading() { Settings_.Opened_.reset(); }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

    private:
        SettingsStore& Settings_;
    };

    explicit SettingsStore(StationContext& station) : Station_(station) {}

    /// The stored text, or defaultValue when it is absent or cannot be read. Never fails.
    QVariant Value(const QString& itemName, const QVariant& defaultValue) const;
    /// Stores the value in its text form; one equal to the default has no row. 0 or an error number.
    int SetValue(const QString& itemName, const QVariant& value, const QVariant& defaultValue,
                 Failure failure = Failure::Shown);

    /// The default also for what cannot be understood.
    qint32 Read(const StationSettings::NumberSetting& setting) const;
    bool Read(const StationSettings::FlagSetting& setting) const;
    QString Read(const StationSettings::TextSetting& setting) const;
    /// 0 or an error number, which the user has been told.
    int Write(const StationSettings::NumberSetting& setting, qint32 value);
    int Write(const StationSettings::FlagSetting& setting, bool value);
    int Write(const StationSettings::TextSetting& setting, const QString& value);
    /// The same for one that is written with an empty default.
    int WriteOrClear(const StationSettings::TextSetting& setting, const QString& value);

    /// None when nothing was ever stamped.
    Date Stamp(const StationSettings::TextSetting& stamp) const;
    void SetStamp(const StationSettings::TextSetting& stamp, Date date);
    /// Moves a change stamp in the transaction of its change, and commits. move: how the stamp went; of nothing where
    /// it could not be stored with the change. False, with the reason in pending, when the change is not stored.
    bool CommitWithStamp(dao::Transaction& transaction, const StationSettings::TextSetting& stamp,
                         PendingError& pending, StampMove& move);

private:
    StationContext& Station_;
    std::unique_ptr<dao::Recordset> Opened_; ///< While a Reading lives.
};
