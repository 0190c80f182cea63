// SPDX-License-Identifier: Apache-2.0

// tolva send held up, or killed, in front of each of its looks at the station and at the directory.

#include "SendTest.h"

#include <QDeadlineTimer>

#include <csignal>

/// Every fourth of the looks in each case, so that none takes long; the parameter is the first one.
class SendRaceTest : public SendTest, public testing::WithParamInterface<int>
{
protected:
    /// Starts a run that stops in front of that lock.
    void StartSlow(QProcess& process, int stopAt) const
    {
        Prepare(process, QStringList{QStringLiteral("send"), Station()} + SendWords());
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(STOPPING_LOCKS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("STOP_AT"), QString::number(stopAt));
        environment.insert(QStringLiteral("STOP_IN"), QStringLiteral(".mdb"));
        process.setProcessEnvironment(environment);
        process.start();
        ASSERT_TRUE(process.waitForStarted());
    }
    /// Waits until the process has stopped; false when it came to its end instead.
    static bool WaitForStop(QProcess& process)
    {
        const QString status = QStringLiteral("/proc/%1/stat").arg(process.processId());
        for (const QDeadlineTimer deadline(30000); !deadline.hasExpired();) {
            QFile file(status);
            const QByteArray line = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            if (line.mid(line.lastIndexOf(')') + 2, 1) == "T")
                return true;
            if (process.waitForFinished(1))
                return false;
        }
        ADD_FAILURE() << "the run neither stopped nor ended";
        return false;
    }
    static QByteArray Subject(int stopAt) { return "answer " + QByteArray::number(stopAt); }
    static constexpr int LeastLooks = 10;
    static constexpr int MostLooks = 500;
};

TEST_P(SendRaceTest, KilledAnywhereItSendsNothingTwiceAndForgetsNothing)
{
    for (int stopAt = GetParam(); stopAt < MostLooks; stopAt += 4) {
        const QString reference = WaitingMail(Subject(stopAt));
        QProcess held;
        StartSlow(held, stopAt);
        const bool hasStopped = WaitForStop(held);
        if (hasStopped) {
            held.kill();
            ASSERT_TRUE(held.waitForFinished(60000));
        }
        const int before = TimesTaken(Subject(stopAt));
        ASSERT_LE(before, 1);
        EXPECT_EQ(Send().Code, 0) << stopAt;
        // What the dead one had claimed is asked for once its time is over.
        if (StateOf(reference) == u"beingSent") {
            EXPECT_EQ(TimesTaken(Subject(stopAt)), before) << stopAt;
            SetLedger(reference, QStringLiteral("[Until]=1"));
            EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
            Expect("send", {before == 1 ? QStringLiteral("went") : QStringLiteral("again"), reference});
            EXPECT_EQ(Send().Code, 0);
        }
        EXPECT_EQ(TimesTaken(Subject(stopAt)), 1) << stopAt;
        EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent")) << stopAt;
        if (HasFailure() || !hasStopped) {
            EXPECT_GE(stopAt, LeastLooks) << "the run was never held up";
            return;
        }
    }
    FAIL() << "the run never came to its end";
}

TEST_P(SendRaceTest, ASecondRunBetweenAnyTwoStepsSendsNothingTwice)
{
    for (int stopAt = GetParam(); stopAt < MostLooks; stopAt += 4) {
        const QString reference = WaitingMail(Subject(stopAt));
        QProcess held;
        StartSlow(held, stopAt);
        const bool hasStopped = WaitForStop(held);
        EXPECT_EQ(Send().Code, 0) << stopAt;
        if (hasStopped) {
            ASSERT_EQ(::kill(static_cast<pid_t>(held.processId()), SIGCONT), 0);
            ASSERT_TRUE(held.waitForFinished(60000));
        }
        EXPECT_EQ(held.exitCode(), 0) << stopAt << held.readAllStandardError().constData();
        EXPECT_EQ(TimesTaken(Subject(stopAt)), 1) << stopAt;
        EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent")) << stopAt;
        if (HasFailure() || !hasStopped) {
            EXPECT_GE(stopAt, LeastLooks) << "the run was never held up";
            return;
        }
    }
    FAIL() << "the run never came to its end";
}

TEST_P(SendRaceTest, AMessageThatAnotherComputerDeletesMeanwhileGoesOutAtMostOnceAndStaysDeleted)
{
    int saved = 0;
    for (int stopAt = GetParam(); stopAt < MostLooks; stopAt += 4) {
        const QString reference = WaitingMail(Subject(stopAt));
        QProcess held;
        StartSlow(held, stopAt);
        const bool hasStopped = WaitForStop(held);
        const int before = TimesTaken(Subject(stopAt));
        if (hasStopped) {
            EXPECT_EQ(OnStation("delete", {reference}).Code, 0);
            ASSERT_EQ(::kill(static_cast<pid_t>(held.processId()), SIGCONT), 0);
            ASSERT_TRUE(held.waitForFinished(60000));
        }
        EXPECT_EQ(held.exitCode(), 0) << stopAt << held.readAllStandardError().constData();
        EXPECT_EQ(Send().Code, 0) << stopAt;
        saved += TimesTaken(Subject(stopAt)) == 0 ? 1 : 0;
        EXPECT_LE(TimesTaken(Subject(stopAt)), 1) << stopAt;
        if (hasStopped) {
            EXPECT_EQ(FolderOf(reference), QStringLiteral("Deleted Items")) << stopAt;
            if (before == 0 && TimesTaken(Subject(stopAt)) == 1)
                ADD_FAILURE() << "handed over behind the deletion, at " << stopAt;
        }
        if (HasFailure() || !hasStopped) {
            EXPECT_GE(saved, 1) << "hardly a deletion came in time";
            return;
        }
    }
    FAIL() << "the run never came to its end";
}

INSTANTIATE_TEST_SUITE_P(Looks, SendRaceTest, testing::Range(1, 5));
