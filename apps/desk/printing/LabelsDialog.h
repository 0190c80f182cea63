// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LabelTexts.h"

#include <QDialog>
#include <QSizeF>

class DeskStation;
class LabelPreview;
class LabelSheet;
class SavedNotice;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QSpinBox;

/// Prints address labels of contacts, or of the winners of a prize: who, on which paper, from which label on. The
/// geometry is that of the station. The station is open and outlives the dialog.
class LabelsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit LabelsDialog(DeskStation& station, QWidget* parent = nullptr);

    /// The labels that are checked, in the order of the list.
    QStringList Texts() const;

private:
    QWidget* MakeChoice();
    QWidget* MakeSheet();
    QWidget* MakeButtons();
    /// Runs a piece of work; its error becomes words.
    template <typename Work>
    void Run(Work&& work);

    void FillPrizes();
    void Fill();
    void Show(const QList<LabelTexts::Entry>& entries);
    void ApplyFind();
    void CheckShown(bool checked);
    void Update();
    QSizeF Paper() const;
    int StartAt() const;
    void Print(const LabelSheet& sheet);
    void SavePdf();

    DeskStation& Station_;
    QList<LabelTexts::Entry> Entries_;
    QRadioButton* FromContacts_ = nullptr;
    QRadioButton* FromWinners_ = nullptr;
    QComboBox* Prize_ = nullptr;
    QLineEdit* Find_ = nullptr;
    QListWidget* List_ = nullptr;
    QLabel* Note_ = nullptr;
    QComboBox* Paper_ = nullptr;
    QSpinBox* StartAt_ = nullptr;
    LabelPreview* Preview_ = nullptr;
    QLabel* Count_ = nullptr;
    QLabel* Problem_ = nullptr;
    QPushButton* Test_ = nullptr;
    QPushButton* Print_ = nullptr;
    QPushButton* Save_ = nullptr;
    SavedNotice* Saved_;
    bool IsFilling_ = false;
};
