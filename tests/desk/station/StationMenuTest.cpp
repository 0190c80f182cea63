// SPDX-License-Identifier: Apache-2.0
#include "CollectingUserInterface.h"
#include "Desk.h"
#include "DeskSettings.h"
#include "DeskTest.h"
#include "HeldFile.h"
#include "StationPlace.h"
#include "WindowTest.h"
#include "WithoutRights.h"
#include "compose/ComposeWindow.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/DBEngine.h"
#include "platform/records/LockPatience.h"
#include "platform/records/engines/EngineRegistry.h"
#include "support/FixedClock.h"
#include "window/MainWindow.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QStatusBar>
#include <QTreeWidget>
#include <QtTest>

namespace engine = dao::engine;

namespace
{
class StationMenuTest : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        WithoutAutomaticBackups();
    }
    QAction& Entry(const char* name) { return *Window->findChild<QAction*>(QLatin1String(name)); }
    /// By the keyboard: Alt with the menu's letter, then the entry's.
    void Choose(const char* name)
    {
        auto* menu = Window->findChild<QMenu*>(QStringLiteral("stationMenu"));
        QTest::keyClick(Window.get(), Qt::Key_S, Qt::AltModifier);
        ASSERT_TRUE(WaitUntil([menu] { return menu->isVisible(); }));
        const QString text = Entry(name).text();
        const QChar letter = text.at(text.indexOf(u'&') + 1).toLower();
        QTest::keyClick(menu, static_cast<Qt::Key>(letter.toUpper().unicode()));
    }
    QString Status() { return Window->statusBar()->currentMessage(); }
    QStringList Backups() const
    {
        return QDir(Folder() + QStringLiteral("/Backups/Tolva")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }
    QString KeepName() const { return Folder() + QStringLiteral("/Tolva-0001.BAK"); }
    /// Chooses the only backup and confirms.
    std::unique_ptr<DialogVisitor> RestoreTheBackup()
    {
        return std::make_unique<DialogVisitor>("backupsDialog", [this](QDialog& dialog) {
            auto* list = dialog.findChild<QTreeWidget*>(QStringLiteral("backups"));
            Made = list->topLevelItem(0)->text(0);
            Ui.ExpectConfirmation(
                QStringLiteral("Do you want to replace the station by the backup of %1 (1 message, 0 prizes, 0 "
                               "winners)?\n\nWhat was filed or changed since then is not in it. The present file is "
                               "kept beside it.\n\nOther computers may stay at work; they go on with the restored "
                               "station by themselves.")
                    .arg(Made),
                MessageBoxAnswer::Yes);
            AfterConfirmation();
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("restore")), Qt::LeftButton);
        });
    }
    void ExpectTold(const QString& text)
    {
        Ui.ExpectMessageBox(
            {text, QString(), MessageBoxButtons::OK, MessageBoxIcon::Information, MessageBoxAnswer::OK});
    }
    /// A station with one message in its backup and two in its file, shown; no other program has it open.
    void OpenWithBackup()
    {
        FileMail(Mail("Before"));
        Station.BackUp();
        FileMail(Mail("After"));
        Station.Close();
        OpenWindow();
        ASSERT_EQ(Window->List().NumberItems(), 2);
    }

    QString Made;
    std::function<void()> AfterConfirmation = [] {};
};

const QByteArray HalfDeadMark = "HALF DEAD\n";

/// Files that pass the validation of an open and fail when they are read the next time, as on a failing disk. Behind
/// the first open stands a real database.
class HalfDeadEngine final : public engine::Engine
{
public:
    explicit HalfDeadEngine(const QString& real) : Real_(real) {}

    QString Name() const override { return QStringLiteral("half dead"); }
    Capability Capabilities() const override { return {}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray& octets) const override { return octets.startsWith(HalfDeadMark); }
    bool RecognisesConnect(const QString&) const override { return false; }
    std::unique_ptr<engine::Store> Open(const QString&, const QString&, bool) override
    {
        if (Opens_++ % 2 == 1)
            throw dao::Error(dao::errFileDamaged, QStringLiteral("It fell apart."));
        return engine::EngineRegistry::Instance().ForNewFiles(QString()).Open(Real_, QString(), false);
    }
    void Create(const QString&) override {}
    void Compact(const QString&, const QString&) override {}
    void Copy(const QString&, const QString&, const engine::CopyProgress&) override {}
    dao::FileReport Examine(const QString&, const engine::CopyProgress&) override { return {}; }
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<dao::Connection> OpenConnection(const QString&, int, bool, const QString&) override
    {
        return nullptr;
    }

private:
    QString Real_;
    int Opens_ = 0;
};
} // namespace

