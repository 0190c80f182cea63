// SPDX-License-Identifier: Apache-2.0

// Prizes in the print dialog: from their page, from their windows.

#include "PrizeSheet.h"
#include "common/FileHelper.h"
#include "common/LibraryFolder.h"
#include "platform/widgets/PrintedPages.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDeskTest.h"
#include "support/ScriptedFileDialog.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

namespace
{
class PrizePrintingTest : public PrizeDeskTest
{
protected:
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        Ann = AddContact(QStringLiteral("Ann Angove"));
        Prize = AddPrize(QStringLiteral("Two tickets: \"Hamlet\""), 3, [this](cPrize& prize) {
            prize.SetScript(QStringLiteral("Two tickets for Saturday."));
            prize.SetSupplierReference(Ann);
        });
        AwardElsewhere(Prize, Ann);
    }
    void TearDown() override
    {
        Dialog.reset();
        PrizeDeskTest::TearDown();
    }
    PrizePage::Prize Sheet()
    {
        const auto sheet = PrizeSheet::Read(Station.Database(), Station.Directory(), Prize);
        EXPECT_TRUE(sheet);
        return sheet.value_or(PrizePage::Prize());
    }
    void Open()
    {
        PrintJob job;
        job.Prize = Sheet();
        Dialog = std::make_unique<PrintDialog>(Station, *Settings, std::move(job));
        Dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(Dialog.get()));
        ASSERT_TRUE(WaitUntil([this] { return Dialog->IsLaidOut(); }));
    }
    void AddTemplate(const char* name, const QByteArray& text)
    {
        QFile file(Station.Database().HTMLTemplatesLocation() + u'/' + QLatin1String(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    /// What the dialog that the action opens says of itself: its title and what it counts.
    QStringList DialogOf(const std::function<void()>& action)
    {
        QStringList words;
        const DialogVisitor visitor("printDialog", [&](QDialog& dialog) {
            auto& print = dynamic_cast<PrintDialog&>(dialog);
            EXPECT_TRUE(WaitUntil([&] { return print.IsLaidOut(); }));
            words = {print.windowTitle(), Get<QLabel>(print, "count").text()};
            print.reject();
        });
        action();
        return words;
    }
    QAction& MainAction(const char* name)
    {
        return *Window->findChild<QAction*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
    }
    const QStringList PrizeDialog = {QStringLiteral("Print prize"), QStringLiteral("1 prize on 1 page")};

    qint32 Ann = 0;
    qint32 Prize = 0;
    std::unique_ptr<PrintDialog> Dialog;
};
} // namespace

TEST_F(PrizePrintingTest, ASheetSaysWhatIsStoredByName)
{
    const cPrizePtr stored = Stored(Prize);
    stored->SetEndDate(Date(2026, 11, 30, 18, 30, 0));
    ASSERT_TRUE(Station.Database().SavePrize(stored));
    const PrizePage::Prize sheet = Sheet();
    EXPECT_EQ(sheet.Reference, Prize);
    EXPECT_EQ(sheet.Script, QStringLiteral("Two tickets for Saturday."));
    EXPECT_EQ(sheet.Supplier, QStringLiteral("Ann Angove"));
    EXPECT_EQ(sheet.Start, QString());
    EXPECT_EQ(sheet.End, QStringLiteral("30 November 2026, 18:30"));
    EXPECT_EQ(sheet.Supplied, 3);
    EXPECT_EQ(sheet.Won, 1);
    ASSERT_EQ(sheet.Winners.size(), 1);
    EXPECT_EQ(sheet.Winners.first().Name, QStringLiteral("Ann Angove"));
    EXPECT_EQ(sheet.Winners.first().Won, QStringLiteral("21 November 2026, 14:05"));
    EXPECT_EQ(sheet.Winners.first().Sent, QString());
    EXPECT_FALSE(PrizeSheet::Read(Station.Database(), Station.Directory(), 4711));
}

TEST_F(PrizePrintingTest, DatesOfSummerAreInLocalTime)
{
    AwardElsewhere(Prize, Ann, Date(2026, 7, 1, 9, 0, 0));
    EXPECT_EQ(Sheet().Winners.first().Won, QStringLiteral("1 July 2026, 09:00"));
}

TEST_F(PrizePrintingTest, TheDialogOffersTheTemplatesOfPrizesAndNothingAboutMessages)
{
    AddTemplate("Prize-Card.htm", "<p>Card: <ZRT_PRIZE_TITLE></p>");
    Open();
    EXPECT_EQ(Dialog->windowTitle(), QStringLiteral("Print prize"));
    EXPECT_EQ(Get<QLabel>(*Dialog, "count").text(), QStringLiteral("1 prize on 1 page"));
    auto& templates = Get<QComboBox>(*Dialog, "template");
    ASSERT_EQ(templates.count(), 2);
    EXPECT_EQ(templates.itemText(0), QStringLiteral("Card"));
    EXPECT_EQ(templates.currentText(), QStringLiteral("Prize sheet"));
    for (const char* check : {"unreadBold", "pendingItalic", "pageEach"})
        EXPECT_FALSE(Get<QCheckBox>(*Dialog, check).isVisible()) << check;
    EXPECT_TRUE(Get<QComboBox>(*Dialog, "paper").isVisible());
    EXPECT_TRUE(Get<QLabel>(*Dialog, "note").isHidden());
}

TEST_F(PrizePrintingTest, ThePdfHasThePrizesTitleAndTheTemplateIsRememberedForPrizesAlone)
{
    AddTemplate("Prize-Card.htm", "<p>Card: <ZRT_PRIZE_TITLE></p>");
    Settings->SetState(QStringLiteral("PrintDialog/TemplateOfOne"), "MessageList-Studio list");
    Open();
    auto& templates = Get<QComboBox>(*Dialog, "template");
    templates.setFocus();
    QTest::keyClick(&templates, Qt::Key_Home);
    ASSERT_TRUE(WaitUntil([this] { return Dialog->IsLaidOut(); }));
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("tickets.pdf")));
    QTest::mouseClick(&Get<QPushButton>(*Dialog, "savePdf"), Qt::LeftButton);
    EXPECT_EQ(Read(Path(QStringLiteral("tickets.pdf"))).count("/Type /Page\n"), 1);
    const QString proposed = files.Requests().first().Filename;
    EXPECT_TRUE(proposed.startsWith(QStringLiteral("Two tickets"))) << proposed.toStdString();
    EXPECT_TRUE(proposed.endsWith(QStringLiteral(".pdf"))) << proposed.toStdString();
    EXPECT_FALSE(proposed.contains(u':'));
    Dialog.reset();
    Open();
    EXPECT_EQ(Get<QComboBox>(*Dialog, "template").currentText(), QStringLiteral("Card"));
    EXPECT_EQ(Settings->State(QStringLiteral("PrintDialog/TemplateOfOne")), "MessageList-Studio list");
}

