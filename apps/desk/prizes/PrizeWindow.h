// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/PrizeSaving.h"

#include <QMainWindow>

class ContactBox;
class DateBox;
class DeskStation;
class NoticeBar;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QTabWidget;
class WeekHours;
class WinnersView;

/// The window in which one prize is made or changed. What was typed is never lost to another computer's change: the
/// user decides. A user who may not manage prizes reads only. Deletes itself on closing. The station outlives it.
class PrizeWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// prize: as it was read, or a new one.
    PrizeWindow(DeskStation& station, const cPrize& prize, QWidget* parent = nullptr);

    /// 0 for what was never stored.
    qint32 Reference() const { return Saving_.Reference(); }
    /// What stands in the window. A text that is no date counts as the date there was before.
    PrizeFields Current() const;
    bool IsChanged() const;

public Q_SLOTS:
    /// False, with everything still in the window, when nothing was stored.
    bool Save();
    /// Looks what is stored now: the winners, and whether another computer changed or deleted the prize.
    void CheckStored();

Q_SIGNALS:
    void AwardWanted(qint32 prize);
    void PrintWanted(qint32 prize);
    void WinnerWanted(qint32 winner);
    void Saved(const QString& words);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    enum class ConflictChoice
    {
        Merge,
        TakeTheirs,
        SaveAsNew,
        Cancel
    };

    void MakeActions();
    QWidget* MakeHead();
    QWidget* MakeTexts();
    QWidget* MakeTimes();
    QWidget* MakeWinners();
    void Show(const PrizeFields& fields);
    void ShowHoursInWords();
    void ShowStock();
    void SetReadOnly();
    void UpdateTitle();
    bool MayManage() const;
    QString TakeProblem();
    void LoadHotlist();
    void SaveHotlist();
    void Award();
    void Print();
    void ShowWinner();
    ConflictChoice AskAboutConflict(PrizeSaving::Outcome outcome);
    bool Resolve(PrizeSaving::Outcome outcome);
    bool TakeOutcome(PrizeSaving::Outcome outcome);

    DeskStation& Station_;
    PrizeSaving Saving_;
    bool IsReadOnly_;
    bool IsCopy_;           ///< Never stored, and with something in it from the start.
    bool WasSaved_ = false; ///< In this window: it then says why no list of what is available has the prize.
    NoticeBar* Notice_;
    QLineEdit* Title_;
    QSpinBox* Number_;
    QLabel* Stock_;
    ContactBox* Supplier_;
    QTabWidget* Tabs_;
    QPlainTextEdit* Script_;
    QPlainTextEdit* Notes_;
    QPlainTextEdit* NotesToSupplier_;
    DateBox* Start_;
    DateBox* End_;
    WeekHours* Hours_;
    QLabel* HoursInWords_;
    WinnersView* Winners_;
    QPushButton* Show_ = nullptr;
    QLabel* Note_;
};
