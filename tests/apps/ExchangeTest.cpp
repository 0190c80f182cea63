// SPDX-License-Identifier: Apache-2.0

// Compacting and restoring a station while others file, read and have their desks open, and when it is ended by force.

#include "CommandLineTest.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>

#include <atomic>
#include <mutex>
#include <thread>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

class ExchangeTest : public CommandLineTest
{
protected:
    static int Setting(const char* name, int otherwise)
    {
        const QByteArray given = qgetenv(name);
        return given.isEmpty() ? otherwise : given.toInt();
    }
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    void RemoveKept() const
    {
        for (const QFileInfo& kept : QDir(Station()).entryInfoList({QStringLiteral("*.BAK")}))
            QFile::remove(kept.filePath());
    }
    QSet<int> References() const
    {
        QSet<int> references;
        for (const QJsonObject& message : Messages())
            references.insert(message.value(QStringLiteral("reference")).toInt());
        return references;
    }
};

/// Programs at work on one station until they are told to stop. Every failure must be "try again".
class ExchangeUnderLoad : public ExchangeTest
{
protected:
    /// Runs in a thread of its own: nothing here is the test's but what the lock keeps.
    Outcome RunQuietly(const QStringList& words, const QByteArray& input = {}) const
    {
        QProcess process;
        Prepare(process, words);
        process.start();
        process.write(input);
        process.closeWriteChannel();
        process.waitForFinished(120000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
                process.readAllStandardError()};
    }
    void Note(const char* command, const Outcome& outcome)
    {
        const std::lock_guard guard(Lock_);
        ++Runs_;
        if (outcome.Code != 0 && outcome.Code != 75)
            Unexpected_.append(QByteArray(command) + ' ' + QByteArray::number(outcome.Code) + ": " + outcome.Problems);
        if (outcome.Code == 0)
            ++Successes_[QByteArray(command)];
    }
    void Repeat(const char* command, const QStringList& words = {})
    {
        Threads_.emplace_back([this, command, words] {
            while (!IsOver_)
                Note(command, RunQuietly(QStringList{QString::fromLatin1(command), Station()} + words));
        });
    }
    void RepeatFiling(int filer)
    {
        Threads_.emplace_back([this, filer] {
            for (int i = 0; !IsOver_; ++i) {
                const QByteArray subject = QByteArray::number(filer) + '-' + QByteArray::number(i);
                const Outcome outcome =
                    RunQuietly({QStringLiteral("file"), Station(), QStringLiteral("--verbose")}, Mail(subject));
                Note("file", outcome);
                const qsizetype at = outcome.Output.indexOf(" as ");
                if (at < 0)
                    continue;
                const std::lock_guard guard(Lock_);
                const int reference = outcome.Output.mid(at + 4).split('\n').first().toInt();
                if (!Given_.contains(reference))
                    Given_.insert(reference);
                else
                    Unexpected_.append("given twice: " + QByteArray::number(reference));
                Acknowledged_.insert(reference);
            }
        });
    }
    void WorkFor(int seconds)
    {
        QElapsedTimer clock;
        clock.start();
        for (int filer = 0; filer < 4; ++filer)
            RepeatFiling(filer);
        Repeat("list", {QStringLiteral("--json")});
        Repeat("list");
        while (clock.elapsed() < 1000 * seconds)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        IsOver_ = true;
        for (std::thread& thread : Threads_)
            thread.join();
        Threads_.clear();
        IsOver_ = false;
    }
    void ExpectAllThere()
    {
        EXPECT_EQ(Unexpected_.join('\n'), "");
        EXPECT_EQ((QSet<int>(Acknowledged_) - References()).size(), 0);
        const Outcome check = OnStation("check");
        EXPECT_EQ(check.Code, 0) << check.Output.constData() << check.Problems.constData();
    }

    std::vector<std::thread> Threads_;
    std::atomic<bool> IsOver_ = false;
    std::mutex Lock_;
    QSet<int> Given_;        ///< Ever, also those that a restore took back.
    QSet<int> Acknowledged_; ///< Of what must be there.
    QList<QByteArray> Unexpected_;
    QMap<QByteArray, int> Successes_;
    int Runs_ = 0;
};

TEST_F(ExchangeUnderLoad, NothingThatWasAcknowledgedIsLostAndNoNumberIsGivenTwice)
{
    const int seconds = Setting("TOLVA_SOAK_SECONDS", 16);
    QProcess desk;
    Prepare(desk, {Station()});
    QProcessEnvironment environment = desk.processEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("TOLVA_DESK_SETTINGS"), Path(QStringLiteral("desk.ini")));
    desk.setProcessEnvironment(environment);
    desk.setProgram(QStringLiteral(TOLVA_DESK_PROGRAM));
    desk.start();
    ASSERT_TRUE(desk.waitForStarted());
    Expect("backup");

    Repeat("compact", {QStringLiteral("--yes")});
    WorkFor(seconds / 2);
    ExpectAllThere();
    EXPECT_GT(Successes_.value("compact"), 0);

    RemoveKept();
    Repeat("compact", {QStringLiteral("--yes")});
    Repeat("restore", {QStringLiteral("--yes")});
    Repeat("backup");
    WorkFor(seconds / 2);
    EXPECT_GT(Successes_.value("restore"), 0);
    // What was acknowledged so far may be what a restore took back; what comes now may not.
    Acknowledged_.clear();
    RemoveKept();
    WorkFor(1);
    EXPECT_GT(Acknowledged_.size(), 0);
    ExpectAllThere();
    EXPECT_EQ(desk.state(), QProcess::Running) << desk.readAllStandardError().constData();
    desk.terminate();
    if (!desk.waitForFinished(10000)) {
        desk.kill();
        desk.waitForFinished();
    }
}

