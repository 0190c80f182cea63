// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// A date and time of day as a day number: days since 30 December 1899, the time as the fraction (OLE automation date).
/// It knows no time zone: whether it is local or universal time is its owner's affair (ClockHelper converts).
/// 0 or less means "none"; below 0 the fraction still counts forwards from midnight. A plain value.
class TOLVA_EXPORT Date
{
public:
    static constexpr int HoursADay = 24;
    static constexpr double MinutesADay = 1440;

    constexpr Date() = default;
    constexpr explicit Date(double dayNumber) : DayNumber_(dayNumber) {}
    /// None when there is no such date or time of day.
    Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

    /// The date and time as they stand in dateTime, whatever its zone; none when it is invalid.
    static Date FromDateTime(const QDateTime& dateTime);
    /// Reads a date as a person or another computer may have written it: General Date in the current locale, ISO 8601,
    /// day, month name and year, each with or without a time, or a time alone. Nothing when the text is no date;
    /// blanks around it do not matter. Two-digit years are 1930 to 2029. Digits alone stand in the locale's order of
    /// day and month, or in the other one where that makes no date. A zone behind an ISO time is read over.
    static std::optional<Date> Parse(const QString& text);

    double DayNumber() const { return DayNumber_; }
    bool IsNone() const { return !(DayNumber_ > 0); }

    /// Rounded to the nearest millisecond; in the zone given. Invalid for none.
    QDateTime ToDateTime(Qt::TimeSpec zone = Qt::LocalTime) const;

    /// The locale's short date followed by a blank and its long time (without a zone), the time left out at midnight.
    /// The year always has four digits.
    /// Parse() gives the same date back, to the second. Empty for none.
    QString GeneralDate() const;

    /// Format letters: yyyy yy year; m mm month, or minutes after h or hh; mmm mmmm short and long month name; d dd
    /// day; ddd dddd short and long day name; ddddd dddddd the locale's short and long date; h hh hours; n nn
    /// minutes; s ss seconds. All else stands for itself. Empty for none.
    QString Format(const QString& pattern) const;

    friend auto operator<=>(const Date&, const Date&) = default;

private:
    double DayNumber_ = 0;
};
