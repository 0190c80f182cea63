// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/cPrize.h"

#include <QWidget>

class DeskSettings;
class DeskStation;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSplitter;
class WinnersView;

/// One prize as the presenter needs it on air: what it is, how many are left, the text to read in large type, and the
/// button that gives it away. It changes nothing. The station and the settings outlive it.
class PresenterView : public QWidget
{
    Q_OBJECT

public:
    PresenterView(DeskStation& station, DeskSettings& settings, QWidget* parent = nullptr);

    /// Null shows that no prize is selected.
    void Show(const cPrizePtr& prize);
    qint32 Reference() const { return Reference_; }
    WinnersView& Winners() { return *Winners_; }
    QPlainTextEdit& Script() { return *Script_; }

    /// How the script and what is below it share the height, to be kept.
    QByteArray Sizes() const;
    void RestoreSizes(const QByteArray& sizes);

    /// Points of the script's type; remembered.
    int ScriptSize() const { return Size_; }
    void SetScriptSize(int points);
    static constexpr int SmallestScript = 10;
    static constexpr int LargestScript = 60;
    static constexpr int ScriptStep = 2;

Q_SIGNALS:
    void AwardWanted(qint32 prize);
    void OpenWanted(qint32 prize);
    void WinnerWanted(qint32 winner);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeParts();
    void LayOutParts();

    DeskSettings& Settings_;
    qint32 Reference_ = 0;
    int Size_;
    QLabel* Title_;
    QLabel* Stock_;
    QLabel* When_;
    QLabel* Hours_;
    QPushButton* Award_;
    QPushButton* Open_;
    QPushButton* Larger_;
    QPushButton* Smaller_;
    QPlainTextEdit* Script_;
    QLabel* NotesLabel_;
    QPlainTextEdit* Notes_;
    QLabel* WinnersLabel_;
    WinnersView* Winners_;
    QSplitter* Splitter_ = nullptr;
};
