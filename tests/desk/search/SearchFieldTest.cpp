// SPDX-License-Identifier: Apache-2.0

// What is typed into the desk's search, by keys as users press them, and what it offers.

#include "LongestGap.h"
#include "SearchDeskTest.h"
#include "messages/MessageWindow.h"
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
    ChooseFilter("searchTime", QStringLiteral("Last 7 days"));
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

TEST_F(SearchFieldTest, TheConversationOfATextIsWhatItsNumberWrote)
{
    const auto file = [this](const QByteArray& from, const QByteArray& subject) {
        const auto message = std::make_shared<cMessage>();
        message->SetMessageType(emtSMS);
        message->SetCDOMessage(std::make_shared<cdo::Message>(Mail(subject, "Hello.\r\n", from)));
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station.Database().SaveMessage(message));
        return message->Reference();
    };
    file("+447700900123", "First");
    const qint32 wanted = file("07700 900123", "Second");
    file("07700900124", "Other");
    OpenWindow();
    Window->List().SelectMessage(wanted);
    ASSERT_TRUE(WaitUntil([&] { return Window->List().SelectedReference() == wanted; }));
    Window->findChild<QAction*>(QStringLiteral("sameConversation"))->trigger();
    ASSERT_TRUE(WaitUntil([this] { return Window_().IsSettled() && Rows().rowCount() > 0; }, 20'000));
    QStringList subjects{Cell(0, 1), Cell(1, 1)};
    subjects.sort();
    EXPECT_EQ(Rows().rowCount(), 2);
    EXPECT_EQ(subjects, (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
}