TEST_F(PrizePrintingTest, WithoutTemplatesOfPrizesItSaysWhereTheyBelong)
{
    const QString templates = Station.Database().HTMLTemplatesLocation();
    ASSERT_TRUE(QFile::remove(templates + QStringLiteral("/Prize-Prize sheet.htm")));
    Ui.ExpectWarning(QStringLiteral("The station has no page templates for prizes. They belong into %1; their names "
                                    "begin with \"Prize-\".")
                         .arg(templates));
    PrintJob job;
    job.Prize = Sheet();
    Dialog = std::make_unique<PrintDialog>(Station, *Settings, std::move(job));
    Dialog->show();
    ASSERT_TRUE(WaitUntil([this] { return !Ui.MessageBoxes().isEmpty(); }));
    EXPECT_FALSE(Get<QPushButton>(*Dialog, "print").isEnabled());
}

TEST_F(PrizePrintingTest, TheListsMenuAndTheKeyPrintTheSelectedPrize)
{
    OpenPrizes();
    Select(Prize);
    auto& entry = Get<QAction>(List(), "mnuPrint");
    ASSERT_TRUE(entry.isVisible());
    EXPECT_EQ(entry.text(), QStringLiteral("&Print Prize\tCtrl+P"));
    EXPECT_EQ(DialogOf([&] { entry.trigger(); }), PrizeDialog);
    Activate(*Window);
    EXPECT_EQ(DialogOf([this] { QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier); }), PrizeDialog);
    Activate(*Window);
    EXPECT_EQ(DialogOf([this] { MainAction("printPrize").trigger(); }), PrizeDialog);
}

