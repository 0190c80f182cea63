// SPDX-License-Identifier: Apache-2.0
#include "PrizeWindow.h"

#include "Words.h"
#include "common/ClockHelper.h"
#include "prizes/ContactBox.h"
#include "prizes/DateBox.h"
#include "prizes/PrizeHotlist.h"
#include "prizes/PrizeRows.h"
#include "prizes/WinnersView.h"
#include "prizes/controls/WeekHours.h"
#include "station/DeskStation.h"
#include "window/ClosingQuestion.h"
#include "window/NoticeBar.h"

#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

bool PrizeWindow::MayManage() const
{
    const clsKVUser* user = Station_.Directory().CurrentUser();
    return user && user->ManagePrizes();
}

PrizeFields PrizeWindow::Current() const
{
    PrizeFields fields = Saving_.Base();
    // A box that shows what was stored gives it back as it was, with the ends of lines that other programs write.
    const auto take = [](const QPlainTextEdit& box, QString& text) {
        if (box.document()->isModified())
            text = box.toPlainText();
    };
    if (Title_->isModified())
        fields.Title = Title_->text();
    take(*Script_, fields.Script);
    take(*Notes_, fields.Notes);
    take(*NotesToSupplier_, fields.NotesToSupplier);
    fields.SupplierReference = Supplier_->Reference();
    fields.NumberSupplied = Number_->value();
    if (Start_->Text() != fields.StartDate.GeneralDate())
        fields.StartDate = Start_->Value().value_or(fields.StartDate);
    if (End_->Text() != fields.EndDate.GeneralDate())
        fields.EndDate = End_->Value().value_or(fields.EndDate);
    fields.Hours = Hours_->Hours();
    return fields;
}

bool PrizeWindow::IsChanged() const
{
    if (IsReadOnly_)
        return false;
    const bool isNoDate = !Start_->Value() || !End_->Value();
    return isNoDate || (IsCopy_ && Reference() == 0) || !Current().NamesOfChanges(Saving_.Base()).isEmpty();
}

/// What cannot be saved as it stands, said with what to do; the box that it is about takes the focus.
QString PrizeWindow::TakeProblem()
{
    const auto at = [this](QWidget* box, int page, const QString& words) {
        if (page >= 0)
            Tabs_->setCurrentIndex(page);
        box->setFocus();
        return words;
    };
    constexpr int timesPage = 1;
    if (Title_->text().trimmed().isEmpty())
        return at(Title_, -1, tr("The prize has no title. Type one, so that presenters can find it."));
    for (DateBox* box : {Start_, End_}) {
        if (!box->Value()) {
            return at(box, timesPage,
                      tr("\u201C%1\u201D is no date. Write it like %2, or leave the box empty for no limit.")
                          .arg(box->Text(), ClockHelper::CurrentTime().Format(QStringLiteral("ddddd hh:nn"))));
        }
    }
    const Date start = Start_->Value().value_or(Date());
    const Date end = End_->Value().value_or(Date());
    if (!start.IsNone() && !end.IsNone() && end < start) {
        return at(End_, timesPage,
                  tr("The prize ends (%1) before it starts (%2), so it could never go out. Change one of the dates.")
                      .arg(PrizeRows::MomentWords(end), PrizeRows::MomentWords(start)));
    }
    return QString();
}

bool PrizeWindow::Save()
{
    if (IsReadOnly_)
        return false;
    const QString problem = TakeProblem();
    if (!problem.isEmpty()) {
        Words::Warn(problem);
        return false;
    }
    if (!MayManage()) {
        Words::Warn(tr("The prize was not saved: you have no right to manage prizes any more. Your technician can give "
                       "it to you. What you typed stays in this window."));
        return false;
    }
    const PrizeSaving::Outcome outcome = Saving_.Save(Current(), PrizeSaving::Conflict::Stop);
    if (outcome == PrizeSaving::Outcome::Changed || outcome == PrizeSaving::Outcome::Deleted)
        return Resolve(outcome);
    return TakeOutcome(outcome);
}

