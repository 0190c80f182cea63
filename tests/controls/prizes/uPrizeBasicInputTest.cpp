// SPDX-License-Identifier: Apache-2.0
#include "uPrizeBasicTest.h"

TEST_F(uPrizeBasicTest, ClicksEnableTheButtonThatShowsTheWinner)
{
    const cPrizePtr prize = MakePrize(5, {11, 12});
    View->SetPrize(prize);
    QList<qint32> shown;
    QObject::connect(View.get(), &uPrizeBasic::DisplayWinner, View.get(),
                     [&](const cPrizeWinnerPtr& winner) { shown.append(winner->Reference()); });
    ClickItem(1);
    EXPECT_TRUE(Show().isEnabled());
    QTest::mouseClick(&Show(), Qt::LeftButton);
    ClickBesideItems();
    EXPECT_FALSE(Show().isEnabled());
    EXPECT_TRUE(Add().isEnabled());
    QTest::mouseDClick(Winners().viewport(), Qt::LeftButton, {}, ItemPosition(0));
    ClickItem(0);
    QTest::mouseDClick(Winners().viewport(), Qt::LeftButton, {}, ItemPosition(0));
    ASSERT_GE(shown.size(), 2);
    EXPECT_EQ(shown.first(), prize->PrizeWinner(2)->Reference());
    EXPECT_EQ(shown.last(), prize->PrizeWinner(1)->Reference());
}

TEST_F(uPrizeBasicTest, AWinnerIsAddedOnlyToAPrizeWithStockLeft)
{
    QSignalSpy added(View.get(), &uPrizeBasic::AddWinner);
    View->SetPrize(MakePrize(0, {}));
    Ui.ExpectWarning(
        QStringLiteral("You cannot add any Winners to this Prize because no Prize Items have been supplied "
                       "('Number Supplied' is zero)!"));
    QTest::mouseClick(&Add(), Qt::LeftButton);
    View->SetPrize(MakePrize(1, {11}));
    Ui.ExpectWarning(
        QStringLiteral("You cannot add any more Winners to this Prize because it has been fully allocated!"));
    QTest::mouseClick(&Add(), Qt::LeftButton);
    EXPECT_EQ(added.count(), 0);
    View->SetPrize(MakePrize(2, {11}));
    QTest::mouseClick(&Add(), Qt::LeftButton);
    EXPECT_EQ(added.count(), 1);
}

TEST_F(uPrizeBasicTest, TypingInTheScriptMarksThePrizeAndInTheTitleDoesNot)
{
    const cPrizePtr prize = MakePrize(5, {});
    View->SetPrize(prize);
    prize->SetEdited(false);
    Title().setFocus();
    QTest::keyClicks(&Title(), QStringLiteral("x"));
    EXPECT_FALSE(prize->Edited());
    Script().setFocus();
    QTest::keyClicks(&Script(), QStringLiteral("x"));
    EXPECT_TRUE(prize->Edited());
    // Neither is copied into the prize.
    EXPECT_EQ(prize->Title(), QStringLiteral("Mug"));
    EXPECT_EQ(prize->Script(), QStringLiteral("Win a mug!"));
    View->SetPrize(nullptr);
    QTest::keyClicks(&Script(), QStringLiteral("x"));
}

TEST_F(uPrizeBasicTest, TheTitleSelectsItsTextWhenItGetsTheFocus)
{
    View->SetPrize(MakePrize(5, {}));
    Script().setFocus();
    Title().setFocus();
    EXPECT_EQ(Title().selectedText(), QStringLiteral("Mug"));
}

TEST_F(uPrizeBasicTest, TextCommandsActOnTheActiveTextBox)
{
    QClipboard& clipboard = *QGuiApplication::clipboard();
    View->SetPrize(MakePrize(5, {}));
    Title().setFocus();
    Title().setSelection(0, 2);
    View->Copy();
    EXPECT_EQ(clipboard.text(), QStringLiteral("Mu"));
    View->Cut();
    EXPECT_EQ(Title().text(), QStringLiteral("g"));
    EXPECT_EQ(clipboard.text(), QStringLiteral("Mu"));
    Title().end(false);
    View->Paste();
    EXPECT_EQ(Title().text(), QStringLiteral("gMu"));
    Title().selectAll();
    View->DELETE();
    EXPECT_EQ(Title().text(), QString());

    Script().setFocus();
    Script().setPlainText(QStringLiteral("one\ntwo"));
    Script().selectAll();
    View->Cut();
    EXPECT_EQ(clipboard.text(), QStringLiteral("one\ntwo"));
    EXPECT_EQ(Script().toPlainText(), QString());
    View->Paste();
    EXPECT_EQ(Script().toPlainText(), QStringLiteral("one\ntwo"));
}

TEST_F(uPrizeBasicTest, TextCommandsDoNothingWhileTheFocusIsOnTheList)
{
    QClipboard& clipboard = *QGuiApplication::clipboard();
    clipboard.setText(QStringLiteral("before"));
    View->SetPrize(MakePrize(5, {11}));
    Title().selectAll();
    Winners().setFocus();
    View->Cut();
    View->Copy();
    View->DELETE();
    View->Paste();
    EXPECT_EQ(clipboard.text(), QStringLiteral("before"));
    EXPECT_EQ(Title().text(), QStringLiteral("Mug"));
}

TEST_F(uPrizeBasicTest, TheColumnsShareTheListsWidth)
{
    const double list = Twips::FromPixels(*View, Winners().width());
    const double date =
        Twips::FromPixels(*View, View->fontMetrics().horizontalAdvance(ClockHelper::CurrentTime().GeneralDate())) + 600;
    const int half = Twips::ToPixels(*View, (list - 90 - 225 - date) / 2);
    EXPECT_EQ(Winners().columnWidth(1), half);
    EXPECT_EQ(Winners().columnWidth(2), half);
    EXPECT_GE(Winners().columnWidth(3), Twips::ToPixels(*View, date));
    const int before = Winners().columnWidth(1);
    View->resize(1000, 600);
    QCoreApplication::processEvents();
    EXPECT_GT(Winners().columnWidth(1), before);
}

TEST_F(uPrizeBasicTest, AHostsBagGivesItsPropertiesBack)
{
    PropertyBag bag;
    View->WriteProperties(bag);
    EXPECT_TRUE(bag.Values().isEmpty());
    QFont font = View->Font();
    font.setPointSize(font.pointSize() + 5);
    View->SetFont(font);
    View->SetBackColour(255);
    View->WriteProperties(bag);
    uPrizeBasic other;
    other.ReadProperties(bag);
    EXPECT_EQ(other.Font(), font);
    EXPECT_EQ(other.BackColour(), 255);
    EXPECT_EQ(other.findChild<TextArea*>(QStringLiteral("txtScript"))->font().pointSize(), font.pointSize());
    EXPECT_EQ(other.findChild<TabStrip*>(QStringLiteral("tbsDetails"))->palette().color(QPalette::Window),
              QColor(255, 0, 0));
}
