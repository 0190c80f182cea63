// SPDX-License-Identifier: Apache-2.0

// A station on a server: the folder holds a file that says where, and everything else goes on as with a file.

#include "ServerStation.h"

#include "platform/records/DBEngine.h"

#include <QRegularExpression>

namespace
{

TEST_F(ServerStationTest, IsWorkedWithAsAnyOther)
{
    FileMail(Mail("First of them", "Hello from the harbour.\r\n"));
    const QString second = FileMail(Mail("Second of them", QByteArray("A long letter.\r\n").repeated(20000)));
    EXPECT_EQ(Messages().size(), 2);
    EXPECT_TRUE(Expect("show", {second}).contains("A long letter."));
    Expect("mark", {second, QStringLiteral("read")});
    Expect("delete", {second});
    EXPECT_EQ(Messages({QStringLiteral("--category"), QStringLiteral("Inbox")}).size(), 1);
    Expect("contacts", {QStringLiteral("add"), QStringLiteral("Loveday Tregenza")});
    EXPECT_TRUE(Expect("contacts").contains("Loveday"));
    EXPECT_TRUE(Expect("check").contains("The format is postgres."));
    const Outcome compacted = OnStation("compact", {QStringLiteral("--yes")});
    EXPECT_EQ(compacted.Code, 69);
    EXPECT_TRUE(compacted.Problems.contains("is on a server")) << compacted.Problems.constData();
    // All of it is on the server.
    EXPECT_LT(QFileInfo(File()).size(), 1000);
    EXPECT_EQ(TestServer::Shared().Execute(QStringLiteral("SELECT count(*) > 0 FROM %1.tolva_tables").arg(Directory_)),
              QStringLiteral("t"));
}

TEST_F(ServerStationTest, IsTheSameFromEveryFolderThatIsMadeForIt)
{
    FileMail(Mail("From the first"));
    const QString joined = Joined();
    const Outcome listed = Run({QStringLiteral("list"), joined});
    EXPECT_EQ(listed.Code, 0) << listed.Problems.constData();
    EXPECT_TRUE(listed.Output.contains("From the first"));
    const Outcome again = Init(Path(QStringLiteral("again")), Connect());
    EXPECT_NE(again.Code, 0);
    EXPECT_TRUE(again.Problems.contains("already")) << again.Problems.constData();
    EXPECT_EQ(Messages().size(), 1) << "the one that stands is left alone";
}

TEST_F(ServerStationTest, IsBackedUpIntoAFileAndRestoredIntoTheServer)
{
    FileMail(Mail("Kept", QByteArray("A long letter.\r\n").repeated(20000)));
    const QByteArray before = Expect("list");
    const QString joined = Joined();
    Expect("backup");
    const QStringList backups =
        QDir(Station() + QStringLiteral("/Backups/Tolva")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(backups.size(), 1);
    const QString copy = Station() + QStringLiteral("/Backups/Tolva/") + backups.first() + QStringLiteral("/Tolva.mdb");
    EXPECT_TRUE(Read(copy).startsWith("SQLite format 3"));
    const QString later = FileMail(Mail("Filed later"));
    Expect("restore", {QStringLiteral("--yes")});
    EXPECT_EQ(Expect("list"), before);
    EXPECT_TRUE(Read(File()).startsWith("Tolva station on a server")) << "it still is on the server";
    EXPECT_TRUE(Run({QStringLiteral("list"), joined}).Output.contains("Kept"));
    // No number is given a second time.
    EXPECT_GT(FileMail(Mail("After the restore")).toInt(), later.toInt());
}

TEST_F(ServerStationTest, IsBackInAFileWithTheCopyOfABackup)
{
    FileMail(Mail("Kept"));
    const QByteArray before = Expect("list");
    Expect("backup");
    const QDir backups(Station() + QStringLiteral("/Backups/Tolva"));
    const QString backup = backups.entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0);
    ASSERT_TRUE(QFile::remove(File()));
    ASSERT_TRUE(QFile::copy(backups.filePath(backup + QStringLiteral("/Tolva.mdb")), File()));
    EXPECT_EQ(Expect("list"), before);
    FileMail(Mail("In the file"));
    EXPECT_EQ(Messages().size(), 2);
}

TEST_F(ServerStationTest, WritesNoPasswordAnywhereAndTakesNone)
{
    const Outcome refused = Init(Path(QStringLiteral("other")), Connect() + QStringLiteral(" password=seCret"));
    EXPECT_NE(refused.Code, 0);
    EXPECT_TRUE(refused.Problems.contains("password file")) << refused.Problems.constData();
    EXPECT_FALSE(refused.Problems.contains("seCret"));
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("other/Tolva.mdb"))));
}

