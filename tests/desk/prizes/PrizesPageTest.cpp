// SPDX-License-Identifier: Apache-2.0
#include "PrizeDeskTest.h"
#include "prizes/PrizeAwards.h"
#include "prizes/PrizeSettingsDialog.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QMenu>
#include <QSpinBox>
#include <QTabWidget>
#include <QWheelEvent>

namespace
{
class PrizesPageTest : public PrizeDeskTest
{
protected:
    QString EmptyText() { return Text("noPrizesText"); }
    QPushButton& EmptyButton() { return Get<QPushButton>(*Window, "noPrizesButton"); }
};
} // namespace

TEST_F(PrizesPageTest, ThePresenterSeesWhatMayGoOutNowWithItsScript)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"), 5, [](cPrize& made) {
        made.SetScript(QStringLiteral("Win two tickets!"));
        made.SetNotes(QStringLiteral("Ask for the address"));
    });
    OpenPrizes();
    EXPECT_EQ(List().Category(), plcAvailable);
    Select(prize);
    EXPECT_EQ(Text("presenterTitle"), QStringLiteral("Two tickets"));
    EXPECT_EQ(Text("presenterStock"), QStringLiteral("5 of 5 left"));
    EXPECT_EQ(Text("presenterNow"), QStringLiteral("• May go out now"));
    EXPECT_EQ(Presenter().Script().toPlainText(), QStringLiteral("Win two tickets!"));
    EXPECT_EQ(Get<QPlainTextEdit>(*Window, "presenterNotes").toPlainText(), QStringLiteral("Ask for the address"));
    EXPECT_EQ(Text("presenterWinnersLabel"), QStringLiteral("Nobody has won it yet."));
}

