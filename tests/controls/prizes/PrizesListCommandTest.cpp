// SPDX-License-Identifier: Apache-2.0

// The find bar, keys, mouse, menu, drag and commands of the prizes list.

#include "platform/widgets/DragData.h"
#include "platform/widgets/TabStrip.h"
#include "prizes/PrizesListTest.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QToolButton>

namespace
{
const QString FirstQuestion =
    QStringLiteral("Are you sure you want to delete this Prize (and any details of it's winners))?");
} // namespace

class PrizesListCommandTest : public PrizesListTest
{
protected:
    PrizesListCommandTest()
    {
        const auto keep = [this](const char* event) {
            return [this, event](const cPrizePtr& prize) {
                Events.append(QLatin1String(event));
                Told = prize;
            };
        };
        QObject::connect(List.get(), &uPrizesList::NewPrize, List.get(), keep("New"));
        QObject::connect(List.get(), &uPrizesList::OpenPrize, List.get(), keep("Open"));
        QObject::connect(List.get(), &uPrizesList::PrintPrize, List.get(), keep("Print"));
    }
    ~PrizesListCommandTest() override { DragRunner::SetCurrent({}); }

    /// Clicks the right button on a row, or beside the rows for 0, and gives the menu, which is up.
    QMenu& PopUp(int row)
    {
        QMenu& menu = *List->PrizeMenu();
        const QPoint place = row > 0 ? RowPosition(row) : Grid->viewport()->rect().bottomRight() - QPoint(5, 5);
        QTest::mouseClick(Grid->viewport(), Qt::RightButton, {}, place);
        EXPECT_TRUE(menu.isVisible());
        return menu;
    }
    QString EnabledEntries() const
    {
        QStringList names;
        for (const char* name : {"mnuOpen", "mnuCopy", "mnuPrint", "mnuPrizeNewPrize", "mnuDelete"}) {
            if (Entry(name).isEnabled())
                names.append(QLatin1String(name));
        }
        return names.join(QLatin1Char(' '));
    }
    /// Chooses an entry of the menu over a row, as the keys do.
    void Choose(const char* name, int row = 1)
    {
        QMenu& menu = PopUp(row);
        menu.setActiveAction(&Entry(name));
        QTest::keyClick(&menu, Qt::Key_Return);
    }

    QStringList Events;
    cPrizePtr Told;
};

TEST_F(PrizesListCommandTest, TheMenuHasItsEntriesInOrder)
{
    QStringList names;
    QStringList captions;
    for (const QAction* entry : List->PrizeMenu()->actions()) {
        names.append(entry->objectName());
        if (!entry->isSeparator())
            captions.append(entry->text());
    }
    EXPECT_EQ(names.join(QLatin1Char(' ')), QStringLiteral("mnuOpen mnuPrintSep mnuCopy mnuPrint mnuPrizeNewPrizeSep "
                                                           "mnuPrizeNewPrize mnuDeleteSep mnuDelete"));
    EXPECT_EQ(captions,
              QStringList({QStringLiteral("&Open Prize"), QStringLiteral("&Copy"), QStringLiteral("&Print Prize"),
                           QStringLiteral("&New Prize"), QStringLiteral("&Delete Prize")}));
    EXPECT_EQ(List->PrizeMenu()->defaultAction(), &Entry("mnuOpen"));
}

TEST_F(PrizesListCommandTest, TheMenuOffersWhatTheUserMayDo)
{
    SaveMany(2);
    Attach();
    Grid->clearFocus();
    PopUp(2).close();
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_TRUE(Grid->hasFocus());
    EXPECT_EQ(EnabledEntries(), QStringLiteral("mnuOpen mnuCopy mnuPrint mnuPrizeNewPrize mnuDelete"));
    Directory.User.Rights = 31 & ~static_cast<int>(DirectoryRight::ManagePrizes);
    PopUp(1).close();
    EXPECT_EQ(EnabledEntries(), QStringLiteral("mnuOpen mnuPrint"));
}

TEST_F(PrizesListCommandTest, WithoutAPrizeOnlyANewOneIsOffered)
{
    Attach();
    QTest::mouseClick(&NoPrizes(), Qt::RightButton);
    ASSERT_TRUE(List->PrizeMenu()->isVisible());
    List->PrizeMenu()->close();
    EXPECT_EQ(EnabledEntries(), QStringLiteral("mnuPrizeNewPrize"));
    Directory.User.Rights = 0;
    QTest::mouseClick(&NoPrizes(), Qt::RightButton);
    List->PrizeMenu()->close();
    EXPECT_EQ(EnabledEntries(), QString());
}

TEST_F(PrizesListCommandTest, APrizeThatIsGoneEnablesNothingOfIt)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Attach();
    EXPECT_TRUE(OtherComputer().DeletePrize(reference));
    PopUp(1).close();
    EXPECT_EQ(EnabledEntries(), QStringLiteral("mnuPrizeNewPrize"));
}

