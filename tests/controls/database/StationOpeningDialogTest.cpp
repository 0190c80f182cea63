// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/DialogUserInterface.h"
#include "common/dialogs/frmGoodInputBox.h"
#include "controls/support/WhenShown.h"
#include "core/support/StationTest.h"
#include "database/dialogs/frmDatabaseSettings.h"
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

class StationOpeningDialogTest : public StationTest
{
protected:
    StationOpeningDialogTest() { UserInterface::SetCurrent(&Dialogs); }
    ~StationOpeningDialogTest() override { UserInterface::SetCurrent(&Ui); }

    /// The result of the open, with what the user does in the dialog after the box that announces it.
    qint32 Open(std::function<void(frmDatabaseSettings&)> user)
    {
        std::optional<WhenShown<frmDatabaseSettings>> dialog;
        const WhenShown<QMessageBox> box([&](QMessageBox& shown) {
            EXPECT_EQ(shown.text(), StationDetailsBox().Text);
            dialog.emplace(user);
            QTest::keyClick(&shown, Qt::Key_Return);
        });
        return Station->OpenTolvaDatabase(Folder.path());
    }

    DialogUserInterface Dialogs;
};

TEST_F(StationOpeningDialogTest, ANewStationOpensWhenItsNumberIsFilledIn)
{
    EXPECT_EQ(Open([](frmDatabaseSettings& form) {
                  EXPECT_TRUE(form.isModal());
                  QTest::keyClick(&form, Qt::Key_P, Qt::AltModifier);
                  QTest::keyClicks(form.focusWidget(), QStringLiteral("01632 960100"));
                  QTest::keyClick(form.focusWidget(), Qt::Key_Return);
              }),
              0);
    EXPECT_EQ(Station->StationPhoneNumber(), QStringLiteral("01632 960100"));
    // The details are there now: nobody is asked again.
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
}

TEST_F(StationOpeningDialogTest, CancellingRefusesTheOpenAndLeavesTheDatabaseOpen)
{
    EXPECT_EQ(Open([](frmDatabaseSettings& form) { QTest::keyClick(&form, Qt::Key_Escape); }), -1);
    EXPECT_TRUE(Station->IsOpen());
}

TEST_F(StationOpeningDialogTest, TheCloseBoxLetsTheOpenSucceedWithoutTheNumber)
{
    EXPECT_EQ(Open([](frmDatabaseSettings& form) { form.close(); }), 0);
    EXPECT_EQ(Station->StationPhoneNumber(), QString());
}

TEST_F(StationOpeningDialogTest, AUserWithoutTheRightNeverSeesTheDialog)
{
    Directory.User.Rights = 15;
    std::optional<WhenShown<QMessageBox>> refusal;
    const WhenShown<QMessageBox> box([&](QMessageBox& shown) {
        refusal.emplace([](QMessageBox& second) {
            EXPECT_EQ(second.text(),
                      QStringLiteral("You are not allowed to use or alter the Tolva Database's Settings"));
            QTest::keyClick(&second, Qt::Key_Return);
        });
        QTest::keyClick(&shown, Qt::Key_Return);
    });
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), -1);
}

TEST_F(StationOpeningDialogTest, AWindowThatGoesTakesTheDialogAlongWhichConfirmsNothing)
{
    UserInterface::SetCurrent(&Ui);
    OpenStation();
    UserInterface::SetCurrent(&Dialogs);
    auto* window = new QWidget;
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    const WhenShown<frmDatabaseSettings> shown([&](frmDatabaseSettings& form) {
        EXPECT_EQ(form.parentWidget(), window);
        QTimer::singleShot(0, window, [&] { delete std::exchange(window, nullptr); });
    });
    EXPECT_FALSE(Station->DisplaySettings());
    EXPECT_EQ(window, nullptr);
}

TEST_F(StationOpeningDialogTest, ANamelessStationAsksForItsName)
{
    UserInterface::SetCurrent(&Ui);
    OpenStation();
    {
        const auto table = OpenTable(QStringLiteral("Description"));
        table->MoveFirst();
        table->Edit();
        table->SetCollect(QStringLiteral("Description"), QString());
        table->Update();
        table->Close();
    }
    Station->CloseTolvaDatabase();
    UserInterface::SetCurrent(&Dialogs);
    const WhenShown<frmGoodInputBox> shown([](frmGoodInputBox& form) {
        EXPECT_EQ(form.windowTitle(), QStringLiteral("Open Tolva Database"));
        QTest::keyClicks(form.focusWidget(), QStringLiteral("Pier FM"));
        QTest::keyClick(form.focusWidget(), Qt::Key_Return);
    });
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->Description(), QStringLiteral("Pier FM"));
}
