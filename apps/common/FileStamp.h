// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QThread>

/// What changes with every commit to a database file.
struct FileStamp
{
    QDateTime Modified;
    qint64 Size = 0;

    static FileStamp Of(const QString& file)
    {
        const QFileInfo information(file);
        return {information.lastModified(), information.size()};
    }
    /// Waits until a later commit would have another one: one at the very moment of the stamp would not be told from
    /// it.
    static FileStamp Settled(const QString& file)
    {
        constexpr int Milliseconds = 20;
        FileStamp stamp = Of(file);
        while (stamp.Modified.msecsTo(QDateTime::currentDateTime()) < Milliseconds &&
               stamp.Modified.msecsTo(QDateTime::currentDateTime()) >= 0) {
            QThread::msleep(Milliseconds);
            stamp = Of(file);
        }
        return stamp;
    }
    bool operator==(const FileStamp&) const = default;
};
