// SPDX-License-Identifier: Apache-2.0

// Creating and completing the tables of a station database.

#include "database/TableCheck.h"

#include "core/support/StationTest.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/records/DBEngine.h"

namespace
{
using namespace dao;

/// "Name type size attributes zero" of each field, in order.
QStringList FieldsOf(TableDef& table)
{
    QStringList fields;
    for (int i = 0; i < table.Fields().Count(); ++i) {
        const Field& field = table.Fields().Item(i);
        fields.append(QStringLiteral("%1 %2 %3 %4 %5")
                          .arg(field.Name())
                          .arg(field.Type())
                          .arg(field.Type() == dbText ? field.Size() : 0)
                          .arg(field.Attributes())
                          .arg(field.AllowZeroLength() ? 1 : 0));
    }
    return fields;
}

/// "Name primary unique: fields" of each index.
QStringList IndexesOf(TableDef& table)
{
    QStringList indexes;
    for (int i = 0; i < table.Indexes().Count(); ++i) {
        const Index& index = table.Indexes().Item(i);
        QStringList fields;
        for (int f = 0; f < index.Fields().Count(); ++f)
            fields.append(index.Fields().Item(f).Name());
        indexes.append(QStringLiteral("%1 %2 %3: %4")
                           .arg(index.Name(), QString::number(index.Primary()), QString::number(index.Unique()),
                                fields.join(QLatin1Char(','))));
    }
    return indexes;
}
} // namespace

class TableCheckTest : public StationTest
{
protected:
    void SetUp() override
    {
        DBEngine::CreateDatabase(FileName(), QString())->Close();
        Open();
    }
    void Open() { File = DBEngine::OpenDatabase(FileName()); }
    TableDef& Table(const char16_t* name) { return File->TableDefs().Item(QString::fromUtf16(name)); }
    /// A table of these fields, the first of each pair its name.
    void MakeTable(const QString& name, std::initializer_list<std::pair<const char16_t*, DataTypeEnum>> fields)
    {
        auto table = File->CreateTableDef(name);
        for (const auto& [field, type] : fields)
            table->Fields().Append(table->CreateField(QString::fromUtf16(field), type));
        File->TableDefs().Append(std::move(table));
    }
    std::unique_ptr<Database> File;
};

TEST_F(TableCheckTest, ANewFileEndsWithAllTables)
{
    ASSERT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
    Open();
    EXPECT_EQ(FieldsOf(Table(u"Messages")),
              (QStringList{QStringLiteral("Reference 4 0 16 0"), QStringLiteral("FromKey 10 255 0 1"),
                           QStringLiteral("ToKey 10 255 0 1"), QStringLiteral("CcKey 10 255 0 1"),
                           QStringLiteral("Received 8 0 0 0"), QStringLiteral("Sent 8 0 0 0"),
                           QStringLiteral("SendAfter 8 0 0 0"), QStringLiteral("MessageType 4 0 0 0"),
                           QStringLiteral("Category 3 0 0 0"), QStringLiteral("MessageStatus 4 0 0 0"),
                           QStringLiteral("HasHighlightWords 3 0 0 0"), QStringLiteral("Priority 4 0 0 0"),
                           QStringLiteral("PersonalToContact 4 0 0 0"), QStringLiteral("Flags 4 0 0 0"),
                           QStringLiteral("Subject 10 255 0 1"), QStringLiteral("Message 12 0 0 1"),
                           QStringLiteral("MultiPartMessage 3 0 0 0"), QStringLiteral("SourceIndex 3 0 0 0")}));
    EXPECT_EQ(IndexesOf(Table(u"Messages")), QStringList{QStringLiteral("Main 1 1: Reference")});
    EXPECT_EQ(FieldsOf(Table(u"MessageCategories")),
              (QStringList{QStringLiteral("ParentReference 4 0 0 0"), QStringLiteral("Reference 4 0 0 0"),
                           QStringLiteral("SortKey 4 0 0 0"), QStringLiteral("Description 10 255 0 1"),
                           QStringLiteral("ForeColour 4 0 0 0"), QStringLiteral("BackColour 4 0 0 0"),
                           QStringLiteral("EndHours 4 0 0 0"), QStringLiteral("KillHours 4 0 0 0"),
                           QStringLiteral("UserLong 4 0 0 0"), QStringLiteral("UserString 10 255 0 1"),
                           QStringLiteral("IconReference 10 255 0 1")}));
    EXPECT_EQ(IndexesOf(Table(u"MessageCategories")),
              (QStringList{QStringLiteral("Main 1 1: Reference"),
                           QStringLiteral("ParentReference 0 0: ParentReference,Reference")}));
    EXPECT_EQ(FieldsOf(Table(u"PrizeWinners")),
              (QStringList{QStringLiteral("Reference 4 0 16 0"), QStringLiteral("PrizeReference 4 0 0 0"),
                           QStringLiteral("WinnerReference 3 0 0 0"), QStringLiteral("AwardedByReference 4 0 0 0"),
                           QStringLiteral("WonDate 8 0 0 0"), QStringLiteral("SentByReference 4 0 0 0"),
                           QStringLiteral("SentDate 8 0 0 0"), QStringLiteral("Notes 12 0 0 1"),
                           QStringLiteral("NotesToSupplier 12 0 0 1")}));
    EXPECT_EQ(IndexesOf(Table(u"PrizeWinners")),
              (QStringList{QStringLiteral("Main 1 1: Reference"),
                           QStringLiteral("PrizeWinner 0 0: PrizeReference,WinnerReference")}));
    EXPECT_EQ(FieldsOf(Table(u"Settings")),
              (QStringList{QStringLiteral("Item 10 250 0 1"), QStringLiteral("Value 12 0 0 1")}));
    EXPECT_EQ(IndexesOf(Table(u"Settings")), QStringList{QStringLiteral("Main 0 1: Item")});
}

