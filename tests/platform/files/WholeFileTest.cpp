// SPDX-License-Identifier: Apache-2.0

// Files that appear whole, on a disk that fails at every call in turn and loses its power.

#include "platform/files/WholeFile.h"

#include "platform/records/DBEngine.h"
#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
#include "support/FaultyFileSystem.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
class WholeFileTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(Folder_.isValid()); }

    QString Path(const QString& name) const { return Folder_.filePath(name); }
    QString Name() const { return Path(QStringLiteral("file")); }
    void Put(const QByteArray& content) const { Put(Name(), content); }
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
    QStringList Entries() const
    {
        return QDir(Folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    /// When a call failed: nothing was made and the error tells it, or it was the removal of the claim, behind all that
    /// counts, and the claim is there for whoever clears up.
    void ExpectNothingOrAnAbandonedClaim(int error, const QByteArray& failedCall)
    {
        if (error != 0) {
            EXPECT_EQ(error, dao::errDiskFull);
            EXPECT_EQ(Entries(), QStringList{});
            return;
        }
        EXPECT_EQ(failedCall, "remove");
        for (const QString& entry : Entries().filter(QRegularExpression(QStringLiteral("-claim$"))))
            EXPECT_NE(WorkClaim::TakeOver(Path(entry).chopped(WorkClaim::NameFor(QString()).size())), nullptr);
        EXPECT_EQ(Entries(), QStringList(QStringLiteral("file")));
    }
    /// Fails each call of the work in turn; check(status, the failed call) after each.
    template <typename Prepare, typename Work, typename Check>
    static void FailEverywhere(FaultyFileSystem::Fault fault, Prepare&& prepare, Work&& work, Check&& check)
    {
        for (int number = 1;; ++number) {
            prepare();
            FaultyFileSystem files;
            files.FailAt(number, FileError::Full, fault);
            const FileStatus status = work();
            if (files.Calls() < number) {
                EXPECT_TRUE(status.IsDone());
                EXPECT_GT(number, 5);
                return;
            }
            SCOPED_TRACE(testing::Message() << number << ": " << files.NameOfCall(number).constData());
            check(status, files.NameOfCall(number));
        }
    }

private:
    QTemporaryDir Folder_;
};

TEST_F(WholeFileTest, ANewFileIsThereOrNothingIsWhateverCallFails)
{
    for (const auto fault : {FaultyFileSystem::Fault::Fails, FaultyFileSystem::Fault::Tears}) {
        FailEverywhere(
            fault, [&] { QFile::remove(Name()); }, [&] { return WholeFile::Write(Name(), "content", IfThere::Refuse); },
            [&](const FileStatus& status, const QByteArray&) {
                EXPECT_EQ(status.Error(), FileError::Full);
                EXPECT_EQ(Entries(), QStringList{});
            });
        EXPECT_EQ(Read(Name()), "content");
    }
}

TEST_F(WholeFileTest, AReplacedFileIsUntouchedWhateverCallFails)
{
    FailEverywhere(
        FaultyFileSystem::Fault::Tears, [&] { Put("old"); },
        [&] { return WholeFile::Write(Name(), "new content", IfThere::Replace); },
        [&](const FileStatus& status, const QByteArray& call) {
            // The old file's second name, which nobody needs any more, may stay.
            if (call == "remove") {
                EXPECT_EQ(Read(Name()), "new content");
                return;
            }
            EXPECT_EQ(status.Error(), FileError::Full);
            EXPECT_EQ(Read(Name()), "old");
        });
    EXPECT_EQ(Read(Name()), "new content");
}

TEST_F(WholeFileTest, AFullDiskThatStaysFullLeavesTheOldFileOrTheNewOneAndSaysSo)
{
    for (int number = 1;; ++number) {
        Put("old");
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full, FaultyFileSystem::Fault::Tears, true);
        const FileStatus status = WholeFile::Write(Name(), "new content", IfThere::Replace);
        if (files.Calls() < number)
            break;
        SCOPED_TRACE(number);
        const QByteArray content = Read(Name());
        EXPECT_TRUE(content == "old" || content == "new content") << content.constData();
        EXPECT_TRUE(!status.IsDone() || content == "new content");
    }
}

