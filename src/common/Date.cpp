// SPDX-License-Identifier: Apache-2.0
#include "common/Date.h"

#include "common/LocaleDates.h"

#include <QLocale>

#include <cmath>

namespace
{
constexpr qint64 DayZero = 2415019; // Julian day of 30 December 1899
constexpr qint64 MillisecondsPerDay = 86400000;

double DayNumberOf(QDate date, QTime time)
{
    if (!date.isValid() || !time.isValid())
        return 0;
    const auto day = static_cast<double>(date.toJulianDay() - DayZero);
    const double fraction = time.msecsSinceStartOfDay() / static_cast<double>(MillisecondsPerDay);
    // Before day zero the fraction still counts forwards from midnight, away from zero: -1.25 is six in the morning.
    return day < 0 ? day - fraction : day + fraction;
}

QDateTime Moment(double dayNumber, Qt::TimeSpec zone)
{
    const qint64 milliseconds = std::llround(dayNumber * static_cast<double>(MillisecondsPerDay));
    return QDateTime(QDate::fromJulianDay(DayZero + milliseconds / MillisecondsPerDay),
                     QTime::fromMSecsSinceStartOfDay(static_cast<int>(milliseconds % MillisecondsPerDay)), zone);
}

QString Padded(int number, int width)
{
    return QString::number(number).rightJustified(width, u'0');
}

/// One run of a format letter that means something; empty when it does not.
QString FormatPiece(QChar letter, qsizetype length, const QDateTime& moment, bool afterHours)
{
    const QLocale locale;
    const QDate date = moment.date();
    const QTime time = moment.time();
    const int width = static_cast<int>(length);
    switch (letter.unicode()) {
    case u'y':
        return length == 4 ? Padded(date.year(), 4) : Padded(date.year() % 100, 2);
    case u'm':
        if (length > 2)
            return locale.monthName(date.month(), length == 3 ? QLocale::ShortFormat : QLocale::LongFormat);
        return Padded(afterHours ? time.minute() : date.month(), width);
    case u'd':
        if (length == 6)
            return locale.toString(date, QLocale::LongFormat);
        if (length == 5)
            return LocaleDates::ShortDate(date, locale);
        if (length > 2)
            return locale.dayName(date.dayOfWeek(), length == 3 ? QLocale::ShortFormat : QLocale::LongFormat);
        return Padded(date.day(), width);
    case u'h':
        return Padded(time.hour(), width);
    case u'n':
        return Padded(time.minute(), width);
    default:
        return Padded(time.second(), width);
    }
}

/// How many letters of the run at the front of pattern make one piece; 0 when they stand for themselves.
qsizetype PieceLength(QStringView pattern)
{
    const QChar letter = pattern.front();
    qsizetype run = 1;
    while (run < pattern.size() && pattern.at(run) == letter)
        ++run;
    switch (letter.unicode()) {
    case u'y':
        return run >= 4 ? 4 : run >= 2 ? 2 : 0;
    case u'm':
        return qMin<qsizetype>(run, 4);
    case u'd':
        return qMin<qsizetype>(run, 6);
    case u'h':
    case u'n':
    case u's':
        return qMin<qsizetype>(run, 2);
    default:
        return 0;
    }
}
} // namespace

Date::Date(int year, int month, int day, int hour, int minute, int second)
    : DayNumber_(DayNumberOf(QDate(year, month, day), QTime(hour, minute, second)))
{
}

Date Date::FromDateTime(const QDateTime& dateTime)
{
    return dateTime.isValid() ? Date(DayNumberOf(dateTime.date(), dateTime.time())) : Date();
}

std::optional<Date> Date::Parse(const QString& text)
{
    const auto moment = LocaleDates::Parse(text, QLocale());
    if (!moment)
        return std::nullopt;
    if (!moment->Day.isValid())
        return Date(DayNumberOf(QDate::fromJulianDay(DayZero), moment->Time));
    return Date(DayNumberOf(moment->Day, moment->Time));
}

QDateTime Date::ToDateTime(Qt::TimeSpec zone) const
{
    return IsNone() ? QDateTime() : Moment(DayNumber_, zone);
}

QString Date::GeneralDate() const
{
    if (IsNone())
        return {};
    const QLocale locale;
    const QDateTime moment = Moment(DayNumber_, Qt::UTC); // no zone: every time of day exists
    const QString date = LocaleDates::ShortDate(moment.date(), locale);
    if (moment.time().msecsSinceStartOfDay() < 1000)
        return date;
    return date + u' ' + locale.toString(moment.time(), LocaleDates::LongTimeFormat(locale));
}

QString Date::Format(const QString& pattern) const
{
    if (IsNone())
        return {};
    const QDateTime moment = Moment(DayNumber_, Qt::UTC);
    QString result;
    bool afterHours = false;
    for (QStringView rest = pattern; !rest.isEmpty();) {
        const qsizetype length = PieceLength(rest);
        if (length == 0) {
            result += rest.front();
            rest = rest.sliced(1);
            continue;
        }
        result += FormatPiece(rest.front(), length, moment, afterHours);
        afterHours = rest.front() == u'h';
        rest = rest.sliced(length);
    }
    return result;
}
