// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/FindBox.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace
{
constexpr int TypingRestMilliseconds = 5000;
}

FindBox::FindBox(QWidget* parent) : FindBox(QString(), parent) {}

FindBox::FindBox(const QString& everything, QWidget* parent) : QComboBox(parent), Everything_(everything)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);
    setMaxVisibleItems(20);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(4);
    // Leaving the box with the text of an entry in it is no choice of that entry.
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    disconnect(lineEdit(), &QLineEdit::returnPressed, this, nullptr);
    connect(this, &QComboBox::activated, this, &FindBox::Click);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] {
        SinceTyped_.start();
        Swallow();
    });
    ShowEverything();
}

/// What a paste brought in.
void FindBox::Swallow()
{
    const auto isSwallowed = [this](QChar character) { return Swallowed_.contains(character); };
    QString before = Text().left(lineEdit()->cursorPosition());
    QString behind = Text().mid(lineEdit()->cursorPosition());
    before.removeIf(isSwallowed);
    behind.removeIf(isSwallowed);
    if (before.size() + behind.size() == Text().size())
        return;
    SetText(before + behind);
    lineEdit()->setCursorPosition(static_cast<int>(before.size()));
}

QString FindBox::FindText() const
{
    const QString text = Text().trimmed();
    return text.compare(Everything_, Qt::CaseInsensitive) == 0 ? QString() : text;
}

QString FindBox::TakeText()
{
    SetText(Text().trimmed());
    const QString text = FindText();
    if (text.isEmpty())
        ShowEverything();
    else if (!History_.contains(text, Qt::CaseInsensitive))
        History_.append(text);
    return text;
}

bool FindBox::IsBeingTyped() const
{
    return hasFocus() && SinceTyped_.isValid() && SinceTyped_.elapsed() < TypingRestMilliseconds;
}

void FindBox::SetEntries(const QStringList& entries)
{
    const QString typed = Text();
    clear();
    addItems(entries);
    SetText(typed);
}

void FindBox::showPopup()
{
    Q_EMIT DropDown();
    QComboBox::showPopup();
}

void FindBox::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->text() == QLatin1String("+")) {
        event->accept();
        SinceTyped_.invalidate();
        Q_EMIT Click();
        return;
    }
    if (!event->text().isEmpty() && Swallowed_.contains(event->text())) {
        event->accept();
        return;
    }
    QComboBox::keyPressEvent(event);
}

void FindBox::focusInEvent(QFocusEvent* event)
{
    QComboBox::focusInEvent(event);
    SelectControlText(*this);
}

void FindBox::focusOutEvent(QFocusEvent* event)
{
    QComboBox::focusOutEvent(event);
    if (Text().trimmed().isEmpty())
        ShowEverything();
    Q_EMIT LostFocus();
}

void SelectControlText(FindBox& box)
{
    box.lineEdit()->selectAll();
}
