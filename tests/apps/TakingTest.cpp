// SPDX-License-Identifier: Apache-2.0

// tolva file --take and --once: what is handed over again is filed once, and what is filed is taken away.

#include "CommandLineTest.h"

#include <QFile>

#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

class TakingTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        for (const char* folder : {"box/new", "box/cur", "box/tmp", "post"})
            ASSERT_TRUE(QDir().mkpath(Path(QLatin1String(folder))));
    }
    QStringList Left(const char* folder) const { return QDir(Path(QLatin1String(folder))).entryList(QDir::Files); }
    Outcome Take(const char* folder, const QStringList& words = {}) const
    {
        return OnStation("file",
                         QStringList{QStringLiteral("--take")} + words + QStringList{Path(QLatin1String(folder))});
    }
};

TEST_F(TakingTest, WhatIsFiledIsTakenAwayAndNothingElse)
{
    Write(QStringLiteral("box/new/1.a"), Mail("one"));
    Write(QStringLiteral("box/cur/2.a:2,S"), Mail("two"));
    Write(QStringLiteral("box/tmp/3.a"), Mail("is still being delivered"));
    const Outcome taken = Take("box");
    EXPECT_EQ(taken.Code, 0) << taken.Problems.constData();
    EXPECT_EQ(taken.Output, "filed 2, failed 0, passed over 0\n");
    EXPECT_TRUE(Left("box/new").isEmpty());
    EXPECT_TRUE(Left("box/cur").isEmpty());
    EXPECT_EQ(Left("box/tmp").size(), 1);
    EXPECT_EQ(Messages().size(), 2);
    EXPECT_EQ(Take("box").Output, "filed 0, failed 0, passed over 0\n");
}

TEST_F(TakingTest, WhatAKilledCallHasFiledIsTakenAwayAndNotFiledAgain)
{
    const QString mail = Write(QStringLiteral("box/new/1.a"), Mail("one"));
    Expect("file", {mail});
    EXPECT_EQ(Take("box").Output, "filed 0, failed 0, passed over 1\n");
    EXPECT_TRUE(Left("box/new").isEmpty());
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(TakingTest, WhatIsNoFileInASpoolIsNamed)
{
    Write(QStringLiteral("post/1.eml"), Mail("one"));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), Path(QStringLiteral("post/2.eml"))));
    ASSERT_EQ(::mkfifo(QFile::encodeName(Path(QStringLiteral("post/3.sms"))).constData(), 0600), 0);
    ASSERT_EQ(::mkfifo(QFile::encodeName(Path(QStringLiteral("post/4.control"))).constData(), 0600), 0);
    const Outcome taken = Take("post");
    EXPECT_EQ(taken.Code, 66);
    EXPECT_EQ(taken.Output, "filed 1, failed 2, passed over 0\n");
    EXPECT_TRUE(taken.Problems.contains("2.eml is a link")) << taken.Problems.constData();
    EXPECT_TRUE(taken.Problems.contains("3.sms is no file")) << taken.Problems.constData();
    EXPECT_FALSE(taken.Problems.contains("left out")) << taken.Problems.constData();
}

TEST_F(TakingTest, WhatIsNoMailIsTakenFromAMaildirAndAnEmptyFileStays)
{
    Write(QStringLiteral("box/new/1.a"), "Only words.\n");
    Write(QStringLiteral("box/new/2.a"), "");
    const Outcome taken = Take("box");
    EXPECT_EQ(taken.Code, 65);
    EXPECT_TRUE(taken.Problems.contains("2.a is empty")) << taken.Problems.constData();
    EXPECT_EQ(Left("box/new"), QStringList{QStringLiteral("2.a")});
    EXPECT_EQ(Messages().size(), 1);
}

