// SPDX-License-Identifier: Apache-2.0

// The dialog of a sheet of labels.

#include "common/dialogs/frmPageSetupLabels.h"

#include "common/cPageSetup.h"
#include "common/dialogs/DialogUserInterface.h"
#include "controls/support/WhenShown.h"
#include "core/support/StationTest.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class frmPageSetupLabelsTest : public testing::Test
{
protected:
    frmPageSetupLabelsTest()
    {
        PageSetup.SetTopMargin(11);
        PageSetup.SetLeftMargin(12);
        PageSetup.SetNumberColumns(3);
        PageSetup.SetNumberRows(7);
        PageSetup.SetColumnWidth(64);
        PageSetup.SetRowHeight(38);
    }
    ~frmPageSetupLabelsTest() override { Form.close(); }

    void Show()
    {
        Form.SetPageSetup(&PageSetup);
        Form.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Form));
    }
    QLineEdit& Field(const char* name) { return *Form.findChild<QLineEdit*>(QLatin1String(name)); }
    QPushButton& Button(const char* name) { return *Form.findChild<QPushButton*>(QLatin1String(name)); }
    void Type(const char* name, const QString& text)
    {
        Field(name).setFocus(Qt::TabFocusReason);
        QTest::keyClick(&Field(name), Qt::Key_Delete);
        QTest::keyClicks(&Field(name), text);
    }
    void Paste(const char* name, const QString& text)
    {
        QGuiApplication::clipboard()->setText(text);
        Field(name).setFocus(Qt::TabFocusReason);
        QTest::keyClick(&Field(name), Qt::Key_V, Qt::ControlModifier);
    }

    cPageSetup PageSetup;
    frmPageSetupLabels Form;
};

TEST_F(frmPageSetupLabelsTest, ShowsTheSixValuesAndTheirWords)
{
    Show();
    EXPECT_EQ(Form.windowTitle(), QStringLiteral("Page Setup - Labels"));
    EXPECT_EQ(Field("txtTopMargin").text(), QStringLiteral("11"));
    EXPECT_EQ(Field("txtLeftMargin").text(), QStringLiteral("12"));
    EXPECT_EQ(Field("txtNumberColumns").text(), QStringLiteral("3"));
    EXPECT_EQ(Field("txtNumberRows").text(), QStringLiteral("7"));
    EXPECT_EQ(Field("txtColumnWidth").text(), QStringLiteral("64"));
    EXPECT_EQ(Field("txtRowHeight").text(), QStringLiteral("38"));
    QStringList words;
    for (const QLabel* label : Form.findChildren<QLabel*>())
        words.append(label->text());
    words.sort();
    EXPECT_EQ(words,
              (QStringList{QStringLiteral("Height:"), QStringLiteral("No. Columns:"), QStringLiteral("No. Rows:"),
                           QStringLiteral("Note: All measurements are in Millimeters"), QStringLiteral("Page Margins:"),
                           QStringLiteral("Width")}));
}

TEST_F(frmPageSetupLabelsTest, OKWritesTheSixValuesAndCloses)
{
    PageSetup.SetBottomMargin(77);
    PageSetup.SetRightMargin(78);
    Show();
    Type("txtTopMargin", QStringLiteral("1"));
    Type("txtLeftMargin", QStringLiteral("2"));
    Type("txtNumberColumns", QStringLiteral("4"));
    Type("txtNumberRows", QStringLiteral("5"));
    Type("txtColumnWidth", QStringLiteral("60"));
    Type("txtRowHeight", QStringLiteral("70"));
    EXPECT_EQ(PageSetup.TopMargin(), 11);
    QTest::mouseClick(&Button("cmdOK"), Qt::LeftButton);
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(PageSetup.TopMargin(), 1);
    EXPECT_EQ(PageSetup.LeftMargin(), 2);
    EXPECT_EQ(PageSetup.NumberColumns(), 4);
    EXPECT_EQ(PageSetup.NumberRows(), 5);
    EXPECT_EQ(PageSetup.ColumnWidth(), 60);
    EXPECT_EQ(PageSetup.RowHeight(), 70);
    EXPECT_EQ(PageSetup.BottomMargin(), 77);
    EXPECT_EQ(PageSetup.RightMargin(), 78);
}

TEST_F(frmPageSetupLabelsTest, CancelEscapeAndTheCloseBoxLeaveItAsItWas)
{
    for (int way = 0; way < 3; ++way) {
        Show();
        Type("txtTopMargin", QStringLiteral("99"));
        if (way == 0)
            QTest::mouseClick(&Button("cmdCancel"), Qt::LeftButton);
        else if (way == 1)
            QTest::keyClick(&Form, Qt::Key_Escape);
        else
            Form.close();
        EXPECT_FALSE(Form.isVisible());
        EXPECT_EQ(PageSetup.TopMargin(), 11);
    }
}

TEST_F(frmPageSetupLabelsTest, OKIsEnabledByAChange)
{
    Form.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Form));
    EXPECT_FALSE(Button("cmdOK").isEnabled());
    Type("txtTopMargin", QStringLiteral("5"));
    EXPECT_TRUE(Button("cmdOK").isEnabled());
    // Nothing to write to.
    QTest::mouseClick(&Button("cmdOK"), Qt::LeftButton);
    EXPECT_FALSE(Form.isVisible());
}

