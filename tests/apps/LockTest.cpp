// SPDX-License-Identifier: Apache-2.0

// A station that another program holds, and two programs at work on one station.

#include "CommandLineTest.h"

#include <QElapsedTimer>

#include <sqlite3.h>

class LockTest : public CommandLineTest
{
protected:
    /// Holds the station's file as another computer's commit does.
    class Lock
    {
    public:
        explicit Lock(const QString& file)
        {
            EXPECT_EQ(sqlite3_open(file.toUtf8().constData(), &Database_), SQLITE_OK);
            EXPECT_EQ(sqlite3_exec(Database_, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
        }
        ~Lock()
        {
            sqlite3_exec(Database_, "ROLLBACK", nullptr, nullptr, nullptr);
            sqlite3_close(Database_);
        }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        sqlite3* Database_ = nullptr;
    };

    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
};

TEST_F(LockTest, FilingIntoALockedStationAsksForAnotherTryWhichFilesTheMail)
{
    {
        const Lock lock(File());
        QElapsedTimer clock;
        clock.start();
        const Outcome outcome = OnStation("file", {}, Mail("waits"));
        EXPECT_EQ(outcome.Code, 75);
        EXPECT_TRUE(outcome.Problems.contains("locked by another computer or program")) << outcome.Problems.constData();
        EXPECT_FALSE(outcome.Output.contains("filed 1"));
        EXPECT_LT(clock.elapsed(), 15000);
    }
    EXPECT_EQ(Expect("file", {}, Mail("waits")), "filed 1, failed 0\n");
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(LockTest, ALockedDirectoryAsksForAnotherTryToo)
{
    const Lock lock(Station() + QStringLiteral("/Directory/Directory.mdb"));
    EXPECT_EQ(OnStation("file", {}, Mail("waits")).Code, 75);
}

TEST_F(LockTest, TheCheckOfALockedStationIsNoFinding)
{
    const Lock lock(File());
    const Outcome outcome = OnStation("check");
    EXPECT_EQ(outcome.Code, 75);
    EXPECT_FALSE(outcome.Output.contains("sound"));
}

TEST_F(LockTest, TwoProgramsFileAtOnceAndNothingIsLost)
{
    constexpr int Each = 60;
    QByteArray mbox;
    for (int i = 0; i < Each; ++i)
        mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" + Mail("message " + QByteArray::number(i)) + '\n';
    const QString path = Write(QStringLiteral("mbox"), mbox);
    QProcess first;
    QProcess second;
    for (QProcess* process : {&first, &second}) {
        Prepare(*process, {QStringLiteral("file"), Station(), path});
        process->start();
    }
    for (QProcess* process : {&first, &second}) {
        ASSERT_TRUE(process->waitForFinished());
        EXPECT_EQ(process->exitCode(), 0) << process->readAllStandardError().constData();
        EXPECT_EQ(process->readAllStandardOutput(), "filed 60, failed 0\n");
    }
    EXPECT_EQ(Messages().size(), 2 * Each);
    EXPECT_EQ(OnStation("check").Code, 0);
}
