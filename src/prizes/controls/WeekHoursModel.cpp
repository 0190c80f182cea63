// SPDX-License-Identifier: Apache-2.0
#include "prizes/controls/WeekHoursModel.h"

#include "prizes/PrizeHour.h"

WeekHoursModel::WeekHoursModel(QObject* parent) : QAbstractTableModel(parent)
{
    Prize_.SetRaiseEvents(false);
}

void WeekHoursModel::SetHours(const WeekOfHours& hours)
{
    qint16 day = 0;
    for (const QString& text : hours)
        Prize_.SetAvailableHours(++day, text);
    Q_EMIT dataChanged(index(0, 0), index(PrizeHour::DaysAWeek - 1, PrizeHour::HoursADay - 1));
}

WeekOfHours WeekHoursModel::Hours() const
{
    WeekOfHours hours;
    qint16 day = 0;
    for (QString& text : hours)
        text = Prize_.AvailableHours(++day);
    return hours;
}

bool WeekHoursModel::IsAvailable(const QModelIndex& cell) const
{
    return Prize_.AvailableForHour(static_cast<qint16>(cell.row() + 1), static_cast<qint16>(cell.column()));
}

bool WeekHoursModel::SetAvailable(const QModelIndex& cell, bool available)
{
    if (!cell.isValid() || IsAvailable(cell) == available)
        return false;
    Prize_.SetAvailableForHour(static_cast<qint16>(cell.row() + 1), static_cast<qint16>(cell.column()), available);
    Q_EMIT dataChanged(cell, cell);
    return true;
}

int WeekHoursModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : PrizeHour::DaysAWeek;
}

int WeekHoursModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : PrizeHour::HoursADay;
}

QVariant WeekHoursModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case AvailableRole:
        return IsAvailable(index);
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
        return QStringLiteral("%1 %2, %3")
            .arg(HoursText::DayName(index.row() + 1), HoursText::HourName(index.column()),
                 IsAvailable(index) ? tr("available") : tr("not available"));
    default:
        return {};
    }
}

QVariant WeekHoursModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool isDay = orientation == Qt::Vertical;
    switch (role) {
    case Qt::DisplayRole:
        return isDay ? HoursText::DayName(section + 1) : HoursText::HourName(section).left(2);
    case Qt::AccessibleTextRole:
        return isDay ? HoursText::DayName(section + 1) : HoursText::HourName(section);
    case Qt::ToolTipRole:
        return isDay ? tr("Click to change the whole day") : tr("Click to change this hour of every day");
    case Qt::TextAlignmentRole:
        return isDay ? QVariant(Qt::AlignLeading | Qt::AlignVCenter) : QVariant(Qt::AlignCenter);
    default:
        return {};
    }
}
