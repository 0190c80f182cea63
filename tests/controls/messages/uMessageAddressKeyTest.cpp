// SPDX-License-Identifier: Apache-2.0
#include "messages/AddressBoxOnShow.h"

#include <QCoreApplication>
#include <QKeyEvent>

using uMessageAddressKeyTest = AddressBoxOnShow;

TEST_F(uMessageAddressKeyTest, LeftFromBehindARunLandsOnItsFrontEnd)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    Box.SetSelStart(9 + AnnEnd);
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), 9);
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), 8);
}

TEST_F(uMessageAddressKeyTest, LeftFromBehindTheFirstRunLandsAtTheBeginningAndStays)
{
    AddAnn();
    Box.SetSelStart(AnnEnd);
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), 0);
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), 0);
}

TEST_F(uMessageAddressKeyTest, RightFromTheFrontOfARunLandsBehindIt)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    Box.SetSelStart(9);
    Key(Qt::Key_Right);
    // One further than its last character: the state is that of the character before the caret.
    EXPECT_EQ(Box.SelStart(), 9 + AnnEnd + 1);
}

TEST_F(uMessageAddressKeyTest, RightAtTheBeginningJumpsTheFirstRun)
{
    AddAnn();
    Box.SetSelStart(0);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), AnnEnd + 1);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), AnnEnd + 2);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), AnnEnd + 2);
}

TEST_F(uMessageAddressKeyTest, RightAtTheBeginningOfFreeTextStaysThere)
{
    Type(QStringLiteral("ab"));
    Box.SetSelStart(0);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), 0);
    Box.SetSelStart(1);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), 2);
}

TEST_F(uMessageAddressKeyTest, RightNeverStopsWithinACharacter)
{
    Control.Settext(QStringLiteral("a📻b"));
    Box.SetSelStart(1);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), 3);
}

TEST_F(uMessageAddressKeyTest, BackspaceBehindARunTakesItAndLeavesTheTextInFront)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    Box.SetSelStart(9 + AnnEnd);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), QStringLiteral("x@y.org; ; "));
    EXPECT_EQ(Box.SelStart(), 9);
    EXPECT_EQ(Box.Tag(), QStringLiteral("0"));
}

TEST_F(uMessageAddressKeyTest, BackspaceInFreeTextTakesOneCharacter)
{
    AddAnn();
    Type(QStringLiteral("xy"));
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), AnnEntry + u'x');
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), AnnRun);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), QString());
}

TEST_F(uMessageAddressKeyTest, BackspaceWithinARunTakesTheWholeOfIt)
{
    AddAnn();
    Box.SetSelStart(4);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), QStringLiteral("; "));
}

TEST_F(uMessageAddressKeyTest, DeleteInFrontOfTheFirstRunTakesItWithTheSemicolon)
{
    AddAnn();
    AddAnn();
    Box.SetSelStart(0);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), u' ' + AnnEntry);
    EXPECT_EQ(Box.Tag(), QStringLiteral("0"));
}

TEST_F(uMessageAddressKeyTest, DeleteInFrontOfALaterRunTakesItWithTheSemicolon)
{
    AddAnn();
    AddAnn();
    Box.SetSelStart(AnnEnd + 2);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), AnnEntry + u' ');
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral("..."));
}

TEST_F(uMessageAddressKeyTest, DeleteOfTheLastRunWithoutASeparatorTakesItAlone)
{
    AddAnn();
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Backspace);
    Box.SetSelStart(0);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), QString());
}

TEST_F(uMessageAddressKeyTest, DeleteInFreeTextTakesOneCharacter)
{
    AddAnn();
    Type(QStringLiteral("xyz"));
    Box.SetSelStart(AnnEnd + 3);
    Key(Qt::Key_Delete);
    // The caret steps to the right to look at the character behind it, and stays there when that is free.
    EXPECT_EQ(Control.text(), AnnEntry + QStringLiteral("xy"));
}

TEST_F(uMessageAddressKeyTest, TypingDirectlyBehindARunIsUnprotected)
{
    AddAnn();
    Box.SetSelStart(AnnEnd);
    Type(QStringLiteral("xy"));
    EXPECT_EQ(Control.text(), AnnRun + QStringLiteral("xy; "));
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral("...."));
}

TEST_F(uMessageAddressKeyTest, HomeAndEndLeaveTheStateAlone)
{
    AddAnn();
    Select(0, AnnEnd);
    Key(Qt::Key_End);
    Select(0, AnnEnd);
    Key(Qt::Key_Home);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressKeyTest, AnyOtherKeyUnprotectsTheSelectionUnlessLocked)
{
    AddAnn();
    Control.SetLocked(true);
    Select(0, AnnEnd);
    Key(Qt::Key_F9);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
    Control.SetLocked(false);
    Select(0, AnnEnd);
    Key(Qt::Key_F9);
    EXPECT_EQ(States(), QString(AnnEnd + 2, u'.'));
}

