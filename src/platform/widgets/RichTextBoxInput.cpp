// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/RichTextBox.h"
#include "platform/widgets/SystemColour.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QTextDocument>

namespace
{
bool ChangesOtherKeys(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
        return true;
    default:
        return false;
    }
}

/// Whether a text edit would put characters in for this key.
bool PutsIn(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::InsertParagraphSeparator) || event.matches(QKeySequence::InsertLineSeparator))
        return true;
    const bool isCommand = (event.modifiers() & Qt::ControlModifier) && !(event.modifiers() & Qt::AltModifier);
    return !event.text().isEmpty() && !isCommand && (event.text().at(0).isPrint() || event.text().at(0) == u'\t');
}
} // namespace

/// Makes the selection and the caret ready to take characters. False where none may go: within a run.
bool RichTextBox::PrepareForInput()
{
    if (isReadOnly() || (SelLength() == 0 && RunAround(SelStart())))
        return false;
    WidenSelection();
    if (SelLength() > 0)
        RemoveSelection();
    SetSelProtected(false);
    return true;
}

void RichTextBox::keyPressEvent(QKeyEvent* event)
{
    if (ChangesOtherKeys(event->key()))
        return QTextEdit::keyPressEvent(event);
    if (!isReadOnly() && SelLength() > 0 && PutsIn(*event))
        return PutInPlaceOfSelection(*event);
    int key = event->key();
    Q_EMIT KeyDown(key, event->modifiers());
    if (key == 0)
        return event->accept();
    if (key != event->key()) {
        QKeyEvent other(event->type(), key, event->modifiers(), QString(), event->isAutoRepeat());
        return QTextEdit::keyPressEvent(&other);
    }
    if (ObeyCommand(*event))
        return event->accept();
    if (!isReadOnly() && PutsIn(*event) && !PrepareForInput())
        return event->accept();
    QTextEdit::keyPressEvent(event);
}

/// One step for undo, whatever is done to the selection on the way.
void RichTextBox::PutInPlaceOfSelection(QKeyEvent& event)
{
    const Hold hold(*this);
    // Whoever sets the selection's protection before a character takes its place must not part a run.
    WidenSelection();
    int key = event.key();
    IsReplacing_ = true;
    StateWanted_.reset();
    Q_EMIT KeyDown(key, event.modifiers());
    IsReplacing_ = false;
    event.accept();
    if (key == 0) {
        if (StateWanted_)
            SetSelProtected(*StateWanted_);
        return;
    }
    if (!PrepareForInput())
        return;
    const bool isLineEnd =
        event.matches(QKeySequence::InsertParagraphSeparator) || event.matches(QKeySequence::InsertLineSeparator);
    SetSelText(isLineEnd ? QStringLiteral("\n") : event.text());
}

/// The keys that take text away. True when the key is done with.
bool RichTextBox::ObeyCommand(QKeyEvent& event)
{
    if (event.matches(QKeySequence::Cut)) {
        Cut();
        return true;
    }
    if (isReadOnly())
        return false;
    if (event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo)) {
        if (event.matches(QKeySequence::Undo))
            Undo();
        else
            Redo();
        return true;
    }
    const bool takesBack = event.key() == Qt::Key_Backspace;
    const bool isRemoval = takesBack || event.key() == Qt::Key_Delete;
    if (isRemoval && SelLength() > 0)
        RemoveSelection();
    else if (event.matches(QKeySequence::DeleteStartOfWord))
        RemoveTo(QTextCursor::PreviousWord);
    else if (event.matches(QKeySequence::DeleteEndOfWord))
        RemoveTo(QTextCursor::NextWord);
    else if (event.matches(QKeySequence::DeleteEndOfLine))
        RemoveTo(QTextCursor::EndOfBlock);
    else if (event.matches(QKeySequence::DeleteCompleteLine))
        RemoveTo(QTextCursor::StartOfBlock);
    else if ((isRemoval && RunAround(SelStart())) || (takesBack && SelStart() > 0 && IsProtectedAt(SelStart() - 1)))
        RemoveTo(QTextCursor::PreviousCharacter);
    else if (event.key() == Qt::Key_Delete && IsProtectedAt(SelStart()))
        RemoveTo(QTextCursor::NextCharacter);
    else
        return false;
    return true;
}

void RichTextBox::RemoveTo(QTextCursor::MoveOperation operation)
{
    QTextCursor cursor = Cursor();
    if (!cursor.hasSelection())
        cursor.movePosition(operation, QTextCursor::KeepAnchor);
    const Hold hold(*this);
    SetCursor(cursor);
    RemoveSelection();
}

void RichTextBox::Undo()
{
    StepInHistory(&QTextDocument::undo);
}

