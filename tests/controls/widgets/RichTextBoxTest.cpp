// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/RichTextBox.h"

#include "platform/widgets/SystemColour.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace
{
/// "ab" free, "RUN" protected, "cd" free.
class RichTextBoxTest : public testing::Test
{
protected:
    RichTextBoxTest()
    {
        Box.resize(400, 60);
        Box.show();
        Box.activateWindow();
        Box.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Box));
        Box.SetTextRTF(QStringLiteral("{\\rtf1 ab{\\protect RUN}cd}"));
    }
    ~RichTextBoxTest() override { QGuiApplication::clipboard()->clear(); }

    void Select(int start, int length)
    {
        Box.SetSelStart(start);
        Box.SetSelLength(length);
    }
    /// Which characters are protected, as "..PPP..".
    QString States()
    {
        QString states;
        const QTextCursor before = Box.textCursor();
        for (int i = 0; i < Box.Text().size(); ++i) {
            Select(i, 1);
            states += Box.SelProtected() == true ? u'P' : u'.';
        }
        Box.setTextCursor(before);
        return states;
    }
    void Commit(const QString& text)
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(&Box, &event);
    }
    void Paste(const QString& text)
    {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(&Box, Qt::Key_V, Qt::ControlModifier);
    }

    RichTextBox Box;
};
} // namespace

TEST_F(RichTextBoxTest, TheStateOfASelectionHasThreeValues)
{
    Select(0, 2);
    EXPECT_EQ(Box.SelProtected(), std::optional(false));
    Select(2, 3);
    EXPECT_EQ(Box.SelProtected(), std::optional(true));
    Select(1, 3);
    EXPECT_EQ(Box.SelProtected(), std::nullopt);
}

TEST_F(RichTextBoxTest, WithoutASelectionTheCharacterBeforeTheCaretDecides)
{
    const QList<bool> expected = {false, false, false, true, true, true, false, false};
    for (int i = 0; i < expected.size(); ++i) {
        Box.SetSelStart(i);
        EXPECT_EQ(Box.SelProtected(), std::optional(expected.at(i))) << i;
    }
    Box.SetTextRTF(QStringLiteral("{\\rtf1{\\protect RUN}}"));
    Box.SetSelStart(0);
    EXPECT_EQ(Box.SelProtected(), std::optional(true));
    Box.SetTextRTF(QString());
    EXPECT_EQ(Box.SelProtected(), std::optional(false));
}

TEST_F(RichTextBoxTest, PositionsAreKeptWithinTheText)
{
    Box.SetSelStart(-5);
    EXPECT_EQ(Box.SelStart(), 0);
    Box.SetSelStart(100);
    EXPECT_EQ(Box.SelStart(), 7);
    Select(5, 100);
    EXPECT_EQ(Box.SelLength(), 2);
    Box.SetSelLength(-1);
    EXPECT_EQ(Box.SelLength(), 0);
    EXPECT_EQ(Box.SelText(), QString());
}

TEST_F(RichTextBoxTest, PositionsCountUtf16)
{
    Box.SetText(QStringLiteral("📻é\nx"));
    EXPECT_EQ(Box.Text().size(), 5);
    Select(0, 2);
    EXPECT_EQ(Box.SelText(), QStringLiteral("📻"));
    Select(3, 2);
    EXPECT_EQ(Box.SelText(), QStringLiteral("\nx"));
}

TEST_F(RichTextBoxTest, RunsAndColoursComeBackFromWhatWasWritten)
{
    Select(2, 3);
    Box.SetSelColor(0xC00000);
    const QString written = Box.TextRTF();
    Box.SetText(QString());
    Box.SetTextRTF(written);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    EXPECT_EQ(States(), QStringLiteral("..PPP.."));
    Select(2, 3);
    EXPECT_EQ(Box.SelColor(), std::optional(0xC00000));
    Select(1, 3);
    EXPECT_EQ(Box.SelColor(), std::nullopt);
    Select(0, 2);
    EXPECT_EQ(Box.SelColor(), std::optional(SystemColour::WindowText));
    EXPECT_EQ(Box.TextRTF(), written);
}

