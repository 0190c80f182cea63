// SPDX-License-Identifier: Apache-2.0
#include "ContactsWindow.h"

#include "ContactForm.h"
#include "ContactHistory.h"
#include "ContactSaving.h"
#include "Words.h"
#include "common/UserInterface.h"
#include "contacts/ContactOrder.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListView.h"
#include "station/DeskStation.h"
#include "window/ClosingQuestion.h"
#include "window/FileNames.h"
#include "window/SavedNotice.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

namespace
{
constexpr double NameTwips = 2400;
constexpr double NumberTwips = 1500; ///< At least; it takes the rest of the width.
constexpr int TellMilliseconds = 8000;

QString KeyOf(const clsKVContactPtr& contact)
{
    return contact && contact->Reference != 0 ? QString::number(contact->Reference) : QString();
}
} // namespace

ContactsWindow::ContactsWindow(DeskStation& station, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      Station_(station),
      Find_(new QLineEdit(this)),
      List_(new ListView(this)),
      Note_(new QLabel(this)),
      Saved_(new SavedNotice(this)),
      Form_(new ContactForm(this)),
      History_(new ContactHistory(station, this))
{
    setObjectName(QStringLiteral("contactsWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Contacts"));
    setWindowIcon(Icons::Get(QStringLiteral("users")));
    auto* splitter = new QSplitter(this);
    splitter->setObjectName(QStringLiteral("contactsSplitter"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(MakeListSide());
    splitter->addWidget(MakePage());
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    // Its usual letter is that of "Delete" here.
    Saved_->SetButton(tr("Open folde&r"));
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Saved_);
    layout->addWidget(splitter, 1);
    setCentralWidget(page);
    MakeActions();
    statusBar()->setSizeGripEnabled(false);
    connect(Find_, &QLineEdit::textChanged, this, &ContactsWindow::FillList);
    connect(List_, &ListView::SelectedKeyChanged, this, &ContactsWindow::TakeSelection);
    connect(Form_, &ContactForm::Changed, this, &ContactsWindow::UpdateActions);
    connect(History_, &ContactHistory::MessageWanted, this, &ContactsWindow::MessageWanted);
    connect(History_, &ContactHistory::PrizeWanted, this, &ContactsWindow::PrizeWanted);
    connect(History_, &ContactHistory::WinnerWanted, this, &ContactsWindow::WinnerWanted);
    Present(nullptr);
    Refresh();
    resize(980, 680);
    Find_->setFocus();
}

QWidget* ContactsWindow::MakeListSide()
{
    auto* side = new QWidget(this);
    Find_->setObjectName(QStringLiteral("findContact"));
    Find_->setAccessibleName(tr("Find contacts by name, number or address"));
    Find_->setPlaceholderText(tr("Name, number or address"));
    Find_->setClearButtonEnabled(true);
    Find_->installEventFilter(this);
    List_->setObjectName(QStringLiteral("contacts"));
    List_->setAccessibleName(tr("Contacts"));
    List_->AddColumn(tr("Name"), NameTwips);
    List_->AddColumn(tr("Number or address"), NumberTwips);
    List_->header()->setStretchLastSection(true);
    Note_->setObjectName(QStringLiteral("contactsNote"));
    Note_->setWordWrap(true);
    auto* label = new QLabel(tr("&Find:"), side);
    label->setBuddy(Find_);
    auto* find = new QHBoxLayout;
    find->addWidget(label);
    find->addWidget(Find_, 1);
    auto* layout = new QVBoxLayout(side);
    layout->addLayout(find);
    layout->addWidget(List_, 1);
    layout->addWidget(Note_);
    return side;
}

QWidget* ContactsWindow::MakePage()
{
    auto* top = new QWidget(this);
    auto* buttons = new QHBoxLayout;
    const auto add = [&](const char* name, const QString& text) {
        auto* button = new QPushButton(text, top);
        button->setObjectName(QLatin1String(name));
        buttons->addWidget(button);
        return button;
    };
    auto* create = add("newContact", tr("Ne&w"));
    buttons->addStretch();
    SaveButton_ = add("saveContact", tr("Sa&ve"));
    RevertButton_ = add("revertContact", tr("&Undo changes"));
    DeleteButton_ = add("deleteContact", tr("&Delete..."));
    connect(create, &QPushButton::clicked, this, [this] { StartNew({}); });
    connect(SaveButton_, &QPushButton::clicked, this, &ContactsWindow::Save);
    connect(RevertButton_, &QPushButton::clicked, this, &ContactsWindow::Revert);
    connect(DeleteButton_, &QPushButton::clicked, this, &ContactsWindow::Delete);
    auto* layout = new QVBoxLayout(top);
    layout->addWidget(Form_, 1);
    layout->addLayout(buttons);
    auto* page = new QSplitter(Qt::Vertical, this);
    page->setObjectName(QStringLiteral("contactPage"));
    page->setChildrenCollapsible(false);
    page->addWidget(top);
    page->addWidget(History_);
    page->setStretchFactor(0, 0);
    page->setStretchFactor(1, 1);
    return page;
}

QAction* ContactsWindow::AddAction(QMenu& menu, const char* name, const QString& text, const QKeySequence& key)
{
    QAction* action = menu.addAction(text);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    return action;
}

void ContactsWindow::MakeActions()
{
    QMenu& menu = *menuBar()->addMenu(tr("&Contact"));
    QAction* create = AddAction(menu, "newContactAction", tr("&New"), QKeySequence(Qt::CTRL | Qt::Key_N));
    SaveAction_ = AddAction(menu, "saveContactAction", tr("&Save"), QKeySequence(Qt::CTRL | Qt::Key_S));
    DeleteAction_ = AddAction(menu, "deleteContactAction", tr("&Delete..."));
    menu.addSeparator();
    QAction* import = AddAction(menu, "importContacts", tr("&Import..."));
    ExportAction_ = AddAction(menu, "exportContact", tr("&Export this contact..."));
    QAction* exportAll = AddAction(menu, "exportContacts", tr("Export &all contacts..."));
    menu.addSeparator();
    QAction* find = AddAction(menu, "findContacts", tr("&Find"), QKeySequence(Qt::CTRL | Qt::Key_F));
    QAction* refresh = AddAction(menu, "refreshContacts", tr("&Refresh"), QKeySequence(Qt::Key_F5));
    menu.addSeparator();
    QAction* close = AddAction(menu, "closeContacts", tr("&Close"), QKeySequence(Qt::CTRL | Qt::Key_W));
    connect(create, &QAction::triggered, this, [this] { StartNew({}); });
    connect(SaveAction_, &QAction::triggered, this, &ContactsWindow::Save);
    connect(DeleteAction_, &QAction::triggered, this, &ContactsWindow::Delete);
    connect(import, &QAction::triggered, this, &ContactsWindow::Import);
    connect(ExportAction_, &QAction::triggered, this, &ContactsWindow::ExportShown);
    connect(exportAll, &QAction::triggered, this, &ContactsWindow::ExportAll);
    connect(find, &QAction::triggered, this, [this] {
        Find_->setFocus(Qt::ShortcutFocusReason);
        Find_->selectAll();
    });
    connect(refresh, &QAction::triggered, this, &ContactsWindow::Refresh);
    connect(close, &QAction::triggered, this, &QWidget::close);
}

bool ContactsWindow::IsNew() const
{
    return Shown_ && Shown_->Reference == 0;
}

bool ContactsWindow::IsChanged() const
{
    return Shown_ && Form_->IsChanged();
}

void ContactsWindow::UpdateActions()
{
    const bool isStored = Shown_ && !IsNew();
    Form_->setEnabled(Shown_ != nullptr);
    SaveButton_->setEnabled(IsChanged());
    SaveAction_->setEnabled(IsChanged());
    RevertButton_->setEnabled(IsChanged());
    DeleteButton_->setEnabled(isStored);
    DeleteAction_->setEnabled(isStored);
    ExportAction_->setEnabled(isStored);
    setWindowModified(IsChanged());
    const QString name = Shown_ ? Form_->Contact().Name : QString();
    setWindowTitle(
        (name.isEmpty() ? IsNew() ? tr("New contact") : tr("Contacts") : tr("%1 \u2013 Contacts").arg(name)) +
        QStringLiteral("[*]"));
}

void ContactsWindow::ReadContacts()
{
    try {
        Search_ = ContactSearch(ContactOrder::ByName(Station_.Directory().Contacts()));
    } catch (const dao::Error& error) {
        Words::Warn(ContactSaving::WordsOf(error));
    }
}

void ContactsWindow::Refresh()
{
    ReadContacts();
    FillList();
    if (!Shown_ || IsNew() || IsChanged())
        return;
    try {
        Present(Station_.Directory().GetContact(Shown_->Reference));
    } catch (const dao::Error& error) {
        Words::Warn(ContactSaving::WordsOf(error));
    }
}

void ContactsWindow::FillList()
{
    QList<clsKVContactPtr> found = Search_.Find(Find_->text(), MostRows + 1);
    const bool areMore = found.size() > MostRows;
    if (areMore)
        found.removeLast();
    {
        const QScopedValueRollback<bool> selecting(IsSelecting_, true);
        List_->setUpdatesEnabled(false);
        List_->Clear();
        for (const clsKVContactPtr& contact : std::as_const(found)) {
            QString detail;
            for (const QString& candidate :
                 {contact->Mobile, contact->Telephone, contact->Email, contact->SecondEmail}) {
                if (detail.isEmpty())
                    detail = candidate;
            }
            List_->AddItem(KeyOf(contact), {contact->Name, detail});
        }
        List_->setUpdatesEnabled(true);
    }
    SelectShown();
    const QLocale locale;
    if (Search_.Count() == 0)
        Note_->setText(
            tr("There are no contacts yet. \u201CNew\u201D takes in the first one, \u201CImport...\u201D in the menu "
               "\u201CContact\u201D a file of them."));
    else if (found.isEmpty())
        Note_->setText(tr("Nobody found."));
    else if (areMore)
        Note_->setText(tr("The first %1 of %2 contacts. Type more to see others.")
                           .arg(locale.toString(MostRows), locale.toString(Search_.Count())));
    else
        Note_->setText(tr("%1 of %2").arg(locale.toString(found.size()), locale.toString(Search_.Count())));
}

/// Whoever is on show stands in the list, unless it is cut off: a contact that was looked for elsewhere need not fit
/// what stands in the box, and may have been added on another computer since the contacts were read.
void ContactsWindow::ShowInList()
{
    const QString key = KeyOf(Shown_);
    if (!List_->HasItem(key) && Search_.Find(Find_->text(), MostRows + 1).size() <= MostRows)
        Find_->clear();
    if (!List_->HasItem(key)) {
        ReadContacts();
        FillList();
    }
}

/// The selection follows what is on show, without asking anything.
void ContactsWindow::SelectShown()
{
    const QScopedValueRollback<bool> selecting(IsSelecting_, true);
    const QString key = KeyOf(Shown_);
    List_->SelectKey(List_->HasItem(key) ? key : QString());
}

void ContactsWindow::TakeSelection(const QString& key)
{
    if (IsSelecting_ || key.isEmpty() || key == KeyOf(Shown_))
        return;
    ShowContact(key.toInt());
}

bool ContactsWindow::ShowContact(qint32 reference)
{
    if (!AskAboutChanges()) {
        SelectShown();
        return false;
    }
    clsKVContactPtr contact;
    try {
        contact = Station_.Directory().GetContact(reference);
    } catch (const dao::Error& error) {
        Words::Warn(ContactSaving::WordsOf(error));
        SelectShown();
        return false;
    }
    Present(contact);
    if (!contact) {
        Tell(tr("That contact is not there any more: it was deleted on another computer."));
        Refresh();
        return false;
    }
    ShowInList();
    SelectShown();
    return true;
}

bool ContactsWindow::StartNew(const clsKVContact& proposal)
{
    if (!AskAboutChanges())
        return false;
    Present(std::make_shared<clsKVContact>());
    Form_->Type(proposal);
    SelectShown();
    Form_->FocusName();
    return true;
}

void ContactsWindow::Present(const clsKVContactPtr& contact)
{
    Shown_ = contact;
    Form_->SetContact(contact ? *contact : clsKVContact());
    History_->ShowContact(contact);
    UpdateActions();
}

/// True when what is on show may go: it is stored, or given up.
bool ContactsWindow::AskAboutChanges()
{
    if (!IsChanged())
        return true;
    const QString name = Form_->Contact().Name;
    const auto choice = ClosingQuestion::Ask(
        *this, tr("Contacts"), name.isEmpty() ? tr("Save this contact?") : tr("Save the changes to %1?").arg(name));
    if (choice == ClosingQuestion::Choice::Save)
        return Save();
    return choice == ClosingQuestion::Choice::Discard;
}

bool ContactsWindow::Save()
{
    if (!IsChanged())
        return true;
    auto stored = std::make_shared<clsKVContact>();
    QString words = tr("Saved.");
    if (IsNew()) {
        if (!ContactSaving::SaveNew(Station_.Directory(), *Form_, *stored))
            return false;
    } else {
        switch (ContactSaving::SaveChanges(Station_.Directory(), *Form_, *stored)) {
        case ContactSaving::Outcome::NotSaved:
            return false;
        case ContactSaving::Outcome::TheirsTaken:
            words = tr("What the other computer saved is on show.");
            break;
        case ContactSaving::Outcome::Saved:
            break;
        }
    }
    Present(stored);
    ReadContacts();
    FillList();
    Tell(words);
    return true;
}

void ContactsWindow::Revert()
{
    if (Shown_)
        Present(Shown_);
}

QString ContactsWindow::DeletionQuestion(const clsKVContact& contact) const
{
    const qint32 wins = Station_.Database().GetNumberWinsForContact(contact.Reference);
    const QString question = tr("Delete %1 from the contacts? The messages stay.").arg(contact.Name);
    return wins > 0 ? question + u' ' + tr("The prizes won stay, too, but no longer say who won them.") : question;
}

void ContactsWindow::Delete()
{
    if (!Shown_ || IsNew())
        return;
    const QString question = DeletionQuestion(*Shown_);
    if (!UserInterface::Confirm(question))
        return;
    try {
        Station_.Directory().DeleteContact(Shown_->Reference);
    } catch (const dao::Error& error) {
        Words::Warn(ContactSaving::WordsOf(error));
        return;
    }
    Tell(tr("%1 was deleted.").arg(Shown_->Name));
    Present(nullptr);
    ReadContacts();
    FillList();
}

void ContactsWindow::Import()
{
    const QString words = ContactFiles::Import(Station_.Directory(), this);
    if (words.isEmpty())
        return;
    Refresh();
    Tell(words);
}

void ContactsWindow::ExportAll()
{
    QList<clsKVContact> contacts;
    for (const clsKVContactPtr& contact : Search_.Contacts())
        contacts.append(*contact);
    TellExport(ContactFiles::Export(contacts, tr("Contacts.vcf")));
}

void ContactsWindow::ExportShown()
{
    if (Shown_ && !IsNew())
        TellExport(ContactFiles::Export({*Shown_}, FileNames::Cleaned(Shown_->Name + QStringLiteral(".vcf"))));
}

void ContactsWindow::TellExport(const ContactFiles::Exported& exported)
{
    if (exported.Path.isEmpty())
        return;
    Tell(exported.Words);
    Saved_->ShowFile(exported.Path);
}

void ContactsWindow::Tell(const QString& words)
{
    if (!words.isEmpty())
        statusBar()->showMessage(words, TellMilliseconds);
}

void ContactsWindow::closeEvent(QCloseEvent* event)
{
    if (!AskAboutChanges()) {
        event->ignore();
        return;
    }
    // Asked once, whoever closes it again.
    Revert();
    QMainWindow::closeEvent(event);
}

bool ContactsWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Find_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
            QCoreApplication::sendEvent(List_, event);
            return true;
        }
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && List_->ItemCount() > 0) {
            if (List_->SelectedKey().isEmpty())
                List_->SelectKey(List_->Keys().first());
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}
