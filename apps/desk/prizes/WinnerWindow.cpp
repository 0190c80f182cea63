// SPDX-License-Identifier: Apache-2.0
#include "WinnerWindow.h"

#include "Words.h"
#include "common/ClockHelper.h"
#include "common/UserInterface.h"
#include "platform/widgets/Icons.h"
#include "prizes/ContactBox.h"
#include "prizes/DateBox.h"
#include "prizes/PrizeAwards.h"
#include "prizes/PrizeTransaction.h"
#include "station/DeskStation.h"
#include "window/ClosingQuestion.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QCloseEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace
{
bool IsSameMoment(Date a, Date b)
{
    return a.IsNone() == b.IsNone() && qAbs(a.DayNumber() - b.DayNumber()) < 0.5 / 86400;
}

QPlainTextEdit* MakeNotesBox(QWidget* parent, const char* name, const QString& accessibleName)
{
    auto* text = new QPlainTextEdit(parent);
    text->setObjectName(QLatin1String(name));
    text->setAccessibleName(accessibleName);
    text->setTabChangesFocus(true);
    return text;
}
} // namespace

WinnerFields WinnerFields::Of(const cPrizeWinner& winner)
{
    return {winner.WinnerReference(), winner.WonDate(), winner.SentDate(),
            winner.SentByReference(), winner.Notes(),   winner.NotesToSupplier()};
}

void WinnerFields::WriteTo(cPrizeWinner& winner) const
{
    winner.SetWinnerReference(WinnerReference);
    winner.SetWonDate(WonDate);
    winner.SetSentDate(SentDate);
    winner.SetSentByReference(SentByReference);
    winner.SetNotes(Notes);
    winner.SetNotesToSupplier(NotesToSupplier);
}

bool WinnerFields::IsSame(const WinnerFields& other) const
{
    return WinnerReference == other.WinnerReference && IsSameMoment(WonDate, other.WonDate) &&
           IsSameMoment(SentDate, other.SentDate) && SentByReference == other.SentByReference && Notes == other.Notes &&
           NotesToSupplier == other.NotesToSupplier;
}

