// SPDX-License-Identifier: Apache-2.0

// The desk's search over all folders.

#include "LongestGap.h"
#include "SearchDeskTest.h"
#include "StationPlace.h"
#include "messages/MessageWindow.h"
#include "platform/records/DBEngine.h"
#include "search/SearchRows.h"
#include "search/SearchService.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QStandardItemModel>
#include <QTextEdit>

namespace
{
class SearchWindowTest : public SearchDeskTest
{
};
} // namespace

TEST_F(SearchWindowTest, AWordOfABodyIsFoundWhileItIsTypedWhateverItsFolder)
{
    FileMail(Mail("Postcard", "The old lighthouse.\r\n"), tmcSaved);
    FileMail(Mail("Other", "Nothing.\r\n"));
    OpenSearch();
    EXPECT_TRUE(Field().hasFocus());
    Type(QStringLiteral("light"));
    ASSERT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Cell(0, 0), QStringLiteral("Loveday Tregenza"));
    EXPECT_EQ(Cell(0, 1), QStringLiteral("Postcard"));
    EXPECT_EQ(Cell(0, 2), QStringLiteral("Saved"));
    EXPECT_EQ(Count(), QStringLiteral("1 message"));
    Type(QStringLiteral("zeppelin"));
    EXPECT_EQ(Rows().rowCount(), 0);
    EXPECT_EQ(Count(), QStringLiteral("No messages"));
    Type(QString());
    EXPECT_TRUE(Count().isEmpty());
}

TEST_F(SearchWindowTest, EnterOpensAndEscapeGoesBackToWhereOneWas)
{
    const qint32 reference = FileMail(Mail("Postcard", "The old lighthouse.\r\n"), tmcSaved);
    OpenSearch();
    Type(QStringLiteral("lighthouse"));
    QTest::keyClick(&Field(), Qt::Key_Return);
    ASSERT_TRUE(WaitUntil([this] { return Window->MessageWindows().size() == 1; }));
    EXPECT_EQ(Window->MessageWindows().first()->Reference(), reference);
    Window->MessageWindows().first()->close();
    Window_().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window_()));
    QTest::keyClick(&Field(), Qt::Key_Escape);
    EXPECT_FALSE(Window_().isVisible());
    EXPECT_TRUE(Window->isVisible());
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Window_().Typed(), QStringLiteral("lighthouse")) << "it stands as it was left";
}

TEST_F(SearchWindowTest, WhatWasLookedForIsMarkedInTheMessage)
{
    FileMail(Mail("Postcard", "The old L\xC3\xADghthouse, and the lighthouses.\r\n")
                 .replace("\r\n\r\n", "\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n"));
    OpenSearch();
    Type(QStringLiteral("lighthouse"));
    auto* body = Window_().findChild<QTextEdit*>();
    ASSERT_TRUE(WaitUntil([&] { return body->extraSelections().size() == 2; }));
    EXPECT_EQ(body->extraSelections().first().cursor.selectedText(), QStringLiteral("L\u00EDghthouse"));
    Type(QStringLiteral("old"));
    ASSERT_TRUE(WaitUntil([&] { return body->extraSelections().size() == 1; }));
}

