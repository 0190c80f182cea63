// SPDX-License-Identifier: Apache-2.0
#include "Desk.h"
#include "DeskTest.h"
#include "DeskUserInterface.h"
#include "StationMaking.h"
#include "StationPlace.h"
#include "common/dialogs/DialogUserInterface.h"
#include "compose/ComposeWindow.h"
#include "messageslist/uMessagesList.h"
#include "pictures/UnusualMessages.h"
#include "station/SignInDialog.h"
#include "station/StartDialog.h"
#include "window/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <sqlite3.h>

namespace
{
class DeskStartTest : public DeskTest
{
protected:
    void SetUp() override
    {
        DeskTest::SetUp();
        Settings = std::make_unique<DeskSettings>(Path(QStringLiteral("desk.ini")));
        TheDesk = std::make_unique<Desk>(*Settings, nullptr);
    }
    void TearDown() override
    {
        StartDialog::SetFolderChooser({});
        if (TheDesk->Window())
            TheDesk->Window()->close();
        TheDesk.reset();
        DeskTest::TearDown();
    }
    DeskOptions Options(const QString& folder, const QString& user = QString())
    {
        DeskOptions options;
        options.Folder = folder;
        options.User = user;
        return options;
    }
    QString SignedIn() { return TheDesk->Window()->Station().Directory().CurrentUser()->Name(); }

    std::unique_ptr<DeskSettings> Settings;
    std::unique_ptr<Desk> TheDesk;
};
} // namespace

TEST_F(DeskStartTest, TheOnlyUserIsSignedInWithoutAQuestion)
{
    ASSERT_TRUE(TheDesk->Start(Options(Folder())));
    EXPECT_EQ(SignedIn(), QStringLiteral("Technician"));
    EXPECT_TRUE(TheDesk->Window()->isVisible());
    EXPECT_EQ(Settings->RecentStations(), QStringList{Folder()});
}

TEST_F(DeskStartTest, AmongSeveralUsersOneIsChosenAndProposedTheNextTime)
{
    AddUser(QStringLiteral("Petra"), 1);
    AddUser(QStringLiteral("Ravi"), 1);
    {
        const DialogVisitor visitor("signInDialog", [](QDialog& dialog) {
            auto* users = dialog.findChild<QListWidget*>(QStringLiteral("users"));
            EXPECT_EQ(users->count(), 3);
            EXPECT_EQ(users->currentItem()->text(), QStringLiteral("Technician"));
            users->setCurrentRow(1);
            QTest::keyClick(users, Qt::Key_Return);
        });
        ASSERT_TRUE(TheDesk->Start(Options(Folder())));
    }
    EXPECT_EQ(SignedIn(), QStringLiteral("Ravi"));
    TheDesk->Window()->close();
    const DialogVisitor visitor("signInDialog", [](QDialog& dialog) {
        EXPECT_EQ(static_cast<SignInDialog&>(dialog).User(), QStringLiteral("Ravi"));
        dialog.accept();
    });
    EXPECT_TRUE(TheDesk->Start(Options(Folder())));
}

