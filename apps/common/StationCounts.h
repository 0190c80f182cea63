// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QJsonObject>
#include <QString>

/// How much a station's file holds, to compare a file with its copy.
struct StationCounts
{
    int Messages = 0;
    int Prizes = 0;
    int Winners = 0;

    friend bool operator==(const StationCounts&, const StationCounts&) = default;

    /// dao::Error when the file cannot be read.
    static StationCounts Of(const QString& file);
    /// "12 messages, 3 prizes, 2 winners"
    QString Words() const;
    QJsonObject Json() const;
};
