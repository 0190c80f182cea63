// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/EmbeddedDirectory.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A directory of its own for one test, open and empty.
class TemporaryDirectory : public testing::Test
{
protected:
    void SetUp() override { Directory.Open(FolderName()); }

    QString FolderName() const { return Folder.filePath(QStringLiteral("Directory")); }
    QString FileName() const { return Folder.filePath(QStringLiteral("Directory/Directory.mdb")); }

    static DirectoryUser SavedUser(EmbeddedDirectory& directory, const QString& name, int rights = 0)
    {
        DirectoryUser user{0, name, rights};
        directory.SaveUser(user);
        return user;
    }

    clsKVUser& SignedIn(const QString& name, int rights = 0)
    {
        SavedUser(Directory, name, rights);
        EXPECT_TRUE(Directory.SignIn(name));
        return *Directory.CurrentUser();
    }

    QTemporaryDir Folder;
    EmbeddedDirectory Directory;
};

/// The number of the dao::Error that the call raises, 0 for none.
template <typename Call>
int ErrorNumber(Call call)
{
    try {
        call();
    } catch (const dao::Error& error) {
        return error.Number();
    }
    return 0;
}
