// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"

#include <QDialog>
#include <QStringList>

#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

/// A small dialog that asks for one value: typed text, an entry of a combo box, or entries of a list. GoodInputBox
/// shows it for a text; for the other kinds the caller makes one, sets a mode, fills it by SetItems and shows it. Its
/// owner deletes it. On the user interface thread.
///
/// The modes exclude each other in practice; where several are set the first one in the order below counts. All false
/// means text.
class frmGoodInputBox final : public QDialog
{
    Q_OBJECT
    Q_PROPERTY(bool ComboMode READ ComboMode WRITE SetComboMode)
    Q_PROPERTY(bool ListMode READ ListMode WRITE SetListMode)
    Q_PROPERTY(bool SortedListMode READ SortedListMode WRITE SetSortedListMode)
    Q_PROPERTY(bool MultiMode READ MultiMode WRITE SetMultiMode)
    Q_PROPERTY(bool MultiNonSelMode READ MultiNonSelMode WRITE SetMultiNonSelMode)

public:
    explicit frmGoodInputBox(QWidget* owner = nullptr);

    /// Free text with a list (comboCombo).
    bool ComboMode() const { return ComboMode_; }
    void SetComboMode(bool mode);
    /// One entry of a list (comboList).
    bool ListMode() const { return ListMode_; }
    void SetListMode(bool mode);
    /// The same, sorted (comboSortedList).
    bool SortedListMode() const { return SortedListMode_; }
    void SetSortedListMode(bool mode);
    /// Any number of entries (listMulti).
    bool MultiMode() const { return MultiMode_; }
    void SetMultiMode(bool mode);
    /// Exactly one entry of an open list (listMultiNonSel).
    bool MultiNonSelMode() const { return MultiNonSelMode_; }
    void SetMultiNonSelMode(bool mode);

    /// The entries of the control that the mode shows; none for text.
    void SetItems(const QStringList& items);
    void SetPrompt(const QString& prompt);
    /// Shown whole, however long the limit is.
    void SetText(const QString& text);
    /// The longest text as a number; 0, empty or no number for no limit. It limits typing only: a text that is longer
    /// already stays and can be shortened.
    QString TLength() const { return TLength_; }
    void SetTLength(const QString& length);
    /// Masks the text; the first character counts. Empty shows it.
    void SetPasswordChar(const QString& character);
    /// A colour as the records hold it (a whole number), or a QColor; an invalid value leaves the theme's.
    void SetBackColour(const QVariant& colour);

    /// "1" after Cancel, "0" after OK, empty before either. The close box leaves it.
    QString CancelL() const { return CancelL_; }
    /// The result: the text; for the two lists the numbers of the entries, from 1, with commas.
    QString Tag() const { return Tag_; }
    void SetTag(const QString& tag) { Tag_ = tag; }

public Q_SLOTS:
    void OK();
    void Cancel();
    /// The Escape key.
    void reject() override;

Q_SIGNALS:
    /// The dialog is no longer to be seen, for whatever reason.
    void Hidden();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    /// The close box only hides.
    void closeEvent(QCloseEvent* event) override;

private:
    class LengthLimit;

    void MakeControls();
    void LayOut();
    void SetMode(bool& mode, bool value);
    /// The control that the mode shows.
    QWidget* Input() const;
    void ShowInput();
    void Activate();
    void ApplyLimit();
    bool TakeResult();

    QLabel* lblCaption_;
    QLineEdit* Text1_;
    QComboBox* comboCombo_;
    QComboBox* comboList_;
    QComboBox* comboSortedList_;
    QListWidget* listMulti_;
    QListWidget* listMultiNonSel_;
    QPushButton* cmdOK_;
    QPushButton* cmdCancel_;
    LengthLimit* Limit_;
    bool ComboMode_ = false;
    bool ListMode_ = false;
    bool MultiMode_ = false;
    bool MultiNonSelMode_ = false;
    bool SortedListMode_ = false;
    QString CancelL_;
    QString TLength_;
    QString Tag_;
    /// The pointer is the default one while the dialog is up, also in the middle of long work.
    std::optional<DefaultPointer> Pointer_;
};
