// SPDX-License-Identifier: Apache-2.0

// Links that somebody put where a program is about to write: nothing elsewhere is written through them, and the station
// never becomes one.

#include "CommandLineTest.h"

#include <QDateTime>
#include <QTimeZone>

class LinkTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("False")});
        QDir(In("Backups")).removeRecursively();
        FileMail(Mail("First"));
        Victim_ = Write(QStringLiteral("elsewhere/victim"), "untouched");
        ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("outside"))));
    }
    void TearDown() override
    {
        EXPECT_EQ(Read(Victim_), "untouched");
        EXPECT_TRUE(QDir(Path(QStringLiteral("outside"))).isEmpty());
        EXPECT_FALSE(QFileInfo(In("Tolva.mdb")).isSymLink());
    }

    QString In(const char* name) const { return Station() + u'/' + QLatin1String(name); }
    void LinkToVictim(const QString& name) const { ASSERT_TRUE(QFile::link(Victim_, name)) << name.toStdString(); }
    void LinkToOutside(const QString& name) const
    {
        ASSERT_TRUE(QFile::link(Path(QStringLiteral("outside")), name)) << name.toStdString();
    }
    /// The folders that a backup may go into which begins now, by the clock of the programs.
    QStringList FoldersOfNow() const
    {
        QStringList folders;
        const QDateTime now = QDateTime::currentDateTimeUtc().toTimeZone(QTimeZone("Europe/London"));
        for (int minute = 0; minute < 3; ++minute)
            folders.append(In("Backups/Tolva/") +
                           now.addSecs(60 * minute).toString(QStringLiteral("yyyy-MM-dd hh.mm")));
        return folders;
    }
    void ExpectRefusal(const Outcome& outcome, int code, const QString& link) const
    {
        EXPECT_EQ(outcome.Code, code) << outcome.Problems.constData();
        EXPECT_TRUE(outcome.Problems.contains(link.toUtf8() + " is a link")) << outcome.Problems.constData();
    }
    void ExpectMessages(int count) const
    {
        EXPECT_EQ(Messages().size(), count);
        EXPECT_EQ(OnStation("check").Code, 0);
    }

    QString Victim_;
};

TEST_F(LinkTest, TheListOfChangesIsNotWrittenThroughOneByWhoFiles)
{
    LinkToVictim(In("Tolva.mdb-copying"));
    FileMail(Mail("Second"));
    ExpectMessages(2);
}

TEST_F(LinkTest, TheListOfChangesOfABackupIsMadeNew)
{
    QByteArray mbox;
    for (int i = 0; i < 20; ++i)
        mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" + Mail("Large", QByteArray(1000000, 'm') + "\n") + '\n';
    Expect("file", {Write(QStringLiteral("large"), mbox)}); // more than is copied under one lock
    LinkToVictim(In("Tolva.mdb-copying"));
    Expect("backup");
    EXPECT_FALSE(QFileInfo(In("Tolva.mdb-copying")).isSymLink());
    ExpectMessages(21);
}

TEST_F(LinkTest, ARestoreLeavesWhatALinkUnderItsWorkingNamePointsTo)
{
    Expect("backup");
    FileMail(Mail("Second"));
    LinkToVictim(In("Tolva.mdb.restored"));
    Expect("restore");
    ExpectMessages(1);
}

TEST_F(LinkTest, AKeepNameThatIsALinkToNothingIsTaken)
{
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), In("Tolva-0001.BAK")));
    Expect("compact");
    EXPECT_TRUE(QFileInfo(In("Tolva-0001.BAK")).isSymLink());
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("nothing"))));
    EXPECT_TRUE(QFileInfo(In("Tolva-0002.BAK")).isFile());
    ExpectMessages(1);
}

TEST_F(LinkTest, TemplatesAreNotPutIntoALinkedFolder)
{
    ASSERT_TRUE(QDir(In("HTMLDocs")).removeRecursively());
    LinkToOutside(In("HTMLDocs"));
    FileMail(Mail("Second"));
    ExpectMessages(2);
}

TEST_F(LinkTest, AJournalThatIsALinkIsRefusedInWords)
{
    const QString journal = In("Tolva.mdb-journal");
    LinkToVictim(journal);
    ExpectRefusal(OnStation("file", {}, Mail("Second")), 77, journal);
    ASSERT_TRUE(QFile::remove(journal));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), journal));
    ExpectRefusal(OnStation("list"), 77, journal);
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("nothing"))));
    ASSERT_TRUE(QFile::remove(journal));
    ExpectMessages(1);
}

TEST_F(LinkTest, NoBackupGoesThroughALinkedFolder)
{
    LinkToOutside(In("Backups"));
    ExpectRefusal(OnStation("backup"), 73, In("Backups"));
    Expect("setting", {QStringLiteral("Backups.EnableAutoBackup"), QStringLiteral("True")});
    FileMail(Mail("Second"));
    ExpectMessages(2);
}

