// SPDX-License-Identifier: Apache-2.0
#include "uPrizeBasicTest.h"

TEST_F(uPrizeBasicTest, HasItsPartsAndColumns)
{
    EXPECT_EQ(Child<TabStrip>("tbsDetails").Tabs().count(), 1);
    EXPECT_EQ(Child<TabStrip>("tbsDetails").Tabs().tabText(0), QStringLiteral(" "));
    QStringList headings;
    QStringList keys;
    for (int i = 0; i < Winners().ColumnCount(); ++i) {
        headings.append(Winners().headerItem()->text(i));
        keys.append(Winners().ColumnKey(i));
    }
    EXPECT_EQ(headings, QStringList({QStringLiteral("#"), QStringLiteral("Name"), QStringLiteral("Contact"),
                                     QStringLiteral("Won")}));
    EXPECT_EQ(keys, QStringList({QStringLiteral("REFERENCE"), QStringLiteral("NAME"), QStringLiteral("CONTACT"),
                                 QStringLiteral("WONDATE")}));
    EXPECT_TRUE(Winners().isColumnHidden(0));
    EXPECT_EQ(Add().toolTip(), QStringLiteral("Add a winner"));
    EXPECT_EQ(Show().toolTip(), QStringLiteral("Display the details of the selected winner"));
    EXPECT_EQ(Timer().interval(), 20000);
    EXPECT_EQ(View->Prize(), nullptr);
    EXPECT_FALSE(Add().isEnabled());
    EXPECT_FALSE(Show().isEnabled());
    EXPECT_EQ(View->BackColour(), SystemColour::ButtonFace);
}

TEST_F(uPrizeBasicTest, ShowsThePrizeAndItsWinners)
{
    const cPrizePtr prize = MakePrize(5, {11, 12});
    prize->SetEdited(false);
    View->SetPrize(prize);
    EXPECT_EQ(View->Prize(), prize);
    EXPECT_EQ(Title().text(), QStringLiteral("Mug"));
    EXPECT_EQ(Script().toPlainText(), QStringLiteral("Win a mug!"));
    EXPECT_EQ(Column("REFERENCE"), QStringList({QStringLiteral("1"), QStringLiteral("2")}));
    EXPECT_EQ(Column("NAME"), QStringList({QStringLiteral("Ann"), QStringLiteral("Bob")}));
    EXPECT_EQ(Column("CONTACT"), QStringList({QStringLiteral("07700 900001"), QStringLiteral("bob@example.com")}));
    EXPECT_EQ(Column("WONDATE"), QStringList({QStringLiteral("(Won just now)"), QStringLiteral("(Won just now)")}));
    EXPECT_EQ(Winners().Keys().first(), QStringLiteral("w%1").arg(prize->PrizeWinner(1)->Reference()));
    EXPECT_TRUE(Timer().isActive());
    EXPECT_FALSE(prize->Edited());
    EXPECT_TRUE(Add().isEnabled());
    EXPECT_FALSE(Show().isEnabled());

    View->SetPrize(nullptr);
    EXPECT_EQ(Title().text(), QString());
    EXPECT_EQ(Script().toPlainText(), QString());
    EXPECT_EQ(Status(), QString());
    EXPECT_EQ(Winners().ItemCount(), 0);
    EXPECT_FALSE(Timer().isActive());
    EXPECT_FALSE(Add().isEnabled());
}

TEST_F(uPrizeBasicTest, TheStatusLineSaysHowManyAreLeft)
{
    const auto status = [this](int supplied, int winners) {
        View->SetPrize(MakePrize(supplied, QList<qint32>(winners, 11)));
        return Status();
    };
    EXPECT_EQ(status(3, 2), QStringLiteral("1 Prize Left"));
    EXPECT_EQ(status(3, 1), QStringLiteral("2 Prizes Left"));
    EXPECT_EQ(status(1, 1), QStringLiteral("The Prize has been won"));
    EXPECT_EQ(status(4, 4), QStringLiteral("All 4 Prizes have been won"));
    EXPECT_EQ(status(0, 0), QStringLiteral("All 0 Prizes have been won"));
}

TEST_F(uPrizeBasicTest, APrizeWithoutItsWinnersReadShowsNoneAndDoesNotRefresh)
{
    const cPrizePtr prize = MakePrize(5, {11});
    View->SetPrize(prize);
    View->SetPrize(Station->GetPrize(prize->Reference(), false));
    EXPECT_EQ(Title().text(), QStringLiteral("Mug"));
    EXPECT_EQ(Winners().ItemCount(), 0);
    EXPECT_EQ(Status(), QString());
    EXPECT_FALSE(Timer().isActive());
    EXPECT_TRUE(Add().isEnabled());
}

