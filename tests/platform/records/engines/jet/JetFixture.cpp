// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/JetFixture.h"

#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/engines/jet/DatabaseBuilder.h"

#include <QFile>

#include <iostream>

using namespace dao;

namespace
{

unsigned Seed()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("TOLVA_TEST_SEED", &isSet);
    const unsigned seed = isSet ? static_cast<unsigned>(wanted) : std::random_device()();
    std::cerr << "seed " << seed << '\n';
    return seed;
}

} // namespace

JetFixture::JetFixture(const QString& where) : Random_(Seed()), Folder_(where + QStringLiteral("/tolva-XXXXXX"))
{
    Source_ = DBEngine::CreateDatabase(Path(QStringLiteral("Source.mdb")), QString());
}

void JetFixture::MakeMessages()
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Ref"), dbLong, 0, dbAutoIncrField));
    fields.push_back(MakeField(QStringLiteral("Subject"), dbText, 100));
    fields.push_back(MakeField(QStringLiteral("Key"), dbText, 60));
    fields.push_back(MakeField(QStringLiteral("Small"), dbByte));
    fields.push_back(MakeField(QStringLiteral("Short"), dbInteger));
    fields.push_back(MakeField(QStringLiteral("Number"), dbLong));
    fields.push_back(MakeField(QStringLiteral("Rate"), dbSingle));
    fields.push_back(MakeField(QStringLiteral("Share"), dbDouble));
    fields.push_back(MakeField(QStringLiteral("When"), dbDate));
    fields.push_back(MakeField(QStringLiteral("Read"), dbBoolean));
    fields.push_back(MakeField(QStringLiteral("Body"), dbMemo));
    fields.push_back(MakeField(QStringLiteral("Note"), dbMemo));
    fields[1]->SetAllowZeroLength(true);
    fields[10]->SetAllowZeroLength(true);
    AddTable(*Source_, QStringLiteral("Messages"), std::move(fields));
    AddIndex(*Source_, QStringLiteral("Messages"), QStringLiteral("Main"), {QStringLiteral("Ref")}, true, true);
    AddIndex(*Source_, QStringLiteral("Messages"), QStringLiteral("Subject"), {QStringLiteral("Subject")});
    AddIndex(*Source_, QStringLiteral("Messages"), QStringLiteral("Key"), {QStringLiteral("Key")}, true);
    AddIndex(*Source_, QStringLiteral("Messages"), QStringLiteral("When"),
             {QStringLiteral("When"), QStringLiteral("Number")});
}

QString JetFixture::RandomText(int longest)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCXYZ0123456789 -'_.,éàüßÆøŁ\u20AC");
    QString text;
    const int length = static_cast<int>(Random_() % static_cast<unsigned>(longest + 1));
    for (int i = 0; i < length; ++i)
        text += letters.at(static_cast<qsizetype>(Random_() % static_cast<unsigned>(letters.size())));
    return text;
}

void JetFixture::AddMessages(int count)
{
    const auto recordset = Source_->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    const auto maybe = [this](const QVariant& value) { return Random_() % 8 == 0 ? QVariant() : value; };
    DBEngine::BeginTrans();
    for (int i = 0; i < count; ++i) {
        recordset->AddNew();
        recordset->SetCollect(QStringLiteral("Subject"), maybe(RandomText(40)));
        recordset->SetCollect(QStringLiteral("Key"), maybe(QStringLiteral("%1 %2").arg(RandomText(8)).arg(i)));
        recordset->SetCollect(QStringLiteral("Small"), maybe(int(Random_() % 256)));
        recordset->SetCollect(QStringLiteral("Short"), maybe(int(Random_() % 65536) - 32768));
        recordset->SetCollect(QStringLiteral("Number"), maybe(static_cast<int>(Random_())));
        recordset->SetCollect(QStringLiteral("Rate"), maybe((int(Random_() % 2000) - 1000) / 8.0));
        recordset->SetCollect(QStringLiteral("Share"), maybe((double(Random_()) - 2e9) * 1.25e-3));
        recordset->SetCollect(QStringLiteral("When"), maybe((int(Random_() % 20000) - 2000) / 8.0));
        recordset->SetCollect(QStringLiteral("Read"), Random_() % 2 == 0);
        const int kind = static_cast<int>(Random_() % 12);
        const int size = kind < 6 ? 64 : kind < 10 ? 3000 : 30000;
        recordset->SetCollect(QStringLiteral("Body"), maybe(RandomText(size)));
        recordset->SetCollect(QStringLiteral("Note"), maybe(RandomText(20)));
        recordset->Update();
    }
    DBEngine::CommitTrans();
}

void WriteAsJet(const QString& source, const QString& jet)
{
    SetOctets(jet, {});
    const auto store = engine::EngineRegistry::Instance().Named(QStringLiteral("sqlite")).Open(source, QString(), true);
    jet::WriteWholeStore(*store, jet);
}

void JetFixture::WriteJet()
{
    Jet_.reset();
    WriteAsJet(Path(QStringLiteral("Source.mdb")), JetName());
    Jet_ = DBEngine::OpenDatabase(JetName());
}

QStringList AllRows(Database& database, const QString& table, const QString& index)
{
    const auto recordset = database.OpenRecordset(table, dbOpenTable);
    if (!index.isEmpty())
        recordset->SetIndex(index);
    QStringList rows;
    for (; !recordset->AtEOF(); recordset->MoveNext()) {
        QStringList values;
        for (int i = 0; i < recordset->Fields().Count(); ++i) {
            const QVariant value = recordset->Fields().Item(i).Value();
            values += value.isValid() ? QStringLiteral("%1:%2").arg(value.typeId()).arg(value.toString())
                                      : QStringLiteral("Null");
        }
        rows += values.join(u'|');
    }
    return rows;
}

QByteArray OctetsOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void SetOctets(const QString& name, const QByteArray& octets)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(octets), octets.size());
}
