// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "prizes/cPrize.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

class AwardFlow;
class DeskSettings;
class DeskStation;
class NoticeBar;
class PrizeWindow;
class PrizesPage;
class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;
class QTabWidget;
class QWidget;
class WinnerWindow;

/// All that the desk's main window has to do with prizes: the page beside the messages, the windows of prizes and
/// winners, and awards. Owned by the main window, whose station and settings outlive it.
class PrizeDesk : public QObject
{
    Q_OBJECT

public:
    PrizeDesk(DeskStation& station, DeskSettings& settings, QMainWindow& window);
    ~PrizeDesk() override;

    /// The pages of the window, "Messages" with what is given and "Prizes"; the one shown last is on show.
    QWidget* MakePages(QWidget* messages);
    /// What was awarded a moment ago, with a button that takes it back.
    NoticeBar& Notice() { return *Notice_; }
    PrizesPage& Page() { return *Page_; }
    AwardFlow& Awards() { return *Awards_; }

    /// The menu "Prize", the pages in the menu "View", and the station's rules for awards.
    void MakePrizeMenu(QMenuBar& bar);
    void AddToViewMenu(QMenu& menu);
    QAction* MakeSettingsAction();
    /// The entry of a menu of messages; its signal asks for the award.
    QAction* MakeAwardToSenderAction();

    bool IsOnShow() const;
    /// Whether a prize is selected on the page.
    bool HasSelection() const;
    void ShowPage(bool prizes);
    /// The station's file is open again, or is about to be closed.
    void Connect();
    void Disconnect();
    void SaveSizes();

    QList<PrizeWindow*> PrizeWindows() const;
    QList<WinnerWindow*> WinnerWindows() const;

    /// How long an award can be undone from the notice.
    static constexpr int UndoMilliseconds = 30000;

public Q_SLOTS:
    void NewPrize(const cPrizePtr& prize);
    void OpenPrize(qint32 prize);
    void OpenWinner(qint32 winner);
    /// What is stored of it, in the print dialog. over: the window that asks; the main window without one.
    void Print(qint32 prize, QWidget* over = nullptr);
    void PrintSelected();
    void Award(qint32 prize);
    void AwardToSender(const cMessagePtr& message, QWidget* parent = nullptr);
    /// Takes back what the notice is about.
    void Undo();

Q_SIGNALS:
    /// The main window closes it with the others.
    void WindowOpened(QMainWindow* window);
    /// Another page is on show.
    void PageChanged(bool prizes);
    void AwardToSenderWanted();
    void Told(const QString& words);

private:
    template <typename Work>
    void Run(Work&& work);
    PrizeWindow* Open(const cPrize& prize);
    void TakeAward(qint32 prize, qint32 winner, const QString& words);
    void CheckWindows();
    void ChangeSettings();
    QAction* MakeAction(const char* name, const QString& text, const QKeySequence& key);

    DeskStation& Station_;
    DeskSettings& Settings_;
    QMainWindow& Window_;
    NoticeBar* Notice_;
    PrizesPage* Page_;
    AwardFlow* Awards_;
    QTabWidget* Pages_ = nullptr;
    QMenu* Menu_ = nullptr;
    QAction* AwardAction_ = nullptr;
    QTimer UndoTimer_;
    qint32 UndoWinner_ = 0;
    QString UndoWords_;
    QList<QPointer<QMainWindow>> Windows_;
};
