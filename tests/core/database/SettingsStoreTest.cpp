// SPDX-License-Identifier: Apache-2.0

// Settings of a station, and its details.

#include "core/support/StationTest.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/SettingText.h"
#include "platform/records/DBEngine.h"

#include <QFile>

class SettingsStoreTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }
    /// The stored text of a key, null when there is no row.
    QVariant Stored(const char16_t* key) const
    {
        const auto recordset = OpenTable(QStringLiteral("Settings"));
        recordset->SetIndex(QStringLiteral("Main"));
        recordset->Seek(dao::SeekComparison::Equal, {QString::fromUtf16(key)});
        return recordset->NoMatch() ? QVariant() : recordset->Collect(QStringLiteral("Value"));
    }
    void WriteSongFile(const QByteArray& octets) const
    {
        QFile file(Folder.filePath(QStringLiteral("Tolva.oar")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(octets);
    }
};

TEST_F(SettingsStoreTest, AValueReadsBackAndItsDefaultLeavesNoRow)
{
    const QString key = QStringLiteral("SMS.CurrentSong");
    EXPECT_EQ(Station->DatabaseSetting(key, QStringLiteral("SONG")).toString(), QStringLiteral("SONG"));
    Station->SetDatabaseSetting(key, QStringLiteral("WHAT"), QStringLiteral("SONG"));
    EXPECT_EQ(Station->DatabaseSetting(key, QStringLiteral("SONG")).toString(), QStringLiteral("WHAT"));
    Station->SetDatabaseSetting(key, QStringLiteral("AGAIN"), QStringLiteral("SONG"));
    EXPECT_EQ(Stored(u"SMS.CurrentSong").toString(), QStringLiteral("AGAIN"));
    Station->SetDatabaseSetting(key, QStringLiteral("SONG"), QStringLiteral("SONG"));
    EXPECT_FALSE(Stored(u"SMS.CurrentSong").isValid());
}

TEST_F(SettingsStoreTest, ValuesStandInTheTextFormOfTheirType)
{
    Station->SetDatabaseSetting(QStringLiteral("a"), true, false);
    Station->SetDatabaseSetting(QStringLiteral("b"), 42, 0);
    Station->SetDatabaseSetting(QStringLiteral("c"), QStringLiteral("two\nlines"), QString());
    EXPECT_EQ(Stored(u"a").toString(), QStringLiteral("True"));
    EXPECT_EQ(Stored(u"b").toString(), QStringLiteral("42"));
    EXPECT_EQ(Stored(u"c").toString(), QStringLiteral("two\nlines"));
}

TEST_F(SettingsStoreTest, KeysDifferOnlyInTheirFirst250Characters)
{
    const QString stem(250, QLatin1Char('k'));
    Station->SetDatabaseSetting(stem + QStringLiteral("one"), QStringLiteral("value"), QString());
    EXPECT_EQ(Station->DatabaseSetting(stem + QStringLiteral("two"), QString()).toString(), QStringLiteral("value"));
}

TEST_F(SettingsStoreTest, ReadingNeverFails)
{
    EXPECT_EQ(Station->DatabaseSetting(QString(), 5).toInt(), 5);
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("a"), QStringLiteral("default")).toString(),
              QStringLiteral("default"));
}

TEST_F(SettingsStoreTest, WritingWithoutADatabaseIsShownWhateverTheSilentModeSays)
{
    Station->CloseTolvaDatabase();
    Station->SetSilentMode(true);
    Ui.ExpectWarning(QStringLiteral("There was a problem locating the database setting : Station.Name and the error's "
                                    "description was reported as : \n\n\"No Tolva Database has been opened. (3420)\""));
    Station->SetStationName(QStringLiteral("Harbour FM"));
}

TEST_F(SettingsStoreTest, OnARecordsetOfAQueryTheySearchByTheirName)
{
    const auto file = dao::DBEngine::OpenDatabase(FileName());
    const auto open = [&] {
        return file->OpenRecordset(QStringLiteral("SELECT * FROM [Settings]"), dao::dbOpenDynaset);
    };
    using namespace DAO_DatabaseFunctions;
    EXPECT_EQ(WriteSettingValue(open().get(), QStringLiteral("a"), 3, 0, true), 0);
    EXPECT_EQ(ReadSettingValue(open().get(), QStringLiteral("a"), 0).toInt(), 3);
    EXPECT_EQ(WriteSettingValue(open().get(), QStringLiteral("a"), 4, 0, true), 0);
    EXPECT_EQ(ReadSettingValue(open().get(), QStringLiteral("a"), 0).toInt(), 4);
    EXPECT_EQ(WriteSettingValue(open().get(), QStringLiteral("a"), 0, 0, true), 0);
    EXPECT_EQ(ReadSettingValue(open().get(), QStringLiteral("a"), 7).toInt(), 7);
}

