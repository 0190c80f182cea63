// SPDX-License-Identifier: Apache-2.0
#include "DateBox.h"

#include "common/ClockHelper.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>

#include <cmath>

namespace
{
constexpr double LastSecond = 86399.0 / 86400;

bool IsWholeDay(Date date)
{
    return !date.IsNone() && date.DayNumber() == std::floor(date.DayNumber());
}
} // namespace

DateBox::DateBox(const QString& name, const QString& accessibleName, Bound bound, QWidget* parent)
    : QWidget(parent), Bound_(bound), Box_(new QLineEdit(this)), Button_(new QToolButton(this))
{
    Box_->setObjectName(name);
    Box_->setAccessibleName(accessibleName);
    Box_->setPlaceholderText(tr("No limit"));
    Button_->setObjectName(name + QStringLiteral("Calendar"));
    Button_->setText(QStringLiteral("\u25BE"));
    Button_->setToolTip(tr("Choose the day"));
    Button_->setAccessibleName(tr("%1: choose the day").arg(accessibleName));
    Button_->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(Box_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(Box_, 1);
    layout->addWidget(Button_);
    connect(Box_, &QLineEdit::textChanged, this, &DateBox::Changed);
    connect(Box_, &QLineEdit::editingFinished, this, &DateBox::Complete);
    connect(Button_, &QToolButton::clicked, this, &DateBox::ShowCalendar);
}

void DateBox::SetDate(Date date)
{
    Box_->setText(date.GeneralDate());
    Box_->setCursorPosition(0);
}

QString DateBox::Text() const
{
    return Box_->text().trimmed();
}

std::optional<Date> DateBox::Value() const
{
    if (Text().isEmpty())
        return Date();
    const std::optional<Date> date = Date::Parse(Text());
    // A time alone has no day.
    if (!date || date->DayNumber() < 1)
        return std::nullopt;
    return Bound_ == Bound::LastMoment && IsWholeDay(*date) ? Date(date->DayNumber() + LastSecond) : *date;
}

void DateBox::SetReadOnly(bool readOnly)
{
    Box_->setReadOnly(readOnly);
    Button_->setEnabled(!readOnly);
}

/// What is saved is what is seen.
void DateBox::Complete()
{
    const std::optional<Date> date = Value();
    if (date && !date->IsNone() && Date::Parse(Text()) != date)
        SetDate(*date);
}

void DateBox::ShowCalendar()
{
    QMenu menu(this);
    menu.setObjectName(Box_->objectName() + QStringLiteral("Menu"));
    auto* calendar = new QCalendarWidget(&menu);
    calendar->setObjectName(QStringLiteral("calendar"));
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    const Date shown = Value().value_or(Date());
    const Date before = shown.IsNone() ? ClockHelper::CurrentTime() : shown;
    calendar->setSelectedDate(before.ToDateTime(Qt::UTC).date());
    auto* action = new QWidgetAction(&menu);
    action->setDefaultWidget(calendar);
    menu.addAction(action);
    const auto take = [&](QDate day) {
        const double midnight = Date(day.year(), day.month(), day.day()).DayNumber();
        // The time that was there stays; without one the bound decides.
        const double time = shown.IsNone() ? (Bound_ == Bound::LastMoment ? LastSecond : 0.0)
                                           : shown.DayNumber() - std::floor(shown.DayNumber());
        SetDate(Date(midnight + time));
        menu.close();
    };
    connect(calendar, &QCalendarWidget::clicked, &menu, take);
    connect(calendar, &QCalendarWidget::activated, &menu, take);
    calendar->setFocus();
    menu.exec(mapToGlobal(QPoint(0, height())));
    Box_->setFocus();
}
