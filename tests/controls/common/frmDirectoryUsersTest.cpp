// SPDX-License-Identifier: Apache-2.0

// The dialog of the directory's users.

#include "common/dialogs/frmDirectoryUsers.h"

#include "platform/directory/EmbeddedDirectory.h"
#include "support/ScriptedUserInterface.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

class frmDirectoryUsersTest : public testing::Test
{
protected:
    frmDirectoryUsersTest()
    {
        Directory.Open(Folder.path());
        Technician = Directory.AddUser(QStringLiteral("Technician"), 31);
        Megan = Directory.AddUser(QStringLiteral("Megan"), 3);
        EXPECT_TRUE(Directory.SignIn(QStringLiteral("Technician")));
    }

    void Show()
    {
        Form = std::make_unique<frmDirectoryUsers>(Directory);
        Form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form.get()));
    }
    template <typename Control>
    Control& Find(const char* name)
    {
        return *Form->findChild<Control*>(QLatin1String(name));
    }
    QListWidget& List() { return Find<QListWidget>("listUsers"); }
    QStringList Shown()
    {
        QStringList names;
        for (int i = 0; i < List().count(); ++i)
            names.append(List().item(i)->text());
        return names;
    }
    void Select(int row)
    {
        QTest::mouseClick(List().viewport(), Qt::LeftButton, Qt::NoModifier,
                          List().visualItemRect(List().item(row)).center());
    }
    void Click(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
    void Tick(const char* box)
    {
        auto& check = Find<QCheckBox>(box);
        QStyleOptionButton option;
        option.initFrom(&check);
        const QRect indicator = check.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &check);
        QTest::mouseClick(&check, Qt::LeftButton, Qt::NoModifier, indicator.center());
    }
    /// The marked rights, added up as the directory does.
    int Ticked()
    {
        int rights = 0;
        int right = 1;
        for (const char* name : {"chkCanEditMessages", "chkCanEditPersonalMessages", "chkCanEditCategories",
                                 "chkManagePrizes", "chkChangeSettings"}) {
            rights |= Find<QCheckBox>(name).isChecked() ? right : 0;
            right *= 2;
        }
        return rights;
    }
    /// "NAME RIGHTS" of each, as another computer sees it.
    QStringList Stored() const
    {
        EmbeddedDirectory other;
        other.Open(Folder.path());
        QStringList users;
        for (const DirectoryUser& user : other.Users())
            users.append(QStringLiteral("%1 %2").arg(user.Name, QString::number(user.Rights)));
        return users;
    }

    QTemporaryDir Folder;
    EmbeddedDirectory Directory;
    ScriptedUserInterface Ui;
    qint32 Technician = 0;
    qint32 Megan = 0;
    std::unique_ptr<frmDirectoryUsers> Form;
};

namespace
{
InputBoxRequest AddQuestion()
{
    return {QStringLiteral("What is the new user called?"), QStringLiteral("Add User"), QString(), 255, QString()};
}

InputBoxRequest RenameQuestion(const QString& name)
{
    return {QStringLiteral("What is \"%1\" to be called?").arg(name), QStringLiteral("Rename User"), name, 255,
            QString()};
}

QString RemoveQuestion(const QString& name)
{
    return QStringLiteral("Are you sure you want to remove the user \"%1\"?\n\nThe user's preferences go as well. What "
                          "the user did stays in the log.")
        .arg(name);
}
} // namespace

TEST_F(frmDirectoryUsersTest, ShowsTheUsersByNameAndWhatTheSelectedOneMay)
{
    Show();
    EXPECT_EQ(Shown(), (QStringList{QStringLiteral("Megan"), QStringLiteral("Technician (signed in)")}));
    EXPECT_TRUE(List().hasFocus());
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_EQ(Find<QGroupBox>("grpRights").title(), QStringLiteral("Megan may"));
    EXPECT_EQ(Ticked(), 3);
    QTest::keyClick(&List(), Qt::Key_Down);
    EXPECT_EQ(Find<QGroupBox>("grpRights").title(), QStringLiteral("Technician may"));
    EXPECT_EQ(Ticked(), 31);
    EXPECT_FALSE(Find<QLabel>("lblExplanation").isVisible());
    EXPECT_EQ(Find<QCheckBox>("chkManagePrizes").text(), QStringLiteral("Manage pri&zes and winners"));
}

TEST_F(frmDirectoryUsersTest, ATickIsStoredAtOnce)
{
    Show();
    Select(0);
    Tick("chkManagePrizes");
    EXPECT_EQ(Stored().first(), QStringLiteral("Megan 11"));
    Tick("chkCanEditMessages");
    EXPECT_EQ(Stored().first(), QStringLiteral("Megan 10"));
    EXPECT_EQ(Ticked(), 10);
    EXPECT_EQ(List().currentRow(), 0);
}

