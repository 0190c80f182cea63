// SPDX-License-Identifier: Apache-2.0
#include "doctor/MailDiagnosis.h"

#include "common/ClockHelper.h"
#include "common/Enumerations.h"
#include "database/SettingText.h"
#include "database/StationSettings.h"
#include "platform/records/Recordset.h"
#include "sending/Outbox.h"

namespace
{
using Level = Finding::Level;

constexpr double LongestSilence = 7; // days
constexpr double ClockTolerance = 5; // minutes

QString StoredText(dao::Database& station, const QString& key)
{
    const auto rows = station.OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {key});
    return rows->NoMatch() ? QString() : rows->Collect(QStringLiteral("Value")).toString();
}

/// When the newest message was filed that came from outside; none when there is none. From the end of the table, so
/// that a large station costs no more than a small one.
Date LastArrival(dao::Database& station)
{
    constexpr int MostRows = 1000;
    const auto rows = station.OpenRecordset(
        QStringLiteral("SELECT TOP %1 [Received], [Category] FROM [Messages] ORDER BY [Reference] DESC").arg(MostRows),
        dao::dbOpenSnapshot);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const int category = rows->Collect(QStringLiteral("Category")).toInt();
        if (category != tmcOutbox && category != tmcSent && category != tmcDrafts)
            return Date(rows->Collect(QStringLiteral("Received")).toDouble());
    }
    return {};
}

OutboxCount CountWaiting(dao::Database& station, dao::Database* ledger)
{
    const auto rows =
        station.OpenRecordset(QStringLiteral("SELECT [%1] FROM [Messages] WHERE %2")
                                  .arg(Outbox::Columns().join(QStringLiteral("], [")), Outbox::Condition()),
                              dao::dbOpenSnapshot);
    return Outbox(*rows, ledger ? SendingLedger(*ledger).Open() : QHash<qint32, SendingRecord>()).Count();
}
} // namespace

Finding MailDiagnosis::OfArrivals(dao::Database& station)
{
    const QString subject = QStringLiteral("arrivals");
    const Date last = LastArrival(station);
    if (last.IsNone()) {
        return {subject, Level::Note, QStringLiteral("No message has come yet."),
                QStringLiteral("docs/hookups.md says how mails and text messages come in.")};
    }
    const QString when = ClockHelper::UTCToLocal(last).GeneralDate();
    if (ClockHelper::NowUTC().DayNumber() - last.DayNumber() > LongestSilence) {
        return {subject, Level::Note, QStringLiteral("The last message came on %1.").arg(when),
                QStringLiteral("Send one to the station and see whether it comes; the logs of the mail server and the "
                               "SMS gateway say why not.")};
    }
    return {subject, Level::Good, QStringLiteral("The last message came on %1.").arg(when), QString()};
}

Finding MailDiagnosis::OfClock(dao::Database& station)
{
    const QString subject = QStringLiteral("clock");
    const Date now = ClockHelper::NowUTC();
    const Date changed = StampDate(StoredText(station, StationSettings::MessagesLastChanged.Key));
    if (changed.DayNumber() - now.DayNumber() > ClockTolerance / Date::MinutesADay) {
        return {subject, Level::Problem,
                QStringLiteral("The station was changed on %1, which is later than this computer's clock says it is.")
                    .arg(ClockHelper::UTCToLocal(changed).GeneralDate()),
                QStringLiteral("Set the clocks of all computers of the station by a time server.")};
    }
    return {subject, Level::Good, QStringLiteral("The clock says %1.").arg(ClockHelper::CurrentTime().GeneralDate()),
            QString()};
}

Finding MailDiagnosis::OfSending(const QString& folder, dao::Database& station, dao::Database* ledger)
{
    const QString subject = QStringLiteral("sending");
    const OutboxCount waiting = CountWaiting(station, ledger);
    if (waiting.Decisions > 0) {
        return {subject, Level::Problem,
                QStringLiteral("%1 of %2 messages in the Outbox were refused, or may have gone out or not.")
                    .arg(waiting.Decisions)
                    .arg(waiting.All),
                QStringLiteral("See why with: tolva send %1 state").arg(folder)};
    }
    if (waiting.Late > 0) {
        return {subject, Level::Problem,
                QStringLiteral("%1 of %2 messages in the Outbox have waited for more than an hour.")
                    .arg(waiting.Late)
                    .arg(waiting.All),
                QStringLiteral("See why with: tolva send %1 state").arg(folder)};
    }
    if (StoredText(station, StationSettings::StationEmailAddress.Key).trimmed().isEmpty()) {
        return {subject, Level::Note,
                QStringLiteral("The station has no mail address, so no mail can be sent; %1 messages wait.")
                    .arg(waiting.All),
                QStringLiteral("tolva setting %1 %2 ADDRESS").arg(folder, StationSettings::StationEmailAddress.Key)};
    }
    return {subject, Level::Good,
            waiting.All == 1 ? QStringLiteral("1 message waits to be sent.")
                             : QStringLiteral("%1 messages wait to be sent.").arg(waiting.All),
            QString()};
}