TEST_F(uPrizeBasicTest, ANewPrizeTakesNoWinnersYet)
{
    View->SetPrize(std::make_shared<cPrize>());
    EXPECT_FALSE(Add().isEnabled());
    EXPECT_FALSE(Show().isEnabled());
}

TEST_F(uPrizeBasicTest, TheFirstFilledDetailIsTheContact)
{
    const QStringList details = {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
                                 QStringLiteral("5")};
    clsKVContact contact;
    contact.Name = QStringLiteral("Cas");
    contact.Other = details.at(4);
    const cPrizePtr prize = MakePrize(5, {20});
    const auto shown = [&] {
        People.Add(20, contact);
        View->UpdateWinners();
        return Column("CONTACT").value(0);
    };
    People.Add(20, contact);
    View->SetPrize(prize);
    EXPECT_EQ(shown(), QStringLiteral("5"));
    contact.SecondEmail = details.at(3);
    EXPECT_EQ(shown(), QStringLiteral("4"));
    contact.Email = details.at(2);
    EXPECT_EQ(shown(), QStringLiteral("3"));
    contact.Telephone = details.at(1);
    EXPECT_EQ(shown(), QStringLiteral("2"));
    contact.Mobile = details.at(0);
    EXPECT_EQ(shown(), QStringLiteral("1"));
    contact = {};
    contact.Name = QStringLiteral("Cas");
    EXPECT_EQ(shown(), QStringLiteral("1")); // none is filled: what it had
}

TEST_F(uPrizeBasicTest, MissingContactsAndNoDirectorySayMissingContact)
{
    const cPrizePtr prize = MakePrize(5, {99, 11});
    View->SetPrize(prize);
    EXPECT_EQ(Column("NAME"), QStringList({QStringLiteral("<Missing Contact>"), QStringLiteral("Ann")}));
    View->SetDirectoryDatabase(nullptr);
    EXPECT_EQ(Column("NAME").last(), QStringLiteral("Ann"));
    View->UpdateWinners();
    EXPECT_EQ(Column("NAME"), QStringList({QStringLiteral("<Missing Contact>"), QStringLiteral("<Missing Contact>")}));
}

TEST_F(uPrizeBasicTest, EmptySlotsAreSkipped)
{
    const cPrizePtr prize = MakePrize(5, {11, 12});
    prize->SetPrizeWinner(1, nullptr);
    View->SetPrize(prize);
    EXPECT_EQ(Column("REFERENCE"), QStringList{QStringLiteral("2")});
}

TEST_F(uPrizeBasicTest, AnUpdateChangesTheListInPlace)
{
    const cPrizePtr prize = MakePrize(40, QList<qint32>(30, 11));
    View->SetPrize(prize);
    QCoreApplication::processEvents(); // the rows are laid out
    Winners().verticalScrollBar()->setValue(Winners().verticalScrollBar()->maximum());
    const int scrolled = Winners().verticalScrollBar()->value();
    ASSERT_GT(scrolled, 0);
    ClickItem(27);
    const QString selected = Winners().SelectedKey();
    const QTreeWidgetItem* const item = Winners().topLevelItem(27);
    Now.Advance(3600);
    View->UpdateWinners();
    EXPECT_EQ(Winners().SelectedKey(), selected);
    EXPECT_EQ(Winners().topLevelItem(27), item);
    EXPECT_EQ(Winners().verticalScrollBar()->value(), scrolled);
    EXPECT_TRUE(Show().isEnabled());
    EXPECT_NE(Column("WONDATE").last(), QStringLiteral("(Won just now)"));
}

