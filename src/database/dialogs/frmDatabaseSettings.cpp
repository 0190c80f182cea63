// SPDX-License-Identifier: Apache-2.0
#include "database/dialogs/frmDatabaseSettings.h"

#include "database/StationSettings.h"
#include "database/cTolvaDatabase.h"
#include "platform/widgets/DialogSize.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TextBoxes.h"
#include "platform/widgets/Twips.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace
{
constexpr double LeastSettingsWidth = 6900; // twips
constexpr double NumberWidth = 720;
constexpr int AddressLines = 4;
constexpr int LongestDetail = 100;
constexpr int LongestAddress = 400;
constexpr int LongestKeyword = 50;
constexpr int LongestAmazonID = 250;
constexpr int LongestExpiry = 3;
constexpr qint32 Hourly = 60;
constexpr qint32 Daily = 1440;

/// Blanks go, and nothing else.
QString Trim(const QString& text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text.at(start) == u' ')
        ++start;
    while (end > start && text.at(end - 1) == u' ')
        --end;
    return text.mid(start, end - start);
}

QString LockingWords(LockingMode mode)
{
    switch (mode) {
    case LockingMode::PageLevel:
        return QStringLiteral("Information: The database is using 'Page Level' locking.");
    case LockingMode::RecordLevel:
        return QStringLiteral("Information: The database is using 'Record Level' locking.");
    case LockingMode::Unknown:
        break;
    }
    return QStringLiteral("Information: The type of locking the database is using cannot be found.");
}

template <typename Control>
Control* MakeControl(QWidget* parent, const char* name)
{
    auto* control = new Control(parent);
    control->setObjectName(QLatin1String(name));
    return control;
}

template <typename Control>
Control* MakeControl(QWidget* parent, const char* name, const QString& caption)
{
    auto* control = new Control(caption, parent);
    control->setObjectName(QLatin1String(name));
    return control;
}

/// A caption and its box as the next row of a page; the caption's access key leads to the box.
template <typename Control>
Control* AddRow(QGridLayout& rows, const char* captionName, const QString& caption, const char* name)
{
    QWidget* const page = rows.parentWidget();
    auto* const label = MakeControl<QLabel>(page, captionName, caption);
    auto* const control = MakeControl<Control>(page, name);
    label->setBuddy(control);
    const int row = rows.rowCount();
    rows.addWidget(label, row, 0, Qt::AlignTop);
    // The caption's line stands level with the first line of its box.
    label->setMinimumHeight(QLineEdit(page).sizeHint().height());
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    rows.addWidget(control, row, 1);
    return control;
}
} // namespace

frmDatabaseSettings::frmDatabaseSettings(QWidget* owner) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmDatabaseSettings"));
    setWindowTitle(QStringLiteral("Database Settings"));
    MakeControls();
    EnableBackupOptions();
}

void frmDatabaseSettings::MakeControls()
{
    tbsSettings_ = MakeControl<QTabWidget>(this, "tbsSettings");
    tbsSettings_->addTab(MakeGeneralPage(), QStringLiteral("General"));
    tbsSettings_->addTab(MakeMessagesPage(), QStringLiteral("Messages"));
    tbsSettings_->addTab(MakeBackupPage(), QStringLiteral("Backup"));
    cmdOK_ = MakeControl<QPushButton>(this, "cmdOK", QStringLiteral("OK"));
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, &frmDatabaseSettings::OK);
    cmdCancel_ = MakeControl<QPushButton>(this, "cmdCancel", QStringLiteral("Cancel"));
    connect(cmdCancel_, &QPushButton::clicked, this, &frmDatabaseSettings::Cancel);
    // In the address the Enter key makes a new line.
    connect(txtStationAddress_, &TextArea::GotFocus, cmdOK_, [ok = cmdOK_] { ok->setDefault(false); });
    connect(txtStationAddress_, &TextArea::LostFocus, cmdOK_, [ok = cmdOK_] { ok->setDefault(true); });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(tbsSettings_, 1);
    column->addLayout(buttons);
    tbsSettings_->setMinimumWidth(Twips::ToPixels(*this, LeastSettingsWidth));
    // The first box of the page rather than the row of tabs.
    txtStationName_->setFocus();
}