/// One of these is killed at a random moment.
class KilledExchange : public ExchangeTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(KilledExchange, AtAnyMomentLeavesTheStationWholeOldOrNew)
{
    const QByteArray given = qgetenv("TOLVA_TEST_SEED");
    const quint32 seed = given.isEmpty() ? QRandomGenerator::system()->generate() : given.toUInt();
    SCOPED_TRACE(testing::Message() << "seed (TOLVA_TEST_SEED): " << seed);
    QRandomGenerator random(seed);
    const QByteArray command = GetParam();
    // Only the backups that are asked for.
    Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
    for (int i = 0; i < 5; ++i)
        FileMail(Mail(QByteArray::number(i), QByteArray(200000, 'm') + "\n"));
    Expect("backup");
    QSet<int> old = References();
    const QSet<int> backedUp = old;
    QElapsedTimer clock;
    clock.start();
    QStringList words;
    if (command != "backup")
        words.append(QStringLiteral("--yes"));
    ASSERT_EQ(OnStation(command.constData(), words).Code, 0);
    const auto usual = static_cast<quint32>(clock.elapsed());
    int killed = 0;
    const int rounds = Setting("TOLVA_KILL_ROUNDS", 30) / 3;
    for (int round = 0; round < rounds; ++round) {
        const QString extra = FileMail(Mail("extra"));
        QSet<int> now = old;
        now.insert(extra.toInt());
        QProcess victim;
        Prepare(victim, QStringList{QString::fromLatin1(command), Station()} + words);
        victim.start();
        ASSERT_TRUE(victim.waitForStarted());
        victim.waitForFinished(static_cast<int>(random.bounded(usual + 5)));
        victim.kill();
        ASSERT_TRUE(victim.state() == QProcess::NotRunning || victim.waitForFinished());
        killed += victim.exitStatus() == QProcess::CrashExit ? 1 : 0;
        const Outcome check = OnStation("check");
        ASSERT_EQ(check.Code, 0) << round << ' ' << check.Output.constData() << check.Problems.constData();
        const QSet<int> found = References();
        if (command == "restore")
            ASSERT_TRUE(found == now || found == backedUp) << round;
        else
            ASSERT_EQ(found, now) << round;
        old = found;
        RemoveKept();
    }
    EXPECT_GT(killed, 0);
}

INSTANTIATE_TEST_SUITE_P(, KilledExchange, testing::Values("compact", "backup", "restore"),
                         [](const auto& given) { return std::string(given.param); });

TEST_F(ExchangeTest, AFullDiskAtAnyStepLeavesTheStationAsItWasAndIsSaid)
{
    const int reference = FileMail(Mail("one", QByteArray(100000, 'm') + "\n")).toInt();
    Expect("backup");
    for (const char* command : {"compact", "restore"}) {
        int failures = 0;
        for (int call = 1;; call += 1 + call / 6) {
            QProcess process;
            Prepare(process, {QString::fromLatin1(command), Station(), QStringLiteral("--yes")});
            QProcessEnvironment environment = process.processEnvironment();
            environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
            environment.insert(QStringLiteral("FAIL_FROM"), QString::number(call));
            environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
            process.setProcessEnvironment(environment);
            process.start();
            ASSERT_TRUE(process.waitForFinished());
            const QByteArray problems = process.readAllStandardError();
            ASSERT_EQ(process.exitStatus(), QProcess::NormalExit) << command << call;
            if (process.exitCode() == 0)
                break;
            ++failures;
            EXPECT_TRUE(process.exitCode() == 74 || process.exitCode() == 65)
                << command << ' ' << call << ": " << process.exitCode() << ' ' << problems.constData();
            EXPECT_FALSE(problems.isEmpty()) << command << call;
            ASSERT_EQ(OnStation("check").Code, 0) << command << call;
            ASSERT_EQ(References(), QSet<int>{reference}) << command << call;
        }
        EXPECT_GT(failures, 5) << command;
    }
}

#ifdef Q_OS_UNIX
TEST_F(ExchangeTest, TheFilesModeSurvivesCompactingAndRestoring)
{
    FileMail(Mail("one"));
    Expect("backup");
    const QByteArray name = File().toUtf8();
    ASSERT_EQ(::chmod(name.constData(), 0660), 0);
    const mode_t mask = ::umask(022);
    Expect("compact", {QStringLiteral("--yes")});
    Expect("restore", {QStringLiteral("--yes")});
    ::umask(mask);
    struct stat status = {};
    ASSERT_EQ(::stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0660U);
    const QFileInfoList kept = QDir(Station()).entryInfoList({QStringLiteral("*.BAK")});
    ASSERT_EQ(kept.size(), 2);
    for (const QFileInfo& info : kept) {
        ASSERT_EQ(::stat(info.filePath().toUtf8().constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, 0660U);
    }
}
#endif