TEST_F(SearchWindowTest, NewMailThatFitsJoinsAndWhatIsErasedLeaves)
{
    const qint32 first = FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Type(QStringLiteral("ferry"));
    ASSERT_EQ(Rows().rowCount(), 1);
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("Two", "the ferry sails\r\n"))});
    EXPECT_TRUE(WaitUntil([this] { return Rows().rowCount() == 2; }, 20'000));
    OtherComputer("delete", {QString::number(first), QStringLiteral("--permanently")});
    EXPECT_TRUE(WaitUntil([this] { return Rows().rowCount() == 1 && Cell(0, 1) == u"Two"; }, 20'000));
}

TEST_F(SearchWindowTest, FiltersTellHowManyTheyWouldLeave)
{
    FileMail(Mail("One", "ferry\r\n"));
    FileMail(Mail("Two", "ferry\r\n"), tmcSaved);
    FileMail(Mail("Three", "ferry\r\n"), tmcSaved, mfRead);
    OpenSearch();
    Type(QStringLiteral("ferry"));
    ASSERT_EQ(Rows().rowCount(), 3);
    EXPECT_EQ(Part<QComboBox>("searchFolder").itemText(0), QStringLiteral("All folders (3)"));
    ChooseFilter("searchFolder", QStringLiteral("Saved (2)"));
    EXPECT_EQ(Rows().rowCount(), 2);
    ChooseFilter("searchKind", QStringLiteral("Unread (2)"));
    ASSERT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Cell(0, 1), QStringLiteral("Two"));
    Type(QStringLiteral("ferry in:inbox"));
    EXPECT_EQ(Rows().rowCount(), 0) << "the filter stays";
}

TEST_F(SearchWindowTest, AListWithoutRowsSaysWhyAndWhatToDo)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    const auto words = [this] { return Part<QLabel>("searchNothing").text(); };
    EXPECT_TRUE(WaitUntil([&] { return words().startsWith(QStringLiteral("Type a word")); })) << qPrintable(words());
    Type(QStringLiteral("ferry"));
    EXPECT_EQ(words(), QString());
    Type(QStringLiteral("ferry canal"));
    EXPECT_TRUE(words().contains(QStringLiteral("Try fewer words"))) << qPrintable(words());
    Type(QStringLiteral("ferry"));
    ChooseFilter("searchKind", QStringLiteral("Text messages (0)"));
    EXPECT_TRUE(words().contains(QStringLiteral("Choose all folders"))) << qPrintable(words());
    ChooseFilter("searchKind", QStringLiteral("All kinds"));
    EXPECT_EQ(words(), QString());
}

TEST_F(SearchWindowTest, ACellReadsTheSameInEitherLayout)
{
    QStandardItemModel cells(1, 1);
    const QString hebrew = QStringLiteral("\u05D3\u05E0\u05D4 07700");
    for (const QString& text : {QStringLiteral("20 Nov 2026 18:15"), QStringLiteral("Happy birthday!!"), hebrew}) {
        cells.setItem(0, 0, new QStandardItem(text));
        const auto picture = [&](Qt::LayoutDirection direction) {
            QTreeView list;
            HitDelegate delegate(&list);
            list.setItemDelegate(&delegate);
            list.setLayoutDirection(direction);
            list.setRootIsDecorated(false);
            list.setHeaderHidden(true);
            list.setModel(&cells);
            list.resize(300, 40);
            const QImage shown = list.viewport()->grab().toImage();
            // Where the letters stand.
            QRect ink;
            for (int y = 0; y < shown.height(); ++y) {
                for (int x = 0; x < shown.width(); ++x) {
                    if (qGray(shown.pixel(x, y)) < 200)
                        ink |= QRect(x, y, 1, 1);
                }
            }
            EXPECT_EQ(ink.center().x() > shown.width() / 2, direction == Qt::RightToLeft) << qPrintable(text);
            return shown.copy(ink);
        };
        const QImage fromLeft = picture(Qt::LeftToRight);
        EXPECT_GT(fromLeft.width(), 30);
        EXPECT_EQ(fromLeft, picture(Qt::RightToLeft)) << qPrintable(text);
    }
}

TEST_F(SearchWindowTest, OfWhatTheStationWroteTheRecipientIsShownAndMarked)
{
    QByteArray sent = Mail("Reply", "ferry\r\n", "Studio <studio@harbourfm.example.org>");
    sent.replace("To: studio@harbourfm.example.org", "To: =?utf-8?Q?Ann_K=C3=A9ane?= <ann@example.org>");
    FileMail(sent, tmcSent, mfRead);
    OpenSearch();
    Type(QStringLiteral("to:ann"));
    ASSERT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Cell(0, 0), QStringLiteral("Ann K\u00E9ane"));
    const QTreeView& list = Part<QTreeView>("searchList");
    list.selectionModel()->clear(); // what is selected is marked otherwise
    const QRect cell = list.visualRect(Rows().index(0, 0));
    const QImage image = list.viewport()->grab(cell).toImage();
    bool isMarked = false;
    for (int x = 0; x < image.width(); ++x)
        isMarked = isMarked || image.pixelColor(x, image.height() / 2) == QColor(255, 236, 150);
    EXPECT_TRUE(isMarked);
}

TEST_F(SearchWindowTest, FirstRowsAreShownWhileAllAreCountedAndNoNumberThatIsNotTheLastOne)
{
    FileMail(Mail("One", "ferry\r\n"), tmcInbox, mfRead);
    FileMail(Mail("Two", "ferry\r\n"), tmcInbox, mfRead);
    OpenSearch();
    SearchService& service = Window->Search().Service();
    int last = 0;
    SearchResult whole;
    {
        const QObject listener;
        QObject::connect(&service, &SearchService::Found, &listener, [&](int number, const SearchResult& result) {
            last = number;
            whole = result;
        });
        Type(QStringLiteral("ferry"));
    }
    ASSERT_EQ(Count(), QStringLiteral("2 messages"));
    SearchResult first = whole;
    first.Hits.pop_back();
    first.Count = 1;
    first.IsCounted = first.IsFinal = false;
    Q_EMIT service.Found(last, first);
    EXPECT_EQ(Rows().rowCount(), 1);
    EXPECT_EQ(Count(), QStringLiteral("1 so far"));
    EXPECT_FALSE(Window_().IsSettled()) << "another may come before it";
    Press(Qt::Key_Return);
    EXPECT_TRUE(Window->MessageWindows().isEmpty());
    first.IsFinal = true;
    Q_EMIT service.Found(last, first);
    EXPECT_TRUE(Window_().IsSettled());
    EXPECT_EQ(Window->MessageWindows().size(), 1) << "the key opens it now";
    EXPECT_EQ(Part<QComboBox>("searchFolder").itemText(0), QStringLiteral("All folders (\u2026)"));
    Q_EMIT service.Found(last, whole);
    EXPECT_EQ(Count(), QStringLiteral("2 messages"));
    EXPECT_EQ(Part<QComboBox>("searchFolder").itemText(0), QStringLiteral("All folders (2)"));
}

