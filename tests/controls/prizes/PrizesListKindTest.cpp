// SPDX-License-Identifier: Apache-2.0

// Which prizes each kind shows, and in what words.

#include "platform/widgets/Icons.h"
#include "prizes/PrizesListTest.h"

#include <QLineEdit>

namespace
{
/// Saturday is day 6; 14:00 is the letter O.
void AllowOnly(cPrize& prize, int weekDay, int hour)
{
    for (qint16 day = 1; day <= 7; ++day) {
        for (qint16 i = 0; i < 24; ++i)
            prize.SetAvailableForHour(day, i, day == weekDay && i == hour);
    }
}
} // namespace

class PrizesListKindTest : public PrizesListTest
{
};

TEST_F(PrizesListKindTest, TheTreeHoldsTheFiveKindsInTheirOrder)
{
    Attach();
    QStringList texts;
    QStringList keys;
    for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
        texts.append((*item)->text(0));
        keys.append(Tree->KeyOfItem(**item));
    }
    EXPECT_EQ(texts, QStringList({QStringLiteral("Available this hour"), QStringLiteral("All Available Prizes"),
                                  QStringLiteral("Recently Won Prizes"), QStringLiteral("Won Prizes"),
                                  QStringLiteral("All Prizes")}));
    EXPECT_EQ(keys, QStringList({QStringLiteral("c1"), QStringLiteral("c2"), QStringLiteral("c5"), QStringLiteral("c4"),
                                 QStringLiteral("c3")}));
    EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c3"));
}

TEST_F(PrizesListKindTest, TheChosenKindHasAnOpenFolderAndNoNameIsCutShort)
{
    Attach(plcAllPrizes);
    const auto picture = [](const QIcon& icon) { return icon.pixmap(16).toImage(); };
    for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
        const bool isChosen = Tree->KeyOfItem(**item) == QStringLiteral("c3");
        EXPECT_EQ(picture((*item)->icon(0)), picture(Icons::Get(isChosen ? QStringLiteral("smallopenfolder")
                                                                         : QStringLiteral("smallclosedfolder"))));
        EXPECT_LE(Tree->visualItemRect(*item).left() + Tree->sizeHintForIndex(Tree->indexFromItem(*item)).width(),
                  Tree->viewport()->width())
            << qPrintable((*item)->text(0));
    }
}

TEST_F(PrizesListKindTest, AvailableThisHourAsksForTheHourOfUniversalTime)
{
    Save(QStringLiteral("This hour"), [](cPrize& prize) { AllowOnly(prize, 6, 14); });
    Save(QStringLiteral("Next hour"), [](cPrize& prize) { AllowOnly(prize, 6, 15); });
    Save(QStringLiteral("Yesterday"), [](cPrize& prize) { AllowOnly(prize, 5, 14); });
    Attach(plcAvailable);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("This hour")});
    Now.SetUtc(QDateTime(QDate(2026, 7, 4), QTime(14, 5), Qt::UTC)); // 15:05 in the town
    List->UpdateDisplay();
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("This hour")});
    Now.SetUtc(QDateTime(QDate(2026, 7, 4), QTime(15, 0), Qt::UTC));
    List->UpdateDisplay();
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Next hour")});
}

TEST_F(PrizesListKindTest, APrizeWithoutStoredHoursIsNotListedForThisHourThoughItIsAvailable)
{
    const qint32 reference = Save(QStringLiteral("Anything goes"));
    ChangeRow(reference, QStringLiteral("HourRestrictions6"), QString());
    Attach(plcAvailable);
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_TRUE(Station->GetPrize(reference, false)->AvailableForHour(6, 14));
    ClickNode(plcAllAvailable);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Anything goes")});
}

TEST_F(PrizesListKindTest, AllocatedPrizesLeaveTheAvailableKindsAndReadAsWon)
{
    const qint32 reference = Save(QStringLiteral("Mugs"), [](cPrize& prize) { prize.SetNumberSupplied(1); });
    const qint32 five = Save(QStringLiteral("Pens"));
    for (int i = 0; i < 4; ++i)
        Award(five);
    Attach(plcAvailable);
    EXPECT_EQ(SecondLines(), QStringList({QStringLiteral("(1 Available)"), QStringLiteral("(1 Available)")}));
    Award(reference);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Pens")});
    Award(five);
    EXPECT_EQ(List->NumberItems(), 0);
    ClickNode(plcAllAvailable);
    EXPECT_EQ(List->NumberItems(), 0);
    ClickNode(plcAllPrizes);
    EXPECT_EQ(SecondLines(),
              QStringList({QStringLiteral("(All Prizes - 1 - Won)"), QStringLiteral("(All Prizes - 5 - Won)")}));
}