TEST_F(LinkTest, NoBackupGoesIntoAFolderOfItsNameThatIsALink)
{
    ASSERT_TRUE(QDir().mkpath(In("Backups/Tolva")));
    const QStringList folders = FoldersOfNow();
    for (const QString& folder : folders)
        LinkToOutside(folder);
    ExpectRefusal(OnStation("backup"), 73, folders.first());
}

TEST_F(LinkTest, NeitherTheCopyNorTheDetailsOfABackupAreWrittenThroughOne)
{
    for (const QString& folder : FoldersOfNow()) {
        ASSERT_TRUE(QDir().mkpath(folder));
        LinkToVictim(folder + QStringLiteral("/Tolva.mdb"));
        LinkToVictim(folder + QStringLiteral("/Backup.inf"));
    }
    const Outcome outcome = OnStation("backup");
    EXPECT_EQ(outcome.Code, 74);
    EXPECT_TRUE(outcome.Problems.contains("could not be written")) << outcome.Problems.constData();
}

TEST_F(LinkTest, ADirectoryIsNotMadeThroughOne)
{
    const QString station = Path(QStringLiteral("new"));
    ASSERT_TRUE(QDir().mkpath(station));
    LinkToOutside(station + QStringLiteral("/Directory"));
    const Outcome outcome =
        Run({QStringLiteral("init"), station, QStringLiteral("--name"), QStringLiteral("Harbour FM"),
             QStringLiteral("--phone"), QStringLiteral("01632 960100")});
    EXPECT_NE(outcome.Code, 0);
    EXPECT_TRUE(outcome.Problems.contains("is a link")) << outcome.Problems.constData();
    EXPECT_FALSE(QFile::exists(station + QStringLiteral("/Tolva.mdb")));
}

TEST_F(LinkTest, AStationIsNotMadeThroughOne)
{
    const QString station = Path(QStringLiteral("new"));
    ASSERT_TRUE(QDir().mkpath(station));
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("outside/made.mdb")), station + QStringLiteral("/Tolva.mdb")));
    EXPECT_NE(Run({QStringLiteral("init"), station, QStringLiteral("--name"), QStringLiteral("Harbour FM"),
                   QStringLiteral("--phone"), QStringLiteral("01632 960100")})
                  .Code,
              0);
}

TEST_F(LinkTest, AnExportReplacesNoLinkAndFollowsNone)
{
    const QString link = Path(QStringLiteral("link.eml"));
    LinkToVictim(link);
    const QString reference = QStringLiteral("1");
    const Outcome outcome = OnStation("export", {reference, link, QStringLiteral("--force")});
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_TRUE(outcome.Problems.contains(link.toUtf8() + " could not be written: it is a link"));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("nothing")), Path(QStringLiteral("dangling.eml"))));
    EXPECT_EQ(OnStation("export", {reference, Path(QStringLiteral("dangling.eml"))}).Code, 73);
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("nothing"))));
}

TEST_F(LinkTest, ALinkedStationIsCompactedAndRestoredWhereItLies)
{
    const QString linked = Path(QStringLiteral("linked"));
    ASSERT_TRUE(QDir().mkpath(linked));
    ASSERT_TRUE(QFile::link(In("Tolva.mdb"), linked + QStringLiteral("/Tolva.mdb")));
    ASSERT_EQ(QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), In("Directory"), linked}), 0);
    const auto onLinked = [&](const char* command, const QStringList& words = {}) {
        const Outcome outcome = Run(QStringList{QString::fromLatin1(command), linked} + words);
        EXPECT_EQ(outcome.Code, 0) << command << ": " << outcome.Problems.constData();
    };
    onLinked("backup");
    FileMail(Mail("Second"));
    onLinked("compact", {QStringLiteral("--yes")});
    ExpectMessages(2);
    onLinked("restore", {QStringLiteral("--yes")});
    ExpectMessages(1);
    EXPECT_TRUE(QFileInfo(linked + QStringLiteral("/Tolva.mdb")).isSymLink());
    EXPECT_EQ(QDir(linked).entryList({QStringLiteral("*.BAK")}).size(), 2);
}

TEST_F(LinkTest, AStationThatItsOwnerLinkedIsUsedWhereItIs)
{
    const QString linked = Path(QStringLiteral("linked"));
    ASSERT_TRUE(QDir().mkpath(linked));
    ASSERT_TRUE(QFile::link(In("Tolva.mdb"), linked + QStringLiteral("/Tolva.mdb")));
    EXPECT_EQ(Run({QStringLiteral("init"), linked, QStringLiteral("--name"), QStringLiteral("x"),
                   QStringLiteral("--phone"), QStringLiteral("1")})
                  .Code,
              73);
    ASSERT_TRUE(QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), In("Directory"), linked}) == 0);
    EXPECT_EQ(Run({QStringLiteral("file"), linked}, Mail("Second")).Code, 0);
    EXPECT_TRUE(QFileInfo(linked + QStringLiteral("/Tolva.mdb")).isSymLink());
    ExpectMessages(2);
}
