// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <optional>

/// How a locale writes dates, and how a text is read as one. The helper of Date; nobody else needs it.
namespace LocaleDates
{

/// A date, a time of day, or both. Day is invalid for a time alone; Time is midnight for a date alone.
struct Moment
{
    QDate Day;
    QTime Time;
};

/// The locale's short date in Qt's format letters, with the year always in four digits: what is stored as text is
/// read back in every century.
QString ShortDateFormat(const QLocale& locale);
/// A date in that format.
QString ShortDate(QDate date, const QLocale& locale);
/// The locale's long time in Qt's format letters without the name of the time zone.
QString LongTimeFormat(const QLocale& locale);

/// Nothing when the text is no date. Two-digit years are 1930 to 2029. A zone behind an ISO 8601 time is read over: the
/// date and time are taken as they stand. In digits alone the order of day and month is the locale's, or the other one
/// where the locale's makes no date.
std::optional<Moment> Parse(const QString& text, const QLocale& locale);

} // namespace LocaleDates