TEST_F(uMessageAddressKeyTest, TypingOverARunReplacesIt)
{
    AddAnn();
    Select(0, AnnEnd);
    Type(QStringLiteral("x"));
    EXPECT_EQ(Control.text(), QStringLiteral("x; "));
    EXPECT_EQ(States(), QStringLiteral("..."));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Control.text(), AnnEntry);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressKeyTest, DeleteInFreeTextNeverHalvesACharacter)
{
    const QString radio = QString::fromUcs4(U"\U0001F4FB");
    for (const QString& text : {u'a' + radio + u'b', u'a' + radio + radio + u'b'}) {
        Control.Settext(text);
        Box.SetSelStart(1);
        Key(Qt::Key_Delete);
        // What stands behind the character that was looked at.
        EXPECT_EQ(Control.text(), text.left(3) + text.mid(text.size() == 4 ? 4 : 5));
    }
    Control.Settext(QString());
    AddAnn();
    Box.SetSelStart(AnnEnd);
    Box.SetSelLength(2);
    Box.SetSelText(radio + u'x');
    Box.SetSelStart(0);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), QStringLiteral("x"));
}

TEST_F(uMessageAddressKeyTest, DeleteOnSelectedFreeTextTakesTheCharacterBehindItsFirst)
{
    AddAnn();
    Type(QStringLiteral("abcdef"));
    Select(AnnEnd + 3, 3);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), AnnEntry + QStringLiteral("abdef"));
}

TEST_F(uMessageAddressKeyTest, BackspaceOnAWholeSelectedRunTakesTheOneBeforeIt)
{
    AddAnn();
    AddAnn();
    Select(AnnEnd + 2, AnnEnd);
    ASSERT_EQ(Box.SelProtected(), true);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), AnnEntry);
    Select(0, AnnEnd);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), AnnEntry);
}

TEST_F(uMessageAddressKeyTest, ALockedBoxKeepsItsRuns)
{
    AddAnn();
    Control.SetLocked(true);
    Box.SetSelStart(AnnEnd);
    Key(Qt::Key_Backspace);
    Box.SetSelStart(0);
    Key(Qt::Key_Delete);
    Type(QStringLiteral("x"));
    EXPECT_EQ(Control.text(), AnnEntry);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressKeyTest, UndoBringsADeletedRunBackWhole)
{
    AddAnn();
    Box.SetSelStart(AnnEnd);
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Control.text(), AnnEntry);
    EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral(".."));
}

TEST_F(uMessageAddressKeyTest, BackspaceOnASelectionThatCutsARunTakesTheRunAndWhatStandsBefore)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    // From within the run to beyond its end: the state is neither true nor false.
    Select(9 + AnnEnd - 3, 4);
    ASSERT_FALSE(Box.SelProtected().has_value());
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), QStringLiteral("x@y.org; ; "));
    EXPECT_EQ(Box.Tag(), QStringLiteral("0"));
}

TEST_F(uMessageAddressKeyTest, DeleteOnASelectionThatCutsARunTakesItWithTheSemicolon)
{
    AddAnn();
    AddAnn();
    Select(AnnEnd - 3, 4);
    ASSERT_FALSE(Box.SelProtected().has_value());
    Key(Qt::Key_Delete);
    EXPECT_EQ(Control.text(), u' ' + AnnEntry);
    EXPECT_EQ(States(), u'.' + QString(AnnEnd, u'P') + QStringLiteral(".."));
    EXPECT_EQ(Box.Tag(), QStringLiteral("0"));
}

TEST_F(uMessageAddressKeyTest, LeftAndRightWithASelectedRunJumpFromItsFront)
{
    Type(QStringLiteral("x@y.org"));
    AddAnn();
    Select(9, AnnEnd);
    Key(Qt::Key_Left);
    // The step goes from the selection's beginning.
    EXPECT_EQ(Box.SelStart(), 8);
    EXPECT_EQ(Box.SelLength(), 0);
    Select(9, AnnEnd);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), 9 + AnnEnd + 1);
    EXPECT_EQ(Box.SelLength(), 0);
}

TEST_F(uMessageAddressKeyTest, LeftInFreeTextAndWithAMixedSelectionIsTheBoxesOwn)
{
    AddAnn();
    Type(QStringLiteral("xy"));
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), AnnEnd + 3);
    Select(AnnEnd - 3, 4);
    ASSERT_FALSE(Box.SelProtected().has_value());
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), AnnEnd - 3);
    EXPECT_EQ(Box.SelLength(), 0);
}

TEST_F(uMessageAddressKeyTest, TheArrowsJumpRunsInALockedBoxToo)
{
    AddAnn();
    Control.SetLocked(true);
    Box.SetSelStart(AnnEnd);
    Key(Qt::Key_Left);
    EXPECT_EQ(Box.SelStart(), 0);
    Key(Qt::Key_Right);
    EXPECT_EQ(Box.SelStart(), AnnEnd + 1);
}

TEST_F(uMessageAddressKeyTest, BackspaceAtTheBeginningOfARunTakesWhatStandsInFront)
{
    AddAnn();
    AddAnn();
    Box.SetSelStart(AnnEnd + 2);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), AnnRun + u';' + AnnEntry);
    Box.SetSelStart(0);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Control.text(), AnnRun + u';' + AnnEntry);
}

TEST_F(uMessageAddressKeyTest, KeysThatOnlyChangeOthersLeaveASelectedRunProtected)
{
    AddAnn();
    for (const Qt::Key key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_CapsLock}) {
        Select(0, AnnEnd);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&Box, &press);
        EXPECT_EQ(States(), QString(AnnEnd, u'P') + QStringLiteral("..")) << key;
    }
}