TEST_F(SettingsStoreTest, WithoutARecordsetANameOrARightToWriteNothingHappens)
{
    using namespace DAO_DatabaseFunctions;
    EXPECT_EQ(ReadSettingValue(nullptr, QStringLiteral("a"), 7).toInt(), 7);
    EXPECT_EQ(WriteSettingValue(nullptr, QStringLiteral("a"), 1, 0, true), 0);
    const auto file = dao::DBEngine::OpenDatabase(FileName());
    const auto table = file->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    EXPECT_EQ(WriteSettingValue(table.get(), QString(), 1, 0, true), 0);
    const auto snapshot = file->OpenRecordset(QStringLiteral("SELECT * FROM [Settings]"), dao::dbOpenSnapshot);
    EXPECT_EQ(WriteSettingValue(snapshot.get(), QStringLiteral("a"), 1, 0, true), 0);
    EXPECT_FALSE(Stored(u"a").isValid());
}

TEST_F(SettingsStoreTest, ATableWhoseIndexBearsItsNameIsSearchedByThat)
{
    const auto file = dao::DBEngine::OpenDatabase(FileName());
    auto table = file->CreateTableDef(QStringLiteral("Other"));
    table->Fields().Append(table->CreateField(QStringLiteral("Item"), dao::dbText, 250));
    table->Fields().Append(table->CreateField(QStringLiteral("Value"), dao::dbMemo));
    auto index = table->CreateIndex(QStringLiteral("OtherMain"));
    index->SetUnique(true);
    index->Fields().Append(index->CreateField(QStringLiteral("Item")));
    table->Indexes().Append(std::move(index));
    file->TableDefs().Append(std::move(table));
    const auto open = [&] { return file->OpenRecordset(QStringLiteral("Other"), dao::dbOpenTable); };
    using namespace DAO_DatabaseFunctions;
    EXPECT_EQ(WriteSettingValue(open().get(), QStringLiteral("a"), 3, 0, true), 0);
    EXPECT_EQ(ReadSettingValue(open().get(), QStringLiteral("a"), 0).toInt(), 3);
}

TEST_F(SettingsStoreTest, AFailureIsReportedWithItsStepAndTheSettingsName)
{
    const auto file = dao::DBEngine::OpenDatabase(FileName());
    const auto table = file->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
    const int number = DAO_DatabaseFunctions::WriteSettingValue(table.get(), QStringLiteral("a"), 1, 0, true);
    EXPECT_EQ(number, dao::errItemNotFound);
    const QString description = QStringLiteral("Item 'Item' not found in this collection.");
    Ui.ExpectWarning(QStringLiteral("There was a problem locating the database setting : a and the error's description "
                                    "was reported as : \n\n\"%1 (3265)\"")
                         .arg(description));
    DAO_DatabaseFunctions::WriteSettingValue(table.get(), QStringLiteral("a"), 1, 0, false);
}

TEST_F(SettingsStoreTest, TheNameIsReadWithADefaultThatItIsNotWrittenWith)
{
    EXPECT_EQ(Station->StationName(), QStringLiteral("Radio Station"));
    Station->SetStationName(QStringLiteral("Radio Station"));
    EXPECT_EQ(Stored(u"Station.Name").toString(), QStringLiteral("Radio Station"));
    Station->SetStationName(QString());
    EXPECT_FALSE(Stored(u"Station.Name").isValid());
    EXPECT_EQ(Station->StationName(), QStringLiteral("Radio Station"));
}

TEST_F(SettingsStoreTest, TheStationsDetailsGoToTheirKeys)
{
    Station->SetStationAddress(QStringLiteral("a"));
    Station->SetStationPhoneNumber(QStringLiteral("b"));
    Station->SetStationSMSPhoneNumber(QStringLiteral("c"));
    Station->SetStationCompanyNumber(QStringLiteral("d"));
    Station->SetStationVATNumber(QStringLiteral("e"));
    EXPECT_EQ(Stored(u"Station.Address").toString(), QStringLiteral("a"));
    EXPECT_EQ(Stored(u"Station.PhoneNumber").toString(), QStringLiteral("b"));
    EXPECT_EQ(Stored(u"Station.SMSPhoneNumber").toString(), QStringLiteral("c"));
    EXPECT_EQ(Stored(u"Station.CompanyNumber").toString(), QStringLiteral("d"));
    EXPECT_EQ(Stored(u"Station.VATNumber").toString(), QStringLiteral("e"));
    EXPECT_EQ(Station->StationAddress() + Station->StationPhoneNumber() + Station->StationSMSPhoneNumber() +
                  Station->StationCompanyNumber() + Station->StationVATNumber(),
              QStringLiteral("abcde"));
}

