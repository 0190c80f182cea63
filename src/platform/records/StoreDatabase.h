// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Database.h"
#include "platform/records/QueryRecordset.h"
#include "platform/records/StoredTables.h"

namespace dao
{

/// A database over whichever engine opened it. Listed in the process' workspace, whose transactions it joins, until it
/// is closed.
class StoreDatabase final : public Database
{
public:
    StoreDatabase(const QString& name, const QString& connect, SessionPtr session);
    ~StoreDatabase() override;

    QString Name() const override;
    QString Version() const override;
    QString Connect() const override;
    bool Updatable() const override;
    Collection<TableDef>& TableDefs() override;
    std::unique_ptr<Recordset> OpenRecordset(const QString& source, RecordsetTypeEnum type) override;
    quint64 MarkOf(const QString& select) override;
    std::unique_ptr<QueryDef> CreateQueryDef(const QString& name, const QString& sql) override;
    int Execute(const QString& sql) override;
    void LockForChange() override;
    bool BeginBeingTold() override { return Session_->Store && Session_->Store->BeginBeingTold(); }
    bool TakeChanges() override { return Session_->Store && Session_->Store->TakeChanges(); }
    void Close() override;

private:
    std::unique_ptr<Recordset> OpenTable(const QString& name, RecordsetTypeEnum type);

    QString Name_;
    QString Connect_;
    SessionPtr Session_;
    StoredTables Tables_;
};

/// The recordset of a query. type: dynaset or snapshot; 3251 for a table.
std::unique_ptr<Recordset> OpenQuery(const SessionPtr& session, BoundQuery query, RecordsetTypeEnum type);

} // namespace dao
