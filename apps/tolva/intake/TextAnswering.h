// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Station.h"
#include "answering/SongAnswers.h"

#include <optional>

/// The automatic answers of one run of filing. What cannot be answered is told on standard error and fails nothing: the
/// text itself is filed, and whoever handed it over is to forget it. The station outlives this object.
class TextAnswering
{
public:
    explicit TextAnswering(Station& station) : Station_(station) {}

    /// Answers a message that is in the station, where it asks for one. name: what the user knows it by. What became of
    /// it, as a line for who wants each; empty for one that asks nothing, and behind a failure.
    QString Take(const cMessage& message, const QString& name);
    int Answered() const { return Answered_; }

private:
    void Complain(const QString& name, const QString& words) const;

    Station& Station_;
    std::optional<SongAnswers> Answers_; ///< Made with the first text, when the station is open.
    int Answered_ = 0;
    bool IsOver_ = false; ///< The next answer would fare as the last one.
};
