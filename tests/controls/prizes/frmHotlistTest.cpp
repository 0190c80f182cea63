// SPDX-License-Identifier: Apache-2.0
#include "prizes/dialogs/frmHotlist.h"

#include "common/dialogs/DialogUserInterface.h"
#include "controls/support/WhenShown.h"
#include "platform/widgets/TextBoxes.h"
#include "platform/widgets/Twips.h"
#include "support/StationTest.h"

#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

namespace
{
template <typename Control>
Control& Child(frmHotlist& form, const char* name)
{
    auto* control = form.findChild<Control*>(QLatin1String(name));
    if (!control)
        throw std::runtime_error(std::string("no control ") + name);
    return *control;
}

QListWidget& Box(frmHotlist& form)
{
    return Child<QListWidget>(form, "listBox");
}
TextBox& Name(frmHotlist& form)
{
    return Child<TextBox>(form, "txtHotlistName");
}

QStringList Entries(frmHotlist& form)
{
    QStringList entries;
    for (int i = 0; i < Box(form).count(); ++i)
        entries.append(Box(form).item(i)->text());
    return entries;
}

QPoint Place(frmHotlist& form, int row)
{
    return Box(form).visualItemRect(Box(form).item(row)).center();
}

void ClickEntry(frmHotlist& form, int row)
{
    QTest::mouseClick(Box(form).viewport(), Qt::LeftButton, {}, Place(form, row));
}

void Press(frmHotlist& form, const char* button)
{
    QTest::mouseClick(&Child<QPushButton>(form, button), Qt::LeftButton);
}

/// Presses the right button on an entry and chooses from the menu by its access key.
void Choose(frmHotlist& form, int row, Qt::Key key)
{
    QTest::mousePress(Box(form).viewport(), Qt::RightButton, {}, Place(form, row));
    auto& menu = Child<QMenu>(form, "mnupopup");
    ASSERT_TRUE(menu.isVisible());
    QTest::keyClick(&menu, key);
}
} // namespace

class frmHotlistTest : public StationTest
{
protected:
    frmHotlistTest() { OpenStation(); }

    void Store(const QString& item, const QString& value) { Station->SetDatabaseSetting(item, value, QString()); }
    /// What the dialog gives, while the user acts in it.
    QString Run(bool saveMode, const std::function<void(frmHotlist&)>& action)
    {
        const auto settings = OpenTable(QStringLiteral("Settings"));
        settings->SetIndex(QStringLiteral("Main"));
        frmHotlist form;
        const WhenShown<frmHotlist> user(action);
        return form.GetHotlist(0, settings.get(), saveMode);
    }
    QString Load(const std::function<void(frmHotlist&)>& action) { return Run(false, action); }
    QString SaveAs(const std::function<void(frmHotlist&)>& action) { return Run(true, action); }
};

TEST_F(frmHotlistTest, HasItsWords)
{
    frmHotlist form;
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Choose Hotlist"));
    EXPECT_EQ(Child<QLabel>(form, "lblChooseHotlist").text(),
              QStringLiteral("Choose the hotlist (right click to delete):"));
    EXPECT_EQ(Child<QPushButton>(form, "cmdOK").text(), QStringLiteral("OK"));
    EXPECT_EQ(Child<QPushButton>(form, "cmdCancel").text(), QStringLiteral("Cancel"));
    QStringList names;
    for (const QAction* entry : Child<QMenu>(form, "mnupopup").actions())
        names.append(entry->objectName() + QLatin1Char('=') + entry->text());
    EXPECT_EQ(names, QStringList({QStringLiteral("mnuSelect=&Select"), QStringLiteral("mnupopsep="),
                                  QStringLiteral("mnuDelete=&Delete")}));
    EXPECT_EQ(form.GetHotlist(0, nullptr, false), QString());
}

