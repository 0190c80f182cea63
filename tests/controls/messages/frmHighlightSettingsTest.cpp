// SPDX-License-Identifier: Apache-2.0

// The dialog of the words that are marked in messages.

#include "messages/dialogs/frmHighlightSettings.h"

#include "controls/support/WhenShown.h"
#include "core/support/StationTest.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

class frmHighlightSettingsTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }

    void Show()
    {
        Form = std::make_unique<frmHighlightSettings>(*Station);
        Form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form.get()));
    }
    template <typename Control>
    Control& Find(const char* name)
    {
        return *Form->findChild<Control*>(QLatin1String(name));
    }
    QPlainTextEdit& WordBox() { return Find<QPlainTextEdit>("txtWords"); }
    void Click(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
    void Tick(const char* box)
    {
        auto& check = Find<QCheckBox>(box);
        QTest::mouseClick(&check, Qt::LeftButton, Qt::NoModifier, QPoint(8, check.height() / 2));
    }
    void TypeWords(const QString& text)
    {
        WordBox().setFocus();
        QTest::keyClick(&WordBox(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&WordBox(), Qt::Key_Delete);
        for (const QChar character : text) {
            if (character == u'\n')
                QTest::keyClick(&WordBox(), Qt::Key_Return);
            else
                QTest::keyClicks(&WordBox(), QString(character));
        }
    }
    QString Stored(const char* key) const
    {
        return Station->DatabaseSetting(QLatin1String(key), QStringLiteral("(none)")).toString();
    }
    void Store(const char* key, const QVariant& value)
    {
        Station->SetDatabaseSetting(QLatin1String(key), value, QVariant());
    }

    std::unique_ptr<frmHighlightSettings> Form;
};

TEST_F(frmHighlightSettingsTest, ANewStationHasNoWordsAndRedBoldTahoma)
{
    Show();
    EXPECT_EQ(WordBox().toPlainText(), QString());
    EXPECT_EQ(Find<QComboBox>("comboFont").currentText(), QStringLiteral("Tahoma"));
    EXPECT_EQ(Find<QSpinBox>("spinSize").value(), 3);
    EXPECT_TRUE(Find<QCheckBox>("chkBold").isChecked());
    EXPECT_FALSE(Find<QCheckBox>("chkItalic").isChecked());
    EXPECT_FALSE(Find<QCheckBox>("chkUnderline").isChecked());
    EXPECT_FALSE(Find<QCheckBox>("chkStrikethrough").isChecked());
    EXPECT_EQ(Form->Font().Colour, 255);
    EXPECT_EQ(Find<QPushButton>("cmdColour").accessibleDescription(), QStringLiteral("The colour is #FF0000"));
    EXPECT_TRUE(WordBox().hasFocus());
}

TEST_F(frmHighlightSettingsTest, WhatAnotherComputerStoredMeanwhileIsShown)
{
    Store("Messages.HighlightWords", QStringLiteral("win|jackpot"));
    Store("Messages.HighLightTextColour", 0x563412);
    Store("Messages.HighLightBold", 0);
    Store("Messages.HighLightItalic", 1);
    Store("Messages.HighLightUnderLine", 1);
    Store("Messages.HighLightStrikeThru", 1);
    Store("Messages.HighLightSize", 12);
    Store("Messages.HighlightFont", QStringLiteral("A Font That Is Not Here"));
    Show();
    EXPECT_EQ(WordBox().toPlainText(), QStringLiteral("win\njackpot"));
    EXPECT_EQ(Find<QPushButton>("cmdColour").accessibleDescription(), QStringLiteral("The colour is #123456"));
    EXPECT_FALSE(Find<QCheckBox>("chkBold").isChecked());
    EXPECT_TRUE(Find<QCheckBox>("chkItalic").isChecked());
    EXPECT_TRUE(Find<QCheckBox>("chkUnderline").isChecked());
    EXPECT_TRUE(Find<QCheckBox>("chkStrikethrough").isChecked());
    EXPECT_EQ(Find<QSpinBox>("spinSize").value(), 12);
    EXPECT_EQ(Find<QComboBox>("comboFont").currentText(), QStringLiteral("A Font That Is Not Here"));
    // OK changes nothing of it.
    Click("cmdOK");
    EXPECT_EQ(Stored("Messages.HighlightWords"), QStringLiteral("win|jackpot"));
    EXPECT_EQ(Stored("Messages.HighLightSize"), QStringLiteral("12"));
    EXPECT_EQ(Stored("Messages.HighlightFont"), QStringLiteral("A Font That Is Not Here"));
}

TEST_F(frmHighlightSettingsTest, OKStoresAllAndTheNextMessageIsMarkedSo)
{
    Show();
    TypeWords(QStringLiteral("play\njackpot"));
    auto& font = Find<QComboBox>("comboFont");
    font.setFocus();
    QTest::keyClick(&font, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&font, QStringLiteral("Arial"));
    QTest::keyClick(&Find<QSpinBox>("spinSize"), Qt::Key_Up);
    Tick("chkBold");
    Tick("chkUnderline");
    {
        const WhenShown<QColorDialog> shown([](QColorDialog& dialog) {
            EXPECT_EQ(dialog.currentColor(), QColor(Qt::red));
            dialog.setCurrentColor(QColor(0x12, 0x34, 0x56));
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        Click("cmdColour");
    }
    Click("cmdOK");
    EXPECT_FALSE(Form->isVisible());
    EXPECT_EQ(Form->result(), QDialog::Accepted);
    EXPECT_EQ(Stored("Messages.HighlightWords"), QStringLiteral("play|jackpot"));
    EXPECT_EQ(Stored("Messages.HighlightFont"), QStringLiteral("Arial"));
    EXPECT_EQ(Stored("Messages.HighLightSize"), QStringLiteral("4"));
    EXPECT_EQ(Stored("Messages.HighLightTextColour"), QString::number(0x563412));
    EXPECT_EQ(Stored("Messages.HighLightBold"), QStringLiteral("0"));
    EXPECT_EQ(Stored("Messages.HighLightUnderLine"), QStringLiteral("1"));
    const cMessagePtr message = MakeMessage(QStringLiteral("Hello"));
    message->CDOMessage()->SetHTMLBody(QStringLiteral("<p>Please play it.</p>"));
    EXPECT_TRUE(Station->SaveMessage(message));
    EXPECT_TRUE(message->HasHighlightWords());
    EXPECT_TRUE(message->CDOMessage()->HTMLBody().contains(
        QStringLiteral("<font face = \"Arial\" size = \"4\" color = \"#123456\"><u>play</u></font>")))
        << qPrintable(message->CDOMessage()->HTMLBody());
}

TEST_F(frmHighlightSettingsTest, OnlyTheHighlightsAreStored)
{
    // Another computer has changed what this one still holds as it was.
    Show();
    Store("Backups.Interval", 60);
    TypeWords(QStringLiteral("win"));
    Click("cmdOK");
    EXPECT_EQ(Stored("Backups.Interval"), QStringLiteral("60"));
}

TEST_F(frmHighlightSettingsTest, CancelEscapeAndTheCloseBoxStoreNothing)
{
    for (int way = 0; way < 3; ++way) {
        Show();
        TypeWords(QStringLiteral("win"));
        Tick("chkItalic");
        if (way == 0)
            Click("cmdCancel");
        else if (way == 1)
            QTest::keyClick(&WordBox(), Qt::Key_Escape);
        else
            Form->close();
        EXPECT_FALSE(Form->isVisible());
        EXPECT_EQ(Form->result(), QDialog::Rejected);
        EXPECT_EQ(Stored("Messages.HighlightWords"), QStringLiteral("(none)"));
        EXPECT_FALSE(Station->MessageHighlightFont().Italic);
    }
}

TEST_F(frmHighlightSettingsTest, EmptyLinesAndRepetitionsAreLeftOutAndABarSeparatesWords)
{
    Show();
    TypeWords(QStringLiteral("win\n\n   \nWIN\na|b\n cat \n"));
    EXPECT_EQ(Form->Words(), QStringLiteral("win|a|b| cat "));
    TypeWords(QString());
    Click("cmdOK");
    EXPECT_EQ(Stored("Messages.HighlightWords"), QStringLiteral("(none)"));
    // An empty entry of another program would be found before each character.
    Store("Messages.HighlightWords", QStringLiteral("|win||"));
    Show();
    EXPECT_EQ(WordBox().toPlainText(), QStringLiteral("win"));
}

TEST_F(frmHighlightSettingsTest, AFontsNameCannotBreakTheMessagesHtml)
{
    Show();
    auto& font = Find<QComboBox>("comboFont");
    font.setFocus();
    QTest::keyClick(&font, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&font, QStringLiteral("My\"><b>&Font"));
    EXPECT_EQ(Form->Font().Name, QStringLiteral("MybFont"));
}

TEST_F(frmHighlightSettingsTest, ThePreviewShowsTheFirstWordAsAMessageWould)
{
    Show();
    auto& preview = Find<QLabel>("lblPreview");
    EXPECT_TRUE(preview.text().contains(QStringLiteral("lighthouse")));
    TypeWords(QStringLiteral("<jack & pot>"));
    EXPECT_TRUE(preview.text().contains(QStringLiteral("&lt;jack &amp; pot&gt;"))) << qPrintable(preview.text());
    const QString bold = preview.text();
    const QImage boldImage = preview.grab().toImage();
    Tick("chkBold");
    EXPECT_NE(preview.text(), bold);
    EXPECT_NE(preview.grab().toImage(), boldImage);
    const QImage plain = preview.grab().toImage();
    Tick("chkUnderline");
    EXPECT_NE(preview.grab().toImage(), plain);
    EXPECT_EQ(plain.pixelColor(1, 1), QColor(Qt::white));
}

TEST_F(frmHighlightSettingsTest, TabGoesThroughTheControlsAndEachHasAName)
{
    Show();
    for (const char* name : {"txtWords", "comboFont", "spinSize", "cmdColour", "chkBold", "chkItalic", "chkUnderline",
                             "chkStrikethrough", "cmdOK", "cmdCancel"}) {
        EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String(name));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (const std::pair<Qt::Key, const char*>& key :
         {std::pair{Qt::Key_F, "comboFont"}, {Qt::Key_S, "spinSize"}, {Qt::Key_W, "txtWords"}}) {
        QTest::keyClick(Form.get(), key.first, Qt::AltModifier);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String(key.second));
    }
    QTest::keyClick(Form.get(), Qt::Key_F, Qt::AltModifier);
    QTest::keyClick(&Find<QComboBox>("comboFont"), Qt::Key_Return);
    EXPECT_FALSE(Form->isVisible());
    EXPECT_EQ(Form->result(), QDialog::Accepted);
}

TEST_F(frmHighlightSettingsTest, WhatCouldNotBeStoredIsToldOnceAndStaysInTheDialog)
{
    Show();
    TypeWords(QStringLiteral("win"));
    Station->CloseTolvaDatabase();
    Ui.ExpectWarning(
        QStringLiteral("There was a problem locating the database setting : Messages.HighLightTextColour and the "
                       "error's description was reported as : \n\n\"No Tolva Database has been opened. (3420)\""));
    Click("cmdOK");
    EXPECT_TRUE(Form->isVisible());
    EXPECT_EQ(WordBox().toPlainText(), QStringLiteral("win"));
    Click("cmdCancel");
}

TEST_F(frmHighlightSettingsTest, AUserWithoutTheRightNeverSeesTheDialog)
{
    Directory.User.Rights = 15;
    Ui.ExpectWarning(QStringLiteral("You are not allowed to use or alter the Tolva Database's Settings"));
    EXPECT_FALSE(DisplayHighlightSettings(*Station, nullptr));
}

TEST_F(frmHighlightSettingsTest, DisplayTellsWhetherTheSettingsWereStored)
{
    for (const bool isConfirmed : {true, false}) {
        const WhenShown<frmHighlightSettings> shown([&](frmHighlightSettings& form) {
            EXPECT_TRUE(form.isModal());
            QTest::mouseClick(
                form.findChild<QPushButton*>(isConfirmed ? QStringLiteral("cmdOK") : QStringLiteral("cmdCancel")),
                Qt::LeftButton);
        });
        EXPECT_EQ(DisplayHighlightSettings(*Station, nullptr), isConfirmed);
    }
}