TEST_F(ServerStationTest, SaysInWordsThatItsServerIsNotToBeReached)
{
    Write(QStringLiteral("station/Tolva.mdb"),
          "Tolva station on a server 1\nhost=/nowhere dbname=radio schema=harbour\n");
    const Outcome outcome = OnStation("list");
    EXPECT_EQ(outcome.Code, 69) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("cannot be reached")) << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("'/nowhere'")) << outcome.Problems.constData();
}

TEST_F(ServerStationTest, SaysWhichPackageIsMissingInsteadOfCallingItDamaged)
{
    const QByteArray link = Read(File());
    for (const char* command : {"list", "check", "backup"}) {
        QProcess process;
        Prepare(process, {QString::fromLatin1(command), Station()});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
        environment.insert(QStringLiteral("MISSING_LIBRARY"), QStringLiteral("libpq"));
        process.setProcessEnvironment(environment);
        process.start();
        process.closeWriteChannel();
        ASSERT_TRUE(process.waitForFinished());
        const QByteArray words = process.readAllStandardError();
        EXPECT_EQ(process.exitCode(), 69) << command << words.constData();
        EXPECT_TRUE(words.contains("apt-get install libpq5")) << command << words.constData();
        EXPECT_FALSE(words.contains("backup in its place")) << command << words.constData();
    }
    EXPECT_EQ(Read(File()), link);
}

TEST_F(ServerStationTest, LeavesNothingOnTheServerWhereItCannotBeMade)
{
    const TestServer::Schema other = TestServer::Shared().NewSchema();
    Write(QStringLiteral("half/Directory/Directory.mdb"), Read(Station() + QStringLiteral("/Directory/Directory.mdb")));
    // Nobody of that name is in the directory that stands there.
    const Outcome outcome =
        Run({QStringLiteral("init"), Path(QStringLiteral("half")), QStringLiteral("--name"), QStringLiteral("x"),
             QStringLiteral("--phone"), QStringLiteral("1"), QStringLiteral("--user"), QStringLiteral("Nobody"),
             QStringLiteral("--connect"), TestServer::Shared().Connect(other.Name)});
    EXPECT_EQ(outcome.Code, 67) << outcome.Problems.constData();
    EXPECT_EQ(TestServer::Shared().Execute(
                  QStringLiteral("SELECT count(*) FROM pg_namespace WHERE nspname LIKE '%1%'").arg(other.Name)),
              QStringLiteral("0"));
}