TEST_F(uPrizeBasicTest, FiveHundredWinnersKeepSelectionAndScrollAndAskNoQuery)
{
    dao::DBEngine::BeginTrans();
    const cPrizePtr prize = MakePrize(500, QList<qint32>(500, 11));
    dao::DBEngine::CommitTrans();
    View->SetPrize(prize);
    ASSERT_EQ(Winners().ItemCount(), 500);
    EXPECT_EQ(Status(), QStringLiteral("All 500 Prizes have been won"));
    QCoreApplication::processEvents(); // the rows are laid out
    QScrollBar& bar = *Winners().verticalScrollBar();
    bar.setValue(bar.maximum() / 2);
    const int scrolled = bar.value();
    ASSERT_GT(scrolled, 0);
    const QTreeWidgetItem* const top = Winners().itemAt(5, 5);
    const int row = Winners().indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(top)) + 2;
    ClickItem(row);
    const QString selected = Winners().SelectedKey();
    ASSERT_EQ(selected, QStringLiteral("w%1").arg(prize->PrizeWinner(static_cast<qint16>(row + 1))->Reference()));
    const QStringList keys = Winners().Keys();

    // Without its file the station answers no query; the names come from the directory, one call each.
    Station->CloseTolvaDatabase();
    People.Asked = 0;
    Now.Advance(86400);
    View->UpdateWinners();
    EXPECT_EQ(People.Asked, 500);
    EXPECT_EQ(Winners().Keys(), keys);
    EXPECT_EQ(Winners().SelectedKey(), selected);
    EXPECT_EQ(bar.value(), scrolled);
    EXPECT_EQ(Winners().itemAt(5, 5), top);
    EXPECT_TRUE(Show().isEnabled());
    EXPECT_TRUE(Column("WONDATE").last().startsWith(QStringLiteral("Yesterday")))
        << qPrintable(Column("WONDATE").last());

    // One of those above goes: the others stay the items that they are, and the selected one with them.
    prize->SetPrizeWinner(3, nullptr);
    View->UpdateWinners();
    EXPECT_EQ(Winners().ItemCount(), 499);
    EXPECT_EQ(Winners().SelectedKey(), selected);
    EXPECT_EQ(Winners().Keys().indexOf(selected), row - 1);
}

TEST_F(uPrizeBasicTest, AWinnerDeletedElsewhereDisappearsAndTheOthersKeepTheirSelection)
{
    const cPrizePtr prize = MakePrize(5, {11, 12, 11});
    View->SetPrize(prize);
    ClickItem(1);
    const QString selected = Winners().SelectedKey();
    EXPECT_TRUE(Station->DeletePrizeWinner(prize->PrizeWinner(1)->Reference()));
    EXPECT_TRUE(Station->GetPrizeWinners(prize));
    View->UpdateWinners();
    EXPECT_EQ(Winners().ItemCount(), 2);
    EXPECT_EQ(Winners().SelectedKey(), selected);
    EXPECT_EQ(Status(), QStringLiteral("3 Prizes Left"));
    // The winner that is shown is still the one that is selected.
    cPrizeWinnerPtr shown;
    QObject::connect(View.get(), &uPrizeBasic::DisplayWinner, View.get(), [&](const cPrizeWinnerPtr& w) { shown = w; });
    Show().click();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(QStringLiteral("w%1").arg(shown->Reference()), selected);
}

TEST_F(uPrizeBasicTest, AnotherPrizeTakesTheWinnersOfTheFirstAway)
{
    View->SetPrize(MakePrize(5, {11, 12}));
    View->SetPrize(MakePrize(5, {12}));
    EXPECT_EQ(Column("NAME"), QStringList{QStringLiteral("Bob")});
}

TEST_F(uPrizeBasicTest, TheTimerKeepsTheRelativeTimesRightAndAsksOnlyTheDirectory)
{
    View->SetPrize(MakePrize(5, {11}));
    EXPECT_EQ(Column("WONDATE"), QStringList{QStringLiteral("(Won just now)")});
    Now.Advance(12 * 60);
    Station->CloseTolvaDatabase();
    const int asked = People.Asked;
    QSignalSpy ticks(&Timer(), &QTimer::timeout);
    Timer().setInterval(1);
    ASSERT_TRUE(ticks.wait(10'000));
    Timer().setInterval(20000);
    EXPECT_EQ(Column("WONDATE"), QStringList{QStringLiteral("12 minutes ago")});
    EXPECT_GT(People.Asked, asked);
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(uPrizeBasicTest, ADirectoryThatDoesNotAnswerIsToldByTheTimerAndAskedAgain)
{
    View->SetPrize(MakePrize(5, {11}));
    People.Fails = true;
    const ErrorCatcher errors;
    QSignalSpy ticks(&Timer(), &QTimer::timeout);
    Timer().setInterval(1);
    ASSERT_TRUE(ticks.wait(10'000));
    Timer().setInterval(20000);
    ASSERT_FALSE(errors.Sources().isEmpty());
    EXPECT_EQ(errors.Sources().first(), QStringLiteral("uPrizeBasic.tmrRefresh"));
    EXPECT_TRUE(Timer().isActive());
    EXPECT_EQ(Column("NAME"), QStringList{QStringLiteral("Ann")});
    EXPECT_NO_THROW(View->UpdateWinners()) << "what a host calls tells it the same way";
    EXPECT_TRUE(errors.Sources().contains(QStringLiteral("uPrizeBasic.UpdateWinners")));
    People.Fails = false;
}
