// SPDX-License-Identifier: Apache-2.0

// How the grid's rows come about, and which of them is selected afterwards.

#include "messageslist/FilledListTest.h"

#include <QElapsedTimer>
#include <QLabel>

class MessagesListFillTest : public FilledListTest
{
};

TEST_F(MessagesListFillTest, YieldsBeforeTheSecondRowAndEveryTwentyFiveFromThere)
{
    struct Case
    {
        int Rows;
        int Yields;
    };
    Attach();
    int saved = 0;
    for (const Case& expected : {Case{0, 0}, {1, 0}, {2, 1}, {25, 1}, {26, 1}, {27, 2}, {51, 2}, {52, 3}}) {
        SaveMany(expected.Rows - saved);
        saved = expected.Rows;
        const int before = Ui.Yields();
        List->UpdateDisplay();
        EXPECT_EQ(Ui.Yields() - before, expected.Yields) << expected.Rows << " rows";
        EXPECT_EQ(List->NumberItems(), expected.Rows);
    }
}

TEST_F(MessagesListFillTest, TellsHowFarItIsAtEachYield)
{
    SaveMany(27);
    Attach();
    QList<QPair<int, int>> told;
    QObject::connect(List.get(), &uMessagesList::FillProgress, List.get(), [&](int done, int total) {
        told.append({done, total});
    });
    QStringList shown;
    Ui.DoAtYields([&] {
        for (const QLabel* label : Loading().findChildren<QLabel*>())
            shown.append(label->text());
        // What comes sooner is not drawn.
        QTest::qSleep(60);
    });
    List->UpdateDisplay();
    EXPECT_EQ(told, (QList<QPair<int, int>>{{1, 27}, {26, 27}}));
    EXPECT_EQ(shown, QStringList({QStringLiteral("Loading Messages..."), QStringLiteral("1 of 27"),
                                  QStringLiteral("Loading Messages..."), QStringLiteral("26 of 27")}));
}

TEST_F(MessagesListFillTest, RowsGrowInBlocksAndAreTrimmedAtTheEnd)
{
    SaveMany(530);
    QList<int> sizes;
    Ui.DoAtYields([&] {
        if (sizes.isEmpty() || sizes.last() != Grid->Rows())
            sizes.append(Grid->Rows());
    });
    Attach();
    EXPECT_EQ(sizes.mid(0, 2), QList<int>({501, 1001}));
    EXPECT_EQ(Grid->Rows(), 531);
    EXPECT_EQ(List->NumberItems(), 530);
}

TEST_F(MessagesListFillTest, AMessageDeletedElsewhereDuringTheFillIsLeftOut)
{
    const QList<qint32> references = SaveMany(30);
    Attach();
    OtherComputer();
    AtYield(1, [&] { EXPECT_TRUE(OtherComputer().DeleteMessage(references.at(9), true)); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 29);
    EXPECT_FALSE(Column(0).contains(QString::number(references.at(9))));
    EXPECT_EQ(Column(0).last(), QString::number(references.last()));
}

TEST_F(MessagesListFillTest, NewestFirstBySentThenByReference)
{
    const auto sent = [](int day) {
        return [day](cMessage& message) {
            message.SetSent(Date(2026, 11, day));
            message.SetReceived(Date(2026, 11, 30 - day));
        };
    };
    Save(QStringLiteral("A"), sent(3));
    Save(QStringLiteral("B"), sent(9));
    Save(QStringLiteral("C"), sent(3));
    Attach();
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("C")}));
    Directory.User.SetPreference(QStringLiteral("MessagesListSortOrder"), mlsoReceived);
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("A"), QStringLiteral("C"), QStringLiteral("B")}));
}

TEST_F(MessagesListFillTest, TheSelectedMessageStaysSelectedWhereverItsRowGoes)
{
    const qint32 one = Save(QStringLiteral("One"), [](cMessage& message) { message.SetSent(Date(2026, 11, 1)); });
    Save(QStringLiteral("Two"), [](cMessage& message) { message.SetSent(Date(2026, 10, 1)); });
    Attach();
    ClickRow(1);
    ASSERT_EQ(List->SelectedReference(), one);
    Save(QStringLiteral("Newer"), [](cMessage& message) { message.SetSent(Date(2026, 11, 9)); });
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), one);
    EXPECT_EQ(TakeSelections().last(), one);
}

