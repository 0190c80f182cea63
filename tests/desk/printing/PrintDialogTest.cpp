// SPDX-License-Identifier: Apache-2.0
#include "printing/PrintDialog.h"

#include "AccessKeys.h"
#include "LongestGap.h"
#include "WindowTest.h"
#include "messages/MessageWindow.h"
#include "platform/widgets/FlexGrid.h"
#include "printing/PageSheet.h"
#include "printing/PrintTarget.h"
#include "support/ScriptedFileDialog.h"
#include "window/SavedNotice.h"

#include <QAction>
#include <QBuffer>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPdfWriter>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStatusBar>
#include <QThreadPool>

namespace
{
class PrintDialogTest : public WindowTest
{
protected:
    void TearDown() override
    {
        Dialog.reset();
        PrintTarget::SetPrinterChooser({});
        WindowTest::TearDown();
    }
    void Open(PrintJob job)
    {
        Dialog = std::make_unique<PrintDialog>(Station, *Settings, std::move(job));
        Dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(Dialog.get()));
        ASSERT_TRUE(WaitForPages());
    }
    bool WaitForPages()
    {
        return WaitUntil([this] { return Dialog->IsLaidOut(); });
    }
    QList<qint32> FileThree() { return {FileMail(Mail("One")), FileMail(Mail("Two")), FileMail(Mail("Three"))}; }
    template <typename T>
    T& Part(const char* name)
    {
        return *Dialog->findChild<T*>(QLatin1String(name));
    }
    void Click(const char* button) { QTest::mouseClick(&Part<QPushButton>(button), Qt::LeftButton); }
    void Toggle(const char* check)
    {
        Part<QCheckBox>(check).setFocus();
        QTest::keyClick(&Part<QCheckBox>(check), Qt::Key_Space);
    }
    /// Chooses as the arrow keys do.
    void Choose(const char* box, const QString& text)
    {
        auto& combo = Part<QComboBox>(box);
        combo.setFocus();
        QTest::keyClick(&combo, Qt::Key_Home);
        while (combo.currentText() != text && combo.currentIndex() + 1 < combo.count())
            QTest::keyClick(&combo, Qt::Key_Down);
        ASSERT_EQ(combo.currentText(), text);
    }
    QString Words(const char* label) { return Part<QLabel>(label).text(); }
    static qsizetype Pages(const QByteArray& pdf) { return pdf.count("/Type /Page\n"); }

    std::unique_ptr<PrintDialog> Dialog;
};
} // namespace

TEST_F(PrintDialogTest, AMessageIsShownAsItWillBePrinted)
{
    Open({{FileMail(Mail("A card"))}, nullptr});
    EXPECT_EQ(Dialog->windowTitle(), QStringLiteral("Print message"));
    EXPECT_EQ(Part<QComboBox>("template").currentText(), QStringLiteral("Single message"));
    EXPECT_EQ(Words("count"), QStringLiteral("1 message on 1 page"));
    EXPECT_TRUE(Part<QLabel>("note").isHidden());
    EXPECT_TRUE(Part<QPushButton>("print").isEnabled());
    EXPECT_FALSE(Part<QPushButton>("nextPage").isEnabled());
    EXPECT_EQ(Dialog->Pages()->Title(), QStringLiteral("Message 1"));
    const QImage sheet = Part<PageSheet>("sheet").grab().toImage();
    EXPECT_EQ(sheet.pixelColor(sheet.width() / 2, sheet.height() / 2), QColor(Qt::white));
}

TEST_F(PrintDialogTest, EachMessageBeginsAPageWhenTheBoxIsChecked)
{
    Open({FileThree(), nullptr});
    EXPECT_EQ(Dialog->windowTitle(), QStringLiteral("Print messages"));
    EXPECT_EQ(Words("count"), QStringLiteral("3 messages on 1 page"));
    Toggle("pageEach");
    ASSERT_TRUE(WaitForPages());
    EXPECT_EQ(Words("count"), QStringLiteral("3 messages on 3 pages"));
    Toggle("pageEach");
    ASSERT_TRUE(WaitForPages());
    EXPECT_EQ(Dialog->Pages()->PageCount(), 1);
}