TEST_F(frmDirectoryUsersTest, RightsThatThisProgramDoesNotKnowStay)
{
    Directory.SetRights(Megan, 64 + 1);
    Show();
    Tick("chkManagePrizes");
    EXPECT_EQ(Stored().first(), QStringLiteral("Megan 73"));
}

TEST_F(frmDirectoryUsersTest, TheLastInChargeKeepsTheTick)
{
    Show();
    Select(1);
    Ui.ExpectWarning(QStringLiteral("\"Technician\" is the only user who may change settings. Give another user that "
                                    "right first."),
                     QStringLiteral("Users"));
    Tick("chkChangeSettings");
    EXPECT_EQ(Ticked(), 31);
    EXPECT_EQ(Stored().last(), QStringLiteral("Technician 31"));
}

TEST_F(frmDirectoryUsersTest, AnAddedUserIsSelectedAndMayDoNothingYet)
{
    Show();
    Ui.ExpectInputBox(AddQuestion(), QStringLiteral("Petroc & Co"));
    Click("cmdAdd");
    EXPECT_EQ(Shown(), (QStringList{QStringLiteral("Megan"), QStringLiteral("Petroc & Co"),
                                    QStringLiteral("Technician (signed in)")}));
    EXPECT_EQ(List().currentRow(), 1);
    EXPECT_EQ(Find<QGroupBox>("grpRights").title(), QStringLiteral("Petroc && Co may"));
    EXPECT_EQ(Ticked(), 0);
    EXPECT_EQ(Stored().at(1), QStringLiteral("Petroc & Co 0"));
}

TEST_F(frmDirectoryUsersTest, ANameThatIsTakenIsRefusedInWords)
{
    Show();
    Ui.ExpectInputBox(AddQuestion(), QStringLiteral("MEGAN"));
    Ui.ExpectWarning(QStringLiteral("There is a user \"MEGAN\" already."), QStringLiteral("Users"));
    Click("cmdAdd");
    EXPECT_EQ(Stored().size(), 2);
}

TEST_F(frmDirectoryUsersTest, NoNameAndCancelChangeNothing)
{
    Show();
    Ui.ExpectInputBox(AddQuestion(), QStringLiteral("  "));
    Click("cmdAdd");
    Ui.ExpectInputBoxCancelled(AddQuestion());
    Click("cmdAdd");
    Ui.ExpectInputBoxCancelled(RenameQuestion(QStringLiteral("Megan")));
    Click("cmdRename");
    Ui.ExpectInputBox(RenameQuestion(QStringLiteral("Megan")), QString());
    Click("cmdRename");
    Ui.ExpectConfirmation(RemoveQuestion(QStringLiteral("Megan")), MessageBoxAnswer::No, QStringLiteral("Remove User"));
    Click("cmdRemove");
    EXPECT_EQ(Stored(), (QStringList{QStringLiteral("Megan 3"), QStringLiteral("Technician 31")}));
}

TEST_F(frmDirectoryUsersTest, ARenamedUserStaysSelected)
{
    Show();
    Ui.ExpectInputBox(RenameQuestion(QStringLiteral("Megan")), QStringLiteral("Zelah"));
    Click("cmdRename");
    EXPECT_EQ(Stored(), (QStringList{QStringLiteral("Technician 31"), QStringLiteral("Zelah 3")}));
    EXPECT_EQ(List().currentItem()->text(), QStringLiteral("Zelah"));
    EXPECT_EQ(Ticked(), 3);
}

TEST_F(frmDirectoryUsersTest, ARemovedUserIsGone)
{
    Show();
    Ui.ExpectConfirmation(RemoveQuestion(QStringLiteral("Megan")), MessageBoxAnswer::Yes,
                          QStringLiteral("Remove User"));
    Click("cmdRemove");
    EXPECT_EQ(Stored(), QStringList{QStringLiteral("Technician 31")});
    EXPECT_EQ(List().currentItem()->text(), QStringLiteral("Technician (signed in)"));
    EXPECT_EQ(Ticked(), 31);
}

TEST_F(frmDirectoryUsersTest, TheOneWhoIsSignedInIsNotRemoved)
{
    Directory.SetRights(Megan, 31);
    Show();
    Select(1);
    Ui.ExpectConfirmation(RemoveQuestion(QStringLiteral("Technician")), MessageBoxAnswer::Yes,
                          QStringLiteral("Remove User"));
    Ui.ExpectWarning(QStringLiteral("\"Technician\" is signed in here and cannot be deleted meanwhile."),
                     QStringLiteral("Users"));
    Click("cmdRemove");
    EXPECT_EQ(Stored().size(), 2);
}

