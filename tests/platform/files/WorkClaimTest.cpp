// SPDX-License-Identifier: Apache-2.0

// Who is making a file, and whether he lives.

#include "platform/files/WorkClaim.h"

#include "support/FaultyFileSystem.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace
{
class WorkClaimTest : public testing::Test
{
protected:
    QString Name() const { return Folder_.filePath(QStringLiteral("work")); }
    bool IsClaimed() const { return QFile::exists(WorkClaim::NameFor(Name())); }
    void LeaveClaim() const { ASSERT_TRUE(QFile(WorkClaim::NameFor(Name())).open(QIODevice::WriteOnly)); }

private:
    QTemporaryDir Folder_;
};

TEST_F(WorkClaimTest, ALivingOneIsNotTakenOverAndGoesWithItsMaker)
{
    {
        const WorkClaim claim(Name());
        EXPECT_TRUE(claim.Status().IsDone());
        EXPECT_TRUE(IsClaimed());
        EXPECT_EQ(WorkClaim::TakeOver(Name()), nullptr);
        EXPECT_TRUE(IsClaimed());
    }
    EXPECT_FALSE(IsClaimed());
}

TEST_F(WorkClaimTest, AnAbandonedOneIsTakenOverOnceAndGoesBehindIt)
{
    LeaveClaim();
    auto taken = WorkClaim::TakeOver(Name());
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(WorkClaim::TakeOver(Name()), nullptr);
    EXPECT_TRUE(IsClaimed());
    taken.reset();
    EXPECT_FALSE(IsClaimed());
    EXPECT_EQ(WorkClaim::TakeOver(Name()), nullptr);
}

TEST_F(WorkClaimTest, BesideAFileThatCouldNotBeRemovedItStaysForOthers)
{
    {
        const WorkClaim claim(Name());
        ASSERT_TRUE(QFile(Name()).open(QIODevice::WriteOnly));
    }
    EXPECT_NE(WorkClaim::TakeOver(Name()), nullptr);
    ASSERT_TRUE(QFile::remove(Name()));
    EXPECT_NE(WorkClaim::TakeOver(Name()), nullptr);
    EXPECT_FALSE(IsClaimed());
}

TEST_F(WorkClaimTest, ALinkUnderItsNameIsNotFollowed)
{
    const QString elsewhere = Name() + QStringLiteral("-elsewhere");
    ASSERT_TRUE(QFile(elsewhere).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(elsewhere, WorkClaim::NameFor(Name())));
    EXPECT_EQ(WorkClaim::TakeOver(Name()), nullptr);
    EXPECT_EQ(WorkClaim(Name()).Status().Error(), FileError::Exists);
    EXPECT_TRUE(QFile::exists(elsewhere));
    EXPECT_TRUE(IsClaimed());
}

TEST_F(WorkClaimTest, AFullDiskIsToldAndLeavesNone)
{
    FaultyFileSystem files;
    files.FailAt(1, FileError::Full);
    EXPECT_EQ(WorkClaim(Name()).Status().Error(), FileError::Full);
    EXPECT_FALSE(IsClaimed());
}

#ifdef Q_OS_UNIX
TEST_F(WorkClaimTest, OfAnotherProcessItIsAbandonedWhenThatIsKilledAndNotBefore)
{
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const WorkClaim claim(Name());
        const ssize_t told = ::write(ready[1], "r", 1);
        for (; told == 1;)
            ::pause();
        ::_exit(1);
    }
    char told = 0;
    EXPECT_EQ(::read(ready[0], &told, 1), 1);
    EXPECT_EQ(WorkClaim::TakeOver(Name()), nullptr);
    ::kill(child, SIGKILL);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_NE(WorkClaim::TakeOver(Name()), nullptr);
    EXPECT_FALSE(IsClaimed());
    ::close(ready[0]);
    ::close(ready[1]);
}
#endif
} // namespace
