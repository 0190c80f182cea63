// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QComboBox>
#include <QElapsedTimer>

/// The box of a find bar. Enter, and "+" as well, ask for the search. It remembers what was searched for; its user
/// fills the list when it drops down.
class FindBox : public QComboBox
{
    Q_OBJECT

public:
    explicit FindBox(QWidget* parent = nullptr);
    /// everything: what the box shows, and can be given, when nothing is searched for, such as "<All Messages>".
    explicit FindBox(const QString& everything, QWidget* parent = nullptr);

    QString Text() const { return currentText(); }
    void SetText(const QString& text) { setEditText(text); }
    /// Shows that nothing is searched for.
    void ShowEverything() { SetText(Everything_); }
    /// What is to be found; empty for everything.
    QString FindText() const;
    /// Puts the text in order in the box and gives what is to be found, empty for everything. The text is remembered.
    QString TakeText();
    /// What was searched for since the box was made: each text once, as it was typed the first time.
    const QStringList& History() const { return History_; }
    /// As it is about to drop down: the list's entries, while the typed text stays.
    void SetEntries(const QStringList& entries);
    /// Characters that cannot be typed, and are left out of what is pasted.
    void SetSwallowed(const QString& characters) { Swallowed_ = characters; }
    void showPopup() override;
    /// Somebody typed a moment ago and may go on.
    bool IsBeingTyped() const;

Q_SIGNALS:
    void DropDown();
    /// An entry was chosen, or the search was asked for.
    void Click();
    void LostFocus();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void Swallow();

    QString Everything_;
    QString Swallowed_;
    QStringList History_;
    QElapsedTimer SinceTyped_;
};

/// Selects the whole text of a box.
void SelectControlText(FindBox& box);