TEST_F(frmHotlistTest, ShowsTheNamesInOrderAndLoadsTheChosenOne)
{
    Store(QStringLiteral("HR.Weekend"), QStringLiteral("w"));
    Store(QStringLiteral("HR.Breakfast"), QStringLiteral("b"));
    Store(QStringLiteral("HQ.Other"), QStringLiteral("x"));
    Store(QStringLiteral("HS.Other"), QStringLiteral("x"));
    EXPECT_EQ(Load([](frmHotlist& form) {
                  EXPECT_EQ(Entries(form), QStringList({QStringLiteral("Breakfast"), QStringLiteral("Weekend")}));
                  EXPECT_FALSE(Name(form).isVisible());
                  EXPECT_TRUE(Box(form).hasFocus());
                  EXPECT_EQ(Box(form).currentRow(), 0);
                  ClickEntry(form, 1);
                  Press(form, "cmdOK");
              }),
              QStringLiteral("HR.Weekend"));
    // The first one is chosen without a click.
    EXPECT_EQ(Load([](frmHotlist& form) { QTest::keyClick(&Box(form), Qt::Key_Return); }),
              QStringLiteral("HR.Breakfast"));
    // And the arrows choose.
    EXPECT_EQ(Load([](frmHotlist& form) {
                  QTest::keyClick(&Box(form), Qt::Key_Down);
                  QTest::keyClick(&Box(form), Qt::Key_Return);
              }),
              QStringLiteral("HR.Weekend"));
}

TEST_F(frmHotlistTest, ADoubleClickAndTheMenuLoadToo)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    Store(QStringLiteral("HR.B"), QStringLiteral("b"));
    EXPECT_EQ(Load([](frmHotlist& form) {
                  ClickEntry(form, 1);
                  QTest::mouseDClick(Box(form).viewport(), Qt::LeftButton, {}, Place(form, 1));
              }),
              QStringLiteral("HR.B"));
    EXPECT_EQ(Load([](frmHotlist& form) { Choose(form, 1, Qt::Key_S); }), QStringLiteral("HR.B"));
}

TEST_F(frmHotlistTest, AnEmptyListCannotBeLoaded)
{
    Ui.ExpectWarning(QStringLiteral("You must select a Hotlist to load!"));
    EXPECT_EQ(Load([](frmHotlist& form) {
                  EXPECT_EQ(Entries(form), QStringList());
                  Press(form, "cmdOK");
                  EXPECT_TRUE(form.isVisible());
                  Press(form, "cmdCancel");
              }),
              QString());
}

TEST_F(frmHotlistTest, CancelEscapeAndTheCloseBoxChooseNothing)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    EXPECT_EQ(Load([](frmHotlist& form) { Press(form, "cmdCancel"); }), QString());
    EXPECT_EQ(Load([](frmHotlist& form) { QTest::keyClick(&form, Qt::Key_Escape); }), QString());
    EXPECT_EQ(Load([](frmHotlist& form) {
                  form.close();
                  EXPECT_TRUE(form.Cancelled());
                  EXPECT_FALSE(form.isVisible());
              }),
              QString());
}

TEST_F(frmHotlistTest, KeysInAnotherCaseAndWithoutANameAreHotlistsToo)
{
    Store(QStringLiteral("hr.Lower"), QStringLiteral("l"));
    Store(QStringLiteral("HR."), QStringLiteral("n"));
    Ui.ExpectWarning(QStringLiteral("You must select a Hotlist to load!"));
    EXPECT_EQ(Load([](frmHotlist& form) {
                  EXPECT_EQ(Entries(form), QStringList({QString(), QStringLiteral("Lower")}));
                  Press(form, "cmdOK"); // the one without a name
                  ClickEntry(form, 1);
                  Press(form, "cmdOK");
              }),
              QStringLiteral("HR.Lower"));
}

TEST_F(frmHotlistTest, ASaveNeedsAName)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    Ui.ExpectWarning(QStringLiteral("You must enter a name for this Hotlist!"));
    EXPECT_EQ(SaveAs([](frmHotlist& form) {
                  EXPECT_TRUE(Name(form).isVisible());
                  EXPECT_TRUE(Name(form).hasFocus());
                  EXPECT_EQ(Name(form).text(), QString());
                  EXPECT_TRUE(Box(form).selectedItems().isEmpty());
                  Press(form, "cmdOK");
                  EXPECT_TRUE(form.isVisible());
                  QTest::keyClicks(&Name(form), QStringLiteral("Drive time"));
                  QTest::keyClick(&Name(form), Qt::Key_Return);
              }),
              QStringLiteral("HR.Drive time"));
}

