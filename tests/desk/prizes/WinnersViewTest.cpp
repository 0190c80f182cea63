// SPDX-License-Identifier: Apache-2.0
#include "PrizeDeskTest.h"
#include "prizes/PrizeTransaction.h"

#include <QScrollBar>

namespace
{
/// The winners of one prize beside its script.
class WinnersViewTest : public PrizeDeskTest
{
protected:
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        for (const char* name : {"Ann Angove", "Ben Bosanko", "Cara Chenoweth"})
            Contacts.append(AddContact(QLatin1String(name)));
        Prize = AddPrize(QStringLiteral("Two tickets"), 600);
    }
    /// One award after the other, a minute apart; the winners.
    QList<qint32> Award(const QList<qint32>& contacts)
    {
        QList<qint32> winners;
        for (const qint32 contact : contacts) {
            Now.Advance(60);
            winners.append(AwardElsewhere(Prize, contact));
        }
        return winners;
    }
    void Open()
    {
        OpenPrizes();
        Select(Prize);
        QCoreApplication::processEvents(); // the rows are laid out
    }
    WinnersView& View() { return Presenter().Winners(); }
    QStringList Names()
    {
        QStringList names;
        for (int row = 0; row < View().topLevelItemCount(); ++row)
            names.append(View().topLevelItem(row)->text(0));
        return names;
    }
    void Click(int row)
    {
        View().scrollToItem(View().topLevelItem(row));
        QTest::mouseClick(View().viewport(), Qt::LeftButton, {},
                          View().visualItemRect(View().topLevelItem(row)).center());
    }
    /// Taken back on the other computer, which this desk hears with the next reading of its list.
    void TakeBackElsewhere(qint32 winner)
    {
        EXPECT_TRUE(Station.Database().DeletePrizeWinner(winner));
        View().Refresh();
    }

    QList<qint32> Contacts;
    qint32 Prize = 0;
};
} // namespace

TEST_F(WinnersViewTest, TheSelectionFollowsItsWinnerWhenOneBeforeIsTakenBack)
{
    const QList<qint32> winners = Award(Contacts);
    Open();
    Click(2);
    ASSERT_EQ(View().Selected(), winners.at(2));
    TakeBackElsewhere(winners.at(0));
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Ben Bosanko"), QStringLiteral("Cara Chenoweth")}));
    EXPECT_EQ(View().Selected(), winners.at(2));
    ASSERT_EQ(View().selectedItems().size(), 1);
    EXPECT_EQ(View().selectedItems().first()->text(0), QStringLiteral("Cara Chenoweth"));
}

TEST_F(WinnersViewTest, WhoIsTakenBackLeavesNobodySelected)
{
    const QList<qint32> winners = Award(Contacts);
    Open();
    Click(1);
    TakeBackElsewhere(winners.at(1));
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Ann Angove"), QStringLiteral("Cara Chenoweth")}));
    EXPECT_EQ(View().Selected(), 0);
    EXPECT_TRUE(View().selectedItems().isEmpty());
    // Enter opens nobody, and the arrow keys choose again.
    View().setFocus();
    QTest::keyClick(&View(), Qt::Key_Return);
    EXPECT_TRUE(Prizes().WinnerWindows().isEmpty());
    QTest::keyClick(&View(), Qt::Key_Down);
    EXPECT_EQ(View().Selected(), winners.at(0));
}

TEST_F(WinnersViewTest, ACorrectedMomentMovesAWinnerWithItsSelection)
{
    const QList<qint32> winners = Award(Contacts);
    Open();
    Click(0);
    const cPrizeWinnerPtr first = Station.Database().GetPrizeWinner(winners.at(0));
    first->SetWonDate(ClockHelper::CurrentTime());
    Now.Advance(60);
    ASSERT_TRUE(Station.Database().SavePrizeWinner(first));
    const cPrizeWinnerPtr last = Station.Database().GetPrizeWinner(winners.at(2));
    last->SetWonDate(Date(2026, 11, 20, 9));
    ASSERT_TRUE(Station.Database().SavePrizeWinner(last));
    View().Refresh();
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Cara Chenoweth"), QStringLiteral("Ben Bosanko"),
                                    QStringLiteral("Ann Angove")}));
    EXPECT_EQ(View().Selected(), winners.at(0));
}

TEST_F(WinnersViewTest, AnotherPrizeBeginsWithNobodySelected)
{
    Award(Contacts);
    const qint32 other = AddPrize(QStringLiteral("A mug"), 3);
    AwardElsewhere(other, Contacts.first());
    Open();
    Click(0);
    Select(other);
    EXPECT_EQ(Names(), QStringList{QStringLiteral("Ann Angove")});
    EXPECT_EQ(View().Selected(), 0);
}

TEST_F(WinnersViewTest, FiveHundredWinnersKeepSelectionAndScrollPosition)
{
    PrizeTransaction::Run(Station, [this] {
        Award(QList<qint32>(500, Contacts.first()));
        return true;
    });
    Open();
    ASSERT_EQ(View().Count(), 500);
    QScrollBar& bar = *View().verticalScrollBar();
    bar.setValue(bar.maximum() / 2);
    const int scrolled = bar.value();
    ASSERT_GT(scrolled, 0);
    QTreeWidgetItem* const top = View().itemAt(5, 5);
    const int row = View().indexOfTopLevelItem(top) + 1;
    Click(row);
    const qint32 selected = View().Selected();
    const QTreeWidgetItem* const item = View().topLevelItem(row);
    Now.Advance(600);
    Page().Refresh(); // as a change of the other computer does
    EXPECT_EQ(View().Selected(), selected);
    EXPECT_EQ(View().topLevelItem(row), item);
    EXPECT_EQ(bar.value(), scrolled);
    EXPECT_EQ(View().itemAt(5, 5), top);
    EXPECT_EQ(View().topLevelItem(499)->text(2), QStringLiteral("10 minutes ago"));
}
