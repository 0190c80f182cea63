// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <memory>

/// A PostgreSQL server of the tests' own, on a unix socket in a temporary folder, run by a user that is not root. It is
/// gone some seconds after the last process that uses it, however that ended.
class TestServer
{
public:
    /// Whether the server's programs are on this machine.
    static bool IsInstalled();
    /// The one that all tests share; started by whoever comes first. A test must leave it as it was.
    static TestServer& Shared();
    /// One that a test may do anything to. settings: "NAME=VALUE", of the server's configuration.
    explicit TestServer(const QStringList& settings = {});
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    /// The connect string of a schema, with no password in it.
    QString Connect(const QString& schema, const QString& user = QStringLiteral("tolva"),
                    const QString& database = QStringLiteral("postgres")) const;
    /// A name for a schema that nothing else uses; the schema is removed with the last owner, and that of the directory
    /// of a station in it.
    struct Schema
    {
        QString Name;
        std::shared_ptr<void> Owner;
    };
    Schema NewSchema();

    /// Statements of the server's keeper; raises std::runtime_error. The first value of the answer, empty for none.
    QString Execute(const QString& statements, const QString& database = QStringLiteral("postgres")) const;
    const QString& Folder() const { return Folder_; }
    /// For one that answers over the network as well: "listen_addresses=127.0.0.1", and "port=" with this.
    static int FreePort();
    /// A file in the folder of its data, which it alone may read.
    void GiveFile(const QString& name, const QByteArray& content);
    /// Stops it at once, as a crash would.
    void Stop();
    void Start();

private:
    TestServer(const QString& folder, int secondsOfIdleness, const QStringList& settings);
    void Lock();
    bool IsAnswering() const;

    QString Folder_;
    int Seconds_;
    QStringList Settings_;
    int Port_ = 0;   ///< 0 for the usual one.
    int Users_ = -1; ///< The file whose lock keeps the server.
};
