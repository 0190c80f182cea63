// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/frmDirectoryUsers.h"

#include "common/UserInterface.h"
#include "platform/widgets/Twips.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace
{
constexpr int LongestName = 255;
constexpr double ListWidth = 3600; // twips

struct RightWords
{
    DirectoryRight Right;
    const char* Name;
    const char16_t* Words;
};

constexpr RightWords AllRights[] = {
    {DirectoryRight::CanEditMessages, "chkCanEditMessages", u"&Edit, move and delete messages"},
    {DirectoryRight::CanEditPersonalMessages, "chkCanEditPersonalMessages", u"The same for messages &personal to them"},
    {DirectoryRight::CanEditCategories, "chkCanEditCategories", u"Change the &folders of messages"},
    {DirectoryRight::ManagePrizes, "chkManagePrizes", u"Manage pri&zes and winners"},
    {DirectoryRight::ChangeSettings, "chkChangeSettings", u"Change &settings and users"},
};

/// Refusals of the directory have words for the user.
bool IsRefusal(const dao::Error& error)
{
    switch (error.Number()) {
    case dao::errInvalidUseOfNull:
    case dao::errFieldTooSmall:
    case dao::errDuplicateValue:
    case dao::errNotSupported:
        return true;
    default:
        return false;
    }
}

void Warn(const QString& words)
{
    UserInterface::Current().MessageBox(
        {words, QStringLiteral("Users"), MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
}
} // namespace

frmDirectoryUsers::frmDirectoryUsers(EmbeddedDirectory& directory, QWidget* owner)
    : QDialog(owner), Directory_(directory)
{
    setObjectName(QStringLiteral("frmDirectoryUsers"));
    setWindowTitle(QStringLiteral("Users"));
    MakeControls();
    LayOut();
    Reload();
    listUsers_->setFocus();
}

void frmDirectoryUsers::MakeControls()
{
    lblExplanation_ = new QLabel(this);
    lblExplanation_->setObjectName(QStringLiteral("lblExplanation"));
    lblExplanation_->setTextFormat(Qt::PlainText);
    lblExplanation_->setWordWrap(true);
    listUsers_ = new QListWidget(this);
    listUsers_->setObjectName(QStringLiteral("listUsers"));
    listUsers_->setAccessibleName(QStringLiteral("Users"));
    connect(listUsers_, &QListWidget::currentRowChanged, this, &frmDirectoryUsers::ShowSelected);

    grpRights_ = new QGroupBox(this);
    grpRights_->setObjectName(QStringLiteral("grpRights"));
    for (const RightWords& right : AllRights) {
        auto* box = new QCheckBox(QString::fromUtf16(right.Words), grpRights_);
        box->setObjectName(QLatin1String(right.Name));
        connect(box, &QCheckBox::clicked, this, &frmDirectoryUsers::StoreRights);
        Rights_.append({static_cast<int>(right.Right), box});
    }

    const auto makeButton = [this](const char* name, const QString& text, void (frmDirectoryUsers::*action)()) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(QLatin1String(name));
        // Enter in the list must not do what happens to be the first button.
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, action);
        return button;
    };
    cmdAdd_ = makeButton("cmdAdd", QStringLiteral("&Add..."), &frmDirectoryUsers::AddUser);
    cmdRename_ = makeButton("cmdRename", QStringLiteral("Re&name..."), &frmDirectoryUsers::RenameUser);
    cmdRemove_ = makeButton("cmdRemove", QStringLiteral("Re&move..."), &frmDirectoryUsers::RemoveUser);
    cmdClose_ = new QPushButton(QStringLiteral("Close"), this);
    cmdClose_->setObjectName(QStringLiteral("cmdClose"));
    cmdClose_->setAutoDefault(false);
    connect(cmdClose_, &QPushButton::clicked, this, &QDialog::accept);

    const auto onListKey = [this](Qt::Key key, QPushButton* button) {
        auto* shortcut = new QShortcut(key, listUsers_);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
    };
    onListKey(Qt::Key_Insert, cmdAdd_);
    onListKey(Qt::Key_F2, cmdRename_);
    onListKey(Qt::Key_Delete, cmdRemove_);
}

void frmDirectoryUsers::LayOut()
{
    auto* rights = new QVBoxLayout(grpRights_);
    for (const RightBox& right : std::as_const(Rights_))
        rights->addWidget(right.Box);
    rights->addStretch();
    auto* changes = new QHBoxLayout;
    for (QPushButton* button : {cmdAdd_, cmdRename_, cmdRemove_})
        changes->addWidget(button);
    changes->addStretch();
    changes->addWidget(cmdClose_);
    auto* middle = new QHBoxLayout;
    listUsers_->setMinimumWidth(Twips::ToPixels(*this, ListWidth));
    middle->addWidget(listUsers_, 1);
    middle->addWidget(grpRights_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lblExplanation_);
    column->addLayout(middle, 1);
    column->addLayout(changes);
    // In the order in which they are used; the list is where the keyboard begins.
    QWidget* before = listUsers_;
    for (const RightBox& right : std::as_const(Rights_)) {
        setTabOrder(before, right.Box);
        before = right.Box;
    }
    for (QPushButton* button : {cmdAdd_, cmdRename_, cmdRemove_, cmdClose_}) {
        setTabOrder(before, button);
        before = button;
    }
}

