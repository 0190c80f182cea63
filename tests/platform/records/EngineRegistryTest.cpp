// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/EngineRegistry.h"

#include "platform/records/DBEngine.h"
#include "platform/records/RecordsFixture.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace dao;

namespace
{

/// Whether another process meets a lock anywhere in the file.
bool IsLockedForOthers(const QString& file)
{
    const QByteArray name = QFile::encodeName(file);
    const pid_t other = ::fork();
    if (other == 0) {
        const int handle = ::open(name.constData(), O_RDWR);
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        const bool isAnswered = handle >= 0 && ::fcntl(handle, F_GETLK, &lock) == 0;
        ::_exit(!isAnswered ? 2 : lock.l_type == F_UNLCK ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 2);
    return WEXITSTATUS(status) == 1;
}

/// Serves connect strings that begin with "TEST;" and remembers what it was told.
class ServerEngine final : public engine::Engine
{
public:
    explicit ServerEngine(QStringList& statements, bool isAvailable)
        : Statements_(statements), IsAvailable_(isAvailable)
    {
    }

    QString Name() const override { return QStringLiteral("test server"); }
    Capability Capabilities() const override { return {.Creates = false, .IsServer = true}; }
    bool IsAvailable(QString& reason) const override
    {
        reason = QStringLiteral("switched off");
        return IsAvailable_;
    }
    bool RecognisesFile(const QByteArray&) const override { return false; }
    bool RecognisesConnect(const QString& connect) const override { return connect.startsWith(QLatin1String("TEST;")); }
    std::unique_ptr<engine::Store> Open(const QString&, const QString&, bool) override { return nullptr; }
    void Create(const QString&) override {}
    void Compact(const QString&, const QString&) override {}
    void Copy(const QString&, const QString&, const engine::CopyProgress&) override {}
    dao::FileReport Examine(const QString&, const engine::CopyProgress&) override { return {}; }
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<Connection> OpenConnection(const QString&, int, bool, const QString&) override
    {
        return std::make_unique<ServerConnection>(Statements_);
    }

private:
    class ServerConnection final : public Connection
    {
    public:
        explicit ServerConnection(QStringList& statements) : Statements_(statements) {}
        void Execute(const QString& statement) override { Statements_ += statement; }
        std::unique_ptr<Recordset> OpenRecordset(const QString&) override { return nullptr; }
        void Close() override {}

    private:
        QStringList& Statements_;
    };

    QStringList& Statements_;
    bool IsAvailable_;
};

/// Makes files, by the usual engine's hands, and remembers which.
class FileMaker final : public engine::Engine
{
public:
    explicit FileMaker(QStringList& made) : Made_(made) {}

    QString Name() const override { return QStringLiteral("test files"); }
    Capability Capabilities() const override { return {.Creates = true, .IsServer = false}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray&) const override { return false; }
    bool RecognisesConnect(const QString&) const override { return false; }
    std::unique_ptr<engine::Store> Open(const QString&, const QString&, bool) override { return nullptr; }
    void Create(const QString& fileName) override
    {
        engine::EngineRegistry::Instance().ForNewFiles(QString()).Create(fileName);
        Made_ += fileName;
    }
    void Compact(const QString&, const QString&) override {}
    void Copy(const QString&, const QString&, const engine::CopyProgress&) override {}
    dao::FileReport Examine(const QString&, const engine::CopyProgress&) override { return {}; }
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<Connection> OpenConnection(const QString&, int, bool, const QString&) override { return nullptr; }

private:
    QStringList& Made_;
};

/// An engine in the registry for the length of a test.
class Registered
{
public:
    explicit Registered(std::unique_ptr<engine::Engine> engine) : Name_(engine->Name())
    {
        engine::EngineRegistry::Instance().Register(std::move(engine));
    }
    ~Registered() { engine::EngineRegistry::Instance().Unregister(Name_); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    QString Name_;
};

TEST(EngineRegistry, ARegisteredEngineServesItsConnectStrings)
{
    QStringList statements;
    const Registered server(std::make_unique<ServerEngine>(statements, true));
    const auto workspace = DBEngine::CreateWorkspace(QString(), QString(), QString(), dbUseODBC);
    const auto connection = workspace->OpenConnection(QString(), dbDriverNoPrompt, false, QStringLiteral("TEST;x"));
    connection->Execute(QStringLiteral("CREATE DATABASE \"a\""));
    EXPECT_EQ(statements, QStringList{QStringLiteral("CREATE DATABASE \"a\"")});
    EXPECT_EQ(ErrorNumberOf([&] { workspace->OpenConnection(QString(), 1, false, QStringLiteral("OTHER;x")); }),
              errNotSupported);
}

TEST(EngineRegistry, AMissingEngineIsAnErrorWithItsReason)
{
    QStringList statements;
    const Registered server(std::make_unique<ServerEngine>(statements, false));
    const auto workspace = DBEngine::CreateWorkspace(QString(), QString(), QString(), dbUseODBC);
    try {
        workspace->OpenConnection(QString(), 1, false, QStringLiteral("TEST;x"));
        FAIL() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), errNotSupported);
        EXPECT_TRUE(error.Description().contains(QStringLiteral("switched off")));
    }
}

TEST(EngineRegistry, NamesAreTakenOnce)
{
    QStringList statements;
    const Registered server(std::make_unique<ServerEngine>(statements, true));
    auto& registry = engine::EngineRegistry::Instance();
    EXPECT_EQ(ErrorNumberOf([&] { registry.Register(std::make_unique<ServerEngine>(statements, true)); }),
              errTableExists);
    EXPECT_EQ(ErrorNumberOf([&] { registry.Named(QStringLiteral("absent")); }), errItemNotFound);
    EXPECT_EQ(ErrorNumberOf([&] { registry.Unregister(QStringLiteral("absent")); }), errItemNotFound);
}

TEST(EngineRegistry, NewFilesAreMadeByTheEngineThatIsNamed)
{
    QStringList made;
    const Registered maker(std::make_unique<FileMaker>(made));
    const QTemporaryDir folder;
    const auto create = [&](const char* file, const QString& engine) {
        return DBEngine::CreateDatabase(folder.filePath(QString::fromLatin1(file)), QString(), engine);
    };
    create("usual.mdb", QString());
    create("named.mdb", QStringLiteral(" SQLite "));
    EXPECT_EQ(made, QStringList());
    create("made.mdb", QStringLiteral("test files"));
    EXPECT_EQ(made, QStringList{folder.filePath(QStringLiteral("made.mdb"))});
    EXPECT_TRUE(DBEngine::IsDatabase(folder.filePath(QStringLiteral("usual.mdb"))));
}

TEST(EngineRegistry, AnUnknownEngineIsAnErrorThatListsThoseThereAre)
{
    QStringList made;
    QStringList statements;
    const Registered maker(std::make_unique<FileMaker>(made));
    const Registered server(std::make_unique<ServerEngine>(statements, true));
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("New.mdb"));
    for (const char* name : {"absent", "test server"}) {
        try {
            DBEngine::CreateDatabase(file, QString(), QString::fromLatin1(name));
            ADD_FAILURE() << name << " made a file";
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), errItemNotFound);
            EXPECT_EQ(error.Description(), QStringLiteral("No database engine that makes new files is named '%1'. Use "
                                                          "one of these: sqlite, jet, test files.")
                                               .arg(QString::fromLatin1(name)));
        }
        EXPECT_FALSE(QFileInfo::exists(file));
    }
}

} // namespace

TEST(EngineRegistry, WhoeverLooksAtAFileOfAnotherEngineLeavesItShutForOthers)
{
    const QTemporaryDir folder;
    for (const QString& name : {QStringLiteral("sqlite"), QStringLiteral("jet")}) {
        const QString file = folder.filePath(name + QStringLiteral(".mdb"));
        DBEngine::CreateDatabase(file, QString(), name)->Close();
        EXPECT_FALSE(IsLockedForOthers(file));
        {
            const auto locks = engine::EngineRegistry::Instance().LockOut(file);
            EXPECT_TRUE(IsLockedForOthers(file)) << qPrintable(name);
        }
        EXPECT_FALSE(IsLockedForOthers(file)) << qPrintable(name);
    }
}
