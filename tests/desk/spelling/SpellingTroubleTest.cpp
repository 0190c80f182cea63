// SPDX-License-Identifier: Apache-2.0

// Spelling where something is late, locked, damaged or huge, or ends meanwhile.

#include "HeldFile.h"
#include "LongestGap.h"
#include "SpellingTest.h"
#include "StationPlace.h"

namespace
{
class SpellingTroubleTest : public SpellingTest
{
};
} // namespace

TEST_F(SpellingTroubleTest, NoWindowToWriteInWaitsForALockedDirectoryToTellOnesOwnName)
{
    OpenWindow();
    Composition composition;
    composition.Body = QStringLiteral("helo Technician");
    HeldFile held(StationPlace::DirectoryFileIn(Folder()));
    QElapsedTimer since;
    since.start();
    const ComposeWindow* window = Window->Compose(composition);
    EXPECT_LT(since.elapsed(), 1000);
    held.Release();
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo")}));
}

TEST_F(SpellingTroubleTest, ClosingIsQuickWhileMuchIsAskedAndAWordAddedJustBeforeIsKept)
{
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    ASSERT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo")}));
    KeepBusy(50'000);
    Spelling().Add(QStringLiteral("porthmellin"));
    QElapsedTimer since;
    since.start();
    CloseAll();
    EXPECT_LT(since.elapsed(), 1500);
    EXPECT_EQ(Read(OwnWordsFile()), QByteArray("porthmellin\n"));
}

TEST_F(SpellingTroubleTest, AWordThatCannotBeKeptIsSaidAndKnownThoughAnotherLanguageIsChosenMeanwhile)
{
    TestDictionary::Write(Dictionaries(), QStringLiteral("de_DE"), {"hallo"});
    ASSERT_TRUE(QDir().mkpath(OwnWordsFile()));
    const ComposeWindow* window = Write(QStringLiteral("helo hallo hello"));
    ASSERT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo"), QStringLiteral("hallo")}));
    QStringList told;
    QObject::connect(&Spelling(), &Speller::Failed, &Spelling(), [&told](const QString& words) { told.append(words); });
    QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
    ASSERT_TRUE(WaitForMenu());
    QTest::keyClick(Popup(), Qt::Key_A);
    Choose(*window, QStringLiteral("Deutsch (Deutschland)"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("hello")}));
    EXPECT_TRUE(WaitUntil([&] { return told.size() == 2; }));
    EXPECT_EQ(told.filter(QStringLiteral("could not be kept")).size(), 1) << qPrintable(told.join(u'|'));
    Choose(*window, QStringLiteral("British English (United Kingdom)"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("hallo")}));
}

