// SPDX-License-Identifier: Apache-2.0

// Spelling while somebody writes, by the keys and the mouse.

#include "SpellingTest.h"

#include "LongestGap.h"
#include "onair/OnAirDesk.h"
#include "platform/widgets/Contrast.h"
#include "spelling/SpellingTools.h"

#include <QClipboard>
#include <QScrollBar>
#include <QStatusBar>

TEST_F(SpellingTest, UnknownWordsGetAWaveAndNothingElseDoes)
{
    Composition reply;
    reply.To = QStringLiteral("Loveday Tregenza <loveday@example.org>");
    const ComposeWindow* window =
        Write(QStringLiteral("Dear Loveday, helo worlds, thnak you for Tregenza's wrld!\n"
                             "Technician of Harbour at studoi@example.org, 5th https://exampel\n"
                             "Hello\n\nOnn Friday, Loveday wroet:\n> Helo frmo me\n> > adn me"),
              reply);
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo"), QStringLiteral("thnak"), QStringLiteral("wrld"),
                                             QStringLiteral("of"), QStringLiteral("at")}))
        << Marked(BodyOf(*window)).join(u'|').toStdString();
}

TEST_F(SpellingTest, TheNamesAreThoseOfTheRecipientsWhoeverTheyBecome)
{
    const ComposeWindow* window = Write(QStringLiteral("Hello Jory"));
    ASSERT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("Jory")}));
    QWidget* to = window->findChild<QWidget*>(QStringLiteral("to"))->focusProxy();
    to->setFocus();
    QTest::keyClicks(to, QStringLiteral("Jory <jory@example.org>"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {}));
}

TEST_F(SpellingTest, TheWordThatIsBeingTypedWaitsUntilItIsLeft)
{
    BodyEdit& body = BodyOf(*Write({}));
    QTest::keyClicks(&body, QStringLiteral("helo"));
    Rest();
    EXPECT_EQ(Marked(body), QStringList());
    QTest::keyClick(&body, Qt::Key_Space);
    EXPECT_TRUE(GetsMarked(body, {QStringLiteral("helo")}));
    QTest::keyClick(&body, Qt::Key_Backspace);
    QTest::keyClick(&body, Qt::Key_Home);
    QTest::keyClick(&body, Qt::Key_Right);
    QTest::keyClick(&body, Qt::Key_Right);
    QTest::keyClicks(&body, QStringLiteral("l"));
    EXPECT_TRUE(GetsMarked(body, {}));
    EXPECT_EQ(body.toPlainText(), QStringLiteral("hello"));
}

TEST_F(SpellingTest, WhatIsForwardedIsNotCorrected)
{
    Composition forward;
    const ComposeWindow* window =
        Write(QStringLiteral("helo\n\n---- Forwarded message ----\nSubject: wrld\n\nthnak you"), forward);
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo")}));
    QTest::keyClick(&BodyOf(*window), Qt::Key_Home);
    QTest::keyClicks(&BodyOf(*window), QStringLiteral("thnak you "));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("thnak"), QStringLiteral("helo")}));
}

