// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/ProcessorTime.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

/// The longest time for which the event loop did not run: what this thread worked, so that a busy machine fails no
/// test, and what passed.
class LongestGap
{
public:
    LongestGap()
    {
        Since_.start();
        QObject::connect(&Timer_, &QTimer::timeout, &Timer_, [this] { Take(); });
        Timer_.start(1);
    }
    void Take()
    {
        Passed = std::max(Passed, Since_.restart());
        const auto now = ProcessorTime();
        const auto work = std::chrono::duration_cast<std::chrono::milliseconds>(now - std::exchange(Begin_, now));
        Worked = std::max(Worked, work);
    }

    qint64 Passed = 0; ///< Milliseconds.
    std::chrono::milliseconds Worked{0};

private:
    QTimer Timer_;
    QElapsedTimer Since_;
    std::chrono::nanoseconds Begin_ = ProcessorTime();
};