TEST_F(DeskStartTest, GivingUpTheSignInOpensNothing)
{
    AddUser(QStringLiteral("Petra"), 1);
    const DialogVisitor visitor("signInDialog", [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(TheDesk->Start(Options(Folder())));
    EXPECT_EQ(TheDesk->Window(), nullptr);
}

TEST_F(DeskStartTest, AUserNamedOnTheCommandLineIsTaken)
{
    AddUser(QStringLiteral("Petra"), 1);
    ASSERT_TRUE(TheDesk->Start(Options(Folder(), QStringLiteral("petra"))));
    EXPECT_EQ(SignedIn(), QStringLiteral("Petra"));
}

TEST_F(DeskStartTest, AnUnknownUserIsToldInWords)
{
    Ui.ExpectWarning(QStringLiteral("“Nobody” is not a user of this station. Its technician can add users."));
    EXPECT_FALSE(TheDesk->Start(Options(Folder(), QStringLiteral("Nobody"))));
}

TEST_F(DeskStartTest, AFolderThatIsNotThereIsToldInWords)
{
    Ui.ExpectWarning(
        QStringLiteral("There is no folder /nonexistent/station. If it lies on another computer, check that "
                       "the computer is on and the network is connected."));
    EXPECT_FALSE(TheDesk->Start(Options(QStringLiteral("/nonexistent/station"))));
}

TEST_F(DeskStartTest, AFolderWithoutAStationAsksBeforeItMakesOne)
{
    const QString folder = Path(QStringLiteral("empty"));
    ASSERT_TRUE(QDir().mkpath(folder));
    Ui.ExpectConfirmation(QStringLiteral("There is no station in %1. Do you want to make a new one there?").arg(folder),
                          MessageBoxAnswer::No);
    EXPECT_FALSE(TheDesk->Start(Options(folder)));
    EXPECT_TRUE(QDir(folder).isEmpty());
}

TEST_F(DeskStartTest, ANewStationIsMadeWithItsNameAndNumber)
{
    const QString folder = Path(QStringLiteral("empty"));
    ASSERT_TRUE(QDir().mkpath(folder));
    Ui.ExpectConfirmation(QStringLiteral("There is no station in %1. Do you want to make a new one there?").arg(folder),
                          MessageBoxAnswer::Yes);
    Ui.ExpectInputBox({QStringLiteral("The station's name:"), QStringLiteral("New station"), QString(), 250, QString()},
                      QStringLiteral("Quay FM"));
    Ui.ExpectInputBox(
        {QStringLiteral("The station's telephone number:"), QStringLiteral("New station"), QString(), 250, QString()},
        QStringLiteral("01632 960200"));
    ASSERT_TRUE(TheDesk->Start(Options(folder)));
    EXPECT_EQ(TheDesk->Window()->windowTitle(), QStringLiteral("Quay FM – Tolva"));
    EXPECT_EQ(TheDesk->Window()->Station().Database().StationPhoneNumber(), QStringLiteral("01632 960200"));
}

TEST_F(DeskStartTest, ADamagedStationWithoutABackupIsToldInWords)
{
    Station.Close();
    ASSERT_TRUE(QDir(Folder() + QStringLiteral("/Backups")).removeRecursively());
    Write(QStringLiteral("station/Tolva.mdb"), QByteArray(5000, 'x'));
    const QString file = StationPlace::FileIn(Folder());
    Ui.ExpectWarning(
        QStringLiteral("The station in %1 is not a database of this program, or its file is damaged. Put the "
                       "newest backup in its place. (There was a problem opening the database %2 and the "
                       "error's description was reported as : \"Unrecognised database format. (3343)\")")
            .arg(Folder(), file));
    EXPECT_FALSE(TheDesk->Start(Options(Folder())));
    EXPECT_EQ(Read(file), QByteArray(5000, 'x'));
}

/// Every kind of damage to a station that has a backup with one message: what stands in the file then.
class DamagedStationTest : public DeskStartTest, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        DeskStartTest::SetUp();
        FileMail(Mail("Before the backup"));
        ASSERT_FALSE(Station.BackUp().Name.isEmpty());
        FileMail(Mail("After the backup"));
        Station.Close();
        const QByteArray kind(GetParam());
        QByteArray octets = Read(StationPlace::FileIn(Folder()));
        if (kind == "text")
            octets = "This is a letter and no database.";
        else if (kind == "truncated")
            octets.truncate(octets.size() / 2);
        else
            octets.replace(4096, octets.size() - 4096, QByteArray(octets.size() - 4096, '\0'));
        Write(QStringLiteral("station/Tolva.mdb"), octets);
        Damaged = octets;
    }
    /// Answers the offer, whatever words the kind of damage has.
    void Answer(const QString& button)
    {
        UserInterface::SetCurrent(&Dialogs);
        const BoxAnswer answer(button);
        if (button == QStringLiteral("Yes")) {
            QTimer told;
            QString text;
            QObject::connect(&told, &QTimer::timeout, &told, [&] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                if (!box || !box->text().startsWith(QStringLiteral("The station was restored")))
                    return;
                text = box->text();
                box->accept();
            });
            told.start(10);
            EXPECT_TRUE(TheDesk->Start(Options(Folder())));
            EXPECT_TRUE(text.contains(QStringLiteral(": 1 message, "))) << text.toStdString();
        } else {
            EXPECT_FALSE(TheDesk->Start(Options(Folder())));
        }
        EXPECT_TRUE(answer.HasCome());
        EXPECT_TRUE(answer.Text().contains(QStringLiteral("The newest backup that can be read was made on ")))
            << answer.Text().toStdString();
        UserInterface::SetCurrent(&Ui);
    }

    DialogUserInterface Dialogs;
    QByteArray Damaged;
};

