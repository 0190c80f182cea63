// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/PendingError.h"
#include "platform/records/DBEngine.h"

#include <QStringList>

/// What is made on a server for a station: taken away again, unless it is kept.
class LinkedDatabases
{
public:
    /// Of what belongs to a station and lies beside it.
    static QString DirectoryPart() { return QStringLiteral("directory"); }

    LinkedDatabases() = default;
    ~LinkedDatabases()
    {
        for (const QString& file : Files_) {
            PendingError ignored;
            ignored.Try([&] { dao::DBEngine::TakeAwayLinkedDatabase(file); });
        }
    }
    LinkedDatabases(const LinkedDatabases&) = delete;
    LinkedDatabases& operator=(const LinkedDatabases&) = delete;

    /// As DBEngine::CreateLinkedDatabase.
    void Create(const QString& file, const QString& connect, const QString& part)
    {
        dao::DBEngine::CreateLinkedDatabase(file, connect, part);
        Files_.append(file);
    }
    void Keep() { Files_.clear(); }

private:
    QStringList Files_;
};
