// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"

#include <QDialog>
#include <QPointer>

#include <optional>

class NumberBox;
class QAbstractButton;
class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QTabWidget;
class TextArea;
class TextBox;
class cTolvaDatabase;

/// The settings of a station: who it is, its SMS keywords, its backups. Nothing is stored until OK, with one exception:
/// the current song changes at once, after its own confirmation. Shown modally by DialogUserInterface; the station
/// outlives it. Messages and questions go through UserInterface. On the user interface thread.
class frmDatabaseSettings final : public QDialog
{
    Q_OBJECT

public:
    explicit frmDatabaseSettings(QWidget* owner = nullptr);

    cTolvaDatabase* TolvaDatabase() const;
    /// Fills the dialog from the station; null leaves it as it is and stores nothing.
    void SetTolvaDatabase(cTolvaDatabase* database);
    /// Whether Cancel (or Escape) ended the dialog. The close box leaves it clear, though it stores nothing.
    bool Cancelled() const { return Cancelled_; }

public Q_SLOTS:
    /// Escape.
    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void MakeControls();
    QWidget* MakeGeneralPage();
    QWidget* MakeMessagesPage();
    QWidget* MakeBackupPage();
    void Fill(const cTolvaDatabase& database);
    void EnableBackupOptions();
    void ChangeCurrentSong();
    bool IsComplete();
    void Store(cTolvaDatabase& database) const;
    void OK();
    void Cancel();

    QPointer<cTolvaDatabase> TolvaDatabase_;
    bool Cancelled_ = false;

    QTabWidget* tbsSettings_ = nullptr;
    TextBox* txtStationName_ = nullptr;
    TextArea* txtStationAddress_ = nullptr;
    TextBox* txtStationPhoneNumber_ = nullptr;
    TextBox* txtStationSMSPhoneNumber_ = nullptr;
    TextBox* txtStationCompanyNumber_ = nullptr;
    TextBox* txtStationVATNumber_ = nullptr;
    QLabel* lblDatabaseLockingMode_ = nullptr;
    QLabel* lblCurrentSong_ = nullptr;
    QPushButton* cmdChangeCurrentSong_ = nullptr;
    TextBox* txtSMSCurrentSong_ = nullptr;
    TextBox* txtSMSBuyCurrentSong_ = nullptr;
    TextBox* txtAmazonID_ = nullptr;
    QCheckBox* chkAllowBackup_ = nullptr;
    QGroupBox* fraBackupOptions_ = nullptr;
    QLabel* lblBackupsHowOftenDesc_ = nullptr;
    QRadioButton* optBackupHourly_ = nullptr;
    QRadioButton* optBackupDaily_ = nullptr;
    QLabel* lblBackupsExpireDesc_ = nullptr;
    NumberBox* txtBackupExpiry_ = nullptr;
    QLabel* lblBackupsExpireDaysDesc_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    /// The pointer is the default one while the dialog is up.
    std::optional<DefaultPointer> Pointer_;
};
