// SPDX-License-Identifier: Apache-2.0
#include "PrizesPage.h"

#include "DeskSettings.h"
#include "common/ClockHelper.h"
#include "common/UserInterface.h"
#include "prizes/PresenterView.h"
#include "prizes/WinnersView.h"
#include "prizes/controls/uPrizesList.h"
#include "station/DeskStation.h"
#include "window/FocusRing.h"
#include "window/NoticeBar.h"

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace
{
constexpr float PrizesInterval = 3;
const QString PrizesSplitter = QStringLiteral("Prizes/Splitter");
const QString ScriptState = QStringLiteral("Prizes/ScriptSplitter");

int HourNow()
{
    return ClockHelper::NowUTC().ToDateTime(Qt::UTC).time().hour();
}
} // namespace

PrizesPage::PrizesPage(DeskStation& station, DeskSettings& settings, QWidget* parent)
    : QWidget(parent),
      Station_(station),
      Settings_(settings),
      Filter_(new NoticeBar(QStringLiteral("search"), tr("Sho&w all"), this)),
      Splitter_(new QSplitter(Qt::Horizontal, this)),
      List_(new uPrizesList(this)),
      Side_(new QStackedWidget(this)),
      Presenter_(new PresenterView(station, settings, this))
{
    setObjectName(QStringLiteral("prizesPage"));
    Filter_->setObjectName(QStringLiteral("prizeFilterNotice"));
    List_->setObjectName(QStringLiteral("prizesList"));
    List_->SetAutoUpdateInterval(PrizesInterval);
    Side_->addWidget(Presenter_);
    Side_->addWidget(MakeEmptyPage());
    Splitter_->setObjectName(QStringLiteral("prizesSplitter"));
    Splitter_->addWidget(List_);
    Splitter_->addWidget(Side_);
    Splitter_->setChildrenCollapsible(false);
    Splitter_->setStretchFactor(0, 2);
    Splitter_->setStretchFactor(1, 3);
    if (!Splitter_->restoreState(settings.State(PrizesSplitter)))
        Splitter_->setSizes({480, 700});
    Presenter_->RestoreSizes(settings.State(ScriptState));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Filter_);
    layout->addWidget(Splitter_, 1);

    connect(Filter_, &NoticeBar::ButtonClicked, this, &PrizesPage::ShowAll);
    connect(List_, &uPrizesList::PrizeSelected, this, &PrizesPage::TakeSelection);
    connect(List_, &uPrizesList::DisplayUpdated, this, &PrizesPage::TakeUpdate);
    connect(List_, &uPrizesList::DisplayFailed, this, &PrizesPage::TakeFailure);
    connect(List_, &uPrizesList::NewPrize, this, &PrizesPage::NewPrize);
    connect(List_, &uPrizesList::OpenPrize, this,
            [this](const cPrizePtr& prize) { Q_EMIT OpenPrize(prize->Reference()); });
    connect(List_, &uPrizesList::PrintPrize, this,
            [this](const cPrizePtr& prize) { Q_EMIT PrintPrize(prize->Reference()); });
    connect(Presenter_, &PresenterView::AwardWanted, this, &PrizesPage::Award);
    connect(Presenter_, &PresenterView::OpenWanted, this, &PrizesPage::OpenPrize);
    connect(Presenter_, &PresenterView::WinnerWanted, this, &PrizesPage::OpenWinner);
    ClockTimer_.setInterval(ClockMilliseconds);
    connect(&ClockTimer_, &QTimer::timeout, this, &PrizesPage::CheckHour);
    ClockTimer_.start();
}

PrizesPage::~PrizesPage()
{
    // The list goes before the station.
    List_->disconnect(this);
    List_->SetTolvaDatabase(nullptr);
}

QWidget* PrizesPage::MakeEmptyPage()
{
    auto* page = new QWidget(this);
    EmptyText_ = new QLabel(page);
    EmptyText_->setObjectName(QStringLiteral("noPrizesText"));
    EmptyText_->setTextFormat(Qt::PlainText);
    EmptyText_->setAlignment(Qt::AlignCenter);
    EmptyText_->setWordWrap(true);
    EmptyButton_ = new QPushButton(page);
    EmptyButton_->setObjectName(QStringLiteral("noPrizesButton"));
    connect(EmptyButton_, &QPushButton::clicked, this, &PrizesPage::ShowOtherPrizes);
    auto* layout = new QVBoxLayout(page);
    layout->addStretch(1);
    layout->addWidget(EmptyText_);
    layout->addWidget(EmptyButton_, 0, Qt::AlignHCenter);
    layout->addStretch(2);
    return page;
}

