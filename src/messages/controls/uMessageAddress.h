// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/widgets/RichTextBox.h"

#include <QWidget>

class PropertyBag;

/// The box for To and Cc of a message that is written. Each address that the program adds is a protected run and
/// behaves as one: the caret jumps over it, Backspace and Delete take it whole, a click selects and reports it. Between
/// the runs the user types freely. An entry reads `"Name" <address>`, and "; " stands between entries.
class TOLVA_EXPORT uMessageAddress : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(qint32 BackColour READ BackColour WRITE SetBackColour)
    Q_PROPERTY(RichTextBox::BorderStyles BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(bool DisplayAddressLinks READ DisplayAddressLinks WRITE SetDisplayAddressLinks)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked)
    Q_PROPERTY(QString text READ text WRITE Settext)

public:
    explicit uMessageAddress(QWidget* parent = nullptr);
    ~uMessageAddress() override;

    /// The background, as SystemColour has colours; of the control around the box too.
    qint32 BackColour() const { return rtfAddresses_->BackColor(); }
    void SetBackColour(qint32 colour);
    RichTextBox::BorderStyles BorderStyle() const { return rtfAddresses_->BorderStyle(); }
    void SetBorderStyle(RichTextBox::BorderStyles style);
    bool DisplayAddressLinks() const { return DisplayAddressLinks_; }
    /// Colours all text that stands at this moment, and changes the mouse pointer: set it after filling the box.
    void SetDisplayAddressLinks(bool display);
    bool Enabled() const { return isEnabled(); }
    void SetEnabled(bool enabled);
    bool Locked() const { return rtfAddresses_->Locked(); }
    void SetLocked(bool locked);
    /// The plain text.
    QString text() const { return rtfAddresses_->Text(); }
    /// Takes Rich Text Format, with its protected runs, as well as plain text.
    void Settext(const QString& text);

    /// Adds an entry at the caret as a protected run, with the separators that it needs. Quotation marks go from the
    /// name, angle brackets from the address. Nothing happens when both are empty.
    void AddAddress(const QString& Name, const QString& Address);

    /// "BackColour", "Text" and "DisplayAddressLinks". The plain text is what is stored; a text that a host stored as
    /// Rich Text Format comes back with its runs.
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

    QSize sizeHint() const override;

    /// What the addresses are written in, for a host that completes them or has keys of its own.
    RichTextBox& Box() const { return *rtfAddresses_; }

Q_SIGNALS:
    void AddressClicked(const QString& Name, const QString& Email);
    void Change();
    /// A property changed by its setter; for the form that stores it.
    void PropertyChanged(const QString& Key);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class BusyMark;

    void ApplyColours();
    void TextChanged();
    void KeyDown(int& key);
    void LeftKey(int& key);
    void RightKey(int& key);
    void BackspaceKey();
    void DeleteKey();
    void MouseUp(Qt::MouseButton button);
    void SelectRun();
    void ReportClick();
    void StepTo(int position) { rtfAddresses_->SetSelStart(position); }
    int Caret() const { return rtfAddresses_->SelStart(); }
    int TextLength() const;

    RichTextBox* rtfAddresses_;
    bool DisplayAddressLinks_ = false;
};