QWidget* frmDatabaseSettings::MakeGeneralPage()
{
    auto* page = new QWidget;
    auto* rows = new QGridLayout(page);
    txtStationName_ = AddRow<TextBox>(*rows, "lblStationNameDesc", QStringLiteral("&Station Name:"), "txtStationName");
    txtStationAddress_ = AddRow<TextArea>(*rows, "lblAddressDesc", QStringLiteral("&Address:"), "txtStationAddress");
    const int line = txtStationAddress_->fontMetrics().lineSpacing();
    txtStationAddress_->setFixedHeight(line * AddressLines + line);
    txtStationPhoneNumber_ =
        AddRow<TextBox>(*rows, "lblStationPhoneNoDesc", QStringLiteral("&Phone Number:"), "txtStationPhoneNumber");
    txtStationSMSPhoneNumber_ = AddRow<TextBox>(*rows, "lblStationSMSPhoneNumberDesc", QStringLiteral("S&MS Number:"),
                                                "txtStationSMSPhoneNumber");
    txtStationCompanyNumber_ =
        AddRow<TextBox>(*rows, "lblStationCompanyNoDesc", QStringLiteral("&Company No:"), "txtStationCompanyNumber");
    txtStationVATNumber_ =
        AddRow<TextBox>(*rows, "lblStationVATNoDesc", QStringLiteral("&VAT Number:"), "txtStationVATNumber");
    lblDatabaseLockingMode_ = MakeControl<QLabel>(page, "lblDatabaseLockingMode");
    lblDatabaseLockingMode_->setWordWrap(true);
    // The words are those of the mode that was asked for; what they mean with this file is more than they say.
    lblDatabaseLockingMode_->setToolTip(
        tr("Whoever writes has the file to himself for the moment of the write. A row that somebody else changed "
           "since it was read is not overwritten."));
    rows->addWidget(lblDatabaseLockingMode_, rows->rowCount(), 0, 1, 2);
    rows->setRowStretch(rows->rowCount(), 1);
    return page;
}

QWidget* frmDatabaseSettings::MakeMessagesPage()
{
    auto* page = new QWidget;
    auto* song = MakeControl<QGroupBox>(page, "fraCurrentSongInfo", QStringLiteral("Current Song Information:"));
    auto* songRow = new QHBoxLayout(song);
    songRow->addWidget(MakeControl<QLabel>(song, "lblCurrentSongDesc", QStringLiteral("Current Song:")));
    lblCurrentSong_ = MakeControl<QLabel>(song, "lblCurrentSong");
    // A song's name comes from anywhere: it is no markup, and may be long.
    lblCurrentSong_->setTextFormat(Qt::PlainText);
    lblCurrentSong_->setWordWrap(true);
    lblCurrentSong_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    songRow->addWidget(lblCurrentSong_, 1);
    cmdChangeCurrentSong_ = MakeControl<QPushButton>(song, "cmdChangeCurrentSong", QStringLiteral("Change"));
    cmdChangeCurrentSong_->setAccessibleDescription(QStringLiteral("Changes the current song at once"));
    connect(cmdChangeCurrentSong_, &QPushButton::clicked, this, &frmDatabaseSettings::ChangeCurrentSong);
    songRow->addWidget(cmdChangeCurrentSong_, 0, Qt::AlignTop);

    auto* keywords =
        MakeControl<QGroupBox>(page, "fraSMSMessages", QStringLiteral("SMS: Automatic response Messages:"));
    auto* keywordRows = new QGridLayout(keywords);
    txtSMSCurrentSong_ = AddRow<TextBox>(*keywordRows, "lblSMSCurrentSongDesc",
                                         QStringLiteral("Currently playing Song:"), "txtSMSCurrentSong");
    txtSMSBuyCurrentSong_ = AddRow<TextBox>(*keywordRows, "lblSMSBuyCurrentSongDesc",
                                            QStringLiteral("Buy current Song:"), "txtSMSBuyCurrentSong");
    auto* note = MakeControl<QLabel>(keywords, "lblSMSBuyNowNoteDesc",
                                     QStringLiteral("Note: You must fill in the Amazon details below"));
    note->setWordWrap(true);
    keywordRows->addWidget(note, keywordRows->rowCount(), 0, 1, 2);

    auto* shop = MakeControl<QGroupBox>(page, "fraBuyNowDetails", QStringLiteral("Amazon.co.uk:"));
    auto* shopRows = new QGridLayout(shop);
    txtAmazonID_ = AddRow<TextBox>(*shopRows, "lblAmazonIDDesc", QStringLiteral("Amazon ID:"), "txtAmazonID");

    auto* column = new QVBoxLayout(page);
    column->addWidget(song);
    column->addWidget(keywords);
    column->addWidget(shop);
    column->addStretch();
    return page;
}