bool PrizeWindow::TakeOutcome(PrizeSaving::Outcome outcome)
{
    if (outcome != PrizeSaving::Outcome::Saved) {
        Words::Warn(outcome == PrizeSaving::Outcome::Failed
                        ? tr("The prize was not saved. %1\n\nNothing that you wrote is lost: this window stays open.")
                              .arg(Saving_.Words())
                        : tr("The prize was not saved, because another computer changed or deleted it in this moment. "
                             "Save it once more."));
        return false;
    }
    IsCopy_ = false;
    WasSaved_ = true;
    Show(Saving_.Base());
    CheckStored();
    const QString time = ClockHelper::CurrentTime().Format(QStringLiteral("hh:nn:ss"));
    Note_->setText(tr("Saved %1").arg(time));
    Q_EMIT Saved(tr("Saved %1.").arg(PrizeRows::Quoted(Saving_.Base().Title)));
    return true;
}

bool PrizeWindow::Resolve(PrizeSaving::Outcome outcome)
{
    switch (AskAboutConflict(outcome)) {
    case ConflictChoice::Merge:
        return TakeOutcome(Saving_.Save(Current(), PrizeSaving::Conflict::Merge));
    case ConflictChoice::SaveAsNew:
        return TakeOutcome(Saving_.Save(Current(), PrizeSaving::Conflict::SaveAsNew));
    case ConflictChoice::TakeTheirs:
        Saving_.TakeStored();
        Show(Saving_.Base());
        CheckStored();
        return true;
    case ConflictChoice::Cancel:
        break;
    }
    return false;
}