TEST_F(ServerStationTest, ADeskNeedsNoMoreThanTheRightsOfTheScript)
{
    const QString desk = Schema_.Name + QStringLiteral("_desk");
    TestServer::Shared().Execute(QStringLiteral("CREATE ROLE %1 LOGIN").arg(desk));
    QProcess script;
    script.start(QStringLiteral("psql"),
                 {QStringLiteral("--host=") + TestServer::Shared().Folder(), QStringLiteral("--username=tolva"),
                  QStringLiteral("--dbname=postgres"), QStringLiteral("--set=schema=") + Schema_.Name,
                  QStringLiteral("--set=desk=") + desk, QStringLiteral("--quiet"),
                  QStringLiteral("--file=" TOLVA_DOCUMENTS "/../packaging/server/desk-rights.sql")});
    ASSERT_TRUE(script.waitForFinished());
    ASSERT_EQ(script.exitCode(), 0) << script.readAllStandardError().constData();
    const QString folder = Path(QStringLiteral("desk"));
    const Outcome joined = Run({QStringLiteral("init"), folder, QStringLiteral("--connect"), Connect(desk)});
    EXPECT_EQ(joined.Code, 0) << joined.Problems.constData();
    const Outcome filed = Run({QStringLiteral("file"), folder, QStringLiteral("-")}, Mail("From the desk"));
    EXPECT_EQ(filed.Code, 0) << filed.Problems.constData();
    EXPECT_TRUE(Run({QStringLiteral("list"), folder}).Output.contains("From the desk"));
    EXPECT_EQ(Messages().size(), 1);
    // The structure is not the desk's to change.
    const auto database = dao::DBEngine::OpenDatabase(QString(), 0, false, Connect(desk));
    auto table = database->CreateTableDef(QStringLiteral("Extra"));
    table->Fields().Append(table->CreateField(QStringLiteral("Name"), dao::dbText));
    try {
        database->TableDefs().Append(std::move(table));
        ADD_FAILURE() << "a desk may add tables";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errServer);
        EXPECT_TRUE(error.Description().contains(QStringLiteral("right is missing")));
    }
    database->Close();
    TestServer::Shared().Execute(QStringLiteral("DROP OWNED BY %1; DROP ROLE %1").arg(desk));
}

/// A bare machine with a server on it.
class ServerSetUpTest : public CommandLineTest
{
protected:
    void SetUp() override {}

    /// The lines of the page, as they are typed here: the server answers on a socket, and lets everybody in.
    QStringList Lines() const
    {
        const QString page = QString::fromUtf8(Read(QStringLiteral(TOLVA_DOCUMENTS "/server.md")));
        static const QRegularExpression blocks(QStringLiteral("```sh\n(.*?)```"),
                                               QRegularExpression::DotMatchesEverythingOption);
        QStringList lines;
        for (const auto& block : blocks.globalMatch(page)) {
            for (QString line : block.captured(1).split(u'\n', Qt::SkipEmptyParts)) {
                line.remove(QStringLiteral("sudo -u postgres "));
                line.replace(QStringLiteral("db.example.org"), Server_.Folder());
                line.remove(QStringLiteral(" sslmode=verify-full"));
                line.replace(QStringLiteral("/usr/share/tolva/"),
                             QStringLiteral(TOLVA_DOCUMENTS "/../packaging/server/"));
                line.replace(QStringLiteral("/srv/"), Path(QString()) + u'/');
                lines.append(line);
            }
        }
        return lines;
    }
    Outcome Type(const QString& line) const
    {
        QProcess process;
        Prepare(process, {});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("PATH"), QFileInfo(QStringLiteral(TOLVA_PROGRAM)).absolutePath() + u':' +
                                                       environment.value(QStringLiteral("PATH")));
        if (!line.startsWith(QStringLiteral("tolva ")) && !line.startsWith(QStringLiteral("psql "))) {
            environment.insert(QStringLiteral("PGHOST"), Server_.Folder());
            environment.insert(QStringLiteral("PGUSER"), QStringLiteral("tolva"));
        }
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line});
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished()) << line.toStdString();
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    TestServer Server_;
};

TEST_F(ServerSetUpTest, ThePageOnServersSetsOneUpFromZero)
{
    QStringList lines = Lines();
    ASSERT_TRUE(lines.first().startsWith(QStringLiteral("sudo apt-get install postgresql")));
    lines.removeFirst();
    EXPECT_LE(lines.size(), 10);
    for (const QString& line : std::as_const(lines)) {
        const Outcome outcome = Type(line);
        EXPECT_EQ(outcome.Code, 0) << line.toStdString() << '\n' << outcome.Problems.constData();
    }
    const Outcome filed =
        Run({QStringLiteral("file"), Path(QStringLiteral("desk")), QStringLiteral("-")}, Mail("From the desk"));
    EXPECT_EQ(filed.Code, 0) << filed.Problems.constData();
    EXPECT_EQ(Messages().size(), 1);
}

} // namespace
