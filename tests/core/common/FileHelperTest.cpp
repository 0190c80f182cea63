// SPDX-License-Identifier: Apache-2.0
#include "common/FileHelper.h"

#include "support/ScriptedUserInterface.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const QString HelperCaption = QStringLiteral("Copying...");

/// No file may grow beyond a size for the life of a scope: the disk is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &Before_);
        rlimit limit = Before_;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
        Handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &Before_);
        std::signal(SIGXFSZ, Handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit Before_ = {};
    void (*Handler_)(int) = nullptr;
};

class FileHelperTest : public testing::Test
{
protected:
    QString Path(const QString& name) const { return Folder_.filePath(name); }

    QString Make(const QString& name, const QByteArray& content = "content") const
    {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    static QByteArray ContentOf(const QString& name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
    }

    QStringList Entries(const QString& folder = QString()) const
    {
        return QDir(Path(folder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QTemporaryDir Folder_;
    ScriptedUserInterface User_;
};
} // namespace

TEST_F(FileHelperTest, NamesAreTakenApart)
{
    EXPECT_EQ(FileHelper::FolderOf(QStringLiteral("/data/station/Tolva.mdb")), u"/data/station");
    EXPECT_EQ(FileHelper::FolderOf(QStringLiteral("/data/station/")), u"/data/station");
    EXPECT_EQ(FileHelper::FolderOf(QStringLiteral("/Tolva.mdb")), u"/");
    EXPECT_EQ(FileHelper::FolderOf(QStringLiteral("Tolva.mdb")), QString());
    EXPECT_EQ(FileHelper::FolderOf(QString()), QString());
    EXPECT_EQ(FileHelper::FileNameOf(QStringLiteral("/data/my station/Tolva.mdb")), u"Tolva.mdb");
    EXPECT_EQ(FileHelper::FileNameOf(QStringLiteral("Tolva.mdb")), u"Tolva.mdb");
    EXPECT_EQ(FileHelper::FileNameOf(QStringLiteral("/data/")), QString());
}

TEST_F(FileHelperTest, OnlyADotWithinTheNameBeginsAnExtension)
{
    EXPECT_EQ(FileHelper::BaseNameOf(QStringLiteral("/data.d/Tolva.old.mdb")), u"Tolva.old");
    EXPECT_EQ(FileHelper::BaseNameOf(QStringLiteral("/data.d/Tolva")), u"Tolva");
    EXPECT_EQ(FileHelper::BaseNameOf(QStringLiteral(".hidden")), u".hidden");
    EXPECT_EQ(FileHelper::WithoutExtension(QStringLiteral("/data.d/Tolva.mdb")), u"/data.d/Tolva");
    EXPECT_EQ(FileHelper::WithoutExtension(QStringLiteral("/data.d/Tolva")), u"/data.d/Tolva");
    EXPECT_EQ(FileHelper::WithoutExtension(QStringLiteral("/data.d/.hidden")), u"/data.d/.hidden");
}

TEST_F(FileHelperTest, JoinPutsOneSeparatorBetween)
{
    EXPECT_EQ(FileHelper::Join(QStringLiteral("/data"), QStringLiteral("a")), u"/data/a");
    EXPECT_EQ(FileHelper::Join(QStringLiteral("/data/"), QStringLiteral("/a")), u"/data/a");
    EXPECT_EQ(FileHelper::Join(QString(), QStringLiteral("a")), u"a");
    EXPECT_EQ(FileHelper::Join(QStringLiteral("/"), QStringLiteral("a")), u"/a");
}

TEST_F(FileHelperTest, FilesAndFoldersAreToldApart)
{
    const QString file = Make(QStringLiteral("file"), "12345");
    EXPECT_TRUE(FileHelper::FileExists(file));
    EXPECT_FALSE(FileHelper::FolderExists(file));
    EXPECT_TRUE(FileHelper::FolderExists(Folder_.path()));
    EXPECT_TRUE(FileHelper::FolderExists(Folder_.path() + u'/'));
    EXPECT_FALSE(FileHelper::FileExists(Folder_.path()));
    EXPECT_FALSE(FileHelper::FolderExists(QString()));
    EXPECT_EQ(FileHelper::FileSize(file), 5);
    EXPECT_EQ(FileHelper::FileSize(Make(QStringLiteral("empty"), "")), 0);
    EXPECT_EQ(FileHelper::FileSize(Path(QStringLiteral("none"))), -1);
    EXPECT_EQ(FileHelper::FileSize(Folder_.path()), -1);
}

TEST_F(FileHelperTest, CreateFolderMakesTheMissingParents)
{
    const QString folder = Path(QStringLiteral("a/b c/Käse"));
    EXPECT_TRUE(FileHelper::CreateFolder(folder));
    EXPECT_TRUE(FileHelper::FolderExists(folder));
    EXPECT_TRUE(FileHelper::CreateFolder(folder));
    EXPECT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("x/y/"))));
    EXPECT_TRUE(FileHelper::FolderExists(Path(QStringLiteral("x/y"))));
}