TEST_F(RichTextBoxTest, PlainTextIsTakenAsItLooks)
{
    Box.SetText(QStringLiteral("{\\rtf1 x}"));
    EXPECT_EQ(Box.Text(), QStringLiteral("{\\rtf1 x}"));
    Box.SetTextRTF(QStringLiteral("a\\b{c}"));
    EXPECT_EQ(Box.Text(), QStringLiteral("a\\b{c}"));
}

TEST_F(RichTextBoxTest, TextThatTheProgramPutsInIsUnprotectedUntilItSaysOtherwise)
{
    Box.SetSelStart(5);
    Box.SetSelText(QStringLiteral("xy"));
    EXPECT_EQ(States(), QStringLiteral("..PPP...."));
    EXPECT_EQ(Box.SelStart(), 7);
    Select(5, 2);
    Box.SetSelProtected(true);
    EXPECT_EQ(States(), QStringLiteral("..PPPPP.."));
}

TEST_F(RichTextBoxTest, ChangeTellsOfTextAndNotOfForms)
{
    const QSignalSpy changed(&Box, &RichTextBox::Change);
    Select(0, 2);
    Box.SetSelProtected(true);
    Box.SetSelColor(255);
    EXPECT_EQ(changed.size(), 0);
    Box.SetSelText(QStringLiteral("x"));
    EXPECT_EQ(changed.size(), 1);
}

TEST_F(RichTextBoxTest, TypingIntoARunIsRefused)
{
    Box.SetSelStart(3);
    QTest::keyClicks(&Box, QStringLiteral("x"));
    QTest::keyClick(&Box, Qt::Key_Return);
    Commit(QStringLiteral("日"));
    Paste(QStringLiteral("paste"));
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
}

TEST_F(RichTextBoxTest, TypingAtBothEndsOfARunIsFreeText)
{
    Box.SetSelStart(5);
    QTest::keyClicks(&Box, QStringLiteral("x"));
    Box.SetSelStart(2);
    QTest::keyClicks(&Box, QStringLiteral("y"));
    EXPECT_EQ(Box.Text(), QStringLiteral("abyRUNxcd"));
    EXPECT_EQ(States(), QStringLiteral("...PPP..."));
}

TEST_F(RichTextBoxTest, InputMethodsPutInFreeText)
{
    Box.SetSelStart(5);
    Commit(QStringLiteral("日本"));
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUN日本cd"));
    EXPECT_EQ(States(), QStringLiteral("..PPP...."));
    QInputMethodEvent replacing;
    replacing.setCommitString(QStringLiteral("x"), -4, 3);
    QApplication::sendEvent(&Box, &replacing);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUN日本cd"));
}

