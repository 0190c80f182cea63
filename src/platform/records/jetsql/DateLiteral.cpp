// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/DateLiteral.h"

#include <QDate>
#include <QString>

#include <array>
#include <vector>

namespace dao::jetsql
{
namespace
{
struct Part
{
    bool IsNumber = false;
    int Number = 0;
    qsizetype Digits = 0;
    QString Word; ///< In lower case.
    QChar Before; ///< The separator in front of it.
};

/// Splits at blanks and separators; none when something else is in the text.
std::optional<std::vector<Part>> Split(QStringView text)
{
    std::vector<Part> parts;
    QChar separator;
    qsizetype next = 0;
    while (next < text.size()) {
        const QChar character = text[next];
        if (character.isSpace()) {
            ++next;
            continue;
        }
        if (QStringView(u"/-.,:").contains(character)) {
            if (!separator.isNull() || parts.empty())
                return std::nullopt;
            separator = character;
            ++next;
            continue;
        }
        const qsizetype start = next;
        Part part;
        part.Before = separator;
        separator = QChar();
        if (character >= u'0' && character <= u'9') {
            while (next < text.size() && text[next] >= u'0' && text[next] <= u'9')
                ++next;
            part.IsNumber = true;
            part.Digits = next - start;
            if (part.Digits > 4)
                return std::nullopt;
            part.Number = text.sliced(start, part.Digits).toInt();
        } else if (character.isLetter()) {
            while (next < text.size() && text[next].isLetter())
                ++next;
            part.Word = text.sliced(start, next - start).toString().toLower();
        } else {
            return std::nullopt;
        }
        parts.push_back(part);
    }
    if (!separator.isNull())
        return std::nullopt;
    return parts;
}

/// 1 to 12 for an English month's name or its first three letters, else 0.
int MonthNamed(const QString& word)
{
    static const std::array<QLatin1String, 12> names = {
        QLatin1String("january"),   QLatin1String("february"), QLatin1String("march"),    QLatin1String("april"),
        QLatin1String("may"),       QLatin1String("june"),     QLatin1String("july"),     QLatin1String("august"),
        QLatin1String("september"), QLatin1String("october"),  QLatin1String("november"), QLatin1String("december")};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (word == names[i] || word == names[i].left(3) || (i == 8 && word == QLatin1String("sept")))
            return static_cast<int>(i) + 1;
    }
    return 0;
}

int FullYear(const Part& part)
{
    if (part.Digits > 2)
        return part.Number;
    return part.Number < 30 ? 2000 + part.Number : 1900 + part.Number;
}

std::optional<QDate> MakeDate(int year, int month, int day)
{
    const QDate date(year, month, day);
    if (!date.isValid() || year < 100)
        return std::nullopt;
    return date;
}

bool IsDateSeparator(QChar character)
{
    return character.isNull() || QStringView(u"/-.,").contains(character);
}

std::optional<QDate> ReadDate(const Part& first, const Part& second, const Part& third)
{
    if (!IsDateSeparator(second.Before) || !IsDateSeparator(third.Before) || !third.IsNumber)
        return std::nullopt;
    if (!first.IsNumber)
        return second.IsNumber ? MakeDate(FullYear(third), MonthNamed(first.Word), second.Number) : std::nullopt;
    if (!second.IsNumber)
        return MakeDate(FullYear(third), MonthNamed(second.Word), first.Number);
    if (second.Before.isNull() || third.Before.isNull())
        return std::nullopt;
    if (first.Digits > 2)
        return MakeDate(first.Number, second.Number, third.Number);
    if (const auto monthFirst = MakeDate(FullYear(third), first.Number, second.Number))
        return monthFirst;
    // A date written the other way round is unmistakable where the month would be above 12.
    return first.Number > 12 ? MakeDate(FullYear(third), second.Number, first.Number) : std::nullopt;
}

/// parts: hours, minutes, perhaps seconds, perhaps AM or PM.
std::optional<double> ReadTime(std::vector<Part> parts)
{
    int hour = parts.front().Number;
    if (!parts.back().IsNumber) {
        const QString& half = parts.back().Word;
        if ((half != QLatin1String("am") && half != QLatin1String("pm")) || hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (half == QLatin1String("pm") ? 12 : 0);
        parts.pop_back();
    }
    if (parts.size() < 2 || parts.size() > 3 || !parts.front().IsNumber)
        return std::nullopt;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (!parts[i].IsNumber || parts[i].Before != u':')
            return std::nullopt;
    }
    const int minute = parts[1].Number;
    const int second = parts.size() == 3 ? parts[2].Number : 0;
    if (hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return (hour * 3600 + minute * 60 + second) / 86400.0;
}
} // namespace

std::optional<double> ParseDateLiteral(QStringView text)
{
    const std::optional<std::vector<Part>> parts = Split(text);
    if (!parts || parts->size() < 2)
        return std::nullopt;
    const bool timeOnly = (*parts)[1].Before == u':';
    if (timeOnly)
        return ReadTime(*parts);
    if (parts->size() < 3)
        return std::nullopt;
    const std::optional<QDate> date = ReadDate((*parts)[0], (*parts)[1], (*parts)[2]);
    if (!date)
        return std::nullopt;
    const double day = static_cast<double>(QDate(1899, 12, 30).daysTo(*date));
    if (parts->size() == 3)
        return day;
    if (!(*parts)[3].Before.isNull() || parts->size() < 5)
        return std::nullopt;
    const std::optional<double> time = ReadTime({parts->begin() + 3, parts->end()});
    if (!time)
        return std::nullopt;
    // Before the first day the fraction still counts forward from midnight: -1.25 is six in the morning.
    return day < 0 ? day - *time : day + *time;
}

} // namespace dao::jetsql