WinnerWindow::WinnerWindow(DeskStation& station, const cPrizeWinner& winner, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      Station_(station),
      Reference_(winner.Reference()),
      Base_(WinnerFields::Of(winner)),
      Notice_(new NoticeBar(QStringLiteral("warning"), QString(), this)),
      Contact_(new ContactBox(station, QStringLiteral("winner"), tr("Winner"), this)),
      Won_(new DateBox(QStringLiteral("won"), tr("Won"), DateBox::Bound::FirstMoment, this)),
      Sent_(new DateBox(QStringLiteral("sent"), tr("Sent"), DateBox::Bound::FirstMoment, this)),
      SentByLabel_(new QLabel(this)),
      Notes_(MakeNotesBox(this, "notes", tr("Notes"))),
      NotesToSupplier_(MakeNotesBox(this, "notesToSupplier", tr("Notes to the supplier"))),
      Note_(new QLabel(this))
{
    setObjectName(QStringLiteral("winnerWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    Notice_->setObjectName(QStringLiteral("storedNotice"));
    const cPrizePtr prize = station.Database().GetPrize(winner.PrizeReference(), false);
    PrizeTitle_ = prize ? prize->Title().simplified() : tr("a prize that is not there any more");
    setWindowTitle(QStringLiteral("%1 \u2013 %2").arg(PrizeTitle_, tr("Winner")));
    setCentralWidget(MakeForm());
    MakeActions();
    Note_->setObjectName(QStringLiteral("note"));
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(Note_, 1);
    if (winner.AwardedByReference() > 0)
        Note_->setText(tr("Awarded by %1").arg(PrizeRows::UserName(station, winner.AwardedByReference())));
    Show(Base_);
    IsReadOnly_ = !MayChange();
    SetReadOnly();
    connect(Sent_, &DateBox::Changed, this, &WinnerWindow::ShowSentBy);
    // Most often the window is opened to write down that the prize went off.
    Sent_->setFocus();
    resize(560, 460);
}

QWidget* WinnerWindow::MakeForm()
{
    auto* prize = new QLabel(PrizeTitle_, this);
    prize->setObjectName(QStringLiteral("prize"));
    prize->setTextFormat(Qt::PlainText);
    prize->setWordWrap(true);
    QFont font = prize->font();
    font.setBold(true);
    prize->setFont(font);
    Won_->Box().setPlaceholderText(tr("Now"));
    Sent_->Box().setPlaceholderText(tr("Not yet"));
    SentByLabel_->setObjectName(QStringLiteral("sentBy"));
    SentByLabel_->setTextFormat(Qt::PlainText);
    auto* sentNow = new QPushButton(tr("Sent no&w"), this);
    sentNow->setObjectName(QStringLiteral("sentNow"));
    connect(sentNow, &QPushButton::clicked, this, &WinnerWindow::SetSentNow);
    auto* sent = new QHBoxLayout;
    sent->addWidget(Sent_, 1);
    sent->addWidget(sentNow);
    auto* body = new QWidget(this); // its rows keep their distance, while the notice touches the edges
    auto* form = new QFormLayout(body);
    form->setContentsMargins(8, 8, 8, 8);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    const auto addRow = [&](const QString& text, QWidget* box) {
        auto* label = new QLabel(text, this);
        label->setBuddy(box);
        form->addRow(label, box);
    };
    form->addRow(tr("Prize:"), prize);
    addRow(tr("Winner:"), Contact_);
    addRow(tr("W&on:"), Won_);
    auto* sentLabel = new QLabel(tr("Sen&t:"), this);
    sentLabel->setBuddy(Sent_);
    form->addRow(sentLabel, sent);
    form->addRow(QString(), SentByLabel_);
    addRow(tr("Not&es:"), Notes_);
    addRow(tr("Notes to the supp&lier:"), NotesToSupplier_);
    setTabOrder(&Sent_->Button(), sentNow);
    setTabOrder(sentNow, Notes_);
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Notice_);
    layout->addWidget(body, 1);
    return page;
}

void WinnerWindow::MakeActions()
{
    auto* menu = menuBar()->addMenu(tr("W&inner"));
    auto* bar = addToolBar(tr("Winner"));
    bar->setObjectName(QStringLiteral("winnerBar"));
    bar->setMovable(false);
    bar->setIconSize(QSize(16, 16));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](const char* name, const QString& icon, const QString& text, const QKeySequence& key) {
        auto* action = new QAction(Icons::Get(icon), text, this);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(key);
        menu->addAction(action);
        return action;
    };
    QAction* save = add("saveWinner", QStringLiteral("save"), tr("&Save"), QKeySequence(Qt::CTRL | Qt::Key_S));
    QAction* back = add("takeBack", QStringLiteral("delete"), tr("Take &back..."), {});
    menu->addSeparator();
    QAction* close = add("closeWinner", QString(), tr("&Close"), QKeySequence(Qt::CTRL | Qt::Key_W));
    close->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::Key_Escape)});
    bar->addActions({save, back});
    connect(save, &QAction::triggered, this, &WinnerWindow::Save);
    connect(back, &QAction::triggered, this, &WinnerWindow::TakeBack);
    connect(close, &QAction::triggered, this, &QWidget::close);
}

/// Where awarding is for those who manage prizes, so is changing an award.
bool WinnerWindow::MayChange() const
{
    const clsKVUser* user = Station_.Directory().CurrentUser();
    return user && (user->ManagePrizes() || !PrizeAwards::NeedsRight(Station_));
}

void WinnerWindow::SetReadOnly()
{
    Contact_->SetReadOnly(IsReadOnly_);
    Won_->SetReadOnly(IsReadOnly_);
    Sent_->SetReadOnly(IsReadOnly_);
    Notes_->setReadOnly(IsReadOnly_);
    NotesToSupplier_->setReadOnly(IsReadOnly_);
    findChild<QPushButton*>(QStringLiteral("sentNow"))->setEnabled(!IsReadOnly_);
    findChild<QAction*>(QStringLiteral("saveWinner"))->setEnabled(!IsReadOnly_);
    findChild<QAction*>(QStringLiteral("takeBack"))->setEnabled(!IsReadOnly_);
    if (IsReadOnly_)
        Notice_->Show(
            tr("You can read this only: at this station winners are changed by users who may manage prizes."));
}

