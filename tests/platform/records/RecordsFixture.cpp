// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

RecordsFixture::RecordsFixture() : Place_(MakeDatabase(GetParam(), Folder_.path()))
{
    Database_ = OpenAgain();
}

std::unique_ptr<dao::Database> RecordsFixture::OpenAgain() const
{
    return dao::DBEngine::OpenDatabase(Place_.Name, 0, false, Place_.Connect);
}

void RecordsFixture::Reopen()
{
    Database_.reset();
    Database_ = OpenAgain();
}

void RecordsFixture::MakeMessages()
{
    std::vector<std::unique_ptr<dao::Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Reference"), dao::dbLong, 0, dao::dbAutoIncrField));
    fields.push_back(MakeField(QStringLiteral("Subject"), dao::dbText));
    fields.push_back(MakeField(QStringLiteral("Category"), dao::dbInteger));
    fields.push_back(MakeField(QStringLiteral("Priority"), dao::dbLong));
    fields.push_back(MakeField(QStringLiteral("Small"), dao::dbByte));
    fields.push_back(MakeField(QStringLiteral("Rate"), dao::dbSingle));
    fields.push_back(MakeField(QStringLiteral("Sum"), dao::dbDouble));
    fields.push_back(MakeField(QStringLiteral("Sent"), dao::dbDate));
    fields.push_back(MakeField(QStringLiteral("Done"), dao::dbBoolean));
    fields.push_back(MakeField(QStringLiteral("Message"), dao::dbMemo));
    AddTable(Db(), QStringLiteral("Messages"), std::move(fields));
    AddIndex(Db(), QStringLiteral("Messages"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
}

std::unique_ptr<dao::Recordset> RecordsFixture::OpenTable(const QString& name, const QString& index)
{
    auto recordset = Db().OpenRecordset(name, dao::dbOpenTable);
    if (!index.isEmpty())
        recordset->SetIndex(index);
    return recordset;
}

std::unique_ptr<dao::Recordset> RecordsFixture::OpenMessages()
{
    return OpenTable(QStringLiteral("Messages"), QStringLiteral("Main"));
}

int RecordsFixture::AddMessage(const QString& subject, const QVariant& memo)
{
    const auto messages = OpenMessages();
    messages->AddNew();
    const int reference = messages->Collect(QStringLiteral("Reference")).toInt();
    messages->SetCollect(QStringLiteral("Subject"), subject);
    messages->SetCollect(QStringLiteral("Message"), memo);
    messages->Update();
    return reference;
}

std::string EngineTestName(const testing::TestParamInfo<QString>& info)
{
    return info.param.toStdString();
}

int ErrorNumberOf(const std::function<void()>& statement)
{
    try {
        statement();
    } catch (const dao::Error& error) {
        return error.Number();
    }
    return 0;
}

std::unique_ptr<dao::Field> MakeField(const QString& name, dao::DataTypeEnum type, int size, int attributes)
{
    auto field = std::make_unique<dao::Field>(name, type, size);
    field->SetAttributes(attributes);
    field->SetAllowZeroLength(true);
    return field;
}

void AddTable(dao::Database& database, const QString& name, std::vector<std::unique_ptr<dao::Field>> fields)
{
    auto table = database.CreateTableDef(name);
    for (auto& field : fields)
        table->Fields().Append(std::move(field));
    database.TableDefs().Append(std::move(table));
}

void AddIndex(dao::Database& database, const QString& tableName, const QString& name, const QStringList& fields,
              bool unique, bool primary)
{
    dao::TableDef& table = database.TableDefs().Item(tableName);
    auto index = table.CreateIndex(name);
    index->SetUnique(unique);
    index->SetPrimary(primary);
    for (const QString& field : fields)
        index->Fields().Append(index->CreateField(field));
    table.Indexes().Append(std::move(index));
}
