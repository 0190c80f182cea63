// SPDX-License-Identifier: Apache-2.0
#include "printing/LabelsDialog.h"

#include "AccessKeys.h"
#include "DeskTest.h"
#include "StationPlace.h"
#include "platform/records/DBEngine.h"
#include "printing/PrintTarget.h"
#include "support/ScriptedFileDialog.h"
#include "window/SavedNotice.h"

#include <QBuffer>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPdfWriter>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QtTest>

namespace
{
class LabelsDialogTest : public DeskTest
{
protected:
    void SetUp() override
    {
        DeskTest::SetUp();
        cPageSetup& sheet = Station.Database().AddressLabelsPageSetup();
        sheet.SetTopMargin(10);
        sheet.SetLeftMargin(5);
        sheet.SetNumberColumns(2);
        sheet.SetNumberRows(4);
        sheet.SetColumnWidth(100);
        sheet.SetRowHeight(60);
    }
    void TearDown() override
    {
        Dialog.reset();
        PrintTarget::SetPrinterChooser({});
        DeskTest::TearDown();
    }
    qint32 AddContact(const QString& name, const QString& other)
    {
        clsKVContact contact;
        contact.Name = name;
        contact.Other = other;
        Station.Directory().SaveContact(contact);
        return contact.Reference;
    }
    void AddThree()
    {
        AddContact(QStringLiteral("Bryn Pascoe"), QStringLiteral("2 Quay Street\r\n\r\n Porthmellin "));
        AddContact(QStringLiteral("Ann Tregenza"), QStringLiteral("1 Hill Road\nPorthmellin"));
        AddContact(QStringLiteral("Cass Nobody"), QString());
    }
    qint32 AddPrize(const QString& title)
    {
        const auto database = dao::DBEngine::OpenDatabase(StationPlace::FileIn(Folder()));
        const auto rows = database->OpenRecordset(QStringLiteral("Prizes"), dao::dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Title"), title);
        const qint32 reference = rows->Collect(QStringLiteral("Reference")).toInt();
        rows->Update();
        return reference;
    }
    void AddWinner(qint32 prize, qint32 contact)
    {
        const auto database = dao::DBEngine::OpenDatabase(StationPlace::FileIn(Folder()));
        const auto rows = database->OpenRecordset(QStringLiteral("PrizeWinners"), dao::dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("PrizeReference"), prize);
        rows->SetCollect(QStringLiteral("WinnerReference"), contact);
        rows->Update();
    }
    void Open()
    {
        Dialog = std::make_unique<LabelsDialog>(Station);
        Dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(Dialog.get()));
    }
    template <typename T>
    T& Part(const char* name)
    {
        return *Dialog->findChild<T*>(QLatin1String(name));
    }
    QListWidget& List() { return Part<QListWidget>("contacts"); }
    void Click(const char* button) { QTest::mouseClick(&Part<QPushButton>(button), Qt::LeftButton); }
    QString Words(const char* label) { return Part<QLabel>(label).text(); }
    /// Checks or unchecks as the space bar does.
    void Toggle(int row)
    {
        List().setFocus();
        List().setCurrentRow(row);
        QTest::keyClick(&List(), Qt::Key_Space);
    }
    static qsizetype Pages(const QByteArray& pdf) { return pdf.count("/Type /Page\n"); }

    std::unique_ptr<LabelsDialog> Dialog;
};

const QString Ann = QStringLiteral("Ann Tregenza\n1 Hill Road\nPorthmellin");
const QString Bryn = QStringLiteral("Bryn Pascoe\n2 Quay Street\nPorthmellin");
} // namespace

TEST_F(LabelsDialogTest, ALabelIsTheNameAndTheLinesOfTheOtherDetail)
{
    AddThree();
    Open();
    ASSERT_EQ(List().count(), 3);
    EXPECT_EQ(List().item(0)->text(), QStringLiteral("Ann Tregenza"));
    EXPECT_EQ(List().item(2)->text(), QStringLiteral("Cass Nobody (no address)"));
    EXPECT_EQ(Words("count"), QStringLiteral("Check who gets a label."));
    EXPECT_FALSE(Part<QPushButton>("print").isEnabled());
    Toggle(0);
    Toggle(1);
    EXPECT_EQ(Dialog->Texts(), (QStringList{Ann, Bryn}));
    EXPECT_EQ(Words("count"), QStringLiteral("2 labels on 1 sheet"));
    Toggle(0);
    EXPECT_EQ(Dialog->Texts(), QStringList{Bryn});
    EXPECT_EQ(Words("count"), QStringLiteral("1 label on 1 sheet"));
}

