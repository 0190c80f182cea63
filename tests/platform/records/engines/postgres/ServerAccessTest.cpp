// SPDX-License-Identifier: Apache-2.0

// How a station on a server is reached: over TLS, through several hosts, by its file; and what the server's catalogue
// answers.

#include "platform/records/DBEngine.h"
#include "platform/records/RecordsFixture.h"
#include "support/TestServer.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace dao;

namespace
{

struct Raised
{
    int Number = 0;
    QString Words;
};

Raised ErrorOf(const std::function<void()>& statement)
{
    try {
        statement();
    } catch (const Error& error) {
        return {error.Number(), error.Description()};
    }
    return {};
}

std::unique_ptr<Database> OpenAt(const QString& connect)
{
    return DBEngine::OpenDatabase(QString(), 0, false, connect);
}

void MakeTable(Database& database)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(database, QStringLiteral("T"), std::move(fields));
}

void AddRow(Database& database, const QString& name)
{
    const auto table = database.OpenRecordset(QStringLiteral("T"), dbOpenTable);
    table->AddNew();
    table->SetCollect(QStringLiteral("Name"), name);
    table->Update();
}

QStringList NamesIn(Database& database)
{
    QStringList names;
    const auto rows = database.OpenRecordset(QStringLiteral("SELECT * FROM [T] ORDER BY [Reference]"), dbOpenSnapshot);
    for (; !rows->AtEOF(); rows->MoveNext())
        names.append(rows->Collect(QStringLiteral("Name")).toString());
    return names;
}

QByteArray Read(const QString& name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    return file.readAll();
}

/// A program that must end well.
void RunProgram(const QString& program, const QStringList& words, const QString& input = QString())
{
    QProcess process;
    if (!input.isEmpty())
        process.setStandardInputFile(input);
    process.start(program, words);
    ASSERT_TRUE(process.waitForFinished());
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
}

/// Authorities of the test's own, and a certificate for "localhost" alone.
class ServerOverTls : public testing::Test
{
protected:
    ServerOverTls()
        : Port_(TestServer::FreePort()),
          Server_({QStringLiteral("listen_addresses=127.0.0.1"), QStringLiteral("port=%1").arg(Port_)})
    {
    }
    void SetUp() override
    {
        MakeAuthority(QStringLiteral("right"));
        MakeAuthority(QStringLiteral("wrong"));
        RunProgram(QStringLiteral("openssl"),
                   {QStringLiteral("req"), QStringLiteral("-newkey"), QStringLiteral("rsa:2048"),
                    QStringLiteral("-nodes"), QStringLiteral("-subj"), QStringLiteral("/CN=localhost"),
                    QStringLiteral("-keyout"), In("server.key"), QStringLiteral("-out"), In("server.csr")});
        RunProgram(QStringLiteral("openssl"),
                   {QStringLiteral("x509"), QStringLiteral("-req"), QStringLiteral("-in"), In("server.csr"),
                    QStringLiteral("-CA"), In("right.pem"), QStringLiteral("-CAkey"), In("right.key"),
                    QStringLiteral("-CAcreateserial"), QStringLiteral("-days"), QStringLiteral("2"),
                    QStringLiteral("-out"), In("server.pem")});
        Server_.GiveFile(QStringLiteral("server.crt"), Read(In("server.pem")));
        Server_.GiveFile(QStringLiteral("server.key"), Read(In("server.key")));
        Server_.Execute(QStringLiteral("ALTER SYSTEM SET ssl = on"));
        Server_.Execute(QStringLiteral("SELECT pg_reload_conf()"));
        // The next connections are served so, in a moment.
        while (Server_.Execute(QStringLiteral("SHOW ssl")) != QStringLiteral("on"))
            continue;
    }
    QString In(const char* name) const { return Folder_.filePath(QLatin1String(name)); }
    void MakeAuthority(const QString& name)
    {
        RunProgram(QStringLiteral("openssl"),
                   {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                    QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-days"), QStringLiteral("2"),
                    QStringLiteral("-subj"), QStringLiteral("/CN=Authority ") + name, QStringLiteral("-keyout"),
                    Folder_.filePath(name + QStringLiteral(".key")), QStringLiteral("-out"),
                    Folder_.filePath(name + QStringLiteral(".pem"))});
    }
    QString Connect(const QString& host, const QString& words) const
    {
        return QStringLiteral("host=%1 port=%2 user=tolva dbname=postgres schema=s %3").arg(host).arg(Port_).arg(words);
    }
    QString Verified(const QString& host, const char* authority) const
    {
        return Connect(host, QStringLiteral("sslmode=verify-full sslrootcert=") + In(authority));
    }

