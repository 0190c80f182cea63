// SPDX-License-Identifier: Apache-2.0
#include "common/DebugLog.h"

#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/kvGeneral.h"
#include "support/FixedClock.h"
#include "support/ScriptedRegistry.h"
#include "support/ScriptedUserInterface.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
class DebugLogTest : public testing::Test
{
protected:
    DebugLogTest()
    {
        DebugLog::SetCurrent(&Log_);
        GeneralHelper::SetDebugMode(-1);
        GeneralHelper::SetDebugPath(LogFolder());
    }
    ~DebugLogTest() override
    {
        GeneralHelper::SetDebugMode(0);
        GeneralHelper::SetDebugPath(QString());
        DebugLog::SetCurrent(nullptr);
    }

    QString LogFolder() const { return Folder_.filePath(QStringLiteral("logs")); }
    QString LogFile(const QString& day = QStringLiteral("20261121")) const
    {
        return FileHelper::Join(LogFolder(), QStringLiteral("coreTests.") + day + QStringLiteral(".log"));
    }
    QStringList Lines(const QString& day = QStringLiteral("20261121")) const
    {
        QStringList lines = FileHelper::ReadTextFile(LogFile(day)).split(u'\n');
        lines.removeLast();
        return lines;
    }

    QTemporaryDir Folder_;
    FixedClock Clock_;
    ScriptedRegistry Registry_;
    ScriptedUserInterface User_;
    DebugLog Log_;
};

QString Text(const char16_t* text)
{
    return QString::fromUtf16(text);
}
} // namespace

TEST_F(DebugLogTest, ALineHasTheTimeAndTheText)
{
    WriteDebugLog(Text(u"Opening Database"));
    EXPECT_EQ(FileHelper::ReadTextFile(LogFile()), u"14:05:09 Opening Database\n");
}

TEST_F(DebugLogTest, AtLevelZeroThereIsNoLineAndNoFolder)
{
    GeneralHelper::SetDebugMode(0);
    WriteDebugLog(Text(u"x"), 0);
    WriteDebugLog(Text(u"x"), 1);
    WriteDebugLog(Text(u"x"), -1);
    EXPECT_FALSE(FileHelper::FolderExists(LogFolder()));
    EXPECT_FALSE(Log_.DebugPathChecked);
}

TEST_F(DebugLogTest, LinesUpToTheLevelAreWritten)
{
    GeneralHelper::SetDebugMode(3);
    for (int level = 0; level <= 6; ++level)
        WriteDebugLog(QString::number(level), level);
    EXPECT_EQ(Lines(),
              (QStringList{Text(u"14:05:09 0"), Text(u"14:05:09 1"), Text(u"14:05:09 2"), Text(u"14:05:09 3")}));
}

TEST_F(DebugLogTest, MinusOneWritesEverything)
{
    WriteDebugLog(Text(u"a"), 99);
    WriteDebugLog(Text(u"b"), -1);
    EXPECT_EQ(Lines().size(), 2);
}

TEST_F(DebugLogTest, ALineOfLevelMinusOneAppearsAtFiveAndNotAtFour)
{
    GeneralHelper::SetDebugMode(4);
    WriteDebugLog(Text(u"at four"), -1);
    EXPECT_FALSE(FileHelper::FileExists(LogFile()));
    GeneralHelper::SetDebugMode(5);
    WriteDebugLog(Text(u"at five"), -1);
    EXPECT_EQ(Lines(), QStringList{Text(u"14:05:09 at five")});
}

TEST_F(DebugLogTest, AtMidnightTheLogMovesToTheNextDaysFile)
{
    Clock_.SetUtc(QDateTime(QDate(2026, 11, 21), QTime(23, 59, 59), Qt::UTC));
    WriteDebugLog(Text(u"before"));
    Clock_.Advance(1);
    WriteDebugLog(Text(u"after"));
    EXPECT_EQ(Lines(), QStringList{Text(u"23:59:59 before")});
    EXPECT_EQ(Lines(Text(u"20261122")), QStringList{Text(u"00:00:00 after")});
}

TEST_F(DebugLogTest, TheDayIsThatOfLocalTime)
{
    Clock_.SetUtc(QDateTime(QDate(2026, 6, 30), QTime(23, 30), Qt::UTC));
    WriteDebugLog(Text(u"x"));
    EXPECT_EQ(Lines(Text(u"20260701")), QStringList{Text(u"00:30:00 x")});
}

