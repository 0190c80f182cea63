// SPDX-License-Identifier: Apache-2.0

// The change stamp of a save, what a list makes of it, and which rows differ.

#include "database/watch/ChangeStamp.h"

#include "common/ClockHelper.h"
#include "core/support/StationTest.h"
#include "database/watch/RowChanges.h"
#include "platform/records/DBEngine.h"

#include <QSet>

#include <algorithm>
#include <functional>

namespace
{
const QString Setting = QStringLiteral("Messages.LastChanged");
}

class ChangeStampTest : public StationTest
{
protected:
    ChangeStampTest()
    {
        OpenStation();
        Database_ = dao::DBEngine::OpenDatabase(FileName());
    }
    StampMove Move(Date now) { return MoveStamp(*Database_, Setting, now); }

private:
    std::unique_ptr<dao::Database> Database_;
};

TEST_F(ChangeStampTest, ASaveLeavesItsTimeAndFindsTheStampBefore)
{
    const StampMove first = Move(Date(46347.25));
    EXPECT_TRUE(first.Before.IsNone());
    EXPECT_EQ(first.After, Date(46347.25));
    const StampMove second = Move(Date(46347.5));
    EXPECT_EQ(second.Before, Date(46347.25));
    EXPECT_EQ(second.After, Date(46347.5));
    EXPECT_EQ(Station->LastMessageChanged(), Date(46347.5));
}

TEST_F(ChangeStampTest, ManySavesInOneMomentLeaveAStampEach)
{
    QSet<double> stamps;
    for (int i = 0; i < 100; ++i)
        stamps.insert(Move(Date(46347.5)).After.DayNumber());
    EXPECT_EQ(stamps.size(), 100);
    EXPECT_NEAR(Station->LastMessageChanged().DayNumber(), 46347.5, 1.1e-6);
}

TEST_F(ChangeStampTest, AClockThatIsALittleBehindDoesNotGoBackAndOneThatIsFarBehindDoes)
{
    Move(Date(46347.5));
    EXPECT_GT(Move(Date(46347.5 - 1e-5)).After, Date(46347.5));
    EXPECT_EQ(Move(Date(46347.25)).After, Date(46347.25));
}

TEST_F(ChangeStampTest, OfSavesThroughTwoOpenFilesInTurnsEachFindsTheOneBeforeIt)
{
    constexpr int Saves = 40;
    std::vector<StampMove> moves[2];
    const auto second = dao::DBEngine::OpenDatabase(FileName());
    for (int i = 0; i < Saves; ++i) {
        moves[0].push_back(Move(Date(46347.5 + i * 1e-7)));
        moves[1].push_back(MoveStamp(*second, Setting, Date(46347.5 + i * 1e-7)));
    }
    // One chain: every stamp but the last one is found by exactly one other save.
    QSet<double> before;
    for (const auto& program : moves) {
        for (const StampMove& move : program)
            before.insert(move.Before.DayNumber());
    }
    EXPECT_EQ(before.size(), 2 * Saves);
}

TEST_F(ChangeStampTest, AListFollowsOnlyFromTheStampThatItHasRead)
{
    ReadStamp read;
    EXPECT_FALSE(read.IsStill(Date(), 1)) << "nothing was read";
    read.Take(Date(46347), 1);
    EXPECT_TRUE(read.IsStill(Date(46347), 1));
    EXPECT_FALSE(read.IsStill(Date(46347), 2)) << "another opening";
    read.Follow({Date(46347), Date(46348)});
    EXPECT_TRUE(read.IsStill(Date(46348), 1));
    read.Follow({Date(46347.5), Date(46349)});
    EXPECT_TRUE(read.IsStill(Date(46348), 1)) << "somebody else's save lies between";
    read.Follow({});
    EXPECT_TRUE(read.IsStill(Date(46348), 1));
    read.Forget();
    EXPECT_FALSE(read.IsStill(Date(46348), 1));
}

TEST_F(ChangeStampTest, OnlyTheEventOfASaveTellsItsMove)
{
    StampMove told;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, Station.get(),
                     [&] { told = Station->ToldMessageMove(); });
    SaveNew(QStringLiteral("One"));
    EXPECT_EQ(told.After, Station->LastMessageChanged());
    EXPECT_TRUE(told.Before.IsNone());
    EXPECT_TRUE(Station->ToldMessageMove().After.IsNone());
    const Date first = told.After;
    ASSERT_TRUE(Station->ChangeMessageFlags(1, mfRead, 0));
    EXPECT_EQ(told.Before, first);
    EXPECT_NE(told.After, first) << "the clock stands";
    ASSERT_TRUE(Station->MoveMessage(1, tmcSaved));
    EXPECT_TRUE(told.After.IsNone()) << "moving leaves the stamp alone";
}

