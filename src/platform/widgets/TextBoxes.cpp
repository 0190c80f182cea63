// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/TextBoxes.h"

#include "common/GeneralHelper.h"

#include <QKeyEvent>
#include <QRegularExpression>

#include <limits>

namespace
{
constexpr int WholeNumbers = 1;

bool IsTakenByNumbers(QChar character)
{
    return !character.isPrint() || GeneralHelper::FilterNumericKey(character.unicode(), WholeNumbers) != 0;
}
} // namespace

void SelectControlText(QLineEdit& box)
{
    box.selectAll();
}

void TextBox::SetLimitedText(const QString& text, int characters)
{
    setMaxLength(qMax(characters, static_cast<int>(text.size())));
    setText(text);
}

void TextBox::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        return;
    SelectControlText(*this);
    // The click that brings the focus puts the caret somewhere, which takes the selection away again.
    IsFocusedByMouse_ = event->reason() == Qt::MouseFocusReason;
}

void TextBox::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        Q_EMIT LostFocus();
}

void TextBox::mouseReleaseEvent(QMouseEvent* event)
{
    QLineEdit::mouseReleaseEvent(event);
    if (IsFocusedByMouse_ && !hasSelectedText())
        SelectControlText(*this);
    IsFocusedByMouse_ = false;
}

NumberBox::NumberBox(QWidget* parent) : TextBox(parent)
{
    setInputMethodHints(Qt::ImhDigitsOnly);
}

qint64 NumberBox::Number() const
{
    static const QRegularExpression leading(QStringLiteral("^\\s*([+-]?[0-9]+)"));
    const QString digits = leading.match(text()).captured(1);
    bool isHeld = false;
    const qint64 number = digits.toLongLong(&isHeld);
    if (isHeld || digits.isEmpty())
        return number;
    return digits.startsWith(u'-') ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
}

void NumberBox::SetNumber(qint64 number)
{
    setText(QString::number(number));
}

void NumberBox::keyPressEvent(QKeyEvent* event)
{
    const QString typed = event->text();
    // Commands such as pasting, and the Delete key, bear a character but type none.
    const Qt::KeyboardModifiers modifiers = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    const bool isCommand = modifiers == Qt::ControlModifier || event->key() == Qt::Key_Delete;
    if (!isCommand && !typed.isEmpty() && !IsTakenByNumbers(typed.at(0))) {
        event->accept();
        return;
    }
    TextBox::keyPressEvent(event);
}

void NumberBox::inputMethodEvent(QInputMethodEvent* event)
{
    QString digits;
    for (const QChar character : event->commitString()) {
        if (IsTakenByNumbers(character))
            digits += character;
    }
    QInputMethodEvent filtered;
    filtered.setCommitString(digits, event->replacementStart(), event->replacementLength());
    TextBox::inputMethodEvent(&filtered);
    event->accept();
}

TextArea::TextArea(QWidget* parent) : QPlainTextEdit(parent)
{
    setTabChangesFocus(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    connect(this, &QPlainTextEdit::textChanged, this, &TextArea::CutInsertion);
}

QString TextArea::Text() const
{
    return toPlainText().replace(u'\n', QStringLiteral("\r\n"));
}

int TextArea::Length() const
{
    // The document counts a line's end once, and one behind the last line.
    return document()->characterCount() - 1 + document()->blockCount() - 1;
}

void TextArea::SetLimitedText(const QString& text, int characters)
{
    Limit_ = 0;
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    setPlainText(lines);
    Limit_ = qMax(characters, Length());
}

/// What was put in last, which the caret stands behind, goes again as far as there is no room for it.
void TextArea::CutInsertion()
{
    if (Limit_ == 0)
        return;
    QTextCursor cursor = textCursor();
    while (Length() > Limit_ && !cursor.atStart()) {
        const QSignalBlocker quiet(this);
        cursor.joinPreviousEditBlock();
        cursor.deletePreviousChar();
        cursor.endEditBlock();
    }
}

void TextArea::focusInEvent(QFocusEvent* event)
{
    QPlainTextEdit::focusInEvent(event);
    Q_EMIT GotFocus();
}

void TextArea::focusOutEvent(QFocusEvent* event)
{
    QPlainTextEdit::focusOutEvent(event);
    Q_EMIT LostFocus();
}
