// SPDX-License-Identifier: Apache-2.0
#include "prizes/Awarding.h"

#include "common/ClockHelper.h"
#include "common/UserInterface.h"
#include "database/LastError.h"
#include "database/SettingText.h"
#include "database/StationSettings.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/directory/clsKVUser.h"
#include "prizes/PrizeHour.h"

#include <QScopeGuard>

#include <cmath>

namespace
{

const clsKVUser* UserOf(const cTolvaDatabase& database)
{
    return database.DirectoryDatabase() ? database.DirectoryDatabase()->CurrentUser() : nullptr;
}

/// The programs say more about a refusal than the store's own boxes.
auto Silently(cTolvaDatabase& database)
{
    const bool silent = database.SilentMode();
    database.SetSilentMode(true);
    return qScopeGuard([&database, silent] { database.SetSilentMode(silent); });
}

qint32 NumberOf(const cTolvaDatabase& database, const StationSettings::NumberSetting& setting)
{
    return SettingNumber(database.DatabaseSetting(setting.Key, setting.Default), setting.Default);
}

void Store(cTolvaDatabase& database, const StationSettings::NumberSetting& setting, qint32 value)
{
    database.SetDatabaseSetting(setting.Key, value, setting.Default);
}

Awarding::Obstacle StockObstacle(const cPrize& prize)
{
    if (prize.NumberSupplied() <= 0)
        return Awarding::Obstacle::NoneSupplied;
    return prize.NumberWinners() < prize.NumberSupplied() ? Awarding::Obstacle::None : Awarding::Obstacle::UsedUp;
}
} // namespace

bool Awarding::NeedsRight() const
{
    return NumberOf(Database_, StationSettings::AwardNeedsRight) != 0;
}

void Awarding::SetNeedsRight(bool needsRight)
{
    Store(Database_, StationSettings::AwardNeedsRight, needsRight ? 1 : 0);
}

int Awarding::EligibleDays() const
{
    const qint32 days = NumberOf(Database_, StationSettings::EligibleDays);
    return days < 0 ? StationSettings::EligibleDays.Default : qMin(days, MostEligibleDays);
}

void Awarding::SetEligibleDays(int days)
{
    Store(Database_, StationSettings::EligibleDays, days);
}

Awarding::Obstacle Awarding::WhyNotAwardable(qint32 prize)
{
    if (!Database_.IsOpen())
        return Obstacle::Closed;
    const clsKVUser* user = UserOf(Database_);
    if (!user)
        return Obstacle::NobodySignedIn;
    if (NeedsRight() && !user->ManagePrizes())
        return Obstacle::NoRight;
    Settle(prize);
    const cPrizePtr stored = Database_.GetPrize(prize, false);
    if (!stored)
        RaiseLastError(Database_);
    return stored ? StockObstacle(*stored) : Obstacle::PrizeGone;
}

Awarding::Obstacle Awarding::WhyCannotWin(qint32 contact)
{
    return contact > HighestWinnerReference ? Obstacle::WinnerNumberTooHigh : Obstacle::None;
}

Awarding::NotNow Awarding::WhyNotNow(const cPrize& prize)
{
    const Date now = ClockHelper::CurrentTime();
    if (!prize.StartDate().IsNone() && now < prize.StartDate())
        return NotNow::NotYet;
    if (!prize.EndDate().IsNone() && now > prize.EndDate())
        return NotNow::Over;
    const PrizeHour hour = PrizeHour::At(ClockHelper::NowUTC());
    return prize.AvailableForHour(hour.WeekDay, hour.Hour) ? NotNow::None : NotNow::WrongHour;
}

