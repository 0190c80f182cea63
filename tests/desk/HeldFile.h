// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <gtest/gtest.h>
#include <sqlite3.h>

/// A database that another program has locked against everybody, until the end of this object or Release.
class HeldFile
{
public:
    explicit HeldFile(const QString& path)
    {
        EXPECT_EQ(sqlite3_open(path.toUtf8().constData(), &Database_), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(Database_, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK)
            << path.toStdString();
    }
    ~HeldFile() { Release(); }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    void Release()
    {
        sqlite3_close(Database_);
        Database_ = nullptr;
    }

private:
    sqlite3* Database_ = nullptr;
};