QWidget* frmDatabaseSettings::MakeBackupPage()
{
    auto* page = new QWidget;
    chkAllowBackup_ = MakeControl<QCheckBox>(page, "chkAllowBackup",
                                             QStringLiteral("Automatically 'backup' the Database periodically:"));
    connect(chkAllowBackup_, &QCheckBox::toggled, this, &frmDatabaseSettings::EnableBackupOptions);
    fraBackupOptions_ = MakeControl<QGroupBox>(page, "fraBackupOptions");
    fraBackupOptions_->setAccessibleName(QStringLiteral("Backup options"));
    lblBackupsHowOftenDesc_ = MakeControl<QLabel>(fraBackupOptions_, "lblBackupsHowOftenDesc",
                                                  QStringLiteral("How often should these backups be created:"));
    optBackupHourly_ = MakeControl<QRadioButton>(fraBackupOptions_, "optBackupHourly",
                                                 QStringLiteral("Backups should be created once an hour"));
    optBackupDaily_ = MakeControl<QRadioButton>(fraBackupOptions_, "optBackupDaily",
                                                QStringLiteral("Backups should be created once a day (Recommended)"));
    lblBackupsExpireDesc_ =
        MakeControl<QLabel>(fraBackupOptions_, "lblBackupsExpireDesc", QStringLiteral("Delete backups after:"));
    txtBackupExpiry_ = MakeControl<NumberBox>(fraBackupOptions_, "txtBackupExpiry");
    txtBackupExpiry_->setFixedWidth(Twips::ToPixels(*this, NumberWidth));
    lblBackupsExpireDesc_->setBuddy(txtBackupExpiry_);
    lblBackupsExpireDaysDesc_ = MakeControl<QLabel>(fraBackupOptions_, "lblBackupsExpireDaysDesc",
                                                    QStringLiteral("days (set to 0 to disable automatic deletion)"));

    auto* expiry = new QHBoxLayout;
    expiry->addWidget(lblBackupsExpireDesc_);
    expiry->addWidget(txtBackupExpiry_);
    expiry->addWidget(lblBackupsExpireDaysDesc_);
    expiry->addStretch();
    auto* options = new QVBoxLayout(fraBackupOptions_);
    options->addWidget(lblBackupsHowOftenDesc_);
    options->addWidget(optBackupHourly_);
    options->addWidget(optBackupDaily_);
    options->addSpacing(txtBackupExpiry_->sizeHint().height() / 2);
    options->addLayout(expiry);
    auto* column = new QVBoxLayout(page);
    column->addWidget(chkAllowBackup_);
    column->addWidget(fraBackupOptions_);
    column->addStretch();
    return page;
}

cTolvaDatabase* frmDatabaseSettings::TolvaDatabase() const
{
    return TolvaDatabase_;
}

void frmDatabaseSettings::SetTolvaDatabase(cTolvaDatabase* database)
{
    TolvaDatabase_ = database;
    if (database)
        Fill(*database);
}

void frmDatabaseSettings::Fill(const cTolvaDatabase& database)
{
    lblDatabaseLockingMode_->setText(LockingWords(database.DatabaseLockingMode()));
    txtStationName_->SetLimitedText(database.StationName(), LongestDetail);
    txtStationAddress_->SetLimitedText(database.StationAddress(), LongestAddress);
    txtStationPhoneNumber_->SetLimitedText(database.StationPhoneNumber(), LongestDetail);
    txtStationSMSPhoneNumber_->SetLimitedText(database.StationSMSPhoneNumber(), LongestDetail);
    txtStationCompanyNumber_->SetLimitedText(database.StationCompanyNumber(), LongestDetail);
    txtStationVATNumber_->SetLimitedText(database.StationVATNumber(), LongestDetail);
    const auto text = [&](const StationSettings::TextSetting& setting) {
        return database.DatabaseSetting(setting.Key, setting.Default).toString();
    };
    txtSMSCurrentSong_->SetLimitedText(text(StationSettings::SMSCurrentSong), LongestKeyword);
    txtSMSBuyCurrentSong_->SetLimitedText(text(StationSettings::SMSBuyCurrentSong), LongestKeyword);
    txtAmazonID_->SetLimitedText(text(StationSettings::AmazonID), LongestAmazonID);
    lblCurrentSong_->setText(u' ' + database.CurrentSongFullName());
    chkAllowBackup_->setChecked(database.EnableAutoBackup());
    EnableBackupOptions();
    optBackupHourly_->setChecked(database.BackupInterval() == Hourly);
    optBackupDaily_->setChecked(database.BackupInterval() == Daily);
    txtBackupExpiry_->SetLimitedText(QString::number(database.BackupExpiryDays()), LongestExpiry);
    SelectControlText(*txtStationName_);
    DialogSize::FitContents(*this);
}

