// SPDX-License-Identifier: Apache-2.0
#include "ContactChooser.h"

#include "ContactDialog.h"
#include "contacts/ContactOrder.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListView.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
constexpr double ChoiceNameTwips = 2700;
constexpr double ChoiceNumberTwips = 2000;
constexpr int NumberLetters = 20;

bool LooksLikeNumber(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) { return character.isDigit(); }) &&
           std::none_of(text.begin(), text.end(), [](QChar character) { return character.isLetter(); });
}
} // namespace

ContactChooser::ContactChooser(EmbeddedDirectory& directory, QWidget* parent)
    : QDialog(parent),
      Directory_(directory),
      Search_(ContactOrder::ByName(directory.Contacts())),
      Box_(new QLineEdit(this)),
      List_(new ListView(this)),
      Note_(new QLabel(this)),
      Choose_(new QPushButton(tr("&Choose"), this))
{
    setObjectName(QStringLiteral("contactChooser"));
    setWindowTitle(tr("Choose a contact"));
    setWindowIcon(Icons::Get(QStringLiteral("users")));
    Box_->setObjectName(QStringLiteral("contactSearch"));
    Box_->setAccessibleName(tr("Find a contact by name, number or address"));
    Box_->setPlaceholderText(tr("Name, number or address"));
    Box_->setClearButtonEnabled(true);
    Box_->installEventFilter(this);
    List_->setObjectName(QStringLiteral("contactList"));
    List_->setAccessibleName(tr("Contacts"));
    List_->AddColumn(tr("Name"), ChoiceNameTwips);
    List_->AddColumn(tr("Mobile"), ChoiceNumberTwips);
    List_->AddColumn(tr("E-mail"), ChoiceNameTwips);
    List_->header()->setStretchLastSection(true);
    // A number is seen whole in large type, too.
    List_->setColumnWidth(1, qMax(List_->columnWidth(1), List_->fontMetrics().averageCharWidth() * NumberLetters));
    Note_->setObjectName(QStringLiteral("contactNote"));
    Note_->setWordWrap(true);

    auto* label = new QLabel(tr("&Find:"), this);
    label->setBuddy(Box_);
    auto* create = new QPushButton(tr("&New contact..."), this);
    create->setObjectName(QStringLiteral("newContact"));
    create->setAutoDefault(false);
    Choose_->setObjectName(QStringLiteral("chooseContact"));
    Choose_->setDefault(true);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(create, QDialogButtonBox::ActionRole);
    buttons->addButton(Choose_, QDialogButtonBox::AcceptRole);
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("cancel"));

    auto* find = new QHBoxLayout;
    find->addWidget(label);
    find->addWidget(Box_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(find);
    layout->addWidget(List_, 1);
    layout->addWidget(Note_);
    layout->addWidget(buttons);
    setTabOrder(Box_, List_);
    setTabOrder(List_, create);

    connect(Box_, &QLineEdit::textChanged, this, &ContactChooser::Fill);
    connect(List_, &ListView::SelectedKeyChanged, this, [this] { Choose_->setEnabled(Selected() != nullptr); });
    connect(List_, &ListView::ItemActivated, this, &ContactChooser::accept);
    connect(create, &QPushButton::clicked, this, &ContactChooser::MakeNew);
    connect(buttons, &QDialogButtonBox::accepted, this, &ContactChooser::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Fill();
    resize(560, 400);
}

void ContactChooser::SetSearchText(const QString& text)
{
    Box_->setText(text.trimmed());
    Box_->selectAll();
}

void ContactChooser::SetAction(const QString& text)
{
    Choose_->setText(text);
}

void ContactChooser::SetProposal(const clsKVContact& contact)
{
    Proposal_ = contact;
}

void ContactChooser::Fill()
{
    // One more than is shown tells that there are more.
    Found_ = Search_.Find(Box_->text(), MostRows + 1);
    const bool areMore = Found_.size() > MostRows;
    if (areMore)
        Found_.removeLast();
    List_->Clear();
    for (const clsKVContactPtr& contact : std::as_const(Found_)) {
        const QString& number = contact->Mobile.isEmpty() ? contact->Telephone : contact->Mobile;
        const QString& address = contact->Email.isEmpty() ? contact->SecondEmail : contact->Email;
        List_->AddItem(QString::number(contact->Reference), {contact->Name, number, address});
    }
    if (!Found_.isEmpty())
        List_->SelectKey(QString::number(Found_.first()->Reference));
    if (Search_.Count() == 0)
        Note_->setText(tr("There are no contacts yet. \"New contact\" takes in the first one."));
    else if (Found_.isEmpty())
        Note_->setText(tr("Nobody found. \"New contact\" takes in what you typed."));
    else if (areMore)
        Note_->setText(tr("The first %1 of %2 contacts. Type more of the name, number or address to see others.")
                           .arg(QLocale().toString(MostRows), QLocale().toString(Search_.Count())));
    else
        Note_->clear();
    Choose_->setEnabled(Selected() != nullptr);
}

clsKVContactPtr ContactChooser::Selected() const
{
    const qint32 reference = List_->SelectedKey().toInt();
    const auto found = std::find_if(Found_.begin(), Found_.end(), [reference](const clsKVContactPtr& contact) {
        return contact->Reference == reference;
    });
    return reference == 0 || found == Found_.end() ? nullptr : *found;
}

void ContactChooser::MakeNew()
{
    clsKVContact proposal = Proposal_;
    const QString typed = Box_->text().trimmed();
    if (proposal.Mobile.isEmpty() && LooksLikeNumber(typed))
        proposal.Mobile = typed;
    else if (proposal.Email.isEmpty() && typed.contains(u'@'))
        proposal.Email = typed;
    else if (proposal.Name.isEmpty() && !LooksLikeNumber(typed) && !typed.contains(u'@'))
        proposal.Name = typed;
    ContactDialog dialog(Directory_, proposal, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    Contact_ = dialog.Contact();
    QDialog::accept();
}

void ContactChooser::accept()
{
    Contact_ = Selected();
    if (Contact_)
        QDialog::accept();
}

bool ContactChooser::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Box_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
            QCoreApplication::sendEvent(List_, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}