TEST_P(DamagedStationTest, ComesBackFromItsNewestBackupWhenTheUserAgrees)
{
    Answer(QStringLiteral("Yes"));
    ASSERT_TRUE(TheDesk->Window());
    EXPECT_TRUE(WaitUntil([this] { return TheDesk->Window()->List().NumberItems() == 1; }));
    QStringList kept = QDir(Folder()).entryList({QStringLiteral("*.BAK")});
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(Read(Folder() + QLatin1Char('/') + kept.first()), Damaged);
}

TEST_P(DamagedStationTest, StaysAsItIsWhenTheUserDeclines)
{
    Answer(QStringLiteral("No"));
    EXPECT_EQ(Read(StationPlace::FileIn(Folder())), Damaged);
}

INSTANTIATE_TEST_SUITE_P(Damages, DamagedStationTest, testing::Values("text", "truncated", "zeroed"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_F(DeskStartTest, ALockedStationIsToldInWordsAndOpensWhenItIsFree)
{
    Station.Close();
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(StationPlace::FileIn(Folder()).toUtf8().constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    Ui.ExpectWarning(
        QStringLiteral("The station in %1 is locked by another computer or program. Try again in a moment.")
            .arg(Folder()));
    EXPECT_FALSE(TheDesk->Start(Options(Folder())));
    sqlite3_close(other);
    EXPECT_TRUE(TheDesk->Start(Options(Folder())));
}

TEST_F(DeskStartTest, AStationWithoutADirectoryIsToldInWords)
{
    Station.Close();
    ASSERT_TRUE(QFile::remove(StationPlace::DirectoryFileIn(Folder())));
    Ui.ExpectWarning(
        QStringLiteral("The station in %1 has no directory, so nobody is a user of it. Its directory belongs "
                       "into %1/Directory.")
            .arg(Folder()));
    EXPECT_FALSE(TheDesk->Start(Options(Folder())));
    EXPECT_FALSE(QFile::exists(StationPlace::DirectoryFileIn(Folder())));
}

TEST_F(DeskStartTest, WithoutAFolderTheRecentStationsAreOffered)
{
    Settings->RememberStation(Path(QStringLiteral("other")));
    Settings->RememberStation(Folder());
    const DialogVisitor visitor("startDialog", [this](QDialog& dialog) {
        auto* list = dialog.findChild<QListWidget*>(QStringLiteral("recentList"));
        EXPECT_EQ(list->count(), 2);
        EXPECT_EQ(list->currentItem()->data(Qt::UserRole).toString(), Folder());
        list->setCurrentRow(1);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("forget")), Qt::LeftButton);
        EXPECT_EQ(list->count(), 1);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("open")), Qt::LeftButton);
    });
    EXPECT_TRUE(TheDesk->Start(Options(QString())));
    EXPECT_EQ(Settings->RecentStations(), QStringList{Folder()});
}

TEST_F(DeskStartTest, AFolderCanBeChosen)
{
    StartDialog::SetFolderChooser([this](QWidget*) { return Folder(); });
    const DialogVisitor visitor("startDialog", [](QDialog& dialog) {
        EXPECT_FALSE(dialog.findChild<QPushButton*>(QStringLiteral("open"))->isEnabled());
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("chooseFolder")), Qt::LeftButton);
    });
    EXPECT_TRUE(TheDesk->Start(Options(QString())));
}

TEST_F(DeskStartTest, AnotherStationReplacesTheWindowAndAFailedOneDoesNot)
{
    ASSERT_TRUE(TheDesk->Start(Options(Folder())));
    const MainWindow* first = TheDesk->Window();
    Ui.ExpectWarning(QStringLiteral("There is no folder /nonexistent. If it lies on another computer, check that the "
                                    "computer is on and the network is connected."));
    Q_EMIT TheDesk->Window()->StationWanted(QStringLiteral("/nonexistent"));
    EXPECT_EQ(TheDesk->Window(), first);
    EXPECT_TRUE(TheDesk->Window()->isVisible());

    const QString other = Path(QStringLiteral("other"));
    StationMaking::Make(other, QStringLiteral("Quay FM"), QStringLiteral("01632 960200"), QStringLiteral("Technician"),
                        Ui);
    Q_EMIT TheDesk->Window()->StationWanted(other);
    EXPECT_NE(TheDesk->Window(), first);
    EXPECT_EQ(TheDesk->Window()->windowTitle(), QStringLiteral("Quay FM – Tolva"));
    EXPECT_EQ(Settings->RecentStations(), (QStringList{other, Folder()}));
}

