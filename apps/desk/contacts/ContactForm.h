// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QWidget>

class QFormLayout;
class QLineEdit;
class QPlainTextEdit;

/// The boxes of one contact: its name and its five details. Knows nothing of the directory; who owns it saves.
class ContactForm : public QWidget
{
    Q_OBJECT

public:
    explicit ContactForm(QWidget* parent = nullptr);

    /// Shows a contact; what stood there goes. It counts as unchanged.
    void SetContact(const clsKVContact& contact);
    /// Puts texts into the boxes as if they had been typed.
    void Type(const clsKVContact& contact);
    /// What stands in the boxes, without blanks at the ends, under the reference of the contact on show.
    clsKVContact Contact() const;
    /// As it was shown.
    const clsKVContact& Shown() const { return Shown_; }
    /// The contact on show with what was typed; what was not touched is to the letter what it was.
    clsKVContact Edited() const;
    bool IsChanged() const;

    /// What keeps it from being saved as it stands, as a sentence; empty for nothing. The box that it is about then has
    /// the focus.
    QString TakeProblem();
    void FocusName();

Q_SIGNALS:
    /// Something was typed, or another contact came on show.
    void Changed();

private:
    QLineEdit* AddBox(QFormLayout& layout, const char* name, const QString& label, const QString& accessible);

    clsKVContact Shown_;
    clsKVContact Boxed_; ///< Shown_ as the boxes gave it back.
    QLineEdit* Name_;
    QLineEdit* Mobile_;
    QLineEdit* Telephone_;
    QLineEdit* Email_;
    QLineEdit* SecondEmail_;
    QPlainTextEdit* Other_;
};
