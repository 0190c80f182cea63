// SPDX-License-Identifier: Apache-2.0

// Boxes for texts and numbers.

#include "platform/widgets/TextBoxes.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <limits>

class TextBoxesTest : public testing::Test
{
protected:
    TextBoxesTest()
    {
        auto* column = new QVBoxLayout(&Window);
        for (QWidget* box : std::initializer_list<QWidget*>{&First, &Number, &Area})
            column->addWidget(box);
        Window.resize(400, 300);
        Window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
    }
    ~TextBoxesTest() override
    {
        for (QWidget* box : std::initializer_list<QWidget*>{&First, &Number, &Area})
            box->setParent(nullptr);
        Window.close();
    }

    QWidget Window;
    TextBox First;
    NumberBox Number;
    TextArea Area;
};

TEST_F(TextBoxesTest, AClickThatBringsTheFocusSelectsAllAndADragSelectsItsPart)
{
    First.setText(QStringLiteral("some words here"));
    Number.setFocus();
    const QPoint start(5, First.height() / 2);
    QTest::mousePress(&First, Qt::LeftButton, Qt::NoModifier, start);
    QTest::mouseMove(&First, QPoint(60, First.height() / 2));
    QTest::mouseRelease(&First, Qt::LeftButton, Qt::NoModifier, QPoint(60, First.height() / 2));
    EXPECT_TRUE(First.hasSelectedText());
    EXPECT_NE(First.selectedText(), First.text());
    Number.setFocus();
    QTest::mouseClick(&First, Qt::LeftButton, Qt::NoModifier, start);
    EXPECT_EQ(First.selectedText(), First.text());
    QTest::keyClicks(&First, QStringLiteral("x"));
    EXPECT_EQ(First.text(), QStringLiteral("x"));
}

TEST_F(TextBoxesTest, BackFromAnotherWindowTheSelectionIsWhatItWas)
{
    First.setText(QStringLiteral("some words here"));
    First.setFocus();
    First.setSelection(5, 5);
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    other.close();
    Window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
    EXPECT_EQ(First.selectedText(), QStringLiteral("words"));
}

TEST_F(TextBoxesTest, OnlyDigitsComeFromTheKeyboardAndFromInputMethods)
{
    Number.setFocus();
    QTest::keyClicks(&Number, QStringLiteral("a1-2.b +3,4"));
    EXPECT_EQ(Number.text(), QStringLiteral("1234"));
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("x5\u0665y6"));
    QApplication::sendEvent(&Number, &event);
    EXPECT_EQ(Number.text(), QStringLiteral("123456"));
    QTest::keyClick(&Number, Qt::Key_Home);
    QTest::keyClick(&Number, Qt::Key_Delete);
    QTest::keyClick(&Number, Qt::Key_End);
    QTest::keyClick(&Number, Qt::Key_Backspace);
    EXPECT_EQ(Number.text(), QStringLiteral("2345"));
    QTest::keyClick(&Number, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&Number, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Number.text(), QString());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("2345"));
    QTest::keyClick(&Number, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Number.text(), QStringLiteral("2345"));
    // A character that a keyboard gives with AltGr is typed like any other.
    QTest::keyClick(&Number, '@', Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(Number.text(), QStringLiteral("2345"));
}

TEST_F(TextBoxesTest, TheNumberIsWhatTheTextBeginsWith)
{
    const std::pair<QString, qint64> cases[] = {
        {QString(), 0},
        {QStringLiteral("12"), 12},
        {QStringLiteral(" 12 mm"), 12},
        {QStringLiteral("12abc"), 12},
        {QStringLiteral("abc12"), 0},
        {QStringLiteral("-3"), -3},
        {QStringLiteral("+3"), 3},
        {QStringLiteral("1.9"), 1},
        {QStringLiteral("-"), 0},
        {QStringLiteral("99999999999999999999"), std::numeric_limits<qint64>::max()},
        {QStringLiteral("-99999999999999999999"), std::numeric_limits<qint64>::min()},
    };
    for (const auto& [text, number] : cases) {
        Number.setText(text);
        EXPECT_EQ(Number.Number(), number) << qPrintable(text);
    }
}

TEST_F(TextBoxesTest, AnAreaTakesSoManyCharactersWhereverTheyGoIn)
{
    Area.SetLimitedText(QStringLiteral("one\r\ntwo\rthree\nfour"), 30);
    EXPECT_EQ(Area.Text(), QStringLiteral("one\r\ntwo\r\nthree\r\nfour"));
    Area.setFocus();
    QGuiApplication::clipboard()->setText(QStringLiteral("0123456789"));
    QTest::keyClick(&Area, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Area.Text(), QStringLiteral("012345678one\r\ntwo\r\nthree\r\nfour"));
    EXPECT_EQ(Area.Text().size(), 30);
    QTest::keyClicks(&Area, QStringLiteral("x"));
    QTest::keyClick(&Area, Qt::Key_Return);
    EXPECT_EQ(Area.Text().size(), 30);
    // What replaces a selection has its room.
    QTest::keyClick(&Area, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&Area, QStringLiteral("new"));
    EXPECT_EQ(Area.Text(), QStringLiteral("new"));
    QTest::keyClick(&Area, Qt::Key_Tab);
    EXPECT_FALSE(Area.hasFocus());
    EXPECT_EQ(Area.Text(), QStringLiteral("new"));
}

TEST_F(TextBoxesTest, UndoingWhatHadNoRoomLeavesTheTextWithinItsLimit)
{
    Area.SetLimitedText(QStringLiteral("abcde"), 8);
    Area.setFocus();
    QGuiApplication::clipboard()->setText(QStringLiteral("0123456789"));
    QTest::keyClick(&Area, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Area.Text(), QStringLiteral("012abcde"));
    QTest::keyClick(&Area, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Area.Text(), QStringLiteral("abcde"));
    QTest::keyClick(&Area, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Area.Text(), QStringLiteral("012abcde"));
}