TEST_F(StationMenuTest, ADeskThatRunsForDaysMakesTheBackupOfEachDay)
{
    Station.Database().SetEnableAutoBackup(true);
    Station.BackUp();
    const auto entries = [this] {
        const auto directory = dao::DBEngine::OpenDatabase(StationPlace::DirectoryFileIn(Folder()));
        return directory->OpenRecordset(QStringLiteral("UserLog"), dao::dbOpenSnapshot)->RecordCount();
    };
    const int before = entries();
    EXPECT_FALSE(Station.BackUpWhenDue()) << "today has its backup";
    EXPECT_EQ(entries(), before) << "a look is nobody's deed";
    FixedClock clock(QDateTime::currentDateTimeUtc().addDays(1));
    EXPECT_TRUE(Station.BackUpWhenDue());
    EXPECT_FALSE(Station.BackUpWhenDue());
    clock.Advance(24 * 60 * 60);
    Station.Database().SetEnableAutoBackup(false);
    EXPECT_FALSE(Station.BackUpWhenDue()) << "the station wants none";
    Station.Database().SetEnableAutoBackup(true);
    EXPECT_TRUE(Station.BackUpWhenDue());
    Station.Close();
    EXPECT_FALSE(Station.BackUpWhenDue());
}

TEST_F(StationMenuTest, WhatChangesTheStationNeedsTheRightAndSaysSo)
{
    AddUser(QStringLiteral("Guest"), 1);
    OpenWindow(QStringLiteral("Guest"));
    Q_EMIT Window->findChild<QMenu*>(QStringLiteral("stationMenu"))->aboutToShow();
    for (const char* name : {"settings", "mailAddress", "highlightWords", "compact", "labelSetup"}) {
        EXPECT_FALSE(Entry(name).isEnabled()) << name;
        EXPECT_EQ(Entry(name).statusTip(), QStringLiteral("Needs the right to change settings")) << name;
    }
    for (const char* name : {"backUpNow", "backups", "checkFile", "printLabels"})
        EXPECT_TRUE(Entry(name).isEnabled()) << name;
    CloseWindow();
    OpenWindow();
    Q_EMIT Window->findChild<QMenu*>(QStringLiteral("stationMenu"))->aboutToShow();
    for (const char* name : {"settings", "mailAddress", "highlightWords", "compact", "labelSetup"}) {
        EXPECT_TRUE(Entry(name).isEnabled()) << name;
        EXPECT_NE(Entry(name).statusTip(), QStringLiteral("Needs the right to change settings")) << name;
    }
}

TEST_F(StationMenuTest, TheTitleFollowsAChangedName)
{
    OpenWindow();
    Ui.ExpectDatabaseSettings([](cTolvaDatabase& database) {
        database.SetStationName(QStringLiteral("Lighthouse Radio"));
        return true;
    });
    Choose("settings");
    EXPECT_EQ(Window->windowTitle(), QStringLiteral("Lighthouse Radio – Tolva"));
}

TEST_F(StationMenuTest, BackingUpSaysWhereTheCopyIsAndWorksAgainAndAgain)
{
    FileMail(Mail("One"));
    OpenWindow();
    Choose("backUpNow");
    ASSERT_EQ(Backups().size(), 1);
    EXPECT_EQ(Status(), QStringLiteral("Backed up to ") + Backups().first());
    FileMail(Mail("Two"));
    Choose("backUpNow");
    EXPECT_EQ(Status(), QStringLiteral("Backed up to ") + Backups().last());
    EXPECT_EQ(StationCounts::Of(Folder() + QStringLiteral("/Backups/Tolva/") + Backups().last() +
                                QStringLiteral("/Tolva.mdb"))
                  .Messages,
              2);
}

TEST_F(StationMenuTest, ABackupThatIsCancelledIsNone)
{
    OpenWindow();
    Ui.CancelProgressAt(1);
    Choose("backUpNow");
    EXPECT_EQ(Status(), QStringLiteral("Ended early; no backup was made."));
}

TEST_F(StationMenuTest, ABackupThatCannotBeWrittenIsToldInWords)
{
    Write(QStringLiteral("station/Backups"), "a file in the way");
    OpenWindow();
    Choose("backUpNow");
    EXPECT_EQ(Status(), QStringLiteral("The backup could not be written into %1/Backups/Tolva.").arg(Folder()));
}

