// SPDX-License-Identifier: Apache-2.0

// tolva recover, and what the other commands say of a message that was changed on the disk.

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"

#include <QElapsedTimer>
#include <QJsonDocument>

class RecoverTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        for (const char* subject : {"First", "Second", "Third"})
            FileMail(Mail(subject, QByteArray("Please play song of ") + subject + ".\r\n"));
    }
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    /// Changes an octet of the body of a message in a database file, as a failing disk does.
    static void Change(const QString& file, const QByteArray& subject)
    {
        QByteArray octets = Read(file);
        const qsizetype at = octets.indexOf("song of " + subject);
        ASSERT_GT(at, 0);
        octets[at] = 'S';
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        ASSERT_EQ(out.write(octets), octets.size());
    }
    /// Makes a backup and returns its name.
    QString BackUp() const
    {
        const QByteArray line = Expect("backup", {QStringLiteral("--json")});
        return QJsonDocument::fromJson(line).object().value(QStringLiteral("name")).toString();
    }
    QVariant Setting(const QString& item) const
    {
        const auto database = dao::DBEngine::OpenDatabase(File(), 0, true);
        const auto rows = database->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {item});
        return rows->NoMatch() ? QVariant() : rows->Collect(QStringLiteral("Value"));
    }
    QString InBackup(const QString& name) const
    {
        return Station() + QStringLiteral("/Backups/Tolva/") + name + QStringLiteral("/Tolva.mdb");
    }
    /// The same backup as if it had been made at another time.
    QString BackUpAs(const QString& name, const QString& created) const
    {
        const QString made = BackUp();
        const QString from = Station() + QStringLiteral("/Backups/Tolva/") + made;
        const QString to = Station() + QStringLiteral("/Backups/Tolva/") + name;
        EXPECT_TRUE(QDir().rename(from, to));
        QByteArray details = Read(to + QStringLiteral("/Backup.inf"));
        const qsizetype begin = details.indexOf("Created=");
        const qsizetype end = details.indexOf('\n', begin);
        EXPECT_GE(begin, 0);
        details.replace(begin, end - begin, "Created=" + created.toUtf8());
        QFile file(to + QStringLiteral("/Backup.inf"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(details);
        return name;
    }
};

TEST_F(RecoverTest, ADamagedMessageIsNamedWithItsBackupAndComesBackFromThere)
{
    const QString backup = BackUp();
    const QByteArray before = Expect("show", {QStringLiteral("2"), QStringLiteral("--raw")});
    Expect("move", {QStringLiteral("2"), QStringLiteral("Saved")});
    Change(File(), "Second");
    const QByteArray advice = "The backup \"" + backup.toUtf8() +
                              "\" has it sound; fetch it from there with: tolva recover " + Station().toUtf8() + " 2";

    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    EXPECT_TRUE(check.Problems.contains("Message 2 cannot be read: ")) << check.Problems.constData();
    EXPECT_TRUE(check.Problems.contains(advice)) << check.Problems.constData();
    EXPECT_TRUE(check.Output.contains("The station is not sound: damaged messages: 1.")) << check.Output.constData();

    const Outcome show = OnStation("show", {QStringLiteral("2")});
    EXPECT_EQ(show.Code, 65);
    EXPECT_TRUE(show.Output.contains("Please play Song of Second.")) << show.Output.constData();
    EXPECT_EQ(show.Problems, "tolva: Message 2 is damaged: its mail is not what was saved. " + advice + "\n");
    EXPECT_TRUE(OnStation("show", {QStringLiteral("2"), QStringLiteral("--json")}).Output.contains("\"damaged\":true"));
    EXPECT_TRUE(Expect("show", {QStringLiteral("1"), QStringLiteral("--json")}).contains("\"damaged\":false"));

    const Outcome list = OnStation("list");
    EXPECT_EQ(list.Code, 65);
    EXPECT_EQ(list.Lines().size(), 3);
    EXPECT_TRUE(list.Problems.contains("Message 2 is damaged")) << list.Problems.constData();

    const Outcome exported = OnStation("export", {QStringLiteral("2"), Path(QStringLiteral("left.eml"))});
    EXPECT_EQ(exported.Code, 65);
    EXPECT_TRUE(exported.Problems.contains(advice));
    EXPECT_TRUE(Read(Path(QStringLiteral("left.eml"))).contains("Song of Second"));

    EXPECT_EQ(OnStation("mark", {QStringLiteral("2"), QStringLiteral("read")}).Code, 65);
    EXPECT_EQ(OnStation("backup").Code, 65);
    EXPECT_EQ(OnStation("compact", {QStringLiteral("--yes")}).Code, 65);

    EXPECT_EQ(Expect("recover", {QStringLiteral("2")}),
              "Message 2 is back from the backup \"" + backup.toUtf8() + "\".\n");
    EXPECT_EQ(Expect("show", {QStringLiteral("2"), QStringLiteral("--raw")}), before);
    EXPECT_TRUE(Expect("list", {QStringLiteral("--category"), QStringLiteral("Saved")}).contains("Second"));
    EXPECT_EQ(OnStation("check").Code, 0);
    EXPECT_EQ(OnStation("compact", {QStringLiteral("--yes")}).Code, 0);
}

TEST_F(RecoverTest, WithoutASoundBackupOrDamageNothingIsChanged)
{
    const QString backup = BackUp();
    const Outcome sound = OnStation("recover", {QStringLiteral("1")});
    EXPECT_EQ(sound.Code, 65);
    EXPECT_TRUE(sound.Problems.contains("Message 1 is not damaged; nothing was changed."));
    Change(File(), "First");
    Change(InBackup(backup), "First");
    const QByteArray before = Read(File());
    const Outcome none = OnStation("recover", {QStringLiteral("1")});
    EXPECT_EQ(none.Code, 65);
    EXPECT_EQ(none.Problems, "tolva: No backup has message 1 sound; nothing was changed.\n");
    EXPECT_TRUE(OnStation("show", {QStringLiteral("1")}).Problems.endsWith("No backup has it sound.\n"));
    const Outcome absent =
        OnStation("recover", {QStringLiteral("1"), QStringLiteral("--from"), QStringLiteral("yesterday")});
    EXPECT_EQ(absent.Code, 65);
    EXPECT_TRUE(absent.Problems.contains("There is no backup \"yesterday\" that has message 1 sound"));
    EXPECT_EQ(OnStation("recover", {QStringLiteral("9")}).Code, 65);
    AddUser(QStringLiteral("Guest"), 0);
    EXPECT_EQ(OnStation("recover", {QStringLiteral("1"), QStringLiteral("--user"), QStringLiteral("Guest")}).Code, 77);
    const auto database = dao::DBEngine::OpenDatabase(File());
    const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
    EXPECT_TRUE((*rows)[QStringLiteral("Message")].Octets(dao::MemoTrust::AsStored).contains("Song of First"));
}

TEST_F(RecoverTest, TheNewestBackupThatHasTheMessageSoundIsTakenUnlessOneIsNamed)
{
    // None of them expires.
    Expect("setting", {QStringLiteral("Backups.ExpiryDays"), QStringLiteral("0")});
    const QString oldest = BackUpAs(QStringLiteral("2020-01-01 10.00"), QStringLiteral("01/01/2020 10:00:00"));
    const QString middle = BackUpAs(QStringLiteral("2020-01-02 10.00"), QStringLiteral("02/01/2020 10:00:00"));
    const QString newest = BackUpAs(QStringLiteral("2020-01-03 10.00"), QStringLiteral("03/01/2020 10:00:00"));
    Change(InBackup(newest), "Third");
    Change(File(), "Third");
    const auto nameOf = [](const QByteArray& line) {
        return QJsonDocument::fromJson(line).object().value(QStringLiteral("from")).toString();
    };
    EXPECT_EQ(nameOf(Expect("recover", {QStringLiteral("3"), QStringLiteral("--json")})), middle);
    Change(File(), "Third");
    EXPECT_EQ(
        nameOf(Expect("recover", {QStringLiteral("3"), QStringLiteral("--from"), oldest, QStringLiteral("--json")})),
        oldest);
    EXPECT_EQ(OnStation("check").Code, 0);
}

TEST_F(RecoverTest, AMessageThatTookTheNumberOfAnotherIsNotTakenForIt)
{
    BackUp();
    // The backup is of the station before it was made anew.
    dao::DBEngine::OpenDatabase(File())->Execute(
        QStringLiteral("UPDATE [Messages] SET [Subject]='Another' WHERE [Reference]=1"));
    Change(File(), "First");
    EXPECT_EQ(OnStation("recover", {QStringLiteral("1")}).Code, 65);
}

/// A prize and a winner with long texts, and a backup of them.
class RecoverPrizeTest : public RecoverTest
{
protected:
    void SetUp() override
    {
        RecoverTest::SetUp();
        Expect("prize", {QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("Mug"),
                         QStringLiteral("--script"), QStringLiteral("script: song of Mug"), QStringLiteral("--notes"),
                         QStringLiteral("notes: song of Notes"), QStringLiteral("--supplied"), QStringLiteral("3")});
        Expect("contacts", {QStringLiteral("add"), QStringLiteral("Ann")});
        Expect("prize", {QStringLiteral("award"), QStringLiteral("1"), QStringLiteral("--name"), QStringLiteral("Ann"),
                         QStringLiteral("--notes"), QStringLiteral("award: song of Ann"), QStringLiteral("--yes")});
        Backup_ = BackUp();
    }
    QVariant Stored(const char* table, const char* column) const
    {
        const auto database = dao::DBEngine::OpenDatabase(File(), 0, true);
        return database->OpenRecordset(QString::fromLatin1(table), dao::dbOpenTable)->Collect(QLatin1String(column));
    }
    QByteArray Advice(const char* what) const
    {
        return "The backup \"" + Backup_.toUtf8() + "\" has it sound; fetch it from there with: tolva recover " +
               Station().toUtf8() + ' ' + what;
    }

    QString Backup_;
};

TEST_F(RecoverPrizeTest, ADamagedTextOfAPrizeIsNamedAndComesBackWithoutTheOthers)
{
    Expect("prize", {QStringLiteral("edit"), QStringLiteral("1"), QStringLiteral("--title"), QStringLiteral("Cup"),
                     QStringLiteral("--notes"), QStringLiteral("written since")});
    Change(File(), "Mug");
    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    EXPECT_TRUE(check.Problems.contains("The script of prize 1 cannot be read: ")) << check.Problems.constData();
    EXPECT_TRUE(check.Problems.contains(Advice("prize 1"))) << check.Problems.constData();
    EXPECT_TRUE(check.Output.contains("The station is not sound: damaged prizes: 1.")) << check.Output.constData();
    EXPECT_EQ(OnStation("backup").Code, 65);

    EXPECT_EQ(Expect("recover", {QStringLiteral("prize"), QStringLiteral("1")}),
              "Prize 1 is back from the backup \"" + Backup_.toUtf8() + "\": script.\n");
    EXPECT_EQ(Stored("Prizes", "Script").toString(), QStringLiteral("script: song of Mug"));
    EXPECT_EQ(Stored("Prizes", "Notes").toString(), QStringLiteral("written since"));
    EXPECT_EQ(Stored("Prizes", "Title").toString(), QStringLiteral("Cup"));
    EXPECT_EQ(OnStation("check").Code, 0);
    Expect("backup");
}

TEST_F(RecoverPrizeTest, ADamagedTextOfAWinnerIsNamedAndComesBack)
{
    Change(File(), "Ann");
    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    EXPECT_TRUE(check.Problems.contains("The notes of winner 1 cannot be read: ")) << check.Problems.constData();
    EXPECT_TRUE(check.Problems.contains(Advice("winner 1"))) << check.Problems.constData();
    const QJsonObject told = QJsonDocument::fromJson(Expect("recover", {QStringLiteral("winner"), QStringLiteral("1"),
                                                                        QStringLiteral("--json")}))
                                 .object();
    EXPECT_EQ(told.value(QStringLiteral("kind")).toString(), QStringLiteral("winner"));
    EXPECT_EQ(told.value(QStringLiteral("from")).toString(), Backup_);
    EXPECT_EQ(Stored("PrizeWinners", "Notes").toString(), QStringLiteral("award: song of Ann"));
    EXPECT_EQ(OnStation("check").Code, 0);
}

TEST_F(RecoverPrizeTest, OtherDesksSeeIt)
{
    const QVariant before = Setting(QStringLiteral("Prizes.LastChanged"));
    Change(File(), "Mug");
    Expect("recover", {QStringLiteral("prize"), QStringLiteral("1")});
    EXPECT_NE(Setting(QStringLiteral("Prizes.LastChanged")), before);
}

TEST_F(RecoverPrizeTest, WithoutDamageASoundBackupOrTheRightNothingIsChanged)
{
    const QStringList prize{QStringLiteral("prize"), QStringLiteral("1")};
    const Outcome sound = OnStation("recover", prize);
    EXPECT_EQ(sound.Code, 65);
    EXPECT_TRUE(sound.Problems.contains("Prize 1 is not damaged; nothing was changed.")) << sound.Problems.constData();
    const Outcome absent = OnStation("recover", {QStringLiteral("winner"), QStringLiteral("9")});
    EXPECT_EQ(absent.Code, 65);
    EXPECT_TRUE(absent.Problems.contains("There is no winner 9 in the station")) << absent.Problems.constData();
    EXPECT_EQ(OnStation("recover", {QStringLiteral("folder"), QStringLiteral("1")}).Code, 64);
    EXPECT_EQ(OnStation("recover", {QStringLiteral("prize"), QStringLiteral("Mug")}).Code, 64);
    Change(File(), "Mug");
    AddUser(QStringLiteral("Reader"), 7);
    EXPECT_EQ(OnStation("recover", prize + QStringList{QStringLiteral("--user"), QStringLiteral("Reader")}).Code, 77);
    Change(InBackup(Backup_), "Mug");
    EXPECT_EQ(OnStation("recover", prize).Problems, "tolva: No backup has prize 1 sound; nothing was changed.\n");
    EXPECT_TRUE(OnStation("check").Problems.contains("No backup has it sound. What is left of it is kept with: tolva "
                                                     "recover " +
                                                     Station().toUtf8() + " prize 1 --as-stored"));
}

TEST_F(RecoverPrizeTest, WhatIsLeftOfItIsTakenForRightOnDemand)
{
    Expect("prize", {QStringLiteral("edit"), QStringLiteral("1"), QStringLiteral("--notes"),
                     QString::fromUtf8("caf\u00e9: song of Cafe \u2026")});
    Change(File(), "Cafe");
    Change(File(), "Ann");
    const QStringList asStored{QStringLiteral("--as-stored")};
    EXPECT_EQ(Expect("recover", QStringList{QStringLiteral("prize"), QStringLiteral("1")} + asStored),
              "Prize 1 is taken as it stands: notes. Read it, and mend what is wrong.\n");
    Expect("recover", QStringList{QStringLiteral("winner"), QStringLiteral("1")} + asStored);
    EXPECT_EQ(Stored("Prizes", "Notes").toString(), QString::fromUtf8("caf\u00e9: Song of Cafe \u2026"));
    EXPECT_EQ(Stored("PrizeWinners", "Notes").toString(), QStringLiteral("award: Song of Ann"));
    EXPECT_EQ(OnStation("check").Code, 0);
    EXPECT_EQ(OnStation("recover", QStringList{QStringLiteral("prize"), QStringLiteral("1")} + asStored).Code, 65);
    EXPECT_EQ(OnStation("recover", QStringList{QStringLiteral("1")} + asStored).Code, 64);
}

TEST_F(RecoverPrizeTest, APrizeThatTookTheNumberOfAnotherIsNotTakenForIt)
{
    dao::DBEngine::OpenDatabase(File())->Execute(QStringLiteral("UPDATE [Prizes] SET [AddedDate]=1"));
    dao::DBEngine::OpenDatabase(File())->Execute(QStringLiteral("UPDATE [PrizeWinners] SET [WonDate]=1"));
    Change(File(), "Mug");
    Change(File(), "Ann");
    EXPECT_EQ(OnStation("recover", {QStringLiteral("prize"), QStringLiteral("1")}).Code, 65);
    EXPECT_EQ(OnStation("recover", {QStringLiteral("winner"), QStringLiteral("1")}).Code, 65);
}

TEST_F(RecoverPrizeTest, ByForceAllTextsComeBackThoughNoneIsDamaged)
{
    Expect("prize", {QStringLiteral("edit"), QStringLiteral("1"), QStringLiteral("--notes"), QStringLiteral("new"),
                     QStringLiteral("--script"), QStringLiteral("new")});
    Expect("recover", {QStringLiteral("prize"), QStringLiteral("1"), QStringLiteral("--force")});
    EXPECT_EQ(Stored("Prizes", "Script").toString(), QStringLiteral("script: song of Mug"));
    EXPECT_EQ(Stored("Prizes", "Notes").toString(), QStringLiteral("notes: song of Notes"));
}

TEST_F(RecoverTest, AFileWhosePagesAreMixedUpIsNotWrittenTo)
{
    for (int i = 0; i < 3; ++i)
        FileMail(Mail(QByteArray::number(i), QByteArray(20000, static_cast<char>('a' + i))));
    BackUp();
    QByteArray octets = Read(File());
    // A page of one body over a page of another: the chain of the first goes on in the second.
    const qsizetype from = octets.indexOf(QByteArray(4092, 'a')) / 4096 * 4096 + 4096;
    const qsizetype to = octets.indexOf(QByteArray(4092, 'b')) / 4096 * 4096 + 4096;
    octets.replace(to, 4096, octets.mid(from, 4096));
    QFile out(File());
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(octets);
    out.close();
    const Outcome recover = OnStation("recover", {QStringLiteral("5")});
    EXPECT_EQ(recover.Code, 65);
    EXPECT_TRUE(recover.Problems.contains("put a whole backup in its place")) << recover.Problems.constData();
    EXPECT_EQ(Read(File()).mid(to, 4096), octets.mid(to, 4096));
}

/// Real processes on some of the pages; the record store's own test has all of them.
TEST_F(RecoverTest, OnAnyDamagedPageEveryCommandEndsAndCheckAndBackupAgree)
{
    constexpr qsizetype PageSize = 4096;
    constexpr qint64 LongMilliseconds = 60000;
    BackUp();
    const QByteArray whole = Read(File());
    const qsizetype pages = whole.size() / PageSize;
    for (qsizetype page = 0; page < pages; page += pages / 6) {
        SCOPED_TRACE(page);
        QByteArray octets = whole;
        octets.replace(page * PageSize, PageSize, whole.mid((page + 5) % pages * PageSize, PageSize));
        QFile out(File());
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(octets);
        out.close();
        QElapsedTimer timer;
        timer.start();
        const int check = OnStation("check").Code;
        const int backup = OnStation("backup").Code;
        EXPECT_TRUE(check == 0 || check == 65) << check;
        EXPECT_EQ(backup == 0, check == 0) << backup;
        for (const Outcome& outcome : {OnStation("list"), OnStation("show", {QStringLiteral("1")}),
                                       OnStation("backups", {QStringLiteral("--check")})})
            // A row of a list that its table has lost reads as one that was deleted in this moment.
            EXPECT_TRUE(outcome.Code == 0 || outcome.Code == 65 ||
                        (outcome.Code == 75 && check == 65 && outcome.Problems.contains("tolva check")))
                << outcome.Code << outcome.Problems.constData();
        EXPECT_EQ(OnStation("restore", {QStringLiteral("--yes")}).Code, 0);
        EXPECT_EQ(OnStation("check").Code, 0);
        EXPECT_LT(timer.elapsed(), LongMilliseconds);
    }
}
