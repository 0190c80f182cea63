// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/PostgresEngine.h"

#include "platform/records/engines/postgres/CatalogueConnection.h"
#include "platform/records/engines/postgres/ServerStore.h"

namespace dao::postgres
{

namespace
{

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
    bool RecognisesFile(const QByteArray&) const override { return false; }
    bool RecognisesConnect(const QString& connect) const override { return IsConnectString(connect); }

    std::unique_ptr<engine::Store> Open(const QString& name, const QString& connect, bool readOnly) override
    {
        return std::make_unique<ServerStore>(ConnectFor(name, connect), readOnly, ServerStore::Missing::Create);
    }
    void Create(const QString&) override { RaiseNoFiles(); }
    void Compact(const QString&, const QString&) override { RaiseNoFiles(); }
    void Copy(const QString&, const QString&, const engine::CopyProgress&) override { RaiseNoFiles(); }
    FileReport Examine(const QString&, const engine::CopyProgress&) override { RaiseNoFiles(); }
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<dao::Connection> OpenConnection(const QString& name, int, bool, const QString& connect) override
    {
        return MakeCatalogueConnection(ConnectFor(name, connect));
    }

private:
    [[noreturn]] static void RaiseNoFiles()
    {
        throw Error(errNotSupported, QStringLiteral("A station on a server is no file: it is made, copied and kept in "
                                                    "order by the server."));
    }
};

} // namespace

std::unique_ptr<engine::Engine> MakePostgresEngine()
{
    return std::make_unique<PostgresEngine>();
}

} // namespace dao::postgres
