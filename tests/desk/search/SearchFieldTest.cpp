// SPDX-License-Identifier: Apache-2.0

// What is typed into the desk's search, by keys as users press them, and what it offers.

#include "LongestGap.h"
#include "SearchDeskTest.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "support/FixedClock.h"
#include "window/NoticeBar.h"

#include <QAbstractItemView>
#include <QAction>
#include <QClipboard>
#include <QCompleter>
#include <QDir>
#include <QMenu>

namespace
{
class SearchFieldTest : public SearchDeskTest
{
protected:
    /// What is offered at the moment, by its whole text; nothing where nothing is popped up.
    QStringList Offers() const
    {
        QStringList offers;
        const QAbstractItemView* popup = Field().completer()->popup();
        if (QApplication::activePopupWidget() != popup)
            return offers;
        for (int row = 0; row < popup->model()->rowCount(); ++row)
            offers.append(popup->model()->index(row, 0).data().toString());
        return offers;
    }
    void Empty()
    {
        Field().setFocus();
        Field().clear();
    }
    void Settle()
    {
        ASSERT_TRUE(WaitUntil([this] { return Window_().IsSettled(); }, 20'000));
    }
};

const QString Ferry = QStringLiteral("ferry");
} // namespace

TEST_F(SearchFieldTest, APrefixIsOfferedWhileItIsTypedAndTakenByTheKeyThatOpensNothingThen)
{
    FileMail(Mail("One", "ferry\r\n"));
    FileMail(Mail("Two", "ferry\r\n", "Ann <ann@example.org>"));
    OpenSearch();
    PressKeys(QStringLiteral("ferry fr"));
    EXPECT_EQ(Offers(), QStringList(QStringLiteral("ferry from:")));
    Settle();
    Type(QStringLiteral("ferry"));
    ASSERT_EQ(Rows().rowCount(), 2) << "there is something that the key could open";
    Empty();
    PressKeys(QStringLiteral("ferry fr"));
    Press(Qt::Key_Down);
    Press(Qt::Key_Return);
    EXPECT_EQ(Field().text(), QStringLiteral("ferry from:"));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    PressKeys(QStringLiteral("ann"));
    Settle();
    ASSERT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Cell(0, 1), QStringLiteral("Two"));
    EXPECT_TRUE(Window->MessageWindows().isEmpty());
    Press(Qt::Key_Return);
    EXPECT_TRUE(WaitUntil([this] { return Window->MessageWindows().size() == 1; }));
}

TEST_F(SearchFieldTest, TheKeyThatTakesAWholePrefixOpensNothingOfWhatItFindsThen)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    PressKeys(QStringLiteral("ferry is:unr"));
    ASSERT_FALSE(Offers().isEmpty());
    Press(Qt::Key_Down);
    Press(Qt::Key_Return);
    EXPECT_EQ(Field().text(), QStringLiteral("ferry is:unread"));
    Settle();
    ASSERT_EQ(Rows().rowCount(), 1);
    EXPECT_TRUE(Window->MessageWindows().isEmpty());
}

TEST_F(SearchFieldTest, EveryPrefixIsOfferedByItsBeginningInAnyCase)
{
    OpenSearch();
    for (const QString& prefix : SearchPrefixes()) {
        for (const QString& typed : {prefix.left(2), prefix.chopped(1), prefix.left(2).toUpper()}) {
            Empty();
            PressKeys(typed);
            EXPECT_TRUE(Offers().contains(prefix)) << qPrintable(typed);
        }
        Empty();
        PressKeys(prefix);
        EXPECT_FALSE(Offers().contains(prefix)) << "it stands there already";
    }
    Empty();
    PressKeys(QStringLiteral("f"));
    EXPECT_TRUE(Offers().isEmpty()) << "one letter may be the beginning of anything";
    Empty();
    PressKeys(QStringLiteral("transfr"));
    EXPECT_TRUE(Offers().isEmpty());
}

TEST_F(SearchFieldTest, WhoGoesOnTypingIsNotHinderedByWhatIsOffered)
{
    FileMail(Mail("One", "the inbound ferry\r\n"));
    OpenSearch();
    PressKeys(QStringLiteral("in"));
    ASSERT_EQ(Offers(), QStringList(QStringLiteral("in:")));
    Settle();
    ASSERT_EQ(Rows().rowCount(), 1);
    Press(Qt::Key_Return);
    EXPECT_TRUE(WaitUntil([this] { return Window->MessageWindows().size() == 1; })) << "nothing was chosen of it";
    Window->MessageWindows().first()->close();
    Window_().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    Empty();
    PressKeys(QStringLiteral("inbound"));
    EXPECT_TRUE(Offers().isEmpty());
    Settle();
    EXPECT_EQ(Rows().rowCount(), 1);
}

