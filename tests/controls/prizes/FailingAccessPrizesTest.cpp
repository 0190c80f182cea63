// SPDX-License-Identifier: Apache-2.0

// A station that fails at any single access while the list of prizes reads it: nothing is thrown at anybody, and the
// next tick shows what is stored.

#include "core/support/FaultyEngine.h"
#include "core/support/PatientUser.h"
#include "prizes/PrizesListTest.h"

#include <QLabel>

namespace
{
constexpr int MostAccesses = 500;

class FailingAccessPrizesTest : public PrizesListTest
{
protected:
    void SetUp() override
    {
        Disk = std::make_unique<FaultyEngine>();
        Prizes = SaveMany(3);
        Attach();
        UserInterface::SetCurrent(&Patient);
        List->SetAutoUpdate(false);
    }
    void TearDown() override
    {
        Disk->Heal();
        List->SetTolvaDatabase(nullptr);
        Station.reset();
        UserInterface::SetCurrent(&Ui);
        Disk.reset();
    }
    /// Changes a prize without telling the list, as another computer does.
    void SaveUntold()
    {
        Now.Advance(1);
        Station->SetRaiseEvents(false);
        const cPrizePtr prize = Station->GetPrize(Prizes.last(), false);
        prize->SetTitle(QStringLiteral("Mug %1").arg(++Changes_));
        EXPECT_TRUE(Station->SavePrize(prize));
        Station->SetRaiseEvents(true);
    }
    template <typename Deed>
    void FailEach(const char* what, Deed&& deed)
    {
        SCOPED_TRACE(what);
        for (int number = 1; number < MostAccesses; ++number) {
            SCOPED_TRACE(number);
            SaveUntold();
            Disk->FailAt(number, [] { throw dao::Error(dao::errDiskError, QStringLiteral("The cable was pulled.")); });
            EXPECT_NO_THROW(deed());
            const bool hasFailed = Disk->HasFailed();
            Disk->Heal();
            TickOnce();
            EXPECT_EQ(List->NumberItems(), Prizes.size());
            EXPECT_TRUE(Titles().contains(QStringLiteral("Mug %1").arg(Changes_)));
            EXPECT_FALSE(Child<QLabel>("lblUnread").isVisible());
            EXPECT_TRUE(Tree->isEnabled());
            if (!hasFailed) {
                EXPECT_GT(number, 1) << "nothing was accessed at all";
                return;
            }
            if (HasFailure())
                return;
        }
        FAIL() << "the failures never ended";
    }
    void TickOnce()
    {
        List->SetAutoUpdate(true);
        Tick();
        List->SetAutoUpdate(false);
    }

    std::unique_ptr<FaultyEngine> Disk;
    PatientUser Patient;
    QList<qint32> Prizes;

private:
    int Changes_ = 0;
};
} // namespace

TEST_F(FailingAccessPrizesTest, ATickThrowsNothingAndTheNextOneHeals)
{
    FailEach("tick", [this] { TickOnce(); });
}

TEST_F(FailingAccessPrizesTest, WhatAHostAsksForThrowsNothingAndTheNextTickHeals)
{
    FailEach("UpdateDisplay", [this] { List->UpdateDisplay(); });
    FailEach("RefreshDisplay", [this] { List->RefreshDisplay(); });
    FailEach("ResetDisplay and Category", [this] {
        List->ResetDisplay();
        List->SetCategory(plcAllPrizes);
    });
}

TEST_F(FailingAccessPrizesTest, WhatAUserDoesThrowsNothingAndTheNextTickHeals)
{
    FailEach("F5", [this] { QTest::keyClick(Grid, Qt::Key_F5); });
    FailEach("a click", [this] {
        ClickRow(1);
        ClickRow(2);
    });
    FailEach("open", [this] { Entry("mnuOpen").trigger(); });
}