TEST_F(StationMenuTest, RestoringABackupSaysWhatWasRestoredAndShowsIt)
{
    OpenWithBackup();
    AfterConfirmation = [this] {
        ExpectTold(QStringLiteral("The station was restored from the backup of %1: 1 message, 0 prizes, 0 "
                                  "winners.\n\nThe file as it was before is kept as %2.")
                       .arg(Made, KeepName()));
    };
    const auto visitor = RestoreTheBackup();
    Choose("backups");
    EXPECT_EQ(Window->List().NumberItems(), 1);
    EXPECT_TRUE(Window->Station().Database().IsOpen());
    EXPECT_EQ(StationCounts::Of(KeepName()).Messages, 2);
}

TEST_F(StationMenuTest, NothingIsRestoredWhileAMessageWantsToStay)
{
    OpenWithBackup();
    Window->NewMessage();
    ComposeWindow* compose = Window->ComposeWindows().first();
    QTest::keyClicks(compose->findChild<QPlainTextEdit*>(QStringLiteral("body")), QStringLiteral("Dear listener"));
    Window->activateWindow();
    {
        const auto visitor = RestoreTheBackup();
        const BoxAnswer stay(QStringLiteral("Cancel"));
        Entry("backups").trigger();
    }
    EXPECT_EQ(Status(), QStringLiteral("Nothing was changed, because something is still being written."));
    EXPECT_EQ(Window->List().NumberItems(), 2);
    EXPECT_FALSE(QFile::exists(KeepName()));
    EXPECT_TRUE(compose->isVisible());
    const BoxAnswer discard(QStringLiteral("Discard"));
    compose->close();
}

TEST_F(StationMenuTest, WhenARestoreFailsTheOldStationOpensAgain)
{
    OpenWithBackup();
    AfterConfirmation = [this] {
        Ui.CancelProgressAt(1);
        Ui.ExpectWarning(QStringLiteral("Ended early; nothing was changed.\n\nThe station is open again."));
    };
    const auto visitor = RestoreTheBackup();
    Choose("backups");
    EXPECT_EQ(Window->List().NumberItems(), 2);
    EXPECT_TRUE(Window->Station().Database().IsOpen());
    EXPECT_FALSE(QFile::exists(KeepName()));
}

