// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/clsFont.h"

#include <QDialog>
#include <QPointer>

class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class cTolvaDatabase;

/// The words that are marked in messages, and the font that marks them. They belong to the station: OK stores them for
/// all computers, and messages that are saved from then on are marked so. Nothing is stored until OK, and the dialog
/// stays open when storing failed, so that nothing typed is lost. The station is open and outlives the dialog. On the
/// user interface thread.
class frmHighlightSettings final : public QDialog
{
    Q_OBJECT

public:
    /// Reads the station's settings anew, as another computer may have changed them.
    explicit frmHighlightSettings(cTolvaDatabase& database, QWidget* owner = nullptr);

    /// As they stand in the dialog: one a line there, separated by "|" here. Empty lines and repetitions are left out.
    QString Words() const;
    clsFont Font() const;

private:
    void MakeWords();
    void MakeFont();
    void MakePreview();
    void MakeButtons();
    QCheckBox* MakeStyle(const char* name, const QString& text);
    void LayOut();
    void Fill(const QString& words, const clsFont& font);
    void ChooseColour();
    void SetColour(qint32 colour);
    void UpdatePreview();
    void OK();

    QPointer<cTolvaDatabase> Database_;
    qint32 Colour_ = 0;
    QLabel* lblWords_ = nullptr;
    QPlainTextEdit* txtWords_ = nullptr;
    QLabel* lblNote_ = nullptr;
    QComboBox* comboFont_ = nullptr;
    QSpinBox* spinSize_ = nullptr;
    QPushButton* cmdColour_ = nullptr;
    QCheckBox* chkBold_ = nullptr;
    QCheckBox* chkItalic_ = nullptr;
    QCheckBox* chkUnderline_ = nullptr;
    QCheckBox* chkStrikethrough_ = nullptr;
    QLabel* lblPreview_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

/// Shows the dialog and waits for it, unless the user lacks the right to change settings, which is said then. True when
/// the settings were stored.
bool DisplayHighlightSettings(cTolvaDatabase& database, QWidget* owner);
