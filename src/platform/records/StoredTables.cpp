// SPDX-License-Identifier: Apache-2.0
#include "platform/records/StoredTables.h"

namespace dao
{

namespace
{

template <typename Object>
bool Has(const Collection<Object>& collection, const QString& name)
{
    for (int i = 0; i < collection.Count(); ++i) {
        if (collection.Item(i).Name().compare(name, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

template <typename Object>
void RequireNewName(const Collection<Object>& collection, const QString& name)
{
    if (Has(collection, name))
        throw Error(errTableExists, QStringLiteral("'%1' already exists in this collection.").arg(name));
}

engine::Column ColumnOf(const Field& field)
{
    return {field.Name(), field.Type(), field.Size(), field.Attributes(), field.AllowZeroLength()};
}

std::unique_ptr<Field> FieldOf(const engine::Column& column)
{
    auto field = std::make_unique<Field>(column.Name, column.Type, column.Size);
    field->SetAttributes(column.Attributes);
    field->SetAllowZeroLength(column.AllowZeroLength);
    return field;
}

engine::IndexKey KeyOf(const Index& index, const engine::Table& table)
{
    engine::IndexKey key{index.Name(), index.Primary(), index.Unique() || index.Primary(), {}};
    for (int i = 0; i < index.Fields().Count(); ++i) {
        const QString& name = index.Fields().Item(i).Name();
        const int place = table.FindColumn(name);
        if (place < 0) {
            throw Error(errItemNotFound,
                        QStringLiteral("Field '%1' of index '%2' is not in the table.").arg(name, index.Name()));
        }
        key.Columns.push_back(place);
    }
    if (key.Columns.empty())
        throw Error(errNotSupported, QStringLiteral("Index '%1' has no fields.").arg(index.Name()));
    return key;
}

void RequireStorable(const Field& field)
{
    const bool isCounter = (field.Attributes() & dbAutoIncrField) != 0;
    if (isCounter && field.Type() != dbLong) {
        throw Error(errNotSupported,
                    QStringLiteral("The automatic counter '%1' has to be a dbLong.").arg(field.Name()));
    }
}

} // namespace

void TableFields::Attach(const SessionPtr& session, const QString& table)
{
    Session_ = session;
    Table_ = table;
}

void TableFields::Follow(const engine::Table& table)
{
    for (const engine::Column& column : table.Columns) {
        if (!Has(*this, column.Name))
            Add(FieldOf(column));
    }
}

void TableFields::Store(Field& field)
{
    RequireNewName(*this, field.Name());
    RequireStorable(field);
    if (!Session_)
        return;
    engine::Store& store = Session_->Required();
    store.AddColumn(Table_, ColumnOf(field));
}

void TableIndexes::Attach(const SessionPtr& session, const QString& table)
{
    Session_ = session;
    Table_ = table;
}

void TableIndexes::Follow(const engine::Table& table)
{
    for (const engine::IndexKey& key : table.Indexes) {
        if (Has(*this, key.Name))
            continue;
        auto index = std::make_unique<Index>(key.Name);
        index->SetPrimary(key.Primary);
        index->SetUnique(key.Unique);
        for (const int column : key.Columns)
            index->Fields().Append(FieldOf(table.Columns[static_cast<std::size_t>(column)]));
        Add(std::move(index));
    }
}

void TableIndexes::Store(Index& index)
{
    RequireNewName(*this, index.Name());
    if (!Session_)
        return;
    engine::Store& store = Session_->Required();
    const engine::TablePtr table = store.CurrentSchema()->Find(Table_);
    if (!table)
        throw Error(errTableNotFound, QStringLiteral("Table '%1' was not found.").arg(Table_));
    store.AddIndex(Table_, KeyOf(index, *table));
    index.SetUnique(index.Unique() || index.Primary());
}

bool StoredTables::HasMore(const engine::Schema& schema) const
{
    for (int i = 0; i < Count(); ++i) {
        const TableDef& known = Item(i);
        const engine::TablePtr table = schema.Find(known.Name());
        if (!table)
            return true;
        for (int field = 0; field < known.Fields().Count(); ++field) {
            if (table->FindColumn(known.Fields().Item(field).Name()) < 0)
                return true;
        }
        for (int index = 0; index < known.Indexes().Count(); ++index) {
            if (table->FindIndex(known.Indexes().Item(index).Name()) < 0)
                return true;
        }
    }
    return false;
}

void StoredTables::Refresh()
{
    const engine::SchemaPtr schema = Session_->Required().CurrentSchema();
    if (schema == Schema_)
        return;
    if (HasMore(*schema))
        Clear();
    for (const engine::TablePtr& table : schema->Tables) {
        TableDef* known = nullptr;
        for (int i = 0; i < Count() && known == nullptr; ++i) {
            if (Item(i).Name() == table->Name)
                known = &Item(i);
        }
        if (known == nullptr) {
            auto made = std::make_unique<TableDef>(table->Name);
            known = made.get();
            known->Fields_->Attach(Session_, table->Name);
            known->Indexes_->Attach(Session_, table->Name);
            Add(std::move(made));
        }
        known->Fields_->Follow(*table);
        known->Indexes_->Follow(*table);
    }
    Schema_ = schema;
}

void StoredTables::Store(TableDef& definition)
{
    engine::Store& store = Session_->Required();
    if (store.CurrentSchema()->Find(definition.Name()))
        throw Error(errTableExists, QStringLiteral("Table '%1' already exists.").arg(definition.Name()));
    if (definition.Fields().Count() == 0)
        throw Error(errNotSupported, QStringLiteral("Table '%1' has no fields.").arg(definition.Name()));
    engine::Table table;
    table.Name = definition.Name();
    for (int i = 0; i < definition.Fields().Count(); ++i)
        table.Columns.push_back(ColumnOf(definition.Fields().Item(i)));
    table.Complete();
    for (int i = 0; i < definition.Indexes().Count(); ++i)
        table.Indexes.push_back(KeyOf(definition.Indexes().Item(i), table));
    store.AddTable(table);
    definition.Fields_->Attach(Session_, table.Name);
    definition.Indexes_->Attach(Session_, table.Name);
}

} // namespace dao
