// SPDX-License-Identifier: Apache-2.0

// The keys of a box for recipients: what the units leave aside acts as in any other box.

#include "AddressBox.h"
#include "AddressPopups.h"

#include <QKeyEvent>

bool AddressBox::TakeKey(QKeyEvent& event)
{
    if (TakeListKey(event))
        return true;
    Actions_->hide();
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isEnter) {
        if (event.modifiers() & Qt::ControlModifier)
            return false;
        List_->hide();
        Q_EMIT Done();
        return true;
    }
    return TakeCommand(event) || TakeEditKey(event) || MoveCaret(event);
}

bool AddressBox::TakeListKey(const QKeyEvent& event)
{
    if (!List_->isVisible())
        return false;
    switch (event.key()) {
    case Qt::Key_Down:
        List_->Step(1);
        return true;
    case Qt::Key_Up:
        List_->Step(-1);
        return true;
    case Qt::Key_Escape:
        List_->hide();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        if (List_->Chosen() < 0 || event.modifiers() & Qt::ControlModifier)
            return false;
        Accept(List_->Chosen());
        return true;
    default:
        return false;
    }
}

/// Commands of the clipboard and of undo: a recipient that is selected stays a unit.
bool AddressBox::TakeCommand(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Copy))
        Box_->copy();
    else if (event.matches(QKeySequence::Cut))
        Box_->Cut();
    else if (event.matches(QKeySequence::Paste))
        Box_->paste();
    else if (event.matches(QKeySequence::SelectAll))
        Box_->selectAll();
    else if (event.matches(QKeySequence::Undo))
        Box_->Undo();
    else if (event.matches(QKeySequence::Redo))
        Box_->Redo();
    else
        return false;
    return true;
}

/// Backspace and Delete where there is a selection or no recipient: as in any other box.
bool AddressBox::TakeEditKey(const QKeyEvent& event)
{
    const bool isDelete = event.key() == Qt::Key_Delete;
    if (!isDelete && event.key() != Qt::Key_Backspace)
        return false;
    if (Box_->SelLength() > 0) {
        Box_->Delete();
        return true;
    }
    QTextCursor cursor = Box_->textCursor();
    const bool isWord = event.modifiers() & Qt::ControlModifier;
    if (!isDelete || (!isWord && Box_->IsProtectedAt(cursor.position())))
        return false;
    cursor.movePosition(isWord ? QTextCursor::NextWord : QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
    Box_->setTextCursor(cursor);
    Box_->Delete();
    return true;
}

/// Moves that the units leave aside: from and with a selection, by words and lines. The caret never stays within a
/// recipient.
bool AddressBox::MoveCaret(const QKeyEvent& event)
{
    using Move = QTextCursor::MoveOperation;
    const bool isSelecting = event.modifiers() & Qt::ShiftModifier;
    const bool isWide = event.modifiers() & Qt::ControlModifier;
    QTextCursor cursor = Box_->textCursor();
    Move move = QTextCursor::NoMove;
    bool isBack = false;
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        isBack = event.key() == Qt::Key_Left;
        const bool isStuck = !isBack && cursor.atStart() && !Box_->IsProtectedAt(0);
        if (!isSelecting && !isWide && !cursor.hasSelection() && !isStuck)
            return false;
        if (!isSelecting && cursor.hasSelection()) {
            cursor.setPosition(isBack ? cursor.selectionStart() : cursor.selectionEnd());
            Box_->setTextCursor(cursor);
            return true;
        }
        move = isBack ? (isWide ? Move::PreviousWord : Move::PreviousCharacter)
                      : (isWide ? Move::NextWord : Move::NextCharacter);
        break;
    }
    case Qt::Key_Up:
    case Qt::Key_Down:
        isBack = event.key() == Qt::Key_Up;
        move = isBack ? Move::Up : Move::Down;
        break;
    case Qt::Key_Home:
    case Qt::Key_End:
        isBack = event.key() == Qt::Key_Home;
        move = isBack ? (isWide ? Move::Start : Move::StartOfLine) : (isWide ? Move::End : Move::EndOfLine);
        break;
    default:
        // Keys that put nothing in do nothing to a selected recipient; the window may know them.
        return Box_->SelLength() > 0 && event.text().isEmpty();
    }
    cursor.movePosition(move, isSelecting ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
    if (const auto run = Box_->RunAround(cursor.position()))
        cursor.setPosition(isBack ? run->first : run->second,
                           isSelecting ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
    Box_->setTextCursor(cursor);
    return true;
}
