// SPDX-License-Identifier: Apache-2.0

// What hosts switch on: the selection stays with its message, the first rows show before the last are read, and the
// host does what the list would do.

#include "messageslist/FilledListTest.h"

#include <QApplication>
#include <QSignalSpy>

namespace
{
class SelectsByReferenceTest : public FilledListTest
{
protected:
    void SetUp() override { List->SetSelectsByReference(true); }
    /// Of the signal's first argument, each time.
    static QList<qint32> Told(const QSignalSpy& spy)
    {
        QList<qint32> references;
        for (const QList<QVariant>& arguments : spy)
            references.append(arguments.first().toInt());
        return references;
    }
};
} // namespace

TEST_F(SelectsByReferenceTest, AMessageThatAnotherComputerTookLeavesNoneSelected)
{
    const QList<qint32> all = SaveMany(3);
    Attach();
    ClickRow(2);
    TakeSelections();
    const QSignalSpy left(List.get(), &uMessagesList::MessageLeft);
    Now.Advance(1);
    OtherComputer().SetStampsEveryChange(true);
    ASSERT_TRUE(OtherComputer().DeleteMessage(all.at(1), true));
    Tick();
    EXPECT_EQ(Told(left), QList<qint32>{all.at(1)});
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_EQ(Grid->Row(), 0);
    EXPECT_TRUE(TakeSelections().isEmpty()) << "no other message is told instead";
    // Nor by anything that comes later.
    SaveElsewhere(QStringLiteral("Later"));
    Tick();
    EXPECT_EQ(List->NumberItems(), 3);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_TRUE(TakeSelections().isEmpty());
}

TEST_F(SelectsByReferenceTest, WithoutItTheNextRowIsSelectedAsEver)
{
    List->SetSelectsByReference(false);
    const QList<qint32> all = SaveMany(3);
    Attach();
    ClickRow(2);
    Now.Advance(1);
    OtherComputer().SetStampsEveryChange(true);
    ASSERT_TRUE(OtherComputer().DeleteMessage(all.at(1), true));
    Tick();
    EXPECT_EQ(List->SelectedReference(), all.at(2));
}

TEST_F(SelectsByReferenceTest, ADeleteByTheUserGoesOnWithTheNextMessage)
{
    const QList<qint32> all = SaveMany(4);
    Attach();
    ClickRow(2);
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_EQ(List->SelectedReference(), all.at(2));
    EXPECT_TRUE(Grid->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(List->SelectedReference(), all.at(3));
}

TEST_F(SelectsByReferenceTest, AnotherFolderBeginsAtItsFirstRowAndAFoundMessageStaysSelected)
{
    const QList<qint32> all = SaveMany(5);
    SaveIn(QStringLiteral("Kept"), tmcSaved);
    const qint32 second = SaveIn(QStringLiteral("Kept too"), tmcSaved);
    Attach();
    ClickRow(4);
    ClickNode(tmcSaved);
    EXPECT_EQ(Grid->Row(), 1);
    EXPECT_NE(List->SelectedReference(), second);
    ClickNode(tmcInbox);
    ClickRow(4);
    Find(QStringLiteral("Message 4"));
    EXPECT_EQ(List->SelectedReference(), all.at(3));
    EXPECT_EQ(Grid->Row(), 1);
}

TEST_F(SelectsByReferenceTest, OnlyWhatTheUserPointsAtIsToldAsChosen)
{
    const QList<qint32> all = SaveMany(2);
    const QSignalSpy chosen(List.get(), &uMessagesList::MessageChosen);
    Attach();
    EXPECT_TRUE(Told(chosen).isEmpty());
    ClickRow(1);
    EXPECT_EQ(Told(chosen), QList<qint32>{all.at(0)}) << "the row that was selected before";
    QTest::keyClick(Grid, Qt::Key_Down);
    EXPECT_EQ(Told(chosen), all);
}

TEST_F(SelectsByReferenceTest, TheFirstScreenShowsWhileTheOtherRowsCome)
{
    List->SetShowsFirstRows(true);
    SaveMany(400);
    OpenStation();
    bool wasSeen = false;
    int atFirst = 0;
    Ui.DoAtYields([&] {
        if (wasSeen || Loading().isVisible() || Grid->Rows() < 100)
            return;
        wasSeen = true;
        atFirst = Grid->Rows();
    });
    Attach();
    EXPECT_TRUE(wasSeen);
    EXPECT_LT(atFirst, 400);
    EXPECT_EQ(List->NumberItems(), 400);
    EXPECT_TRUE(Grid->Redraw());
}

TEST_F(SelectsByReferenceTest, ReadingTheSameRowsAgainBlanksNothing)
{
    List->SetShowsFirstRows(true);
    SaveMany(300);
    Attach();
    bool wasBlank = false;
    Ui.DoAtYields([&] { wasBlank = wasBlank || Loading().isVisible(); });
    List->UpdateDisplay();
    EXPECT_FALSE(wasBlank);
    ClickRow(3);
    const int yields = Ui.Yields();
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_EQ(Ui.Yields(), yields) << "one row costs no reading of all";
    EXPECT_EQ(List->NumberItems(), 299);
}

TEST_F(SelectsByReferenceTest, AHostThatTakesACommandDoesItAlone)
{
    const QList<qint32> all = SaveMany(3);
    Attach();
    List->SetSelectsSeveral(true);
    QList<qint32> wanted;
    QObject::connect(List.get(), &uMessagesList::CommandWanted, List.get(),
                     [&](MessagesListCommand command, const QList<qint32>& references, bool& isTaken) {
                         isTaken = command == MessagesListCommand::Delete;
                         wanted = references;
                     });
    ClickRow(1);
    QTest::keyClick(Grid, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_EQ(wanted, all.mid(0, 2));
    EXPECT_EQ(List->NumberItems(), 3) << "the list deleted nothing itself";
}
