// SPDX-License-Identifier: Apache-2.0

// One look at a station for all lists that show it.

#include "database/watch/StationWatch.h"

#include "common/ClockHelper.h"
#include "core/support/StationTest.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

class StationWatchTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        EXPECT_EQ(Other.OpenTolvaDatabase(Folder.path()), 0);
        MoveStamps();
    }
    /// As another computer does it, a second later.
    void MoveStamps()
    {
        Now.Advance(1);
        Other.SetLastMessageChanged(ClockHelper::NowUTC());
        Other.SetLastPrizeChanged(ClockHelper::NowUTC());
    }
    StationWatch& Watch() const { return Station->Watch(); }
    /// What the next listener does in each poll.
    template <typename Work>
    void Listen(Work&& work)
    {
        QObject::connect(&Watch(), &StationWatch::Polled, &Listener, std::forward<Work>(work));
    }

    cTolvaDatabase Other;
    QObject Listener;
};

TEST_F(StationWatchTest, AllListenersAreToldWhoeverAsks)
{
    QList<const QObject*> askers;
    Listen([&](const QObject* asker) { askers.append(asker); });
    Listen([&](const QObject* asker) { askers.append(asker); });
    Watch().Poll(Listener);
    EXPECT_EQ(askers, QList<const QObject*>({&Listener, &Listener}));
}

TEST_F(StationWatchTest, OneReadingServesAllListenersOfAPoll)
{
    Date messages;
    Date prizes;
    Listen([&] {
        messages = Watch().MessageStamp();
        prizes = Watch().PrizeStamp();
        MoveStamps();
    });
    Listen([&] {
        EXPECT_EQ(Watch().MessageStamp(), messages);
        EXPECT_EQ(Watch().PrizeStamp(), prizes);
    });
    Watch().Poll(Listener);
    EXPECT_FALSE(messages.IsNone());
    EXPECT_NE(Watch().MessageStamp(), messages) << "behind the poll everybody reads";
    EXPECT_NE(Watch().PrizeStamp(), prizes);
}

TEST_F(StationWatchTest, TheStampThatTheFirstListenerGivesIsTheOneOfTheSecond)
{
    Other.SetLastMessageChanged(Date());
    Listen([&] {
        EXPECT_TRUE(Watch().MessageStamp().IsNone());
        Station->SetLastMessageChanged(ClockHelper::NowUTC());
    });
    Listen([&] { EXPECT_FALSE(Watch().MessageStamp().IsNone()); });
    Watch().Poll(Listener);
}

TEST_F(StationWatchTest, FoldersAreLoadedOnceInAPollAndAgainInTheNext)
{
    clsCategory folder;
    folder.SetDescription(QStringLiteral("Requests"));
    int polls = 0;
    Listen([&] {
        Watch().RefreshFolders();
        if (++polls == 1) {
            EXPECT_TRUE(Other.SaveMessageCategory(folder));
        }
    });
    QList<bool> isThere;
    Listen([&] {
        Watch().RefreshFolders();
        isThere.append(Station->MessageCategories().FindCategory(folder.Reference()) != nullptr);
    });
    Watch().Poll(Listener);
    Watch().Poll(Listener);
    EXPECT_EQ(isThere, QList<bool>({false, true}));
}