// Whoever watches over the folder is started again and again while something is in it, unless the code says that
// something is wrong.
TEST_F(TakingTest, WhatIsNoFileInAMaildirStaysAndIsNamedAndNoLinkIsFollowed)
{
    Write(QStringLiteral("box/new/1.a"), Mail("one"));
    Write(QStringLiteral("secret.txt"), "Not for the station\n");
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("secret.txt")), Path(QStringLiteral("box/new/2.link"))));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), Path(QStringLiteral("box/cur/3.dangling:2,"))));
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("box/new/4.folder"))));
    ASSERT_EQ(::mkfifo(QFile::encodeName(Path(QStringLiteral("box/cur/5.pipe"))).constData(), 0600), 0);
    const Outcome taken = Take("box");
    EXPECT_EQ(taken.Code, 66);
    EXPECT_EQ(taken.Output, "filed 1, failed 4, passed over 0\n");
    EXPECT_TRUE(taken.Problems.contains("2.link is a link, and only files are taken")) << taken.Problems.constData();
    EXPECT_TRUE(taken.Problems.contains("3.dangling:2, is a link")) << taken.Problems.constData();
    EXPECT_TRUE(taken.Problems.contains("4.folder is a folder")) << taken.Problems.constData();
    EXPECT_TRUE(taken.Problems.contains("5.pipe is no file")) << taken.Problems.constData();
    EXPECT_EQ(Messages().size(), 1);
    EXPECT_TRUE(QFileInfo(Path(QStringLiteral("box/new/2.link"))).isSymLink());
    // Who files without taking away may well use links of his own.
    EXPECT_EQ(OnStation("file", {Path(QStringLiteral("box"))}).Output, "filed 0, failed 1\n");
    EXPECT_EQ(OnStation("file", {Path(QStringLiteral("box/new/2.link"))}).Code, 65);
}

TEST_F(TakingTest, ALinkInASpoolIsNotFollowedEither)
{
    Write(QStringLiteral("other.eml"), Mail("Of somebody else"));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("other.eml")), Path(QStringLiteral("post/1.eml"))));
    const Outcome taken = Take("post");
    EXPECT_EQ(taken.Code, 66);
    EXPECT_TRUE(taken.Problems.contains("1.eml is a link")) << taken.Problems.constData();
    EXPECT_TRUE(Messages().isEmpty());
}

TEST_F(TakingTest, TextsOfASpoolAreTakenOnce)
{
    const QByteArray text = "From: 07700 900123\nReceived: 2026-11-12 09:00:00\n\nIs the ferry late?\n";
    Write(QStringLiteral("post/1.sms"), text);
    EXPECT_EQ(Take("post").Output, "filed 1, failed 0, passed over 0\n");
    Write(QStringLiteral("post/1.sms"), text);
    EXPECT_EQ(Take("post").Output, "filed 0, failed 0, passed over 1\n");
    EXPECT_TRUE(Left("post").isEmpty());
}

TEST_F(TakingTest, OfTwoAtOnceTheSecondAsksForAnotherTry)
{
    Write(QStringLiteral("box/new/1.a"), Mail("one"));
    ASSERT_EQ(Take("box").Code, 0);
    Write(QStringLiteral("box/new/2.a"), Mail("two"));
    const int file = ::open(QFile::encodeName(Path(QStringLiteral("box/.tolva-taking"))).constData(), O_RDWR);
    ASSERT_GE(file, 0);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    ASSERT_EQ(::fcntl(file, F_SETLK, &lock), 0);
    const Outcome second = Take("box");
    EXPECT_EQ(second.Code, 75);
    EXPECT_TRUE(second.Problems.contains("takes messages out of")) << second.Problems.constData();
    EXPECT_EQ(Left("box/new").size(), 1);
    ::close(file);
    EXPECT_EQ(Take("box").Code, 0);
    EXPECT_EQ(Messages().size(), 2);
}

