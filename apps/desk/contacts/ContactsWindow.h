// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "contacts/ContactFiles.h"
#include "contacts/ContactSearch.h"
#include "platform/directory/EmbeddedDirectory.h"

#include <QMainWindow>

class ContactForm;
class ContactHistory;
class DeskStation;
class ListView;
class SavedNotice;
class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

/// The station's contacts: a list to search, and the page of the one that is selected, with its messages and prizes.
/// What was typed is not left without asking, and not lost to another computer's change. Deletes itself on closing. The
/// station outlives it.
class ContactsWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit ContactsWindow(DeskStation& station, QWidget* parent = nullptr);

    /// Puts a contact on show; false when the user stays with what is being typed, or there is no such contact.
    bool ShowContact(qint32 reference);
    /// Begins a new contact with these details filled in; false when the user stays with what is being typed.
    bool StartNew(const clsKVContact& proposal);

    ContactForm& Form() { return *Form_; }
    ContactHistory& History() { return *History_; }
    bool IsChanged() const;

    /// Rows of the list at most; who wants another one types a letter more.
    static constexpr int MostRows = 500;

public Q_SLOTS:
    /// False, with everything still in the form, when nothing was stored.
    bool Save();
    void Revert();
    void Delete();
    void Import();
    void ExportAll();
    void ExportShown();
    /// Reads the directory again; what is being typed stays.
    void Refresh();

Q_SIGNALS:
    void MessageWanted(qint32 reference);
    void PrizeWanted(qint32 reference);
    void WinnerWanted(qint32 reference);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeActions();
    QWidget* MakeListSide();
    QWidget* MakePage();
    QAction* AddAction(QMenu& menu, const char* name, const QString& text, const QKeySequence& key = {});
    void ReadContacts();
    void FillList();
    void ShowInList();
    void SelectShown();
    void TakeSelection(const QString& key);
    void Present(const clsKVContactPtr& contact);
    bool AskAboutChanges();
    void UpdateActions();
    bool IsNew() const;
    QString DeletionQuestion(const clsKVContact& contact) const;
    void Tell(const QString& words);
    void TellExport(const ContactFiles::Exported& exported);

    DeskStation& Station_;
    ContactSearch Search_;
    QLineEdit* Find_;
    ListView* List_;
    QLabel* Note_;
    SavedNotice* Saved_;
    ContactForm* Form_;
    ContactHistory* History_;
    QPushButton* SaveButton_ = nullptr;
    QPushButton* RevertButton_ = nullptr;
    QPushButton* DeleteButton_ = nullptr;
    QAction* SaveAction_ = nullptr;
    QAction* DeleteAction_ = nullptr;
    QAction* ExportAction_ = nullptr;
    clsKVContactPtr Shown_; ///< Null for nobody; reference 0 for a new one.
    bool IsSelecting_ = false;
};