TEST_F(frmHotlistTest, ASaveOverAnotherAsksFirst)
{
    Store(QStringLiteral("HR.Breakfast"), QStringLiteral("b"));
    const QString question = QStringLiteral("Are you sure you want to overwrite the current hotlist?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    EXPECT_EQ(SaveAs([](frmHotlist& form) {
                  QTest::keyClicks(&Name(form), QStringLiteral("breakFAST"));
                  Press(form, "cmdOK");
                  EXPECT_TRUE(form.isVisible());
                  Press(form, "cmdOK");
              }),
              QStringLiteral("HR.breakFAST"));
    // Blanks around the name do not make another hotlist beside the one that is overwritten.
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    EXPECT_EQ(SaveAs([](frmHotlist& form) {
                  QTest::keyClicks(&Name(form), QStringLiteral(" Breakfast "));
                  Press(form, "cmdOK");
              }),
              QStringLiteral("HR.Breakfast"));
}

TEST_F(frmHotlistTest, AnEmptyNameOverAnEmptyOneAsksAndThenWarns)
{
    Store(QStringLiteral("HR."), QStringLiteral("n"));
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to overwrite the current hotlist?"),
                          MessageBoxAnswer::Yes);
    Ui.ExpectWarning(QStringLiteral("You must enter a name for this Hotlist!"));
    EXPECT_EQ(SaveAs([](frmHotlist& form) {
                  Press(form, "cmdOK");
                  Press(form, "cmdCancel");
              }),
              QString());
}

TEST_F(frmHotlistTest, AClickTakesTheNameOfAnEntry)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    SaveAs([](frmHotlist& form) {
        ClickEntry(form, 0);
        EXPECT_EQ(Name(form).text(), QStringLiteral("A"));
        QTest::keyClick(&Box(form), Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_TRUE(Name(form).hasFocus());
        EXPECT_EQ(Name(form).selectedText(), QStringLiteral("A"));
        QTest::keyClicks(&Name(form), QStringLiteral("New"));
        ClickEntry(form, 0);
        EXPECT_EQ(Name(form).text(), QStringLiteral("A"));
        Press(form, "cmdCancel");
    });
}

TEST_F(frmHotlistTest, ADeletionIsDoneAtOnceAndCancelKeepsIt)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    Store(QStringLiteral("HR.B"), QStringLiteral("b"));
    const QString question = QStringLiteral("Are you sure you want to delete this Hotlist?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    EXPECT_EQ(Load([&](frmHotlist& form) {
                  Choose(form, 0, Qt::Key_D);
                  EXPECT_EQ(Entries(form).size(), 2);
                  Choose(form, 0, Qt::Key_D);
                  EXPECT_EQ(Entries(form), QStringList{QStringLiteral("B")});
                  EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("HR.A"), QString()).toString(), QString());
                  Press(form, "cmdCancel");
              }),
              QString());
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("HR.A"), QString()).toString(), QString());
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("HR.B"), QString()).toString(), QStringLiteral("b"));
}

TEST_F(frmHotlistTest, WhatIsDeletedCannotBeLoadedAnyMore)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to delete this Hotlist?"), MessageBoxAnswer::Yes);
    Ui.ExpectWarning(QStringLiteral("You must select a Hotlist to load!"));
    EXPECT_EQ(Load([](frmHotlist& form) {
                  QTest::keyClick(&Box(form), Qt::Key_Delete);
                  EXPECT_EQ(Box(form).count(), 0);
                  Press(form, "cmdOK");
                  Press(form, "cmdCancel");
              }),
              QString());
}

TEST_F(frmHotlistTest, ARowThatIsGoneLeavesTheListAllTheSame)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to delete this Hotlist?"), MessageBoxAnswer::Yes);
    SaveAs([this](frmHotlist& form) {
        Store(QStringLiteral("HR.A"), QString());
        ClickEntry(form, 0);
        Choose(form, 0, Qt::Key_D);
        EXPECT_EQ(Box(form).count(), 0);
        EXPECT_EQ(Name(form).text(), QStringLiteral("A")); // may be used again
        Press(form, "cmdCancel");
    });
}