std::optional<Awarding::EarlierWin> Awarding::RecentWin(qint32 contact) const
{
    const int days = EligibleDays();
    if (days == 0)
        return std::nullopt;
    const auto wins = Database_.OpenSnapshot(
        QStringLiteral("SELECT [PrizeReference], [WonDate] FROM [PrizeWinners] WHERE [WinnerReference]=%1 "
                       "ORDER BY [WonDate] DESC")
            .arg(contact));
    if (wins->AtEOF())
        return std::nullopt;
    const Date won = ClockHelper::UTCToLocal(Date(wins->Collect(QStringLiteral("WonDate")).toDouble()));
    const double age = std::floor(ClockHelper::CurrentTime().DayNumber()) - std::floor(won.DayNumber());
    if (won.IsNone() || age >= days)
        return std::nullopt;
    return EarlierWin{wins->Collect(QStringLiteral("PrizeReference")).toInt(), won};
}

Awarding::Result Awarding::Award(qint32 prize, qint32 contact, const QString& notes)
{
    Result result{WhyNotAwardable(prize), nullptr};
    if (result.Why == Obstacle::None)
        result.Why = WhyCannotWin(contact);
    if (result.Why != Obstacle::None)
        return result;
    const cPrizePtr stored = Database_.GetPrize(prize, false);
    const cPrizeWinnerPtr winner = Database_.GetNewPrizeWinner(stored);
    if (winner) {
        winner->SetWinnerReference(contact);
        winner->SetNotes(notes);
        const auto restore = Silently(Database_);
        const BusyPointer busy; // another computer may have to be waited for
        if (Database_.SavePrizeWinner(winner))
            return {Obstacle::None, winner};
    }
    // Somebody was quicker since the look at the stock, unless the file failed. Asking anew would forget its error.
    result.Why = Obstacle::NotStored;
    if (Database_.LastErrorNumber() == 0) {
        const Obstacle now = WhyNotAwardable(prize);
        result.Why = now == Obstacle::None ? Obstacle::NotStored : now;
    }
    return result;
}

bool Awarding::MayTakeBack(const cPrizeWinner& winner) const
{
    const clsKVUser* user = UserOf(Database_);
    return user && (user->ManagePrizes() || user->Reference() == winner.AwardedByReference());
}

bool Awarding::TakeBack(qint32 winner)
{
    const bool raise = Database_.RaiseEvents();
    cPrizePtr prize;
    {
        // Lists hear of the prize once, when it is stored for good.
        Database_.SetRaiseEvents(false);
        const auto events = qScopeGuard([this, raise] { Database_.SetRaiseEvents(raise); });
        const auto boxes = Silently(Database_);
        const BusyPointer busy;
        dao::Transaction transaction = Database_.BeginChange();
        const cPrizeWinnerPtr stored = Database_.GetPrizeWinner(winner);
        if (!stored)
            return Database_.LastErrorNumber() == 0;
        if (!Database_.DeletePrizeWinner(winner))
            return false;
        // The row may never have been counted, and took a unit off the prize all the same.
        Settle(stored->PrizeReference());
        transaction.Commit();
        prize = Database_.GetPrize(stored->PrizeReference(), false);
    }
    if (prize && raise)
        Q_EMIT Database_.PrizeSaved(prize, true);
    return true;
}

AwardStanding Awarding::Standing(qint32 prize)
{
    AwardStanding standing;
    standing.Stored = Database_.StoredWinners(prize);
    if (standing.Stored < 0)
        RaiseLastError(Database_);
    const cPrizePtr stored = Database_.GetPrize(prize, false);
    if (!stored) {
        RaiseLastError(Database_);
        return standing;
    }
    standing.IsPrizeThere = true;
    standing.Title = stored->Title();
    standing.Units = stored->NumberSupplied();
    standing.Counted = stored->NumberWinners();
    return standing;
}

AwardStanding Awarding::Settle(qint32 prize)
{
    AwardStanding standing = Standing(prize);
    // While units are left, other software may be between storing its winner and counting it, and would count it twice.
    const bool isShort =
        standing.IsPrizeThere && standing.Stored >= standing.Units && standing.Counted < standing.Stored;
    if (!isShort)
        return standing;
    if (!Database_.CountStoredWinners(prize))
        RaiseLastError(Database_);
    return Standing(prize);
}
