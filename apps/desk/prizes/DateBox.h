// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QWidget>

#include <optional>

class QLineEdit;
class QToolButton;

/// A date and time as the user writes it, with a calendar to choose the day from. Empty means no limit.
class DateBox : public QWidget
{
    Q_OBJECT

public:
    /// What a day written without a time means.
    enum class Bound
    {
        FirstMoment,
        LastMoment ///< The day's last second, so that the day belongs to it.
    };

    DateBox(const QString& name, const QString& accessibleName, Bound bound, QWidget* parent = nullptr);

    void SetDate(Date date);
    /// None for an empty box; nothing when the text is no date.
    std::optional<Date> Value() const;
    QString Text() const;
    void SetReadOnly(bool readOnly);
    QLineEdit& Box() { return *Box_; }
    /// Opens the calendar; the last of the parts that the Tab key walks.
    QToolButton& Button() { return *Button_; }

Q_SIGNALS:
    void Changed();

private:
    void ShowCalendar();
    void Complete();

    Bound Bound_;
    QLineEdit* Box_;
    QToolButton* Button_;
};
