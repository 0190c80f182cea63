// SPDX-License-Identifier: Apache-2.0

// The prize window's parts, and what they show.

#include "platform/widgets/Icons.h"
#include "prizes/ContactBox.h"
#include "prizes/DateBox.h"
#include "prizes/PrizeRows.h"
#include "prizes/PrizeWindow.h"
#include "prizes/WinnersView.h"
#include "prizes/controls/WeekHours.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include <cmath>
#include <limits>

namespace
{
constexpr int TitleWidth = 320;

QPlainTextEdit* MakeText(QWidget* parent, const char* name, const QString& accessibleName)
{
    auto* text = new QPlainTextEdit(parent);
    text->setObjectName(QLatin1String(name));
    text->setAccessibleName(accessibleName);
    text->setTabChangesFocus(true);
    return text;
}

QLabel* MakeLabel(const QString& text, QWidget* buddy, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setBuddy(buddy);
    return label;
}

QPushButton* MakeButton(const char* name, const QString& text, const QString& hint, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(hint);
    return button;
}
} // namespace

PrizeWindow::PrizeWindow(DeskStation& station, const cPrize& prize, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      Station_(station),
      Saving_(station, prize),
      IsReadOnly_(false),
      IsCopy_(prize.Reference() == 0 && !prize.Title().isEmpty()),
      Notice_(new NoticeBar(QStringLiteral("warning"), QString(), this)),
      Title_(new QLineEdit(this)),
      Number_(new QSpinBox(this)),
      Stock_(new QLabel(this)),
      Supplier_(new ContactBox(station, QStringLiteral("supplier"), tr("Supplier"), this)),
      Tabs_(new QTabWidget(this)),
      Script_(MakeText(this, "script", tr("Script"))),
      Notes_(MakeText(this, "notes", tr("Notes"))),
      NotesToSupplier_(MakeText(this, "notesToSupplier", tr("Notes to the supplier"))),
      Start_(new DateBox(QStringLiteral("start"), tr("Start"), DateBox::Bound::FirstMoment, this)),
      End_(new DateBox(QStringLiteral("end"), tr("End"), DateBox::Bound::LastMoment, this)),
      Hours_(new WeekHours(this)),
      HoursInWords_(new QLabel(this)),
      Winners_(new WinnersView(station, this)),
      Note_(new QLabel(this))
{
    setObjectName(QStringLiteral("prizeWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    Notice_->setObjectName(QStringLiteral("storedNotice"));
    Tabs_->setObjectName(QStringLiteral("pages"));
    Tabs_->addTab(MakeTexts(), tr("Scr&ipt and notes"));
    Tabs_->addTab(MakeTimes(), tr("&When"));
    Tabs_->addTab(MakeWinners(), tr("Winner&s"));
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Notice_);
    layout->addWidget(MakeHead());
    auto* tabs = new QVBoxLayout;
    tabs->setContentsMargins(8, 0, 8, 8);
    tabs->addWidget(Tabs_);
    layout->addLayout(tabs, 1);
    setCentralWidget(page);
    Note_->setObjectName(QStringLiteral("note"));
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(Note_, 1);
    if (prize.Reference() != 0) {
        const QString added = PrizeRows::DayWords(prize.AddedDate());
        Note_->setText(added.isEmpty() ? QString() : tr("Added on %1").arg(added));
    }
    MakeActions();
    Show(Saving_.Base());
    IsReadOnly_ = !MayManage();
    SetReadOnly();
    CheckStored();
    connect(Title_, &QLineEdit::textChanged, this, &PrizeWindow::UpdateTitle);
    connect(Number_, &QSpinBox::valueChanged, this, &PrizeWindow::ShowStock);
    connect(Hours_, &WeekHours::HoursChanged, this, &PrizeWindow::ShowHoursInWords);
    connect(Start_, &DateBox::Changed, this, &PrizeWindow::ShowHoursInWords);
    connect(Winners_, &WinnersView::OpenWinner, this, &PrizeWindow::WinnerWanted);
    Title_->setFocus();
    resize(760, 640);
}

void PrizeWindow::MakeActions()
{
    auto* menu = menuBar()->addMenu(tr("&Prize"));
    auto* bar = addToolBar(tr("Prize"));
    bar->setObjectName(QStringLiteral("prizeBar"));
    bar->setMovable(false);
    bar->setIconSize(QSize(Icons::SmallSide, Icons::SmallSide));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](const char* name, const QString& icon, const QString& text, const QString& hint,
                         const QKeySequence& key) {
        auto* action = new QAction(Icons::Get(icon), text, this);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(key);
        const QString keyText =
            key.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(key.toString(QKeySequence::NativeText));
        action->setToolTip(hint + keyText);
        action->setStatusTip(hint);
        menu->addAction(action);
        return action;
    };
    QAction* save = add("savePrize", QStringLiteral("save"), tr("&Save"), tr("Saves the prize for all computers"),
                        QKeySequence(Qt::CTRL | Qt::Key_S));
    QAction* award = add("award", QStringLiteral("newwinner"), tr("&Award..."), tr("Chooses who wins the prize"),
                         QKeySequence(Qt::CTRL | Qt::Key_Return));
    QAction* print = add("printPrize", QStringLiteral("print"), tr("&Print..."), tr("Prints the prize as it is stored"),
                         QKeySequence(Qt::CTRL | Qt::Key_P));
    menu->addSeparator();
    QAction* close =
        add("closePrize", QString(), tr("&Close"), tr("Closes this window"), QKeySequence(Qt::CTRL | Qt::Key_W));
    bar->addAction(save);
    bar->addAction(award);
    connect(save, &QAction::triggered, this, &PrizeWindow::Save);
    connect(award, &QAction::triggered, this, &PrizeWindow::Award);
    connect(print, &QAction::triggered, this, &PrizeWindow::Print);
    connect(close, &QAction::triggered, this, &QWidget::close);
}

QWidget* PrizeWindow::MakeHead()
{
    Title_->setObjectName(QStringLiteral("title"));
    Title_->setAccessibleName(tr("Title"));
    Title_->setMaxLength(PrizeFields::LongestTitle);
    Title_->setMinimumWidth(TitleWidth);
    Number_->setObjectName(QStringLiteral("numberSupplied"));
    Number_->setAccessibleName(tr("Number supplied"));
    Number_->setRange(0, std::numeric_limits<qint32>::max());
    Stock_->setObjectName(QStringLiteral("stock"));
    Stock_->setTextFormat(Qt::PlainText);
    auto* number = new QHBoxLayout;
    number->addWidget(Number_);
    number->addWidget(Stock_, 1);
    auto* head = new QWidget(this);
    auto* form = new QFormLayout(head);
    form->setContentsMargins(8, 8, 8, 8);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->addRow(tr("&Title:"), Title_);
    form->addRow(MakeLabel(tr("N&umber supplied:"), Number_, head), number);
    form->addRow(MakeLabel(tr("Supplier:"), Supplier_, head), Supplier_);
    return head;
}

QWidget* PrizeWindow::MakeTexts()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    const auto add = [&](const QString& text, QPlainTextEdit* box, int stretch) {
        layout->addWidget(MakeLabel(text, box, page));
        layout->addWidget(box, stretch);
    };
    add(tr("Script (read on ai&r):"), Script_, 3);
    add(tr("N&otes for the presenter (not read on air):"), Notes_, 2);
    add(tr("Notes to the supp&lier:"), NotesToSupplier_, 1);
    QFont font = Script_->font();
    font.setPointSizeF(font.pointSizeF() * 1.2);
    Script_->setFont(font);
    return page;
}