TEST_F(SpellingTroubleTest, SuggestionsThatComeLateMoveNothingInTheOpenMenu)
{
    BodyEdit& body = BodyOf(*Write(QStringLiteral("helo")));
    ASSERT_TRUE(GetsMarked(body, {QStringLiteral("helo")}));
    KeepBusy(20'000);
    QTest::keyClick(&body, Qt::Key_F7);
    QMenu* menu = WaitForMenu();
    ASSERT_TRUE(menu);
    ASSERT_EQ(Entries(*menu).value(0), QStringLiteral("Looking for suggestions..."));
    EXPECT_FALSE(menu->activeAction());
    auto* ignore = menu->findChild<QAction*>(QStringLiteral("ignoreWord"));
    for (int i = 0; i < 10 && menu->activeAction() != ignore; ++i)
        QTest::keyClick(menu, Qt::Key_Down);
    ASSERT_EQ(menu->activeAction(), ignore);
    const QRect place = menu->actionGeometry(ignore);
    ASSERT_TRUE(WaitUntil([&] { return Entries(*menu).value(0) == u"hello"; }, 30'000));
    Rest();
    EXPECT_EQ(menu->activeAction(), ignore);
    EXPECT_EQ(menu->actionGeometry(ignore).top(), place.top());
    EXPECT_TRUE(menu->actions().value(0)->isEnabled());
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(body.toPlainText(), QStringLiteral("helo"));
    EXPECT_TRUE(GetsMarked(body, {}));
}

TEST_F(SpellingTroubleTest, TheFirstLateSuggestionIsChosenWhereNothingElseWas)
{
    BodyEdit& body = BodyOf(*Write(QStringLiteral("helo")));
    ASSERT_TRUE(GetsMarked(body, {QStringLiteral("helo")}));
    KeepBusy(20'000);
    QTest::keyClick(&body, Qt::Key_F7);
    QMenu* menu = WaitForMenu();
    ASSERT_TRUE(menu);
    ASSERT_TRUE(WaitUntil([&] { return menu->activeAction() != nullptr; }, 30'000));
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(body.toPlainText(), QStringLiteral("hello"));
}

TEST_F(SpellingTroubleTest, WhereTheSpellingGoesOffMeanwhileTheKeyDoesNotSayThatAllIsKnown)
{
    TestDictionary::WriteFile(Dictionaries() + QStringLiteral("/en_GB.dic"), "no number\n");
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    ASSERT_TRUE(WaitUntil([&] { return Spelling().HasLooked(); }));
    QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
    EXPECT_TRUE(WaitUntil([&] { return NoteOf(*window).contains(QStringLiteral("is damaged")); }));
    Rest();
    EXPECT_TRUE(NoteOf(*window).contains(QStringLiteral("is damaged"))) << NoteOf(*window).toStdString();
    CloseAll();

    TestDictionary::Write(Dictionaries(), QStringLiteral("en_GB"), {"hello"});
    window = Write(QStringLiteral("helo"));
    ASSERT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo")}));
    BodyOf(*window).setPlainText(QStringLiteral("wrld"));
    KeepBusy();
    QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
    Choose(*window, QStringLiteral("Off"));
    Rest();
    EXPECT_EQ(Popup(), nullptr);
    EXPECT_FALSE(NoteOf(*window).contains(QStringLiteral("There is no unknown word")));
}

TEST_F(SpellingTroubleTest, ManyLinesWithoutWordsHoldNothing)
{
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    BodyEdit& body = BodyOf(*window);
    ASSERT_TRUE(GetsMarked(body, {QStringLiteral("helo")}));
    body.setPlainText(QString(600'000, u'\n') + QStringLiteral("helo"));
    Rest();
    LongestGap gap;
    QTest::keyClick(&body, Qt::Key_F7);
    ASSERT_TRUE(WaitUntil([] { return Popup() != nullptr; }, 30'000));
    gap.Take();
    EXPECT_LT(gap.Worked.count(), 100);
    EXPECT_EQ(body.textCursor().selectedText(), QStringLiteral("helo"));
}

TEST_F(SpellingTroubleTest, WhoHasLeftAWordOrTheBoxSeesItsWaveAlsoBackAtTheWord)
{
    BodyEdit& body = BodyOf(*Write(QStringLiteral("hello ")));
    QTest::keyClick(&body, Qt::Key_End);
    QTest::keyClicks(&body, QStringLiteral("helo"));
    Rest();
    EXPECT_EQ(Marked(body), QStringList());
    QTest::keyClick(&body, Qt::Key_Home);
    ASSERT_TRUE(GetsMarked(body, {QStringLiteral("helo")}));
    QTest::keyClick(&body, Qt::Key_End);
    Rest();
    EXPECT_EQ(Marked(body), QStringList{QStringLiteral("helo")});
    QTest::keyClick(&body, Qt::Key_Backspace);
    QTest::keyClicks(&body, QStringLiteral("a"));
    EXPECT_TRUE(GetsMarked(body, {}));
    QTest::keyClick(&body, Qt::Key_Backtab);
    ASSERT_FALSE(body.hasFocus());
    EXPECT_TRUE(GetsMarked(body, {QStringLiteral("hela")}));
}
