// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <QDir>
#include <QFile>

using namespace dao;

namespace
{

/// What stands beside a database when nobody has it open.
class FilesBeside : public RecordsFixture
{
protected:
    FilesBeside()
    {
        MakeMessages();
        AddMessage(QStringLiteral("a"), QStringLiteral("body"));
    }
    QStringList Files() const { return QDir(Path(QString())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }
};

TEST_P(FilesBeside, AClosedDatabaseIsOneFile)
{
    Database_.reset();
    EXPECT_EQ(Files(), QStringList({QStringLiteral("Test.mdb")}));
    Reopen();
    AddMessage(QStringLiteral("b"));
    Db().Close();
    EXPECT_EQ(Files(), QStringList({QStringLiteral("Test.mdb")}));
}

TEST_P(FilesBeside, ANewDatabaseIsOneFile)
{
    Database_.reset();
    DBEngine::CreateDatabase(Path(QStringLiteral("New.mdb")), QString());
    EXPECT_EQ(Files(), QStringList({QStringLiteral("New.mdb"), QStringLiteral("Test.mdb")}));
}

TEST_P(FilesBeside, CompactingLeavesTwoFiles)
{
    Database_.reset();
    DBEngine::CompactDatabase(FileName(), Path(QStringLiteral("Compact.mdb")));
    EXPECT_EQ(Files(), QStringList({QStringLiteral("Compact.mdb"), QStringLiteral("Test.mdb")}));
}

TEST_P(FilesBeside, ClosingDoesNotDisturbAnothersTransaction)
{
    auto other = OpenAgain();
    other->Execute(QStringLiteral("UPDATE [Messages] SET [Subject]='changed'"));
    DBEngine::BeginTrans();
    AddMessage(QStringLiteral("b"), QString(3000000, QLatin1Char('b')));
    other.reset();
    AddMessage(QStringLiteral("c"));
    DBEngine::Rollback();
    EXPECT_EQ(OpenMessages()->RecordCount(), 1);
    Reopen();
    EXPECT_EQ(OpenMessages()->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("changed"));
    Database_.reset();
    EXPECT_EQ(Files(), QStringList({QStringLiteral("Test.mdb")}));
}

TEST_P(FilesBeside, ADatabaseThatWasRenamedWhileOpenLeavesItsOldNameAlone)
{
    AddMessage(QStringLiteral("b"));
    ASSERT_TRUE(QFile::rename(FileName(), Path(QStringLiteral("Old.mdb"))));
    QFile journal(FileName() + QStringLiteral("-journal"));
    ASSERT_TRUE(journal.open(QIODevice::WriteOnly));
    journal.close();
    Database_.reset();
    EXPECT_TRUE(QFile::exists(journal.fileName()));
}

INSTANTIATE_FOR_FILE_ENGINES(FilesBeside);

} // namespace
