#include "messageslist/FindBox.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace
{
constexpr int TypingRestMilliseconds = 5000;
}

FindBox::FindBox(QWidget* parent) : QComboBox(parent)
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
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { SinceTyped_.start(); });
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
    Q_EMIT LostFocus();
}

void SelectControlText(FindBox& box)
{
    box.lineEdit()->selectAll();
}
