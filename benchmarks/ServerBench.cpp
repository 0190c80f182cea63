// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "platform/mail/RawHeaders.h"
#include "platform/records/DBEngine.h"
#include "support/TestServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHash>
#include <QtEndian>

#include <libpq-fe.h>
#include <memory>

namespace
{
constexpr int MessagesARound = 20;
constexpr int BeginningOctets = 4096;

/// A connection by libpq alone.
class BareServer
{
public:
    explicit BareServer(const TestServer& server)
        : Connection_(PQconnectdb(
              QStringLiteral("host=%1 user=tolva dbname=postgres").arg(server.Folder()).toUtf8().constData()))
    {
        Require(PQstatus(Connection_) == CONNECTION_OK, "the server does not answer");
    }
    ~BareServer() { PQfinish(Connection_); }
    BareServer(const BareServer&) = delete;
    BareServer& operator=(const BareServer&) = delete;

    PGconn* Handle() const { return Connection_; }
    /// Prepared at its first run. values: octets in the text form of their kind; mail is $1, as it stands.
    qint64 Run(const QByteArray& statement, const QByteArray& mail = {}, const QByteArray& text = {})
    {
        QByteArray& name = Names_[statement];
        if (name.isEmpty()) {
            name = "b" + QByteArray::number(Names_.size());
            PQclear(PQprepare(Connection_, name.constData(), statement.constData(), 0, nullptr));
        }
        const int count = static_cast<int>(statement.contains("$2")) + static_cast<int>(statement.contains("$1"));
        const char* const values[] = {mail.constData(), text.constData()};
        const int lengths[] = {static_cast<int>(mail.size()), static_cast<int>(text.size())};
        const int formats[] = {1, 1};
        PGresult* result = PQexecPrepared(Connection_, name.constData(), count, values, lengths, formats, 0);
        const ExecStatusType status = PQresultStatus(result);
        Require(status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK, "a bare statement failed");
        const qint64 value = PQntuples(result) > 0 ? QByteArray(PQgetvalue(result, 0, 0)).toLongLong() : 0;
        PQclear(result);
        return value;
    }

private:
    PGconn* Connection_;
    QHash<QByteArray, QByteArray> Names_;
};

/// The same durable statements as one save: the lock, the number, the row, the stamp, and behind them the audit entry.
class BareSaving
{
public:
    explicit BareSaving(const TestServer& server) : Station_(server), Log_(server)
    {
        Station_.Run("CREATE SCHEMA bare");
        Station_.Run("CREATE TABLE bare.station (identity bigint)");
        Station_.Run("INSERT INTO bare.station VALUES (1)");
        Station_.Run(
            "CREATE TABLE bare.messages (id bigserial PRIMARY KEY, version bigint, fromkey bytea, tokey bytea, "
            "received float8, sent float8, type bigint, category bigint, highlight bigint, priority bigint, "
            "personal bigint, flags bigint, subject bytea, folded bytea, message bytea)");
        Station_.Run("ALTER TABLE bare.messages ALTER COLUMN message SET STORAGE EXTERNAL");
        for (const char* column : {"fromkey", "tokey", "received", "category, received", "flags", "personal"})
            Station_.Run(QByteArray("CREATE INDEX ON bare.messages (") + column + ')');
        Station_.Run("CREATE TABLE bare.settings (item text PRIMARY KEY, version bigint, value bytea)");
        Station_.Run("INSERT INTO bare.settings VALUES ('Messages.LastChanged', 1, '')");
        Station_.Run(
            "CREATE TABLE bare.log (id bigserial PRIMARY KEY, at float8, userreference bigint, class bigint, kind "
            "bigint, title bytea, text bytea, code bigint)");
    }

