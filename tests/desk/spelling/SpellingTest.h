// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TestDictionary.h"
#include "WindowTest.h"
#include "compose/BodyEdit.h"
#include "compose/ComposeWindow.h"
#include "spelling/Speller.h"
#include "spelling/SpellingEdit.h"
#include "window/Appearance.h"

#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>

/// A desk with a dictionary of a few English words.
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
