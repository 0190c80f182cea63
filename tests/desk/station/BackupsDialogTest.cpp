// SPDX-License-Identifier: Apache-2.0
#include "station/BackupsDialog.h"

#include "DeskTest.h"
#include "StationPlace.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

namespace
{
class BackupsDialogTest : public DeskTest
{
protected:
    void SetUp() override
    {
        DeskTest::SetUp();
        WithoutAutomaticBackups();
    }
    void TearDown() override
    {
        Dialog.reset();
        DeskTest::TearDown();
    }
    QString File() const { return StationPlace::FileIn(Folder()); }
    void Open(bool mayRestore = true)
    {
        Dialog = std::make_unique<BackupsDialog>(File(), mayRestore);
        Dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(Dialog.get()));
    }
    /// The folder of a new backup.
    QString MakeBackup() { return Station.BackUp().Folder; }
    static void Overwrite(const QString& file, const QByteArray& octets)
    {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        ASSERT_EQ(out.write(octets), octets.size());
    }
    template <typename T>
    T& Part(const char* name)
    {
        return *Dialog->findChild<T*>(QLatin1String(name));
    }
    QTreeWidget& List() { return Part<QTreeWidget>("backups"); }
    QPushButton& RestoreButton() { return Part<QPushButton>("restore"); }
    QString State(int row) { return List().topLevelItem(row)->text(3); }
    QString Content() { return Part<QLabel>("content").text(); }
    bool WaitForContent(const QString& text)
    {
        return WaitUntil([&] { return Content() == text; });
    }
    QString Question(const QString& content)
    {
        return QStringLiteral(
                   "Do you want to replace the station by the backup of %1 (%2)?\n\n"
                   "What was filed or changed since then is not in it. The present file is kept beside it.\n\n"
                   "Other computers may stay at work; they go on with the restored station by themselves.")
            .arg(List().currentItem()->text(0), content);
    }

    std::unique_ptr<BackupsDialog> Dialog;
};

const QString OneMessage = QStringLiteral("1 message, 0 prizes, 0 winners");
} // namespace

TEST_F(BackupsDialogTest, WithoutABackupItSaysHowToMakeOne)
{
    Open();
    EXPECT_EQ(List().topLevelItemCount(), 0);
    EXPECT_EQ(Content(), QStringLiteral("There is no backup yet. “Back up now” in the menu “Station” makes one."));
    EXPECT_FALSE(RestoreButton().isEnabled());
}

TEST_F(BackupsDialogTest, ABackupIsListedAndCountedWhenTheSelectionRestsOnIt)
{
    FileMail(Mail("One"));
    MakeBackup();
    FileMail(Mail("Two"));
    Open();
    ASSERT_EQ(List().topLevelItemCount(), 1);
    EXPECT_FALSE(List().topLevelItem(0)->text(0).isEmpty());
    EXPECT_FALSE(List().topLevelItem(0)->text(1).isEmpty());
    EXPECT_FALSE(List().topLevelItem(0)->text(2).isEmpty());
    EXPECT_EQ(State(0), QStringLiteral("not read yet"));
    EXPECT_TRUE(WaitForContent(OneMessage + QStringLiteral(". It was read whole and is sound.")))
        << Content().toStdString();
    EXPECT_EQ(State(0), QStringLiteral("sound"));
}

TEST_F(BackupsDialogTest, TheNewestBackupStandsFirst)
{
    const QString newest = MakeBackup();
    const QString old = QFileInfo(newest).path() + QStringLiteral("/2020-01-02 03.04");
    ASSERT_TRUE(QDir().mkpath(old));
    ASSERT_TRUE(QFile::copy(newest + QStringLiteral("/Tolva.mdb"), old + QStringLiteral("/Tolva.mdb")));
    Overwrite(old + QStringLiteral("/Backup.inf"), "[Details]\r\nCreated=02/01/2020 03:04:00\r\nBy=STUDIO2\r\n");
    Open();
    ASSERT_EQ(List().topLevelItemCount(), 2);
    EXPECT_TRUE(List().topLevelItem(1)->text(0).contains(QStringLiteral("2020")))
        << List().topLevelItem(1)->text(0).toStdString();
    EXPECT_EQ(List().topLevelItem(1)->text(1), QStringLiteral("STUDIO2"));
    List().setFocus();
    QTest::keyClick(&List(), Qt::Key_Down);
    EXPECT_EQ(List().currentItem(), List().topLevelItem(1));
    EXPECT_TRUE(WaitUntil([this] { return State(1) == u"sound"; }));
}