void RichTextBox::Redo()
{
    StepInHistory(&QTextDocument::redo);
}

/// The document cannot always tell the caret's place behind a step that changed text and forms, so it is taken from
/// what the step changed.
void RichTextBox::StepInHistory(void (QTextDocument::*step)())
{
    if (isReadOnly())
        return;
    int place = -1;
    const QMetaObject::Connection connection =
        connect(document(), &QTextDocument::contentsChange, this,
                [&place](int position, int, int added) { place = position + added; });
    IsTaken_ = true;
    (document()->*step)();
    IsTaken_ = false;
    disconnect(connection);
    if (place >= 0)
        SetSelStart(place);
    TakeText();
}

void RichTextBox::Cut()
{
    copy();
    Delete();
}

void RichTextBox::Delete()
{
    if (!isReadOnly())
        RemoveSelection();
}

void RichTextBox::inputMethodEvent(QInputMethodEvent* event)
{
    const bool putsIn = !event->commitString().isEmpty() || !event->preeditString().isEmpty();
    if (!putsIn && event->replacementLength() == 0)
        return QTextEdit::inputMethodEvent(event);
    const int start = SelStart() + event->replacementStart();
    bool partsRun = false;
    for (int i = qMax(start, 0); i < start + event->replacementLength(); ++i)
        partsRun = partsRun || IsProtectedAt(i);
    if (partsRun || !PrepareForInput()) {
        QGuiApplication::inputMethod()->reset();
        return event->accept();
    }
    QTextEdit::inputMethodEvent(event);
}

void RichTextBox::mousePressEvent(QMouseEvent* event)
{
    Q_EMIT MouseDown(event->button(), event->pos());
    // A run is not dragged away: what is pressed begins a new selection.
    if (event->button() == Qt::LeftButton && SelLength() > 0 && SelProtected() != false)
        SetSelLength(0);
    QTextEdit::mousePressEvent(event);
}

void RichTextBox::mouseReleaseEvent(QMouseEvent* event)
{
    QTextEdit::mouseReleaseEvent(event);
    Q_EMIT MouseUp(event->button(), event->pos());
}

void RichTextBox::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("textMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool isSelected = SelLength() > 0;
    const auto add = [&](const QString& text, QKeySequence::StandardKey key, bool isPossible) {
        QAction* action = menu->addAction(text);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setEnabled(isPossible);
        return action;
    };
    connect(add(tr("&Undo"), QKeySequence::Undo, !Locked() && document()->isUndoAvailable()), &QAction::triggered, this,
            &RichTextBox::Undo);
    connect(add(tr("&Redo"), QKeySequence::Redo, !Locked() && document()->isRedoAvailable()), &QAction::triggered, this,
            &RichTextBox::Redo);
    menu->addSeparator();
    connect(add(tr("Cu&t"), QKeySequence::Cut, !Locked() && isSelected), &QAction::triggered, this, &RichTextBox::Cut);
    connect(add(tr("&Copy"), QKeySequence::Copy, isSelected), &QAction::triggered, this, &QTextEdit::copy);
    connect(add(tr("&Paste"), QKeySequence::Paste, !Locked() && canPaste()), &QAction::triggered, this,
            &QTextEdit::paste);
    connect(add(tr("&Delete"), QKeySequence::UnknownKey, !Locked() && isSelected), &QAction::triggered, this,
            &RichTextBox::Delete);
    menu->addSeparator();
    connect(add(tr("Select &all"), QKeySequence::SelectAll, !document()->isEmpty()), &QAction::triggered, this,
            &QTextEdit::selectAll);
    const bool isAtMouse = event->reason() == QContextMenuEvent::Mouse;
    Q_EMIT MenuWanted(menu, isAtMouse ? cursorForPosition(event->pos()).position() : SelStart());
    menu->popup(event->globalPos());
    event->accept();
}

void RichTextBox::dropEvent(QDropEvent* event)
{
    // What is dragged stays where it was: a move could take a part of a run away.
    event->setDropAction(Qt::CopyAction);
    QTextEdit::dropEvent(event);
}

bool RichTextBox::canInsertFromMimeData(const QMimeData* source) const
{
    return source && source->hasText();
}

void RichTextBox::insertFromMimeData(const QMimeData* source)
{
    if (!canInsertFromMimeData(source) || isReadOnly())
        return;
    const QString text = PasteFilter_ ? PasteFilter_(source->text()) : source->text();
    const Hold hold(*this);
    if (!text.isEmpty() && PrepareForInput())
        SetSelText(text);
}

void RichTextBox::changeEvent(QEvent* event)
{
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::ParentChange)
        ApplyColours();
}
