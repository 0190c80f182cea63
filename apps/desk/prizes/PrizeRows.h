// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/directory/clsKVContact.h"
#include "prizes/HoursText.h"
#include "prizes/cPrize.h"

#include <QList>
#include <QString>

#include <optional>

class DeskStation;

/// What the desk reads of prizes and winners beside the prize objects themselves, and how it says it. Everything may
/// raise dao::Error as the station's file does.
namespace PrizeRows
{
/// One row of the winners, its dates in local time.
struct Winner
{
    qint32 Reference = 0;
    qint32 PrizeReference = 0;
    qint32 WinnerReference = 0;
    qint32 AwardedByReference = 0;
    Date WonDate;
    Date SentDate;

    friend bool operator==(const Winner&, const Winner&) = default;
};

/// All that are stored for a prize, the earliest first; a prize's own slots stop at its count.
QList<Winner> WinnersOf(DeskStation& station, qint32 prize);
/// The newest win of a contact, whatever the prize.
std::optional<Winner> LastWinOf(DeskStation& station, qint32 contact);

/// "Loveday Tregenza"; words for a contact who is not in the directory, or has no name.
QString NameOf(DeskStation& station, qint32 contact);
/// Who is signed in under that reference; words for a user who is gone.
QString UserName(DeskStation& station, qint32 user);
/// The first of a contact's details that is filled in.
QString DetailOf(const clsKVContact& contact);
/// Quotation marks around a title; words for an empty one.
QString Quoted(const QString& title);
/// "14 November 2026" and "14 November 2026, 17:02".
QString DayWords(Date date);
QString MomentWords(Date date);

/// Whether the prize may go out at this moment, by its dates and hours; the stock is not asked. The hours go by
/// universal time, as they do in the list of what is available.
bool MayGoOutNow(const cPrize& prize);
/// Why it may not; empty when it may.
QString WhyNotNow(const cPrize& prize);
/// Why the lists of what is available leave it out, in a sentence; empty when they do not.
QString WhyInNoList(const cPrize& prize);
/// "3 of 5 left", "The prize has been won", ...
QString StockWords(const cPrize& prize);
/// "From 21 November 2026, until 30 November 2026"; empty without limits.
QString DatesWords(const cPrize& prize);
/// "Every day 06:00 to midnight", as a line of its own.
QString HoursWords(const WeekOfHours& hours);
/// That the hours are those of universal time, while the clock here shows another; otherwise empty.
QString ClockWords();

/// The station's last entry in the user log of this kind about a prize of that title, as "Petra, 21 November 2026,
/// 10:14"; empty when none is found.
QString WhoDid(DeskStation& station, int kind, const QString& title);
constexpr int KindEdited = 17;
constexpr int KindDeleted = 18;
} // namespace PrizeRows