TEST_F(frmPageSetupLabelsTest, LettersCannotBeTypedAndArePutRightWhenPasted)
{
    Show();
    Type("txtTopMargin", QStringLiteral("1x2-.,"));
    EXPECT_EQ(Field("txtTopMargin").text(), QStringLiteral("12"));
    Paste("txtColumnWidth", QStringLiteral("12abc"));
    EXPECT_EQ(Field("txtColumnWidth").text(), QStringLiteral("12abc"));
    QTest::keyClick(&Field("txtColumnWidth"), Qt::Key_Tab);
    EXPECT_EQ(Field("txtColumnWidth").text(), QStringLiteral("12"));
    Paste("txtColumnWidth", QStringLiteral("abc"));
    QTest::keyClick(&Field("txtColumnWidth"), Qt::Key_Tab);
    EXPECT_EQ(Field("txtColumnWidth").text(), QStringLiteral("0"));
}

TEST_F(frmPageSetupLabelsTest, NumbersOutOfRangeArePutRightWhenTheFieldIsLeft)
{
    Show();
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("1000"), QStringLiteral("999")},
        {QStringLiteral("999"), QStringLiteral("999")},
        {QStringLiteral("99999999999999999999999"), QStringLiteral("999")},
        {QStringLiteral("-5"), QStringLiteral("0")},
        {QStringLiteral("-99999999999999999999999"), QStringLiteral("0")},
        {QStringLiteral("007"), QStringLiteral("7")},
        {QStringLiteral(" 8 mm"), QStringLiteral("8")},
    };
    for (const auto& [typed, corrected] : cases) {
        Paste("txtRowHeight", typed);
        QTest::keyClick(&Field("txtRowHeight"), Qt::Key_Tab);
        EXPECT_EQ(Field("txtRowHeight").text(), corrected) << qPrintable(typed);
    }
}

TEST_F(frmPageSetupLabelsTest, EnterPutsTheFieldRightToo)
{
    Show();
    Type("txtRowHeight", QStringLiteral("1000"));
    QTest::keyClick(&Field("txtRowHeight"), Qt::Key_Return);
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(PageSetup.RowHeight(), 999);
}

TEST_F(frmPageSetupLabelsTest, AFieldThatWasNotTouchedKeepsItsNumber)
{
    PageSetup.SetColumnWidth(1200);
    Show();
    QTest::mouseClick(&Button("cmdOK"), Qt::LeftButton);
    EXPECT_EQ(PageSetup.ColumnWidth(), 1200);
}

TEST_F(frmPageSetupLabelsTest, EachFieldSelectsItsTextAndTabGoesThroughThem)
{
    Show();
    for (const char* name :
         {"txtNumberRows", "txtNumberColumns", "txtTopMargin", "txtLeftMargin", "txtRowHeight", "txtColumnWidth"}) {
        EXPECT_TRUE(Field(name).hasFocus()) << name;
        EXPECT_EQ(Field(name).selectedText(), Field(name).text()) << name;
        EXPECT_FALSE(Field(name).accessibleName().isEmpty()) << name;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_TRUE(Button("cmdOK").hasFocus());
}

TEST_F(frmPageSetupLabelsTest, TheSketchStaysAsItIs)
{
    Show();
    auto& sketch = *Form.findChild<QWidget*>(QStringLiteral("picPreview"));
    const QImage before = sketch.grab().toImage();
    Type("txtNumberRows", QStringLiteral("1"));
    Type("txtColumnWidth", QStringLiteral("10"));
    EXPECT_EQ(sketch.grab().toImage(), before);
    // It is drawn, not blank.
    QSet<QRgb> colours;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x)
            colours.insert(before.pixel(x, y));
    }
    EXPECT_GT(colours.size(), 3);
}

class LabelSettingsTest : public StationTest
{
};

TEST_F(LabelSettingsTest, TheDialogOfAStationsLabelsStoresAtTheNextWrite)
{
    OpenStation();
    DialogUserInterface dialogs;
    UserInterface::SetCurrent(&dialogs);
    {
        const WhenShown<frmPageSetupLabels> shown([](frmPageSetupLabels& form) {
            EXPECT_TRUE(form.isModal());
            EXPECT_EQ(form.findChild<QLineEdit*>(QStringLiteral("txtColumnWidth"))->text(), QStringLiteral("104"));
            QTest::keyClicks(form.focusWidget(), QStringLiteral("8"));
            QTest::keyClick(form.focusWidget(), Qt::Key_Return);
        });
        Station->AddressLabelsPageSetup().DisplayPageSetupLabels();
    }
    UserInterface::SetCurrent(&Ui);
    const QString key = QStringLiteral("AddressLabels.NumberRows");
    EXPECT_EQ(Station->AddressLabelsPageSetup().NumberRows(), 8);
    EXPECT_EQ(Station->DatabaseSetting(key, 4).toInt(), 4);
    Station->WriteDatabaseSettings();
    EXPECT_EQ(Station->DatabaseSetting(key, 4).toInt(), 8);
}