TEST_F(SpellingTest, TheKeyGoesFromOneUnknownWordToTheNextAndEnterTakesTheSuggestion)
{
    const ComposeWindow* window = Write(QStringLiteral("helo wrld\n> frmo\nthnak you"));
    BodyEdit& body = BodyOf(*window);
    QTest::keyClick(&body, Qt::Key_F7);
    QMenu* menu = WaitForMenu();
    ASSERT_TRUE(menu);
    EXPECT_EQ(body.textCursor().selectedText(), QStringLiteral("helo"));
    ASSERT_TRUE(menu->activeAction());
    EXPECT_EQ(menu->activeAction()->text(), QStringLiteral("hello"));
    EXPECT_EQ(Entries(*menu).mid(1, 3),
              (QStringList{QStringLiteral("Ignore in this window"), QStringLiteral("Add to dictionary"),
                           QStringLiteral("Undo\tCtrl+Z")}));
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(body.toPlainText(), QStringLiteral("hello wrld\n> frmo\nthnak you"));
    QTest::keyClick(&body, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(body.toPlainText(), QStringLiteral("helo wrld\n> frmo\nthnak you"));
    for (const char* word : {"wrld", "thnak", "helo"}) {
        if (QMenu* open = Popup())
            QTest::keyClick(open, Qt::Key_Escape);
        PutCaret(body, body.textCursor().selectionEnd());
        QTest::keyClick(&body, Qt::Key_Right);
        QTest::keyClick(&body, Qt::Key_F7);
        ASSERT_TRUE(WaitForMenu());
        EXPECT_EQ(body.textCursor().selectedText(), QLatin1String(word));
    }
}

TEST_F(SpellingTest, PressedAgainTheKeyLeavesTheSelectedWordBehind)
{
    BodyEdit& body = BodyOf(*Write(QStringLiteral("helo helo")));
    for (const int start : {0, 5, 0}) {
        QTest::keyClick(&body, Qt::Key_F7);
        ASSERT_TRUE(WaitForMenu());
        EXPECT_EQ(body.textCursor().selectionStart(), start);
        QTest::keyClick(Popup(), Qt::Key_Escape);
        ASSERT_TRUE(WaitUntil([] { return Popup() == nullptr; }));
    }
}

TEST_F(SpellingTest, WhereNoWordIsUnknownTheKeySaysSo)
{
    const ComposeWindow* window = Write(QStringLiteral("hello world\n> frmo"));
    QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
    EXPECT_TRUE(WaitUntil([&] { return NoteOf(*window) == u"There is no unknown word."; }));
}

TEST_F(SpellingTest, AnUnknownWordFarAwayIsFoundWithoutHoldingTheWindow)
{
    QString text;
    for (int i = 0; i < 20'000; ++i)
        text += QStringLiteral("hello worlds for you dear world %1\n").arg(QString(i % 7, u'x'));
    text.replace(u'x', QStringLiteral("hello "));
    const ComposeWindow* window = Write(text + QStringLiteral("thnak"));
    BodyEdit& body = BodyOf(*window);
    ASSERT_TRUE(WaitUntil([&] { return LanguageMenu(*window)->actions().size() > 3; }));
    LongestGap gap;
    QTest::keyClick(&body, Qt::Key_F7);
    ASSERT_TRUE(WaitUntil([] { return Popup() != nullptr; }, 30'000));
    gap.Take();
    EXPECT_EQ(body.textCursor().selectedText(), QStringLiteral("thnak"));
    EXPECT_LT(gap.Worked.count(), 100);
}

TEST_F(SpellingTest, TheMenuOfAWordComesByTheMouseAndByItsKey)
{
    const ComposeWindow* window = Write(QStringLiteral("hello wrld"));
    BodyEdit& body = BodyOf(*window);
    ASSERT_TRUE(GetsMarked(body, {QStringLiteral("wrld")}));
    OpenByMouse(body, 7);
    QMenu* menu = WaitForMenu();
    ASSERT_TRUE(menu);
    EXPECT_EQ(Entries(*menu).value(0), QStringLiteral("world"));
    EXPECT_FALSE(menu->activeAction());
    menu->close();
    ASSERT_TRUE(WaitUntil([] { return Popup() == nullptr; }));
    QTest::keyClick(&body, Qt::Key_End, Qt::ControlModifier);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, body.cursorRect().center(),
                          body.viewport()->mapToGlobal(body.cursorRect().center()));
    QApplication::sendEvent(&body, &key);
    menu = WaitForMenu();
    ASSERT_TRUE(menu);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(body.toPlainText(), QStringLiteral("hello world"));
    EXPECT_TRUE(GetsMarked(body, {}));
}

TEST_F(SpellingTest, ASuggestionHasTheApostropheThatWasTyped)
{
    BodyEdit& body = BodyOf(*Write(QStringLiteral("do\u2019nt")));
    QTest::keyClick(&body, Qt::Key_F7);
    ASSERT_TRUE(WaitForMenu());
    QTest::keyClick(Popup(), Qt::Key_Return);
    EXPECT_EQ(body.toPlainText(), QStringLiteral("don\u2019t"));
}

TEST_F(SpellingTest, WithoutSuggestionsTheMenuSaysSo)
{
    BodyEdit& body = BodyOf(*Write(QStringLiteral("Qqqqqqqxzqq")));
    QTest::keyClick(&body, Qt::Key_F7);
    const QMenu* menu = WaitForMenu();
    ASSERT_TRUE(menu);
    EXPECT_EQ(Entries(*menu).value(0), QStringLiteral("No suggestions"));
    EXPECT_FALSE(menu->actions().value(0)->isEnabled());
}

TEST_F(SpellingTest, AnIgnoredWordIsKnownInThisWindowAlone)
{
    const ComposeWindow* one = Write(QStringLiteral("helo helo"));
    ASSERT_TRUE(GetsMarked(BodyOf(*one), {QStringLiteral("helo"), QStringLiteral("helo")}));
    QTest::keyClick(&BodyOf(*one), Qt::Key_F7);
    ASSERT_TRUE(WaitForMenu());
    QTest::keyClick(Popup(), Qt::Key_I);
    EXPECT_TRUE(GetsMarked(BodyOf(*one), {}));
    const ComposeWindow* other = Write(QStringLiteral("helo"));
    EXPECT_TRUE(GetsMarked(BodyOf(*other), {QStringLiteral("helo")}));
    EXPECT_FALSE(QFile::exists(OwnWordsFile()));
}

TEST_F(SpellingTest, AnAddedWordIsKnownInAllWindowsAndAtTheNextStart)
{
    ComposeWindow* one = Write(QStringLiteral("porthmellin Porthmellin"));
    const ComposeWindow* other = Write(QStringLiteral("Porthmellin"));
    ASSERT_TRUE(GetsMarked(BodyOf(*other), {QStringLiteral("Porthmellin")}));
    one->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(one));
    QTest::keyClick(&BodyOf(*one), Qt::Key_F7);
    ASSERT_TRUE(WaitForMenu());
    QTest::keyClick(Popup(), Qt::Key_A);
    EXPECT_TRUE(GetsMarked(BodyOf(*one), {}));
    EXPECT_TRUE(GetsMarked(BodyOf(*other), {}));
    EXPECT_TRUE(WaitUntil([this] { return QFile::exists(OwnWordsFile()); }));
    EXPECT_EQ(Read(OwnWordsFile()), QByteArray("porthmellin\n"));
    CloseAll();
    const ComposeWindow* next = Write(QStringLiteral("porthmellin helo"));
    EXPECT_TRUE(GetsMarked(BodyOf(*next), {QStringLiteral("helo")}));
}

TEST_F(SpellingTest, AWordThatCannotBeKeptIsKnownForNowAndSaidSo)
{
    ASSERT_TRUE(QDir().mkpath(OwnWordsFile()));
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    EXPECT_TRUE(
        WaitUntil([&] { return NoteOf(*window).startsWith(u"Your own words for the spelling could not be read"); }));
    ASSERT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo")}));
    QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
    ASSERT_TRUE(WaitForMenu());
    QTest::keyClick(Popup(), Qt::Key_A);
    EXPECT_TRUE(WaitUntil([&] { return NoteOf(*window).contains(QStringLiteral("could not be kept")); }));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {}));
}