void frmDatabaseSettings::EnableBackupOptions()
{
    const bool isOn = chkAllowBackup_->isChecked();
    for (QWidget* control :
         std::initializer_list<QWidget*>{fraBackupOptions_, lblBackupsHowOftenDesc_, optBackupHourly_, optBackupDaily_,
                                         lblBackupsExpireDesc_, txtBackupExpiry_, lblBackupsExpireDaysDesc_})
        control->setEnabled(isOn);
    QPalette colours = palette();
    colours.setColor(QPalette::Base, SystemColour::ToColour(
                                         isOn ? SystemColour::WindowBackground : SystemColour::ButtonFace, palette()));
    txtBackupExpiry_->setPalette(colours);
}

void frmDatabaseSettings::ChangeCurrentSong()
{
    UserInterface& user = UserInterface::Current();
    if (!UserInterface::Confirm(
            QStringLiteral("Are you sure you want to change these details - the change will take place immediatly")))
        return;
    QString song;
    if (user.InputBox({QStringLiteral("Current Song Title:"), QStringLiteral("Change Current Song"),
                       Trim(lblCurrentSong_->text()), 0, QString()},
                      song) != 0)
        return;
    if (TolvaDatabase_)
        TolvaDatabase_->SetCurrentSongFullName(song);
    lblCurrentSong_->setText(u' ' + song);
}

bool frmDatabaseSettings::IsComplete()
{
    for (TextBox* box : {txtStationName_, txtStationPhoneNumber_}) {
        if (!Trim(box->text()).isEmpty())
            continue;
        UserInterface::Current().MessageBox({QStringLiteral("You must enter your Station Name and Phone Number!"),
                                             QString(), MessageBoxButtons::OK, MessageBoxIcon::Exclamation,
                                             MessageBoxAnswer::OK});
        tbsSettings_->setCurrentIndex(0);
        box->setFocus(Qt::OtherFocusReason);
        return false;
    }
    return true;
}

void frmDatabaseSettings::Store(cTolvaDatabase& database) const
{
    database.SetStationName(Trim(txtStationName_->text()));
    database.SetStationAddress(Trim(txtStationAddress_->Text()));
    database.SetStationPhoneNumber(Trim(txtStationPhoneNumber_->text()));
    database.SetStationSMSPhoneNumber(Trim(txtStationSMSPhoneNumber_->text()));
    database.SetStationCompanyNumber(Trim(txtStationCompanyNumber_->text()));
    database.SetStationVATNumber(Trim(txtStationVATNumber_->text()));
    // The default is empty here: an emptied keyword is not stored, and the one that stations begin with is back.
    database.SetDatabaseSetting(StationSettings::SMSCurrentSong.Key, txtSMSCurrentSong_->text(), QString());
    database.SetDatabaseSetting(StationSettings::SMSBuyCurrentSong.Key, txtSMSBuyCurrentSong_->text(), QString());
    database.SetDatabaseSetting(StationSettings::AmazonID.Key, txtAmazonID_->text(), QString());
    database.SetEnableAutoBackup(chkAllowBackup_->isChecked());
    database.SetBackupInterval(optBackupDaily_->isChecked() ? Daily : Hourly);
    database.SetBackupExpiryDays(static_cast<qint16>(txtBackupExpiry_->Number()));
}

void frmDatabaseSettings::OK()
{
    if (!IsComplete())
        return;
    if (TolvaDatabase_)
        Store(*TolvaDatabase_);
    Cancelled_ = false;
    hide();
}

void frmDatabaseSettings::Cancel()
{
    Cancelled_ = true;
    hide();
}

void frmDatabaseSettings::reject()
{
    Cancel();
}

void frmDatabaseSettings::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!event->spontaneous())
        Pointer_.emplace();
}

void frmDatabaseSettings::hideEvent(QHideEvent* event)
{
    QDialog::hideEvent(event);
    if (!event->spontaneous())
        Pointer_.reset();
}

void frmDatabaseSettings::closeEvent(QCloseEvent* event)
{
    event->ignore();
    hide();
}

void frmDatabaseSettings::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        EnableBackupOptions();
}
