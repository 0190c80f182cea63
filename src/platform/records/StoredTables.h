// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DatabaseSession.h"
#include "platform/records/TableDef.h"

namespace dao
{

/// The fields of a table: a list under construction, or those of a stored table, where appending adds to the file.
class TableFields final : public Collection<Field>
{
public:
    void Attach(const SessionPtr& session, const QString& table);
    /// Adds what the stored table has and the list lacks.
    void Follow(const engine::Table& table);

protected:
    void Store(Field& field) override;

private:
    SessionPtr Session_; ///< Null for a definition.
    QString Table_;
};

/// The indexes of a table, likewise.
class TableIndexes final : public Collection<Index>
{
public:
    void Attach(const SessionPtr& session, const QString& table);
    void Follow(const engine::Table& table);

protected:
    void Store(Index& index) override;

private:
    SessionPtr Session_;
    QString Table_;
};

/// The tables of a database.
class StoredTables final : public Collection<TableDef>
{
public:
    explicit StoredTables(const SessionPtr& session) : Session_(session) {}
    /// Takes over the structure as it stands now. Items that are there already stay the same objects, unless a
    /// rollback took structure away.
    void Refresh();

protected:
    void Store(TableDef& table) override;

private:
    /// Whether something that is listed here is not in the file any more.
    bool HasMore(const engine::Schema& schema) const;

    SessionPtr Session_;
    engine::SchemaPtr Schema_;
};

} // namespace dao
