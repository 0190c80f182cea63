// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FileConversion.h"
#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/JetFixture.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/TableScan.h"

#include <QFile>

using namespace dao;

namespace
{

class JetWriter : public JetFixture
{
protected:
    void ExpectSound()
    {
        const FileReport report = DBEngine::ExamineDatabase(JetName());
        EXPECT_EQ(report.Verdict, FileReport::State::Sound) << qPrintable(report.Faults.join(u'\n'));
    }
};

} // namespace

TEST_F(JetWriter, WritesWhatIsReadBackValueByValue)
{
    MakeMessages();
    AddMessages(1500);
    WriteJet();
    ExpectSound();
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages")), AllRows(Source(), QStringLiteral("Messages")));
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages"), QStringLiteral("Main")),
              AllRows(Source(), QStringLiteral("Messages"), QStringLiteral("Main")));
    EXPECT_EQ(AllRows(Jet(), QStringLiteral("Messages"), QStringLiteral("When")),
              AllRows(Source(), QStringLiteral("Messages"), QStringLiteral("When")));
}

TEST_F(JetWriter, GivesTheBeginningOfALongMemoAWholePage)
{
    MakeMessages();
    AddMessages(300);
    WriteJet();
    const auto rows = Jet().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Body"), QString(10000, u'a'));
    rows->Update();
    jet::PageFile file(JetName());
    jet::TableDefinition table;
    for (const jet::CatalogueObject& object : jet::ReadCatalogue(file)) {
        if (object.Name == QStringLiteral("Messages"))
            table = jet::ReadTableDefinition(file, object.Definition());
    }
    const jet::ColumnDefinition& body = *table.ColumnNamed(QStringLiteral("Body"));
    int chains = 0;
    jet::TableScan(file, table).ForEach([&](jet::RowPlace, const jet::FoundRow& row) {
        const auto stored = jet::RowCells(row.Octets(), table).Octets(body);
        const auto reference = stored ? jet::ReadLongReference(*stored) : jet::LongReference();
        if (stored && reference.Where == jet::LongReference::Place::Chain) {
            ++chains;
            const jet::DataPage page(file, reference.First.Page);
            EXPECT_EQ(page.RowAt(reference.First.Row).Size(), jet::LargestLongRow);
        }
        return true;
    });
    EXPECT_GT(chains, 10);
}

TEST_F(JetWriter, CompactsAFileWithoutChangingWhatItHolds)
{
    MakeMessages();
    AddMessages(400);
    WriteJet();
    const QStringList before = AllRows(Jet(), QStringLiteral("Messages"), QStringLiteral("Subject"));
    const QString compacted = Path(QStringLiteral("Compacted.mdb"));
    DBEngine::CompactDatabase(JetName(), compacted);
    const auto database = DBEngine::OpenDatabase(compacted);
    EXPECT_EQ(AllRows(*database, QStringLiteral("Messages"), QStringLiteral("Subject")), before);
    EXPECT_EQ(DBEngine::ExamineDatabase(compacted).Verdict, FileReport::State::Sound);
}

TEST_F(JetWriter, IsConvertedBackWithEveryValueAndItsCounter)
{
    MakeMessages();
    AddMessages(150);
    Source().Execute(QStringLiteral("DELETE FROM Messages WHERE Ref > 140 OR Ref = 7"));
    WriteJet();
    const QString converted = Path(QStringLiteral("Converted.mdb"));
    qint64 told = 0;
    ConvertDatabase(JetName(), converted, QStringLiteral("sqlite"), [&](qint64 done, qint64 total) {
        told = done;
        return done <= total;
    });
    EXPECT_GT(told, 0);
    const auto database = DBEngine::OpenDatabase(converted);
    EXPECT_TRUE(database->Updatable());
    for (const char* index : {"", "Main", "Key", "When"})
        EXPECT_EQ(AllRows(*database, QStringLiteral("Messages"), QString::fromLatin1(index)),
                  AllRows(Source(), QStringLiteral("Messages"), QString::fromLatin1(index)));
    EXPECT_EQ(DBEngine::ExamineDatabase(converted).Verdict, FileReport::State::Sound);
    const auto recordset = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    recordset->AddNew();
    EXPECT_GT(recordset->Collect(QStringLiteral("Ref")).toInt(), 150) << "a number that was given is given again";
}

TEST_F(JetWriter, IsConvertedToWithEveryValueAndItsCounter)
{
    MakeMessages();
    AddMessages(150);
    Source().Execute(QStringLiteral("DELETE FROM Messages WHERE Ref > 140 OR Ref = 7"));
    const QString converted = Path(QStringLiteral("Converted.mdb"));
    ConvertDatabase(Path(QStringLiteral("Source.mdb")), converted, QStringLiteral("jet"), {});
    const auto database = DBEngine::OpenDatabase(converted);
    EXPECT_TRUE(database->Updatable());
    for (const char* index : {"", "Main", "When"})
        EXPECT_EQ(AllRows(*database, QStringLiteral("Messages"), QString::fromLatin1(index)),
                  AllRows(Source(), QStringLiteral("Messages"), QString::fromLatin1(index)));
    EXPECT_EQ(DBEngine::ExamineDatabase(converted).Verdict, FileReport::State::Sound);
    const auto recordset = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    recordset->AddNew();
    EXPECT_GT(recordset->Collect(QStringLiteral("Ref")).toInt(), 150) << "a number that was given is given again";
}

TEST_F(JetWriter, ConvertsNothingThatWouldNotBeTheSame)
{
    MakeMessages();
    AddMessages(3);
    WriteJet();
    const QString target = Path(QStringLiteral("Converted.mdb"));
    const auto error = [&](const QString& source, const char* engine) {
        return ::ErrorNumberOf([&] { ConvertDatabase(source, target, QString::fromLatin1(engine), {}); });
    };
    EXPECT_EQ(error(Path(QStringLiteral("Source.mdb")), "sqlite"), errNotSupported) << "the same format";
    EXPECT_EQ(error(JetName(), "jet"), errNotSupported) << "the same format";
    EXPECT_EQ(error(JetName(), "nothing"), errItemNotFound) << "an engine that there is not";
    EXPECT_FALSE(QFile::exists(target));
}

TEST_F(JetWriter, ConvertsNoDamagedMemo)
{
    MakeMessages();
    const auto recordset = Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    recordset->AddNew();
    recordset->SetCollect(QStringLiteral("Body"), QStringLiteral("A body of some length. ").repeated(1000));
    recordset->Update();
    WriteJet();
    Jet_.reset();
    SetOctets(JetName(), OctetsOf(JetName()).replace("LVAL", "LVOL"));
    const QString target = Path(QStringLiteral("Converted.mdb"));
    EXPECT_EQ(::ErrorNumberOf([&] { ConvertDatabase(JetName(), target, QStringLiteral("sqlite"), {}); }),
              errMemoDamaged);
    EXPECT_FALSE(QFile::exists(target));
}