TEST_F(MessagesListFillTest, AMessageThatVanishedLeavesItsRowNumberSelected)
{
    const QList<qint32> references = SaveMany(4);
    Attach();
    ClickRow(2);
    ASSERT_TRUE(OtherComputer().DeleteMessage(references.at(1), true));
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(2));
}

TEST_F(MessagesListFillTest, AVanishedLastMessageLeavesTheNewLastRowSelected)
{
    const QList<qint32> references = SaveMany(4);
    Attach();
    ClickRow(4);
    ASSERT_TRUE(OtherComputer().DeleteMessage(references.at(3), true));
    ASSERT_TRUE(OtherComputer().DeleteMessage(references.at(2), true));
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(1));
}

TEST_F(MessagesListFillTest, TheScrollPositionStaysWhereItWas)
{
    SaveMany(200);
    Attach();
    Grid->SetTopRow(120);
    List->UpdateDisplay();
    EXPECT_EQ(Grid->TopRow(), 120);
}

TEST_F(MessagesListFillTest, ScrollsToTheFirstAndTheLastRow)
{
    List->ScrollToTop();
    List->ScrollToBottom();
    SaveMany(200);
    Attach();
    List->ScrollToBottom();
    EXPECT_GE(Grid->RowAtPixel(Grid->viewport()->height() - 1), 200);
    List->ScrollToTop();
    EXPECT_EQ(Grid->TopRow(), 1);
}

TEST_F(MessagesListFillTest, RefreshingDrawsOneRowOrAllWithoutAQuery)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    const auto rename = [&](qint32 reference, const QString& subject) {
        const cMessagePtr message = OtherComputer().GetMessage(reference);
        message->CDOMessage()->SetSubject(subject);
        ASSERT_TRUE(OtherComputer().SaveMessage(message));
    };
    rename(references.at(0), QStringLiteral("First"));
    rename(references.at(2), QStringLiteral("Third"));
    EXPECT_TRUE(List->RefreshDisplay(references.at(2)));
    EXPECT_EQ(Subjects(),
              QStringList({QStringLiteral("Message 1"), QStringLiteral("Message 2"), QStringLiteral("Third")}));
    EXPECT_EQ(Grid->Row(), 3);
    EXPECT_EQ(List->SelectedReference(), references.at(2));
    TakeSelections();
    EXPECT_TRUE(List->RefreshDisplay());
    EXPECT_EQ(Subjects().first(), QStringLiteral("First"));
    EXPECT_EQ(Grid->Row(), 3);
    EXPECT_EQ(TakeSelections(), QList<qint32>{});
    EXPECT_TRUE(Grid->Redraw());
    EXPECT_FALSE(List->RefreshDisplay(references.at(2) + 1));
    EXPECT_EQ(TakeFills(), 0);
    List->SetTolvaDatabase(nullptr);
    EXPECT_FALSE(List->RefreshDisplay());
    EXPECT_FALSE(List->RefreshDisplay(references.at(0)));
}

TEST_F(MessagesListFillTest, AHiddenListTellsItsQueryAndKeepsItsGrid)
{
    const qint32 first = Save(QStringLiteral("One"));
    Attach();
    List->SetDisplayMessageList(false);
    TakeSelections();
    SaveElsewhere(QStringLiteral("Two"));
    List->UpdateDisplay();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 1);
    EXPECT_EQ(List->SelectedReference(), first);
    EXPECT_EQ(TakeSelections(), QList<qint32>{first});
    Tick();
    EXPECT_EQ(TakeFills(), 0) << "the stamp was not copied";
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(MessagesListFillTest, WhatTheHostWritesIntoTheQueryCountsForMarkingAllOfAHiddenListAlone)
{
    const qint32 inbox = Save(QStringLiteral("In"));
    const qint32 saved = Save(QStringLiteral("Kept"), [](cMessage& message) { message.SetCategory(tmcSaved); });
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [](QString& query) { query = QStringLiteral("[Category]=3"); });
    Attach();
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("In")});
    List->SetDisplayMessageList(false);
    Entry("mnuMarkAllRead1").trigger();
    EXPECT_EQ(Station->GetMessage(inbox)->Flags() & mfRead, 0);
    EXPECT_EQ(Station->GetMessage(saved)->Flags() & mfRead, mfRead);
}

TEST_F(MessagesListFillTest, AFewThousandMessagesShowInAMoment)
{
    SaveMany(4000);
    Attach();
    QElapsedTimer watch;
    watch.start();
    List->UpdateDisplay();
    EXPECT_LT(watch.elapsed(), 5'000);
    EXPECT_EQ(List->NumberItems(), 4000);
}
