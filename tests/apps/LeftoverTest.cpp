// SPDX-License-Identifier: Apache-2.0

// What commands leave behind when they are killed, and who clears it away.

#include "CommandLineTest.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <csignal>

namespace
{
class LeftoverTest : public CommandLineTest, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        // Only the backups that are asked for.
        Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
        FileMail(Mail("one", QByteArray(100000, 'm') + "\n"));
        Expect("backup");
    }
    /// Files under names of work, anywhere in the station.
    QStringList WorkingFiles() const
    {
        static const QRegularExpression working(
            QStringLiteral("^~|^\\.copy-|\\.restored-|^\\.unfinished-|-claim$|^TOLVA.*\\.MDB$|\\.tmp$"));
        QStringList found;
        QDirIterator files(Station(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            if (working.match(files.fileName()).hasMatch())
                found.append(files.filePath());
        }
        return found;
    }
    /// Those that go with the next command. What is written within moments has no claim, and goes when it is old.
    QStringList LargeWorkingFiles() const
    {
        QStringList files = WorkingFiles();
        static const QRegularExpression brief(QStringLiteral("/(\\.unfinished-[^/]*|TOLVA[^/]*\\.tmp)$"));
        files.removeIf([](const QString& name) { return brief.match(name).hasMatch(); });
        return files;
    }
    static void Age(const QString& name)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTimeUtc().addDays(-2), QFileDevice::FileModificationTime));
    }
    static QStringList Words(const QByteArray& command)
    {
        return command == "backup" ? QStringList() : QStringList(QStringLiteral("--yes"));
    }
    void Start(QProcess& process, const char* command, const char* library, const char* variable, int number) const
    {
        Prepare(process, QStringList{QString::fromLatin1(command), Station()} + Words(command));
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QString::fromUtf8(library));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QString::fromLatin1(variable), QString::number(number));
        process.setProcessEnvironment(environment);
        process.start();
        ASSERT_TRUE(process.waitForStarted());
    }
    void RemoveKept() const
    {
        for (const QFileInfo& kept : QDir(Station()).entryInfoList({QStringLiteral("*.BAK")}))
            QFile::remove(kept.filePath());
    }
};

TEST_P(LeftoverTest, OfACommandThatWasKilledAtAnyWriteGoesWithTheNextOne)
{
    const char* command = GetParam();
    int left = 0;
    for (int call = 1;; call += 1 + call / 12) {
        QProcess victim;
        Start(victim, command, FAILING_CALLS, "KILL_AT", call);
        ASSERT_TRUE(victim.waitForFinished());
        if (victim.exitStatus() == QProcess::NormalExit)
            break;
        left += WorkingFiles().isEmpty() ? 0 : 1;
        const char* next = call % 2 == 0 ? "backup" : command;
        ASSERT_EQ(OnStation(next, Words(next)).Code, 0) << call;
        ASSERT_EQ(LargeWorkingFiles(), QStringList()) << next << " behind a kill at " << call;
        ASSERT_EQ(OnStation("check").Code, 0) << call;
        RemoveKept();
    }
    EXPECT_GT(left, 3);
    for (const QString& small : WorkingFiles())
        Age(small);
    Expect("backup");
    EXPECT_EQ(WorkingFiles(), QStringList());
}

TEST_P(LeftoverTest, OfACommandThatIsHeldUpIsNotTaken)
{
    const char* command = GetParam();
    int held = 0;
    for (int stopAt = 1; stopAt < 500; ++stopAt) {
        QProcess slow;
        Start(slow, command, STOPPING_LOCKS, "STOP_AT", stopAt);
        if (!HasStopped(slow)) {
            EXPECT_EQ(slow.exitCode(), 0) << slow.readAllStandardError().constData();
            break;
        }
        const QStringList working = WorkingFiles();
        held += working.isEmpty() ? 0 : 1;
        const Outcome other = OnStation("compact", {QStringLiteral("--yes")});
        EXPECT_EQ(other.Code, 0) << other.Problems.constData();
        EXPECT_EQ(WorkingFiles(), working) << stopAt;
        ASSERT_EQ(::kill(static_cast<pid_t>(slow.processId()), SIGCONT), 0);
        ASSERT_TRUE(slow.waitForFinished(60000));
        EXPECT_EQ(slow.exitCode(), 0) << stopAt << slow.readAllStandardError().constData();
        EXPECT_EQ(WorkingFiles(), QStringList()) << stopAt;
        RemoveKept();
    }
    EXPECT_GT(held, 1);
}

INSTANTIATE_TEST_SUITE_P(, LeftoverTest, testing::Values("compact", "backup", "restore"),
                         [](const auto& given) { return std::string(given.param); });
} // namespace