TEST_F(FileHelperTest, CreateFolderFailsWhereAFileIsInTheWay)
{
    const QString file = Make(QStringLiteral("file"));
    EXPECT_FALSE(FileHelper::CreateFolder(file));
    EXPECT_FALSE(FileHelper::CreateFolder(file + QStringLiteral("/below")));
    EXPECT_FALSE(FileHelper::CreateFolder(QString()));
}

TEST_F(FileHelperTest, CopiesAFileIntoAFolderUnderItsOwnName)
{
    const QByteArray content = QByteArray("0123456789").repeated(300000);
    const QString source = Make(QStringLiteral("Tolva.mdb"), content);
    ASSERT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("copies"))));
    EXPECT_TRUE(FileHelper::CopyWithProgress(source, Path(QStringLiteral("copies")), HelperCaption));
    EXPECT_EQ(ContentOf(Path(QStringLiteral("copies/Tolva.mdb"))), content);
    EXPECT_EQ(Entries(QStringLiteral("copies")), QStringList{QStringLiteral("Tolva.mdb")});
    EXPECT_EQ(User_.ProgressCaptions(), QStringList{HelperCaption});
    EXPECT_EQ(User_.Advances(), 4); // at the start and after each of three chunks of a mebibyte at most
}

TEST_F(FileHelperTest, ACopyKeepsRightsAndDateOfChange)
{
    const QString source = Make(QStringLiteral("source"));
    QFile file(source);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QDateTime changed(QDate(2020, 1, 2), QTime(3, 4, 5));
    ASSERT_TRUE(file.setFileTime(changed, QFileDevice::FileModificationTime));
    file.close();
    ASSERT_EQ(::chmod(QFile::encodeName(source).constData(), 0640), 0);
    EXPECT_TRUE(FileHelper::CopyWithProgress(source, Path(QStringLiteral("target")), HelperCaption));
    EXPECT_EQ(QFileInfo(Path(QStringLiteral("target"))).lastModified(), changed);
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(Path(QStringLiteral("target"))).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(FileHelperTest, ACopyReplacesTheTarget)
{
    const QString source = Make(QStringLiteral("source"), "new");
    const QString target = Make(QStringLiteral("target"), "old and longer");
    EXPECT_TRUE(FileHelper::CopyWithProgress(source, target, HelperCaption));
    EXPECT_EQ(ContentOf(target), "new");
    EXPECT_EQ(ContentOf(source), "new");
}

TEST_F(FileHelperTest, ACopyOntoALinkReplacesTheLinkAndLeavesWhatItPointsTo)
{
    const QString source = Make(QStringLiteral("source"), "new");
    const QString target = Make(QStringLiteral("target"), "old");
    const QString link = Path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(target, link));
    EXPECT_TRUE(FileHelper::CopyWithProgress(source, link, HelperCaption));
    EXPECT_EQ(ContentOf(target), "old");
    EXPECT_FALSE(QFileInfo(link).isSymLink());
    EXPECT_EQ(ContentOf(link), "new");
}

TEST_F(FileHelperTest, ACancelledCopyLeavesTheOldStateAndNothingElse)
{
    const QString source = Make(QStringLiteral("source"), QByteArray(3000000, 'x'));
    const QString target = Make(QStringLiteral("target"), "old");
    for (int call = 1; call <= 4; ++call) {
        User_.CancelProgressAt(call);
        EXPECT_FALSE(FileHelper::CopyWithProgress(source, target, HelperCaption)) << call;
        EXPECT_EQ(ContentOf(target), "old");
        EXPECT_EQ(Entries(), (QStringList{QStringLiteral("source"), QStringLiteral("target")}));
    }
}

TEST_F(FileHelperTest, ACopyThatFillsTheDiskLeavesTheOldStateAndNothingElse)
{
    const QString source = Make(QStringLiteral("source"), QByteArray(3000000, 'x'));
    const QString target = Make(QStringLiteral("target"), "old");
    {
        const FullDisk disk(1500000);
        EXPECT_FALSE(FileHelper::CopyWithProgress(source, target, HelperCaption));
    }
    EXPECT_EQ(ContentOf(target), "old");
    EXPECT_EQ(Entries(), (QStringList{QStringLiteral("source"), QStringLiteral("target")}));
}