PrizeWindow::ConflictChoice PrizeWindow::AskAboutConflict(PrizeSaving::Outcome outcome)
{
    const bool isDeleted = outcome == PrizeSaving::Outcome::Deleted;
    QString who;
    try {
        who = isDeleted ? PrizeRows::WhoDid(Station_, PrizeRows::KindDeleted, Saving_.Base().Title)
                        : PrizeRows::WhoDid(Station_, PrizeRows::KindEdited, Saving_.Stored().Title);
    } catch (const dao::Error&) {
        // Without the directory the box says less.
    }
    QMessageBox box(this);
    box.setObjectName(QStringLiteral("conflictBox"));
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(windowTitle());
    if (isDeleted) {
        box.setText(tr("This prize was deleted on another computer while it was open here."));
        box.setInformativeText((who.isEmpty() ? QString() : tr("Deleted by %1.").arg(who) + u' ') +
                               tr("It can be saved as a new prize, without winners."));
    } else {
        const QStringList theirs = Saving_.Stored().NamesOfChanges(Saving_.Base());
        const QStringList mine = Current().NamesOfChanges(Saving_.Base());
        const bool meet =
            std::any_of(mine.begin(), mine.end(), [&](const QString& name) { return theirs.contains(name); });
        box.setText(tr("This prize was changed on another computer while it was open here."));
        QStringList lines;
        if (!who.isEmpty())
            lines.append(tr("Last saved by %1.").arg(who));
        lines.append(tr("Changed there: %1.").arg(theirs.join(QStringLiteral(", "))));
        lines.append(tr("Changed here: %1.").arg(mine.isEmpty() ? tr("nothing") : mine.join(QStringLiteral(", "))));
        lines.append(meet ? tr("Saving your changes loses what the other computer wrote in the same places.")
                          : tr("Saving your changes keeps both."));
        box.setInformativeText(lines.join(u'\n'));
        box.setDetailedText(
            tr("Stored now:\n%1\n\nIn this window:\n%2")
                .arg(Saving_.Stored().DifferencesInWords(Current()), Current().DifferencesInWords(Saving_.Stored())));
    }
    const QPushButton* merge = isDeleted ? nullptr : box.addButton(tr("&Save my changes"), QMessageBox::AcceptRole);
    const QPushButton* theirs =
        isDeleted ? nullptr : box.addButton(tr("&Take what is stored"), QMessageBox::DestructiveRole);
    const QPushButton* asNew = box.addButton(tr("Save as a &new prize"), QMessageBox::AcceptRole);
    QPushButton* cancel = box.addButton(tr("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (merge && box.clickedButton() == merge)
        return ConflictChoice::Merge;
    if (theirs && box.clickedButton() == theirs)
        return ConflictChoice::TakeTheirs;
    return box.clickedButton() == asNew ? ConflictChoice::SaveAsNew : ConflictChoice::Cancel;
}

void PrizeWindow::CheckStored()
{
    if (Reference() == 0 || !Station_.Database().IsOpen())
        return;
    try {
        const cPrizePtr stored = Station_.Database().GetPrize(Reference(), false);
        if (!stored) {
            Notice_->Show(IsReadOnly_ ? tr("This prize was deleted meanwhile. What you see is how it was.")
                                      : tr("This prize was deleted meanwhile. Saving it makes a new prize."));
        } else if (!PrizeFields::Of(*stored).NamesOfChanges(Saving_.Base()).isEmpty()) {
            Notice_->Show(IsReadOnly_
                              ? tr("This prize was changed meanwhile. Open it again to see how it is now.")
                              : tr("This prize was changed on another computer meanwhile. You are asked about it "
                                   "when you save."));
        } else {
            Notice_->Show(IsReadOnly_
                              ? tr("You can read this prize only: changing it needs the right to manage prizes.")
                              : (WasSaved_ ? PrizeRows::WhyInNoList(*stored) : QString()));
        }
        Winners_->Show(stored ? Reference() : 0);
        Winners_->setProperty("numberWinners", stored ? stored->NumberWinners() : 0);
        ShowStock();
    } catch (const dao::Error&) {
        // The desk's own window says that the station cannot be reached.
    }
}

void PrizeWindow::closeEvent(QCloseEvent* event)
{
    if (IsChanged()) {
        const auto choice = ClosingQuestion::Ask(*this, windowTitle(), tr("Save the changes to this prize?"));
        if (choice == ClosingQuestion::Choice::Cancel || (choice == ClosingQuestion::Choice::Save && !Save())) {
            event->ignore();
            return;
        }
        // Asked once, whoever closes it again.
        IsReadOnly_ = true;
    }
    QMainWindow::closeEvent(event);
}

void PrizeWindow::LoadHotlist()
{
    try {
        const QString text = Station_.Database().LoadAvailableHoursHotlist(this);
        if (text.isEmpty())
            return;
        if (const auto hours = PrizeHotlist::Read(text))
            Hours_->SetHours(*hours);
        else
            Words::Warn(
                tr("That hotlist does not hold the hours of a week, so nothing was changed. Save the hours that "
                   "you want under its name, or delete it."));
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
    ShowHoursInWords();
}

void PrizeWindow::SaveHotlist()
{
    try {
        if (Station_.Database().SaveAvailableHoursHotlist(PrizeHotlist::TextOf(Hours_->Hours()), this))
            Note_->setText(tr("The hours were saved as a hotlist."));
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}

/// What is awarded is what is stored, so that comes first.
void PrizeWindow::Award()
{
    if (IsChanged() || Reference() == 0) {
        Words::Warn(tr("Save the prize first (Ctrl+S), then award it."));
        return;
    }
    Q_EMIT AwardWanted(Reference());
}

/// So is what is printed.
void PrizeWindow::Print()
{
    if (IsChanged() || Reference() == 0) {
        Words::Warn(tr("Save the prize first (Ctrl+S), then print it."));
        return;
    }
    Q_EMIT PrintWanted(Reference());
}

void PrizeWindow::ShowWinner()
{
    if (Winners_->Selected() != 0)
        Q_EMIT WinnerWanted(Winners_->Selected());
}
