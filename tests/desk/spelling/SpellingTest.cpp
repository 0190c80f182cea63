// SPDX-License-Identifier: Apache-2.0

// Spelling while somebody writes, by the keys and the mouse.

#include "HeldFile.h"
#include "LongestGap.h"
#include "StationPlace.h"
#include "TestDictionary.h"
#include "WindowTest.h"
#include "compose/BodyEdit.h"
#include "compose/ComposeWindow.h"
#include "onair/OnAirDesk.h"
#include "platform/widgets/Contrast.h"
#include "spelling/Speller.h"
#include "spelling/SpellingEdit.h"
#include "spelling/SpellingTools.h"
#include "window/Appearance.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QStatusBar>

namespace
{
class SpellingTest : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        TestDictionary::Write(Dictionaries(), QStringLiteral("en_GB"),
                              {"hello", "world/S", "thank", "you", "for", "writing", "don't", "dear", "on", "wrote"});
    }
    void TearDown() override
    {
        if (QWidget* menu = QApplication::activePopupWidget())
            menu->close();
        Appearance::Apply(QString());
        CloseAll();
        WindowTest::TearDown();
    }
    /// What was written is given up.
    void CloseAll()
    {
        for (ComposeWindow* window : Window ? Window->ComposeWindows() : QList<ComposeWindow*>())
            delete window;
        CloseWindow();
    }
    QString Dictionaries() const { return Path(QStringLiteral("dictionaries")); }
    QString OwnWordsFile() const { return Path(QStringLiteral("desk-words.txt")); }
    ComposeWindow* Write(const QString& text, Composition composition = {})
    {
        if (!Window)
            OpenWindow();
        composition.Body = text;
        ComposeWindow* window = Window->Compose(composition);
        BodyOf(*window).setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        return window;
    }
    static BodyEdit& BodyOf(const ComposeWindow& window)
    {
        return *window.findChild<BodyEdit*>(QStringLiteral("body"));
    }
    static QStringList Marked(const SpellingEdit& edit)
    {
        QStringList words;
        for (const QTextCursor& mark : edit.Marks())
            words.append(mark.selectedText());
        return words;
    }
    static bool GetsMarked(const SpellingEdit& edit, const QStringList& words)
    {
        return WaitUntil([&] { return Marked(edit) == words; });
    }
    /// Longer than the marks and the dictionary take.
    static void Rest() { QTest::qWait(150); }
    static QMenu* WaitForMenu()
    {
        EXPECT_TRUE(WaitUntil([] { return Popup() != nullptr; }));
        return Popup();
    }
    static QMenu* Popup() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    static QStringList Entries(const QMenu& menu)
    {
        QStringList entries;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator() && action->isVisible())
                entries.append(action->text().remove(u'&'));
        }
        return entries;
    }
    static QMenu* LanguageMenu(const QWidget& window) { return window.findChild<QMenu*>(QStringLiteral("spelling")); }
    static void OpenByMouse(BodyEdit& body, int position)
    {
        QTextCursor cursor(body.document());
        cursor.setPosition(position);
        const QPoint place = body.cursorRect(cursor).center() + QPoint(2, 0);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, body.viewport()->mapToGlobal(place));
        QApplication::sendEvent(body.viewport(), &event);
    }
    static void PutCaret(BodyEdit& body, int position)
    {
        QTextCursor cursor = body.textCursor();
        cursor.setPosition(position);
        body.setTextCursor(cursor);
    }
    Speller& Spelling() { return *Window->findChild<Speller*>(); }
    /// The dictionary has much to do.
    void KeepBusy(int questions = 3000)
    {
        for (int i = 0; i < questions; ++i)
            Spelling().Suggest(QStringLiteral("wrldxwrtng") + QChar(u'a' + i % 26));
    }
    /// The language of that name in the menu is chosen.
    static void Choose(const ComposeWindow& window, const QString& entry)
    {
        QMenu* menu = LanguageMenu(window);
        for (QAction* action : menu->actions()) {
            if (action->text().remove(u'&') == entry)
                return action->trigger();
        }
        ADD_FAILURE() << entry.toStdString() << " is not in " << Entries(*menu).join(u'|').toStdString();
    }
    static QString NoteOf(const ComposeWindow& window)
    {
        return window.findChild<QLabel*>(QStringLiteral("note"))->text();
    }
};
} // namespace

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

TEST_F(SpellingTest, NoWindowToWriteInWaitsForALockedDirectoryToTellOnesOwnName)
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

TEST_F(SpellingTest, ClosingIsQuickWhileMuchIsAskedAndAWordAddedJustBeforeIsKept)
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

TEST_F(SpellingTest, AWordThatCannotBeKeptIsSaidAndKnownThoughAnotherLanguageIsChosenMeanwhile)
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

TEST_F(SpellingTest, SuggestionsThatComeLateMoveNothingInTheOpenMenu)
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

TEST_F(SpellingTest, TheFirstLateSuggestionIsChosenWhereNothingElseWas)
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

TEST_F(SpellingTest, WhereTheSpellingGoesOffMeanwhileTheKeyDoesNotSayThatAllIsKnown)
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

TEST_F(SpellingTest, ManyLinesWithoutWordsHoldNothing)
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

TEST_F(SpellingTest, WhoHasLeftAWordOrTheBoxSeesItsWaveAlsoBackAtTheWord)
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