void WinnerWindow::Show(const WinnerFields& fields)
{
    Contact_->SetReference(fields.WinnerReference);
    Won_->SetDate(fields.WonDate);
    SentBy_ = fields.SentByReference;
    Sent_->SetDate(fields.SentDate);
    for (const auto& [box, text] :
         {std::pair(Notes_, fields.Notes), std::pair(NotesToSupplier_, fields.NotesToSupplier)}) {
        if (box->toPlainText() != text)
            box->setPlainText(text);
        box->document()->setModified(false);
    }
    ShowSentBy();
}

void WinnerWindow::ShowSentBy()
{
    const bool isSent = !Sent_->Text().isEmpty();
    SentByLabel_->setVisible(isSent && SentBy_ > 0);
    SentByLabel_->setText(SentBy_ > 0 ? tr("Sent by %1").arg(PrizeRows::UserName(Station_, SentBy_)) : QString());
}

WinnerFields WinnerWindow::Current() const
{
    WinnerFields fields = Base_;
    fields.WinnerReference = Contact_->Reference();
    if (Won_->Text() != fields.WonDate.GeneralDate())
        fields.WonDate = Won_->Value().value_or(fields.WonDate);
    if (Sent_->Text() != fields.SentDate.GeneralDate())
        fields.SentDate = Sent_->Value().value_or(fields.SentDate);
    fields.SentByReference = fields.SentDate.IsNone() ? 0 : SentBy_;
    if (Notes_->document()->isModified())
        fields.Notes = Notes_->toPlainText();
    if (NotesToSupplier_->document()->isModified())
        fields.NotesToSupplier = NotesToSupplier_->toPlainText();
    return fields;
}

bool WinnerWindow::IsChanged() const
{
    return !IsReadOnly_ && (!Won_->Value() || !Sent_->Value() || !Current().IsSame(Base_));
}

void WinnerWindow::SetSentNow()
{
    const clsKVUser* user = Station_.Directory().CurrentUser();
    SentBy_ = user ? user->Reference() : 0;
    Sent_->SetDate(ClockHelper::CurrentTime());
    ShowSentBy();
}

QString WinnerWindow::TakeProblem()
{
    for (DateBox* box : {Won_, Sent_}) {
        if (!box->Value()) {
            box->setFocus();
            return tr("\u201C%1\u201D is no date. Write it like %2, or leave the box empty.")
                .arg(box->Text(), ClockHelper::CurrentTime().Format(QStringLiteral("ddddd hh:nn")));
        }
    }
    const WinnerFields fields = Current();
    if (fields.WinnerReference == Base_.WinnerReference)
        return QString();
    Contact_->setFocus();
    return fields.WinnerReference == 0 ? tr("A prize that was won has a winner. Choose a contact, or take it back.")
                                       : PrizeAwards::WhyCannotWin(Station_, fields.WinnerReference);
}

WinnerWindow::Outcome WinnerWindow::Store(bool overwrite)
{
    cTolvaDatabase& database = Station_.Database();
    Outcome outcome = Outcome::Failed;
    const WinnerFields fields = Current();
    WinnerFields written;
    cPrizePtr prize;
    try {
        PrizeTransaction::Run(Station_, [&] {
            // A row that is gone would be stored as another one, and nobody would have counted it.
            const cPrizeWinnerPtr stored = database.GetPrizeWinner(Reference_);
            if (!stored) {
                outcome = database.LastErrorNumber() == 0 ? Outcome::Deleted : Outcome::Failed;
                Words_ = Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
                return false;
            }
            Stored_ = WinnerFields::Of(*stored);
            if (!overwrite && !Stored_.IsSame(Base_)) {
                outcome = Outcome::Changed;
                return false;
            }
            fields.WriteTo(*stored);
            if (!database.SavePrizeWinner(stored)) {
                Words_ = Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
                return false;
            }
            const cPrizeWinnerPtr now = database.GetPrizeWinner(Reference_);
            written = now ? WinnerFields::Of(*now) : fields;
            prize = database.GetPrize(stored->PrizeReference(), false);
            outcome = Outcome::Saved;
            return true;
        });
    } catch (const dao::Error& error) {
        Words_ = Station_.Words(error.Number(), error.Description());
        return Outcome::Failed;
    }
    if (outcome == Outcome::Saved) {
        Base_ = written;
        if (prize && database.RaiseEvents())
            Q_EMIT database.PrizeSaved(prize, true);
    }
    return outcome;
}