TEST_F(LabelsDialogTest, WhatStandsBelowTwoEmptyLinesIsNotPrinted)
{
    AddContact(QStringLiteral("Ann Tregenza"), QStringLiteral("1 Hill Road\nPorthmellin\n\n\nBirthday: 3 May"));
    Open();
    Toggle(0);
    EXPECT_EQ(Dialog->Texts(), QStringList{Ann});
}

TEST_F(LabelsDialogTest, FindHidesTheOthersAndCheckAllTakesWhatIsShown)
{
    AddThree();
    Open();
    Part<QLineEdit>("find").setFocus();
    QTest::keyClicks(&Part<QLineEdit>("find"), QStringLiteral("quay"));
    EXPECT_TRUE(List().item(0)->isHidden());
    EXPECT_FALSE(List().item(1)->isHidden());
    Click("checkAll");
    EXPECT_EQ(Dialog->Texts(), QStringList{Bryn});
    QTest::keyClick(&Part<QLineEdit>("find"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&Part<QLineEdit>("find"), Qt::Key_Delete);
    EXPECT_EQ(Dialog->Texts(), QStringList{Bryn});
    Click("checkNone");
    EXPECT_TRUE(Dialog->Texts().isEmpty());
}

TEST_F(LabelsDialogTest, LabelsAreSavedAsAPdfFile)
{
    AddThree();
    Open();
    Toggle(0);
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("labels.pdf")));
    Click("savePdf");
    const QByteArray pdf = Read(Path(QStringLiteral("labels.pdf")));
    EXPECT_TRUE(pdf.startsWith("%PDF"));
    EXPECT_EQ(Pages(pdf), 1);
    EXPECT_EQ(files.Requests().first().DefaultExt, QStringLiteral("pdf"));
    EXPECT_TRUE(Part<SavedNotice>("savedNotice").isVisible());
    EXPECT_EQ(Part<SavedNotice>("savedNotice").Text(),
              QStringLiteral("Saved as %1").arg(Path(QStringLiteral("labels.pdf"))));
    EXPECT_EQ(AccessKeys(*Dialog).Clashes(), QStringList());
}

TEST_F(LabelsDialogTest, APdfFileThatCannotBeWrittenIsToldInWords)
{
    AddThree();
    Open();
    Toggle(0);
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("labels.pdf")));
    Click("savePdf");
    ASSERT_TRUE(Part<SavedNotice>("savedNotice").isVisible());
    const QString file = Path(QStringLiteral("nowhere/labels.pdf"));
    files.ExpectSave(file);
    Ui.ExpectWarning(
        QStringLiteral("The file \"%1\" could not be written: there is no such file or folder.").arg(file));
    Click("savePdf");
    EXPECT_TRUE(Part<SavedNotice>("savedNotice").isHidden());
}

TEST_F(LabelsDialogTest, StartingAtALaterLabelNeedsASecondSheetSooner)
{
    AddThree();
    Open();
    EXPECT_EQ(Part<QSpinBox>("startAt").maximum(), 8);
    Toggle(0);
    Toggle(1);
    Part<QSpinBox>("startAt").setFocus();
    Part<QSpinBox>("startAt").selectAll();
    QTest::keyClicks(&Part<QSpinBox>("startAt"), QStringLiteral("8"));
    EXPECT_EQ(Words("count"), QStringLiteral("2 labels on 2 sheets"));
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("labels.pdf")));
    Click("savePdf");
    EXPECT_EQ(Pages(Read(Path(QStringLiteral("labels.pdf")))), 2);
}