TEST_F(FileHelperTest, ACopyNeedsAFileAndAFolderToGoTo)
{
    const QString source = Make(QStringLiteral("source"));
    EXPECT_FALSE(
        FileHelper::CopyWithProgress(Path(QStringLiteral("none")), Path(QStringLiteral("target")), HelperCaption));
    EXPECT_FALSE(FileHelper::CopyWithProgress(Folder_.path(), Path(QStringLiteral("target")), HelperCaption));
    EXPECT_FALSE(FileHelper::CopyWithProgress(source, Path(QStringLiteral("no/such/target")), HelperCaption));
    EXPECT_FALSE(FileHelper::CopyWithProgress(source, source, HelperCaption));
    EXPECT_FALSE(FileHelper::CopyWithProgress(source, Folder_.path(), HelperCaption));
    EXPECT_FALSE(FileHelper::CopyWithProgress(QString(), source, HelperCaption));
    EXPECT_FALSE(FileHelper::CopyWithProgress(source, QString(), HelperCaption));
    EXPECT_EQ(ContentOf(source), "content");
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("source")});
}

TEST_F(FileHelperTest, AnEmptyFileAndStrangeNamesAreCopied)
{
    const QString name = QStringLiteral("ünï \"q\" 'a' \\ $x;\n*?.txt");
    const QString source = Make(name, "");
    ASSERT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("t"))));
    EXPECT_TRUE(FileHelper::CopyWithProgress(source, Path(QStringLiteral("t")), HelperCaption));
    EXPECT_EQ(FileHelper::FileSize(Path(QStringLiteral("t/") + name)), 0);
    const QString longName(250, u'n');
    EXPECT_TRUE(FileHelper::CopyWithProgress(source, Path(longName), HelperCaption));
    EXPECT_TRUE(FileHelper::FileExists(Path(longName)));
}

TEST_F(FileHelperTest, DeletesAFile)
{
    const QString file = Make(QStringLiteral("file"));
    EXPECT_TRUE(FileHelper::DeleteWithProgress(file, HelperCaption));
    EXPECT_FALSE(FileHelper::FileExists(file));
    EXPECT_EQ(User_.ProgressCaptions(), QStringList{HelperCaption});
}

TEST_F(FileHelperTest, WhatIsNotThereIsGone)
{
    EXPECT_TRUE(FileHelper::DeleteWithProgress(Path(QStringLiteral("none")), HelperCaption));
    EXPECT_TRUE(User_.ProgressCaptions().isEmpty());
}

TEST_F(FileHelperTest, AnEmptyNameAndTheRootAreNeverDeleted)
{
    EXPECT_FALSE(FileHelper::DeleteWithProgress(QString(), HelperCaption));
    EXPECT_FALSE(FileHelper::DeleteWithProgress(QStringLiteral("/"), HelperCaption));
}

TEST_F(FileHelperTest, DeletesAFolderWithAllItHoldsAndLeavesWhatLinksPointTo)
{
    const QString kept = Make(QStringLiteral("kept"));
    ASSERT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("keptFolder"))));
    const QString inside = Make(QStringLiteral("keptFolder/inside"));
    ASSERT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("tree/a/b"))));
    Make(QStringLiteral("tree/.hidden"));
    Make(QStringLiteral("tree/a/ünï\n"));
    ASSERT_TRUE(QFile::link(kept, Path(QStringLiteral("tree/fileLink"))));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("keptFolder")), Path(QStringLiteral("tree/a/folderLink"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("/no/such/file"), Path(QStringLiteral("tree/a/b/danglingLink"))));
    const QByteArray noText = QFile::encodeName(Path(QStringLiteral("tree/"))) + "\xFF\xFE";
    ASSERT_EQ(::mknod(noText.constData(), S_IFREG | 0600, 0), 0);
    EXPECT_TRUE(FileHelper::DeleteWithProgress(Path(QStringLiteral("tree")), HelperCaption));
    EXPECT_FALSE(FileHelper::FolderExists(Path(QStringLiteral("tree"))));
    EXPECT_EQ(ContentOf(kept), "content");
    EXPECT_EQ(ContentOf(inside), "content");
}

TEST_F(FileHelperTest, DeletesALinkToAFolderAndNotTheFolder)
{
    ASSERT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("folder"))));
    const QString inside = Make(QStringLiteral("folder/inside"));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("folder")), Path(QStringLiteral("link"))));
    EXPECT_TRUE(FileHelper::DeleteWithProgress(Path(QStringLiteral("link")), HelperCaption));
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("folder")});
    EXPECT_EQ(ContentOf(inside), "content");
}