TEST_F(SearchWindowTest, OfManyMessagesTheFirstRowsComeBeforeTheirNumber)
{
    constexpr int Many = 8300; // more than a table of the index holds
    std::vector<cMessagePtr> messages;
    for (int i = 0; i < Many; ++i) {
        const auto message = std::make_shared<cMessage>();
        QByteArray mail = Mail("Number " + QByteArray::number(i), "ferry\r\n");
        mail.replace("20 Nov 2026 08:00:00", QByteArray::number(1 + i / 400) + " Nov 2026 " +
                                                 QByteArray::number(10 + i / 40 % 10) + ":" +
                                                 QByteArray::number(10 + i % 40) + ":00");
        message->SetCDOMessage(std::make_shared<cdo::Message>(mail));
        message->SetCategory(tmcSaved);
        messages.push_back(message);
    }
    Station.Database().SaveMessages(messages, [] { return true; });
    OpenWindow();
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    SearchService& service = Window->Search().Service();
    ASSERT_TRUE(WaitUntil([&service] { return service.IsComplete(); }, 120'000));
    std::vector<SearchResult> told;
    const QObject listener;
    QObject::connect(&service, &SearchService::Found, &listener,
                     [&told](int, const SearchResult& result) { told.push_back(result); });
    Window_().Search(QStringLiteral("ferry"));
    ASSERT_TRUE(WaitUntil([&told] { return !told.empty() && told.back().IsCounted; }, 20'000));
    ASSERT_GE(told.size(), 2U);
    const SearchResult& first = told[told.size() - 2];
    EXPECT_TRUE(first.IsFinal);
    EXPECT_EQ(first.Hits, told.back().Hits);
    EXPECT_EQ(told.back().Count, Many);
    EXPECT_EQ(Count(), QStringLiteral("The first 300 of %1 messages").arg(QLocale().toString(Many)));
}

TEST_F(SearchWindowTest, BestFirstPutsTheSubjectInFront)
{
    FileMail(Mail("The ferry", "x\r\n").replace("20 Nov", "01 Nov"));
    FileMail(Mail("Newer", "ferry\r\n"));
    OpenSearch();
    Type(QStringLiteral("ferry"));
    EXPECT_EQ(Cell(0, 1), QStringLiteral("Newer"));
    ChooseFilter("searchOrder", QStringLiteral("Best first"));
    EXPECT_EQ(Cell(0, 1), QStringLiteral("The ferry"));
}

TEST_F(SearchWindowTest, MessagesThatGoWithTheSelectedOneAreFoundFromItsMenu)
{
    FileMail(Mail("Ferry", "one\r\n", "Ann <ann@example.org>"));
    const qint32 wanted = FileMail(Mail("Re: Ferry", "two\r\n", "Ann <ann@example.org>"));
    FileMail(Mail("Other", "three\r\n", "Bob <bob@example.org>"));
    OpenWindow();
    Window->List().SelectMessage(wanted);
    ASSERT_TRUE(WaitUntil([&] { return Window->List().SelectedReference() == wanted; }));
    Window->findChild<QAction*>(QStringLiteral("sameSender"))->trigger();
    ASSERT_TRUE(WaitUntil([this] { return Rows().rowCount() == 2; }, 20'000));
    EXPECT_TRUE(Part<NoticeBar>("searchRelated").Text().contains(QStringLiteral("Ann")));
    Type(QStringLiteral("two"));
    EXPECT_EQ(Rows().rowCount(), 1) << "words narrow it";
    Window->findChild<QAction*>(QStringLiteral("sameSubject"))->trigger();
    EXPECT_TRUE(WaitUntil([this] { return Window_().IsSettled() && Rows().rowCount() == 2; }, 20'000));
}

TEST_F(SearchWindowTest, ASavedSearchStandsInTheMenu)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Type(QStringLiteral("ferry is:unread"));
    Window_().findChild<QAction*>(QStringLiteral("saveSearch"))->trigger();
    Type(QStringLiteral("other"));
    auto* menu = Window->findChild<QMenu*>(QStringLiteral("savedSearches"));
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 1);
    menu->actions().first()->trigger();
    EXPECT_EQ(Window_().Typed(), QStringLiteral("ferry is:unread"));
    EXPECT_TRUE(WaitUntil([this] { return Rows().rowCount() == 1; }, 20'000));
}

TEST_F(SearchWindowTest, BuildingAndSearchingNeverHoldTheWindow)
{
    constexpr int Mails = 600;
    const auto database = &Station.Database();
    std::vector<cMessagePtr> messages;
    for (int i = 0; i < Mails; ++i) {
        const auto message = std::make_shared<cMessage>();
        message->SetCDOMessage(std::make_shared<cdo::Message>(
            Mail("Number " + QByteArray::number(i), QByteArray("ferry and harbour ").repeated(200))));
        message->SetCategory(tmcSaved);
        messages.push_back(message);
    }
    database->SaveMessages(messages, [] { return true; });
    OpenWindow();
    Window->Search().Service().Start();
    LongestGap gap;
    ASSERT_TRUE(WaitUntil([&] { return Window->Search().Service().IsComplete(); }, 60'000));
    gap.Take();
    EXPECT_LT(gap.Worked.count(), 100);
}

TEST_F(SearchWindowTest, WhatIsErasedLeavesAnIndexThatIsThereThoughNobodySearches)
{
    const qint32 erased = FileMail(Mail("One", "xylophonist\r\n"));
    OpenSearch();
    CloseWindow();
    const QDir cache(Path(QStringLiteral("cache/Tolva/Search")));
    ASSERT_EQ(cache.entryList({QStringLiteral("*.index")}).size(), 1);
    const auto holds = [&](const QByteArray& word) {
        bool isThere = false;
        for (const QString& name : cache.entryList(QDir::Files))
            isThere = isThere || Read(cache.filePath(name)).contains(word);
        return isThere;
    };
    ASSERT_TRUE(holds("xylophonist"));
    OpenWindow();
    OtherComputer("delete", {QString::number(erased), QStringLiteral("--permanently")});
    EXPECT_TRUE(WaitUntil([&] { return !holds("xylophonist"); }, 20'000));
}

TEST_F(SearchWindowTest, WhatSoftwareChangesThatMovesNoStampIsSeenWhenTheDeskIsStartedAnew)
{
    FileMail(Mail("One", "ferry\r\n"), tmcInbox, mfRead); // marking it as read would move the stamp
    OpenSearch();
    CloseWindow();
    {
        const auto database = dao::DBEngine::OpenDatabase(StationPlace::FileIn(Folder()));
        ASSERT_EQ(database->Execute(QStringLiteral("UPDATE [Messages] SET [Category]=%1").arg(tmcSaved)), 1);
    }
    OpenWindow();
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    Type(QStringLiteral("ferry"));
    EXPECT_TRUE(WaitUntil([this] { return Part<QComboBox>("searchFolder").findText(QStringLiteral("Saved (1)")) > 0; },
                          20'000));
}

TEST_F(SearchWindowTest, AnIndexThatSomebodyDeletesIsMadeAnewBesideTheDesk)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    Type(QStringLiteral("ferry"));
    ASSERT_EQ(Rows().rowCount(), 1);
    ASSERT_TRUE(QDir(Path(QStringLiteral("cache/Tolva"))).removeRecursively());
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("Two", "the ferry sails\r\n"))});
    EXPECT_TRUE(WaitUntil([this] { return Rows().rowCount() == 2; }, 20'000));
    const QDir cache(Path(QStringLiteral("cache/Tolva/Search")));
    EXPECT_EQ(cache.entryList({QStringLiteral("*.index")}).size(), 1) << "for others and for the next time";
}

TEST_F(SearchWindowTest, AMachineThatKeepsNoIndexSaysSoAndRemovesTheOneThatIsThere)
{
    FileMail(Mail("One", "ferry\r\n"));
    OpenSearch();
    CloseWindow();
    const QDir cache(Path(QStringLiteral("cache/Tolva/Search")));
    ASSERT_FALSE(cache.entryList(QDir::Files).isEmpty());
    Machine.Set(QStringLiteral("SOFTWARE\\Kelvarin\\Utils\\Databases"), QStringLiteral("KeepSearchIndex"),
                QStringLiteral("0"));
    OpenWindow();
    QTest::keyClick(Window.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(WaitUntil([this] { return Part<NoticeBar>("searchProblem").Text().contains(u"KeepSearchIndex"); }));
    EXPECT_TRUE(cache.entryList(QDir::Files).isEmpty());
}
