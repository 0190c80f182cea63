// SPDX-License-Identifier: Apache-2.0

// The dialog of a station's settings.

#include "database/dialogs/frmDatabaseSettings.h"

#include "common/dialogs/DialogUserInterface.h"
#include "common/dialogs/frmGoodInputBox.h"
#include "controls/support/WhenShown.h"
#include "core/support/StationTest.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TextBoxes.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>

class frmDatabaseSettingsTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }

    void Show()
    {
        Form = std::make_unique<frmDatabaseSettings>();
        Form->SetTolvaDatabase(Station.get());
        Form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form.get()));
    }
    template <typename Control>
    Control& Find(const char* name)
    {
        return *Form->findChild<Control*>(QLatin1String(name));
    }
    QTabWidget& Pages() { return Find<QTabWidget>("tbsSettings"); }
    QLineEdit& Box(const char* name)
    {
        auto& box = Find<QLineEdit>(name);
        for (int i = 0; i < Pages().count(); ++i) {
            if (Pages().widget(i)->isAncestorOf(&box))
                Pages().setCurrentIndex(i);
        }
        return box;
    }
    void Type(const char* name, const QString& text)
    {
        QLineEdit& box = Box(name);
        box.setFocus(Qt::TabFocusReason);
        box.selectAll();
        QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClicks(&box, text);
    }
    void Click(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
    void Choose(const char* button)
    {
        Pages().setCurrentIndex(2);
        auto& choice = Find<QAbstractButton>(button);
        QTest::mouseClick(&choice, Qt::LeftButton, Qt::NoModifier, QPoint(8, choice.height() / 2));
    }
    QString Stored(const char* key) const
    {
        return Station->DatabaseSetting(QLatin1String(key), QStringLiteral("(none)")).toString();
    }
    void ExpectIncomplete() { Ui.ExpectWarning(QStringLiteral("You must enter your Station Name and Phone Number!")); }

    std::unique_ptr<frmDatabaseSettings> Form;
};

TEST_F(frmDatabaseSettingsTest, ShowsWhatIsStoredOnThreePages)
{
    Station->SetStationName(QStringLiteral("Pier FM"));
    Station->SetStationAddress(QStringLiteral("1 Quay\r\nPorth"));
    Station->SetStationSMSPhoneNumber(QStringLiteral("60777"));
    Station->SetStationCompanyNumber(QStringLiteral("1234"));
    Station->SetStationVATNumber(QStringLiteral("GB 5"));
    Station->SetCurrentSongFullName(QStringLiteral("Rock & Roll"));
    Station->SetDatabaseSetting(QStringLiteral("BuyNow.AmazonID"), QStringLiteral("pier-21"), QString());
    Station->SetBackupExpiryDays(30);
    Show();
    EXPECT_EQ(Form->windowTitle(), QStringLiteral("Database Settings"));
    ASSERT_EQ(Pages().count(), 3);
    EXPECT_EQ(Pages().tabText(0), QStringLiteral("General"));
    EXPECT_EQ(Pages().tabText(1), QStringLiteral("Messages"));
    EXPECT_EQ(Pages().tabText(2), QStringLiteral("Backup"));
    EXPECT_EQ(Pages().currentIndex(), 0);
    EXPECT_EQ(Find<QLineEdit>("txtStationName").text(), QStringLiteral("Pier FM"));
    EXPECT_EQ(Find<QPlainTextEdit>("txtStationAddress").toPlainText(), QStringLiteral("1 Quay\nPorth"));
    EXPECT_EQ(Find<QLineEdit>("txtStationPhoneNumber").text(), QStringLiteral("01632 960100"));
    EXPECT_EQ(Find<QLineEdit>("txtStationSMSPhoneNumber").text(), QStringLiteral("60777"));
    EXPECT_EQ(Find<QLineEdit>("txtStationCompanyNumber").text(), QStringLiteral("1234"));
    EXPECT_EQ(Find<QLineEdit>("txtStationVATNumber").text(), QStringLiteral("GB 5"));
    EXPECT_EQ(Find<QLineEdit>("txtSMSCurrentSong").text(), QStringLiteral("SONG"));
    EXPECT_EQ(Find<QLineEdit>("txtSMSBuyCurrentSong").text(), QStringLiteral("BUY"));
    EXPECT_EQ(Find<QLineEdit>("txtAmazonID").text(), QStringLiteral("pier-21"));
    EXPECT_EQ(Find<QLabel>("lblCurrentSong").text(), QStringLiteral(" Rock & Roll"));
    EXPECT_TRUE(Find<QCheckBox>("chkAllowBackup").isChecked());
    EXPECT_TRUE(Find<QRadioButton>("optBackupDaily").isChecked());
    EXPECT_EQ(Find<QLineEdit>("txtBackupExpiry").text(), QStringLiteral("30"));
}

