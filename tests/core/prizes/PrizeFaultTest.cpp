// SPDX-License-Identifier: Apache-2.0

// A disk that fails at any of the writes behind a prize: what was acknowledged is there, what was refused says why.

#include "core/prizes/PrizeTest.h"
#include "platform/records/FaultVfs.h"

#include <sqlite3.h>

namespace
{
class PrizeFaultTest : public PrizeTest, public testing::WithParamInterface<FaultVfs::Operation>
{
protected:
    void SetUp() override
    {
        Vfs = std::make_unique<FaultVfs>();
        PrizeTest::SetUp();
        // A failed stamp is told in a box, of which there may be any number here.
        UserInterface::SetCurrent(nullptr);
    }
    void TearDown() override
    {
        Vfs->Heal();
        CloseSecond();
        PrizeTest::TearDown();
        Vfs.reset();
        UserInterface::SetCurrent(&Ui);
    }
    /// Runs the operation with the first writing call failing, then the second, and so on until none fails any more.
    /// What came of each is looked at once the disk works again.
    void FailEach(const std::function<void()>& prepare, const std::function<void()>& operation,
                  const std::function<void(int)>& verify)
    {
        for (int call = 1; call < 200; ++call) {
            prepare();
            Vfs->FailAt(GetParam(), call, SQLITE_IOERR);
            operation();
            const bool hasFailed = Vfs->HasFailed();
            Error = Station->LastErrorNumber();
            Vfs->Heal();
            verify(call);
            if (!hasFailed) {
                EXPECT_GT(call, 1) << "nothing was written at all";
                return;
            }
        }
        FAIL() << "the failures never ended";
    }
    bool IsThere(const QString& table, qint32 reference) const
    {
        const auto rows = OpenTable(table);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {reference});
        return !rows->NoMatch();
    }
    /// A sync that fails behind the commit cannot take it back: the error alone tells that nobody knows how much of it
    /// is on the disk.
    bool IsLastSyncOpen() const { return GetParam() == FaultVfs::Operation::Sync; }
    /// The second connection of the fixture, which must not outlive the failing file system.
    void CloseSecond() { OpenTable(QStringLiteral("Prizes"))->Close(); }

    std::unique_ptr<FaultVfs> Vfs;
    bool IsDone = false; ///< What the operation answered.
    int Error = 0;       ///< The station's last error after it.
};
} // namespace

TEST_P(PrizeFaultTest, APrizeThatWasSavedIsThereAndARefusedOneSaysWhy)
{
    cPrizePtr prize;
    FailEach(
        [&] { prize = MakePrize(); }, [&] { IsDone = Station->SavePrize(prize); },
        [&](int call) {
            if (!IsDone) {
                EXPECT_NE(Error, 0) << call;
                EXPECT_EQ(prize->Reference(), 0) << call;
                EXPECT_TRUE(prize->Edited()) << call;
                return;
            }
            EXPECT_EQ(StoredPrize(prize->Reference(), QStringLiteral("Title")).toString(), QStringLiteral("Tickets"))
                << call;
        });
}

TEST_P(PrizeFaultTest, AWinnerIsStoredAndCountedOrNeither)
{
    qint32 prize = 0;
    cPrizeWinnerPtr winner;
    FailEach(
        [&] {
            prize = SaveNewPrize();
            winner = Station->GetNewPrizeWinner(Station->GetPrize(prize, false));
            winner->SetWinnerReference(11);
        },
        [&] { IsDone = Station->SavePrizeWinner(winner); },
        [&](int call) {
            const qint32 counted = StoredPrize(prize, QStringLiteral("NumberWinners")).toInt();
            EXPECT_EQ(counted, Station->StoredWinners(prize)) << call;
            EXPECT_EQ(Events.size(), IsDone ? 1 : 0) << call;
            if (!IsDone) {
                EXPECT_NE(Error, 0) << call;
                EXPECT_EQ(winner->Reference(), 0) << call;
                EXPECT_TRUE(winner->Edited()) << call;
                EXPECT_TRUE(counted == 0 || IsLastSyncOpen()) << call;
                return;
            }
            EXPECT_TRUE(IsThere(QStringLiteral("PrizeWinners"), winner->Reference())) << call;
            EXPECT_EQ(counted, 1) << call;
        });
}

TEST_P(PrizeFaultTest, ADeletedPrizeIsGoneAndItsWinnersWithItOrNeither)
{
    qint32 prize = 0;
    FailEach(
        [&] {
            prize = SaveNewPrize();
            ASSERT_NE(Award(prize), 0);
            Forget();
        },
        [&] { IsDone = Station->DeletePrize(prize); },
        [&](int call) {
            EXPECT_EQ(Audit(), QStringList{QStringLiteral("18 Prize Deleted: Tickets (%1)").arg(IsDone ? 1 : 0)});
            EXPECT_EQ(Events.size(), IsDone ? 1 : 0) << call;
            EXPECT_EQ(Station->StoredWinners(prize), IsThere(QStringLiteral("Prizes"), prize) ? 1 : 0) << call;
            if (!IsDone) {
                EXPECT_NE(Error, 0) << call;
                EXPECT_TRUE(IsThere(QStringLiteral("Prizes"), prize) || IsLastSyncOpen()) << call;
                return;
            }
            EXPECT_FALSE(IsThere(QStringLiteral("Prizes"), prize)) << call;
        });
}

