// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/HoursText.h"
#include "prizes/cPrize.h"

#include <QAbstractTableModel>

/// The hours of a week as a table of days by hours. What they mean is left to a prize, so that a text is read and
/// changed here as it is there: hours that are not changed keep what other software stored. Owned by WeekHours.
class WeekHoursModel : public QAbstractTableModel
{
public:
    /// True for an hour that is available.
    static constexpr int AvailableRole = Qt::UserRole + 1;

    explicit WeekHoursModel(QObject* parent = nullptr);

    void SetHours(const WeekOfHours& hours);
    WeekOfHours Hours() const;
    bool IsAvailable(const QModelIndex& cell) const;
    /// False when it was so already.
    bool SetAvailable(const QModelIndex& cell, bool available);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    cPrize Prize_;
};