TEST_F(PrizePrintingTest, TheMenuOffersWhatThePageOnShowHolds)
{
    const auto offered = [this] {
        QStringList names;
        for (const char* name : {"printMessage", "printList", "printPrize"}) {
            if (MainAction(name).isVisible())
                names.append(QLatin1String(name));
        }
        return names;
    };
    FileMail(Mail("A card"));
    OpenWindow();
    EXPECT_EQ(offered(), (QStringList{QStringLiteral("printMessage"), QStringLiteral("printList")}));
    QTest::keyClick(Window.get(), Qt::Key_2, Qt::AltModifier);
    EXPECT_EQ(offered(), QStringList{QStringLiteral("printPrize")});
    // Nothing of the page behind is printed from here.
    QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(Window->statusBar()->currentMessage(), QString());
    QTest::keyClick(Window.get(), Qt::Key_1, Qt::AltModifier);
    EXPECT_EQ(offered(), (QStringList{QStringLiteral("printMessage"), QStringLiteral("printList")}));
    auto& grid = *Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    grid.setFocus();
    grid.SetRow(1);
    EXPECT_EQ(DialogOf([this] { QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier); }),
              (QStringList{QStringLiteral("Print message"), QStringLiteral("1 message on 1 page")}));
}

TEST_F(PrizePrintingTest, ClosingTheMenuLeavesTheKeysOfThePageOnShow)
{
    OpenPrizes();
    Select(Prize);
    auto* menu = Window->menuBar()->actions().first()->menu();
    menu->popup(QPoint());
    menu->close();
    EXPECT_FALSE(MainAction("printMessage").isVisible());
    EXPECT_FALSE(MainAction("printList").isEnabled());
    EXPECT_TRUE(MainAction("printPrize").isEnabled());
    EXPECT_EQ(DialogOf([this] { QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier); }), PrizeDialog);
}

TEST_F(PrizePrintingTest, WithoutASelectionItSaysWhatToDo)
{
    OpenPrizes();
    Presenter().Show(nullptr);
    MainAction("printPrize").trigger();
    EXPECT_EQ(Window->statusBar()->currentMessage(), QStringLiteral("Select the prize to print first."));
}

TEST_F(PrizePrintingTest, APrizeDeletedElsewhereIsSaid)
{
    OpenPrizes();
    ASSERT_TRUE(Station.Database().DeletePrize(Prize));
    Ui.ExpectWarning(QStringLiteral("That prize is not there any more: it was deleted on another computer."));
    Prizes().Print(Prize);
}

TEST_F(PrizePrintingTest, APrizesWindowPrintsWhatIsStored)
{
    OpenPrizes();
    Prizes().OpenPrize(Prize);
    PrizeWindow& window = *OnlyPrizeWindow();
    Activate(window);
    EXPECT_EQ(DialogOf([&] { QTest::keyClick(&window, Qt::Key_P, Qt::ControlModifier); }), PrizeDialog);
    Activate(window);
    Type(Get<QLineEdit>(window, "title"), QStringLiteral("Three tickets"));
    Ui.ExpectWarning(QStringLiteral("Save the prize first (Ctrl+S), then print it."));
    QTest::keyClick(&window, Qt::Key_P, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(DialogOf([&] { Get<QAction>(window, "printPrize").trigger(); }), PrizeDialog);
    window.close();
}

TEST_F(PrizePrintingTest, WhoMayOnlyReadPrizesPrintsThem)
{
    AddUser(QStringLiteral("Petra"), 0);
    OpenPrizes(QStringLiteral("Petra"));
    Prizes().OpenPrize(Prize);
    EXPECT_EQ(DialogOf([this] { Get<QAction>(*OnlyPrizeWindow(), "printPrize").trigger(); }), PrizeDialog);
    OnlyPrizeWindow()->close();
}

TEST_F(PrizePrintingTest, EachPrizeHasAPageOfItsOwn)
{
    const QString sheet = FileHelper::ReadTextFile(
        FileHelper::Join(LibraryFolder::Current(), QStringLiteral("HTMLDocs/Prize-Prize sheet.htm")));
    EXPECT_EQ(PrintedPages(PrizePage::Fill(sheet, {Sheet(), Sheet(), Sheet()}), {}).PageCount(), 3);
    EXPECT_EQ(PrintedPages(PrizePage::Fill(sheet, {}), {}).PageCount(), 1);
}