TEST_F(SettingsStoreTest, BackupOptionsHaveTheirDefaultsAndAreStoredAtOnce)
{
    EXPECT_EQ(Station->BackupInterval(), 1440);
    EXPECT_TRUE(Station->EnableAutoBackup());
    EXPECT_EQ(Station->BackupExpiryDays(), 7);
    Station->SetBackupInterval(60);
    Station->SetEnableAutoBackup(false);
    Station->SetBackupExpiryDays(0);
    EXPECT_EQ(Stored(u"Backups.Interval").toString(), QStringLiteral("60"));
    EXPECT_EQ(Stored(u"Backups.EnableAutoBackup").toString(), QStringLiteral("False"));
    EXPECT_EQ(Stored(u"Backups.ExpiryDays").toString(), QStringLiteral("0"));
    Station->ReadDatabaseSettings();
    EXPECT_EQ(Station->BackupInterval(), 60);
    EXPECT_FALSE(Station->EnableAutoBackup());
    EXPECT_EQ(Station->BackupExpiryDays(), 0);
}

TEST_F(SettingsStoreTest, TheHighlightFontHasItsDefaults)
{
    const clsFont& font = Station->MessageHighlightFont();
    EXPECT_EQ(font.Name, QStringLiteral("Tahoma"));
    EXPECT_EQ(font.Size, 3);
    EXPECT_EQ(font.Colour, 255);
    EXPECT_TRUE(font.Bold);
    EXPECT_FALSE(font.Italic || font.Underline || font.Strikethrough);
}

