// SPDX-License-Identifier: Apache-2.0

// The machine's files behind the seam: what each operation promises.

#include "platform/files/FileSystem.h"

#include "platform/files/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
class FileSystemTest : public testing::Test
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
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return file.readAll();
    }
    FileError ErrorOfOpening(const QString& name, FileAccess access)
    {
        FileStatus status;
        const auto file = Files_.Open(name, access, status);
        EXPECT_EQ(file == nullptr, !status.IsDone());
        return status.Error();
    }

    FileSystem& Files_ = FileSystem::Current();

private:
    QTemporaryDir Folder_;
};

TEST_F(FileSystemTest, WhatIsWrittenIsReadAtItsPlaceAndTheEndIsSeen)
{
    FileStatus status;
    const auto file = Files_.Open(Path(QStringLiteral("a")), FileAccess::New, status);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->WriteAt(4, "word", 4).IsDone());
    EXPECT_TRUE(file->SetSize(10).IsDone());
    EXPECT_EQ(file->Size(), 10);
    QByteArray read(20, 'x');
    qint64 count = 0;
    EXPECT_TRUE(file->ReadAt(2, read.data(), read.size(), count).IsDone());
    EXPECT_EQ(count, 8);
    EXPECT_EQ(read.left(8), QByteArray("\0\0word\0\0", 8));
    EXPECT_TRUE(file->Sync().IsDone());
    EXPECT_TRUE(file->Close().IsDone());
}

TEST_F(FileSystemTest, ANewFileIsMadeOnlyWhereNothingBearsTheName)
{
    const QString outside = Make(QStringLiteral("outside"), "kept");
    ASSERT_TRUE(QFile::link(outside, Path(QStringLiteral("link"))));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), Path(QStringLiteral("dangling"))));
    EXPECT_EQ(ErrorOfOpening(outside, FileAccess::New), FileError::Exists);
    EXPECT_EQ(ErrorOfOpening(Path(QStringLiteral("link")), FileAccess::New), FileError::Exists);
    EXPECT_EQ(ErrorOfOpening(Path(QStringLiteral("dangling")), FileAccess::New), FileError::Exists);
    EXPECT_EQ(Read(outside), "kept");
    EXPECT_EQ(Files_.KindOf(Path(QStringLiteral("nothing"))), FileKind::None);
}

TEST_F(FileSystemTest, NothingIsChangedThroughALinkThoughItIsReadThroughOne)
{
    const QString outside = Make(QStringLiteral("outside"), "kept");
    const QString link = Path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(outside, link));
    for (const FileAccess access :
         {FileAccess::ReadUnlinked, FileAccess::Change, FileAccess::Append, FileAccess::AppendOrNew})
        EXPECT_EQ(ErrorOfOpening(link, access), FileError::IsLink);
    EXPECT_EQ(ErrorOfOpening(link, FileAccess::Read), FileError::None);
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), Path(QStringLiteral("dangling"))));
    EXPECT_EQ(ErrorOfOpening(Path(QStringLiteral("dangling")), FileAccess::AppendOrNew), FileError::IsLink);
    EXPECT_EQ(Files_.KindOf(Path(QStringLiteral("nothing"))), FileKind::None);
}

TEST_F(FileSystemTest, APipeOrAFolderUnderANameHoldsNobodyUp)
{
    const QString pipe = Path(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(ErrorOfOpening(pipe, FileAccess::Read), FileError::NotSupported);
    EXPECT_EQ(ErrorOfOpening(pipe, FileAccess::AppendOrNew), FileError::NotSupported);
    EXPECT_EQ(ErrorOfOpening(QFileInfo(pipe).path(), FileAccess::Read), FileError::IsFolder);
    EXPECT_EQ(ErrorOfOpening(Path(QStringLiteral("missing")), FileAccess::Read), FileError::NotThere);
    EXPECT_EQ(Files_.KindOf(pipe), FileKind::Other);
}

TEST_F(FileSystemTest, AppendingGoesBehindWhatOthersAppended)
{
    const QString name = Make(QStringLiteral("log"), "1");
    FileStatus status;
    const auto one = Files_.Open(name, FileAccess::Append, status);
    const auto two = Files_.Open(name, FileAccess::AppendOrNew, status);
    EXPECT_TRUE(one->Append("2", 1).IsDone());
    EXPECT_TRUE(two->Append("3", 1).IsDone());
    EXPECT_TRUE(one->Append("4", 1).IsDone());
    EXPECT_EQ(Read(name), "1234");
}

TEST_F(FileSystemTest, ARenameToAFreeNameNeverReplaces)
{
    const QString from = Make(QStringLiteral("from"), "new");
    const QString taken = Make(QStringLiteral("taken"), "old");
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), Path(QStringLiteral("dangling"))));
    EXPECT_EQ(Files_.RenameToFreeName(from, taken).Error(), FileError::Exists);
    EXPECT_EQ(Files_.RenameToFreeName(from, Path(QStringLiteral("dangling"))).Error(), FileError::Exists);
    EXPECT_EQ(Read(taken), "old");
    EXPECT_TRUE(Files_.RenameToFreeName(from, Path(QStringLiteral("free"))).IsDone());
    EXPECT_EQ(Read(Path(QStringLiteral("free"))), "new");
    EXPECT_EQ(Files_.KindOf(from), FileKind::None);
}