    QTemporaryDir Folder_;
    int Port_;
    TestServer Server_;
};

TEST_F(ServerOverTls, IsTrustedOnlyWithACertificateOfTheRightAuthorityForItsOwnName)
{
    const auto database = OpenAt(Verified(QStringLiteral("localhost"), "right.pem"));
    MakeTable(*database);
    AddRow(*database, QStringLiteral("one"));
    EXPECT_EQ(NamesIn(*database), QStringList{QStringLiteral("one")});
    EXPECT_EQ(
        Server_.Execute(QStringLiteral("SELECT count(*) > 0 FROM pg_stat_ssl s JOIN pg_stat_activity a USING (pid) "
                                       "WHERE s.ssl AND a.application_name = 'Tolva'")),
        QStringLiteral("t"));

    const Raised other = ErrorOf([&] { OpenAt(Verified(QStringLiteral("localhost"), "wrong.pem")); });
    EXPECT_EQ(other.Number, errServer);
    EXPECT_TRUE(other.Words.contains(QStringLiteral("the secure connection failed")) &&
                other.Words.contains(QStringLiteral("certificate verify failed")))
        << qPrintable(other.Words);
    const Raised name = ErrorOf([&] { OpenAt(Verified(QStringLiteral("127.0.0.1"), "right.pem")); });
    EXPECT_EQ(name.Number, errServer);
    EXPECT_TRUE(name.Words.contains(QStringLiteral("the secure connection failed")) &&
                name.Words.contains(QStringLiteral("127.0.0.1")))
        << qPrintable(name.Words);
    const Raised none = ErrorOf([&] { OpenAt(Verified(QStringLiteral("localhost"), "missing.pem")); });
    EXPECT_EQ(none.Number, errServer);
    EXPECT_TRUE(none.Words.contains(QStringLiteral("missing.pem"))) << qPrintable(none.Words);
    // Who does not ask for it is let in all the same.
    EXPECT_TRUE(OpenAt(Connect(QStringLiteral("127.0.0.1"), QStringLiteral("sslmode=require")))->Updatable());
}