TEST_F(PrizesListKindTest, DatesOfOtherDaysKeepAPrizeOutOfTheAvailableKinds)
{
    Save(QStringLiteral("From tomorrow"), [](cPrize& prize) { prize.SetStartDate(Date(2026, 11, 22)); });
    Save(QStringLiteral("Until yesterday"), [](cPrize& prize) { prize.SetEndDate(Date(2026, 11, 20)); });
    Save(QStringLiteral("Today"), [](cPrize& prize) {
        prize.SetStartDate(Date(2026, 11, 21));
        prize.SetEndDate(Date(2026, 11, 21));
    });
    Save(QStringLiteral("From this noon"), [](cPrize& prize) { prize.SetStartDate(Date(2026, 11, 21, 12)); });
    Save(QStringLiteral("Until this morning"), [](cPrize& prize) { prize.SetEndDate(Date(2026, 11, 21, 9)); });
    Attach(plcAllAvailable);
    // A start with a time counts from the day behind, an end with a time to the end of its day.
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Today"), QStringLiteral("Until this morning")}));
}

TEST_F(PrizesListKindTest, WonPrizesShowTheirCountsAndRecentOnesWhenTheyWereWon)
{
    const qint32 old = Save(QStringLiteral("Old"));
    Award(old);
    Now.Advance(8 * 86400);
    const qint32 fresh = Save(QStringLiteral("Fresh"));
    Award(fresh);
    Save(QStringLiteral("Never"));
    Now.Advance(12 * 60);
    Attach(plcWonPrizes);
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Old"), QStringLiteral("Fresh")}));
    EXPECT_EQ(SecondLines(), QStringList({QStringLiteral("(1 of 5 Won)"), QStringLiteral("(1 of 5 Won)")}));
    ClickNode(plcRecentlyWonPrizes);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Fresh")});
    EXPECT_EQ(SecondLines(), QStringList{QStringLiteral("12 minutes ago")});
}