bool frmDirectoryUsers::MayChange() const
{
    const clsKVUser* const user = Directory_.CurrentUser();
    return user && user->ChangeSettings();
}

void frmDirectoryUsers::Reload()
{
    const DirectoryUser* const before = Selected();
    const qint32 wanted = SelectedReference_ != 0 ? SelectedReference_ : before ? before->Reference : 0;
    SelectedReference_ = 0;
    const int row = listUsers_->currentRow();
    try {
        Users_ = Directory_.Users();
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(error);
        return;
    }
    const clsKVUser* const signedIn = Directory_.CurrentUser();
    // One refresh at the end, rather than one for each row.
    const QSignalBlocker quiet(listUsers_);
    listUsers_->clear();
    int selected = qMin(qMax(row, 0), static_cast<int>(Users_.size()) - 1);
    for (const DirectoryUser& user : std::as_const(Users_)) {
        const bool isSignedIn = signedIn && signedIn->Reference() == user.Reference;
        listUsers_->addItem(isSignedIn ? QStringLiteral("%1 (signed in)").arg(user.Name) : user.Name);
        if (user.Reference == wanted)
            selected = listUsers_->count() - 1;
    }
    listUsers_->setCurrentRow(selected);
    ShowSelected();
}

const DirectoryUser* frmDirectoryUsers::Selected() const
{
    const int row = listUsers_->currentRow();
    return row >= 0 && row < Users_.size() ? &Users_.at(row) : nullptr;
}

void frmDirectoryUsers::ShowSelected()
{
    const DirectoryUser* const user = Selected();
    const bool mayChange = MayChange();
    const clsKVUser* const signedIn = Directory_.CurrentUser();
    lblExplanation_->setVisible(!mayChange);
    lblExplanation_->setText(
        signedIn ? QStringLiteral("%1 has no right to change settings, and so cannot change users. Somebody who has it "
                                  "can do so, or give it.")
                       .arg(signedIn->Name())
                 : QStringLiteral("Nobody is signed in. Sign in as a user who may change settings to change users."));
    // A long name must not make the dialog as wide.
    QString title =
        user ? fontMetrics().elidedText(user->Name, Qt::ElideRight, Twips::ToPixels(*this, ListWidth) / 2) : QString();
    // An ampersand in a name is no mnemonic.
    title.replace(u'&', QStringLiteral("&&"));
    grpRights_->setTitle(user ? QStringLiteral("%1 may").arg(title) : QString());
    for (const RightBox& right : std::as_const(Rights_)) {
        right.Box->setChecked(user && (user->Rights & right.Right) != 0);
        right.Box->setEnabled(mayChange && user);
    }
    cmdAdd_->setEnabled(mayChange);
    cmdRename_->setEnabled(mayChange && user);
    cmdRemove_->setEnabled(mayChange && user);
}

void frmDirectoryUsers::Change(const std::function<void()>& change)
{
    try {
        // Another computer may have taken the right since it was shown.
        if (MayChange())
            change();
    } catch (const dao::Error& error) {
        if (IsRefusal(error))
            Warn(error.Description());
        else
            UserInterface::Current().RunTimeError(error);
    }
    Reload();
}

void frmDirectoryUsers::AddUser()
{
    QString name;
    if (UserInterface::Current().InputBox({QStringLiteral("What is the new user called?"), QStringLiteral("Add User"),
                                           QString(), LongestName, QString()},
                                          name) != 0 ||
        name.trimmed().isEmpty())
        return;
    Change([&] { SelectedReference_ = Directory_.AddUser(name, 0); });
}

void frmDirectoryUsers::RenameUser()
{
    const DirectoryUser* const selected = Selected();
    if (!selected)
        return;
    const DirectoryUser user = *selected;
    QString name;
    if (UserInterface::Current().InputBox({QStringLiteral("What is \"%1\" to be called?").arg(user.Name),
                                           QStringLiteral("Rename User"), user.Name, LongestName, QString()},
                                          name) != 0 ||
        name.trimmed().isEmpty() || name == user.Name)
        return;
    Change([&] { Directory_.RenameUser(user.Reference, name); });
}

void frmDirectoryUsers::RemoveUser()
{
    const DirectoryUser* const selected = Selected();
    if (!selected)
        return;
    const DirectoryUser user = *selected;
    const MessageBoxRequest question = {
        QStringLiteral(
            "Are you sure you want to remove the user \"%1\"?\n\nThe user's preferences go as well. What the "
            "user did stays in the log.")
            .arg(user.Name),
        QStringLiteral("Remove User"), MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No};
    if (UserInterface::Current().MessageBox(question) == MessageBoxAnswer::Yes)
        Change([&] { Directory_.DeleteUser(user.Reference); });
}

void frmDirectoryUsers::StoreRights()
{
    const DirectoryUser* const user = Selected();
    if (!user)
        return;
    // Rights that a newer program may know stay as they are.
    int rights = user->Rights;
    for (const RightBox& right : std::as_const(Rights_))
        rights = right.Box->isChecked() ? rights | right.Right : rights & ~right.Right;
    const qint32 reference = user->Reference;
    Change([&] { Directory_.SetRights(reference, rights); });
}