TEST_F(FileSystemTest, ARenameOverALinkReplacesTheLinkAlone)
{
    const QString from = Make(QStringLiteral("from"), "new");
    const QString outside = Make(QStringLiteral("outside"), "kept");
    const QString link = Path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(outside, link));
    EXPECT_TRUE(Files_.RenameOver(from, link).IsDone());
    EXPECT_EQ(Files_.KindOf(link), FileKind::File);
    EXPECT_EQ(Read(link), "new");
    EXPECT_EQ(Read(outside), "kept");
}

TEST_F(FileSystemTest, ASecondNameIsGivenOnlyWhereItIsFree)
{
    const QString name = Make(QStringLiteral("name"), "content");
    const QString taken = Make(QStringLiteral("taken"), "old");
    EXPECT_EQ(Files_.Link(name, taken).Error(), FileError::Exists);
    EXPECT_TRUE(Files_.Link(name, Path(QStringLiteral("second"))).IsDone());
    EXPECT_TRUE(Files_.Remove(name).IsDone());
    EXPECT_EQ(Read(Path(QStringLiteral("second"))), "content");
    EXPECT_EQ(Files_.Remove(name).Error(), FileError::NotThere);
}

TEST_F(FileSystemTest, FoldersAreMadeAndOnlyEmptyOnesGo)
{
    const QString folder = Path(QStringLiteral("folder"));
    EXPECT_TRUE(Files_.MakeFolder(folder).IsDone());
    EXPECT_EQ(Files_.MakeFolder(folder).Error(), FileError::Exists);
    EXPECT_EQ(Files_.MakeFolder(Path(QStringLiteral("missing/folder"))).Error(), FileError::NotThere);
    const QString file = Make(QStringLiteral("folder/file"), "x");
    EXPECT_EQ(Files_.RemoveFolder(folder).Error(), FileError::Exists);
    EXPECT_TRUE(Files_.SyncFolder(folder).IsDone());
    EXPECT_TRUE(Files_.Remove(file).IsDone());
    EXPECT_TRUE(Files_.RemoveFolder(folder).IsDone());
    EXPECT_EQ(Files_.SyncFolder(folder).Error(), FileError::NotThere);
}

TEST_F(FileSystemTest, ALockExcludesOtherHandlesAlsoInThisProcessAndOutlivesTheirClosing)
{
    const QString name = Make(QStringLiteral("file"), "x");
    FileStatus status;
    const auto one = Files_.Open(name, FileAccess::Change, status);
    auto two = Files_.Open(name, FileAccess::Change, status);
    EXPECT_TRUE(one->Lock(FileLock::Exclusive, 10, 5).IsDone());
    EXPECT_EQ(two->Lock(FileLock::Shared, 12, 1).Error(), FileError::Locked);
    EXPECT_TRUE(two->Lock(FileLock::Exclusive, 15, 5).IsDone());
    EXPECT_TRUE(two->Close().IsDone());
    two = Files_.Open(name, FileAccess::Change, status);
    EXPECT_EQ(two->Lock(FileLock::Shared, 12, 1).Error(), FileError::Locked);
    EXPECT_TRUE(one->Unlock(10, 5).IsDone());
    EXPECT_TRUE(two->Lock(FileLock::Shared, 12, 1).IsDone());
    EXPECT_TRUE(one->Lock(FileLock::Shared, 12, 1).IsDone());
}

TEST_F(FileSystemTest, RoomIsToldInOctets)
{
    const auto free = Files_.FreeSpace(QDir::tempPath());
    ASSERT_TRUE(free);
    EXPECT_GT(*free, 0);
    EXPECT_FALSE(Files_.FreeSpace(Path(QStringLiteral("missing"))));
}

TEST_F(FileSystemTest, AFullDeviceSaysSo)
{
    const QString full = QStringLiteral("/dev/full");
    if (!QFile::exists(full))
        GTEST_SKIP() << "this system has no /dev/full";
    FileStatus status;
    const auto file = Files_.Open(full, FileAccess::WriteToDevice, status);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->Append("x", 1).Error(), FileError::Full);
}

TEST_F(FileSystemTest, WhatThisAccountMayNotWriteIsTold)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "nothing is closed to root";
    const QString name = Make(QStringLiteral("file"), "x");
    ASSERT_TRUE(QFile::setPermissions(name, QFileDevice::ReadOwner));
    EXPECT_EQ(Files_.MayWrite(name).Error(), FileError::NoPermission);
    EXPECT_EQ(WholeFile::Write(name, "y", IfThere::Replace).Error(), FileError::NoPermission);
    EXPECT_EQ(Read(name), "x");
}

TEST_F(FileSystemTest, TheFirstLinkBelowAFolderIsFound)
{
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("real/inner"))));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("real")), Path(QStringLiteral("link"))));
    const QString top = Path(QString());
    EXPECT_EQ(LinkBelow(top, Path(QStringLiteral("real/inner"))), QString());
    EXPECT_EQ(LinkBelow(top, Path(QStringLiteral("link/inner/missing"))), Path(QStringLiteral("link")));
    EXPECT_EQ(LinkBelow(Path(QStringLiteral("link")), Path(QStringLiteral("link/inner"))), QString());
}
} // namespace