TEST_F(PrintDialogTest, ATemplateWithAListOfItsOwnSaysItselfWherePagesBegin)
{
    Open({FileThree(), nullptr});
    EXPECT_TRUE(Part<QCheckBox>("pageEach").isEnabled());
    Choose("template", QStringLiteral("One message a page"));
    ASSERT_TRUE(WaitForPages());
    EXPECT_FALSE(Part<QCheckBox>("pageEach").isEnabled());
    EXPECT_EQ(Dialog->Pages()->PageCount(), 3);
}

TEST_F(PrintDialogTest, PagesAreTurnedByButtonsKeysAndNumber)
{
    Settings->SetState(QStringLiteral("PrintDialog/pageEach"), "1");
    Open({FileThree(), nullptr});
    auto& sheet = Part<PageSheet>("sheet");
    ASSERT_EQ(sheet.PageCount(), 3);
    Click("nextPage");
    EXPECT_EQ(sheet.Page(), 1);
    EXPECT_EQ(Part<QSpinBox>("page").text(), QStringLiteral("2 of 3"));
    Part<QScrollArea>("view").setFocus();
    QTest::keyClick(&Part<QScrollArea>("view"), Qt::Key_PageDown);
    EXPECT_EQ(sheet.Page(), 2);
    EXPECT_FALSE(Part<QPushButton>("nextPage").isEnabled());
    QTest::keyClick(&Part<QScrollArea>("view"), Qt::Key_PageUp);
    EXPECT_EQ(sheet.Page(), 1);
    Click("previousPage");
    EXPECT_EQ(sheet.Page(), 0);
    Part<QSpinBox>("page").setFocus();
    QTest::keyClick(&Part<QSpinBox>("page"), Qt::Key_Up);
    EXPECT_EQ(sheet.Page(), 1);
}

TEST_F(PrintDialogTest, TheSheetZooms)
{
    Open({{FileMail(Mail("A card"))}, nullptr});
    auto& sheet = Part<PageSheet>("sheet");
    const int whole = sheet.height();
    EXPECT_LE(whole, Part<QScrollArea>("view").viewport()->height());
    Choose("zoom", QStringLiteral("Page width"));
    EXPECT_GT(sheet.height(), whole);
    const int across = sheet.height();
    Choose("zoom", QStringLiteral("200%"));
    EXPECT_GT(sheet.height(), across);
}

TEST_F(PrintDialogTest, ThePaperIsA4OrLetter)
{
    Open({{FileMail(Mail("A card"))}, nullptr});
    EXPECT_EQ(Dialog->Pages()->Setup().Paper, PaperSetup::A4);
    Choose("paper", QStringLiteral("Letter"));
    ASSERT_TRUE(WaitForPages());
    EXPECT_EQ(Dialog->Pages()->Setup().Paper, PaperSetup::Letter);
}

TEST_F(PrintDialogTest, SavingWritesThePagesAndRemembersTheTemplateAndThePaper)
{
    const qint32 reference = FileMail(Mail("The \"ferry\": a card"));
    Open({{reference}, nullptr});
    Choose("template", QStringLiteral("Studio list"));
    Choose("paper", QStringLiteral("Letter"));
    ASSERT_TRUE(WaitForPages());
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("card.pdf")));
    Click("savePdf");
    EXPECT_EQ(Pages(Read(Path(QStringLiteral("card.pdf")))), 1);
    EXPECT_TRUE(files.Requests().first().Filename.endsWith(QStringLiteral(" a card.pdf")));
    EXPECT_FALSE(files.Requests().first().Filename.contains(u':'));
    Dialog.reset();
    Open({{reference}, nullptr});
    EXPECT_EQ(Part<QComboBox>("template").currentText(), QStringLiteral("Studio list"));
    EXPECT_EQ(Part<QComboBox>("paper").currentText(), QStringLiteral("Letter"));
    Dialog.reset();
    // What suits one message need not suit many.
    Open({FileThree(), nullptr});
    EXPECT_EQ(Part<QComboBox>("template").currentText(), QStringLiteral("Whole messages"));
}

