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
        Station->CloseTolvaDatabase();
        CloseSecond();
        Vfs.reset();
        UserInterface::SetCurrent(&Ui);
    }
    /// Runs the operation with the first writing call failing, then the second, and so on until none fails any more.
    void FailEach(const std::function<void()>& prepare, const std::function<void(int)>& operation)
    {
        for (int call = 1; call < 200; ++call) {
            prepare();
            Vfs->FailAt(GetParam(), call, SQLITE_IOERR);
            operation(call);
            const bool hasFailed = Vfs->HasFailed();
            Vfs->Heal();
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
    /// The second connection of the fixture, which must not outlive the failing file system.
    void CloseSecond() { OpenTable(QStringLiteral("Prizes"))->Close(); }

    std::unique_ptr<FaultVfs> Vfs;
};
} // namespace

TEST_P(PrizeFaultTest, APrizeThatWasSavedIsThereAndARefusedOneSaysWhy)
{
    cPrizePtr prize;
    FailEach([&] { prize = MakePrize(); },
             [&](int call) {
                 const bool saved = Station->SavePrize(prize);
                 Vfs->Heal();
                 if (saved) {
                     EXPECT_EQ(StoredPrize(prize->Reference(), QStringLiteral("Title")).toString(),
                               QStringLiteral("Tickets"))
                         << call;
                 } else {
                     EXPECT_NE(Station->LastErrorNumber(), 0) << call;
                     EXPECT_EQ(prize->Reference(), 0) << call;
                     EXPECT_TRUE(prize->Edited()) << call;
                 }
             });
}

TEST_P(PrizeFaultTest, AWinnerThatWasSavedIsThereAndTheCountIsRightOrAnErrorStands)
{
    qint32 prize = 0;
    cPrizeWinnerPtr winner;
    FailEach(
        [&] {
            prize = SaveNewPrize();
            winner = Station->GetNewPrizeWinner(Station->GetPrize(prize, false));
            winner->SetWinnerReference(11);
        },
        [&](int call) {
            const bool saved = Station->SavePrizeWinner(winner);
            const int error = Station->LastErrorNumber();
            Vfs->Heal();
            const qint32 counted = StoredPrize(prize, QStringLiteral("NumberWinners")).toInt();
            if (saved) {
                EXPECT_TRUE(IsThere(QStringLiteral("PrizeWinners"), winner->Reference())) << call;
                if (error == 0) {
                    EXPECT_EQ(counted, 1) << call;
                }
            } else {
                EXPECT_NE(error, 0) << call;
                EXPECT_EQ(winner->Reference(), 0) << call;
                EXPECT_EQ(counted, 0) << call;
            }
        });
}

TEST_P(PrizeFaultTest, ADeletedPrizeIsGoneAndItsWinnersWithItOrAnErrorStands)
{
    qint32 prize = 0;
    FailEach(
        [&] {
            prize = SaveNewPrize();
            ASSERT_NE(Award(prize), 0);
        },
        [&](int call) {
            const bool deleted = Station->DeletePrize(prize);
            const int error = Station->LastErrorNumber();
            Vfs->Heal();
            if (deleted) {
                EXPECT_FALSE(IsThere(QStringLiteral("Prizes"), prize)) << call;
                if (error == 0) {
                    EXPECT_EQ(Station->StoredWinners(prize), 0) << call;
                }
            } else {
                EXPECT_NE(error, 0) << call;
            }
        });
}

TEST_P(PrizeFaultTest, AWinnerTakenBackIsGone)
{
    qint32 prize = 0;
    qint32 winner = 0;
    FailEach(
        [&] {
            prize = SaveNewPrize();
            winner = Award(prize);
            ASSERT_NE(winner, 0);
        },
        [&](int call) {
            const bool deleted = Station->DeletePrizeWinner(winner);
            const int error = Station->LastErrorNumber();
            Vfs->Heal();
            if (deleted) {
                EXPECT_FALSE(IsThere(QStringLiteral("PrizeWinners"), winner)) << call;
                if (error == 0) {
                    EXPECT_EQ(StoredPrize(prize, QStringLiteral("NumberWinners")).toInt(), 0) << call;
                }
            } else {
                EXPECT_NE(error, 0) << call;
            }
        });
}

INSTANTIATE_TEST_SUITE_P(Calls, PrizeFaultTest,
                         testing::Values(FaultVfs::Operation::Write, FaultVfs::Operation::Sync,
                                         FaultVfs::Operation::Truncate));
