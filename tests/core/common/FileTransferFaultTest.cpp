// SPDX-License-Identifier: Apache-2.0

// What backups, restores and compactions do with files themselves, on a disk that fails at every call in turn and loses
// its power. No database is needed for it.

#include "common/DurableFile.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "database/BackupFolders.h"
#include "database/Leftovers.h"
#include "platform/records/Error.h"
#include "support/FaultyFileSystem.h"
#include "support/ScriptedUserInterface.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
const QString FaultCaption = QStringLiteral("Copying");

class FileTransferFaultTest : public testing::Test
{
protected:
    QString Path(const QString& name) const { return Folder_.filePath(name); }
    QString Make(const QString& name, const QByteArray& content) const
    {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    static QByteArray Read(const QString& name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    QStringList Entries() const
    {
        return QDir(Folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    void Clear() const
    {
        for (const QString& entry : Entries()) {
            if (QFileInfo(Path(entry)).isDir())
                QDir(Path(entry)).removeRecursively();
            else
                QFile::remove(Path(entry));
        }
    }

    ScriptedUserInterface Ui;

private:
    QTemporaryDir Folder_;
};

TEST_F(FileTransferFaultTest, ACopyIsWholeOrTheOldFileStandsAndTheReasonIsKnown)
{
    const QByteArray content(3000000, 'n'); // several pieces
    for (int number = 1;; ++number) {
        SCOPED_TRACE(number);
        const QString source = Make(QStringLiteral("source"), content);
        const QString target = Make(QStringLiteral("target"), "old");
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full, FaultyFileSystem::Fault::Tears);
        PendingError failure;
        const bool isCopied = FileHelper::CopyWithProgress(source, target, FaultCaption, &failure);
        const bool isOver = files.Calls() < number;
        EXPECT_EQ(Read(target), isCopied ? content : QByteArray("old"));
        EXPECT_EQ(failure.Number(), isCopied ? 0 : dao::errDiskFull);
        Leftovers::Remove(Path(QStringLiteral("Tolva.mdb"))); // a claim whose removal failed
        EXPECT_EQ(Entries().size(), 2);
        if (isOver) {
            EXPECT_TRUE(isCopied);
            EXPECT_GT(number, 6);
            return;
        }
    }
}

TEST_F(FileTransferFaultTest, ACopyThatWasToldAsDoneOutlivesALossOfPower)
{
    const QByteArray content(3000000, 'n');
    for (int number = 1;; ++number) {
        SCOPED_TRACE(number);
        const QString source = Make(QStringLiteral("source"), content);
        const QString target = Make(QStringLiteral("target"), "old");
        FaultyFileSystem files;
        files.FailAt(number, FileError::Failed, FaultyFileSystem::Fault::Tears, true);
        const bool isCopied = FileHelper::CopyWithProgress(source, target, FaultCaption);
        const bool isOver = files.Calls() < number;
        files.LosePower();
        const QByteArray now = Read(target);
        EXPECT_TRUE(now == content || now == "old") << now.size();
        if (isOver) {
            EXPECT_TRUE(isCopied);
            EXPECT_EQ(now, content);
            return;
        }
    }
}

TEST_F(FileTransferFaultTest, ARenameThatWasToldAsDoneOutlivesALossOfPowerAndOneThatWasNotHarmsNothing)
{
    const QString from = Path(QStringLiteral("Tolva.mdb.restored"));
    const QString to = Path(QStringLiteral("Tolva.mdb"));
    for (int number = 1; number <= 3; ++number) {
        SCOPED_TRACE(number);
        Make(QStringLiteral("Tolva.mdb.restored"), "new");
        Make(QStringLiteral("Tolva.mdb"), "old");
        FaultyFileSystem files;
        files.FailAt(number, FileError::Failed, FaultyFileSystem::Fault::Fails, true);
        const bool isRenamed = DurableFile::RenameOver(from, to);
        EXPECT_EQ(isRenamed, number > 1);
        files.LosePower();
        EXPECT_EQ(Read(to), number == 3 ? "new" : "old");
    }
}

TEST_F(FileTransferFaultTest, TheDetailsOfABackupStandWholeOrTheBackupIsNone)
{
    const QString folder = Path(QStringLiteral("2026-11-21 14.05"));
    for (int number = 1;; ++number) {
        SCOPED_TRACE(number);
        Clear();
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full, FaultyFileSystem::Fault::Tears);
        const bool isWritten =
            FileHelper::CreateFolder(folder) &&
            BackupFolders::WriteDetails(folder, Date(2026, 11, 21, 14, 5, 9), QStringLiteral("PC 1"));
        const bool isOver = files.Calls() < number;
        if (isWritten) {
            files.LosePower();
            const QList<BackupFolders::Backup> backups = BackupFolders::List(Path(QString()));
            ASSERT_EQ(backups.size(), 1);
            EXPECT_EQ(backups.first().CreatedDate, Date(2026, 11, 21, 14, 5, 9));
        }
        for (const BackupFolders::Backup& backup : BackupFolders::List(Path(QString())))
            EXPECT_FALSE(backup.CreatedDate.IsNone());
        if (isOver) {
            EXPECT_TRUE(isWritten);
            EXPECT_GT(number, 20);
            return;
        }
    }
}

TEST_F(FileTransferFaultTest, ADeletionThatFailsSaysSo)
{
    for (int number = 1; number <= 4; ++number) {
        Clear();
        const QString folder = Path(QStringLiteral("old"));
        ASSERT_TRUE(QDir().mkpath(folder));
        Make(QStringLiteral("old/a"), "a");
        Make(QStringLiteral("old/b"), "b");
        FaultyFileSystem files;
        files.FailAt(number, FileError::Failed);
        EXPECT_EQ(FileHelper::DeleteWithProgress(folder, FaultCaption), number == 4) << number;
        EXPECT_EQ(QDir(folder).exists(), number < 4) << number;
    }
}
} // namespace