TEST_F(SpellingTest, TheLanguageIsChosenInTheMenuAndRememberedForTheUser)
{
    TestDictionary::Write(Dictionaries(), QStringLiteral("de_DE"), {"hallo"});
    AddUser(QStringLiteral("Petra"), 0);
    const ComposeWindow* window = Write(QStringLiteral("hallo hello"));
    ASSERT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("hallo")}));
    EXPECT_EQ(Entries(*LanguageMenu(*window)),
              (QStringList{QStringLiteral("Next unknown word"), QStringLiteral("British English (United Kingdom)"),
                           QStringLiteral("Deutsch (Deutschland)"), QStringLiteral("Off")}));
    Choose(*window, QStringLiteral("Deutsch (Deutschland)"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("hello")}));
    CloseAll();
    window = Write(QStringLiteral("hallo hello"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("hello")}));
    Choose(*window, QStringLiteral("Off"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {}));
    QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
    EXPECT_EQ(NoteOf(*window),
              QStringLiteral("The spelling is not checked. Choose a language in the menu \u201CSpelling\u201D."));
    CloseAll();
    window = Write(QStringLiteral("hallo hello"));
    Rest();
    EXPECT_EQ(Marked(BodyOf(*window)), QStringList());
    CloseAll();
    OpenWindow(QStringLiteral("Petra"));
    window = Write(QStringLiteral("hallo hello"));
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("hallo")}));
}

