// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/SchemaReuse.h"

#include "platform/records/DBEngine.h"
#include "platform/records/engines/EngineRegistry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace
{
class SchemaReuseTest : public testing::Test
{
protected:
    void SetUp() override
    {
        File = QDir(Folder.path()).filePath(QStringLiteral("Reused.mdb"));
        Add(QStringLiteral("First"));
    }
    /// By a database of its own, which is closed again.
    void Add(const QString& table)
    {
        const auto database =
            QFile::exists(File) ? dao::DBEngine::OpenDatabase(File) : dao::DBEngine::CreateDatabase(File, QString());
        auto definition = database->CreateTableDef(table);
        definition->Fields().Append(std::make_unique<dao::Field>(QStringLiteral("Number"), dao::dbLong, 0));
        database->TableDefs().Append(std::move(definition));
    }
    dao::engine::SchemaPtr Structure() const
    {
        return dao::engine::EngineRegistry::Instance()
            .Named(QStringLiteral("sqlite"))
            .Open(File, QString(), false)
            ->CurrentSchema();
    }

    QTemporaryDir Folder;
    QString File;
};
} // namespace

TEST_F(SchemaReuseTest, WithinAScopeAnUnchangedFileKeepsTheStructureThatWasRead)
{
    const dao::engine::SchemaPtr before = Structure();
    const dao::engine::SchemaReuse scope;
    const dao::engine::SchemaPtr first = Structure();
    EXPECT_NE(first, before);
    EXPECT_EQ(Structure(), first);
}

TEST_F(SchemaReuseTest, BehindTheScopeItIsReadAnew)
{
    dao::engine::SchemaPtr within;
    {
        const dao::engine::SchemaReuse scope;
        within = Structure();
    }
    EXPECT_NE(Structure(), within);
}

TEST_F(SchemaReuseTest, ATableThatCameMeanwhileIsSeen)
{
    const dao::engine::SchemaReuse scope;
    EXPECT_EQ(Structure()->Find(QStringLiteral("Second")), nullptr);
    Add(QStringLiteral("Second"));
    EXPECT_NE(Structure()->Find(QStringLiteral("Second")), nullptr);
}

TEST_F(SchemaReuseTest, AnotherFileUnderTheSameNameIsReadAnew)
{
    const QString aside = File + QStringLiteral(".aside");
    ASSERT_TRUE(QFile::rename(File, aside));
    Add(QStringLiteral("Other"));
    ASSERT_TRUE(QFile::rename(File, File + QStringLiteral(".other")));
    ASSERT_TRUE(QFile::rename(aside, File));
    const dao::engine::SchemaReuse scope;
    EXPECT_NE(Structure()->Find(QStringLiteral("First")), nullptr);
    ASSERT_TRUE(QFile::remove(File));
    ASSERT_TRUE(QFile::rename(File + QStringLiteral(".other"), File));
    EXPECT_EQ(Structure()->Find(QStringLiteral("First")), nullptr);
    EXPECT_NE(Structure()->Find(QStringLiteral("Other")), nullptr);
}