TEST_F(TakingTest, AFileThatCannotBeRemovedIsNamedAndFiledOnce)
{
    Write(QStringLiteral("post/1.eml"), Mail("one"));
    QProcess process;
    Prepare(process, {QStringLiteral("file"), Station(), QStringLiteral("--take"), Path(QStringLiteral("post"))});
    QProcessEnvironment environment = process.processEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    environment.insert(QStringLiteral("FAIL_NAMES"), QStringLiteral("1.eml"));
    environment.insert(QStringLiteral("FAIL_FROM"), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    process.start();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 74);
    EXPECT_TRUE(process.readAllStandardError().contains("1.eml is in the station, but the file cannot be removed"));
    EXPECT_EQ(Left("post").size(), 1);
    EXPECT_EQ(Take("post").Output, "filed 0, failed 0, passed over 1\n");
    EXPECT_TRUE(Left("post").isEmpty());
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(TakingTest, NothingIsTakenFromAnythingButFolders)
{
    const QString mail = Write(QStringLiteral("post/1.eml"), Mail("one"));
    EXPECT_EQ(OnStation("file", {QStringLiteral("--take"), mail}).Code, 66);
    EXPECT_EQ(OnStation("file", {QStringLiteral("--take")}, Mail("two")).Code, 64);
    EXPECT_TRUE(QFile::exists(mail));
    EXPECT_TRUE(Messages().isEmpty());
}

TEST_F(TakingTest, AMailThatIsHandedOverAgainIsFiledOnceAndOneOfAnotherRouteTwice)
{
    const QByteArray mail = Mail("one");
    const QByteArray byRoute = "Received: by mx.example.org; Fri, 20 Nov 2026 08:00:01 +0000\r\n" + mail;
    const QStringList once = {QStringLiteral("--once")};
    EXPECT_EQ(Expect("file", once, mail), "filed 1, failed 0, passed over 0\n");
    EXPECT_EQ(Expect("file", once, mail), "filed 0, failed 0, passed over 1\n");
    EXPECT_EQ(Expect("file", once, byRoute), "filed 1, failed 0, passed over 0\n");
    EXPECT_EQ(Expect("file", {QStringLiteral("--skip-filed")}, "X-Spam-Score: 0\r\n" + byRoute),
              "filed 0, failed 0, passed over 1\n");
    EXPECT_EQ(Expect("file", once, mail + "PS\r\n"), "filed 1, failed 0, passed over 0\n");
    EXPECT_EQ(Messages().size(), 3);
}

TEST_F(TakingTest, AMailWithoutADateIsKnownAgain)
{
    const QStringList once = {QStringLiteral("--once")};
    EXPECT_EQ(Expect("file", once, "Only words.\n"), "filed 1, failed 0, passed over 0\n");
    EXPECT_EQ(Expect("file", once, "Only words.\n"), "filed 0, failed 0, passed over 1\n");
    EXPECT_EQ(Expect("file", once, "Other words.\n"), "filed 1, failed 0, passed over 0\n");
}

TEST_F(TakingTest, OfAMailThatTwoAreHandedOneIsFiledWhereverTheFirstIsHeldUp)
{
    constexpr int LookingMilliseconds = 700;
    const auto start = [this](QProcess& run, const QByteArray& mail, int stopAt) {
        Prepare(run, {QStringLiteral("file"), Station(), QStringLiteral("--once")});
        QProcessEnvironment environment = run.processEnvironment();
        if (stopAt > 0) {
            environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(STOPPING_LOCKS));
            environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
            environment.insert(QStringLiteral("STOP_AT"), QString::number(stopAt));
        }
        run.setProcessEnvironment(environment);
        run.start();
        run.write(mail);
        run.closeWriteChannel();
        ASSERT_TRUE(run.waitForStarted());
    };
    int stops = 0;
    for (int stopAt = 1;; ++stopAt) {
        const QByteArray mail = Mail("one " + QByteArray::number(stopAt));
        QProcess first;
        start(first, mail, stopAt);
        if (!HasStopped(first))
            break;
        ++stops;
        QProcess second;
        start(second, mail, 0);
        // It is over, or waits for the first.
        const bool isOver = second.waitForFinished(LookingMilliseconds);
        ASSERT_EQ(::kill(static_cast<pid_t>(first.processId()), SIGCONT), 0);
        ASSERT_TRUE(first.waitForFinished());
        ASSERT_TRUE(isOver || second.waitForFinished());
        EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().constData();
        EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().constData();
        ASSERT_EQ(Messages().size(), stopAt) << "held up at lock " << stopAt;
    }
    EXPECT_GT(stops, 2);
}

TEST_F(TakingTest, WhoFilesOnceWaitsForAnotherAndAsksForAnotherTryInTheEnd)
{
    const QStringList once = {QStringLiteral("--once")};
    Expect("file", once, Mail("one"));
    const int file = ::open(QFile::encodeName(Station() + QStringLiteral("/.tolva-filing")).constData(), O_RDWR);
    ASSERT_GE(file, 0);
    struct flock all = {};
    all.l_type = F_WRLCK;
    all.l_whence = SEEK_SET;
    ASSERT_EQ(::fcntl(file, F_OFD_SETLK, &all), 0);
    const Outcome refused = OnStation("file", once, Mail("two"));
    EXPECT_EQ(refused.Code, 75);
    EXPECT_TRUE(refused.Problems.contains("Another program files mails")) << refused.Problems.constData();
    ::close(file);
    EXPECT_EQ(Messages().size(), 1);
    EXPECT_EQ(Expect("file", once, Mail("two")), "filed 1, failed 0, passed over 0\n");
}
