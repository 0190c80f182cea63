// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QString>

/// What became of an entry of the running order.
enum class OnAirState
{
    Waiting = 0,
    Used = 1,   ///< It was read out.
    Skipped = 2 ///< It was passed over.
};

/// One message or prize on the running order. All dates are universal time. A plain value.
struct OnAirEntry
{
    qint32 Reference = 0; ///< 0 until it stands in the order.
    double Position = 0;  ///< The order goes by it.
    qint32 Message = 0;   ///< Of the station's messages; 0 for none.
    qint32 Prize = 0;     ///< Of its prizes; 0 for none.
    Date Arrived;         ///< The message's field Received, which tells it from another one under its number.
    QString From;         ///< Who wrote, or what the prize is called.
    QString Original;     ///< What the message says, or the prize's script.
    QString Text;         ///< What is read out.
    QString AddedBy;
    OnAirState State = OnAirState::Waiting;
    Date When;       ///< Since when it is used or skipped.
    QString StateBy; ///< By whom.

    bool IsShortened() const { return Text != Original; }
    friend bool operator==(const OnAirEntry&, const OnAirEntry&) = default;
};