TEST_F(PrizesListKindTest, PrizesAreRecentForSevenDays)
{
    Award(Save(QStringLiteral("Mug")));
    Now.Advance(7 * 86400 - 60);
    Attach(plcRecentlyWonPrizes);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Mug")});
    EXPECT_EQ(SecondLines(), QStringList{QStringLiteral("Last Saturday 14:05")});
    Now.Advance(2 * 60);
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(PrizesListKindTest, OneLineRowsShowTheTitleAlone)
{
    Save(QStringLiteral("  Mugs  "));
    Attach();
    EXPECT_EQ(Grid->TextMatrix(1, 1), QStringLiteral("Mugs\r(0 of 5 Won)"));
    EXPECT_DOUBLE_EQ(Grid->RowHeight(1), 2 * Grid->RowHeight(0));
    EXPECT_TRUE(Grid->wordWrap());
    List->SetDoubleHeightRows(false);
    EXPECT_EQ(Grid->TextMatrix(1, 1), QStringLiteral("Mugs"));
    EXPECT_DOUBLE_EQ(Grid->RowHeight(1), Grid->RowHeight(0));
    EXPECT_FALSE(Grid->wordWrap());
}

TEST_F(PrizesListKindTest, NothingToShowSaysSo)
{
    Attach(plcWonPrizes);
    EXPECT_TRUE(NoPrizes().isVisible());
    EXPECT_EQ(NoPrizes().accessibleName(), QStringLiteral("There are no matching prizes to display."));
    EXPECT_FALSE(Loading().isVisible());
    Save(QStringLiteral("Mugs"));
    ClickNode(plcAllPrizes);
    EXPECT_FALSE(NoPrizes().isVisible());
}

TEST_F(PrizesListKindTest, TheFindTextSearchesTitlesAndNotesTogetherWithTheKind)
{
    Save(QStringLiteral("Blue mug"));
    Save(QStringLiteral("Pen"), [](cPrize& prize) { prize.SetNotes(QStringLiteral("comes with a MUG")); });
    Save(QStringLiteral("Mug, gone"), [](cPrize& prize) { prize.SetNumberSupplied(0); });
    Save(QStringLiteral("Shirt"));
    Attach(plcAllAvailable);
    Find(QStringLiteral("mug"));
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Blue mug"), QStringLiteral("Pen")}));
    EXPECT_TRUE(List->IsFiltered());
    EXPECT_EQ(List->FindText(), QStringLiteral("mug"));
    List->ClearFind();
    EXPECT_FALSE(List->IsFiltered());
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Prizes>"));
    EXPECT_EQ(List->NumberItems(), 3);
}

TEST_F(PrizesListKindTest, TheWordsForAllPrizesInAnyCaseSearchNothing)
{
    Save(QStringLiteral("Mug"));
    Attach();
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Prizes>"));
    Find(QStringLiteral(" <all prizes> "));
    EXPECT_EQ(List->NumberItems(), 1);
    EXPECT_FALSE(List->IsFiltered());
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Prizes>"));
    EXPECT_EQ(Box->History(), QStringList());
}

TEST_F(PrizesListKindTest, ValuesThatAreNoKindChangeNothing)
{
    Save(QStringLiteral("Mug"));
    Attach();
    for (const int value : {9, 6, 0, -1}) {
        List->SetCategory(static_cast<enPrizeListCategory>(value));
        EXPECT_EQ(List->Category(), plcAllPrizes);
        EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c3"));
    }
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(PrizesListKindTest, ChoosingAKindIsRememberedForTheUserAndTheTreeKeepsTheFocus)
{
    Attach();
    ClickNode(plcWonPrizes);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->Category(), plcWonPrizes);
    EXPECT_EQ(Directory.User.Preferences.value(QStringLiteral("SelectedPrizeCategory")).toInt(), 4);
    EXPECT_TRUE(Tree->hasFocus());
    ClickNode(plcWonPrizes);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(PrizesListKindTest, WithoutAPreferenceTheListBeginsWithThisHourAndFillsOnce)
{
    Save(QStringLiteral("Mug"));
    Directory.User.Preferences.clear();
    List->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(List.get()));
    List->SetTolvaDatabase(Station.get());
    EXPECT_EQ(List->Category(), plcAvailable);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Mug")});
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(PrizesListKindTest, WithoutAUserTheTreeStandsReadyWithNothingChosen)
{
    Save(QStringLiteral("Mug"));
    Directory.SignedIn = nullptr;
    Attach();
    EXPECT_EQ(Tree->NodeCount(), 5);
    EXPECT_EQ(Tree->SelectedKey(), QString());
    List->SetCategory(plcAllPrizes);
    EXPECT_EQ(List->NumberItems(), 1);
}

TEST_F(PrizesListKindTest, ResettingGoesToThisHour)
{
    Save(QStringLiteral("Mug"));
    Attach(plcAllPrizes);
    List->ResetDisplay();
    EXPECT_EQ(List->Category(), plcAvailable);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Prizes>"));
    List->ResetDisplay();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(PrizesListKindTest, ResettingTakesTheFirstEntryOfTheBox)
{
    Save(QStringLiteral("Mug"));
    Save(QStringLiteral("Pen"));
    Attach(plcAvailable);
    Find(QStringLiteral("mug"));
    Find(QStringLiteral("pen"));
    Box->showPopup();
    Box->hidePopup();
    TakeFills();
    List->ResetDisplay();
    EXPECT_EQ(Box->Text(), QStringLiteral("mug"));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Mug")});
}

TEST_F(PrizesListKindTest, AKindChosenByTheArrowKeysIsNotLostWhenTheTreeIsMadeAnew)
{
    Save(QStringLiteral("Mug"));
    const auto refresh = [this](int way) {
        if (way == 0)
            QTest::keyClick(Tree, Qt::Key_F5);
        else
            List->UpdateCategories();
    };
    for (const int way : {0, 1}) {
        Attach(plcAllPrizes);
        Tree->setFocus();
        QTest::keyClick(Tree, Qt::Key_Up);
        ASSERT_EQ(Tree->SelectedKey(), QStringLiteral("c4"));
        refresh(way);
        EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c4"));
        EXPECT_EQ(List->Category(), plcWonPrizes);
        EXPECT_EQ(List->NumberItems(), 0);
        List->SetTolvaDatabase(nullptr);
    }
}
