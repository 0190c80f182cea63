// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/watch/ChangeStamp.h"

#include <QObject>
#include <QPointer>

#include <utility>

/// What a station tells of its stamp while it raises one event. The station may be destroyed by whoever hears of it.
class ToldMove
{
public:
    /// told: a member of station.
    ToldMove(QObject& station, StampMove& told, const StampMove& move)
        : Station_(&station), Told_(told), Before_(std::exchange(told, move))
    {
    }
    ~ToldMove()
    {
        if (Station_)
            Told_ = Before_;
    }
    ToldMove(const ToldMove&) = delete;
    ToldMove& operator=(const ToldMove&) = delete;

private:
    QPointer<QObject> Station_;
    StampMove& Told_;
    StampMove Before_;
};