TEST_F(PrizesListCommandTest, EnterADoubleClickAndTheMenuOpenThePrizeWithItsWinners)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Award(reference);
    Attach();
    Grid->setFocus();
    QTest::keyClick(Grid, Qt::Key_Return);
    ASSERT_NE(Told, nullptr);
    EXPECT_TRUE(Told->WinnersRead());
    ClickRow(1);
    QTest::mouseDClick(Grid->viewport(), Qt::LeftButton, {}, RowPosition(1));
    Choose("mnuOpen");
    EXPECT_EQ(Events, QStringList({QStringLiteral("Open"), QStringLiteral("Open"), QStringLiteral("Open")}));
    EXPECT_EQ(Told->Reference(), reference);
}

TEST_F(PrizesListCommandTest, PrintingHandsThePrizeToTheHost)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Attach();
    Choose("mnuPrint");
    EXPECT_EQ(Events, QStringList{QStringLiteral("Print")});
    EXPECT_EQ(Told->Reference(), reference);
}

TEST_F(PrizesListCommandTest, ANewPrizeIsTheUsersAndTheListIsReadAgain)
{
    Attach();
    QTest::mouseClick(&Child<QPushButton>("cmdNewPrize"), Qt::LeftButton);
    ASSERT_NE(Told, nullptr);
    EXPECT_EQ(Told->Reference(), 0);
    EXPECT_EQ(Told->AddedByReference(), 7);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Child<QPushButton>("cmdNewPrize").text(), QStringLiteral("New Prize"));
}

TEST_F(PrizesListCommandTest, WithoutAStationNothingIsNew)
{
    List->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(List.get()));
    QTest::mouseClick(&Child<QPushButton>("cmdNewPrize"), Qt::LeftButton);
    EXPECT_EQ(Events, QStringList());
}