TEST_F(SpellingTest, WithoutDictionariesNothingIsMarkedAndTheMenuSaysHowToGetOne)
{
    ASSERT_TRUE(QDir(Dictionaries()).removeRecursively());
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    QMenu* menu = LanguageMenu(*window);
    EXPECT_TRUE(WaitUntil([&] { return Entries(*menu).contains(QStringLiteral("No dictionaries are installed.")); }));
    EXPECT_TRUE(Entries(*menu).last().contains(QStringLiteral("/hunspell.")));
    EXPECT_EQ(Marked(BodyOf(*window)), QStringList());
    // One that is installed meanwhile is there when the menu is opened.
    TestDictionary::Write(Dictionaries(), QStringLiteral("en_GB"), {"hello"});
    Q_EMIT menu->aboutToShow();
    EXPECT_TRUE(GetsMarked(BodyOf(*window), {QStringLiteral("helo")}));
    EXPECT_EQ(Entries(*menu).last(), QStringLiteral("Off"));
}

TEST_F(SpellingTest, ADamagedDictionaryIsSaidAndTheSpellingIsOff)
{
    TestDictionary::WriteFile(Dictionaries() + QStringLiteral("/en_GB.dic"), "no number\n");
    TestDictionary::WriteFile(Dictionaries() + QStringLiteral("/fr_FR.dic"), "1\nbonjour\n");
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    EXPECT_TRUE(WaitUntil([&] {
        return NoteOf(*window) ==
               u"The dictionary \u201CBritish English (United Kingdom)\u201D is damaged: install it again.";
    })) << NoteOf(*window).toStdString();
    EXPECT_EQ(Marked(BodyOf(*window)), QStringList());
    EXPECT_TRUE(
        Entries(*LanguageMenu(*window))
            .contains(QStringLiteral("fran\u00E7ais (France): The file fr_FR.aff of the dictionary is missing.")))
        << Entries(*LanguageMenu(*window)).join(u'|').toStdString();
}

TEST_F(SpellingTest, AChosenDictionaryThatIsGoneIsSaid)
{
    Settings->SetSpellingLanguage(QStringLiteral("Technician"), QStringLiteral("de_DE"));
    const ComposeWindow* window = Write(QStringLiteral("hallo"));
    EXPECT_TRUE(WaitUntil([&] {
        return NoteOf(*window).startsWith(
            u"The dictionary \u201CDeutsch (Deutschland)\u201D is not installed any more.");
    }));
    EXPECT_EQ(Marked(BodyOf(*window)), QStringList());
}