TEST_F(SearchFieldTest, EscapeTakesTheOffersAwayFirstAndThenGoesBackToWhereOneWas)
{
    FileMail(Mail("One", "ferry\r\n"));
    const qint32 selected = FileMail(Mail("Two", "harbour\r\n"));
    OpenWindow();
    Window->List().SelectMessage(selected);
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    PressKeys(QStringLiteral("fr"));
    ASSERT_FALSE(Offers().isEmpty());
    Press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_TRUE(Window_().isVisible());
    EXPECT_EQ(Field().text(), QStringLiteral("fr"));
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Window_().isVisible());
    EXPECT_TRUE(QTest::qWaitForWindowActive(Window.get()));
    EXPECT_EQ(Window->List().SelectedReference(), selected);
}

TEST_F(SearchFieldTest, TheArrowKeyGoesFromTheFieldIntoTheResultsAndEscapeLeavesThemToo)
{
    FileMail(Mail("One", "ferry\r\n"));
    FileMail(Mail("Two", "ferry\r\n"));
    OpenSearch();
    PressKeys(Ferry);
    Settle();
    ASSERT_EQ(Rows().rowCount(), 2);
    Press(Qt::Key_Down);
    EXPECT_TRUE(Part<QTreeView>("searchList").hasFocus());
    Press(Qt::Key_Down);
    EXPECT_EQ(Part<QTreeView>("searchList").currentIndex().row(), 1);
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Window_().isVisible());
}

TEST_F(SearchFieldTest, ASearchIsSavedByItsKeyKeptForTheNextTimeAndForgotten)
{
    OpenSearch();
    PressKeys(QStringLiteral("ferry & harbour"));
    Press(Qt::Key_S, Qt::ControlModifier);
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Window_().Saved(), QStringList(QStringLiteral("ferry & harbour"))) << "once";
    CloseWindow();
    OpenSearch();
    EXPECT_EQ(Window_().Saved(), QStringList(QStringLiteral("ferry & harbour")));
    auto* menu = Window_().findChild<QMenu*>(QStringLiteral("savedSearches"));
    Q_EMIT menu->aboutToShow();
    EXPECT_FALSE(menu->actions().last()->isEnabled()) << "it is not on show";
    menu->actions().first()->trigger();
    EXPECT_EQ(Window_().Typed(), QStringLiteral("ferry & harbour"));
    Q_EMIT menu->aboutToShow();
    menu->actions().last()->trigger();
    EXPECT_TRUE(Window_().Saved().isEmpty());
}

TEST_F(SearchFieldTest, TheTimeNarrowsToo)
{
    const FixedClock clock; // on the 21st
    FileMail(Mail("Old", "ferry\r\n").replace("20 Nov", "01 Nov"));
    FileMail(Mail("New", "ferry\r\n"));
    OpenSearch();
    Type(Ferry);
    ASSERT_EQ(Rows().rowCount(), 2);
    ChooseFilter("searchTime", QStringLiteral("Last 30 days (2)"));
    ChooseFilter("searchTime", QStringLiteral("Last 7 days (1)"));
    ASSERT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Cell(0, 1), QStringLiteral("New"));
    EXPECT_EQ(Count(), QStringLiteral("1 message"));
    ChooseFilter("searchTime", QStringLiteral("Last 30 days"));
    EXPECT_EQ(Rows().rowCount(), 2);
}

TEST_F(SearchFieldTest, WhatWasLookedForIsMarkedInTheRow)
{
    FileMail(Mail("The old Lighthouse", "x\r\n"));
    FileMail(Mail("The lighthouse", "x\r\n"));
    OpenSearch();
    const auto isMarked = [this] {
        auto& list = Part<QTreeView>("searchList");
        const QModelIndex cell = list.model()->index(1, 1); // the first one is selected
        const QImage image =
            list.viewport()->grab(list.visualRect(cell)).toImage().convertToFormat(QImage::Format_RGB32);
        int marked = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                marked += image.pixelColor(x, y) == QColor(255, 236, 150) ? 1 : 0;
        }
        return marked > 100;
    };
    Type(QStringLiteral("light"));
    ASSERT_EQ(Rows().rowCount(), 2);
    EXPECT_TRUE(WaitUntil(isMarked));
    Type(QStringLiteral("from:loveday"));
    ASSERT_EQ(Rows().rowCount(), 2);
    EXPECT_FALSE(isMarked()) << "no word of the subject";
}

TEST_F(SearchFieldTest, WhileTheStationIsBusyTheIndexRestsAndTheCountSaysHowMuchIsSearched)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenWindow();
    SearchService& service = Window->Search().Service();
    service.SetBusy([] { return true; });
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    PressKeys(Ferry);
    EXPECT_TRUE(WaitUntil([this] { return Count().contains(u"first 0 percent searched"); })) << qPrintable(Count());
    EXPECT_FALSE(WaitUntil([&] { return service.IsComplete(); }, 300));
    service.SetBusy({});
    EXPECT_TRUE(WaitUntil([this] { return Count() == u"1 message"; }, 20'000)) << qPrintable(Count());
}

TEST_F(SearchFieldTest, AHundredKilobytesThatArePastedHoldNothingAndAreSaidToBeTooMany)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    QApplication::clipboard()->setText(QStringLiteral("ferry from:\"a in:b \\ ' before:( \U0001F3B5 ").repeated(3000));
    Field().setFocus();
    LongestGap gap;
    Press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_GT(Field().text().size(), 30'000);
    Settle();
    gap.Take();
    EXPECT_LT(gap.Worked.count(), 300);
    EXPECT_TRUE(Count().contains(u"only the beginning is searched for")) << qPrintable(Count());
    Type(Ferry);
    EXPECT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Count(), QStringLiteral("1 message"));
}

