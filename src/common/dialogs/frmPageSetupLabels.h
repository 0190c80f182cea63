// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include <array>

class NumberBox;
class QGridLayout;
class QPushButton;
class cPageSetup;

/// Changes the geometry of a sheet of address labels. Nothing changes until OK, and nothing is stored here. Shown
/// modally by DialogUserInterface; the page setup outlives it. On the user interface thread.
class frmPageSetupLabels final : public QDialog
{
    Q_OBJECT

public:
    explicit frmPageSetupLabels(QWidget* owner = nullptr);

    cPageSetup* PageSetup() const { return PageSetup_; }
    /// Fills the fields; null leaves them as they are, and OK changes nothing then.
    void SetPageSetup(cPageSetup* pageSetup);

private:
    struct Field
    {
        NumberBox* Box;
        qint32 (cPageSetup::*Get)() const;
        void (cPageSetup::*Set)(qint32);
    };

    void MakeControls();
    void LayOut();
    NumberBox* MakeField(const char* name, const QString& words);
    /// The fields in the order in which they are filled and stored.
    std::array<Field, 6> Fields() const;
    void OK();

    cPageSetup* PageSetup_ = nullptr;
    NumberBox* txtNumberRows_ = nullptr;
    NumberBox* txtNumberColumns_ = nullptr;
    NumberBox* txtRowHeight_ = nullptr;
    NumberBox* txtColumnWidth_ = nullptr;
    NumberBox* txtLeftMargin_ = nullptr;
    NumberBox* txtTopMargin_ = nullptr;
    QWidget* picPreview_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};
