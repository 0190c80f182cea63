// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QTabWidget>
#include <QTimer>

class DeskStation;
class ListView;
class QLabel;

/// What a contact and the station have to do with each other: a tab of messages and one of prizes. Only the tab on show
/// is filled, a moment after the contact came on show, so that nobody waits for it who only passes by. The station
/// outlives it.
class ContactHistory : public QTabWidget
{
    Q_OBJECT

public:
    explicit ContactHistory(DeskStation& station, QWidget* parent = nullptr);

    /// Null for nobody: both tabs are empty then. Reference 0 is one who is not saved yet: nobody's prizes.
    void ShowContact(const clsKVContactPtr& contact);
    /// Reads again what is on show.
    void Refresh();
    /// False while the tab on show waits to be filled.
    bool IsFilled() const { return !Timer_.isActive(); }

    static constexpr int WaitMilliseconds = 250;

Q_SIGNALS:
    void MessageWanted(qint32 reference);
    void PrizeWanted(qint32 reference);
    void WinnerWanted(qint32 reference);

private:
    QWidget* MakePage(ListView* list, QLabel* note);
    void Wait();
    void Fill();
    QString FillMessages();
    QString FillPrizes();
    QString WinsInWords() const;

    DeskStation& Station_;
    clsKVContactPtr Contact_;
    ListView* Messages_;
    QLabel* MessagesNote_;
    ListView* Prizes_;
    QLabel* PrizesNote_;
    bool IsFilled_[2] = {false, false}; ///< By tab.
    QTimer Timer_;
};
