// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QString>

/// Tells cheaply that nobody has written to a station's file, by what its entry in the folder says. A plain value; one
/// for each thing that is read.
class FileWatch
{
public:
    /// Looks at the file; from then on WasRead counts for what it looked like. False when what was read last is
    /// certainly what the file says. opening: the station's, for another file may look the same. Of a station on a
    /// server, whose file says nothing, always true.
    bool MayHaveChanged(const QString& file, int opening);
    /// Whether the file that was looked at last leads to a server.
    bool IsOnServer() const { return IsOnServer_; }
    /// All was read since MayHaveChanged answered true.
    void WasRead();

private:
    /// Nothing was written as long as both are the same.
    struct Look
    {
        qint64 Modified = 0; ///< In steps of the file system's clock.
        qint64 Size = 0;

        friend bool operator==(const Look&, const Look&) = default;
    };
    static Look LookAt(const QString& file);

    Look Look_;
    int Opening_ = 0;
    QElapsedTimer SinceLook_; ///< That the file looks so.
    bool IsOld_ = false;      ///< It had looked so for a while when it was looked at last.
    bool IsCertain_ = false;
    bool IsOnServer_ = false;
};
