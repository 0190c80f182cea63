// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AddressBook.h"
#include "messages/controls/uMessageAddress.h"

#include <QWidget>

#include <memory>

class AddressActions;
class SuggestionList;
class QKeyEvent;
class QMenu;

/// A box for recipients in the compose window: addresses of the directory and of the mail that is answered stand as
/// units, anything can be typed between them, and what is typed is completed from the contacts. It grows with its text
/// to a few lines and scrolls then. Keys that the units leave aside act as in any other box.
class AddressBox : public QWidget
{
    Q_OBJECT

public:
    AddressBox(const QString& name, const QString& accessibleName, QWidget* parent);
    ~AddressBox() override;

    /// The recipients as they go out.
    QString Recipients() const;
    /// Shows these recipients in place of what stands here. What cannot be read as one stands as typed text.
    void SetRecipients(const QString& recipients, enMsgType type);
    /// What is typed before it is set is completed when it comes.
    void SetBook(std::shared_ptr<const AddressBook> book);
    bool HasBook() const { return Book_ != nullptr; }
    void SetPlaceholderText(const QString& text) { Box().setPlaceholderText(text); }
    bool IsEmpty() const { return Address_->text().trimmed().isEmpty(); }

    RichTextBox& Box() const { return *Box_; }
    uMessageAddress& Address() const { return *Address_; }

    static constexpr int MostLines = 4;
    static constexpr int MostSuggestions = 8;

Q_SIGNALS:
    void Changed();
    /// Enter was pressed.
    void Done();
    /// The user asks for the directory's entry of a recipient.
    void ContactWanted(const QString& name, const QString& address);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// One unit of the box.
    struct Recipient
    {
        int Start = 0;
        int End = 0; ///< The position behind it.
        QString Name;
        QString Address;

        bool Holds(int place) const { return place >= Start && place <= End; }
    };

    bool TakeKey(QKeyEvent& event);
    bool TakeListKey(const QKeyEvent& event);
    bool TakeEditKey(const QKeyEvent& event);
    bool TakeCommand(const QKeyEvent& event);
    bool MoveCaret(const QKeyEvent& event);
    int FragmentStart() const;
    void Suggest();
    void Accept(int row);
    void TakeRelease();
    void KeepSelection();
    Recipient RecipientAt(int place) const;
    void AddToMenu(QMenu* menu, int place);
    void ShowActions();
    void Remove(const Recipient& recipient);
    void FitHeight();

    enMsgType Type_ = emtEmail;
    std::shared_ptr<const AddressBook> Book_;
    uMessageAddress* Address_;
    RichTextBox* Box_;
    SuggestionList* List_;
    AddressActions* Actions_;
    bool IsAwaited_ = false; ///< Something was typed for which the book had not come yet.
    int SuggestedFor_ = -1;  ///< The length of the text for which the list is on show.
};
