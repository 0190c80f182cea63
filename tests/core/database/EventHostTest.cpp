// SPDX-License-Identifier: Apache-2.0

// Hosts that do the worst within an event, and directories that throw.

#include "core/support/StationTest.h"
#include "prizes/cPrize.h"
#include "prizes/cPrizeWinner.h"

#include <stdexcept>

namespace
{
class EventHostTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }
    cPrizePtr SavedPrize()
    {
        auto prize = std::make_shared<cPrize>();
        prize->SetTitle(QStringLiteral("Tickets"));
        prize->SetNumberSupplied(2);
        EXPECT_TRUE(Station->SavePrize(prize));
        return prize;
    }
    cPrizeWinnerPtr WinnerOf(const cPrizePtr& prize)
    {
        const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(prize);
        winner->SetWinnerReference(11);
        return winner;
    }
    /// From now on the station is destroyed by whoever hears of the first change.
    void DestroyInEvents()
    {
        const auto destroy = [this] { Station.reset(); };
        QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, destroy);
        QObject::connect(Station.get(), &cTolvaDatabase::MessageDeleted, destroy);
        QObject::connect(Station.get(), &cTolvaDatabase::PrizeSaved, destroy);
        QObject::connect(Station.get(), &cTolvaDatabase::PrizeDeleted, destroy);
    }
    /// The operation answers true though its station is gone.
    template <typename Operation>
    void ExpectDestroyed(Operation&& operation)
    {
        DestroyInEvents();
        EXPECT_TRUE(operation(*Station));
        EXPECT_EQ(Station, nullptr);
        Station = std::make_unique<cTolvaDatabase>();
        Station->SetDirectoryDatabase(&Directory);
        Station->SetMakesAutomaticBackups(false);
        OpenStation();
    }
};

/// What a directory of the host may do with its rights and its log.
class ThrowingUser final : public FakeUser
{
public:
    bool HasRight(DirectoryRight right) const override
    {
        if (!HasRights)
            throw std::runtime_error("The directory is away.");
        return FakeUser::HasRight(right);
    }
    bool LogEvent(int, int, const QString&, const QString&, int, int) override
    {
        throw std::runtime_error("The log is away.");
    }

    bool HasRights = true;
};
} // namespace

TEST_F(EventHostTest, MayDestroyTheStationInAnyEventOfItsMessages)
{
    ExpectDestroyed([](cTolvaDatabase& station) { return station.SaveMessage(MakeMessage(QStringLiteral("Hello"))); });
    ExpectDestroyed([](cTolvaDatabase& station) {
        return station
                   .SaveMessages({MakeMessage(QStringLiteral("One")), MakeMessage(QStringLiteral("Two"))},
                                 [] { return true; })
                   .size() == 2;
    });
    const qint32 reference = SaveNew(QStringLiteral("Hello"));
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.ChangeMessageFlags(reference, mfRead, 0); });
    ASSERT_TRUE(Station->ChangeMessageFlags(reference, mfSendPending, 0));
    ASSERT_TRUE(Station->MoveMessage(reference, tmcOutbox));
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.MarkMessageSent(reference, Date(46000)); });
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.CopyMessage(reference, tmcSaved); });
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.MoveMessage(reference, tmcSaved); });
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.DeleteMessage(reference, true); });
    EXPECT_EQ(Station->GetMessages(QString())->Count(), 4);
}

TEST_F(EventHostTest, MayDestroyTheStationInAnyEventOfItsPrizes)
{
    const cPrizePtr prize = SavedPrize();
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.SavePrize(prize); });
    const cPrizeWinnerPtr winner = WinnerOf(prize);
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.SavePrizeWinner(winner); });
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.SavePrizeWinner(winner); });
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.DeletePrizeWinner(winner->Reference()); });
    ExpectDestroyed([&](cTolvaDatabase& station) { return station.DeletePrize(prize->Reference()); });
    EXPECT_EQ(Station->GetPrize(prize->Reference(), false), nullptr);
}

TEST_F(EventHostTest, ALogThatThrowsTakesNoChangeWithIt)
{
    ThrowingUser user;
    Directory.SignedIn = &user;
    const qint32 reference = SaveNew(QStringLiteral("Hello"));
    EXPECT_TRUE(Station->MoveMessage(reference, tmcSaved));
    EXPECT_TRUE(Station->DeletePrize(SavedPrize()->Reference()));
    EXPECT_EQ(Station->CloseTolvaDatabase(), 0);
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcSaved);
    Station.reset();
}

TEST_F(EventHostTest, RightsThatCannotBeReadAreNoneAndTheReasonIsKept)
{
    ThrowingUser user;
    const qint32 reference = SaveNew(QStringLiteral("Hello"));
    const cPrizePtr prize = SavedPrize();
    Directory.SignedIn = &user;
    user.HasRights = false;
    const QString words = QStringLiteral("The directory is away.");
    EXPECT_FALSE(Station->MoveMessage(reference, tmcSaved));
    EXPECT_EQ(Station->LastErrorDescription(), words);
    EXPECT_FALSE(Station->DeleteMessage(reference, true));
    EXPECT_EQ(Station->LastErrorDescription(), words);
    EXPECT_FALSE(Station->ChangeMessageFlags(reference, mfRead, 0));
    EXPECT_EQ(Station->LastErrorDescription(), words);
    EXPECT_FALSE(Station->DeletePrize(prize->Reference()));
    EXPECT_EQ(Station->LastErrorDescription(), words);
    EXPECT_EQ(Station->GetMessage(reference)->Category(), tmcInbox);
    Station.reset();
}
