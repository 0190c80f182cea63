// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/onair/RunningOrder.h"

#include <QMainWindow>
#include <QSet>
#include <QTimer>

class DeskSettings;
class DeskStation;
class NoticeBar;
class QAction;
class QLabel;
class QListWidget;
class QSplitter;
class Speller;
class SpellingEdit;
class SpellingTools;
struct PrintJob;

/// The running order as a presenter reads it: one entry in large type, by keys that are found in the dark, beside the
/// whole order, which all desks share and change at any moment. What is on show stays where it is whatever others do:
/// an entry that they take off says so. Owned by the main window; station and settings outlive it.
class OnAirWindow : public QMainWindow
{
    Q_OBJECT

public:
    OnAirWindow(DeskStation& station, DeskSettings& settings, QWidget* parent = nullptr);

    /// The entry on show; Reference 0 for none.
    const OnAirEntry& Current() const { return Current_; }
    bool IsEditing() const { return IsEditing_; }
    /// Points of the large type; remembered.
    int TextSize() const { return Size_; }
    void SetTextSize(int points);

    /// Marks in a text that is being shortened what the dictionary does not know. The speller outlives the window.
    void CheckSpelling(Speller& speller);

    /// How often it looks what others have changed.
    static constexpr int LookMilliseconds = 1000;
    static constexpr int SmallestText = 12;
    static constexpr int LargestText = 96;
    static constexpr int TextStep = 4;

public Q_SLOTS:
    /// Reads the order.
    void Look();
    void Next();
    void Back();
    /// Read out, or passed over; then the next one that waits is on show. Of one that is not waiting, it waits again.
    void Use();
    void Skip();
    void MoveUp();
    void MoveDown();
    /// Begins or ends changing the text for air.
    void Shorten();
    void GiveUpShortening();
    void Restore();
    void Remove();
    void Empty();
    void Print();

Q_SIGNALS:
    /// This desk has changed the order.
    void Changed();
    void PrintWanted(const PrintJob& job);

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // Making; OnAirWindowParts.cpp.
    void MakeParts();
    void MakeActions();
    QAction* Add(const char* name, const QString& icon, const QString& text, const QList<QKeySequence>& keys,
                 void (OnAirWindow::*slot)());

    template <typename Work>
    bool Run(Work&& work);
    bool Do(const std::function<RunningOrder::Outcome(RunningOrder& order)>& change);
    bool KeepText();
    void Mark(OnAirState state);
    void GoOn(int step, bool onlyWaiting);
    void ShowEntry(int place);
    void ShowList();
    void ShowCurrent();
    void EnableActions();
    QString NoticeWords() const;
    int PlaceOf(qint32 reference) const;

    DeskStation& Station_;
    DeskSettings& Settings_;
    QList<OnAirEntry> Order_;
    QSet<qint32> Gone_; ///< Entries whose message or prize is not stored any more.
    OnAirEntry Current_;
    int Place_ = 0;           ///< Of the current one, or where it was when it was taken off.
    bool IsTakenOff_ = false; ///< By somebody else.
    bool IsEditing_ = false;
    QString EditedFrom_;     ///< The text for air as it was when the user began to change it.
    bool IsShowing_ = false; ///< The list follows the window, not the user.
    int Size_;
    QTimer LookTimer_;
    SpellingTools* Spelling_ = nullptr; ///< Null where nobody wants it.
    NoticeBar* Notice_;
    QLabel* Head_;
    SpellingEdit* Text_;
    QListWidget* List_;
    QSplitter* Splitter_;
};