TEST_F(StationMenuTest, TheCheckOfASoundStationSaysWhatItHolds)
{
    FileMail(Mail("One"));
    OpenWindow();
    QString headline;
    QString details;
    const DialogVisitor visitor("reportDialog", [&](QDialog& dialog) {
        headline = dialog.findChild<QLabel*>(QStringLiteral("headline"))->text();
        details = dialog.findChild<QPlainTextEdit*>(QStringLiteral("details"))->toPlainText();
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    Choose("checkFile");
    EXPECT_EQ(headline, QStringLiteral("The station is sound: 1 message, 0 prizes, 0 winners."));
    EXPECT_EQ(details, QStringLiteral("Inbox: 1\nMessages in all: 1"));
}

TEST_F(StationMenuTest, TheCheckNamesAMessageInNoFolder)
{
    const qint32 reference = FileMail(Mail("Lost"), static_cast<enTolvaMessageCategories>(77));
    OpenWindow();
    QString headline;
    QString details;
    const DialogVisitor visitor("reportDialog", [&](QDialog& dialog) {
        headline = dialog.findChild<QLabel*>(QStringLiteral("headline"))->text();
        details = dialog.findChild<QPlainTextEdit*>(QStringLiteral("details"))->toPlainText();
        dialog.reject();
    });
    Choose("checkFile");
    EXPECT_EQ(headline, QStringLiteral("The station is not sound: messages in no folder: 1. “Backups...” in the menu "
                                       "“Station” restores an earlier state."));
    EXPECT_TRUE(details.startsWith(QStringLiteral("Message %1 stands in folder 77").arg(reference)))
        << details.toStdString();
}

TEST_F(StationMenuTest, ACheckThatIsCancelledSaysSo)
{
    FileMail(Mail("One"));
    OpenWindow();
    Ui.CancelProgressAt(1);
    Choose("checkFile");
    EXPECT_EQ(Status(), QStringLiteral("Ended early; the rest was not checked."));
}

TEST_F(StationMenuTest, CompactingAsksAndSaysWhatTheFileHolds)
{
    FileMail(Mail("One"));
    Station.Close();
    OpenWindow();
    const QString question =
        QStringLiteral("Do you want to write the station's file anew? The present file is kept beside it.\n\n"
                       "Other computers may stay at work; for a moment they wait.");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    Choose("compact");
    EXPECT_FALSE(QFile::exists(KeepName()));
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    CollectingUserInterface told(Ui);
    Choose("compact");
    const QString words = told.TakeProblems().join(u'|');
    EXPECT_TRUE(words.startsWith(QStringLiteral("The station was compacted: 1 message, 0 prizes, 0 winners, as before. "
                                                "Its file takes ")))
        << words.toStdString();
    EXPECT_TRUE(words.endsWith(QStringLiteral("The file as it was before is kept as %1.").arg(KeepName())))
        << words.toStdString();
    EXPECT_EQ(StationCounts::Of(KeepName()).Messages, 1);
    EXPECT_EQ(Window->List().NumberItems(), 1);
}

TEST_F(StationMenuTest, TheMeasuresOfLabelsAreStoredForAllComputers)
{
    OpenWindow();
    Ui.ExpectPageSetupLabels([](cPageSetup& pageSetup) { pageSetup.SetNumberRows(9); });
    Choose("labelSetup");
    Station.Database().ReadDatabaseSettings();
    EXPECT_EQ(Station.Database().AddressLabelsPageSetup().NumberRows(), 9);
}

TEST_F(StationMenuTest, HighlightWordsAreChangedInTheirDialog)
{
    OpenWindow();
    const DialogVisitor visitor("frmHighlightSettings", [](QDialog& dialog) {
        dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtWords"))->setPlainText(QStringLiteral("lighthouse"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    Choose("highlightWords");
    EXPECT_EQ(Station.Database().DatabaseSetting(QStringLiteral("Messages.HighlightWords"), QString()).toString(),
              QStringLiteral("lighthouse"));
}

TEST_F(StationMenuTest, TheAddressThatMailGoesOutFromIsSetAndCheckedAsOne)
{
    OpenWindow();
    const auto stored = [this] {
        return Station.Database().DatabaseSetting(QStringLiteral("Station.EmailAddress"), QString()).toString();
    };
    const QString before = stored();
    const auto type = [](QDialog& dialog, const QString& text) {
        auto* box = dialog.findChild<QLineEdit*>(QStringLiteral("stationEmailAddress"));
        EXPECT_EQ(dialog.focusWidget(), box);
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
        QTest::keyClick(box, Qt::Key_Return);
    };
    {
        const DialogVisitor visitor("mailAddressDialog", [&](QDialog& dialog) {
            Ui.ExpectWarning(QStringLiteral("“studio at example.org” is no e-mail address. Write the address alone, "
                                            "like studio@example.org."));
            type(dialog, QStringLiteral("studio at example.org"));
            EXPECT_TRUE(dialog.isVisible());
            Ui.ExpectWarning(QStringLiteral("“Studio <studio@example.org>” is no e-mail address. Write the address "
                                            "alone, like studio@example.org."));
            type(dialog, QStringLiteral("Studio <studio@example.org>"));
            EXPECT_EQ(stored(), before);
            type(dialog, QStringLiteral(" studio@example.org "));
            EXPECT_FALSE(dialog.isVisible());
        });
        Choose("mailAddress");
    }
    EXPECT_EQ(stored(), QStringLiteral("studio@example.org"));

    // What is written from now on goes out from it.
    Composition composition;
    composition.To = QStringLiteral("ann@example.org");
    composition.Subject = QStringLiteral("Hello");
    composition.Body = QStringLiteral("Gladly.");
    ASSERT_TRUE(Window->Compose(composition)->Send());
    const cMessagePtr sent = Station.Database().GetMessage(MessagesIn(tmcOutbox).value(0));
    ASSERT_TRUE(sent);
    EXPECT_TRUE(sent->CDOMessage()->From().contains(u"<studio@example.org>"))
        << sent->CDOMessage()->From().toStdString();

    Window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));

    // Escape changes nothing; what another computer stored meanwhile is not replaced unasked.
    {
        const DialogVisitor visitor("mailAddressDialog", [&](QDialog& dialog) {
            OtherComputer("setting", {QStringLiteral("Station.EmailAddress"), QStringLiteral("desk@example.org")});
            Ui.ExpectConfirmation(QStringLiteral("Another computer has set the address to “desk@example.org” "
                                                 "meanwhile. Do you want to replace that by what stands here?"),
                                  MessageBoxAnswer::No);
            type(dialog, QStringLiteral("third@example.org"));
            EXPECT_TRUE(dialog.isVisible());
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        Choose("mailAddress");
    }
    EXPECT_EQ(stored(), QStringLiteral("desk@example.org"));
}

TEST_F(StationMenuTest, AnAddressThatCannotBeReadOrStoredIsSaidWithItsReasonAndStaysAsItWas)
{
    const auto stored = [this] {
        return Station.Database().DatabaseSetting(QStringLiteral("Station.EmailAddress"), QString()).toString();
    };
    Station.Database().SetDatabaseSetting(QStringLiteral("Station.EmailAddress"), QStringLiteral("studio@example.org"),
                                          QString());
    OpenWindow();
    const dao::LockPatience patience(30);
    const QString locked = Window->Station().Words(dao::errLocked, QString());
    {
        const HeldFile held(StationPlace::FileIn(Folder()));
        Ui.ExpectWarning(locked);
        Choose("mailAddress");
    }
    for (const QString& typed : {QString(), QStringLiteral("desk@example.org")}) {
        Window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
        const DialogVisitor visitor("mailAddressDialog", [&](QDialog& dialog) {
            auto* box = dialog.findChild<QLineEdit*>(QStringLiteral("stationEmailAddress"));
            EXPECT_EQ(box->text(), QStringLiteral("studio@example.org"));
            box->selectAll();
            QTest::keyClick(box, Qt::Key_Delete);
            QTest::keyClicks(box, typed);
            {
                const HeldFile held(StationPlace::FileIn(Folder()));
                Ui.ExpectWarning(QStringLiteral("The address could not be stored. ") + locked);
                QTest::keyClick(box, Qt::Key_Return);
                EXPECT_TRUE(dialog.isVisible());
            }
            EXPECT_EQ(stored(), QStringLiteral("studio@example.org"));
            if (typed.isEmpty())
                return dialog.reject();
            QTest::keyClick(box, Qt::Key_Return);
            EXPECT_FALSE(dialog.isVisible());
        });
        Choose("mailAddress");
    }
    EXPECT_EQ(stored(), QStringLiteral("desk@example.org"));
}

TEST_F(StationMenuTest, AnAddressIsNotStoredWhereTheStationCanOnlyBeRead)
{
    Station.Close();
    const WithoutRights without(Folder());
    OpenWindow();
    ASSERT_TRUE(Window);
    const DialogVisitor visitor("mailAddressDialog", [&](QDialog& dialog) {
        auto* box = dialog.findChild<QLineEdit*>(QStringLiteral("stationEmailAddress"));
        box->setText(QStringLiteral("desk@example.org"));
        Ui.ExpectWarning(QStringLiteral("The address could not be stored. ") +
                         Window->Station().Words(dao::errReadOnly, QString()));
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    Choose("mailAddress");
    CloseWindow();
}

TEST_F(StationMenuTest, AStationThatWasRestoredWhileOpeningSaysSo)
{
    FileMail(Mail("Before"));
    Station.BackUp();
    Station.Close();
    const QString file = StationPlace::FileIn(Folder());
    const QString real = Path(QStringLiteral("Real.mdb"));
    ASSERT_TRUE(QFile::copy(file, real));
    Write(QStringLiteral("station/Tolva.mdb"), HalfDeadMark);
    engine::EngineRegistry::Instance().Register(std::make_unique<HalfDeadEngine>(real));
    const auto forget = qScopeGuard([] { engine::EngineRegistry::Instance().Unregister(QStringLiteral("half dead")); });
    const auto backups = BackupFolders::List(BackupFolders::RootOf(file));
    ASSERT_EQ(backups.size(), 1);
    const QString made = backups.first().CreatedDate.Format(QStringLiteral("dddddd hh:nn"));
    Ui.ExpectConfirmation(QStringLiteral("Your Tolva database is corrupted and cannot be repaired.\n\n"
                                         "Do you want this program to search for recent automatic backups?"),
                          MessageBoxAnswer::Yes);
    Ui.ExpectConfirmation(QStringLiteral("A valid backup has been found that was created: %1\n\n"
                                         "Do you want replace the corrupted database with this backup?\n\n"
                                         "WARNING! You must quit from all copies of Tolva and Tolva Server before "
                                         "restoring from a Backup")
                              .arg(made),
                          MessageBoxAnswer::Yes);
    ExpectTold(QStringLiteral("The station was restored from the backup of %1: 1 message, 0 prizes, 0 winners.\n\nThe "
                              "damaged file is kept as %2/Tolva.BAK.")
                   .arg(made, Folder()));
    Desk desk(*Settings, nullptr);
    ASSERT_TRUE(desk.OpenStation(Folder(), QStringLiteral("Technician")));
    EXPECT_TRUE(desk.Window()->close());
}
