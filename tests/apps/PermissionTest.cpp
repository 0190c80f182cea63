// SPDX-License-Identifier: Apache-2.0

// What this account may not do, in words that fit.

#include "CommandLineTest.h"

#ifndef Q_OS_WIN
#include <unistd.h>
#endif

class PermissionTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
        FileMail(Mail("A card"));
        // Whoever else runs a program has to get to it and to the station.
        ASSERT_TRUE(QFile::setPermissions(Path(QString()), QFile::permissions(Path(QString())) | Everybody));
        if (Nobody("--version").Code != 0)
            GTEST_SKIP() << "another account cannot start the program from where it was built";
    }
    void TearDown() override
    {
        QFile::setPermissions(Station(), QFile::permissions(Station()) | QFileDevice::WriteOwner);
    }

    static constexpr auto Everybody =
        QFileDevice::ReadGroup | QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;

    /// Runs as an account that owns nothing here, when the tests run as one that may do everything.
    Outcome Nobody(const char* command, const QStringList& words = {}) const
    {
        QProcess process;
        QStringList all{QString::fromLatin1(command)};
        if (*command != '-')
            all.append(Station());
        Prepare(process, all + words);
        return RunAsNobody(process);
    }
    static Outcome RunAsNobody(QProcess& process)
    {
        process.setChildProcessModifier([] {
            if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
                ::_exit(99);
        });
        process.start();
        EXPECT_TRUE(process.waitForFinished());
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    void Close(const QString& name) const
    {
        const auto writing = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
        ASSERT_TRUE(QFile::setPermissions(name, QFile::permissions(name) & ~writing));
    }
    /// Gives everybody all there is in the station.
    void OpenToEverybody() const
    {
        ASSERT_EQ(
            QProcess::execute(QStringLiteral("chmod"), {QStringLiteral("-R"), QStringLiteral("a+rwX"), Station()}), 0);
    }
};

TEST_F(PermissionTest, AStationThatMayNotBeWrittenIsNotCalledLocked)
{
    OpenToEverybody();
    Close(File());
    const Outcome outcome = Nobody("delete", {QStringLiteral("1")});
    EXPECT_EQ(outcome.Code, 77) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("this account may not write " + File().toUtf8()))
        << outcome.Problems.constData();
    EXPECT_FALSE(outcome.Problems.contains("locked"));
}

TEST_F(PermissionTest, ACompactionThatMayNotWriteDoesNotAskForRoom)
{
    OpenToEverybody();
    Close(Station());
    const Outcome outcome = Nobody("compact");
    EXPECT_EQ(outcome.Code, 77) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("ay not write " + Station().toUtf8())) << outcome.Problems.constData();
    EXPECT_FALSE(outcome.Problems.contains("room"));
    EXPECT_FALSE(outcome.Problems.contains("locked"));
}

TEST_F(PermissionTest, ABackupWhoseFolderMayNotBeWrittenSaysSoAndIsNotCalledLocked)
{
    Expect("backup");
    OpenToEverybody();
    const QString backups = Station() + QStringLiteral("/Backups/Tolva");
    for (const QFileInfo& folder : QDir(backups).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
        Close(folder.filePath()); // a backup of the same minute would go there
    Close(backups);
    const Outcome outcome = Nobody("backup");
    EXPECT_EQ(outcome.Code, 77) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("could not be written into " + backups.toUtf8() +
                                          ": this account may not write there"))
        << outcome.Problems.constData();
    EXPECT_FALSE(outcome.Problems.contains("locked"));
}

TEST_F(PermissionTest, AFileThatMayNotBeWrittenIsNotReplacedThoughItsFolderMay)
{
    OpenToEverybody();
    const QString file = Write(QStringLiteral("out/card.eml"), "precious");
    ASSERT_EQ(QProcess::execute(QStringLiteral("chmod"), {QStringLiteral("0777"), Path(QStringLiteral("out"))}), 0);
    Close(file);
    const Outcome outcome = Nobody("export", {QStringLiteral("1"), file, QStringLiteral("--force")});
    EXPECT_EQ(outcome.Code, 73) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("this account may not write there")) << outcome.Problems.constData();
    EXPECT_EQ(Read(file), "precious");
}

TEST_F(PermissionTest, ASettingThatCannotBeStoredIsNoSuccess)
{
    OpenToEverybody();
    Close(File());
    const Outcome outcome = Nobody("setting", {QStringLiteral("Station.Name"), QStringLiteral("Elsewhere FM")});
    EXPECT_EQ(outcome.Code, 77) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("this account may not write " + File().toUtf8()))
        << outcome.Problems.constData();
}

TEST_F(PermissionTest, AFolderForTheSearchIndexThatMayNotBeWrittenIsSaid)
{
    OpenToEverybody();
    const QString cache = Path(QStringLiteral("cache"));
    ASSERT_TRUE(QDir().mkpath(cache));
    ASSERT_TRUE(QFile::setPermissions(cache, QFile::permissions(cache) | Everybody));
    Close(cache);
    const Outcome outcome = Nobody("search", {QStringLiteral("card")});
    EXPECT_EQ(outcome.Code, 73) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("this account may not write there")) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Output.isEmpty());
    EXPECT_TRUE(QDir(cache).isEmpty());
}

TEST_F(PermissionTest, ASearchIndexIsReadByNobodyElse)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can act for another account";
    Expect("index");
    const QDir folder(Path(QStringLiteral("cache/Tolva/Search")));
    const QStringList names = folder.entryList({QStringLiteral("*.index")}, QDir::Files);
    ASSERT_EQ(names.size(), 1);
    const QString file = folder.filePath(names.first());
    const auto canRead = [&file] {
        QProcess process;
        process.setProgram(QStringLiteral("cat"));
        process.setArguments({file});
        return RunAsNobody(process).Code == 0;
    };
    for (const char* above : {"cache", "cache/Tolva"}) {
        const QString name = Path(QLatin1String(above));
        ASSERT_TRUE(QFile::setPermissions(name, QFile::permissions(name) | Everybody));
    }
    EXPECT_FALSE(canRead()) << "its folder is closed";
    ASSERT_TRUE(QFile::setPermissions(folder.path(), QFile::permissions(folder.path()) | Everybody));
    EXPECT_FALSE(canRead()) << "and so is the file itself";
    ASSERT_TRUE(QFile::setPermissions(file, QFile::permissions(file) | Everybody));
    EXPECT_TRUE(canRead()) << "or this would prove nothing";
}