    void Save(int number, const QByteArray& mail)
    {
        const QByteArray subject = "Request number " + QByteArray::number(number);
        Station_.Run("BEGIN");
        Station_.Run("LOCK TABLE bare.station IN EXCLUSIVE MODE");
        Station_.Run("SELECT identity FROM bare.station");
        Station_.Run("SELECT nextval('bare.messages_id_seq')");
        Station_.Run(
            "INSERT INTO bare.messages (id, version, message, subject, folded, fromkey, tokey, received, sent, type, "
            "category, highlight, priority, personal, flags) VALUES (currval('bare.messages_id_seq'), 1, $1::bytea, "
            "$2::bytea, $2::bytea, 'listener', 'studio', 46000.5, 46000.5, 1, 1, 0, 0, 0, 0)",
            mail, subject);
        Station_.Run("SELECT version, value FROM bare.settings WHERE item = 'Messages.LastChanged'");
        Station_.Run(
            "UPDATE bare.settings SET version = version + 1, value = $1::bytea WHERE item = 'Messages.LastChanged'",
            QByteArray::number(46000.5 + number * 1e-8, 'f', 8));
        Station_.Run("COMMIT");
        Log_.Run("INSERT INTO bare.log (at, userreference, class, kind, title, text, code) VALUES (46000.5, 1, 32, 6, "
                 "'Message Added', $1::bytea, 1)",
                 subject);
    }

private:
    BareServer Station_;
    BareServer Log_;
};

void BenchSavingOnServer(const TestServer& server, const QString& folder, int rounds)
{
    BareSaving bare(server);
    CompareSaving({"SaveMessage on a server",
                   "bare libpq: the same statements, one commit each for row and audit, a GMime parse", 1.5, rounds,
                   MessagesARound},
                  folder, [&](int number, const QByteArray& mail) { bare.Save(number, mail); });
}

/// What the list asks for, in the server's own names.
QByteArray SelectOf(const TestServer& server)
{
    const QString table = server.Execute(QStringLiteral("SELECT id FROM station.tolva_tables WHERE name = 'Messages'"));
    const auto column = [&](const char* name) {
        return 'c' +
               server
                   .Execute(QStringLiteral("SELECT ordinal FROM station.tolva_fields WHERE table_id = %1 AND name = "
                                           "'%2'")
                                .arg(table, QLatin1String(name)))
                   .toUtf8();
    };
    return "SELECT id, " + column("Received") + ", " + column("Category") + ", " + column("Priority") + ", " +
           column("Flags") + ", substr(" + column("Message") + ", 1, " + QByteArray::number(BeginningOctets) +
           ") FROM station.rows_" + table.toUtf8() + " WHERE " + column("Category") + " < 8 ORDER BY " +
           column("Received") + " DESC, id";
}

/// Every row with the beginning of its mail, as it arrives.
int ListBare(BareServer& bare, const QByteArray& select)
{
    PGconn* const connection = bare.Handle();
    Require(PQsendQueryParams(connection, select.constData(), 0, nullptr, nullptr, nullptr, nullptr, 1) != 0 &&
                PQsetSingleRowMode(connection) != 0,
            "the bare list was not asked for");
    int count = 0;
    while (PGresult* row = PQgetResult(connection)) {
        if (PQresultStatus(row) == PGRES_SINGLE_TUPLE) {
            const QByteArray mail(PQgetvalue(row, 0, 5), PQgetlength(row, 0, 5));
            Require(ParseHeaders(mail) > 0, "a header was not parsed");
            ++count;
        } else {
            Require(PQresultStatus(row) == PGRES_TUPLES_OK, "the bare list failed");
        }
        PQclear(row);
    }
    return count;
}

int List(cTolvaDatabase& station)
{
    const auto rows =
        station.OpenMessageRows({QStringLiteral("Reference"), QStringLiteral("Received"), QStringLiteral("Category"),
                                 QStringLiteral("Priority"), QStringLiteral("Flags"), QStringLiteral("Message")},
                                QStringLiteral("[Category]<8"), QStringLiteral("[Received] DESC"));
    const dao::Recordset& fields = *rows;
    const dao::Field& mail = fields[QStringLiteral("Message")];
    int count = 0;
    for (; !rows->AtEOF(); rows->MoveNext(), ++count) {
        const dao::MemoBeginning beginning = mail.Beginning(BeginningOctets);
        const auto headers = cdo::RawHeadersOfBeginning(beginning.Utf8, beginning.IsWhole, {"Subject", "From"}, 1000);
        Require(headers && !headers->first().isEmpty(), "a header was not read");
    }
    return count;
}

void BenchListingOnServer(const TestServer& server, const QString& folder, int messages)
{
    const auto station = OpenStation(folder);
    BareServer bare(server);
    const QByteArray select = SelectOf(server);
    Compare(
        {"list of " + std::to_string(messages) + " on a server",
         "bare libpq: a single-row select of the same columns, and a GMime header parse", 1.5, 5, 1},
        [&] { Require(ListBare(bare, select) == messages, "the bare list is not whole"); },
        [&] { Require(List(*station) == messages, "the list is not whole"); });
    station->CloseTolvaDatabase();
}
} // namespace

void BenchServer(const QString& folder, int messages, int rounds)
{
    // What is stored is on its disk, as on a server in use.
    TestServer server({QStringLiteral("fsync=on"), QStringLiteral("shared_buffers=128MB")});
    const QString connect = server.Connect(QStringLiteral("station"));
    for (const QString& name : {QStringLiteral("/saving"), QStringLiteral("/listing")}) {
        const bool isSaving = name == QStringLiteral("/saving");
        const QString part = isSaving ? QStringLiteral("saving") : QString();
        QDir().mkpath(folder + name + QStringLiteral("/Directory"));
        dao::DBEngine::CreateLinkedDatabase(folder + name + QStringLiteral("/Tolva.mdb"), connect, part);
        if (isSaving)
            dao::DBEngine::CreateLinkedDatabase(folder + name + QStringLiteral("/Directory/Directory.mdb"), connect,
                                                QStringLiteral("directory"));
        MakeStation(folder + name, isSaving ? 0 : messages);
    }
    server.Execute(QStringLiteral("VACUUM ANALYZE"));
    BenchSavingOnServer(server, folder + QStringLiteral("/saving"), rounds);
    BenchListingOnServer(server, folder + QStringLiteral("/listing"), messages);
}
