// SPDX-License-Identifier: Apache-2.0
#include "platform/records/StoreReuse.h"

#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
class StoreReuseTest : public testing::Test
{
protected:
    void SetUp() override
    {
        File = QDir(Folder.path()).filePath(QStringLiteral("Reused.mdb"));
        Add(*dao::DBEngine::CreateDatabase(File, QString()), QStringLiteral("First"));
    }
    static void Add(dao::Database& database, const QString& table)
    {
        auto definition = database.CreateTableDef(table);
        definition->Fields().Append(std::make_unique<dao::Field>(QStringLiteral("Number"), dao::dbLong, 0));
        database.TableDefs().Append(std::move(definition));
    }
    static bool Holds(dao::Database& database, const QString& table)
    {
        dao::Collection<dao::TableDef>& tables = database.TableDefs();
        for (int i = 0; i < tables.Count(); ++i) {
            if (tables.Item(i).Name() == table)
                return true;
        }
        return false;
    }
    bool Holds(const QString& table) const { return Holds(*dao::DBEngine::OpenDatabase(File), table); }
    void OpenAndClose() const { dao::DBEngine::OpenDatabase(File)->Close(); }
    /// How often this process has the file open.
    qsizetype Handles() const
    {
        const QDir all(QStringLiteral("/proc/self/fd"));
        const QStringList names = all.entryList(QDir::Files | QDir::System);
        return std::count_if(names.begin(), names.end(), [&](const QString& name) {
            return QFile::symLinkTarget(all.filePath(name)).startsWith(File);
        });
    }

    QTemporaryDir Folder;
    QString File;
};
} // namespace

TEST_F(StoreReuseTest, WithinAScopeTheNextOpeningGoesOnWithWhatTheLastOneClosed)
{
    {
        const dao::StoreReuse scope;
        OpenAndClose();
        EXPECT_EQ(Handles(), 1);
        const auto database = dao::DBEngine::OpenDatabase(File);
        EXPECT_EQ(Handles(), 1);
        EXPECT_TRUE(Holds(*database, QStringLiteral("First")));
    }
    EXPECT_EQ(Handles(), 0);
    OpenAndClose();
    EXPECT_EQ(Handles(), 0);
}

TEST_F(StoreReuseTest, AConnectionThatReadsNothingLeavesItsFileToTheNextOpening)
{
    const dao::StoreReuse scope;
    ado::Connection connection;
    connection.Open(QStringLiteral("Data Source=") + File);
    const auto database = dao::DBEngine::OpenDatabase(File);
    EXPECT_EQ(Handles(), 1);
    connection.Close();
    EXPECT_TRUE(Holds(*database, QStringLiteral("First")));
}

TEST_F(StoreReuseTest, ATableThatCameMeanwhileIsSeen)
{
    const auto other = dao::DBEngine::OpenDatabase(File);
    const dao::StoreReuse scope;
    EXPECT_FALSE(Holds(QStringLiteral("Second")));
    Add(*other, QStringLiteral("Second"));
    EXPECT_TRUE(Holds(QStringLiteral("Second")));
}

TEST_F(StoreReuseTest, AnotherFileUnderTheSameNameIsOpenedAnew)
{
    const QString aside = File + QStringLiteral(".aside");
    Add(*dao::DBEngine::CreateDatabase(aside, QString()), QStringLiteral("Other"));
    const dao::StoreReuse scope;
    EXPECT_TRUE(Holds(QStringLiteral("First")));
    ASSERT_TRUE(QFile::remove(File));
    ASSERT_TRUE(QFile::rename(aside, File));
    EXPECT_FALSE(Holds(QStringLiteral("First")));
    EXPECT_TRUE(Holds(QStringLiteral("Other")));
}

TEST_F(StoreReuseTest, AFileThatWentAwayIsNotFound)
{
    const dao::StoreReuse scope;
    OpenAndClose();
    ASSERT_TRUE(QFile::remove(File));
    EXPECT_THROW(OpenAndClose(), dao::Error);
}

TEST_F(StoreReuseTest, WhatWasLeftInATransactionIsNotGoneOnWith)
{
    const dao::StoreReuse scope;
    const auto kept = dao::DBEngine::OpenDatabase(File);
    dao::DBEngine::BeginTrans();
    Add(*kept, QStringLiteral("Second"));
    kept->Close();
    dao::DBEngine::Rollback();
    EXPECT_EQ(Handles(), 0);
    EXPECT_FALSE(Holds(QStringLiteral("Second")));
}

TEST_F(StoreReuseTest, WhoAsksToReadOnlyMayNotWrite)
{
    const dao::StoreReuse scope;
    OpenAndClose();
    const auto database = dao::DBEngine::OpenDatabase(File, 0, true);
    EXPECT_FALSE(database->Updatable());
}