TEST_F(frmDirectoryUsersTest, EverythingWorksByKeyboard)
{
    Show();
    Ui.ExpectInputBox(AddQuestion(), QStringLiteral("Petroc"));
    QTest::keyClick(&List(), Qt::Key_Insert);
    Ui.ExpectInputBox(RenameQuestion(QStringLiteral("Petroc")), QStringLiteral("Perran"));
    QTest::keyClick(&List(), Qt::Key_F2);
    QTest::keyClick(&List(), Qt::Key_Tab);
    EXPECT_TRUE(Find<QCheckBox>("chkCanEditMessages").hasFocus());
    QTest::keyClick(&Find<QCheckBox>("chkCanEditMessages"), Qt::Key_Space);
    EXPECT_EQ(Stored().at(1), QStringLiteral("Perran 1"));
    EXPECT_TRUE(Find<QCheckBox>("chkCanEditMessages").hasFocus());
    // A mnemonic holds its button down for a moment.
    QTest::keyClick(Form.get(), Qt::Key_Z, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Stored().at(1) == QStringLiteral("Perran 9"); }));
    Ui.ExpectInputBoxCancelled(AddQuestion());
    QTest::keyClick(Form.get(), Qt::Key_A, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Ui.InputBoxes().size() == 3; }));
    List().setFocus();
    Ui.ExpectConfirmation(RemoveQuestion(QStringLiteral("Perran")), MessageBoxAnswer::Yes,
                          QStringLiteral("Remove User"));
    QTest::keyClick(&List(), Qt::Key_Delete);
    EXPECT_EQ(Stored().size(), 2);
    QTest::keyClick(&List(), Qt::Key_Return);
    EXPECT_TRUE(Form->isVisible());
    QTest::keyClick(&List(), Qt::Key_Escape);
    EXPECT_FALSE(Form->isVisible());
}

TEST_F(frmDirectoryUsersTest, WithoutTheRightNothingCanBeChangedAndTheDialogSaysWhy)
{
    ASSERT_TRUE(Directory.SignIn(QStringLiteral("Megan")));
    Show();
    EXPECT_TRUE(Find<QLabel>("lblExplanation").isVisible());
    EXPECT_EQ(
        Find<QLabel>("lblExplanation").text(),
        QStringLiteral("Megan has no right to change settings, and so cannot change users. Somebody who has it can "
                       "do so, or give it."));
    for (const char* name : {"cmdAdd", "cmdRename", "cmdRemove", "chkCanEditMessages", "chkChangeSettings"})
        EXPECT_FALSE(Find<QWidget>(name).isEnabled()) << name;
    QTest::keyClick(&List(), Qt::Key_Delete);
    QTest::keyClick(&List(), Qt::Key_F2);
    QTest::keyClick(&List(), Qt::Key_Insert);
    Select(1);
    EXPECT_EQ(Ticked(), 31);
    Tick("chkCanEditMessages");
    EXPECT_EQ(Stored(), (QStringList{QStringLiteral("Megan 3"), QStringLiteral("Technician 31")}));
    Click("cmdClose");
    EXPECT_FALSE(Form->isVisible());
}

TEST_F(frmDirectoryUsersTest, WithNobodySignedInTheDialogSaysSo)
{
    Directory.SignOut();
    Show();
    EXPECT_EQ(Find<QLabel>("lblExplanation").text(),
              QStringLiteral("Nobody is signed in. Sign in as a user who may change settings to change users."));
    EXPECT_FALSE(Find<QPushButton>("cmdAdd").isEnabled());
}

TEST_F(frmDirectoryUsersTest, ARightThatWasTakenAtAnotherComputerMeanwhileCountsAtOnce)
{
    Show();
    EmbeddedDirectory other;
    other.Open(Folder.path());
    other.SetRights(Megan, 31);
    other.SetRights(Technician, 0);
    Tick("chkManagePrizes");
    EXPECT_EQ(Stored(), (QStringList{QStringLiteral("Megan 31"), QStringLiteral("Technician 0")}));
    EXPECT_FALSE(Find<QPushButton>("cmdAdd").isEnabled());
    EXPECT_TRUE(Find<QLabel>("lblExplanation").isVisible());
}

TEST_F(frmDirectoryUsersTest, AUserWhoWasDeletedMeanwhileIsTold)
{
    Show();
    EmbeddedDirectory other;
    other.Open(Folder.path());
    other.DeleteUser(Megan);
    Ui.ExpectRunTimeError(3167, QStringLiteral("The user has been deleted."));
    Tick("chkManagePrizes");
    EXPECT_EQ(Shown(), QStringList{QStringLiteral("Technician (signed in)")});
}

TEST_F(frmDirectoryUsersTest, ALongNameDoesNotMakeTheDialogAsWide)
{
    Show();
    const int width = Form->width();
    Directory.RenameUser(Megan, QString(255, u'W'));
    Form->Reload();
    EXPECT_LE(Form->minimumSizeHint().width(), width);
}

TEST_F(frmDirectoryUsersTest, LosingTheDirectoryIsTold)
{
    Show();
    Directory.Close();
    Ui.ExpectRunTimeError(3420, QStringLiteral("The directory is not open."));
    Form->Reload();
}
