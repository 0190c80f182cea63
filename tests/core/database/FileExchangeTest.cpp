// SPDX-License-Identifier: Apache-2.0

// A file that cannot be read any more gives its name to another one, on a disk that fails at every call in turn and
// loses its power. No database is needed for it.

#include "database/FileExchange.h"

#include "platform/records/Error.h"
#include "support/FaultyFileSystem.h"
#include "support/ScriptedUserInterface.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
class FileExchangeTest : public testing::Test
{
protected:
    QString Path(const char* name) const { return Folder_.filePath(QLatin1String(name)); }
    QString File() const { return Path("Tolva.mdb"); }
    QString Journal() const { return Path("Tolva.mdb-journal"); }
    QString Keep() const { return Path("Tolva.BAK"); }
    QString KeptJournal() const { return Path("Tolva.BAK-journal"); }
    QString Replacement() const { return Path("restored"); }
    static void Put(const QString& name, const QByteArray& content)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    static QByteArray Read(const QString& name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    void Prepare() const
    {
        for (const QString& name : {File(), Journal(), Keep(), KeptJournal(), Replacement()})
            QFile::remove(name);
        Put(File(), "old");
        Put(Journal(), "old's");
        Put(Replacement(), "new");
    }
    /// 0, or the number of the error.
    int Exchange() const
    {
        try {
            FileExchange::ByRename(File(), Replacement(), Keep());
            return 0;
        } catch (const dao::Error& error) {
            return error.Number();
        }
    }
    void ExpectNew() const
    {
        EXPECT_EQ(Read(File()), "new");
        EXPECT_EQ(Read(Journal()), "(none)");
        EXPECT_EQ(Read(Keep()), "old");
        EXPECT_EQ(Read(KeptJournal()), "old's");
    }
    void ExpectOld() const
    {
        EXPECT_EQ(Read(File()), "old");
        EXPECT_EQ(Read(Journal()), "old's");
        EXPECT_EQ(Read(Keep()), "(none)");
        EXPECT_EQ(Read(KeptJournal()), "(none)");
    }

    ScriptedUserInterface Ui;

private:
    QTemporaryDir Folder_;
};

TEST_F(FileExchangeTest, IsDoneWholeOrNotAtAllWhicheverCallFails)
{
    int refused = 0;
    for (int number = 1;; ++number) {
        Prepare();
        FaultyFileSystem files;
        files.FailAt(number, FileError::Failed);
        const int error = Exchange();
        if (files.Calls() < number)
            break;
        SCOPED_TRACE(testing::Message() << number << ": " << files.NameOfCall(number).constData());
        if (error == 0) {
            ExpectNew();
        } else {
            ++refused;
            ExpectOld();
            EXPECT_EQ(Read(Replacement()), "new");
        }
    }
    ExpectNew();
    EXPECT_GE(refused, 2);
}

TEST_F(FileExchangeTest, AtNoMomentDoesTheNameStandForNothing)
{
    for (int number = 1;; ++number) {
        Prepare();
        FaultyFileSystem files;
        files.FailAt(number, FileError::Failed, FaultyFileSystem::Fault::Fails, true); // as if it ended there
        Exchange();
        EXPECT_TRUE(Read(File()) == "old" || Read(File()) == "new") << number;
        EXPECT_FALSE(Read(File()) == "new" && Read(Journal()) != "(none)") << number;
        if (files.Calls() < number)
            return;
    }
}

TEST_F(FileExchangeTest, OnceDoneItOutlivesALossOfPower)
{
    Prepare();
    FaultyFileSystem files;
    ASSERT_EQ(Exchange(), 0);
    files.LosePower();
    ExpectNew();
}

TEST_F(FileExchangeTest, AMissingFileGetsTheReplacementAndNoOldJournal)
{
    Prepare();
    ASSERT_TRUE(QFile::remove(File()));
    EXPECT_EQ(Exchange(), 0);
    EXPECT_EQ(Read(File()), "new");
    EXPECT_EQ(Read(Journal()), "(none)");
    EXPECT_EQ(Read(Keep()), "(none)");
}

TEST_F(FileExchangeTest, AKeepNameOfAMissingFileIsNotTakenForIt)
{
    Prepare();
    ASSERT_TRUE(QFile::remove(File()));
    Put(Keep(), "somebody else's");
    FaultyFileSystem files;
    files.FailAt(1, FileError::Failed, FaultyFileSystem::Fault::Fails, true);
    EXPECT_NE(Exchange(), 0);
    EXPECT_EQ(Read(Keep()), "somebody else's");
    EXPECT_EQ(Read(File()), "(none)");
}
} // namespace