TEST_F(LabelsDialogTest, PrintingAndTheTestPrintGoToTheChosenPrinter)
{
    AddThree();
    Open();
    Toggle(0);
    QBuffer paper;
    paper.open(QIODevice::WriteOnly);
    int asked = 0;
    PrintTarget::SetPrinterChooser([&](QWidget*, std::optional<int> pageCount) {
        EXPECT_FALSE(pageCount);
        ++asked;
        return std::make_unique<QPdfWriter>(&paper);
    });
    Click("print");
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(Pages(paper.data()), 1);
    Click("testPrint");
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(Pages(paper.data()), 2);
    PrintTarget::SetPrinterChooser([](QWidget*, std::optional<int>) { return nullptr; });
    Click("print");
}

TEST_F(LabelsDialogTest, TheWinnersOfAPrizeAreCheckedAtOnce)
{
    AddThree();
    const qint32 bryn = Station.Directory().Contacts().at(1)->Reference;
    const qint32 cass = Station.Directory().Contacts().at(2)->Reference;
    AddPrize(QStringLiteral("A mug"));
    const qint32 tickets = AddPrize(QStringLiteral("Two tickets"));
    AddWinner(tickets, cass);
    AddWinner(tickets, bryn);
    AddWinner(tickets, bryn);
    AddWinner(tickets, 4711);
    Open();
    QTest::mouseClick(&Part<QRadioButton>("fromWinners"), Qt::LeftButton, {},
                      QPoint(8, Part<QRadioButton>("fromWinners").height() / 2));
    EXPECT_EQ(Words("note"), QStringLiteral("Nobody has won this prize yet."));
    Part<QComboBox>("prize").setFocus();
    QTest::keyClick(&Part<QComboBox>("prize"), Qt::Key_Down);
    EXPECT_EQ(Part<QComboBox>("prize").currentText(), QStringLiteral("Two tickets"));
    ASSERT_EQ(List().count(), 2);
    EXPECT_EQ(Dialog->Texts(), QStringList{Bryn});
    EXPECT_EQ(Words("note"), QStringLiteral("1 winner is not in the directory any more."));
}

TEST_F(LabelsDialogTest, WithoutPrizesItSaysSo)
{
    AddThree();
    Open();
    EXPECT_FALSE(Part<QRadioButton>("fromWinners").isEnabled());
    EXPECT_EQ(Words("note"), QStringLiteral("This station has no prizes, so there are no winners to choose."));
}

TEST_F(LabelsDialogTest, WithoutContactsItSaysSo)
{
    Open();
    EXPECT_EQ(Words("note"), QStringLiteral("The directory has no contacts."));
    EXPECT_FALSE(Part<QPushButton>("print").isEnabled());
}

TEST_F(LabelsDialogTest, MeasuresThatDoNotFitThePaperAreSaid)
{
    AddThree();
    // 10 + 4 * 70 mm fit A4 and not Letter.
    Station.Database().AddressLabelsPageSetup().SetRowHeight(70);
    Open();
    Toggle(0);
    EXPECT_EQ(Words("problem"), QString());
    EXPECT_TRUE(Part<QPushButton>("print").isEnabled());
    Part<QComboBox>("paper").setFocus();
    QTest::keyClick(&Part<QComboBox>("paper"), Qt::Key_Down);
    EXPECT_EQ(Part<QComboBox>("paper").currentText(), QStringLiteral("Letter"));
    EXPECT_TRUE(Words("problem").endsWith(QStringLiteral("“Label sheet set-up...” in the menu “Station” corrects it.")))
        << Words("problem").toStdString();
    EXPECT_TRUE(Part<QLabel>("problem").isVisible());
    QTest::keyClick(&Part<QComboBox>("paper"), Qt::Key_Up);
    EXPECT_FALSE(Part<QLabel>("problem").isVisible());
}

TEST_F(LabelsDialogTest, ASheetWithoutLabelsPrintsNothingAndSaysWhy)
{
    AddThree();
    Station.Database().AddressLabelsPageSetup().SetNumberRows(0);
    Open();
    Toggle(0);
    EXPECT_EQ(Words("problem"),
              QStringLiteral("There are no labels on the sheet: the number of rows or columns is 0. “Label sheet "
                             "set-up...” in the menu “Station” corrects it."));
    for (const char* button : {"print", "savePdf", "testPrint"})
        EXPECT_FALSE(Part<QPushButton>(button).isEnabled()) << button;
}