TEST_F(SettingsStoreTest, WritingAndReadingKeepFontAndLabelGeometry)
{
    Station->MessageHighlightFont() = {QStringLiteral("Serif"), 4, 65280, false, true, true, true};
    Station->AddressLabelsPageSetup().SetColumnWidth(99);
    EXPECT_TRUE(Station->WriteDatabaseSettings());
    EXPECT_EQ(Stored(u"Messages.HighLightTextColour").toString(), QStringLiteral("65280"));
    EXPECT_EQ(Stored(u"Messages.HighLightBold").toString(), QStringLiteral("0"));
    EXPECT_EQ(Stored(u"Messages.HighLightStrikeThru").toString(), QStringLiteral("1"));
    EXPECT_EQ(Stored(u"AddressLabels.ColumnWidth").toString(), QStringLiteral("99"));
    EXPECT_FALSE(Stored(u"AddressLabels.RowHeight").isValid());

    cTolvaDatabase other;
    ASSERT_EQ(other.OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(other.MessageHighlightFont().Name, QStringLiteral("Serif"));
    EXPECT_EQ(other.MessageHighlightFont().Size, 4);
    EXPECT_EQ(other.MessageHighlightFont().Colour, 65280);
    EXPECT_FALSE(other.MessageHighlightFont().Bold);
    EXPECT_TRUE(other.MessageHighlightFont().Strikethrough);
    EXPECT_EQ(other.AddressLabelsPageSetup().ColumnWidth(), 99);
    EXPECT_EQ(other.AddressLabelsPageSetup().RowHeight(), 68);
}

TEST_F(SettingsStoreTest, AnotherComputersResetOfTheLabelGeometryIsReadAndSurvives)
{
    Station->AddressLabelsPageSetup().SetColumnWidth(99);
    Station->WriteDatabaseSettings();
    cTolvaDatabase other;
    ASSERT_EQ(other.OpenTolvaDatabase(Folder.path()), 0);
    ASSERT_EQ(other.AddressLabelsPageSetup().ColumnWidth(), 99);
    Station->AddressLabelsPageSetup().SetColumnWidth(104);
    Station->WriteDatabaseSettings();
    other.ReadDatabaseSettings();
    EXPECT_EQ(other.AddressLabelsPageSetup().ColumnWidth(), 104);
    other.WriteDatabaseSettings();
    EXPECT_FALSE(Stored(u"AddressLabels.ColumnWidth").isValid());
}

TEST_F(SettingsStoreTest, TheLabelGeometryStartsAsAStationHasIt)
{
    const cPageSetup& labels = Station->AddressLabelsPageSetup();
    EXPECT_EQ(labels.NumberColumns(), 2);
    EXPECT_EQ(labels.NumberRows(), 4);
    EXPECT_EQ(labels.ColumnWidth(), 104);
    EXPECT_EQ(labels.RowHeight(), 68);
    EXPECT_EQ(labels.TopMargin(), 20);
    EXPECT_EQ(labels.LeftMargin(), 20);
    EXPECT_EQ(labels.BottomMargin(), 10);
    EXPECT_EQ(labels.RightMargin(), 10);
}

TEST_F(SettingsStoreTest, ASettingThatIsNoNumberReadsAsItsDefault)
{
    Station->SetDatabaseSetting(QStringLiteral("Backups.Interval"), QStringLiteral("often"), QString());
    Station->SetDatabaseSetting(QStringLiteral("AddressLabels.RowHeight"), QStringLiteral("tall"), QString());
    Station->ReadDatabaseSettings();
    EXPECT_EQ(Station->BackupInterval(), 1440);
    EXPECT_EQ(Station->AddressLabelsPageSetup().RowHeight(), 68);
}

TEST_F(SettingsStoreTest, AnAddressBecomesOneLine)
{
    Station->SetStationAddress(QStringLiteral("1 Quay Street,\r\nSeaport"));
    EXPECT_EQ(Station->StationAddressString(), QStringLiteral("1 Quay Street, Seaport"));
    Station->SetStationAddress(QStringLiteral("  1 Quay Street , ,\n\n\r Seaport;\rEngland "));
    EXPECT_EQ(Station->StationAddressString(), QStringLiteral("1 Quay Street, Seaport;, England"));
    EXPECT_EQ(Station->StationAddressString(QStringLiteral(";")),
              QStringLiteral("1 Quay Street , ,; Seaport; England"));
}

TEST_F(SettingsStoreTest, AnAddressOfBlankLinesIsEmpty)
{
    EXPECT_EQ(Station->StationAddressString(), QString());
    Station->SetStationAddress(QStringLiteral(" \r\n \n"));
    EXPECT_EQ(Station->StationAddressString(), QString());
}

TEST_F(SettingsStoreTest, TheCurrentSongGoesThroughItsFile)
{
    EXPECT_EQ(Station->CurrentSongFullName(), QString());
    Station->SetCurrentSongFullName(QStringLiteral("The Tides - Harbour Lights"));
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("The Tides - Harbour Lights"));
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->CurrentSongFullName(), QString());
    Station->SetCurrentSongFullName(QStringLiteral("dropped"));
    QFile file(Folder.filePath(QStringLiteral("Tolva.oar")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().trimmed(), QByteArray("CurrentSongFullName=\"The Tides - Harbour Lights\""));
}

TEST_F(SettingsStoreTest, OtherSoftwaresSongFileIsRead)
{
    WriteSongFile("");
    EXPECT_EQ(Station->CurrentSongFullName(), QString());
    WriteSongFile("Other=\"x\"\r\nCURRENTSONGFULLNAME=\"Harbour Lights\"\r\n");
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("Harbour Lights"));
    WriteSongFile("\n\nHarbour Lights\nmore\n");
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("Harbour Lights"));
    WriteSongFile("Other=\"x\"\n");
    EXPECT_EQ(Station->CurrentSongFullName(), QStringLiteral("Other=\"x\""));
    WriteSongFile("\r\n\r");
    EXPECT_EQ(Station->CurrentSongFullName(), QString());
}

TEST(SettingTextTest, NumbersAndFlagsAreReadFromTheirText)
{
    EXPECT_EQ(SettingNumber(QStringLiteral(" 60 "), 1), 60);
    EXPECT_EQ(SettingNumber(QStringLiteral("many"), 1), 1);
    EXPECT_EQ(SettingNumber(QStringLiteral("99999999999"), 1), 1);
    EXPECT_TRUE(SettingFlag(QStringLiteral("True"), false));
    EXPECT_FALSE(SettingFlag(QStringLiteral("false"), true));
    EXPECT_TRUE(SettingFlag(QStringLiteral("-1"), false));
    EXPECT_FALSE(SettingFlag(QStringLiteral("0"), true));
    EXPECT_TRUE(SettingFlag(QStringLiteral("?"), true));
    EXPECT_TRUE(SettingFlag(true, false));
}