TEST_F(RichTextBoxTest, ASelectionThatCutsARunIsReplacedWithTheWholeOfIt)
{
    Select(4, 2);
    QTest::keyClicks(&Box, QStringLiteral("x"));
    EXPECT_EQ(Box.Text(), QStringLiteral("abxd"));
    EXPECT_EQ(States(), QStringLiteral("...."));
    QTest::keyClick(&Box, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    EXPECT_EQ(States(), QStringLiteral("..PPP.."));
    QTest::keyClick(&Box, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Box.Text(), QStringLiteral("abxd"));
}

TEST_F(RichTextBoxTest, EveryWayToDeleteTakesRunsWhole)
{
    const QString whole = QStringLiteral("{\\rtf1 ab{\\protect RUN}cd}");
    const auto after = [&](int start, int length, auto&& act) {
        Box.SetTextRTF(whole);
        Select(start, length);
        act();
        EXPECT_FALSE(States().contains(u'P'));
        return Box.Text();
    };
    EXPECT_EQ(after(5, 0, [&] { QTest::keyClick(&Box, Qt::Key_Backspace); }), QStringLiteral("abcd"));
    EXPECT_EQ(after(3, 0, [&] { QTest::keyClick(&Box, Qt::Key_Backspace); }), QStringLiteral("abcd"));
    EXPECT_EQ(after(2, 0, [&] { QTest::keyClick(&Box, Qt::Key_Delete); }), QStringLiteral("abcd"));
    EXPECT_EQ(after(4, 0, [&] { QTest::keyClick(&Box, Qt::Key_Delete); }), QStringLiteral("abcd"));
    EXPECT_EQ(after(1, 2, [&] { QTest::keyClick(&Box, Qt::Key_Delete); }), QStringLiteral("acd"));
    EXPECT_EQ(after(4, 2, [&] { QTest::keyClick(&Box, Qt::Key_X, Qt::ControlModifier); }), QStringLiteral("abd"));
    EXPECT_EQ(after(7, 0, [&] { QTest::keyClick(&Box, Qt::Key_Backspace, Qt::ControlModifier); }), QString());
    EXPECT_EQ(after(3, 0, [&] { QTest::keyClick(&Box, Qt::Key_Delete, Qt::ControlModifier); }), QStringLiteral("ab"));
    EXPECT_EQ(after(4, 1, [&] { Paste(QStringLiteral("x\r\ny")); }), QStringLiteral("abx\nycd"));
    EXPECT_EQ(after(3, 1, [&] { Box.Delete(); }), QStringLiteral("abcd"));
}

TEST_F(RichTextBoxTest, FreeTextIsDeletedByWholeCharacters)
{
    Box.SetText(QStringLiteral("a📻b"));
    Select(2, 1);
    QTest::keyClick(&Box, Qt::Key_Delete);
    EXPECT_EQ(Box.Text(), QStringLiteral("ab"));
}

TEST_F(RichTextBoxTest, WhatIsPastedIsPlainAndFree)
{
    auto* data = new QMimeData;
    data->setHtml(QStringLiteral("<b>bold</b>"));
    data->setText(QStringLiteral("bold"));
    QGuiApplication::clipboard()->setMimeData(data);
    Box.SetSelStart(5);
    QTest::keyClick(&Box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNboldcd"));
    EXPECT_EQ(States(), QStringLiteral("..PPP......"));
    EXPECT_FALSE(Box.fontWeight() > QFont::Normal);
}

TEST_F(RichTextBoxTest, ARunThatWasCopiedIsPastedAsFreeText)
{
    Select(2, 3);
    Box.copy();
    Box.SetSelStart(7);
    QTest::keyClick(&Box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcdRUN"));
    EXPECT_EQ(States(), QStringLiteral("..PPP....."));
}

TEST_F(RichTextBoxTest, WhatIsDroppedIsACopyAndNotWithinARun)
{
    QMimeData data;
    data.setText(QStringLiteral("x"));
    const auto drop = [&](int position) {
        Box.SetSelStart(position);
        const QPoint place = Box.cursorRect().center();
        QDragEnterEvent enter(place, Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Box.viewport(), &enter);
        QDropEvent event(place, Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Box.viewport(), &event);
    };
    drop(3);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    drop(7);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcdx"));
    EXPECT_EQ(States(), QStringLiteral("..PPP..."));
}

TEST_F(RichTextBoxTest, ALockedBoxChangesNothing)
{
    Box.SetLocked(true);
    Select(1, 5);
    for (const int key : {Qt::Key_A, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Return})
        QTest::keyClick(&Box, static_cast<Qt::Key>(key));
    QTest::keyClick(&Box, Qt::Key_X, Qt::ControlModifier);
    Paste(QStringLiteral("x"));
    Commit(QStringLiteral("x"));
    Box.Delete();
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
}

TEST_F(RichTextBoxTest, AKeyCanBeSwallowedOrChanged)
{
    int seen = 0;
    int given = 0;
    QObject::connect(&Box, &RichTextBox::KeyDown, &Box, [&](int& key) {
        seen = key;
        key = given;
    });
    Box.SetSelStart(0);
    QTest::keyClicks(&Box, QStringLiteral("x"));
    EXPECT_EQ(seen, Qt::Key_X);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    given = Qt::Key_Right;
    QTest::keyClicks(&Box, QStringLiteral("x"));
    EXPECT_EQ(Box.SelStart(), 1);
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    seen = 0;
    QTest::keyPress(&Box, Qt::Key_Shift, Qt::ShiftModifier);
    EXPECT_EQ(seen, 0);
}

TEST_F(RichTextBoxTest, WhatOneHoldDidIsOneStepToUndo)
{
    {
        const RichTextBox::Hold hold(Box);
        Box.SetSelStart(7);
        Box.SetSelText(QStringLiteral("NEW"));
        Select(7, 3);
        Box.SetSelProtected(true);
        Box.SetSelStart(10);
        Box.SetSelText(QStringLiteral("; "));
        EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcdNEW; "));
    }
    EXPECT_EQ(States(), QStringLiteral("..PPP..PPP.."));
    Box.Undo();
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    EXPECT_EQ(States(), QStringLiteral("..PPP.."));
    Box.Redo();
    EXPECT_EQ(States(), QStringLiteral("..PPP..PPP.."));
}

TEST_F(RichTextBoxTest, TypedTextIsUndoneTogether)
{
    Box.SetSelStart(7);
    QTest::keyClicks(&Box, QStringLiteral("hello"));
    Box.Undo();
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
}

TEST_F(RichTextBoxTest, TheMouseIsToldBeforeAndAfterTheBoxObeys)
{
    QStringList told;
    QObject::connect(&Box, &RichTextBox::MouseDown, &Box, [&](Qt::MouseButton button) {
        told << QStringLiteral("down %1 at %2").arg(button).arg(Box.SelStart());
    });
    QObject::connect(&Box, &RichTextBox::MouseUp, &Box, [&](Qt::MouseButton button) {
        told << QStringLiteral("up %1 at %2").arg(button).arg(Box.SelStart());
    });
    Box.SetSelStart(4);
    const QPoint place = Box.cursorRect().center();
    Box.SetSelStart(0);
    QTest::mouseClick(Box.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(told, (QStringList{QStringLiteral("down 1 at 0"), QStringLiteral("up 1 at 4")}));
}

TEST_F(RichTextBoxTest, TheMenuCutsRunsWhole)
{
    Select(4, 2);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5), Box.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(Box.viewport(), &event);
    auto* menu = Box.findChild<QMenu*>(QStringLiteral("textMenu"));
    ASSERT_TRUE(menu);
    for (QAction* action : menu->actions()) {
        if (action->text() == QStringLiteral("&Delete"))
            action->trigger();
    }
    menu->close();
    EXPECT_EQ(Box.Text(), QStringLiteral("abd"));
}

TEST_F(RichTextBoxTest, BorderPointerTagAndColourAreKept)
{
    EXPECT_EQ(Box.BorderStyle(), RichTextBox::FixedSingle);
    Box.SetBorderStyle(RichTextBox::None);
    EXPECT_EQ(Box.BorderStyle(), RichTextBox::None);
    EXPECT_EQ(Box.frameShape(), QFrame::NoFrame);
    Box.SetMousePointer(RichTextBox::CustomPointer);
    EXPECT_EQ(Box.viewport()->cursor().shape(), Qt::PointingHandCursor);
    Box.SetMousePointer(RichTextBox::DefaultPointer);
    EXPECT_EQ(Box.viewport()->cursor().shape(), Qt::IBeamCursor);
    Box.SetTag(QStringLiteral("1"));
    EXPECT_EQ(Box.Tag(), QStringLiteral("1"));
    Box.SetBackColor(0x202020);
    EXPECT_EQ(Box.palette().color(QPalette::Base), QColor(0x20, 0x20, 0x20));
    EXPECT_GT(Box.palette().color(QPalette::Text).lightness(), 128);
    EXPECT_EQ(Box.BackColor(), 0x202020);
}

TEST_F(RichTextBoxTest, ClearingCanBeUndone)
{
    Box.SetTextRTF(QString());
    EXPECT_EQ(Box.Text(), QString());
    Box.Undo();
    EXPECT_EQ(Box.Text(), QStringLiteral("abRUNcd"));
    EXPECT_EQ(States(), QStringLiteral("..PPP.."));
}
