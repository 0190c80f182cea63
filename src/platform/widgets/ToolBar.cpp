// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/ToolBar.h"

#include <QStyle>
#include <QToolButton>

ToolBar::ToolBar(QWidget* parent) : QWidget(parent) {}

void ToolBar::AddButton(const QString& key, const QIcon& icon, const QString& text)
{
    auto* button = new QToolButton(this);
    button->setObjectName(key);
    button->setAutoRaise(true);
    button->setIcon(icon);
    button->setToolTip(text);
    button->setAccessibleName(text);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::clicked, this, [this, key] { Q_EMIT ButtonClick(key); });
    Buttons_.append({key, button, button->sizeHint().width(), true, QRect()});
    LayOut();
}

void ToolBar::AddPlaceholder(const QString& key)
{
    Buttons_.append({key, nullptr, 0, true, QRect()});
    LayOut();
}

void ToolBar::SetIcon(const QString& key, const QIcon& icon)
{
    if (Button* button = Find(key); button && button->Widget)
        button->Widget->setIcon(icon);
}

int ToolBar::ButtonWidth(const QString& key) const
{
    const Button* button = Find(key);
    return button ? button->Width : 0;
}

void ToolBar::SetButtonWidth(const QString& key, int width)
{
    if (Button* button = Find(key)) {
        button->Width = qMax(0, width);
        LayOut();
    }
}

bool ToolBar::IsButtonVisible(const QString& key) const
{
    const Button* button = Find(key);
    return button && button->Visible;
}

void ToolBar::SetButtonVisible(const QString& key, bool visible)
{
    if (Button* button = Find(key)) {
        button->Visible = visible;
        LayOut();
    }
}

QRect ToolBar::ButtonRect(const QString& key) const
{
    const Button* button = Find(key);
    return button ? button->Place : QRect();
}

int ToolBar::WidthOfOthers(const QString& key) const
{
    int sum = 0;
    for (const Button& button : Buttons_) {
        if (button.Visible && button.Key.compare(key, Qt::CaseInsensitive) != 0)
            sum += button.Width;
    }
    return sum;
}

QSize ToolBar::sizeHint() const
{
    int width = 0;
    int height = 0;
    for (const Button& button : Buttons_) {
        width += button.Visible ? button.Width : 0;
        height = button.Widget ? qMax(height, button.Widget->sizeHint().height()) : height;
    }
    return {width, height};
}

void ToolBar::resizeEvent(QResizeEvent*)
{
    LayOut();
}

const ToolBar::Button* ToolBar::Find(const QString& key) const
{
    for (const Button& button : Buttons_) {
        if (button.Key.compare(key, Qt::CaseInsensitive) == 0)
            return &button;
    }
    return nullptr;
}

ToolBar::Button* ToolBar::Find(const QString& key)
{
    return const_cast<Button*>(std::as_const(*this).Find(key));
}

void ToolBar::LayOut()
{
    int left = 0;
    for (Button& button : Buttons_) {
        const QRect place(left, 0, button.Width, height());
        button.Place = button.Visible ? QStyle::visualRect(layoutDirection(), rect(), place) : QRect();
        left += button.Visible ? button.Width : 0;
        if (button.Widget) {
            button.Widget->setVisible(button.Visible);
            button.Widget->setGeometry(button.Place);
        }
    }
}
