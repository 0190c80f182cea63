// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/ClockHelper.h"

#include <QDateTime>

/// A clock that stands still until the test moves it. In force from its making to its destruction.
class FixedClock final : public Clock
{
public:
    explicit FixedClock(const QDateTime& utc = QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9), Qt::UTC)) : Utc_(utc)
    {
        SetCurrent(this);
    }
    ~FixedClock() override { SetCurrent(nullptr); }
    FixedClock(const FixedClock&) = delete;
    FixedClock& operator=(const FixedClock&) = delete;

    QDateTime CurrentDateTimeUtc() const override { return Utc_; }
    void SetUtc(const QDateTime& utc) { Utc_ = utc; }
    /// May go back as well.
    void Advance(qint64 seconds) { Utc_ = Utc_.addSecs(seconds); }

private:
    QDateTime Utc_;
};