TEST_F(BackupsDialogTest, ABackupFromTheFutureStandsBehindTheOthersAndSaysSo)
{
    const QString newest = MakeBackup();
    const QString future = QFileInfo(newest).path() + QStringLiteral("/2999-01-02 03.04");
    ASSERT_TRUE(QDir().mkpath(future));
    ASSERT_TRUE(QFile::copy(newest + QStringLiteral("/Tolva.mdb"), future + QStringLiteral("/Tolva.mdb")));
    Overwrite(future + QStringLiteral("/Backup.inf"), "[Details]\r\nCreated=02/01/2999 03:04:00\r\n");
    Open();
    ASSERT_EQ(List().topLevelItemCount(), 2);
    EXPECT_EQ(List().currentItem(), List().topLevelItem(0));
    EXPECT_EQ(State(1), QStringLiteral("not read yet, from the future"));
}

TEST_F(BackupsDialogTest, RestoringAsksWithNoAsTheDefaultAndAcceptsAfterYes)
{
    FileMail(Mail("One"));
    const QString folder = MakeBackup();
    Open();
    Ui.ExpectConfirmation(Question(OneMessage), MessageBoxAnswer::No);
    QTest::mouseClick(&RestoreButton(), Qt::LeftButton);
    EXPECT_TRUE(Dialog->isVisible());
    Ui.ExpectConfirmation(Question(OneMessage), MessageBoxAnswer::Yes);
    QTest::mouseClick(&RestoreButton(), Qt::LeftButton);
    EXPECT_EQ(Dialog->result(), QDialog::Accepted);
    EXPECT_FALSE(Dialog->isVisible());
    EXPECT_EQ(Dialog->Chosen().Folder, folder);
}

TEST_F(BackupsDialogTest, ADamagedBackupIsMarkedAndCannotBeRestored)
{
    const QString copy = MakeBackup() + QStringLiteral("/Tolva.mdb");
    const QByteArray whole = Read(copy);
    for (const QByteArray& damaged : {QByteArray(), QByteArray("just some text"), whole.left(whole.size() / 2)}) {
        Overwrite(copy, damaged);
        Open();
        EXPECT_TRUE(WaitForContent(QStringLiteral("This backup is damaged. It cannot be restored.")))
            << damaged.size() << Content().toStdString();
        EXPECT_EQ(State(0), QStringLiteral("damaged"));
        EXPECT_FALSE(RestoreButton().isEnabled());
    }
}

TEST_F(BackupsDialogTest, ABackupThatWasDamagedSinceItWasReadIsRefusedInWords)
{
    const QString folder = MakeBackup();
    Open();
    ASSERT_TRUE(WaitUntil([this] { return State(0) == u"sound"; }));
    Overwrite(folder + QStringLiteral("/Tolva.mdb"), "just some text");
    Ui.ExpectWarning(
        QStringLiteral("The backup “%1” is damaged; nothing was changed.").arg(QFileInfo(folder).fileName()));
    QTest::mouseClick(&RestoreButton(), Qt::LeftButton);
    EXPECT_TRUE(Dialog->isVisible());
    EXPECT_EQ(State(0), QStringLiteral("damaged"));
}

TEST_F(BackupsDialogTest, CheckReadsASelectedBackupAnew)
{
    const QString folder = MakeBackup();
    Open();
    ASSERT_TRUE(WaitUntil([this] { return State(0) == u"sound"; }));
    Overwrite(folder + QStringLiteral("/Tolva.mdb"), "just some text");
    QTest::mouseClick(&Part<QPushButton>("check"), Qt::LeftButton);
    EXPECT_EQ(State(0), QStringLiteral("damaged"));
}

TEST_F(BackupsDialogTest, AnUnfinishedBackupIsMarkedAndCannotBeRestored)
{
    const QString folder = MakeBackup();
    ASSERT_TRUE(QFile::remove(folder + QStringLiteral("/Backup.inf")));
    Open();
    EXPECT_EQ(State(0), QStringLiteral("unfinished"));
    EXPECT_TRUE(
        WaitForContent(QStringLiteral("This backup failed or was ended before it was whole. It cannot be restored.")));
    EXPECT_FALSE(RestoreButton().isEnabled());
}

TEST_F(BackupsDialogTest, WithoutTheRightABackupIsShownButNotRestored)
{
    MakeBackup();
    Open(false);
    EXPECT_TRUE(WaitUntil([this] { return State(0) == u"sound"; }));
    EXPECT_FALSE(RestoreButton().isEnabled());
    EXPECT_EQ(Part<QLabel>("rightNote").text(), QStringLiteral("Restoring needs the right to change settings."));
}
