// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/QueryDef.h"
#include "platform/records/Recordset.h"
#include "platform/records/TableDef.h"

namespace dao
{

/// An open database. Made by DBEngine and owned by the caller; its recordsets and queries may outlive it, but raise
/// 3420 from then on. One thread.
class TOLVA_EXPORT Database
{
public:
    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Full file name, or the database's name on a server.
    virtual QString Name() const = 0;
    /// Version of the engine's file format, such as "3.0".
    virtual QString Version() const = 0;
    virtual QString Connect() const = 0;
    virtual bool Updatable() const = 0;

    /// The tables as they stand in the file now, other users' changes included. Appending a table that stands
    /// already raises 3010. References to its items live until the next call of TableDefs() that finds the structure
    /// changed.
    virtual Collection<TableDef>& TableDefs() = 0;
    std::unique_ptr<TableDef> CreateTableDef(const QString& name) const { return std::make_unique<TableDef>(name); }

    /// source: a table's name or a SELECT. 3078 when the table is absent, 3075 when the text is refused, 3061 when a
    /// name in it is no column. A recordset that has rows stands on its first.
    virtual std::unique_ptr<Recordset> OpenRecordset(const QString& source, RecordsetTypeEnum type = dbOpenDefault) = 0;
    /// A number made of the rows that a SELECT finds, in its order, and of what they say, memos apart: the same in
    /// every process as long as they say the same. For whoever looks whether anything changed: reads as OpenRecordset
    /// does, with its errors, and keeps no row.
    virtual quint64 MarkOf(const QString& select) = 0;
    /// name: empty; queries are not stored. The text is checked here.
    virtual std::unique_ptr<QueryDef> CreateQueryDef(const QString& name, const QString& sql) = 0;
    /// Runs an UPDATE or DELETE without parameters; the number of rows changed.
    virtual int Execute(const QString& sql) = 0;
    /// Inside a transaction that this database takes part in: takes the writer's lock now instead of at the first
    /// change. 3251 without one, 3260 when somebody else has the lock for too long.
    virtual void LockForChange() = 0;

    /// Whether this is told from now on of what others change; where not, only a look tells. To be asked anew now and
    /// then. Nothing is raised by either.
    virtual bool BeginBeingTold() { return false; }
    /// Whether somebody else has changed something since the last call, as far as it was told. Costs next to nothing.
    virtual bool TakeChanges() { return false; }

    virtual void Close() = 0;

protected:
    Database() = default;
};

} // namespace dao