TEST_F(StationWatchTest, FoldersAreNotReadWhileNobodyWritesAndAreBehindAWrite)
{
    // A tree in memory that differs from the stored one is loaded anew, as long as the file is read.
    const QString other = QStringLiteral("Not stored");
    ASSERT_NE(Station->MessageCategories().FindCategory(tmcInbox), nullptr);
    const auto isRead = [&] {
        Station->MessageCategories().FindCategory(tmcInbox)->SetDescription(other);
        Watch().RefreshFolders();
        return Station->MessageCategories().FindCategory(tmcInbox)->Description() != other;
    };
    EXPECT_TRUE(isRead());
    const QDeadlineTimer deadline(20'000);
    while (isRead() && !deadline.hasExpired())
        QThread::msleep(20);
    ASSERT_FALSE(deadline.hasExpired());
    EXPECT_FALSE(isRead());
    clsCategory folder;
    folder.SetDescription(QStringLiteral("Requests"));
    EXPECT_TRUE(Other.SaveMessageCategory(folder));
    EXPECT_TRUE(isRead());
    EXPECT_NE(Station->MessageCategories().FindCategory(folder.Reference()), nullptr);
}

TEST_F(StationWatchTest, APollWithinAPollLeavesNothingOldBehind)
{
    bool isNested = false;
    Date first;
    Listen([&] {
        if (std::exchange(isNested, true))
            return;
        first = Watch().MessageStamp();
        MoveStamps();
        Watch().Poll(Listener);
    });
    Date second;
    Listen([&] { second = Watch().MessageStamp(); });
    Watch().Poll(Listener);
    EXPECT_NE(second, first);
}

TEST_F(StationWatchTest, AListenerMayDestroyTheStation)
{
    Listen([&] { Station.reset(); });
    bool isTold = false;
    Listen([&] { isTold = true; });
    Watch().Poll(Listener);
    EXPECT_FALSE(isTold);
}

/// On a server, which tells what others do.
class ServerWatchTest : public StationWatchTest
{
protected:
    void SetUp() override
    {
        PutOnServer();
        StationWatchTest::SetUp();
    }
};

TEST_F(ServerWatchTest, AChangeElsewhereIsToldWithinASecondAndOneOfItsOwnIsNot)
{
    int polls = 0;
    Listen([&] { ++polls; });
    Watch().Poll(Listener);
    ASSERT_EQ(polls, 1);
    const auto isToldWithin = [&](qint64 milliseconds) {
        const QDeadlineTimer deadline(milliseconds);
        const int before = polls;
        while (polls == before && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return polls > before;
    };
    EXPECT_TRUE(Other.SaveMessage(MakeMessage(QStringLiteral("From elsewhere"))));
    EXPECT_TRUE(isToldWithin(1000));
    EXPECT_TRUE(Station->SaveMessage(MakeMessage(QStringLiteral("From here"))));
    EXPECT_FALSE(isToldWithin(600));
}

TEST_F(ServerWatchTest, FoldersAreReadHoweverLongTheFileStaysAsItIs)
{
    const QString other = QStringLiteral("Not stored");
    const QDeadlineTimer deadline(3000);
    while (!deadline.hasExpired()) {
        Station->MessageCategories().FindCategory(tmcInbox)->SetDescription(other);
        Watch().RefreshFolders();
        ASSERT_NE(Station->MessageCategories().FindCategory(tmcInbox)->Description(), other);
        QThread::msleep(100);
    }
}

TEST_F(ServerWatchTest, WhileTheServerTellsFoldersAreReadOnlyBehindAChangeElsewhere)
{
    const QString other = QStringLiteral("Not stored");
    // A tree in memory that differs from the stored one is loaded anew when the folders are read.
    const auto change = [&] { Station->MessageCategories().FindCategory(tmcInbox)->SetDescription(other); };
    const auto isRead = [&] { return Station->MessageCategories().FindCategory(tmcInbox)->Description() != other; };
    Listen([&] { Watch().RefreshFolders(); });
    const auto isReadByItself = [&] {
        const QDeadlineTimer deadline(3000);
        while (!isRead() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return isRead();
    };
    Watch().Poll(Listener);
    change();
    Watch().Poll(Listener);
    EXPECT_FALSE(isRead());
    clsCategory folder;
    folder.SetDescription(QStringLiteral("Requests"));
    EXPECT_TRUE(Other.SaveMessageCategory(folder));
    EXPECT_TRUE(isReadByItself());
    EXPECT_NE(Station->MessageCategories().FindCategory(folder.Reference()), nullptr);
    // What was changed while nobody could be told is read as well.
    change();
    TestServer::Shared().Execute(
        QStringLiteral("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE query LIKE '%%1%' AND pid <> "
                       "pg_backend_pid()")
            .arg(Schema.Name));
    Watch().Poll(Listener);
    EXPECT_TRUE(isReadByItself());
}

TEST_F(ServerWatchTest, WhereReadingTakesLongTheDeskRestsLongerBetweenChangesThatComeWithoutPause)
{
    constexpr int ReadingMilliseconds = 300;
    int readings = 0;
    Watch().Poll(Listener);
    Listen([&] {
        ++readings;
        QThread::msleep(ReadingMilliseconds);
    });
    const QDeadlineTimer deadline(4000);
    while (!deadline.hasExpired()) {
        Other.SetLastPrizeChanged(ClockHelper::NowUTC());
        Now.Advance(1);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    EXPECT_GE(readings, 2);
    EXPECT_LE(readings, 3) << "a rest of 600 milliseconds would make it five";
}
