// SPDX-License-Identifier: Apache-2.0
#include "support/TestServer.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <libpq-fe.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int SecondsShared = 20;
constexpr int SecondsOwn = 2;
constexpr int MillisecondsToStart = 60000;

QString NewFolder()
{
    QByteArray pattern = QDir::temp().filePath(QStringLiteral("tolva-server-XXXXXX")).toLocal8Bit();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder for a server");
    return QString::fromLocal8Bit(pattern);
}

QString SharedFolder()
{
    // One for each build tree.
    const QByteArray place = QCoreApplication::applicationDirPath().toUtf8();
    const QByteArray hash = QCryptographicHash::hash(place, QCryptographicHash::Sha1).toHex().first(10);
    return QDir::temp().filePath(QStringLiteral("tolva-server-%1-%2").arg(getuid()).arg(QString::fromLatin1(hash)));
}

struct Finish
{
    void operator()(PGconn* connection) const { PQfinish(connection); }
};

} // namespace

bool TestServer::IsInstalled()
{
    return !QDir(QStringLiteral("/usr/lib/postgresql")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty() ||
           !QStandardPaths::findExecutable(QStringLiteral("initdb")).isEmpty();
}

TestServer& TestServer::Shared()
{
    static TestServer server(SharedFolder(), SecondsShared, {});
    return server;
}

TestServer::TestServer(const QStringList& settings) : TestServer(NewFolder(), SecondsOwn, settings) {}

TestServer::TestServer(const QString& folder, int secondsOfIdleness, const QStringList& settings)
    : Folder_(folder), Seconds_(secondsOfIdleness), Settings_(settings)
{
    const QString port = QStringLiteral("port=");
    for (const QString& setting : settings) {
        if (setting.startsWith(port))
            Port_ = setting.mid(port.size()).toInt();
    }
    Lock();
    Start();
}

TestServer::~TestServer()
{
    close(Users_);
}

/// The server's watcher may be removing the folder at this moment: then the lock is one of a file without a name.
void TestServer::Lock()
{
    while (true) {
        QDir().mkpath(Folder_);
        const QByteArray name = (Folder_ + QStringLiteral("/users")).toLocal8Bit();
        Users_ = open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (Users_ < 0)
            continue;
        struct stat held = {};
        struct stat named = {};
        if (flock(Users_, LOCK_SH) == 0 && fstat(Users_, &held) == 0 && stat(name.constData(), &named) == 0 &&
            held.st_ino == named.st_ino)
            return;
        close(Users_);
    }
}

bool TestServer::IsAnswering() const
{
    const QByteArray words = Connect(QString()).section(QStringLiteral(" schema="), 0, 0).toLocal8Bit();
    return PQping(words.constData()) == PQPING_OK;
}

void TestServer::Start()
{
    const int starting =
        open((Folder_ + QStringLiteral("/starting")).toLocal8Bit().constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    flock(starting, LOCK_EX);
    if (!IsAnswering()) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(TOLVA_TEST_SERVER), QStringList{Folder_, QString::number(Seconds_)} + Settings_);
        process.waitForFinished(MillisecondsToStart);
    }
    close(starting);
    if (!IsAnswering())
        throw std::runtime_error("the server of the tests does not start: see " + Folder_.toStdString());
}

int TestServer::FreePort()
{
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool isBound = bind(probe, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
                         getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(probe);
    if (!isBound)
        throw std::runtime_error("no port for a server");
    return ntohs(address.sin_port);
}

void TestServer::GiveFile(const QString& name, const QByteArray& content)
{
    const QByteArray path = (Folder_ + QStringLiteral("/data/") + name).toLocal8Bit();
    struct stat folder = {};
    QFile file(QString::fromLocal8Bit(path));
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                           file.write(content) == content.size() && file.flush() &&
                           stat((Folder_ + QStringLiteral("/data")).toLocal8Bit().constData(), &folder) == 0 &&
                           chown(path.constData(), folder.st_uid, folder.st_gid) == 0;
    if (!isWritten)
        throw std::runtime_error("a file cannot be given to the server");
}

void TestServer::Stop()
{
    QFile file(Folder_ + QStringLiteral("/data/postmaster.pid"));
    if (file.open(QIODevice::ReadOnly))
        kill(file.readLine().trimmed().toInt(), SIGQUIT);
    while (IsAnswering() || QFile::exists(file.fileName()))
        usleep(20000);
}

QString TestServer::Connect(const QString& schema, const QString& user, const QString& database) const
{
    const QString words = QStringLiteral("host=%1 user=%2 dbname=%3").arg(Folder_, user, database);
    return words + (Port_ == 0 ? QString() : QStringLiteral(" port=%1").arg(Port_)) +
           QStringLiteral(" schema=%1").arg(schema);
}

TestServer::Schema TestServer::NewSchema()
{
    const QString name = QStringLiteral("test_%1").arg(QRandomGenerator::system()->generate64());
    return {name, std::shared_ptr<void>(nullptr, [this, name](void*) {
                Execute(QStringLiteral("DROP SCHEMA IF EXISTS \"%1\", \"%1_directory\" CASCADE").arg(name));
            })};
}

QString TestServer::Execute(const QString& statements, const QString& database) const
{
    const QString words =
        Connect(QString(), QStringLiteral("tolva"), database).section(QStringLiteral(" schema="), 0, 0);
    const std::unique_ptr<PGconn, Finish> connection(PQconnectdb(words.toLocal8Bit().constData()));
    PQsetNoticeProcessor(
        connection.get(), [](void*, const char*) {}, nullptr);
    PGresult* result = PQexec(connection.get(), statements.toUtf8().constData());
    const ExecStatusType status = PQresultStatus(result);
    const QString value = PQntuples(result) > 0 ? QString::fromUtf8(PQgetvalue(result, 0, 0)) : QString();
    PQclear(result);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
        throw std::runtime_error(PQerrorMessage(connection.get()));
    return value;
}