TEST_F(SpellingTest, AMegabyteHoldsNothingAndOnlyWhatIsOnShowIsMarked)
{
    const ComposeWindow* window = Write(QStringLiteral("helo"));
    BodyEdit& body = BodyOf(*window);
    ASSERT_TRUE(GetsMarked(body, {QStringLiteral("helo")}));
    const QString lines = QStringLiteral("thnak you for writing wrld\n").repeated(40'000);
    const QString paragraph = QStringLiteral("thnak you for writing wrld ").repeated(4'000);
    for (const QString& text : {lines, paragraph, QString(20'000, u'a')}) {
        body.setPlainText(text);
        QApplication::processEvents();
        LongestGap gap;
        Rest();
        gap.Take();
        EXPECT_LT(gap.Worked.count(), 100);
        EXPECT_LT(Marked(body).size(), 400);
    }
    body.setPlainText(lines + QStringLiteral("hello Trevean"));
    body.verticalScrollBar()->setValue(body.verticalScrollBar()->maximum());
    EXPECT_TRUE(WaitUntil([&] { return Marked(body).contains(QStringLiteral("Trevean")); }));
}

TEST_F(SpellingTest, TheWaveIsSeenInLightAndDarkAndBelowTheLastLine)
{
    const ComposeWindow* window = Write(QStringLiteral("hello\nxyzzyq"));
    BodyEdit& body = BodyOf(*window);
    for (const char* look : {"light", "dark"}) {
        Appearance::Apply(QLatin1String(look));
        ASSERT_TRUE(GetsMarked(body, {QStringLiteral("xyzzyq")}));
        Rest();
        const QImage image = body.viewport()->grab().toImage();
        int wave = 0;
        QSet<int> rows;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor point = image.pixelColor(x, y);
                if (point.red() - std::max(point.green(), point.blue()) > 60) {
                    ++wave;
                    rows.insert(y);
                }
            }
        }
        EXPECT_GT(wave, 40) << look;
        EXPECT_GE(rows.size(), 3) << look;
        EXPECT_GE(Contrast::Ratio(body.WaveColour(), body.palette().color(QPalette::Base)), 3) << look;
    }
}

TEST_F(SpellingTest, ATextForAirIsCheckedWhileItIsShortened)
{
    const qint32 message = FileMail(Mail("Hello", "Helo from Loveday\r\n"));
    OpenWindow();
    Window->OnAir().PutMessages({message});
    Window->OnAir().ShowWindow();
    OnAirWindow* air = Window->OnAir().Window();
    ASSERT_TRUE(QTest::qWaitForWindowActive(air));
    auto& text = *air->findChild<SpellingEdit*>(QStringLiteral("onAirText"));
    ASSERT_TRUE(WaitUntil([&] { return LanguageMenu(*air)->actions().size() > 3; }));
    Rest();
    EXPECT_EQ(Marked(text), QStringList());
    EXPECT_FALSE(air->findChild<QAction*>(QStringLiteral("nextUnknownWord"))->isEnabled());
    QTest::keyClick(air->focusWidget(), Qt::Key_F2);
    EXPECT_TRUE(GetsMarked(text, {QStringLiteral("Helo"), QStringLiteral("from")}));
    QTest::keyClick(&text, Qt::Key_F7);
    ASSERT_TRUE(WaitForMenu());
    QTest::keyClick(Popup(), Qt::Key_Return);
    EXPECT_EQ(text.toPlainText(), QStringLiteral("Hello from Loveday"));
    QTest::keyClick(&text, Qt::Key_F2);
    EXPECT_TRUE(GetsMarked(text, {}));
}

TEST_F(SpellingTest, AWindowMayCloseWhileItsWordsAreLookedUp)
{
    for (int round = 0; round < 5; ++round) {
        ComposeWindow* window = Write(QStringLiteral("helo wrld"));
        QTest::keyClick(&BodyOf(*window), Qt::Key_F7);
        window->close();
        if (round % 2 == 1)
            CloseAll();
    }
}
