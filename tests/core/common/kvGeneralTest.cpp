// SPDX-License-Identifier: Apache-2.0
#include "common/kvGeneral.h"

#include "common/DebugLog.h"
#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "support/FixedClock.h"
#include "support/ScriptedUserInterface.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>
#include <sys/stat.h>

namespace
{
QString Text(const char16_t* text)
{
    return QString::fromUtf16(text);
}

class kvGeneralTest : public testing::Test
{
protected:
    ~kvGeneralTest() override
    {
        GeneralHelper::SetDebugMode(0);
        GeneralHelper::SetDebugPath(QString());
        DebugLog::SetCurrent(nullptr);
        QCoreApplication::setApplicationName(Text(u"tolvaTests"));
    }

    void StartLog(int level)
    {
        DebugLog::SetCurrent(&Log_);
        GeneralHelper::SetDebugMode(level);
        GeneralHelper::SetDebugPath(Folder_.filePath(Text(u"logs")));
    }
    QString LogText() const { return FileHelper::ReadTextFile(Folder_.filePath(Text(u"logs/coreTests.20261121.log"))); }
    QString Make(const QString& name) const
    {
        EXPECT_TRUE(FileHelper::WriteTextFile(Folder_.filePath(name), name));
        return Folder_.filePath(name);
    }

    QTemporaryDir Folder_;
    FixedClock Clock_;
    ScriptedUserInterface User_;
    DebugLog Log_;
};
} // namespace

TEST_F(kvGeneralTest, AProblemWithoutAnErrorIsToldInOneSentence)
{
    User_.ExpectWarning(Text(u"There was a problem saving a Prize because no Tolva Database has been opened"));
    EXPECT_EQ(ReportProblem(Text(u" saving a Prize because no Tolva Database has been opened "), 0, false),
              u"There was a problem saving a Prize because no Tolva Database has been opened");
}

TEST_F(kvGeneralTest, AnEngineErrorIsToldInItsOwnWordsWithItsNumber)
{
    const QString text =
        Text(u"There was a problem opening the database and the error's description was reported as : \n\n"
             u"\"Unrecognised database format (3343)\"");
    User_.ExpectWarning(text);
    EXPECT_EQ(ReportProblem(Text(u"opening the database"), 3343, false, Text(u"Unrecognised database format")), text);
}

TEST_F(kvGeneralTest, ASystemErrorIsToldInTheSystemsWords)
{
    EXPECT_EQ(ReportProblem(Text(u"x"), ENOSPC, true),
              Text(u"There was a problem x and the error's description was reported as : \n\n\"") +
                  QString::fromLocal8Bit(std::strerror(ENOSPC)) + u'"');
}

TEST_F(kvGeneralTest, WordsOfTheErrorCountMoreThanTheSystemsForTheSameNumber)
{
    EXPECT_EQ(ReportProblem(Text(u"x"), 13, true, Text(u"Type mismatch")),
              u"There was a problem x and the error's description was reported as : \n\n\"Type mismatch (13)\"");
}

TEST_F(kvGeneralTest, ANumberThatNobodyKnowsAddsNothing)
{
    EXPECT_EQ(ReportProblem(Text(u"x"), 3021, true), u"There was a problem x");
    EXPECT_EQ(ReportProblem(Text(u"x"), -1, true), u"There was a problem x");
    EXPECT_EQ(ReportProblem(Text(u"x"), 0, true, Text(u"not pending")), u"There was a problem x");
}

TEST_F(kvGeneralTest, ASilentProblemIsLoggedAllTheSame)
{
    StartLog(5);
    ReportProblem(Text(u"opening the database"), 0, true);
    EXPECT_EQ(LogText(), u"14:05:09 There was a problem opening the database\n");
    GeneralHelper::SetDebugMode(4);
    ReportProblem(Text(u"x"), 0, true);
    EXPECT_EQ(LogText(), u"14:05:09 There was a problem opening the database\n");
}

TEST_F(kvGeneralTest, ThePointerIsTheDefaultWhileTheBoxIsUp)
{
    User_.ExpectWarning(Text(u"There was a problem x"));
    {
        const BusyPointer outer;
        const BusyPointer inner;
        ReportProblem(Text(u"x"), 0, false);
        EXPECT_TRUE(User_.IsBusy());
    }
    EXPECT_FALSE(User_.IsBusy());
    EXPECT_FALSE(User_.WasBusyAtMessageBox(0));
    EXPECT_EQ(User_.BusyCount(), 2);
}

