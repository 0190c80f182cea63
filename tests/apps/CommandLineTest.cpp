// SPDX-License-Identifier: Apache-2.0
#include "CommandLineTest.h"

#include "platform/directory/EmbeddedDirectory.h"
#include "support/TestServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

QList<QByteArray> Outcome::Lines() const
{
    QList<QByteArray> lines = Output.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QByteArray Outcome::LastLine() const
{
    const QList<QByteArray> lines = Lines();
    return lines.isEmpty() ? QByteArray() : lines.last();
}

void CommandLineTest::SetUp()
{
    ASSERT_TRUE(Temporary_.isValid());
    QStringList words{QStringLiteral("init"),    Station(),
                      QStringLiteral("--name"),  QStringLiteral("Harbour FM"),
                      QStringLiteral("--phone"), QStringLiteral("01632 960100")};
    if (qEnvironmentVariable("TOLVA_TEST_STATION") == QLatin1String("server")) {
        const TestServer::Schema schema = TestServer::Shared().NewSchema();
        Schemas_ = schema.Owner;
        words += {QStringLiteral("--connect"), TestServer::Shared().Connect(schema.Name)};
    }
    const Outcome made = Run(words);
    ASSERT_EQ(made.Code, 0) << made.Problems.constData();
}

void CommandLineTest::Prepare(QProcess& process, const QStringList& words) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("TOLVA_USER"));
    environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
    environment.insert(QStringLiteral("HOME"), Temporary_.path());
    environment.insert(QStringLiteral("XDG_STATE_HOME"), Path(QStringLiteral("state")));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
    environment.insert(QStringLiteral("TZ"), QStringLiteral("Europe/London"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(Temporary_.path());
    process.setProgram(QStringLiteral(TOLVA_PROGRAM));
    process.setArguments(words);
}

Outcome CommandLineTest::Run(const QStringList& words, const QByteArray& input) const
{
    QProcess process;
    Prepare(process, words);
    process.start();
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished()) << words.join(u' ').toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << words.join(u' ').toStdString();
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

Outcome CommandLineTest::OnStation(const char* command, const QStringList& words, const QByteArray& input) const
{
    return Run(QStringList{QString::fromLatin1(command), Station()} + words, input);
}

QByteArray CommandLineTest::Expect(const char* command, const QStringList& words, const QByteArray& input) const
{
    const Outcome outcome = OnStation(command, words, input);
    EXPECT_EQ(outcome.Code, 0) << command << ' ' << words.join(u' ').toStdString();
    EXPECT_EQ(outcome.Problems, "") << command << ' ' << words.join(u' ').toStdString();
    return outcome.Output;
}

QString CommandLineTest::FileMail(const QByteArray& octets, const QStringList& words) const
{
    const Outcome outcome = OnStation("file", QStringList{QStringLiteral("--verbose")} + words, octets);
    EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
    const QByteArray line = outcome.Lines().value(0);
    return QString::fromUtf8(line.mid(line.lastIndexOf(' ') + 1));
}

QList<QJsonObject> CommandLineTest::Messages(const QStringList& words) const
{
    const Outcome outcome = OnStation("list", QStringList{QStringLiteral("--json")} + words);
    EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
    QList<QJsonObject> messages;
    for (const QByteArray& line : outcome.Lines()) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        messages.append(document.object());
    }
    return messages;
}

void CommandLineTest::AddUser(const QString& name, int rights) const
{
    EmbeddedDirectory directory;
    directory.Open(Station() + QStringLiteral("/Directory"));
    DirectoryUser user;
    user.Name = name;
    user.Rights = rights;
    directory.SaveUser(user);
}

QString CommandLineTest::Write(const QString& name, const QByteArray& octets) const
{
    const QString path = Path(name);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(octets), octets.size());
    return path;
}

QByteArray CommandLineTest::Read(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

bool CommandLineTest::HasStopped(QProcess& process)
{
    const QString status = QStringLiteral("/proc/%1/stat").arg(process.processId());
    for (const QDeadlineTimer deadline(30000); !deadline.hasExpired();) {
        const QByteArray line = Read(status);
        if (line.mid(line.lastIndexOf(')') + 2, 1) == "T")
            return true;
        if (process.waitForFinished(1))
            return false;
    }
    ADD_FAILURE() << "neither stopped nor ended";
    return false;
}

QByteArray CommandLineTest::Mail(const QByteArray& subject, const QByteArray& body)
{
    return "From: Loveday Tregenza <loveday@example.org>\r\nTo: studio@harbourfm.example.org\r\nSubject: " + subject +
           "\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n\r\n" + body;
}
