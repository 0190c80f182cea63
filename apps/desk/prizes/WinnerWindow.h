// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/cPrizeWinner.h"

#include <QMainWindow>

class ContactBox;
class DateBox;
class DeskStation;
class NoticeBar;
class QLabel;
class QPlainTextEdit;

/// What can be said of a winner, as the window edits it.
struct WinnerFields
{
    qint32 WinnerReference = 0;
    Date WonDate;
    Date SentDate;
    qint32 SentByReference = 0;
    QString Notes;
    QString NotesToSupplier;

    static WinnerFields Of(const cPrizeWinner& winner);
    void WriteTo(cPrizeWinner& winner) const;
    bool IsSame(const WinnerFields& other) const;
};

/// One winner of a prize: who, when, whether the prize was sent, and notes. Deletes itself on closing. The station
/// outlives it.
class WinnerWindow : public QMainWindow
{
    Q_OBJECT

public:
    WinnerWindow(DeskStation& station, const cPrizeWinner& winner, QWidget* parent = nullptr);

    qint32 Reference() const { return Reference_; }
    WinnerFields Current() const;
    bool IsChanged() const;

public Q_SLOTS:
    /// False, with everything still in the window, when nothing was stored.
    bool Save();
    /// The prize was sent out now, by the user who is signed in. It counts when it is saved.
    void SetSentNow();
    /// Asks, and takes the prize back from this winner.
    void TakeBack();
    /// Looks whether the winner is still stored as it was.
    void CheckStored();

Q_SIGNALS:
    void WinnersChanged();
    void Saved(const QString& words);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    enum class Outcome
    {
        Saved,
        Failed,
        Changed,
        Deleted
    };

    void MakeActions();
    QWidget* MakeForm();
    void Show(const WinnerFields& fields);
    void ShowSentBy();
    void SetReadOnly();
    bool MayChange() const;
    QString TakeProblem();
    Outcome Store(bool overwrite);
    bool AskAboutChange();

    DeskStation& Station_;
    qint32 Reference_;
    QString PrizeTitle_;
    WinnerFields Base_; ///< As it was read or written last.
    WinnerFields Stored_;
    qint32 SentBy_ = 0;
    QString Words_;
    bool IsReadOnly_ = false;
    NoticeBar* Notice_;
    ContactBox* Contact_;
    DateBox* Won_;
    DateBox* Sent_;
    QLabel* SentByLabel_;
    QPlainTextEdit* Notes_;
    QPlainTextEdit* NotesToSupplier_;
    QLabel* Note_;
};