TEST_F(PrintDialogTest, ALineSaysWhereTheFileLiesAndOpensItsFolder)
{
    Open({{FileMail(Mail("A card"))}, nullptr});
    auto& saved = Part<SavedNotice>("savedNotice");
    EXPECT_TRUE(saved.isHidden());
    ScriptedFileDialog files;
    const QString file = Path(QStringLiteral("card.pdf"));
    files.ExpectSave(file);
    Click("savePdf");
    EXPECT_TRUE(saved.isVisible());
    EXPECT_EQ(saved.Text(), QStringLiteral("Saved as %1").arg(file));
    EXPECT_EQ(AccessKeys(*Dialog).Clashes(), QStringList());
    QString opened;
    bool isOpened = false;
    SavedNotice::SetFolderOpener([&](const QString& folder) {
        opened = folder;
        return isOpened;
    });
    for (int press = 0; press < 2; ++press) {
        QTest::mouseClick(saved.findChild<QPushButton*>(), Qt::LeftButton);
        EXPECT_EQ(saved.Text(), QStringLiteral("Saved as %1. No program opens folders on this computer.").arg(file));
    }
    isOpened = true;
    QTest::mouseClick(saved.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(opened, QFileInfo(file).absolutePath());
    EXPECT_TRUE(saved.isHidden());

    // Printing into a file is told as well; printing on paper is not.
    const QString printed = Path(QStringLiteral("printed.pdf"));
    PrintTarget::SetPrinterChooser([&](QWidget*, std::optional<int>) {
        auto printer = std::make_unique<QPrinter>();
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(printed);
        return printer;
    });
    Click("print");
    EXPECT_EQ(saved.Text(), QStringLiteral("Saved as %1").arg(printed));
    EXPECT_EQ(Pages(Read(printed)), 1);
    QBuffer paper;
    paper.open(QIODevice::WriteOnly);
    PrintTarget::SetPrinterChooser([&](QWidget*, std::optional<int>) { return std::make_unique<QPdfWriter>(&paper); });
    Click("print");
    EXPECT_TRUE(saved.isHidden());
    SavedNotice::SetFolderOpener({});
}

TEST_F(PrintDialogTest, AFileThatCannotBeWrittenIsToldInWords)
{
    Open({{FileMail(Mail("A card"))}, nullptr});
    ScriptedFileDialog files;
    files.ExpectSave(Path(QStringLiteral("card.pdf")));
    Click("savePdf");
    ASSERT_TRUE(Part<SavedNotice>("savedNotice").isVisible());
    const QString file = Path(QStringLiteral("nowhere/card.pdf"));
    files.ExpectSave(file);
    Ui.ExpectWarning(
        QStringLiteral("The file \"%1\" could not be written: there is no such file or folder.").arg(file));
    Click("savePdf");
    EXPECT_TRUE(Part<SavedNotice>("savedNotice").isHidden());
}

TEST_F(PrintDialogTest, PrintingGoesToTheChosenPrinterPageByPage)
{
    Settings->SetState(QStringLiteral("PrintDialog/pageEach"), "1");
    Open({FileThree(), nullptr});
    QBuffer paper;
    paper.open(QIODevice::WriteOnly);
    int asked = 0;
    PrintTarget::SetPrinterChooser([&](QWidget*, std::optional<int> pageCount) {
        asked += pageCount.value_or(0);
        return std::make_unique<QPdfWriter>(&paper);
    });
    Click("print");
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(Pages(paper.data()), 3);
    EXPECT_EQ(Ui.ProgressCaptions().last(), QStringLiteral("Printing"));
    // A user who thinks better of it is told nothing.
    PrintTarget::SetPrinterChooser([](QWidget*, std::optional<int>) { return nullptr; });
    Click("print");
}

TEST_F(PrintDialogTest, ReadingManyMessagesShowsItsProgressAndCanBeStopped)
{
    PrintJob job{FileThree(), nullptr};
    Ui.CancelProgressAt(2);
    Dialog = std::make_unique<PrintDialog>(Station, *Settings, std::move(job));
    Dialog->show();
    ASSERT_TRUE(WaitUntil([this] { return !Dialog->isVisible(); }));
    EXPECT_EQ(Ui.ProgressCaptions().last(), QStringLiteral("Reading messages"));
    EXPECT_EQ(Dialog->Pages(), nullptr);
    EXPECT_FALSE(Ui.IsBusy());
}

TEST_F(PrintDialogTest, AMessageThatIsGoneIsToldInWords)
{
    Ui.ExpectWarning(QStringLiteral("There is no message to print."));
    Dialog = std::make_unique<PrintDialog>(Station, *Settings, PrintJob{{4711}, nullptr});
    Dialog->show();
    ASSERT_TRUE(WaitUntil([this] { return !Dialog->isVisible(); }));
}

TEST_F(PrintDialogTest, AStationWithoutTemplatesSaysWhereTheyBelong)
{
    const qint32 reference = FileMail(Mail("A card"));
    const QString templates = Station.Database().HTMLTemplatesLocation();
    ASSERT_TRUE(QDir(templates).removeRecursively());
    Ui.ExpectWarning(QStringLiteral("The station has no page templates. They belong into %1.").arg(templates));
    Dialog = std::make_unique<PrintDialog>(Station, *Settings, PrintJob{{reference}, nullptr});
    Dialog->show();
    ASSERT_TRUE(WaitUntil([this] { return !Ui.MessageBoxes().isEmpty(); }));
    EXPECT_FALSE(Part<QPushButton>("print").isEnabled());
}

TEST_F(PrintDialogTest, ContentThatWasLeftOutIsSaid)
{
    const QByteArray mail = "From: a@example.com\r\nSubject: x\r\nContent-Type: text/html\r\n\r\n"
                            "<p>Words<img src=\"http://evil.example/a.png\"></p>\r\n";
    Open({{FileMail(mail)}, nullptr});
    EXPECT_EQ(Words("note"),
              QStringLiteral("Pictures of one message would have been fetched from elsewhere and were left out."));
    EXPECT_FALSE(Part<QLabel>("note").isHidden());
}

TEST_F(PrintDialogTest, ClosingWhilePagesAreLaidOutIsSafe)
{
    PrintJob job{{FileMail(Mail("Long", QByteArray("A line of it.\r\n").repeated(20000)))}, nullptr};
    Dialog = std::make_unique<PrintDialog>(Station, *Settings, std::move(job));
    Dialog->show();
    ASSERT_TRUE(WaitUntil([this] { return Words("count") == QStringLiteral("The pages are being laid out..."); }));
    QCoreApplication::processEvents();
    Dialog.reset();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

TEST_F(PrintDialogTest, TheWindowAnswersWhileALargeMailIsLaidOutAndClosesAtOnce)
{
    const QByteArray page = "From: a@example.org\r\nSubject: x\r\nContent-Type: text/html\r\n\r\n<table><tr><td>" +
                            QByteArray("some <b>words</b> in a cell\r\n").repeated(6'000'000 / 28);
    const QByteArray text = Mail("Long", QByteArray("A line of a long text.\r\n").repeated(6'000'000 / 24));
    for (const QByteArray& mail : {page, text}) {
        const qint32 reference = FileMail(mail);
        LongestGap gap;
        Dialog = std::make_unique<PrintDialog>(Station, *Settings, PrintJob{{reference}, nullptr});
        Dialog->show();
        ASSERT_TRUE(WaitUntil([this] { return Words("count") == QStringLiteral("The pages are being laid out..."); }));
        for (int i = 0; i < 20; ++i)
            QTest::qWait(5);
        EXPECT_FALSE(Dialog->IsLaidOut()) << "there is something to stop";
        QElapsedTimer closing;
        closing.start();
        Click("close");
        EXPECT_FALSE(Dialog->isVisible());
        Dialog.reset();
        EXPECT_LT(closing.elapsed(), 100);
        gap.Take();
        RecordProperty("LongestWorkInMilliseconds", static_cast<int>(gap.Worked.count()));
        EXPECT_LT(gap.Worked, std::chrono::milliseconds(250));
        QThreadPool::globalInstance()->waitForDone();
    }
}

TEST_F(PrintDialogTest, TheMainWindowPrintsTheSelectedMessageAndAllOnShow)
{
    const QList<qint32> references = FileThree();
    OpenWindow();
    auto& grid = *Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    grid.setFocus();
    grid.SetRow(1);
    QString title;
    QString count;
    const auto visit = [&](QDialog& dialog) {
        auto& print = dynamic_cast<PrintDialog&>(dialog);
        EXPECT_TRUE(WaitUntil([&] { return print.IsLaidOut(); }));
        title = print.windowTitle();
        count = print.findChild<QLabel*>(QStringLiteral("count"))->text();
        print.reject();
    };
    {
        const DialogVisitor visitor("printDialog", visit);
        QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier);
    }
    EXPECT_EQ(title, QStringLiteral("Print message"));
    EXPECT_EQ(count, QStringLiteral("1 message on 1 page"));
    // Without a window manager nobody gives the window its focus back.
    Window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
    {
        const DialogVisitor visitor("printDialog", visit);
        QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier | Qt::AltModifier);
    }
    EXPECT_EQ(title, QStringLiteral("Print messages"));
    EXPECT_EQ(count, QStringLiteral("3 messages on 1 page"));
    {
        count.clear();
        const DialogVisitor visitor("printDialog", visit);
        auto* entry = Window->List().MessageMenu()->findChild<QAction*>(QStringLiteral("mnuPrint"));
        ASSERT_TRUE(entry->isVisible());
        entry->trigger();
    }
    EXPECT_EQ(count, QStringLiteral("1 message on 1 page"));
}