TEST_F(frmDatabaseSettingsTest, TheCaptionsAreTheseAndTheirKeysLeadToTheirBoxes)
{
    Show();
    const std::tuple<const char*, QString, const char*> captions[] = {
        {"lblStationNameDesc", QStringLiteral("&Station Name:"), "txtStationName"},
        {"lblAddressDesc", QStringLiteral("&Address:"), "txtStationAddress"},
        {"lblStationPhoneNoDesc", QStringLiteral("&Phone Number:"), "txtStationPhoneNumber"},
        {"lblStationSMSPhoneNumberDesc", QStringLiteral("S&MS Number:"), "txtStationSMSPhoneNumber"},
        {"lblStationCompanyNoDesc", QStringLiteral("&Company No:"), "txtStationCompanyNumber"},
        {"lblStationVATNoDesc", QStringLiteral("&VAT Number:"), "txtStationVATNumber"},
        {"lblSMSCurrentSongDesc", QStringLiteral("Currently playing Song:"), "txtSMSCurrentSong"},
        {"lblSMSBuyCurrentSongDesc", QStringLiteral("Buy current Song:"), "txtSMSBuyCurrentSong"},
        {"lblAmazonIDDesc", QStringLiteral("Amazon ID:"), "txtAmazonID"},
        {"lblBackupsExpireDesc", QStringLiteral("Delete backups after:"), "txtBackupExpiry"},
    };
    for (const auto& [label, text, box] : captions) {
        EXPECT_EQ(Find<QLabel>(label).text(), text);
        EXPECT_EQ(Find<QLabel>(label).buddy(), &Find<QWidget>(box)) << label;
    }
    const std::pair<const char*, QString> others[] = {
        {"lblCurrentSongDesc", QStringLiteral("Current Song:")},
        {"lblSMSBuyNowNoteDesc", QStringLiteral("Note: You must fill in the Amazon details below")},
        {"lblBackupsHowOftenDesc", QStringLiteral("How often should these backups be created:")},
        {"lblBackupsExpireDaysDesc", QStringLiteral("days (set to 0 to disable automatic deletion)")},
    };
    for (const auto& [label, text] : others)
        EXPECT_EQ(Find<QLabel>(label).text(), text);
    EXPECT_EQ(Find<QGroupBox>("fraCurrentSongInfo").title(), QStringLiteral("Current Song Information:"));
    EXPECT_EQ(Find<QGroupBox>("fraSMSMessages").title(), QStringLiteral("SMS: Automatic response Messages:"));
    EXPECT_EQ(Find<QPushButton>("cmdChangeCurrentSong").text(), QStringLiteral("Change"));
    EXPECT_EQ(Find<QCheckBox>("chkAllowBackup").text(),
              QStringLiteral("Automatically 'backup' the Database periodically:"));
    EXPECT_EQ(Find<QRadioButton>("optBackupHourly").text(), QStringLiteral("Backups should be created once an hour"));
    EXPECT_EQ(Find<QRadioButton>("optBackupDaily").text(),
              QStringLiteral("Backups should be created once a day (Recommended)"));
    QTest::keyClick(Form.get(), Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(Find<QLineEdit>("txtStationPhoneNumber").hasFocus());
    QTest::keyClick(Form.get(), Qt::Key_M, Qt::AltModifier);
    EXPECT_TRUE(Find<QLineEdit>("txtStationSMSPhoneNumber").hasFocus());
}

TEST_F(frmDatabaseSettingsTest, TheLockingLineTellsHowTheFileIsLocked)
{
    Show();
    EXPECT_EQ(Find<QLabel>("lblDatabaseLockingMode").text(),
              Station->DatabaseLockingMode() == LockingMode::RecordLevel
                  ? QStringLiteral("Information: The database is using 'Record Level' locking.")
                  : QStringLiteral("Information: The database is using 'Page Level' locking."));
    ASSERT_NE(Station->DatabaseLockingMode(), LockingMode::Unknown);
    Station->CloseTolvaDatabase();
    Form->SetTolvaDatabase(Station.get());
    EXPECT_EQ(Find<QLabel>("lblDatabaseLockingMode").text(),
              QStringLiteral("Information: The type of locking the database is using cannot be found."));
}

TEST_F(frmDatabaseSettingsTest, OKStoresEverything)
{
    Show();
    Type("txtStationName", QStringLiteral("  Pier FM "));
    QTest::keyClick(Form.get(), Qt::Key_A, Qt::AltModifier);
    QTest::keyClicks(&Find<QPlainTextEdit>("txtStationAddress"), QStringLiteral("1 Quay"));
    QTest::keyClick(&Find<QPlainTextEdit>("txtStationAddress"), Qt::Key_Return);
    QTest::keyClicks(&Find<QPlainTextEdit>("txtStationAddress"), QStringLiteral("Porth "));
    Type("txtStationPhoneNumber", QStringLiteral(" 01632 960999"));
    Type("txtStationSMSPhoneNumber", QStringLiteral("60777 "));
    Type("txtStationCompanyNumber", QStringLiteral("1234"));
    Type("txtStationVATNumber", QStringLiteral("GB 5"));
    Type("txtSMSCurrentSong", QStringLiteral(" WHAT "));
    Type("txtSMSBuyCurrentSong", QStringLiteral("GET"));
    Type("txtAmazonID", QStringLiteral("pier-21"));
    Choose("optBackupHourly");
    Type("txtBackupExpiry", QStringLiteral("12"));
    Choose("chkAllowBackup");
    Click("cmdOK");
    EXPECT_FALSE(Form->isVisible());
    EXPECT_FALSE(Form->Cancelled());
    EXPECT_EQ(Stored("Station.Name"), QStringLiteral("Pier FM"));
    EXPECT_EQ(Stored("Station.Address"), QStringLiteral("1 Quay\r\nPorth"));
    EXPECT_EQ(Stored("Station.PhoneNumber"), QStringLiteral("01632 960999"));
    EXPECT_EQ(Stored("Station.SMSPhoneNumber"), QStringLiteral("60777"));
    EXPECT_EQ(Stored("Station.CompanyNumber"), QStringLiteral("1234"));
    EXPECT_EQ(Stored("Station.VATNumber"), QStringLiteral("GB 5"));
    EXPECT_EQ(Stored("SMS.CurrentSong"), QStringLiteral(" WHAT "));
    EXPECT_EQ(Stored("SMS.BuyCurrentSong"), QStringLiteral("GET"));
    EXPECT_EQ(Stored("BuyNow.AmazonID"), QStringLiteral("pier-21"));
    EXPECT_FALSE(Station->EnableAutoBackup());
    EXPECT_EQ(Stored("Backups.EnableAutoBackup"), QStringLiteral("False"));
    EXPECT_EQ(Stored("Backups.Interval"), QStringLiteral("60"));
    EXPECT_EQ(Station->BackupExpiryDays(), 12);
}

TEST_F(frmDatabaseSettingsTest, CancelAndEscapeStoreNothingAndSayThatTheyDid)
{
    for (const bool byKey : {true, false}) {
        Show();
        Type("txtStationName", QStringLiteral("Other"));
        if (byKey)
            QTest::keyClick(Form.get(), Qt::Key_Escape);
        else
            Click("cmdCancel");
        EXPECT_FALSE(Form->isVisible());
        EXPECT_TRUE(Form->Cancelled());
        EXPECT_EQ(Station->StationName(), QStringLiteral("Radio Station"));
    }
}

TEST_F(frmDatabaseSettingsTest, TheCloseBoxStoresNothingThoughTheDialogDoesNotCountAsCancelled)
{
    Show();
    Type("txtStationName", QStringLiteral("Other"));
    EXPECT_FALSE(Form->close());
    EXPECT_FALSE(Form->isVisible());
    EXPECT_FALSE(Form->Cancelled());
    EXPECT_EQ(Station->StationName(), QStringLiteral("Radio Station"));
}

TEST_F(frmDatabaseSettingsTest, BlanksAreNoNameAndNoNumber)
{
    Show();
    Type("txtStationName", QStringLiteral("   "));
    Pages().setCurrentIndex(2);
    ExpectIncomplete();
    Click("cmdOK");
    EXPECT_TRUE(Form->isVisible());
    EXPECT_EQ(Pages().currentIndex(), 0);
    EXPECT_TRUE(Find<QLineEdit>("txtStationName").hasFocus());
    Type("txtStationName", QStringLiteral("Pier FM"));
    Type("txtStationPhoneNumber", QStringLiteral("  "));
    ExpectIncomplete();
    QTest::keyClick(&Find<QLineEdit>("txtStationPhoneNumber"), Qt::Key_Return);
    EXPECT_TRUE(Form->isVisible());
    EXPECT_EQ(Station->StationName(), QStringLiteral("Radio Station"));
    EXPECT_EQ(Station->StationPhoneNumber(), QStringLiteral("01632 960100"));
}

TEST_F(frmDatabaseSettingsTest, AnIntervalOfAnotherKindShowsAsNoneAndIsStoredAsHourly)
{
    Station->SetBackupInterval(90);
    Show();
    EXPECT_FALSE(Find<QRadioButton>("optBackupHourly").isChecked());
    EXPECT_FALSE(Find<QRadioButton>("optBackupDaily").isChecked());
    Click("cmdOK");
    EXPECT_EQ(Station->BackupInterval(), 60);
}

TEST_F(frmDatabaseSettingsTest, AnEmptyExpiryIsZeroDays)
{
    Show();
    Type("txtBackupExpiry", QString());
    EXPECT_EQ(Find<QLineEdit>("txtBackupExpiry").text(), QString());
    Click("cmdOK");
    EXPECT_EQ(Station->BackupExpiryDays(), 0);
}

TEST_F(frmDatabaseSettingsTest, AnEmptiedKeywordLeavesNoRowAndIsTheFirstOneAgain)
{
    Show();
    Type("txtSMSCurrentSong", QString());
    Type("txtSMSBuyCurrentSong", QString());
    Click("cmdOK");
    EXPECT_EQ(Stored("SMS.CurrentSong"), QStringLiteral("(none)"));
    EXPECT_EQ(Stored("SMS.BuyCurrentSong"), QStringLiteral("(none)"));
    Show();
    EXPECT_EQ(Find<QLineEdit>("txtSMSCurrentSong").text(), QStringLiteral("SONG"));
    EXPECT_EQ(Find<QLineEdit>("txtSMSBuyCurrentSong").text(), QStringLiteral("BUY"));
}

TEST_F(frmDatabaseSettingsTest, TheBackupOptionsFollowTheirBox)
{
    Station->SetEnableAutoBackup(false);
    Show();
    const char* const options[] = {"fraBackupOptions",        "lblBackupsHowOftenDesc", "optBackupHourly",
                                   "optBackupDaily",          "lblBackupsExpireDesc",   "txtBackupExpiry",
                                   "lblBackupsExpireDaysDesc"};
    const auto ground = [this] { return Find<QLineEdit>("txtBackupExpiry").palette().color(QPalette::Base); };
    for (const char* name : options)
        EXPECT_FALSE(Find<QWidget>(name).isEnabled()) << name;
    EXPECT_EQ(ground(), SystemColour::ToColour(SystemColour::ButtonFace, Form->palette()));
    Choose("chkAllowBackup");
    for (const char* name : options)
        EXPECT_TRUE(Find<QWidget>(name).isEnabled()) << name;
    EXPECT_EQ(ground(), SystemColour::ToColour(SystemColour::WindowBackground, Form->palette()));
    Choose("chkAllowBackup");
    EXPECT_FALSE(Find<QWidget>("txtBackupExpiry").isEnabled());
}

TEST_F(frmDatabaseSettingsTest, EachBoxTakesSoManyCharacters)
{
    Show();
    const std::pair<const char*, int> limits[] = {
        {"txtStationName", 100},          {"txtStationPhoneNumber", 100}, {"txtStationSMSPhoneNumber", 100},
        {"txtStationCompanyNumber", 100}, {"txtStationVATNumber", 100},   {"txtSMSCurrentSong", 50},
        {"txtSMSBuyCurrentSong", 50},     {"txtAmazonID", 250},           {"txtBackupExpiry", 3}};
    for (const auto& [name, limit] : limits) {
        Type(name, QString(limit + 10, u'7'));
        EXPECT_EQ(Find<QLineEdit>(name).text().size(), limit) << name;
    }
    Pages().setCurrentIndex(0);
    QTest::keyClick(Form.get(), Qt::Key_A, Qt::AltModifier);
    auto& address = Find<QPlainTextEdit>("txtStationAddress");
    QGuiApplication::clipboard()->setText(QString(500, u'x'));
    QTest::keyClick(&address, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(address.toPlainText(), QString(400, u'x'));
    // What goes in goes in at the caret, and what has no room does not push out the rest.
    QTest::keyClick(&address, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClicks(&address, QStringLiteral("abc"));
    EXPECT_EQ(address.toPlainText(), QString(400, u'x'));
    QTest::keyClick(&address, Qt::Key_Delete);
    QTest::keyClick(&address, Qt::Key_Delete);
    QTest::keyClicks(&address, QStringLiteral("abc"));
    EXPECT_EQ(address.toPlainText(), QStringLiteral("ab") + QString(398, u'x'));
    // A line's end takes the room of two.
    QTest::keyClick(&address, Qt::Key_Delete);
    QTest::keyClick(&address, Qt::Key_Return);
    EXPECT_FALSE(address.toPlainText().contains(u'\n'));
    QTest::keyClick(&address, Qt::Key_Delete);
    QTest::keyClick(&address, Qt::Key_Return);
    EXPECT_TRUE(address.toPlainText().contains(u'\n'));
}

TEST_F(frmDatabaseSettingsTest, AStoredTextThatIsLongerThanItsBoxTakesIsNotCut)
{
    const QString name(150, u'n');
    const QString address(500, u'a');
    Station->SetStationName(name);
    Station->SetStationAddress(address);
    Show();
    QTest::keyClick(&Box("txtStationName"), Qt::Key_End);
    QTest::keyClicks(&Box("txtStationName"), QStringLiteral("more"));
    Click("cmdOK");
    EXPECT_EQ(Station->StationName(), name);
    EXPECT_EQ(Station->StationAddress(), address);
}

TEST_F(frmDatabaseSettingsTest, OnlyDigitsReachTheExpiryByTyping)
{
    Show();
    Type("txtBackupExpiry", QStringLiteral("1a-.2 b"));
    EXPECT_EQ(Find<QLineEdit>("txtBackupExpiry").text(), QStringLiteral("12"));
    QTest::keyClick(&Find<QLineEdit>("txtBackupExpiry"), Qt::Key_Backspace);
    EXPECT_EQ(Find<QLineEdit>("txtBackupExpiry").text(), QStringLiteral("1"));
}

TEST_F(frmDatabaseSettingsTest, ABoxSelectsItselfWholeWhenItGainsTheFocus)
{
    Show();
    EXPECT_TRUE(Find<QLineEdit>("txtStationName").hasFocus());
    EXPECT_EQ(Find<QLineEdit>("txtStationName").selectedText(), QStringLiteral("Radio Station"));
    auto& number = Find<QLineEdit>("txtStationPhoneNumber");
    QTest::mouseClick(&number, Qt::LeftButton, Qt::NoModifier, QPoint(20, number.height() / 2));
    EXPECT_EQ(number.selectedText(), QStringLiteral("01632 960100"));
    QTest::mouseClick(&number, Qt::LeftButton, Qt::NoModifier, QPoint(20, number.height() / 2));
    EXPECT_EQ(number.selectedText(), QString());
    QTest::keyClick(&number, Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_TRUE(number.hasFocus());
    EXPECT_EQ(number.selectedText(), QStringLiteral("01632 960100"));
}

TEST_F(frmDatabaseSettingsTest, EnterIsOKButInTheAddressANewLine)
{
    Show();
    EXPECT_TRUE(Find<QPushButton>("cmdOK").isDefault());
    QTest::keyClick(&Find<QLineEdit>("txtStationName"), Qt::Key_Tab);
    auto& address = Find<QPlainTextEdit>("txtStationAddress");
    EXPECT_TRUE(address.hasFocus());
    EXPECT_FALSE(Find<QPushButton>("cmdOK").isDefault());
    QTest::keyClick(&address, Qt::Key_Return);
    EXPECT_TRUE(Form->isVisible());
    EXPECT_EQ(address.toPlainText(), QStringLiteral("\n"));
    QTest::keyClick(&address, Qt::Key_Tab);
    EXPECT_TRUE(Find<QLineEdit>("txtStationPhoneNumber").hasFocus());
    EXPECT_TRUE(Find<QPushButton>("cmdOK").isDefault());
    QTest::keyClick(&Find<QLineEdit>("txtStationPhoneNumber"), Qt::Key_Return);
    EXPECT_FALSE(Form->isVisible());
    EXPECT_FALSE(Form->Cancelled());
}

namespace
{
const QString SongQuestion =
    QStringLiteral("Are you sure you want to change these details - the change will take place immediatly");

InputBoxRequest SongBox(const QString& song)
{
    return {QStringLiteral("Current Song Title:"), QStringLiteral("Change Current Song"), song, 0, QString()};
}
} // namespace

TEST_F(frmDatabaseSettingsTest, TheSongChangesAtOnceAndStaysWhenTheDialogIsCancelled)
{
    Station->SetCurrentSongFullName(QStringLiteral("Before"));
    Show();
    Pages().setCurrentIndex(1);
    Ui.ExpectConfirmation(SongQuestion, MessageBoxAnswer::Yes);
    Ui.ExpectInputBox(SongBox(QStringLiteral("Before")), QStringLiteral("The Lighthouse"));
    Click("cmdChangeCurrentSong");
    EXPECT_EQ(Find<QLabel>("lblCurrentSong").text(), QStringLiteral(" The Lighthouse"));
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("The Lighthouse"));
    Click("cmdCancel");
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("The Lighthouse"));
}

TEST_F(frmDatabaseSettingsTest, TheSongStaysWithoutAYesAndAnOK)
{
    Station->SetCurrentSongFullName(QStringLiteral("Before"));
    Show();
    Pages().setCurrentIndex(1);
    Ui.ExpectConfirmation(SongQuestion, MessageBoxAnswer::No);
    Click("cmdChangeCurrentSong");
    Ui.ExpectConfirmation(SongQuestion, MessageBoxAnswer::Yes);
    Ui.ExpectInputBoxCancelled(SongBox(QStringLiteral("Before")));
    Click("cmdChangeCurrentSong");
    EXPECT_EQ(Find<QLabel>("lblCurrentSong").text(), QStringLiteral(" Before"));
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("Before"));
}

TEST_F(frmDatabaseSettingsTest, ALongSongAndMarkupNeitherWidenTheDialogNorBecomeMarkup)
{
    Show();
    const int width = Form->minimumSizeHint().width();
    Station->SetCurrentSongFullName(QStringLiteral("<b>") + QString(400, u'W'));
    Form->SetTolvaDatabase(Station.get());
    EXPECT_EQ(Find<QLabel>("lblCurrentSong").textFormat(), Qt::PlainText);
    EXPECT_LE(Form->minimumSizeHint().width(), width);
}

TEST_F(frmDatabaseSettingsTest, NothingIsSqueezedHoweverSmallTheScreenIs)
{
    Station->SetCurrentSongFullName(QStringLiteral("A song with a long name ").repeated(8));
    Show();
    for (int page = 0; page < 3; ++page) {
        Pages().setCurrentIndex(page);
        QCoreApplication::processEvents();
        for (const QWidget* control : Pages().widget(page)->findChildren<QWidget*>()) {
            if (qobject_cast<const QLineEdit*>(control)) {
                EXPECT_GE(control->height(), control->sizeHint().height()) << qPrintable(control->objectName());
            } else if (qobject_cast<const QAbstractButton*>(control)) {
                EXPECT_GE(control->width(), control->sizeHint().width()) << qPrintable(control->objectName());
            } else if (const auto* const label = qobject_cast<const QLabel*>(control)) {
                EXPECT_GE(label->height(),
                          label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height())
                    << qPrintable(label->objectName());
                EXPECT_TRUE(label->wordWrap() || label->width() >= label->sizeHint().width())
                    << qPrintable(label->objectName());
            }
        }
    }
}

TEST_F(frmDatabaseSettingsTest, AFailureToStoreIsToldAndTheDialogClosesAllTheSame)
{
    Show();
    Type("txtStationName", QStringLiteral("Pier FM"));
    Station->CloseTolvaDatabase();
    const char* const keys[] = {
        "Station.Name",          "Station.Address",          "Station.PhoneNumber", "Station.SMSPhoneNumber",
        "Station.CompanyNumber", "Station.VATNumber",        "SMS.CurrentSong",     "SMS.BuyCurrentSong",
        "BuyNow.AmazonID",       "Backups.EnableAutoBackup", "Backups.Interval",    "Backups.ExpiryDays"};
    for (const char* key : keys)
        Ui.ExpectWarning(QStringLiteral("There was a problem locating the database setting : %1 and the error's "
                                        "description was reported as : \n\n\"No Tolva Database has been opened. "
                                        "(3420)\"")
                             .arg(QLatin1String(key)));
    Click("cmdOK");
    EXPECT_FALSE(Form->isVisible());
    EXPECT_FALSE(Form->Cancelled());
}

TEST_F(frmDatabaseSettingsTest, AStationThatWentMeanwhileIsNotWrittenTo)
{
    Show();
    Station.reset();
    EXPECT_EQ(Form->TolvaDatabase(), nullptr);
    Click("cmdOK");
    EXPECT_FALSE(Form->isVisible());
}

/// Opening a station with real dialogs.