TEST_F(DeskStartTest, AnotherUserSitsDownWithoutAnEndOfTheProgram)
{
    ASSERT_TRUE(TheDesk->Start(Options(Folder())));
    AddUser(QStringLiteral("Demelza"), 0);
    const auto userNow = [this] { return TheDesk->Window()->Station().Directory().CurrentUser()->Name(); };
    ASSERT_EQ(userNow(), QStringLiteral("Technician"));
    const auto sitDown = [](const QString& name) {
        return DialogVisitor("signInDialog", [name](QDialog& dialog) {
            auto* list = dialog.findChild<QListWidget*>();
            list->setCurrentItem(list->findItems(name, Qt::MatchExactly).value(0));
            dialog.accept();
        });
    };
    {
        const auto visitor = sitDown(QStringLiteral("Demelza"));
        TheDesk->Window()->findChild<QAction*>(QStringLiteral("switchUser"))->trigger();
    }
    EXPECT_EQ(userNow(), QStringLiteral("Demelza"));
    const MainWindow* const window = TheDesk->Window();
    {
        const DialogVisitor visitor("signInDialog", [](QDialog& dialog) { dialog.reject(); });
        TheDesk->Window()->findChild<QAction*>(QStringLiteral("switchUser"))->trigger();
    }
    EXPECT_EQ(TheDesk->Window(), window);
    EXPECT_EQ(userNow(), QStringLiteral("Demelza"));
}

TEST_F(DeskStartTest, ReplyInTheListsMenuOpensTheDesksReplyAndNoErrorBox)
{
    FileMail(Mail("Lighthouse"));
    DeskUserInterface userInterface;
    Desk desk(*Settings, &userInterface);
    ASSERT_TRUE(desk.Start(Options(Folder())));
    uMessagesList& list = desk.Window()->List();
    ASSERT_TRUE(WaitUntil([&] { return list.SelectedReference() != 0; }));
    Q_EMIT list.MessageMenu()->aboutToShow();
    list.findChild<QAction*>(QStringLiteral("mnuReplyMessage"))->trigger();
    ASSERT_EQ(desk.Window()->ComposeWindows().size(), 1);
    EXPECT_EQ(desk.Window()->ComposeWindows().first()->Current().Subject, QStringLiteral("RE: Lighthouse"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(desk.Window()->close());
}

TEST_F(DeskStartTest, TheWindowCanBeClosedWhileALongListFills)
{
    UnusualMessages::FileMany(Station.Database(), 3000);
    DeskUserInterface userInterface;
    Desk desk(*Settings, &userInterface);
    QSignalSpy finished(&desk, &Desk::Finished);
    ASSERT_TRUE(desk.Start(Options(Folder())));
    int filled = 0;
    QObject::connect(&desk.Window()->List(), &uMessagesList::FillProgress, &desk, [&](int done, int) {
        filled = done;
        if (done > 100)
            desk.Window()->close();
    });
    ASSERT_TRUE(WaitUntil([&] { return finished.size() == 1; }));
    EXPECT_LT(filled, 3000);
}

TEST(DeskOptionsTest, TheCommandLineIsUnderstood)
{
    const DeskOptions options =
        DeskOptions::Parse({QStringLiteral("--user"), QStringLiteral("Petra"), QStringLiteral("/srv/fm")});
    EXPECT_EQ(options.User, QStringLiteral("Petra"));
    EXPECT_EQ(options.Folder, QStringLiteral("/srv/fm"));
    EXPECT_EQ(options.Problem, QString());
}

TEST(DeskOptionsTest, WhatIsNotUnderstoodIsSaid)
{
    EXPECT_EQ(DeskOptions::Parse({QStringLiteral("--user")}).Problem, QStringLiteral("--user needs a value."));
    EXPECT_EQ(DeskOptions::Parse({QStringLiteral("--what")}).Problem, QStringLiteral("There is no option --what."));
    EXPECT_EQ(DeskOptions::Parse({QStringLiteral("a"), QStringLiteral("b")}).Problem,
              QStringLiteral("Only one folder can be opened."));
}

TEST(DeskSettingsTest, TenStationsAreRememberedTheNewestFirst)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("desk.ini"));
    {
        DeskSettings settings(file);
        for (int i = 0; i < 12; ++i)
            settings.RememberStation(QStringLiteral("/station %1").arg(i));
        settings.RememberStation(QStringLiteral("/station 5"));
    }
    const DeskSettings settings(file);
    EXPECT_EQ(settings.RecentStations().size(), 10);
    EXPECT_EQ(settings.RecentStations().first(), QStringLiteral("/station 5"));
}