TEST_F(PrizesPageTest, TheScriptIsAsLargeAsThePresenterWantsAndStaysSo)
{
    AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    const int before = Presenter().ScriptSize();
    QTest::mouseClick(&Get<QPushButton>(*Window, "scriptLarger"), Qt::LeftButton);
    EXPECT_EQ(Presenter().ScriptSize(), before + PresenterView::ScriptStep);
    EXPECT_EQ(Presenter().Script().font().pointSize(), before + PresenterView::ScriptStep);
    Presenter().Script().setFocus();
    QTest::keyClick(&Presenter().Script(), Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(Presenter().ScriptSize(), before);
    QTest::keyClick(&Presenter().Script(), Qt::Key_Plus, Qt::ControlModifier);
    QTest::keyClick(&Presenter().Script(), Qt::Key_Plus, Qt::ControlModifier);
    CloseWindow();
    OpenWindow();
    EXPECT_EQ(Presenter().ScriptSize(), before + 2 * PresenterView::ScriptStep);
    EXPECT_TRUE(Prizes().IsOnShow());
}

TEST_F(PrizesPageTest, ThePagesKeepTheirMenusApart)
{
    FileMail(Mail("One"));
    OpenWindow();
    EXPECT_FALSE(List().PrizeMenu()->menuAction()->isEnabled());
    EXPECT_TRUE(Window->List().MessageMenu()->menuAction()->isEnabled());
    auto* grid = Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    grid->setFocus();
    grid->SetRow(1);
    auto* reply = Window->findChild<QAction*>(QStringLiteral("reply"));
    EXPECT_TRUE(reply->isEnabled());
    QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
    EXPECT_TRUE(List().PrizeMenu()->menuAction()->isEnabled());
    EXPECT_FALSE(Window->List().MessageMenu()->menuAction()->isEnabled());
    EXPECT_FALSE(reply->isEnabled());
    EXPECT_FALSE(Window->findChild<QAction*>(QStringLiteral("awardToSender"))->isEnabled());
    QTest::keyClick(Window.get(), Qt::Key_1, Qt::AltModifier);
    EXPECT_FALSE(Prizes().IsOnShow());
    EXPECT_TRUE(reply->isEnabled());
    QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
    QTest::keyClick(Window.get(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_FALSE(Prizes().IsOnShow());
    EXPECT_EQ(Window->List().Category(), tmcSaved);
}

TEST_F(PrizesPageTest, AnEmptyListSaysWhatToDoNext)
{
    OpenPrizes();
    EXPECT_EQ(EmptyText(), QStringLiteral("No prize may go out this hour."));
    QTest::mouseClick(&EmptyButton(), Qt::LeftButton);
    EXPECT_EQ(List().Category(), plcAllAvailable);
    EXPECT_EQ(EmptyText(), QStringLiteral("No prize is available: all are won, or not within their dates."));
    QTest::mouseClick(&EmptyButton(), Qt::LeftButton);
    EXPECT_EQ(EmptyText(), QStringLiteral("There are no prizes yet."));
    QTest::mouseClick(&EmptyButton(), Qt::LeftButton);
    PrizeWindow* window = OnlyPrizeWindow();
    ASSERT_TRUE(window);
    EXPECT_TRUE(window->close());
}

TEST_F(PrizesPageTest, AFilterIsSeenAndCleared)
{
    AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier);
    auto* box = List().findChild<QComboBox*>(QStringLiteral("comboFind"));
    ASSERT_TRUE(box->hasFocus());
    QTest::keyClicks(box, QStringLiteral("castle"));
    QTest::keyClick(box, Qt::Key_Return);
    auto& notice = Get<NoticeBar>(*Window, "prizeFilterNotice");
    EXPECT_EQ(notice.Text(), QStringLiteral("Filter is on: only prizes with “castle” in their title or notes"));
    EXPECT_EQ(EmptyText(), QStringLiteral("No prize here has “castle” in its title or notes."));
    QTest::mouseClick(&Get<QPushButton>(notice, "noticeButton"), Qt::LeftButton);
    EXPECT_EQ(notice.Text(), QString());
    EXPECT_EQ(List().NumberItems(), 1);
}

TEST_F(PrizesPageTest, AListThatCannotBeReadSaysSoAndKeepsItsRows)
{
    AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    auto* box = List().findChild<QComboBox*>(QStringLiteral("comboFind"));
    box->setFocus();
    box->lineEdit()->setText(QStringLiteral("x\" garbage (")); // typed, the mark would be swallowed
    QTest::keyClick(box, Qt::Key_Return);
    auto& notice = Get<NoticeBar>(*Window, "prizeFilterNotice");
    EXPECT_TRUE(
        notice.Text().startsWith(QStringLiteral("The prizes could not be read, so these are as they were before. ")))
        << qPrintable(notice.Text());
    EXPECT_TRUE(notice.Text().endsWith(QStringLiteral(" Press F5 in the list to try again.")))
        << qPrintable(notice.Text());
    EXPECT_EQ(List().NumberItems(), 1);
    EXPECT_EQ(Text("presenterTitle"), QStringLiteral("Two tickets"));
    QTest::mouseClick(&Get<QPushButton>(notice, "noticeButton"), Qt::LeftButton);
    EXPECT_EQ(notice.Text(), QString());
    EXPECT_EQ(List().NumberItems(), 1);
}

TEST_F(PrizesPageTest, AnotherHourOffersOtherPrizes)
{
    AddPrize(QStringLiteral("From three on"), 1, [](cPrize& prize) {
        for (qint16 hour = 0; hour < 15; ++hour)
            prize.SetAvailableForHour(6, hour, false);
    });
    OpenPrizes();
    EXPECT_EQ(List().NumberItems(), 0);
    Page().CheckHour();
    EXPECT_EQ(List().NumberItems(), 0);
    Now.Advance(3600);
    Page().CheckHour();
    EXPECT_EQ(List().NumberItems(), 1);
}

TEST_F(PrizesPageTest, APrizeSavedByTheOtherComputerShowsWithinTheInterval)
{
    OpenPrizes();
    EXPECT_EQ(List().NumberItems(), 0);
    AddPrize(QStringLiteral("From elsewhere"));
    EXPECT_TRUE(WaitUntil([this] { return List().NumberItems() == 1; }));
}

TEST_F(PrizesPageTest, AnAwardOfTheOtherComputerShowsWithinTheInterval)
{
    const qint32 ann = AddContact(QStringLiteral("Ann Angove"));
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"), 2);
    OpenPrizes();
    Select(prize);
    Now.Advance(60);
    AwardElsewhere(prize, ann);
    EXPECT_TRUE(WaitUntil([this] { return Text("presenterStock") == u"1 of 2 left"; }));
    ASSERT_EQ(Presenter().Winners().Count(), 1);
    EXPECT_EQ(Presenter().Winners().topLevelItem(0)->text(0), QStringLiteral("Ann Angove"));
    EXPECT_EQ(Presenter().Winners().topLevelItem(0)->text(2), QStringLiteral("(Won just now)"));
}

TEST_F(PrizesPageTest, HoursAreSaidToBeUniversalTimeWhileTheClockShowsAnother)
{
    EXPECT_EQ(PrizeRows::ClockWords(), QString());
    Now.SetUtc(QDateTime(QDate(2026, 7, 4), QTime(16, 20), Qt::UTC));
    EXPECT_EQ(PrizeRows::ClockWords(),
              QStringLiteral("Hours are those of universal time, which is 16:20 now (17:20 on the clock here)."));
    cPrize prize;
    prize.SetAvailableForHour(6, 17, false);
    EXPECT_TRUE(PrizeRows::MayGoOutNow(prize));
    prize.SetAvailableForHour(6, 16, false);
    EXPECT_EQ(PrizeRows::WhyNotNow(prize), QStringLiteral("It may not go out in this hour."));
}

TEST_F(PrizesPageTest, TheRulesOfAwardsAreSetInTheMenuOfTheStation)
{
    OpenWindow();
    DialogVisitor dialog("prizeSettings", [](QDialog& settings) {
        auto* days = settings.findChild<QSpinBox*>(QStringLiteral("eligibleDays"));
        EXPECT_EQ(days->value(), 30);
        days->selectAll();
        QTest::keyClicks(days, QStringLiteral("14"));
        QTest::keyClick(settings.findChild<QCheckBox*>(QStringLiteral("awardNeedsRight")), Qt::Key_Space);
        QTest::keyClick(days, Qt::Key_Return);
    });
    Window->findChild<QAction*>(QStringLiteral("prizeSettings"))->trigger();
    EXPECT_EQ(PrizeAwards::EligibleDays(Station), 14);
    EXPECT_TRUE(PrizeAwards::NeedsRight(Station));
}

TEST_F(PrizesPageTest, ClosingTheDeskAsksAboutAPrizeThatIsBeingWritten)
{
    const qint32 prize = AddPrize(QStringLiteral("Two tickets"));
    OpenPrizes();
    Prizes().OpenPrize(prize);
    Type(Get<QPlainTextEdit>(*OnlyPrizeWindow(), "script"), QStringLiteral("Mine"));
    {
        BoxAnswer cancel(QStringLiteral("Cancel"));
        EXPECT_FALSE(Window->close());
    }
    BoxAnswer save(QStringLiteral("Save"));
    CloseWindow();
    EXPECT_EQ(Stored(prize)->Script(), QStringLiteral("Mine"));
}