TEST_F(PrintDialogTest, AMessagesOwnWindowPrintsItAsItWasOpened)
{
    const qint32 reference = FileMail(Mail("A card"));
    OpenWindow();
    MessageWindow* message = Window->OpenInWindow(Window->Station().Database().GetMessage(reference));
    ASSERT_TRUE(QTest::qWaitForWindowActive(message));
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently")});
    int pages = 0;
    const DialogVisitor visitor("printDialog", [&](QDialog& dialog) {
        auto& print = dynamic_cast<PrintDialog&>(dialog);
        EXPECT_TRUE(WaitUntil([&] { return print.IsLaidOut(); }));
        pages = print.Pages() ? print.Pages()->PageCount() : 0;
        print.reject();
    });
    QTest::keyClick(message, Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(pages, 1);
}

TEST_F(PrintDialogTest, WithoutASelectionTheWindowSaysWhatToDo)
{
    OpenWindow();
    Window->findChild<QAction*>(QStringLiteral("printMessage"))->trigger();
    EXPECT_EQ(Window->statusBar()->currentMessage(), QStringLiteral("Select the message to print first."));
    Window->findChild<QAction*>(QStringLiteral("printList"))->trigger();
    EXPECT_EQ(Window->statusBar()->currentMessage(), QStringLiteral("There is no message on show to print."));
}