TEST_F(FileHelperTest, ACancelledDeleteIsAFailure)
{
    ASSERT_TRUE(FileHelper::CreateFolder(Path(QStringLiteral("tree"))));
    Make(QStringLiteral("tree/a"));
    User_.CancelProgressAt(2);
    EXPECT_FALSE(FileHelper::DeleteWithProgress(Path(QStringLiteral("tree")), HelperCaption));
    EXPECT_TRUE(FileHelper::FolderExists(Path(QStringLiteral("tree"))));
}

TEST_F(FileHelperTest, TextIsReadAsUtf8OrElseLatin1)
{
    EXPECT_EQ(FileHelper::ReadTextFile(Make(QStringLiteral("utf8"), "K\xC3\xA4se\r\n")), u"K\u00E4se\r\n");
    EXPECT_EQ(FileHelper::ReadTextFile(Make(QStringLiteral("latin1"), "K\xE4se")), u"K\u00E4se");
    EXPECT_EQ(FileHelper::ReadTextFile(Make(QStringLiteral("marked"), "\xEF\xBB\xBFK\xC3\xA4se")), u"K\u00E4se");
    EXPECT_EQ(FileHelper::ReadTextFile(Make(QStringLiteral("utf16"), QByteArray("\xFF\xFEK\0\xE4\0", 6))), u"K\u00E4");
    EXPECT_EQ(FileHelper::ReadTextFile(Path(QStringLiteral("none"))), QString());
    EXPECT_EQ(FileHelper::ReadTextFile(Folder_.path()), QString());
}

TEST_F(FileHelperTest, WritingTextReplacesTheWholeFile)
{
    const QString file = Make(QStringLiteral("Tolva.oar"), "something much longer than the new text");
    EXPECT_TRUE(FileHelper::WriteTextFile(file, QStringLiteral("Käse\n")));
    EXPECT_EQ(ContentOf(file), "K\xC3\xA4se\n");
    EXPECT_TRUE(FileHelper::WriteTextFile(file, QString()));
    EXPECT_EQ(ContentOf(file), "");
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("Tolva.oar")});
    EXPECT_FALSE(FileHelper::WriteTextFile(Path(QStringLiteral("no/file")), QStringLiteral("x")));
}

TEST_F(FileHelperTest, WritingTextOntoAFullDiskLeavesTheOldText)
{
    const QString file = Make(QStringLiteral("file"), "old");
    {
        const FullDisk disk(1000);
        EXPECT_FALSE(FileHelper::WriteTextFile(file, QString(100000, u'x')));
    }
    EXPECT_EQ(ContentOf(file), "old");
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("file")});
}

TEST_F(FileHelperTest, RenamesOnlyToAFreeName)
{
    const QString source = Make(QStringLiteral("source"), "new");
    const QString target = Make(QStringLiteral("target"), "old");
    EXPECT_FALSE(FileHelper::RenameWithProgress(source, target, HelperCaption));
    EXPECT_EQ(ContentOf(target), "old");
    EXPECT_TRUE(FileHelper::RenameWithProgress(source, Path(QStringLiteral("free")), HelperCaption));
    EXPECT_EQ(ContentOf(Path(QStringLiteral("free"))), "new");
    EXPECT_FALSE(FileHelper::FileExists(source));
    EXPECT_FALSE(FileHelper::RenameWithProgress(source, Path(QStringLiteral("other")), HelperCaption));
}

TEST_F(FileHelperTest, RenamesAcrossFileSystemsByACopy)
{
    QTemporaryDir elsewhere(QStringLiteral("/dev/shm/tolvaTests-XXXXXX"));
    struct stat here = {};
    struct stat there = {};
    ::stat(QFile::encodeName(Folder_.path()).constData(), &here);
    if (!elsewhere.isValid() || ::stat(QFile::encodeName(elsewhere.path()).constData(), &there) != 0 ||
        here.st_dev == there.st_dev)
        GTEST_SKIP() << "this machine has no second file system to write to";
    const QString source = Make(QStringLiteral("source"), "new");
    const QString target = elsewhere.filePath(QStringLiteral("target"));
    EXPECT_TRUE(FileHelper::RenameWithProgress(source, target, HelperCaption));
    EXPECT_EQ(ContentOf(target), "new");
    EXPECT_FALSE(FileHelper::FileExists(source));
    EXPECT_EQ(User_.ProgressCaptions(), QStringList{HelperCaption});

    const QString second = Make(QStringLiteral("second"), "second");
    EXPECT_FALSE(FileHelper::RenameWithProgress(second, target, HelperCaption));
    EXPECT_EQ(ContentOf(target), "new");
    User_.CancelProgressAt(1);
    EXPECT_FALSE(FileHelper::RenameWithProgress(second, elsewhere.filePath(QStringLiteral("free")), HelperCaption));
    EXPECT_EQ(ContentOf(second), "second");
    EXPECT_EQ(QDir(elsewhere.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("target")});
}
