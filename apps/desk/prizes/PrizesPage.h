// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "prizes/cPrize.h"

#include <QTimer>
#include <QWidget>

class DeskSettings;
class DeskStation;
class NoticeBar;
class PresenterView;
class QLabel;
class QPushButton;
class QSplitter;
class QStackedWidget;
class uPrizesList;

/// The prizes beside the messages: the list, and the selected prize as the presenter needs it. It hands on what is to
/// be done. The station and the settings outlive it.
class PrizesPage : public QWidget
{
    Q_OBJECT

public:
    PrizesPage(DeskStation& station, DeskSettings& settings, QWidget* parent = nullptr);
    ~PrizesPage() override;

    uPrizesList& List() { return *List_; }
    PresenterView& Presenter() { return *Presenter_; }
    /// Sets the list's database when there is an open one, and fills it; or takes it away. Raises dao::Error.
    void Connect();
    void Disconnect();
    /// Reads the list, the prize and its winners again. Raises dao::Error.
    void Refresh();
    void Find();
    void ShowAll();
    void FocusNextPane(bool backwards);
    void SaveSizes();

    /// How often it looks whether another hour has begun.
    static constexpr int ClockMilliseconds = 10000;

public Q_SLOTS:
    /// Another hour offers other prizes.
    void CheckHour();

Q_SIGNALS:
    void NewPrize(const cPrizePtr& prize);
    void OpenPrize(qint32 prize);
    void PrintPrize(qint32 prize);
    void Award(qint32 prize);
    void OpenWinner(qint32 winner);
    /// The list is that of the station, as of now.
    void Updated();

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* MakeEmptyPage();
    void TakeUpdate();
    void TakeFailure(int errorNumber, const QString& description);
    void TakeSelection(const cPrizePtr& prize);
    void ShowEmptyWords();
    void ShowOtherPrizes();

    DeskStation& Station_;
    DeskSettings& Settings_;
    NoticeBar* Filter_;
    QSplitter* Splitter_;
    uPrizesList* List_;
    QStackedWidget* Side_;
    PresenterView* Presenter_;
    QLabel* EmptyText_ = nullptr;
    QPushButton* EmptyButton_ = nullptr;
    QTimer ClockTimer_;
    int Hour_ = -1; ///< Of universal time, for which the list was filled.
};
