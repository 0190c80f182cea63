// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/jet/Properties.h"
#include "platform/records/engines/jet/TableBuilder.h"

#include <memory>

namespace dao::jet
{

/// Writes a whole new database: tables, one after the other, then the format's own tables over them.
class DatabaseBuilder
{
public:
    /// The file is there, and nobody else writes to it. created: a day number of whole seconds.
    DatabaseBuilder(const QString& fileName, double created);

    /// The table before it is finished. It lives as long as this. Errors: 3251 for a name or a number of columns or
    /// indexes that such a file cannot have.
    TableBuilder& AddTable(const engine::Table& table);
    /// The same of a shape that another file has. properties: its blob, empty for none.
    TableBuilder& AddTable(const QString& name, const TableDefinition& shape, const QByteArray& properties);
    /// Writes all that is left and puts the file on the disk.
    void Finish();

private:
    struct UserTable
    {
        std::unique_ptr<TableBuilder> Builder;
        QByteArray Properties;
    };

    void WriteObjects();
    void WriteRights();
    void WriteEmpty(quint32 page, const QString& name, TableDefinition shape);

    PageWriter Pages_;
    double Created_;
    std::vector<UserTable> Tables_;
};

/// The wall's time as a day number of whole seconds.
double DayNumberNow();

/// Writes everything a store holds into a new file, which is there and empty; other programs must not change the store
/// meanwhile. Errors: those of the store, of the builders, 3428 for a memo that is damaged.
void WriteWholeStore(engine::Store& store, const QString& fileName);

} // namespace dao::jet
