// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QPointer>
#include <QTabWidget>
#include <QTimer>

#include <memory>

class DeskStation;
class HistoryRows;
class ListView;
class QLabel;
class SearchService;
struct SearchResult;

/// What a contact and the station have to do with each other: a tab of messages and one of prizes. Only the tab on show
/// is filled, a moment after the contact came on show, so that nobody waits for it who only passes by. Messages that
/// the search index knows are there before, at once; what is shown in the end is what the station's own query finds.
/// The station outlives it.
class ContactHistory : public QTabWidget
{
    Q_OBJECT

public:
    explicit ContactHistory(DeskStation& station, QWidget* parent = nullptr);
    ~ContactHistory() override;

    /// The index that shows messages sooner; without one, and while it is not whole, the query alone shows them.
    void SetSearch(SearchService& search);

    /// Null for nobody: both tabs are empty then. Reference 0 is one who is not saved yet: nobody's prizes.
    void ShowContact(const clsKVContactPtr& contact);
    /// Reads again what is on show.
    void Refresh();
    /// False while the tab on show waits to be filled.
    bool IsFilled() const { return !Timer_.isActive(); }

    static constexpr int WaitMilliseconds = 250;
    /// The newest ones that the index finds, which is more than anybody sees until the query has run.
    static constexpr int MostSooner = 300;

Q_SIGNALS:
    void MessageWanted(qint32 reference);
    void PrizeWanted(qint32 reference);
    void WinnerWanted(qint32 reference);

private:
    QWidget* MakePage(ListView* list, QLabel* note);
    void Wait();
    void AskIndex();
    void TakeFound(int search, const SearchResult& result);
    void Show(const HistoryRows& rows);
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
    std::unique_ptr<HistoryRows> Shown_; ///< What the list of messages was filled with.
    QPointer<SearchService> Search_;
    int Asked_ = 0;                     ///< The search whose answer is wanted; 0 for none.
    bool IsFilled_[2] = {false, false}; ///< By tab.
    QTimer Timer_;
};