TEST_F(SearchFieldTest, ACacheFolderThatCannotBeWrittenIsSaidAndNothingElseIsConcerned)
{
    FileMail(Mail("One", "ferry\r\n"));
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("cache"))));
    Write(QStringLiteral("cache/Tolva"), "a file stands in the way");
    OpenWindow();
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    PressKeys(Ferry);
    const auto& notice = Part<NoticeBar>("searchProblem");
    EXPECT_TRUE(WaitUntil([&] { return notice.isVisible() && notice.Text().contains(u"cannot be made"); }, 20'000));
    EXPECT_EQ(Rows().rowCount(), 0);
    ASSERT_TRUE(QFile::remove(Path(QStringLiteral("cache/Tolva"))));
    EXPECT_TRUE(WaitUntil([this] { return Rows().rowCount() == 1; }, 20'000)) << "as soon as it can be written";
    EXPECT_TRUE(WaitUntil([&] { return !notice.isVisible(); }, 20'000));
}

TEST_F(SearchFieldTest, WhoPressesEnterBeforeItIsFoundGetsTheFirstHitWhenItComes)
{
    FileMail(Mail("Other", "lighthouse\r\n"));
    const qint32 wanted = FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Type(QStringLiteral("lighthouse"));
    ASSERT_EQ(Rows().rowCount(), 1);
    Empty();
    PressKeys(Ferry);
    ASSERT_FALSE(Window_().IsSettled()) << "or the test would prove nothing";
    Press(Qt::Key_Return);
    ASSERT_TRUE(WaitUntil([this] { return !Window->MessageWindows().isEmpty(); }, 20'000));
    EXPECT_EQ(Window->MessageWindows().size(), 1);
    EXPECT_EQ(Window->MessageWindows().first()->Reference(), wanted) << "and not what stood there before";
}

TEST_F(SearchFieldTest, WhoGoesOnTypingBehindEnterOrLeavesOpensNothing)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    PressKeys(QStringLiteral("fer"));
    Press(Qt::Key_Return);
    PressKeys(QStringLiteral("ry"));
    Settle();
    ASSERT_EQ(Rows().rowCount(), 1);
    Empty();
    PressKeys(Ferry);
    Press(Qt::Key_Return);
    Press(Qt::Key_Escape);
    Settle();
    EXPECT_TRUE(Window->MessageWindows().isEmpty());
}

TEST_F(SearchFieldTest, AnotherQuestionSelectsItsFirstHitAndNewMailLeavesTheSelectedOneSelected)
{
    const qint32 older = FileMail(Mail("Old ferry", "x\r\n").replace("20 Nov", "01 Nov"));
    FileMail(Mail("New ferry", "x\r\n"));
    OpenSearch();
    PressKeys(Ferry);
    Settle();
    ASSERT_EQ(Rows().rowCount(), 2);
    const auto selected = [this] { return Part<QTreeView>("searchList").currentIndex().row(); };
    Press(Qt::Key_Down);
    Press(Qt::Key_Down);
    ASSERT_EQ(selected(), 1);
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("Third ferry", "x\r\n"))});
    ASSERT_TRUE(WaitUntil([this] { return Rows().rowCount() == 3; }, 20'000));
    EXPECT_EQ(selected(), 2);
    EXPECT_EQ(Window_().SelectedReference(), older);
    Type(QStringLiteral("ferr"));
    ASSERT_EQ(Rows().rowCount(), 3);
    EXPECT_EQ(selected(), 0);
}

TEST_F(SearchFieldTest, OnlyAHitThatSomebodyChoseIsMarkedAsRead)
{
    const qint32 reference = FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    PressKeys(Ferry);
    Settle();
    const auto isRead = [&] { return (Station.Database().GetMessage(reference)->Flags() & mfRead) != 0; };
    EXPECT_FALSE(WaitUntil(isRead, PreviewPane::ReadMilliseconds + 1000)) << "it is shown because it was found";
    Press(Qt::Key_Down);
    EXPECT_TRUE(WaitUntil(isRead, 20'000));
}

TEST_F(SearchFieldTest, HalfCharactersAndControlCharactersInTheFieldAreNoTrouble)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    const QStringList texts{QString(QChar(0xD83C)) + u" ferry"_qs, u"ferry "_qs + QChar(0xDFB5),
                            u"ferry "_qs + QChar(0xFFFF), u"\u202Eferry\u0001"_qs};
    for (const QString& typed : texts) {
        Field().setText(typed);
        Settle();
        EXPECT_EQ(Rows().rowCount(), 1) << qPrintable(typed);
        EXPECT_EQ(Count(), QStringLiteral("1 message"));
    }
}
