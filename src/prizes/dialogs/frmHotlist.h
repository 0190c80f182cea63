// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"

#include <QDialog>

#include <exception>
#include <optional>

class QAction;
class QLabel;
class QListWidget;
class QMenu;
class QPushButton;
class TextBox;

namespace dao
{
class Recordset;
}

/// Chooses a hotlist to load, or names one to save: selections of hours that the station keeps among its settings. Made
/// for one call of GetHotlist. A hotlist that is deleted here is gone at once, whether the dialog ends in OK or in
/// Cancel. On the user interface thread.
class frmHotlist final : public QDialog
{
    Q_OBJECT

public:
    explicit frmHotlist(QWidget* owner = nullptr);

    /// Shows the dialog until it ends. hotListType: 0, the hours of prizes (prefix "HR."). recordset: the table
    /// Settings on its index Main; null gives the empty text at once. The whole Item, or empty when the user chose
    /// none. dao::Error of the table.
    QString GetHotlist(qint32 hotListType, dao::Recordset* recordset, bool saveMode);

    bool SaveMode() const { return SaveMode_; }
    bool Cancelled() const { return Cancelled_; }

public Q_SLOTS:
    /// Escape.
    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeControls();
    void MakeMenu();
    void LayOut();
    void PrepareMode();
    void Fill();
    bool HasSelection() const;
    QString SelectedEntry() const;
    void TakeSelection();
    bool MayOverwrite();
    void OK();
    void Cancel();
    void DeleteSelected();
    void DeleteRow(const QString& name);
    void PopUpMenu(const QPoint& global);

    dao::Recordset* Recordset_ = nullptr; ///< The caller's, while GetHotlist runs.
    QString Prefix_;
    bool SaveMode_ = false;
    bool Cancelled_ = false;
    std::exception_ptr Error_; ///< What a handler met; GetHotlist throws it.

    QLabel* lblChooseHotlist_;
    TextBox* txtHotlistName_;
    QListWidget* listBox_;
    QPushButton* cmdOK_;
    QPushButton* cmdCancel_;
    QMenu* mnupopup_;
    QAction* mnuSelect_;
    QAction* mnuDelete_;
    /// The pointer is the default one while the dialog is up.
    std::optional<DefaultPointer> Pointer_;
};