TEST_F(WholeFileTest, AfterALossOfPowerTheOldFileIsThereOrTheWholeNewOne)
{
    for (int number = 1;; ++number) {
        Put("old");
        FaultyFileSystem files;
        files.FailAt(number, FileError::Failed, FaultyFileSystem::Fault::Tears, true);
        const FileStatus status = WholeFile::Write(Name(), "new content", IfThere::Replace);
        const bool isOver = files.Calls() < number;
        files.LosePower();
        SCOPED_TRACE(number);
        const QByteArray content = Read(Name());
        EXPECT_TRUE(content == "old" || content == "new content") << content.constData();
        if (isOver) {
            EXPECT_TRUE(status.IsDone());
            EXPECT_EQ(content, "new content") << "what was told as written is on the disk";
            break;
        }
    }
}

TEST_F(WholeFileTest, ATakenNameIsRefusedAndALinkNeverFollowedOrReplaced)
{
    Put("old");
    EXPECT_EQ(WholeFile::Write(Name(), "new", IfThere::Refuse).Error(), FileError::Exists);
    const QString link = Path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(Name(), link));
    EXPECT_EQ(WholeFile::Write(link, "new", IfThere::Refuse).Error(), FileError::Exists);
    EXPECT_EQ(WholeFile::Write(link, "new", IfThere::Replace).Error(), FileError::IsLink);
    EXPECT_EQ(Read(Name()), "old");
    EXPECT_EQ(FileSystem::System().KindOf(link), FileKind::Link);
    EXPECT_EQ(WholeFile::Write(Path(QString()), "new", IfThere::Replace).Error(), FileError::IsFolder);
    EXPECT_EQ(WholeFile::Write(Path(QStringLiteral("missing/a")), "x", IfThere::Replace).Error(), FileError::NotThere);
}

TEST_F(WholeFileTest, AReplacedFileHandsItsRightsOn)
{
    Put("old");
    const auto rights = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    ASSERT_TRUE(QFile::setPermissions(Name(), rights));
    EXPECT_TRUE(WholeFile::Write(Name(), "new", IfThere::Replace).IsDone());
    EXPECT_EQ(QFile::permissions(Name()) & ~(QFileDevice::ReadUser | QFileDevice::WriteUser), rights);
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("file")});
}

TEST_F(WholeFileTest, TheStoresTemporaryFileGivesItsNameOrLeavesNothingWhateverCallFails)
{
    for (int number = 1;; ++number) {
        QFile::remove(Name());
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full);
        int error = 0;
        try {
            dao::TemporaryFile temporary(Name());
            Put(temporary.Name(), "content");
            temporary.MoveTo(Name());
        } catch (const dao::Error& raised) {
            error = raised.Number();
        }
        if (files.Calls() < number) {
            EXPECT_EQ(error, 0);
            EXPECT_EQ(Read(Name()), "content");
            break;
        }
        SCOPED_TRACE(testing::Message() << number << ": " << files.NameOfCall(number).constData());
        ExpectNothingOrAnAbandonedClaim(error, files.NameOfCall(number));
    }
}

TEST_F(WholeFileTest, TheStoresTemporaryFileReplacesAnEmptyFileAndNothingElse)
{
    const QString outside = Path(QStringLiteral("outside"));
    Put(outside, "");
    ASSERT_TRUE(QFile::link(outside, Name()));
    {
        dao::TemporaryFile temporary(Name());
        EXPECT_THROW(temporary.MoveTo(Name()), dao::Error);
    }
    EXPECT_EQ(FileSystem::System().KindOf(Name()), FileKind::Link);
    EXPECT_EQ(Read(outside), "");
    QFile::remove(Name());
    Put("");
    dao::TemporaryFile temporary(Name());
    Put(temporary.Name(), "content");
    temporary.MoveTo(Name());
    EXPECT_EQ(Read(Name()), "content");
}

TEST_F(WholeFileTest, ADatabaseIsMadeWholeOrNotAtAllWhateverCallFails)
{
    for (int number = 1;; ++number) {
        QFile::remove(Name());
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full);
        int error = 0;
        try {
            dao::DBEngine::CreateDatabase(Name(), QString());
        } catch (const dao::Error& raised) {
            error = raised.Number();
        }
        if (files.Calls() < number)
            break;
        SCOPED_TRACE(number);
        ExpectNothingOrAnAbandonedClaim(error, files.NameOfCall(number));
    }
    EXPECT_TRUE(dao::DBEngine::IsDatabase(Name()));
}
} // namespace