TEST_F(frmHotlistTest, AnErrorOfTheTableReachesTheCaller)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    const auto settings = OpenTable(QStringLiteral("Settings"));
    settings->SetIndex(QStringLiteral("Main"));
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to delete this Hotlist?"), MessageBoxAnswer::Yes);
    frmHotlist form;
    const WhenShown<frmHotlist> user([&](frmHotlist& shown) {
        settings->Close();
        QTest::keyClick(&Box(shown), Qt::Key_Delete);
    });
    EXPECT_THROW(form.GetHotlist(0, settings.get(), false), dao::Error);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(frmHotlistTest, TheListReachesFromTheNameToTheButtons)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    const auto gaps = [](frmHotlist& form) {
        const int gap = Twips::ToPixels(form, 60);
        const QWidget& ok = Child<QPushButton>(form, "cmdOK");
        EXPECT_EQ(ok.y() - (Box(form).y() + Box(form).height()), gap);
        if (form.SaveMode()) {
            EXPECT_EQ(Box(form).y() - (Name(form).y() + Name(form).height()), gap);
        }
        Press(form, "cmdCancel");
    };
    Load(gaps);
    SaveAs(gaps);
}

/// The dialog behind the station's operations, over the window of the one who asked.
class HotlistOperationTest : public frmHotlistTest
{
protected:
    HotlistOperationTest() { UserInterface::SetCurrent(&Dialogs); }
    ~HotlistOperationTest() override { UserInterface::SetCurrent(&Ui); }

    DialogUserInterface Dialogs;
};

TEST_F(HotlistOperationTest, SavesAndLoadsHours)
{
    QWidget window;
    QWidget control(&window);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    {
        const WhenShown<frmHotlist> user([&](frmHotlist& form) {
            EXPECT_EQ(form.parentWidget(), &window);
            EXPECT_TRUE(form.isModal());
            QTest::keyClicks(&Name(form), QStringLiteral("Nights"));
            Press(form, "cmdOK");
        });
        EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QStringLiteral("the hours"), &control));
    }
    {
        QObject noWindow;
        const WhenShown<frmHotlist> user([&](frmHotlist& form) {
            EXPECT_EQ(form.parentWidget(), nullptr);
            Press(form, "cmdOK");
        });
        EXPECT_EQ(Station->LoadAvailableHoursHotlist(&noWindow), QStringLiteral("the hours"));
    }
    {
        const WhenShown<frmHotlist> user([](frmHotlist& form) { Press(form, "cmdCancel"); });
        EXPECT_FALSE(Station->SaveAvailableHoursHotlist(QStringLiteral("others"), nullptr));
    }
    {
        const WhenShown<frmHotlist> user([](frmHotlist& form) { Press(form, "cmdCancel"); });
        EXPECT_EQ(Station->LoadAvailableHoursHotlist(&window), QString());
    }
    window.close();
}

TEST_F(HotlistOperationTest, SavingOverAHotlistReplacesItsHoursAndMakesNoSecondOne)
{
    Store(QStringLiteral("HR.Nights"), QStringLiteral("the hours"));
    {
        // The dialog is the real one; its question is answered here.
        const WhenShown<QMessageBox> answer([](QMessageBox& box) {
            EXPECT_EQ(box.text(), QStringLiteral("Are you sure you want to overwrite the current hotlist?"));
            EXPECT_EQ(box.icon(), QMessageBox::Question);
            EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
            QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton);
        });
        const WhenShown<frmHotlist> user([](frmHotlist& form) {
            QTest::keyClicks(&Name(form), QStringLiteral("nights "));
            QTest::keyClick(&Name(form), Qt::Key_Return);
        });
        EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QStringLiteral("other hours"), nullptr));
    }
    const WhenShown<frmHotlist> user([](frmHotlist& form) {
        EXPECT_EQ(Entries(form), QStringList{QStringLiteral("Nights")});
        Press(form, "cmdOK");
    });
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QStringLiteral("other hours"));
}

TEST_F(HotlistOperationTest, AWindowThatGoesTakesTheDialogAlongAndNothingIsChosen)
{
    Store(QStringLiteral("HR.A"), QStringLiteral("a"));
    auto window = std::make_unique<QWidget>();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const WhenShown<frmHotlist> user([&](frmHotlist&) { window.reset(); });
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(window.get()), QString());
}