/// True to save over what is stored.
bool WinnerWindow::AskAboutChange()
{
    QMessageBox box(this);
    box.setObjectName(QStringLiteral("conflictBox"));
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(windowTitle());
    box.setText(tr("This winner was changed on another computer while the window was open here."));
    box.setInformativeText(tr("Saving yours loses what the other computer wrote."));
    box.setDetailedText(tr("Winner: %1\nWon: %2\nSent: %3\nNotes: %4\nNotes to the supplier: %5")
                            .arg(PrizeRows::NameOf(Station_, Stored_.WinnerReference), Stored_.WonDate.GeneralDate(),
                                 Stored_.SentDate.GeneralDate(), Stored_.Notes, Stored_.NotesToSupplier));
    const QPushButton* save = box.addButton(tr("&Save mine"), QMessageBox::AcceptRole);
    const QPushButton* theirs = box.addButton(tr("&Take what is stored"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(tr("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == theirs) {
        Base_ = Stored_;
        Show(Base_);
        CheckStored();
    }
    return box.clickedButton() == save;
}

bool WinnerWindow::Save()
{
    if (IsReadOnly_)
        return false;
    const QString problem = TakeProblem();
    if (!problem.isEmpty()) {
        Words::Warn(problem);
        return false;
    }
    Outcome outcome = Store(false);
    if (outcome == Outcome::Changed) {
        if (!AskAboutChange())
            return false;
        outcome = Store(true);
    }
    if (outcome == Outcome::Deleted) {
        Words::Warn(tr("The award was taken back on another computer meanwhile, so there is nothing to save. Award the "
                       "prize again if %1 is to have it.")
                        .arg(PrizeRows::NameOf(Station_, Base_.WinnerReference)));
        CheckStored();
        return false;
    }
    if (outcome != Outcome::Saved) {
        Words::Warn(
            tr("The winner was not saved. %1\n\nNothing that you wrote is lost: this window stays open.").arg(Words_));
        return false;
    }
    Show(Base_);
    CheckStored();
    Note_->setText(tr("Saved %1").arg(ClockHelper::CurrentTime().Format(QStringLiteral("hh:nn:ss"))));
    Q_EMIT Saved(Note_->text());
    Q_EMIT WinnersChanged();
    return true;
}

void WinnerWindow::TakeBack()
{
    const cPrizeWinnerPtr stored = Station_.Database().GetPrizeWinner(Reference_);
    if (stored && !PrizeAwards::MayTakeBack(Station_, *stored)) {
        Words::Warn(
            tr("Another user made this award. Taking it back needs the right to manage prizes; %1 can do it too.")
                .arg(PrizeRows::UserName(Station_, stored->AwardedByReference())));
        return;
    }
    const QString question = tr("Do you want to take \u201C%1\u201D back from %2? The prize can be awarded again then.")
                                 .arg(PrizeTitle_, PrizeRows::NameOf(Station_, Base_.WinnerReference));
    if (!UserInterface::Confirm(question))
        return;
    QString words;
    if (!PrizeAwards::TakeBack(Station_, Reference_, words)) {
        Words::Warn(tr("The award could not be taken back. %1").arg(words));
        return;
    }
    // What was typed about an award that is gone is gone with it.
    IsReadOnly_ = true;
    Q_EMIT WinnersChanged();
    close();
}

void WinnerWindow::CheckStored()
{
    if (!Station_.Database().IsOpen() || IsReadOnly_)
        return;
    const cPrizeWinnerPtr stored = Station_.Database().GetPrizeWinner(Reference_);
    if (!stored && Station_.Database().LastErrorNumber() != 0)
        return;
    if (!stored)
        Notice_->Show(tr("This award was taken back meanwhile."));
    else if (!WinnerFields::Of(*stored).IsSame(Base_))
        Notice_->Show(
            tr("This winner was changed on another computer meanwhile. You are asked about it when you save."));
    else
        Notice_->Show(QString());
}

void WinnerWindow::closeEvent(QCloseEvent* event)
{
    if (IsChanged()) {
        const auto choice = ClosingQuestion::Ask(*this, windowTitle(), tr("Save the changes to this winner?"));
        if (choice == ClosingQuestion::Choice::Cancel || (choice == ClosingQuestion::Choice::Save && !Save())) {
            event->ignore();
            return;
        }
        IsReadOnly_ = true;
    }
    QMainWindow::closeEvent(event);
}