TEST_F(TableCheckTest, PrizesHaveAnHourMaskForEachDayOfTheWeek)
{
    ASSERT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
    Open();
    const QStringList fields = FieldsOf(Table(u"Prizes"));
    ASSERT_EQ(fields.size(), 20);
    EXPECT_EQ(fields.mid(0, 4),
              (QStringList{QStringLiteral("Reference 4 0 16 0"), QStringLiteral("AddedByReference 4 0 0 0"),
                           QStringLiteral("AddedDate 8 0 0 0"), QStringLiteral("HourRestrictions1 10 24 0 1")}));
    EXPECT_EQ(fields.mid(9),
              (QStringList{QStringLiteral("HourRestrictions7 10 24 0 1"), QStringLiteral("StartDate 8 0 0 0"),
                           QStringLiteral("EndDate 8 0 0 0"), QStringLiteral("LastWonDate 8 0 0 0"),
                           QStringLiteral("Title 10 255 0 1"), QStringLiteral("SupplierReference 4 0 0 0"),
                           QStringLiteral("NumberSupplied 4 0 0 0"), QStringLiteral("NumberWinners 4 0 0 0"),
                           QStringLiteral("Script 12 0 0 1"), QStringLiteral("Notes 12 0 0 1"),
                           QStringLiteral("NotesToSupplier 12 0 0 1")}));
    EXPECT_EQ(IndexesOf(Table(u"Prizes")), QStringList{QStringLiteral("Main 1 1: Reference")});
}

TEST_F(TableCheckTest, CheckingTwiceChangesNothing)
{
    ASSERT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
    Open();
    const QStringList fields = FieldsOf(Table(u"Messages"));
    const int tables = File->TableDefs().Count();
    ASSERT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
    Open();
    EXPECT_EQ(FieldsOf(Table(u"Messages")), fields);
    EXPECT_EQ(File->TableDefs().Count(), tables);
}

TEST_F(TableCheckTest, AMissingFieldIsAddedEmptyAndAnExtraOneIsKept)
{
    MakeTable(QStringLiteral("Messages"), {{u"Reference", dbLong}, {u"OurOwn", dbText}});
    {
        const auto rows = File->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Reference"), 1);
        rows->SetCollect(QStringLiteral("OurOwn"), QStringLiteral("kept"));
        rows->Update();
    }
    ASSERT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
    Open();
    const auto rows = File->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    EXPECT_FALSE(rows->Collect(QStringLiteral("SourceIndex")).isValid());
    EXPECT_EQ(rows->Collect(QStringLiteral("OurOwn")).toString(), QStringLiteral("kept"));
}