TEST_P(PrizeFaultTest, AWinnerTakenBackIsGoneAndItsUnitIsBackOrNeither)
{
    qint32 prize = 0;
    qint32 winner = 0;
    FailEach(
        [&] {
            prize = SaveNewPrize();
            winner = Award(prize);
            ASSERT_NE(winner, 0);
            Forget();
        },
        [&] { IsDone = Station->DeletePrizeWinner(winner); },
        [&](int call) {
            EXPECT_EQ(Audit().last(),
                      QStringLiteral("28 Prize Winner Deleted: 'Carla Count' from 'Tickets' (%1)").arg(IsDone ? 1 : 0));
            const qint32 counted = StoredPrize(prize, QStringLiteral("NumberWinners")).toInt();
            EXPECT_EQ(counted, IsThere(QStringLiteral("PrizeWinners"), winner) ? 1 : 0) << call;
            if (!IsDone) {
                EXPECT_NE(Error, 0) << call;
                EXPECT_TRUE(counted == 1 || IsLastSyncOpen()) << call;
                return;
            }
            EXPECT_EQ(counted, 0) << call;
        });
}

INSTANTIATE_TEST_SUITE_P(Calls, PrizeFaultTest,
                         testing::Values(FaultVfs::Operation::Write, FaultVfs::Operation::Sync,
                                         FaultVfs::Operation::Truncate));

/// Other software took a table out of the file, or out of the file's list of its tables.
class MissingTableTest : public PrizeTest
{
protected:
    void Drop(const char* table) const { Execute(QByteArray("DROP TABLE ") + table); }
    void Unlist(const char* table) const
    {
        Execute(QByteArray("DELETE FROM \"~Tables\" WHERE Name='") + table + '\'');
        Drop(table); // which tells all who have the file open that its tables are others now
    }

private:
    void Execute(const QByteArray& statement) const
    {
        sqlite3* file = nullptr;
        ASSERT_EQ(sqlite3_open(FileName().toUtf8().constData(), &file), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(file, statement.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(file);
    }
};

TEST_F(MissingTableTest, ATableThatIsNotListedEndsASaveAtOnceWithALineInTheLog)
{
    const qint32 reference = SaveNewPrize();
    const cPrizePtr prize = Station->GetPrize(reference, false);
    const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(prize);
    LogSpy log;
    Unlist("PrizeWinners");
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(log.Take().last(), QStringLiteral("Failed to open - ") + Station->LastErrorDescription());
    Unlist("Prizes");
    EXPECT_FALSE(Station->SavePrize(prize));
    EXPECT_EQ(log.Take().last(), QStringLiteral("Failed to open - ") + Station->LastErrorDescription());
    EXPECT_EQ(Station->LastErrorNumber(), dao::errTableNotFound);
    EXPECT_FALSE(Ui.IsBusy());
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_TRUE(Events.isEmpty());
}

TEST_F(MissingTableTest, APrizeWhoseWinnersCannotBeReadStaysAsItWas)
{
    const qint32 reference = SaveNewPrize();
    ASSERT_NE(Award(reference), 0);
    const cPrizePtr prize = Station->GetPrize(reference, true);
    const cPrizeWinnerPtr winner = prize->PrizeWinner(1);
    ASSERT_NE(winner, nullptr);
    prize->SetEdited(false);
    Drop("PrizeWinners");
    EXPECT_FALSE(Station->GetPrizeWinners(prize));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_EQ(prize->NumberWinners(), 1);
    EXPECT_EQ(prize->PrizeWinner(1), winner);
    EXPECT_FALSE(prize->Edited());
}

TEST_F(MissingTableTest, AMessageThatCannotBeReadIsNeitherMovedNorDeletedAndNothingIsThrown)
{
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    Drop("Messages");
    EXPECT_FALSE(Station->MoveMessage(reference, tmcSaved));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_FALSE(Station->CopyMessage(reference, tmcSaved));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_FALSE(Station->DeleteMessage(reference, true));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_FALSE(Station->ChangeMessageFlags(reference, mfRead, 0));
    EXPECT_NE(Station->LastErrorNumber(), 0);
}

TEST_F(MissingTableTest, AFolderThatCannotBeReadIsNotDeletedAndNothingIsThrown)
{
    Drop("MessageCategories");
    EXPECT_FALSE(Station->DeleteMessageCategory(8));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    Station->CloseTolvaDatabase();
    EXPECT_FALSE(Station->DeleteMessageCategory(8));
}

TEST_F(MissingTableTest, AMissingTableFailsEveryOperationWithItsReason)
{
    const qint32 reference = SaveNewPrize();
    const cPrizePtr prize = Station->GetPrize(reference, false);
    const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(prize);
    Drop("PrizeWinners");
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_EQ(winner->Reference(), 0);
    EXPECT_FALSE(Station->DeletePrizeWinner(1));
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_EQ(Station->StoredWinners(reference), -1);
    EXPECT_FALSE(Station->RecountWinners(reference));
    EXPECT_EQ(Station->GetNumberWinsForContact(11), -1);
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_NE(Station->GetPrize(reference, false), nullptr);
    Drop("Prizes");
    // No prize has this number, so that nothing is asked for.
    EXPECT_EQ(Station->GetPrize(0, true), nullptr);
    EXPECT_EQ(Station->LastErrorNumber(), 0);
    EXPECT_EQ(Station->GetPrize(reference, true), nullptr);
    EXPECT_NE(Station->LastErrorNumber(), 0);
    EXPECT_FALSE(Station->DeletePrize(reference));
    EXPECT_FALSE(Station->SavePrize(prize));
    EXPECT_EQ(Audit(),
              QStringList{QStringLiteral("17 Prize Edited: Tickets - %1 (0)").arg(Station->LastErrorDescription())});
    EXPECT_FALSE(Ui.IsBusy());
    EXPECT_TRUE(Events.isEmpty());
}