TEST(ServerFailover, GoesOnWithTheOtherHostWhenTheFirstIsGone)
{
    TestServer first;
    TestServer second({QStringLiteral("default_transaction_read_only=on")});
    {
        const auto database = OpenAt(first.Connect(QStringLiteral("s")));
        MakeTable(*database);
        AddRow(*database, QStringLiteral("one"));
    }
    // What replication would have done.
    const QTemporaryDir folder;
    const QString dump = folder.filePath(QStringLiteral("dump.sql"));
    const auto at = [](const TestServer& server) {
        return QStringList{QStringLiteral("--host=") + server.Folder(), QStringLiteral("--username=tolva"),
                           QStringLiteral("--dbname=postgres")};
    };
    RunProgram(QStringLiteral("pg_dump"),
               at(first) + QStringList{QStringLiteral("--schema=s"), QStringLiteral("--file=") + dump});
    QFile script(dump);
    ASSERT_TRUE(script.open(QIODevice::ReadOnly));
    const QByteArray statements = script.readAll();
    script.close();
    ASSERT_TRUE(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
    script.write("SET default_transaction_read_only = off;\n" + statements);
    script.close();
    RunProgram(QStringLiteral("psql"),
               at(second) + QStringList{QStringLiteral("--quiet"), QStringLiteral("--set=ON_ERROR_STOP=1")}, dump);

    const auto database =
        OpenAt(QStringLiteral("host=%1,%2 user=tolva dbname=postgres target_session_attrs=read-write schema=s")
                   .arg(second.Folder(), first.Folder()));
    AddRow(*database, QStringLiteral("two"));
    const auto edited = database->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    EXPECT_EQ(NamesIn(*OpenAt(first.Connect(QStringLiteral("s")))).size(), 2) << "the one that can be written";
    first.Stop();
    // Nobody can be written to yet: that is told, and nothing is lost by it.
    EXPECT_EQ(ErrorOf([&] { AddRow(*database, QStringLiteral("early")); }).Number, errServer);
    second.Execute(QStringLiteral("ALTER SYSTEM SET default_transaction_read_only = off"));
    second.Execute(QStringLiteral("SELECT pg_reload_conf()"));
    while (second.Execute(QStringLiteral("SHOW default_transaction_read_only")) != QStringLiteral("off"))
        continue;
    AddRow(*database, QStringLiteral("three"));
    EXPECT_EQ(NamesIn(*database), (QStringList{QStringLiteral("one"), QStringLiteral("three")}));
}

TEST(ServerCatalogue, TellsWhichDatabasesThereAreAndMakesNewOnes)
{
    const QString name = QStringLiteral("o'clock \"%1").arg(getpid());
    const auto workspace = DBEngine::CreateWorkspace(QString(), QString(), QString(), dbUseODBC);
    const auto connection = workspace->OpenConnection(QString(), dbDriverNoPrompt, false,
                                                      TestServer::Shared().Connect(QStringLiteral("s")));
    const auto count = [&] {
        return connection->OpenRecordset(QStringLiteral("Select * from master..sysdatabases WHERE Name='%1'").arg(name))
            ->RecordCount();
    };
    EXPECT_EQ(count(), 0);
    const QString quoted = QString(name).replace(u'"', QStringLiteral("\"\""));
    connection->Execute(QStringLiteral("CREATE DATABASE \"%1\"").arg(quoted));
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(ErrorOf([&] { connection->Execute(QStringLiteral("CREATE DATABASE \"%1\"").arg(quoted)); }).Number,
              errServer);
    {
        const auto database = DBEngine::OpenDatabase(
            name, 0, false, QStringLiteral("host=%1 user=tolva schema=s").arg(TestServer::Shared().Folder()));
        MakeTable(*database);
        AddRow(*database, QStringLiteral("one"));
        EXPECT_EQ(NamesIn(*database).size(), 1);
    }
    connection->Execute(QStringLiteral("DROP DATABASE \"%1\"").arg(quoted));
    EXPECT_EQ(count(), 0);
}

TEST(ServerLinkFile, InAnyOddStateIsRefusedInWordsAndNeverWrittenTo)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("Tolva.mdb"));
    const QByteArray mark = "Tolva station on a server 1\n";
    const QByteArray connect = TestServer::Shared().Connect(QStringLiteral("nowhere_to_be_found")).toUtf8();
    struct Odd
    {
        QByteArray Content;
        int Number;
    };
    const std::vector<Odd> states{
        {mark, errUnrecognisedFormat},
        {mark + "   \n", errUnrecognisedFormat},
        {mark + QByteArray(64, '\0'), errUnrecognisedFormat},
        {mark + "\xff\xfe no words\n", errUnrecognisedFormat},
        {mark + "host=x password=seCret schema=s\n", errUnrecognisedFormat},
        {mark + connect, errFileNotFound},
        {mark + connect + "\nand more\n", errFileNotFound},
        {"Tolva station on a server 2\n" + connect + '\n', errUnrecognisedFormat},
        {"Tolva station on a server", errUnrecognisedFormat},
    };
    for (const Odd& odd : states) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(odd.Content);
        file.close();
        const Raised raised = ErrorOf([&] { DBEngine::OpenDatabase(name); });
        EXPECT_EQ(raised.Number, odd.Number) << odd.Content.constData() << qPrintable(raised.Words);
        EXPECT_FALSE(raised.Words.contains(QStringLiteral("seCret")));
        EXPECT_EQ(Read(name), odd.Content);
    }
    // A folder, and a link to nothing, in its place.
    QFile::remove(name);
    ASSERT_TRUE(QDir().mkdir(name));
    EXPECT_NE(ErrorOf([&] { DBEngine::OpenDatabase(name); }).Number, 0);
    QDir().rmdir(name);
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("gone")), name));
    EXPECT_NE(ErrorOf([&] { DBEngine::OpenDatabase(name); }).Number, 0);
}

} // namespace
