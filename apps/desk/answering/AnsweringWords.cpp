// SPDX-License-Identifier: Apache-2.0
#include "AnsweringWords.h"

#include "DisplayText.h"
#include "common/ClockHelper.h"

#include <QObject>

namespace
{
constexpr qint64 SecondsAMinute = 60;
constexpr qint64 SecondsAnHour = 3600;

QString DurationInWords(qint64 seconds)
{
    if (seconds < SecondsAMinute)
        return QObject::tr("less than a minute");
    if (seconds < SecondsAnHour) {
        const qint64 minutes = seconds / SecondsAMinute;
        return minutes == 1 ? QObject::tr("1 minute") : QObject::tr("%1 minutes").arg(minutes);
    }
    const qint64 hours = seconds / SecondsAnHour;
    return hours == 1 ? QObject::tr("1 hour") : QObject::tr("%1 hours").arg(hours);
}
} // namespace

QString AnsweringWords::OfNow(const QList<Answering>& all)
{
    if (all.isEmpty())
        return QString();
    const QString name = OneLine(all.first().Name);
    const QString duration = DurationInWords(all.first().Seconds);
    const qsizetype others = all.size() - 1;
    if (others == 0)
        return QObject::tr("%1 is answering, for %2").arg(name, duration);
    return others == 1
               ? QObject::tr("%1 and 1 other are answering, for %2").arg(name, duration)
               : QObject::tr("%1 and %2 others are answering, for %3").arg(name, QString::number(others), duration);
}

QString AnsweringWords::OfFiled(const FiledAnswer& answer)
{
    const Date when = ClockHelper::UTCToLocal(answer.When);
    const QString day = QStringLiteral("d mmm yyyy");
    const bool isToday = when.Format(day) == ClockHelper::CurrentTime().Format(day);
    const QString time = when.Format(isToday ? QStringLiteral("hh:nn") : QStringLiteral("d mmm yyyy hh:nn"));
    const QString name = OneLine(answer.Name);
    return name.isEmpty() ? QObject::tr("Answered, %1").arg(time) : QObject::tr("Answered by %1, %2").arg(name, time);
}
