// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>

/// Selects the whole text of a box.
void SelectControlText(QLineEdit& box);

/// A line of text that selects itself whole when it gains the focus, by mouse and by keyboard, so that typing replaces
/// it. Back from a menu or another window the selection is what the user left.
class TextBox : public QLineEdit
{
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

    /// Shows a stored text whole, also one longer than the limit; it can be made shorter then, not longer.
    /// characters: what the user may type.
    void SetLimitedText(const QString& text, int characters);

Q_SIGNALS:
    void LostFocus();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool IsFocusedByMouse_ = false;
};

/// A box for a whole number: of what is typed only digits and editing keys reach it. Pasted text comes as it is.
class NumberBox : public TextBox
{
    Q_OBJECT

public:
    explicit NumberBox(QWidget* parent = nullptr);

    /// The number that the text begins with, 0 when it begins with none.
    qint64 Number() const;
    void SetNumber(qint64 number);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
};

/// A text of several lines with a limit. Enter makes a new line, Tab goes on to the next control.
class TextArea : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit TextArea(QWidget* parent = nullptr);

    /// The text with a carriage return and line feed at each line's end.
    QString Text() const;
    /// Lines may end in either or both. characters: as TextBox has it; each line's end counts as two.
    void SetLimitedText(const QString& text, int characters);

Q_SIGNALS:
    void GotFocus();
    void LostFocus();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    int Length() const;
    void CutInsertion();

    int Limit_ = 0; ///< 0 for none.
};
