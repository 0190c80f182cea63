// SPDX-License-Identifier: Apache-2.0
#include "ComposeWindow.h"

#include "AddressBookReader.h"
#include "AddressBox.h"
#include "Addresses.h"
#include "BodyEdit.h"
#include "SendingDoubt.h"
#include "Words.h"
#include "common/ClockHelper.h"
#include "common/UserInterface.h"
#include "messages/TextParts.h"
#include "platform/records/Error.h"
#include "platform/widgets/Icons.h"
#include "station/DeskStation.h"
#include "window/ClosingQuestion.h"

#include <QAction>
#include <QCloseEvent>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{
constexpr int ShortestSubjectBox = 320;

QPushButton* AddButton(QMessageBox& box, const QString& text, QMessageBox::ButtonRole role)
{
    return box.addButton(text, role);
}
} // namespace

ComposeWindow::ComposeWindow(DeskStation& station, const Composition& composition, const cMessagePtr& draft,
                             QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      Station_(station),
      Store_(station, draft),
      To_(new AddressBox(QStringLiteral("to"), tr("To"), this)),
      CC_(new AddressBox(QStringLiteral("cc"), tr("Copy to"), this)),
      BCC_(new AddressBox(QStringLiteral("bcc"), tr("Blind copy to"), this)),
      Subject_(new QLineEdit(this)),
      Body_(new BodyEdit(this)),
      FileList_(new QListWidget(this)),
      Note_(new QLabel(this)),
      Length_(new QLabel(this)),
      Sides_(new QSplitter(Qt::Horizontal, this))
{
    setObjectName(QStringLiteral("composeWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    Sides_->setChildrenCollapsible(false);
    Sides_->addWidget(MakeForm());
    setCentralWidget(Sides_);
    resize(720, 560);
    MakeActions();
    Show(composition);
    Stored_ = Current();
    Begun_ = Stored_;
    UpdateTitle();
    connect(Subject_, &QLineEdit::textChanged, this, &ComposeWindow::UpdateTitle);
    connect(Body_, &BodyEdit::textChanged, this, &ComposeWindow::ShowLength);
    for (AddressBox* box : {To_, CC_, BCC_}) {
        connect(box, &AddressBox::Done, this, [this, box] { FocusAfter(box); });
        connect(box, &AddressBox::ContactWanted, this, &ComposeWindow::ContactWanted);
    }
    connect(Body_, &BodyEdit::FilesOffered, this, &ComposeWindow::AddFiles);
    KeepTimer_.setInterval(KeepMilliseconds);
    connect(&KeepTimer_, &QTimer::timeout, this, &ComposeWindow::KeepUnsent);
}

QWidget* ComposeWindow::MakeForm()
{
    Subject_->setObjectName(QStringLiteral("subject"));
    Subject_->setAccessibleName(tr("Subject"));
    Subject_->setMinimumWidth(ShortestSubjectBox);
    Body_->setObjectName(QStringLiteral("body"));
    Body_->setAccessibleName(tr("Text"));
    Body_->setTabChangesFocus(true);
    Body_->setFrameShape(QFrame::NoFrame);
    Body_->document()->setDocumentMargin(8);
    FileList_->setObjectName(QStringLiteral("files"));
    FileList_->setAccessibleName(tr("Attachments"));
    FileList_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    FileList_->setFlow(QListView::LeftToRight);
    FileList_->setWrapping(true);
    FileList_->setResizeMode(QListView::Adjust);
    FileList_->setSpacing(2);
    FileList_->setIconSize(QSize(Icons::SmallSide, Icons::SmallSide));
    FileList_->setFrameShape(QFrame::NoFrame);
    FileList_->setTextElideMode(Qt::ElideMiddle);
    Note_->setObjectName(QStringLiteral("note"));

    auto* head = new QGridLayout;
    head->setContentsMargins(8, 8, 8, 8);
    head->setVerticalSpacing(4);
    head->setHorizontalSpacing(8);
    head->setColumnStretch(1, 1);
    const int lineHeight = To_->height();
    const auto addRow = [&](int row, const QString& text, QWidget* box) {
        auto* label = new QLabel(text, this);
        label->setObjectName(box->objectName() + QStringLiteral("Label"));
        label->setBuddy(box->focusProxy() ? box->focusProxy() : box);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        // Beside the first line of a box that has grown.
        label->setFixedHeight(qMax(lineHeight, label->sizeHint().height()));
        head->addWidget(label, row, 0, Qt::AlignTop);
        head->addWidget(box, row, 1);
    };
    addRow(0, tr("&To"), To_);
    addRow(1, tr("&Cc"), CC_);
    addRow(2, tr("&Bcc"), BCC_);
    addRow(3, tr("S&ubject"), Subject_);

    auto* form = new QWidget(this);
    auto* layout = new QVBoxLayout(form);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(head);
    layout->addWidget(Body_, 1);
    layout->addWidget(FileList_);
    QWidget::setTabOrder(To_, CC_);
    QWidget::setTabOrder(CC_, BCC_);
    QWidget::setTabOrder(BCC_, Subject_);
    QWidget::setTabOrder(Subject_, Body_);
    QWidget::setTabOrder(Body_, FileList_);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(Note_, 1);
    Length_->setObjectName(QStringLiteral("textLength"));
    // It names a character of the text.
    Length_->setTextFormat(Qt::PlainText);
    Length_->setContentsMargins(6, 0, 6, 0);
    statusBar()->addPermanentWidget(Length_);
    return form;
}

void ComposeWindow::MakeActions()
{
    auto* menu = menuBar()->addMenu(tr("&Message"));
    auto* bar = addToolBar(tr("Message"));
    bar->setObjectName(QStringLiteral("composeBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize(QSize(Icons::SmallSide, Icons::SmallSide));
    const auto add = [&](const char* name, const QString& icon, const QString& text, const QString& hint,
                         const QList<QKeySequence>& keys) {
        auto* action = new QAction(Icons::Get(icon), text, this);
        action->setObjectName(QString::fromLatin1(name));
        action->setShortcuts(keys);
        const QString key =
            keys.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(keys.first().toString(QKeySequence::NativeText));
        action->setToolTip(hint + key);
        action->setStatusTip(hint);
        menu->addAction(action);
        return action;
    };
    QAction* send =
        add("send", QStringLiteral("send"), tr("&Send"), tr("Puts the message in the Outbox for the mailer"),
            {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)});
    QAction* save = add("saveDraft", QStringLiteral("draft"), tr("Save &draft"),
                        tr("Keeps the message in Draft Messages"), {QKeySequence(Qt::CTRL | Qt::Key_S)});
    menu->addSeparator();
    QAction* attach = add("attach", QStringLiteral("attach"), tr("&Attach files..."), tr("Adds files to the message"),
                          {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A)});
    Remove_ = add("removeFiles", QStringLiteral("delete"), tr("&Remove attachments"),
                  tr("Takes the selected attachments out of the message"), {});
    QAction* urgent = add("urgent", QString(), tr("&Urgent"), tr("Tells who gets the message that it is urgent"), {});
    urgent->setCheckable(true);
    menu->addSeparator();
    MakeAnswerActions(*menu);
    menu->addSeparator();
    QAction* close =
        add("closeCompose", QString(), tr("&Close"), tr("Closes this window"), {QKeySequence(Qt::CTRL | Qt::Key_W)});
    bar->addAction(send);
    bar->addAction(save);
    bar->addSeparator();
    bar->addAction(attach);

    // The key belongs to the list alone: everywhere else it deletes text.
    auto* removeKey = new QAction(this);
    removeKey->setShortcut(QKeySequence(Qt::Key_Delete));
    removeKey->setShortcutContext(Qt::WidgetShortcut);
    FileList_->addAction(removeKey);
    FileList_->addAction(Remove_);
    FileList_->setContextMenuPolicy(Qt::ActionsContextMenu);

    connect(send, &QAction::triggered, this, &ComposeWindow::Send);
    connect(save, &QAction::triggered, this, &ComposeWindow::SaveDraft);
    connect(attach, &QAction::triggered, this, &ComposeWindow::ChooseFiles);
    connect(Remove_, &QAction::triggered, this, &ComposeWindow::RemoveSelectedFiles);
    connect(removeKey, &QAction::triggered, this, &ComposeWindow::RemoveSelectedFiles);
    connect(close, &QAction::triggered, this, &QWidget::close);
    connect(urgent, &QAction::toggled, this, [this](bool on) { Base_.IsUrgent = on; });
    connect(FileList_, &QListWidget::itemSelectionChanged, this,
            [this] { Remove_->setEnabled(!FileList_->selectedItems().isEmpty()); });
}

void ComposeWindow::Show(const Composition& composition)
{
    Base_ = composition;
    Files_ = composition.Files;
    const bool isText = composition.Type == emtSMS;
    ReadContacts();
    To_->SetRecipients(composition.To, composition.Type);
    CC_->SetRecipients(composition.CC, composition.Type);
    BCC_->SetRecipients(composition.BCC, composition.Type);
    Subject_->setText(composition.Subject);
    Body_->setPlainText(composition.Body);
    To_->SetPlaceholderText(isText ? tr("Telephone number") : tr("Names or addresses, divided by commas"));
    const auto setShown = [this](QWidget* box, bool isShown) {
        box->setVisible(isShown);
        findChild<QLabel*>(box->objectName() + QStringLiteral("Label"))->setVisible(isShown);
    };
    setShown(CC_, !isText);
    setShown(BCC_, !isText && !composition.BCC.isEmpty());
    setShown(Subject_, !isText);
    findChild<QAction*>(QStringLiteral("attach"))->setEnabled(!isText);
    findChild<QAction*>(QStringLiteral("urgent"))->setEnabled(!isText);
    findChild<QAction*>(QStringLiteral("urgent"))->setChecked(composition.IsUrgent);
    Length_->setVisible(isText);
    ShowOriginal_->setEnabled(composition.Answers != 0);
    // A text message quotes nothing.
    ShowOriginal_->setChecked(isText && composition.Answers != 0);
    ShowLength();
    Subject_->setCursorPosition(0);
    ShowFiles();
    if (To_->IsEmpty())
        To_->setFocus();
    else
        Body_->setFocus();
}

/// Once for the window, and behind its back: what is typed is matched in memory.
void ComposeWindow::ReadContacts()
{
    auto* reader = new AddressBookReader(Station_.Directory(), Base_.Type, this);
    connect(reader, &AddressBookReader::Done, this, [this, reader](const std::shared_ptr<const AddressBook>& book) {
        for (AddressBox* box : {To_, CC_, BCC_})
            box->SetBook(book);
        reader->deleteLater();
    });
    connect(reader, &AddressBookReader::Failed, this, [this, reader](int errorNumber, const QString& description) {
        // Addresses can be typed all the same.
        Note_->setText(tr("The contacts cannot be read: %1").arg(Station_.Words(errorNumber, description)));
        reader->deleteLater();
    });
    reader->Start();
}

void ComposeWindow::FocusAfter(const QWidget* box)
{
    bool isBehind = false;
    for (QWidget* next : std::initializer_list<QWidget*>{To_, CC_, BCC_, Subject_, Body_}) {
        if (isBehind && next->isVisibleTo(this))
            return next->setFocus(Qt::TabFocusReason);
        isBehind = isBehind || next == box;
    }
}

/// The first box with a recipient that cannot be read; otherwise where one is missing.
void ComposeWindow::FocusProblem()
{
    for (AddressBox* box : {To_, CC_, BCC_}) {
        const bool isWrong = !box->IsEmpty() &&
                             !Addresses::WhyNotSendable(box->Recipients(), QString(), QString(), Base_.Type).isEmpty();
        if (isWrong && box->isVisibleTo(this))
            return box->setFocus();
    }
    if (To_->IsEmpty() || Base_.Type != emtSMS)
        To_->setFocus();
    else
        Body_->setFocus();
}

Composition ComposeWindow::Current() const
{
    Composition composition = Base_;
    composition.To = To_->Recipients();
    composition.CC = CC_->Recipients();
    composition.BCC = BCC_->Recipients();
    composition.Subject = Subject_->text();
    composition.Body = Body_->toPlainText();
    composition.Files = Files_;
    return composition;
}

/// How many messages the network makes of a text, and how much the last one still takes.
void ComposeWindow::ShowLength()
{
    if (Base_.Type != emtSMS)
        return;
    const TextParts parts = CountTextParts(Body_->toPlainText());
    const QLocale locale;
    const QString messages =
        parts.Parts == 1 ? tr("1 text message") : tr("%1 text messages").arg(locale.toString(parts.Parts));
    QString words =
        parts.Parts == 0
            ? tr("%1 characters fit into one text message").arg(parts.Left)
            : tr("%1 in %2, %3 left").arg(locale.toString(parts.Units), messages, locale.toString(parts.Left));
    if (parts.Is16Bit)
        words += tr("; \u201C%1\u201D makes each shorter").arg(parts.First16Bit);
    Length_->setText(words);
}

void ComposeWindow::UpdateTitle()
{
    const QString subject = Subject_->text().simplified();
    const QString kind = Base_.Type == emtSMS ? tr("New text message") : tr("New message");
    setWindowTitle(subject.isEmpty() ? kind : QStringLiteral("%1 \u2013 %2").arg(subject, tr("Message")));
}

bool ComposeWindow::Send()
{
    const QString problem = Composing::WhyNotSendable(Current());
    if (!problem.isEmpty()) {
        Words::Warn(problem);
        FocusProblem();
        return false;
    }
    if (!ConfirmDoubt() || !File(Composing::Filing::Outgoing))
        return false;
    const QString subject = Subject_->text().simplified();
    Q_EMIT Filed(subject.isEmpty() ? tr("The message is in the Outbox.") : tr("In the Outbox: %1").arg(subject));
    close();
    return true;
}

/// One question, whatever may be wrong.
bool ComposeWindow::ConfirmDoubt()
{
    const QString doubt = SendingDoubt(Current(), Begun_);
    if (doubt.isEmpty())
        return true;
    if (UserInterface::Confirm(tr("%1 Do you want to send it all the same?").arg(doubt)))
        return true;
    Body_->setFocus();
    return false;
}

bool ComposeWindow::SaveDraft()
{
    if (!File(Composing::Filing::Draft))
        return false;
    const QString time = ClockHelper::CurrentTime().Format(QStringLiteral("hh:nn:ss"));
    Note_->setText(tr("Draft saved %1").arg(time));
    Q_EMIT Filed(Note_->text());
    return true;
}

bool ComposeWindow::File(Composing::Filing filing)
{
    const Composition composition = Current();
    DraftStore::Outcome outcome = Store_.Save(composition, filing, DraftStore::Conflict::Stop);
    if (outcome == DraftStore::Outcome::Changed || outcome == DraftStore::Outcome::Deleted) {
        const DraftStore::Conflict choice = AskAboutConflict(outcome);
        if (choice == DraftStore::Conflict::Stop)
            return false;
        outcome = Store_.Save(composition, filing, choice);
    }
    if (outcome == DraftStore::Outcome::Saved) {
        Stored_ = composition;
        KeepUnsent();
        Q_EMIT Stored(Reference(), filing == Composing::Filing::Outgoing);
        return true;
    }
    Words::Warn(tr("The message was not saved. %1\n\nNothing that you wrote is lost: this window stays open.")
                    .arg(Store_.Words()));
    return false;
}

void ComposeWindow::KeepIn(UnsentText file)
{
    Unsent_.emplace(std::move(file));
    KeepTimer_.start();
}

void ComposeWindow::Recover(const Composition& text)
{
    Show(text);
    UpdateTitle();
    Note_->setText(tr("This was being written when the desk ended. It is not stored in the station yet."));
}

/// What is stored, or was given up, is not kept any more.
void ComposeWindow::KeepUnsent()
{
    if (!Unsent_)
        return;
    UnsentText::Content content{Station_.Folder(), Reference(), QByteArray(), Current()};
    if (content.Text == Stored_) {
        Kept_.reset();
        Unsent_->Forget();
        return;
    }
    if (Kept_ && Kept_->Text == content.Text && Kept_->Draft == content.Draft)
        return;
    if (content.Draft != 0)
        content.DraftDigest = UnsentText::DigestOf(Store_.LastStored());
    const FileStatus status = Unsent_->Keep(content);
    if (status.IsDone())
        Kept_ = std::move(content);
    else
        Note_->setText(tr("What you write would not survive a crash: it could not be kept: %1").arg(status.Words()));
}

DraftStore::Conflict ComposeWindow::AskAboutConflict(DraftStore::Outcome outcome)
{
    const bool isDeleted = outcome == DraftStore::Outcome::Deleted;
    QMessageBox box(this);
    box.setObjectName(QStringLiteral("conflictBox"));
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(windowTitle());
    box.setText(isDeleted ? tr("This draft was deleted on another computer while it was open here.")
                          : tr("This draft was changed on another computer while it was open here."));
    box.setInformativeText(isDeleted ? tr("It can be saved as a new message.")
                                     : tr("Saving it as a new message keeps both. Overwriting it loses what the other "
                                          "computer wrote."));
    if (Store_.Stored()) {
        const Composition stored = Composing::Continue(*Store_.Stored());
        box.setDetailedText(tr("To: %1\nSubject: %2\n\n%3").arg(stored.To, stored.Subject, stored.Body));
    }
    const QPushButton* asNew = AddButton(box, tr("Save as a &new message"), QMessageBox::AcceptRole);
    const QPushButton* overwrite = isDeleted ? nullptr : AddButton(box, tr("&Overwrite"), QMessageBox::DestructiveRole);
    QPushButton* cancel = AddButton(box, tr("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == asNew)
        return DraftStore::Conflict::SaveAsNew;
    if (overwrite && box.clickedButton() == overwrite)
        return DraftStore::Conflict::Overwrite;
    return DraftStore::Conflict::Stop;
}

void ComposeWindow::closeEvent(QCloseEvent* event)
{
    if (IsChanged()) {
        const auto choice =
            ClosingQuestion::Ask(*this, windowTitle(), tr("Keep this message as a draft?"), tr("&Save draft"));
        if (choice == ClosingQuestion::Choice::Cancel || (choice == ClosingQuestion::Choice::Save && !SaveDraft())) {
            event->ignore();
            return;
        }
        // Asked once, whoever closes it again.
        Stored_ = Current();
    }
    KeepUnsent();
    QMainWindow::closeEvent(event);
}