void PrizesPage::Connect()
{
    if (!Station_.Database().IsOpen() || List_->TolvaDatabase())
        return;
    const clsKVUser* user = Station_.Directory().CurrentUser();
    List_->SetDisplayNewPrize(user && user->ManagePrizes());
    List_->SetTolvaDatabase(&Station_.Database());
    TakeUpdate();
}

void PrizesPage::Disconnect()
{
    List_->SetTolvaDatabase(nullptr);
    Presenter_->Show(nullptr);
}

void PrizesPage::Refresh()
{
    List_->UpdateCategories();
    List_->UpdateDisplay();
}

void PrizesPage::Find()
{
    List_->FocusFind();
}

void PrizesPage::ShowAll()
{
    try {
        List_->ClearFind();
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(error);
    }
}

void PrizesPage::CheckHour()
{
    if (!List_->TolvaDatabase() || List_->IsFilling() || HourNow() == Hour_)
        return;
    try {
        List_->UpdateDisplay();
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(error);
    }
}

void PrizesPage::TakeUpdate()
{
    Hour_ = HourNow();
    Filter_->Show(List_->IsFiltered() ? tr("Filter is on: only prizes with \u201C%1\u201D in their title or notes")
                                            .arg(List_->FindText().simplified())
                                      : QString());
    const bool isEmpty = List_->NumberItems() == 0;
    Side_->setCurrentIndex(isEmpty ? 1 : 0);
    if (isEmpty)
        ShowEmptyWords();
    else
        Presenter_->Winners().Refresh();
    Q_EMIT Updated();
}

/// The rows of before stay, and must not pass for those of now.
void PrizesPage::TakeFailure(int errorNumber, const QString& description)
{
    Filter_->Show(tr("The prizes could not be read, so these are as they were before. %1 Press F5 in the list to try "
                     "again.")
                      .arg(Station_.Words(errorNumber, description)));
}

void PrizesPage::ShowEmptyWords()
{
    Presenter_->Show(nullptr);
    const enPrizeListCategory category = List_->Category();
    const clsKVUser* user = Station_.Directory().CurrentUser();
    const bool mayManage = user && user->ManagePrizes();
    QString text;
    QString button;
    if (List_->IsFiltered()) {
        text = tr("No prize here has \u201C%1\u201D in its title or notes.").arg(List_->FindText().simplified());
        button = tr("S&how all of them");
    } else if (category == plcAvailable) {
        text = tr("No prize may go out this hour.");
        button = tr("S&how all available prizes");
    } else if (category == plcAllAvailable) {
        text = tr("No prize is available: all are won, or not within their dates.");
        button = tr("S&how all prizes");
    } else if (category == plcAllPrizes) {
        text = mayManage ? tr("There are no prizes yet.")
                         : tr("There are no prizes yet. Users who may manage prizes make them.");
        button = mayManage ? tr("Make the &first prize") : QString();
    } else {
        text = category == plcRecentlyWonPrizes ? tr("No prize was won in the last seven days.")
                                                : tr("No prize has been won yet.");
        button = tr("S&how what may go out now");
    }
    EmptyText_->setText(text);
    EmptyButton_->setText(button);
    EmptyButton_->setVisible(!button.isEmpty());
}

void PrizesPage::ShowOtherPrizes()
{
    try {
        const enPrizeListCategory category = List_->Category();
        if (List_->IsFiltered())
            List_->ClearFind();
        else if (category == plcAvailable)
            List_->SetCategory(plcAllAvailable);
        else if (category == plcAllAvailable)
            List_->SetCategory(plcAllPrizes);
        else if (category == plcAllPrizes)
            List_->MakeNew();
        else
            List_->SetCategory(plcAvailable);
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(error);
    }
}

void PrizesPage::TakeSelection(const cPrizePtr& prize)
{
    Presenter_->Show(prize);
}

void PrizesPage::FocusNextPane(bool backwards)
{
    FocusNext(List_->FocusTargets() << &Presenter_->Script(), backwards);
}

void PrizesPage::SaveSizes()
{
    Settings_.SetState(PrizesSplitter, Splitter_->saveState());
    Settings_.SetState(ScriptState, Presenter_->Sizes());
}

/// The list holds colours of its own; those of the desktop are looked up anew.
void PrizesPage::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        List_->SetBackColour(List_->BackColour());
}