TEST_F(DebugLogTest, IndentActionsRaiseLowerAndReset)
{
    WriteDebugLog(Text(u"a"), 1, IndentAction::RaiseAfter);
    WriteDebugLog(Text(u"b"), 1, IndentAction::RaiseAfter);
    WriteDebugLog(Text(u"c"));
    WriteDebugLog(Text(u"d"), 1, IndentAction::LowerBefore);
    WriteDebugLog(Text(u"e"), 1, IndentAction::RaiseAfter);
    WriteDebugLog(Text(u"f"), 1, IndentAction::ResetBefore);
    WriteDebugLog(Text(u"g"), 1, IndentAction::LowerBefore);
    WriteDebugLog(Text(u"h"), 1, static_cast<IndentAction>(7));
    EXPECT_EQ(Lines(), (QStringList{Text(u"14:05:09 a"), Text(u"14:05:09     b"), Text(u"14:05:09         c"),
                                    Text(u"14:05:09     d"), Text(u"14:05:09     e"), Text(u"14:05:09 f"),
                                    Text(u"14:05:09 g"), Text(u"14:05:09 h")}));
}

TEST_F(DebugLogTest, ALineThatIsNotWrittenDoesNotChangeTheIndent)
{
    GeneralHelper::SetDebugMode(1);
    WriteDebugLog(Text(u"a"), 2, IndentAction::RaiseAfter);
    EXPECT_EQ(Log_.Indent(), 0);
}

TEST_F(DebugLogTest, FromLevelTenALineHasTheMemoryFigures)
{
    GeneralHelper::SetDebugMode(9);
    WriteDebugLog(Text(u"nine"), 1, IndentAction::RaiseAfter);
    GeneralHelper::SetDebugMode(10);
    WriteDebugLog(Text(u"ten"));
    ASSERT_EQ(Lines().size(), 2);
    EXPECT_EQ(Lines().first(), u"14:05:09 nine");
    const QRegularExpression pattern(Text(u"^14:05:09 ([ 0-9]{9,}[0-9]) ([ 0-9]{9,}[0-9])     ten$"));
    const auto match = pattern.match(Lines().last());
    ASSERT_TRUE(match.hasMatch()) << qPrintable(Lines().last());
    EXPECT_GT(match.captured(1).trimmed().toLongLong(), 100000);
    EXPECT_GT(match.captured(2).trimmed().toLongLong(), 100000);
}

TEST_F(DebugLogTest, TextWithLineBreaksGoesAsItStands)
{
    WriteDebugLog(Text(u"one\n\n\"two\" ä"));
    EXPECT_EQ(FileHelper::ReadTextFile(LogFile()), u"14:05:09 one\n\n\"two\" ä\n");
}

TEST_F(DebugLogTest, TheFolderIsASettingOfTheMachineAskedForOnce)
{
    GeneralHelper::SetDebugPath(QString());
    Registry_.Set(Text(u"SOFTWARE\\Kelvarin"), Text(u"DebugPath"), LogFolder());
    WriteDebugLog(Text(u"x"));
    EXPECT_EQ(Lines(), QStringList{Text(u"14:05:09 x")});
    EXPECT_EQ(GeneralHelper::DebugPath(), LogFolder() + u'/');
    Registry_.Set(Text(u"SOFTWARE\\Kelvarin"), Text(u"DebugPath"), Folder_.filePath(Text(u"other")));
    WriteDebugLog(Text(u"y"));
    EXPECT_EQ(Lines().size(), 2);
}

TEST_F(DebugLogTest, WithoutASettingTheFolderIsInTheUsersStateFolder)
{
    GeneralHelper::SetDebugPath(QString());
    const QByteArray before = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", QFile::encodeName(Folder_.path()));
    WriteDebugLog(Text(u"x"));
    if (before.isNull())
        qunsetenv("XDG_STATE_HOME");
    else
        qputenv("XDG_STATE_HOME", before);
    EXPECT_EQ(FileHelper::ReadTextFile(Folder_.filePath(Text(u"Tolva/DebugFiles/coreTests.20261121.log"))),
              u"14:05:09 x\n");
    EXPECT_EQ(GeneralHelper::DebugPath(), QString());
}

TEST_F(DebugLogTest, AFolderThatCannotBeMadeIsShownAtEveryLine)
{
    ASSERT_TRUE(FileHelper::WriteTextFile(LogFolder(), Text(u"a file in the way")));
    const QString text = Text(u"The Debug Files folder could not be created in '") + LogFolder() + Text(u"/'!");
    User_.ExpectWarning(text);
    User_.ExpectWarning(text);
    WriteDebugLog(Text(u"x"));
    WriteDebugLog(Text(u"y"));
}

TEST_F(DebugLogTest, AFailedWriteIsIgnored)
{
    ASSERT_TRUE(FileHelper::CreateFolder(LogFile()));
    WriteDebugLog(Text(u"x"), 1, IndentAction::RaiseAfter);
    EXPECT_EQ(Log_.Indent(), 1);
}