QWidget* PrizeWindow::MakeTimes()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* dates = new QGridLayout;
    dates->addWidget(MakeLabel(tr("Sta&rt:"), Start_, page), 0, 0);
    dates->addWidget(Start_, 0, 1);
    dates->addWidget(MakeLabel(tr("&End:"), End_, page), 0, 2);
    dates->addWidget(End_, 0, 3);
    dates->setColumnStretch(1, 1);
    dates->setColumnStretch(3, 1);
    layout->addLayout(dates);
    Hours_->setObjectName(QStringLiteral("hours"));
    layout->addWidget(Hours_, 1);
    HoursInWords_->setObjectName(QStringLiteral("hoursInWords"));
    HoursInWords_->setTextFormat(Qt::PlainText);
    HoursInWords_->setWordWrap(true);
    layout->addWidget(HoursInWords_);
    QPushButton* load =
        MakeButton("loadHours", tr("&Load hours..."), tr("Takes hours that were saved under a name"), page);
    QPushButton* save = MakeButton("saveHours", tr("Sa&ve hours..."), tr("Saves these hours under a name"), page);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(load);
    buttons->addWidget(save);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    connect(load, &QPushButton::clicked, this, &PrizeWindow::LoadHotlist);
    connect(save, &QPushButton::clicked, this, &PrizeWindow::SaveHotlist);
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus); // what is in it takes the keys
    return scroll;
}

