#include "AwardRules.h"

#include "common/ClockHelper.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"

#include <cmath>

namespace
{
const QString NeedsRightKey = QStringLiteral("Prizes.AwardNeedsRight");
const QString EligibleDaysKey = QStringLiteral("Prizes.EligibleDays");
constexpr int DefaultEligibleDays = 30;
constexpr int MostEligibleDays = 3650;
} // namespace

bool AwardRules::NeedsRight(const cTolvaDatabase& database)
{
    return SettingNumber(database.DatabaseSetting(NeedsRightKey, 0), 0) != 0;
}

int AwardRules::EligibleDays(const cTolvaDatabase& database)
{
    const qint32 days =
        SettingNumber(database.DatabaseSetting(EligibleDaysKey, DefaultEligibleDays), DefaultEligibleDays);
    return days < 0 ? DefaultEligibleDays : qMin(days, MostEligibleDays);
}

std::optional<AwardRules::EarlierWin> AwardRules::RecentWin(const cTolvaDatabase& database, qint32 contact)
{
    const int days = EligibleDays(database);
    if (days == 0)
        return std::nullopt;
    const auto wins = database.OpenSnapshot(
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