TEST_F(PrizesListCommandTest, ACopyIsNewAndKeepsEverythingButTheTitle)
{
    const qint32 reference = Save(QStringLiteral("Mug"), [](cPrize& prize) {
        prize.SetNotes(QStringLiteral("fragile"));
        prize.SetAvailableForHour(1, 3, false);
    });
    Award(reference);
    Attach();
    Choose("mnuCopy");
    ASSERT_NE(Told, nullptr);
    EXPECT_EQ(Events, QStringList{QStringLiteral("New")});
    EXPECT_EQ(Told->Reference(), 0);
    EXPECT_EQ(Told->Title(), QStringLiteral("Copy of Mug"));
    EXPECT_EQ(Told->Notes(), QStringLiteral("fragile"));
    EXPECT_EQ(Told->NumberWinners(), 1);
    EXPECT_FALSE(Told->LastWonDate().IsNone());
    EXPECT_FALSE(Told->AvailableForHour(1, 3));
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(PrizesListCommandTest, DeletingAsksOnceForAPrizeThatNobodyWon)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Attach();
    Ui.ExpectConfirmation(FirstQuestion, MessageBoxAnswer::No);
    Choose("mnuDelete");
    EXPECT_NE(Station->GetPrize(reference, false), nullptr);
    Ui.ExpectConfirmation(FirstQuestion, MessageBoxAnswer::Yes);
    Choose("mnuDelete");
    EXPECT_EQ(Station->GetPrize(reference, false), nullptr);
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(PrizesListCommandTest, DeletingAsksTwiceForAPrizeWithWinners)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Award(reference);
    Attach();
    Ui.ExpectConfirmation(FirstQuestion, MessageBoxAnswer::Yes);
    Ui.ExpectConfirmation(
        QStringLiteral("This Prize has already been allocated to 1 winner!\n\nAre you ABSOLUTELY sure you "
                       "want to delete this Prize and winner allocations?"),
        MessageBoxAnswer::No);
    Choose("mnuDelete");
    EXPECT_NE(Station->GetPrize(reference, false), nullptr);
    Award(reference);
    Ui.ExpectConfirmation(FirstQuestion, MessageBoxAnswer::Yes);
    Ui.ExpectConfirmation(
        QStringLiteral("This Prize has already been allocated to 2 winners!\n\nAre you ABSOLUTELY sure you "
                       "want to delete this Prize and winner allocations?"),
        MessageBoxAnswer::Yes);
    Choose("mnuDelete");
    EXPECT_EQ(Station->GetPrize(reference, false), nullptr);
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(PrizesListCommandTest, ADragCarriesTheReferenceOfTheRowThatWasPressed)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    QStringList texts;
    Qt::DropActions actions;
    DragRunner::SetCurrent([&](QWidget&, DragData* data, Qt::DropActions allowed) {
        texts.append(data->text());
        EXPECT_FALSE(DragData::HasFiles(*data));
        actions = allowed;
        delete data;
        return Qt::CopyAction;
    });
    const auto drag = [&](int row, int distance) {
        const QPoint from = RowPosition(row);
        QTest::mousePress(Grid->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, from + QPoint(0, distance),
                         Grid->viewport()->mapToGlobal(from + QPoint(0, distance)), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(Grid->viewport(), &move);
        QTest::mouseRelease(Grid->viewport(), Qt::LeftButton, {}, from + QPoint(0, distance));
    };
    drag(2, 5);
    EXPECT_EQ(texts, QStringList());
    drag(2, 6);
    EXPECT_EQ(texts, QStringList{QStringLiteral("!KVPrize Reference=\"%1\"").arg(references.at(1))});
    EXPECT_EQ(actions, Qt::CopyAction | Qt::MoveAction);
    EXPECT_TRUE(OtherComputer().DeletePrize(references.at(0)));
    drag(1, 10);
    EXPECT_EQ(texts.size(), 1);
    // That drag is over, and the next one begins.
    drag(2, 10);
    EXPECT_EQ(texts.size(), 2);
}

TEST_F(PrizesListCommandTest, F5ReadsTheListAndTheTree)
{
    Attach();
    Grid->setFocus();
    QTest::keyClick(Grid, Qt::Key_F5);
    EXPECT_EQ(TakeFills(), 1);
    Tree->setFocus();
    Tree->ClearNodes();
    QTest::keyClick(Tree, Qt::Key_F5);
    EXPECT_EQ(Tree->NodeCount(), 5);
    EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c3"));
}

TEST_F(PrizesListCommandTest, EnterAndPlusSearchAndQuotesAreSwallowed)
{
    Save(QStringLiteral("Mug"));
    Save(QStringLiteral("Pen"));
    Attach();
    Box->setFocus();
    Box->lineEdit()->selectAll();
    QTest::keyClicks(Box, QStringLiteral("m'u\"g"));
    EXPECT_EQ(Box->Text(), QStringLiteral("mug"));
    EXPECT_EQ(TakeFills(), 0);
    QTest::keyClicks(Box, QStringLiteral("+"));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Mug")});
    EXPECT_EQ(Box->lineEdit()->selectedText(), QStringLiteral("mug"));
}

TEST_F(PrizesListCommandTest, QuotesThatArePastedAreLeftOut)
{
    Attach();
    QGuiApplication::clipboard()->setText(QStringLiteral("the \"big\" o'clock"));
    Box->setFocus();
    Box->lineEdit()->selectAll();
    QTest::keySequence(Box, QKeySequence::Paste);
    EXPECT_EQ(Box->Text(), QStringLiteral("the big oclock"));
    EXPECT_EQ(Box->lineEdit()->cursorPosition(), 14);
}

TEST_F(PrizesListCommandTest, DroppingDownOffersEachTextOnce)
{
    Attach();
    Find(QStringLiteral("Mug"));
    Find(QStringLiteral("pen"));
    Find(QStringLiteral("MUG"));
    Box->showPopup();
    Box->hidePopup();
    ASSERT_EQ(Box->count(), 2);
    EXPECT_EQ(Box->itemText(0), QStringLiteral("Mug"));
    EXPECT_EQ(Box->itemText(1), QStringLiteral("pen"));
    EXPECT_EQ(Box->Text(), QStringLiteral("MUG"));
}

TEST_F(PrizesListCommandTest, ChoosingAnEntryOfTheBoxSearchesForIt)
{
    Save(QStringLiteral("Mug"));
    Save(QStringLiteral("Pen"));
    Attach();
    Find(QStringLiteral("mug"));
    Find(QStringLiteral("pen"));
    TakeFills();
    QTest::keyClick(Box, Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(Box->view()->isVisible());
    QTest::mouseClick(Box->view()->viewport(), Qt::LeftButton, {},
                      Box->view()->visualRect(Box->model()->index(0, 0)).center());
    ASSERT_TRUE(QTest::qWaitFor([this] { return Box->Text() == QStringLiteral("mug"); }, 10'000));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Mug")});
    EXPECT_EQ(Box->lineEdit()->selectedText(), QStringLiteral("mug"));
}

TEST_F(PrizesListCommandTest, AnEmptyBoxShowsAllPrizesWhenItLosesTheFocus)
{
    Attach();
    Box->setFocus();
    EXPECT_EQ(Box->lineEdit()->selectedText(), QStringLiteral("<All Prizes>"));
    Box->SetText(QStringLiteral("  "));
    Grid->setFocus();
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Prizes>"));
}

TEST_F(PrizesListCommandTest, TheSearchButtonAndTheTabReadTheListAgain)
{
    Attach();
    QTest::mouseClick(&Child<QToolButton>("search"), Qt::LeftButton);
    EXPECT_EQ(TakeFills(), 1);
    QTabBar& tabs = Child<TabStrip>("tbsPrizes").Tabs();
    ASSERT_EQ(tabs.count(), 1);
    EXPECT_EQ(tabs.tabText(0), QStringLiteral("Prizes"));
    EXPECT_EQ(Child<TabStrip>("tbsCategories").Tabs().tabText(0), QStringLiteral("Categories"));
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(0).center());
    EXPECT_EQ(TakeFills(), 1);
}
