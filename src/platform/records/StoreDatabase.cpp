// SPDX-License-Identifier: Apache-2.0
#include "platform/records/StoreDatabase.h"

#include "platform/records/DynasetRecordset.h"
#include "platform/records/SnapshotRecordset.h"
#include "platform/records/StoreQueryDef.h"
#include "platform/records/TableRecordset.h"
#include "platform/records/WorkspaceTransaction.h"
#include "platform/records/jetsql/Parser.h"

namespace dao
{

namespace
{

/// A query rather than a table's name.
bool LooksLikeQuery(const QString& source)
{
    const QString text = source.trimmed();
    const QLatin1String keyword("SELECT");
    return text.startsWith(keyword, Qt::CaseInsensitive) && text.size() > keyword.size() &&
           !text.at(keyword.size()).isLetterOrNumber();
}

/// False also where that cannot be told.
bool HasTable(const DatabaseSession& session, const QString& name)
{
    try {
        return session.Required().CurrentSchema()->Find(name) != nullptr;
    } catch (const Error&) {
        return false;
    }
}

jetsql::SelectStatement AllRowsOf(const QString& table)
{
    jetsql::SelectStatement select;
    select.Items.emplace_back();
    select.From.Table = table;
    return select;
}

} // namespace

std::unique_ptr<Recordset> OpenQuery(const SessionPtr& session, BoundQuery query, RecordsetTypeEnum type)
{
    if (type == dbOpenTable) {
        throw Error(errNotSupported,
                    QStringLiteral("Operation is not supported for this type of object: a query is no table."));
    }
    engine::ResultShape shape = session->Required().Describe(query.Select);
    if (type != dbOpenSnapshot && shape.Updatable)
        return std::make_unique<DynasetRecordset>(session, std::move(query), std::move(shape));
    const RecordsetTypeEnum reported = type == dbOpenSnapshot ? dbOpenSnapshot : dbOpenDynaset;
    return std::make_unique<SnapshotRecordset>(session, std::move(query), std::move(shape), reported);
}

StoreDatabase::StoreDatabase(const QString& name, const QString& connect, SessionPtr session)
    : Name_(name), Connect_(connect), Session_(std::move(session)), Tables_(Session_)
{
    WorkspaceTransaction::Join(Session_);
}

StoreDatabase::~StoreDatabase()
{
    Session_->Close();
}

QString StoreDatabase::Name() const
{
    Session_->Required();
    return Name_;
}

QString StoreDatabase::Version() const
{
    return Session_->Required().Version();
}

QString StoreDatabase::Connect() const
{
    Session_->Required();
    return Connect_;
}

bool StoreDatabase::Updatable() const
{
    return Session_->Required().Updatable();
}

Collection<TableDef>& StoreDatabase::TableDefs()
{
    Tables_.Refresh();
    return Tables_;
}

std::unique_ptr<Recordset> StoreDatabase::OpenRecordset(const QString& source, RecordsetTypeEnum type)
{
    if (!LooksLikeQuery(source))
        return OpenTable(source, type);
    try {
        return OpenQuery(Session_, {source, jetsql::ParseSelect(source), {}}, type);
    } catch (const Error&) {
        // A table may be called anything.
        if (!HasTable(*Session_, source))
            throw;
    }
    return OpenTable(source, type);
}

std::unique_ptr<Recordset> StoreDatabase::OpenTable(const QString& name, RecordsetTypeEnum type)
{
    if (type != dbOpenDefault && type != dbOpenTable)
        return OpenQuery(Session_, {name, AllRowsOf(name), {}}, type);
    const engine::TablePtr table = Session_->Required().CurrentSchema()->Find(name);
    if (!table)
        throw Error(errTableNotFound, QStringLiteral("The input table or query '%1' was not found.").arg(name));
    return std::make_unique<TableRecordset>(Session_, table);
}

quint64 StoreDatabase::MarkOf(const QString& select)
{
    engine::Store& store = Session_->Required();
    return store.MarkOf(jetsql::ParseSelect(select));
}

std::unique_ptr<QueryDef> StoreDatabase::CreateQueryDef(const QString& name, const QString& sql)
{
    Session_->Required();
    if (!name.isEmpty())
        throw Error(errNotSupported, QStringLiteral("Queries are not stored: a query has no name."));
    return std::make_unique<StoreQueryDef>(Session_, sql);
}

int StoreDatabase::Execute(const QString& sql)
{
    engine::Store& store = Session_->Required();
    return store.Execute(jetsql::ParseStatement(sql), {});
}

void StoreDatabase::LockForChange()
{
    Session_->Required().LockForChange();
}

void StoreDatabase::Close()
{
    Session_->Required();
    Session_->Close();
}

} // namespace dao