TEST_F(kvGeneralTest, ATemporaryFileIsMadeUnderTheProgramsTitle)
{
    QCoreApplication::setApplicationName(Text(u"Tolva Desk / 1"));
    const QString name = GetTempFile(Folder_.path(), QString());
    EXPECT_EQ(FileHelper::FolderOf(name), Folder_.path());
    EXPECT_TRUE(QRegularExpression(Text(u"^TOLVADESK1[0-9A-F]+\\.tmp$")).match(FileHelper::FileNameOf(name)).hasMatch())
        << qPrintable(name);
    EXPECT_EQ(FileHelper::FileSize(name), 0);
    EXPECT_NE(GetTempFile(Folder_.path(), Text(u"TMP")), name);
    EXPECT_EQ(QDir(Folder_.path()).entryList(QDir::Files).size(), 2);
}

TEST_F(kvGeneralTest, AProgramWithoutATitleIsTolva)
{
    QCoreApplication::setApplicationName(QString());
    const QString title = QCoreApplication::applicationName(); // the program file's name stands in for an empty one
    const QString prefix = (title.isEmpty() ? Text(u"Tolva") : title).toUpper();
    EXPECT_TRUE(FileHelper::FileNameOf(GetTempFile(Folder_.path(), QString())).startsWith(prefix));
}

TEST_F(kvGeneralTest, WithAnotherExtensionOnlyTheNameIsGiven)
{
    const QString name = GetTempFile(Folder_.path(), Text(u"MDB"));
    EXPECT_TRUE(name.endsWith(u".MDB"));
    EXPECT_FALSE(FileHelper::FileExists(name));
    EXPECT_TRUE(GetTempFile(Folder_.path(), Text(u"html")).endsWith(u".html"));
    EXPECT_TRUE(QDir(Folder_.path()).entryList(QDir::Files).isEmpty());
}

TEST_F(kvGeneralTest, WithoutAFolderItIsTheUsersTemporaryOneAndNobodyElseReadsIt)
{
    const QString name = GetTempFile(QString(), Text(u"tmp"));
    EXPECT_EQ(FileHelper::FolderOf(name), QDir::tempPath());
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(name).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_TRUE(QFile::remove(name));
}

TEST_F(kvGeneralTest, AFolderThatTakesNoFileGivesNoName)
{
    EXPECT_EQ(GetTempFile(Folder_.filePath(Text(u"none")), QString()), QString());
}

TEST_F(kvGeneralTest, AMissingTemporaryFolderIsShown)
{
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(Folder_.filePath(Text(u"none"))));
    User_.ExpectMessageBox({Text(u"Error getting a temporary file name :2"), QString(), MessageBoxButtons::OK,
                            MessageBoxIcon::Stop, MessageBoxAnswer::OK});
    EXPECT_EQ(GetTempFile(QString(), QString()), QString());
    if (before.isNull())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", before);
}

TEST_F(kvGeneralTest, ATemporaryFileLogsItsSteps)
{
    StartLog(5);
    GetTempFile(Folder_.path(), QString());
    EXPECT_EQ(LogText(), u"14:05:09 Start GetTempFile\n14:05:09 Assign a string\n14:05:09 AlphaNum the app.title\n"
                         u"14:05:09 Call GetTempFilename\n14:05:09 Process the return\n14:05:09 End GetTempFile\n");
}

TEST_F(kvGeneralTest, RenamesToAFreeName)
{
    const QString source = Make(Text(u"a"));
    EXPECT_TRUE(RenameWithChecks(source, Folder_.filePath(Text(u"b"))));
    EXPECT_EQ(FileHelper::ReadTextFile(Folder_.filePath(Text(u"b"))), u"a");
    EXPECT_FALSE(FileHelper::FileExists(source));
}

TEST_F(kvGeneralTest, RefusesToRenameOverAFileOrFolder)
{
    const QString source = Make(Text(u"a"));
    for (const QString& target : {Make(Text(u"b")), Folder_.path()}) {
        User_.ExpectWarning(Text(u"Could not rename '") + source + Text(u"' to '") + target +
                            Text(u"' as the destination file already exists.."));
        EXPECT_FALSE(RenameWithChecks(source, target));
    }
    EXPECT_TRUE(FileHelper::FileExists(source));
    EXPECT_EQ(FileHelper::ReadTextFile(Folder_.filePath(Text(u"b"))), u"b");
}

TEST_F(kvGeneralTest, RefusesToRenameBareFileNames)
{
    const QString source = Make(Text(u"a"));
    User_.ExpectWarning(
        Text(u"Could not rename 'a' to 'no such file' as there was no folder path information included."));
    EXPECT_FALSE(RenameWithChecks(Text(u"a"), Text(u"no such file")));
    User_.ExpectWarning(Text(u"Could not rename '") + source +
                        Text(u"' to 'no such file' as there was no folder path information included."));
    EXPECT_FALSE(RenameWithChecks(source, Text(u"no such file")));
    EXPECT_TRUE(FileHelper::FileExists(source));
}

TEST_F(kvGeneralTest, AFileThatIsNotThereIsNotRenamed)
{
    EXPECT_FALSE(RenameWithChecks(Folder_.filePath(Text(u"a")), Folder_.filePath(Text(u"b"))));
}
