// SPDX-License-Identifier: Apache-2.0

// The running order at the desk, by its keys; the fixture's station is the other computer.

#include "onair/OnAirDesk.h"
#include "onair/OnAirEntries.h"
#include "prizes/PrizeDeskTest.h"
#include "window/NoticeBar.h"

#include <QListWidget>
#include <QPlainTextEdit>
#include <QStatusBar>

namespace
{
class OnAirTest : public PrizeDeskTest
{
protected:
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        for (const char* name : {"One", "Two", "Three"})
            Messages.append(
                FileMail(Mail(name, QByteArray(name) + " is the text.\r\n", QByteArray(name) + " <a@b.org>")));
    }
    RunningOrder Order() { return RunningOrder(Station.Database().File()); }
    /// Who wrote, in the order as the other computer sees it; those that are used or skipped in small letters.
    QString Words()
    {
        QStringList words;
        for (const OnAirEntry& entry : Order().Read())
            words.append(entry.State == OnAirState::Waiting ? entry.From : entry.From.toLower());
        return words.join(u' ');
    }
    /// All three messages on the order, and its window open.
    void OpenOnAir()
    {
        OpenWindow();
        Window->OnAir().PutMessages(Messages);
        QTest::keyClick(Window.get(), Qt::Key_F8);
        ASSERT_NE(Air(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(Air()));
    }
    OnAirWindow* Air() { return Window->OnAir().Window(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(Air()->focusWidget() ? Air()->focusWidget() : Air(), key, modifiers);
    }
    QString Shown() { return Air()->findChild<QPlainTextEdit*>(QStringLiteral("onAirText"))->toPlainText(); }
    QPlainTextEdit& Editor() { return *Air()->findChild<QPlainTextEdit*>(QStringLiteral("onAirText")); }
    QString NoticeOfAir() { return Air()->findChild<NoticeBar*>(QStringLiteral("onAirNotice"))->Text(); }

    QList<qint32> Messages;
};

const QString OneText = QStringLiteral("One is the text.");
const QString TwoText = QStringLiteral("Two is the text.");
const QString ThreeText = QStringLiteral("Three is the text.");
} // namespace

TEST_F(OnAirTest, AKeyPutsTheSelectedMessagesOnTheOrderAndTheirRowsSaySo)
{
    OpenWindow();
    ASSERT_TRUE(Order().Read().isEmpty());
    SelectByKeys(*Window, Messages.at(1));
    QTest::keyClick(Window.get(), Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Words(), QStringLiteral("Two"));
    EXPECT_EQ(Window->statusBar()->currentMessage(), QStringLiteral("Put on the running order: 1 message"));
    const OnAirEntry entry = Order().Read().first();
    EXPECT_EQ(entry.Message, Messages.at(1));
    EXPECT_EQ(entry.Original, TwoText);
    EXPECT_EQ(entry.AddedBy, QStringLiteral("Technician"));
    auto* grid = Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    const auto row = static_cast<int>(Window->List().References().indexOf(Messages.at(1)));
    EXPECT_TRUE(grid->model()
                    ->index(row, 2)
                    .data(Qt::AccessibleTextRole)
                    .toString()
                    .contains(QStringLiteral("On the running order")));
    QTest::keyClick(Window.get(), Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Window->statusBar()->currentMessage(), QStringLiteral("On the running order already: 1 message"));
    EXPECT_EQ(Words(), QStringLiteral("Two"));
}

TEST_F(OnAirTest, KeysGoOnBackAndMarkWithTimeAndWho)
{
    OpenOnAir();
    EXPECT_EQ(Shown(), OneText);
    Key(Qt::Key_Space);
    EXPECT_EQ(Shown(), TwoText);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Shown(), OneText);
    Key(Qt::Key_Return);
    EXPECT_EQ(Words(), QStringLiteral("one Two Three"));
    EXPECT_EQ(Order().Read().first().StateBy, QStringLiteral("Technician"));
    EXPECT_FALSE(Order().Read().first().When.IsNone());
    EXPECT_EQ(Shown(), TwoText) << "the next one that waits";
    Key(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(Order().Read().at(1).State, OnAirState::Skipped);
    EXPECT_EQ(Shown(), ThreeText);
    Key(Qt::Key_Left);
    EXPECT_TRUE(NoticeOfAir().startsWith(QStringLiteral("Skipped at "))) << NoticeOfAir().toStdString();
    Key(Qt::Key_Return);
    EXPECT_EQ(Words(), QStringLiteral("one Two Three")) << "it waits again";
}

TEST_F(OnAirTest, AnEntryMovesAndIsTakenOffByKeys)
{
    OpenOnAir();
    Key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(Words(), QStringLiteral("Two One Three"));
    EXPECT_EQ(Shown(), OneText) << "and stays on show";
    Key(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(Words(), QStringLiteral("One Two Three"));
    Key(Qt::Key_Delete);
    EXPECT_EQ(Words(), QStringLiteral("Two Three"));
    EXPECT_EQ(Shown(), TwoText);
    EXPECT_TRUE(Station.Database().ReadMessage(Messages.first())) << "the message itself stays";
}

TEST_F(OnAirTest, TheTextIsShortenedWithTheOriginalKeptAndTypingDoesNothingElse)
{
    OpenOnAir();
    Key(Qt::Key_F2);
    ASSERT_TRUE(Air()->IsEditing());
    Editor().selectAll();
    QTest::keyClicks(&Editor(), QStringLiteral("Short it is"));
    QTest::keyClick(&Editor(), Qt::Key_Backspace);
    QTest::keyClick(&Editor(), Qt::Key_Return);
    Key(Qt::Key_F2);
    EXPECT_FALSE(Air()->IsEditing());
    OnAirEntry entry = Order().Read().first();
    EXPECT_EQ(entry.Text, QStringLiteral("Short it i\n"));
    EXPECT_EQ(entry.Original, OneText);
    EXPECT_EQ(Words(), QStringLiteral("One Two Three")) << "Enter was typed, not pressed";
    EXPECT_EQ(NoticeOfAir(), QStringLiteral("Changed for air; the original is kept."));
    Key(Qt::Key_F2);
    QTest::keyClicks(&Editor(), QStringLiteral("xx"));
    Key(Qt::Key_Escape);
    EXPECT_EQ(Shown(), QStringLiteral("Short it i\n"));
    EXPECT_TRUE(Air()->isVisible()) << "Esc has only ended the change";
    Air()->Restore();
    EXPECT_EQ(Order().Read().first().Text, OneText);
}

TEST_F(OnAirTest, WhatAnotherDeskDoesToTheEntryOnShowIsSaidAndChangesNothingUnderTheEyes)
{
    OpenOnAir();
    const qint32 first = Order().Read().first().Reference;
    const OnAirEntry third = Order().Read().last();
    EXPECT_EQ(Order().MoveUp(third.Reference), RunningOrder::Outcome::Done);
    EXPECT_EQ(Order().Remove(first), RunningOrder::Outcome::Done);
    ASSERT_TRUE(WaitUntil([this] { return !NoticeOfAir().isEmpty(); }, 2000)) << "within two seconds";
    EXPECT_EQ(NoticeOfAir(), QStringLiteral("Somebody has taken this off the running order."));
    EXPECT_EQ(Shown(), OneText);
    Key(Qt::Key_Return);
    EXPECT_EQ(Words(), QStringLiteral("Three Two"));
    Key(Qt::Key_Space);
    EXPECT_EQ(Shown(), ThreeText) << "the next one";
    EXPECT_EQ(Order().SetState(third.Reference, OnAirState::Waiting, OnAirState::Used, QStringLiteral("Petra")),
              RunningOrder::Outcome::Done);
    Key(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(Order().Read().first().State, OnAirState::Used) << "what Petra said stands";
    EXPECT_TRUE(NoticeOfAir().contains(QStringLiteral("by Petra"))) << NoticeOfAir().toStdString();
}

TEST_F(OnAirTest, ATextThatAnotherDeskChangedMeanwhileIsShownAndTheUserChooses)
{
    OpenOnAir();
    const qint32 first = Order().Read().first().Reference;
    Key(Qt::Key_F2);
    Editor().setPlainText(QStringLiteral("Mine"));
    EXPECT_EQ(Order().SetText(first, OneText, QStringLiteral("Theirs")), RunningOrder::Outcome::Done);
    Air()->Look();
    EXPECT_EQ(Shown(), QStringLiteral("Mine")) << "nothing typed vanishes";
    const QString question =
        QStringLiteral("Somebody has changed the text meanwhile. It is now:\n\nTheirs\n\nDo you want to store yours in "
                       "its place?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Key(Qt::Key_F2);
    EXPECT_TRUE(Air()->IsEditing());
    EXPECT_EQ(Order().Read().first().Text, QStringLiteral("Theirs"));
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    Key(Qt::Key_F2);
    EXPECT_EQ(Order().Read().first().Text, QStringLiteral("Mine"));
}

TEST_F(OnAirTest, AMessageThatIsDeletedStaysWithItsTextAndSaysSo)
{
    OpenOnAir();
    ASSERT_TRUE(Station.Database().DeleteMessage(Messages.first(), true));
    EXPECT_TRUE(WaitUntil(
        [this] {
            return NoticeOfAir() == QStringLiteral("The message was deleted meanwhile; this is its text for air.");
        },
        3000))
        << NoticeOfAir().toStdString();
    EXPECT_EQ(Shown(), OneText);
    EXPECT_EQ(Words(), QStringLiteral("One Two Three"));
}

TEST_F(OnAirTest, APrizeStandsInItWithItsScript)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"), 3,
                                  [](cPrize& made) { made.SetScript(QStringLiteral("Call now to win!")); });
    OpenPrizes();
    Select(prize);
    QTest::keyClick(Window.get(), Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Words(), QStringLiteral("Two tickets"));
    QTest::keyClick(Window.get(), Qt::Key_F8);
    ASSERT_NE(Air(), nullptr);
    EXPECT_EQ(Shown(), QStringLiteral("Call now to win!"));
    EXPECT_EQ(Air()->findChild<QLabel*>(QStringLiteral("onAirHead"))->text(), QStringLiteral("Prize: Two tickets"));
}

TEST_F(OnAirTest, ItIsEmptiedWithAQuestionThatTellsTheNumber)
{
    OpenOnAir();
    Key(Qt::Key_Return);
    const QString question =
        QStringLiteral("Take all 3 entries off the running order, for every desk? 2 of them have not been read out.");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Air()->Empty();
    EXPECT_EQ(Order().Read().size(), 3);
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    Air()->Empty();
    EXPECT_TRUE(Order().Read().isEmpty());
    EXPECT_EQ(Shown(), QString());
    EXPECT_EQ(Air()->findChild<QLabel*>(QStringLiteral("onAirHead"))->text(),
              QStringLiteral("Nothing is on the running order."));
}

TEST_F(OnAirTest, ConversionBackupCompactingAndCheckingCarryTheOrder)
{
    OpenWindow();
    Window->OnAir().PutMessages(Messages);
    const QList<OnAirEntry> before = Order().Read();
    ASSERT_EQ(before.size(), 3);
    CloseWindow();
    Station.Close();
    for (const QStringList& words :
         {QStringList{QStringLiteral("compact")},
          QStringList{QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("jet")},
          QStringList{QStringLiteral("check")}, QStringList{QStringLiteral("backup")},
          QStringList{QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("sqlite")}}) {
        OtherComputer(words.first().toLatin1().constData(), words.mid(1));
        Station.Open(Folder(), QStringLiteral("Technician"));
        EXPECT_EQ(Order().Read(), before) << words.join(u' ').toStdString();
        if (words.first() == u"backup") {
            EXPECT_EQ(Order().Empty(), 3);
        }
        Station.Close();
        if (words.first() == u"backup") {
            OtherComputer("restore", {QStringLiteral("--yes")});
            Station.Open(Folder(), QStringLiteral("Technician"));
            EXPECT_EQ(Order().Read(), before);
            Station.Close();
        }
    }
    Station.Open(Folder(), QStringLiteral("Technician"));
}