QWidget* PrizeWindow::MakeWinners()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(Winners_, 1);
    QPushButton* award = MakeButton("addWinner", tr("&Award..."), tr("Add a winner"), page);
    Show_ = MakeButton("showWinner", tr("&Details..."), tr("Display the details of the selected winner"), page);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(award);
    buttons->addWidget(Show_);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    Show_->setEnabled(false);
    connect(award, &QPushButton::clicked, this, &PrizeWindow::Award);
    connect(Show_, &QPushButton::clicked, this, &PrizeWindow::ShowWinner);
    connect(Winners_, &QTreeWidget::itemSelectionChanged, this,
            [this] { Show_->setEnabled(Winners_->Selected() != 0); });
    return page;
}

void PrizeWindow::Show(const PrizeFields& fields)
{
    const auto setText = [](QPlainTextEdit* box, const QString& text) {
        // The cursor stays where it was in a text that is the same.
        if (box->toPlainText() != text)
            box->setPlainText(text);
        box->document()->setModified(false);
    };
    if (Title_->text() != fields.Title) {
        Title_->setText(fields.Title);
        Title_->setCursorPosition(0);
    }
    Title_->setModified(false);
    setText(Script_, fields.Script);
    setText(Notes_, fields.Notes);
    setText(NotesToSupplier_, fields.NotesToSupplier);
    Supplier_->SetReference(fields.SupplierReference);
    Number_->setValue(fields.NumberSupplied);
    Start_->SetDate(fields.StartDate);
    End_->SetDate(fields.EndDate);
    Hours_->SetHours(fields.Hours);
    ShowHoursInWords();
    UpdateTitle();
}

void PrizeWindow::ShowHoursInWords()
{
    QStringList lines = {PrizeRows::HoursWords(Hours_->Hours()), PrizeRows::ClockWords()};
    const Date start = Start_->Value().value_or(Date());
    // The lists compare the start with the day alone.
    if (!start.IsNone() && start.DayNumber() != std::floor(start.DayNumber()))
        lines.append(tr("With a time in its start, the prize is listed from the next day on."));
    lines.removeAll(QString());
    HoursInWords_->setText(lines.join(u'\n'));
}

void PrizeWindow::ShowStock()
{
    const int winners = Winners_->property("numberWinners").toInt();
    const int left = Number_->value() - winners;
    if (Reference() == 0)
        Stock_->clear();
    else if (left < 0)
        Stock_->setText(tr("%1 awarded, more than supplied").arg(winners));
    else
        Stock_->setText(tr("%1 awarded, %2 left").arg(winners).arg(left));
}

void PrizeWindow::SetReadOnly()
{
    Title_->setReadOnly(IsReadOnly_);
    Number_->setReadOnly(IsReadOnly_);
    Number_->setButtonSymbols(IsReadOnly_ ? QAbstractSpinBox::NoButtons : QAbstractSpinBox::UpDownArrows);
    Supplier_->SetReadOnly(IsReadOnly_);
    for (QPlainTextEdit* text : {Script_, Notes_, NotesToSupplier_})
        text->setReadOnly(IsReadOnly_);
    Start_->SetReadOnly(IsReadOnly_);
    End_->SetReadOnly(IsReadOnly_);
    Hours_->SetReadOnly(IsReadOnly_);
    findChild<QAction*>(QStringLiteral("savePrize"))->setEnabled(!IsReadOnly_);
    for (const char* name : {"loadHours", "saveHours"})
        findChild<QPushButton*>(QLatin1String(name))->setEnabled(!IsReadOnly_);
}

void PrizeWindow::UpdateTitle()
{
    const QString title = Title_->text().simplified();
    setWindowTitle(title.isEmpty() ? tr("New prize") : QStringLiteral("%1 \u2013 %2").arg(title, tr("Prize")));
}
