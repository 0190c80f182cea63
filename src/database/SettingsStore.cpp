// SPDX-License-Identifier: Apache-2.0
#include "database/SettingsStore.h"

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/LastAccess.h"
#include "database/SettingText.h"
#include "database/StationContext.h"
#include "platform/records/Transaction.h"

using namespace StationSettings;

namespace
{
std::unique_ptr<dao::Recordset> OpenSettings(dao::Database& database)
{
    auto recordset = database.OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    recordset->SetIndex(QStringLiteral("Main"));
    return recordset;
}
} // namespace

SettingsStore::Reading::Reading(SettingsStore& settings) : Settings_(settings)
{
    // Where it cannot be opened, each value tries by itself.
    PendingError ignored;
    ignored.Try([&] { settings.Opened_ = OpenSettings(settings.Station_.OpenedDatabase()); });
}

QVariant SettingsStore::Value(const QString& itemName, const QVariant& defaultValue) const
{
    // Reading a setting never fails: its caller goes on with the default.
    QVariant value = defaultValue;
    PendingError ignored;
    ignored.Try([&] {
        const auto recordset = Opened_ ? nullptr : OpenSettings(Station_.OpenedDatabase());
        dao::Recordset* const settings = Opened_ ? Opened_.get() : recordset.get();
        value = DAO_DatabaseFunctions::ReadSettingValue(settings, itemName, defaultValue);
    });
    return value;
}

int SettingsStore::SetValue(const QString& itemName, const QVariant& value, const QVariant& defaultValue,
                            Failure failure)
{
    const bool isSilent = failure == Failure::Silent;
    int number = 0;
    PendingError pending;
    const bool isLocated = pending.Try([&] {
        const auto recordset = OpenSettings(Station_.OpenedDatabase());
        number = DAO_DatabaseFunctions::WriteSettingValue(recordset.get(), itemName, value, defaultValue, isSilent);
    });
    if (isLocated)
        return number;
    ReportProblem(QStringLiteral("locating the database setting : ") + itemName, pending.Number(), isSilent,
                  pending.Description());
    return pending.Number();
}

qint32 SettingsStore::Read(const NumberSetting& setting) const
{
    return SettingNumber(Value(setting.Key, setting.Default), setting.Default);
}

bool SettingsStore::Read(const FlagSetting& setting) const
{
    return SettingFlag(Value(setting.Key, setting.Default), setting.Default);
}

QString SettingsStore::Read(const TextSetting& setting) const
{
    return Value(setting.Key, setting.Default).toString();
}

int SettingsStore::Write(const NumberSetting& setting, qint32 value)
{
    return SetValue(setting.Key, value, setting.Default);
}

int SettingsStore::Write(const FlagSetting& setting, bool value)
{
    return SetValue(setting.Key, value, setting.Default);
}

int SettingsStore::Write(const TextSetting& setting, const QString& value)
{
    return SetValue(setting.Key, value, setting.Default);
}

int SettingsStore::WriteOrClear(const TextSetting& setting, const QString& value)
{
    return SetValue(setting.Key, value, QString());
}

Date SettingsStore::Stamp(const TextSetting& stamp) const
{
    return StampDate(Value(stamp.Key, stamp.Default));
}

void SettingsStore::SetStamp(const TextSetting& stamp, Date date)
{
    Write(stamp, StampText(date));
}

/// Where every change is stamped, what closing notes of the last access goes along, so that a program that closes at
/// once has nothing more to write. A stamp that cannot be stored does not take the change with it: it is tried once
/// more behind the commit, when the user may be told without keeping the station locked.
bool SettingsStore::CommitWithStamp(dao::Transaction& transaction, const TextSetting& stamp, PendingError& pending,
                                    StampMove& move)
{
    move = {};
    StampMove made;
    PendingError ofStamp;
    const bool isStamped =
        ofStamp.Try([&] { made = MoveStamp(Station_.OpenedDatabase(), stamp.Key, ClockHelper::NowUTC()); });
    if (Station_.StampsEveryChange)
        NoteLastAccess(Station_);
    if (!pending.Try([&] { transaction.Commit(); }))
        return false;
    if (isStamped)
        move = made;
    else
        SetStamp(stamp, ClockHelper::NowUTC());
    return true;
}
