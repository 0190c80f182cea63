// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/PostgresEngine.h"

#include "platform/records/engines/postgres/CatalogueConnection.h"
#include "platform/records/engines/postgres/LinkFile.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/engines/postgres/StationCopy.h"

#include <QFile>

namespace dao::postgres
{

namespace
{

constexpr qint64 MarkOctets = 100;
constexpr qint64 MostOctetsOfALink = 16384;

/// The schema of what belongs to a station, beside the station's own.
ConnectString PartOf(const QString& connect, const QString& part)
{
    ConnectString words = ParseConnectString(connect);
    if (!part.isEmpty())
        words.Schema += u'_' + part;
    return ParseConnectString(words.Text());
}

/// In a transaction with the writer's lock.
void InOneStep(ServerStore& store, const std::function<void()>& work)
{
    store.BeginTrans();
    try {
        store.LockForChange();
        work();
    } catch (...) {
        store.Rollback();
        throw;
    }
    store.CommitTrans();
}

/// A station that was moved to the server, once the file stands for it.
void OpenArrived(const ConnectString& connect)
{
    ServerStore store(connect, false, ServerStore::Missing::IsError, ServerStore::Closed::IsOpened);
    if (store.Standing() == StationStanding::Arriving)
        InOneStep(store, [&] { store.SetStanding(StationStanding::Open); });
}

/// name: that of the database on the server, where the connect string leaves it open.
ConnectString ConnectFor(const QString& name, const QString& connect)
{
    ConnectString words = ParseConnectString(connect);
    if (words.Word("dbname").isEmpty() && !name.isEmpty())
        words.SetWord("dbname", name);
    return words;
}

class PostgresEngine final : public engine::Engine
{
public:
    QString Name() const override { return QStringLiteral("postgres"); }
    Capability Capabilities() const override { return {.Creates = false, .IsServer = true}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray& firstOctets) const override { return IsLinkFile(firstOctets); }
    bool RecognisesConnect(const QString& connect) const override { return IsConnectString(connect); }

    std::unique_ptr<engine::Store> Open(const QString& name, const QString& connect, bool readOnly) override
    {
        if (connect.isEmpty())
            return std::make_unique<ServerStore>(ReadLinkFile(name), readOnly, ServerStore::Missing::IsError);
        return std::make_unique<ServerStore>(ConnectFor(name, connect), readOnly, ServerStore::Missing::Create);
    }
    void Create(const QString&) override { RaiseNoFiles(); }
    void Compact(const QString&, const QString&) override { RaiseNoFiles(); }
    void Copy(const QString& source, const QString& target, const engine::CopyProgress& progress) override
    {
        CopyToFile(ReadLinkFile(source), target, progress);
    }
    std::unique_ptr<engine::ContentExchange> BeginExchange(const QString& fileName) override
    {
        return std::make_unique<StationExchange>(ReadLinkFile(fileName));
    }
    void CreateLinked(const QString& file, const QString& connect, const QString& part) override;
    void Link(const QString& file, const QString& connect, const QString& part) override;
    void MoveIn(const QString& file, const std::function<void(engine::Store&)>& copy,
                const std::function<void()>& put) override;
    void FinishMoveIn(const QString& file) override;
    QString MoveOut(const QString& file, const std::function<void(engine::Store&)>& copy,
                    const std::function<void()>& put) override;
    void TakeAwayLinked(const QString& file) override;
    std::unique_ptr<engine::FileLock> LockOut(const QString& fileName) override;
    FileReport Examine(const QString& fileName, const engine::CopyProgress& progress) override
    {
        return postgres::Examine(ReadLinkFile(fileName), progress);
    }
    qint64 IdentityOf(const QString& fileName) override;
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<dao::Connection> OpenConnection(const QString& name, int, bool, const QString& connect) override
    {
        return MakeCatalogueConnection(ConnectFor(name, connect));
    }

private:
    [[noreturn]] static void RaiseNoFiles()
    {
        throw Error(errNotSupported,
                    QStringLiteral("The station is on a server, which keeps it compact by itself; it is no file."));
    }
};

void PostgresEngine::CreateLinked(const QString& file, const QString& connect, const QString& part)
{
    const ConnectString words = PartOf(connect, part);
    ServerStore store(words, false, ServerStore::Missing::Create, ServerStore::Closed::IsOpened);
    if (store.Standing() == StationStanding::Arriving) {
        // Of an attempt that was cut off; nobody has ever worked in it.
        InOneStep(store, [&] {
            store.Clear();
            store.SetStanding(StationStanding::Open);
        });
    }
    store.RequireOpen();
    if (!store.CurrentSchema()->Tables.empty()) {
        throw Error(errTableExists,
                    QStringLiteral("There is a station on the server (%1) already.").arg(words.InWords()));
    }
    WriteLinkFile(file, words);
}

void PostgresEngine::Link(const QString& file, const QString& connect, const QString& part)
{
    const ConnectString words = PartOf(connect, part);
    const ServerStore probe(words, true, ServerStore::Missing::IsError);
    WriteLinkFile(file, words);
}

void PostgresEngine::MoveIn(const QString& file, const std::function<void(engine::Store&)>& copy,
                            const std::function<void()>& put)
{
    ServerStore store(ReadLinkFile(file), false, ServerStore::Missing::IsError);
    InOneStep(store, [&] {
        store.SetStanding(StationStanding::Arriving);
        copy(store);
    });
    put();
    OpenArrived(store.Server().Connect());
}

void PostgresEngine::FinishMoveIn(const QString& file)
{
    OpenArrived(ReadLinkFile(file));
}

QString PostgresEngine::MoveOut(const QString& file, const std::function<void(engine::Store&)>& copy,
                                const std::function<void()>& put)
{
    const ConnectString words = ReadLinkFile(file);
    ServerStore store(words, false, ServerStore::Missing::IsError, ServerStore::Closed::IsOpened);
    if (store.Standing() == StationStanding::Arriving)
        store.RequireOpen();
    InOneStep(store, [&] {
        // First: a right that is missing is found before anything else is done.
        store.SetStanding(StationStanding::MovedAway);
        copy(store);
    });
    try {
        put();
    } catch (...) {
        InOneStep(store, [&] { store.SetStanding(StationStanding::Open); });
        throw;
    }
    return words.InWords();
}

qint64 PostgresEngine::IdentityOf(const QString& fileName)
{
    ServerConnection connection(ReadLinkFile(fileName));
    const QByteArray schema = QuotedName(connection.Connect().Schema);
    return StateIn(connection.Run(StateCommand(schema)), connection).Identity;
}

void PostgresEngine::TakeAwayLinked(const QString& file)
{
    ServerConnection connection(ReadLinkFile(file));
    connection.Execute("DROP SCHEMA " + QuotedName(connection.Connect().Schema) + " CASCADE");
    QFile::remove(file);
}

/// The file only says where the station is: another one in its place would part it from its rows.
std::unique_ptr<engine::FileLock> PostgresEngine::LockOut(const QString& fileName)
{
    // No other file is opened here: closing one would let go of the locks that an engine has on it.
    QFile file(fileName);
    if (file.size() > MostOctetsOfALink || !file.open(QIODevice::ReadOnly) || !IsLinkFile(file.read(MarkOctets)))
        return nullptr;
    throw Error(errNotSupported, QStringLiteral("'%1' says that its station is on a server; no other file can take its "
                                                "place")
                                     .arg(fileName));
}

} // namespace

std::unique_ptr<engine::Engine> MakePostgresEngine()
{
    return std::make_unique<PostgresEngine>();
}

} // namespace dao::postgres
