// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/CatalogueConnection.h"

#include "platform/records/engines/postgres/ServerConnection.h"

#include <QRegularExpression>

namespace dao::postgres
{

namespace
{

constexpr char ServersOwnDatabase[] = "postgres";

[[noreturn]] void RaiseNotSupported()
{
    throw Error(errNotSupported, QStringLiteral("Operation is not supported for this type of object."));
}

/// The names of databases, to be read.
class NamesRecordset final : public Recordset
{
public:
    NamesRecordset(QString question, QStringList names) : Question_(std::move(question)), Names_(std::move(names))
    {
        auto field = std::make_unique<Field>(QStringLiteral("Name"), dbText, 0);
        Bind(*field, 0);
        Fields_.Append(std::move(field));
    }

    QString Name() const override { return Question_; }
    RecordsetTypeEnum Type() const override { return dbOpenSnapshot; }
    bool Updatable() const override { return false; }
    int RecordCount() const override
    {
        RequireOpen();
        return static_cast<int>(Names_.size());
    }
    bool AtEOF() const override { return Row_ >= RecordCount(); }
    bool AtBOF() const override { return Row_ < 0 || RecordCount() == 0; }
    void MoveFirst() override { MoveTo(0); }
    void MoveLast() override { MoveTo(RecordCount() - 1); }
    void MoveNext() override
    {
        RequireRow();
        ++Row_;
    }
    void MovePrevious() override
    {
        RequireRow();
        --Row_;
    }
    QString Index() const override { RaiseNotSupported(); }
    void SetIndex(const QString&) override { RaiseNotSupported(); }
    void Seek(SeekComparison, std::initializer_list<QVariant>) override { RaiseNotSupported(); }
    void FindFirst(const QString&) override { RaiseNotSupported(); }
    bool NoMatch() const override { return false; }
    void AddNew() override { RaiseNotSupported(); }
    void Edit() override { RaiseNotSupported(); }
    void Update() override { RaiseNotSupported(); }
    void CancelUpdate() override { RaiseNotSupported(); }
    void Delete() override { RaiseNotSupported(); }
    void Close() override { IsOpen_ = false; }

private:
    void RequireOpen() const
    {
        if (!IsOpen_)
            throw Error(errObjectInvalid, QStringLiteral("Object invalid or no longer set: the recordset is closed."));
    }
    void RequireRow() const
    {
        if (Row_ < 0 || Row_ >= RecordCount())
            throw Error(errNoCurrentRecord, QStringLiteral("No current record."));
    }
    void MoveTo(int row)
    {
        Row_ = row;
        RequireRow();
    }
    QVariant ValueOf(int) const override
    {
        RequireRow();
        return Names_.at(Row_);
    }
    void SetValueOf(int, const QVariant&) override { RaiseNotSupported(); }
    QByteArray OctetsOf(int, MemoTrust) const override { RaiseNotSupported(); }
    void SetOctetsOf(int, const QByteArray&) override { RaiseNotSupported(); }
    MemoBeginning BeginningOf(int, qsizetype) const override { RaiseNotSupported(); }
    quint64 HashOf(int) const override { RaiseNotSupported(); }

    QString Question_;
    QStringList Names_;
    int Row_ = 0;
    bool IsOpen_ = true;
};

class CatalogueConnection final : public dao::Connection
{
public:
    explicit CatalogueConnection(ConnectString connect)
    {
        if (connect.Word("dbname").isEmpty())
            connect.SetWord("dbname", QString::fromLatin1(ServersOwnDatabase));
        try {
            Server_ = std::make_unique<ServerConnection>(connect);
        } catch (const Error& error) {
            if (error.Number() != errFileNotFound)
                throw;
            connect.SetWord("dbname", QString::fromLatin1(ServersOwnDatabase));
            Server_ = std::make_unique<ServerConnection>(connect);
        }
    }

    void Execute(const QString& statement) override { Required().Execute(statement.toUtf8()); }
    std::unique_ptr<Recordset> OpenRecordset(const QString& query) override
    {
        static const QRegularExpression question(
            QStringLiteral(R"(^\s*Select \* from master\.\.sysdatabases WHERE Name='(.*)'\s*$)"),
            QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
        const auto match = question.match(query);
        if (!match.hasMatch())
            RaiseNotSupported();
        // The name stands there as it is, quotes and all.
        const QByteArray name = match.captured(1).toUtf8();
        Command command{"SELECT pg_catalog.convert_to(datname::text, 'UTF8') FROM pg_catalog.pg_database "
                        "WHERE datname::text = pg_catalog.convert_from($1, 'UTF8')"};
        command.Values.AddOctets({name.constData(), static_cast<std::size_t>(name.size())});
        const Result result = Required().Run(command);
        QStringList names;
        for (int row = 0; row < result.Rows(); ++row) {
            const std::string_view found = result.Octets(row, 0);
            names.append(QString::fromUtf8(found.data(), static_cast<qsizetype>(found.size())));
        }
        return std::make_unique<NamesRecordset>(query, names);
    }
    void Close() override { Server_.reset(); }

private:
    ServerConnection& Required()
    {
        if (!Server_)
            throw Error(errObjectInvalid, QStringLiteral("Object invalid or no longer set: the connection is closed."));
        return *Server_;
    }

    std::unique_ptr<ServerConnection> Server_;
};

} // namespace

std::unique_ptr<dao::Connection> MakeCatalogueConnection(ConnectString connect)
{
    return std::make_unique<CatalogueConnection>(std::move(connect));
}

} // namespace dao::postgres