TEST_F(ChangeStampTest, OfAComputerWhoseClockIsAnHourOffEveryChangeIsSeenAndNothingIsLostOrFoundTwice)
{
    cTolvaDatabase ahead;
    ahead.SetMakesAutomaticBackups(false);
    ahead.SetDirectoryDatabase(&Directory);
    ASSERT_EQ(ahead.OpenTolvaDatabase(Folder.path()), 0);
    const auto onItsClock = [&](const std::function<void()>& work) {
        Now.Advance(3600);
        work();
        Now.Advance(-3600);
    };
    ReadStamp read;
    QSet<qint32> seen;
    const auto look = [&] {
        const Date stamp = Station->LastMessageChanged();
        EXPECT_FALSE(read.IsStill(stamp, 1)) << "a change is not seen";
        read.Take(stamp, 1);
        const auto rows = Station->OpenMessageRows({QStringLiteral("Reference")}, QString(), QString());
        for (; !rows->AtEOF(); rows->MoveNext())
            seen.insert(rows->Collect(QStringLiteral("Reference")).toInt());
        EXPECT_EQ(rows->RecordCount(), seen.size());
    };
    QList<qint32> saved;
    QList<qint32> savedAhead;
    const auto save = [&](cTolvaDatabase& station) {
        const cMessagePtr message = MakeMessage(QStringLiteral("Request"));
        EXPECT_TRUE(station.SaveMessage(message));
        (&station == &ahead ? savedAhead : saved).prepend(message->Reference());
    };
    // The two clocks stand meanwhile, so that all changes but for the hour fall into one moment.
    for (int round = 0; round < 5; ++round) {
        save(*Station);
        look();
        onItsClock([&] { save(ahead); });
        look();
        onItsClock([&] { EXPECT_TRUE(ahead.ChangeMessageFlags(1, round % 2 == 0 ? mfRead : 0, mfRead)); });
        look();
        EXPECT_TRUE(Station->ChangeMessageFlags(2, 0, mfRead));
        look();
    }
    EXPECT_EQ(seen.size(), 10);
    // What was filed at one moment stands an hour apart, on every computer alike.
    const auto order = [](cTolvaDatabase& station) {
        QList<qint32> references;
        const auto rows = station.OpenMessageRows({QStringLiteral("Reference")}, QString(),
                                                  QStringLiteral("[Received] DESC, [Reference] DESC"));
        for (; !rows->AtEOF(); rows->MoveNext())
            references.append(rows->Collect(QStringLiteral("Reference")).toInt());
        return references;
    };
    std::sort(saved.begin(), saved.end(), std::greater<>());
    std::sort(savedAhead.begin(), savedAhead.end(), std::greater<>());
    const QList<qint32> expected = savedAhead + saved;
    EXPECT_EQ(order(*Station), expected);
    onItsClock([&] { EXPECT_EQ(order(ahead), expected); });
}

// ---- Rows

namespace
{
std::vector<ReadRow> Rows(std::initializer_list<ReadRow> rows)
{
    return rows;
}
} // namespace

TEST(RowChangesTest, TheSameRowsDifferInNothing)
{
    const auto rows = Rows({{1, 10}, {2, 20}});
    const RowChanges changes = CompareRows(rows, rows);
    EXPECT_FALSE(changes.AreArranged);
    EXPECT_TRUE(changes.Differing.empty());
}

TEST(RowChangesTest, AChangedRowIsTheOnlyOneToDraw)
{
    const RowChanges changes = CompareRows(Rows({{1, 10}, {2, 20}, {3, 30}}), Rows({{1, 10}, {2, 21}, {3, 30}}));
    EXPECT_FALSE(changes.AreArranged);
    EXPECT_EQ(changes.Differing, std::vector<int>{1});
}

TEST(RowChangesTest, RowsThatCameWentAndMovedAreFoundAgain)
{
    const RowChanges changes = CompareRows(Rows({{1, 10}, {2, 20}, {3, 30}, {4, 40}, {5, 50}}),
                                           Rows({{1, 10}, {9, 90}, {4, 40}, {2, 22}, {5, 50}}));
    EXPECT_TRUE(changes.AreArranged);
    EXPECT_EQ(changes.Sources, (std::vector<int>{0, -1, 3, 1, 4}));
    EXPECT_EQ(changes.Differing, (std::vector<int>{1, 3}));
}

TEST(RowChangesTest, NoRowsAtAllAreAnArrangementToo)
{
    const RowChanges gone = CompareRows(Rows({{1, 10}}), {});
    EXPECT_TRUE(gone.AreArranged);
    EXPECT_TRUE(gone.Sources.empty());
    const RowChanges come = CompareRows({}, Rows({{1, 10}}));
    EXPECT_EQ(come.Sources, std::vector<int>{-1});
    EXPECT_EQ(come.Differing, std::vector<int>{0});
}

TEST(RowChangesTest, ARowThatIsNotKnownDiffersFromEveryOther)
{
    EXPECT_EQ(CompareRows(Rows({{1, 0}}), Rows({{1, 10}})).Differing, std::vector<int>{0});
}