TEST_F(TableCheckTest, AFieldOfAnotherTypeIsAcceptedAsItStands)
{
    MakeTable(QStringLiteral("Settings"), {{u"Item", dbText}, {u"Value", dbLong}});
    ASSERT_EQ(DAO_DatabaseFunctions::CheckSettingsTable(*File), 0);
    EXPECT_EQ(Table(u"Settings").Fields().Item(QStringLiteral("Value")).Type(), dbLong);
}

TEST_F(TableCheckTest, AnIndexOfTheNameIsAcceptedWhateverItCovers)
{
    MakeTable(QStringLiteral("Messages"), {{u"Reference", dbLong}, {u"Subject", dbText}});
    auto index = Table(u"Messages").CreateIndex(QStringLiteral("Main"));
    index->Fields().Append(index->CreateField(QStringLiteral("Subject")));
    Table(u"Messages").Indexes().Append(std::move(index));
    ASSERT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
    Open();
    EXPECT_EQ(IndexesOf(Table(u"Messages")), QStringList{QStringLiteral("Main 0 0: Subject")});
}

TEST_F(TableCheckTest, SettingsWithoutMainGetAUniqueIndexThatIsNotPrimary)
{
    MakeTable(QStringLiteral("Settings"), {{u"Item", dbText}, {u"Value", dbMemo}});
    ASSERT_EQ(DAO_DatabaseFunctions::CheckSettingsTable(*File), 0);
    EXPECT_EQ(IndexesOf(Table(u"Settings")), QStringList{QStringLiteral("Main 0 1: Item")});
}

TEST_F(TableCheckTest, AnIndexThatCannotBeMadeIsReportedAndPassedOver)
{
    const auto makeWithDuplicates = [this](const QString& table, const QString& field) {
        MakeTable(table, {{u"Reference", dbLong}, {u"Item", dbText}});
        const auto rows = File->OpenRecordset(table, dbOpenTable);
        for (int i = 0; i < 2; ++i) {
            rows->AddNew();
            rows->SetCollect(field, 1);
            rows->Update();
        }
    };
    makeWithDuplicates(QStringLiteral("Messages"), QStringLiteral("Reference"));
    makeWithDuplicates(QStringLiteral("Settings"), QStringLiteral("Item"));

    const auto failureOf = [this](const char16_t* table, const char16_t* field) {
        try {
            auto index = Table(table).CreateIndex(QStringLiteral("Main"));
            index->SetUnique(true);
            index->Fields().Append(index->CreateField(QString::fromUtf16(field)));
            Table(table).Indexes().Append(std::move(index));
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), errDuplicateValue);
            return error.Description();
        }
        ADD_FAILURE() << "the index was made";
        return QString();
    };
    const auto report = [](const QString& words, const QString& description) {
        return QStringLiteral("There was a problem %1 and the error's description was reported as : \n\n\"%2 (3022)\"")
            .arg(words, description);
    };
    const QString messages =
        report(QStringLiteral("adding the indexMain to the Messages table"), failureOf(u"Messages", u"Reference"));
    const QString settings =
        report(QStringLiteral("adding the index 'Main' to the Settings table"), failureOf(u"Settings", u"Item"));
    Ui.ExpectWarning(messages);
    Ui.ExpectWarning(settings);
    EXPECT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);

    // Silent mode keeps the checks of the class quiet, but not that of the settings.
    Station->SetSilentMode(true);
    Ui.ExpectWarning(settings);
    EXPECT_EQ(Station->ValidateTolvaDatabase(FileName()), 0);
}

TEST_F(TableCheckTest, AFileThatCannotBeOpenedIsReportedWithItsNumber)
{
    Station->SetSilentMode(true);
    EXPECT_EQ(Station->ValidateTolvaDatabase(Folder.filePath(QStringLiteral("none.mdb"))), errFileNotFound);
}
