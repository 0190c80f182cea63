// SPDX-License-Identifier: Apache-2.0

// A database as a file: making, reading and compacting it.

#include "common/PendingError.h"
#include "core/support/StationTest.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/Leftovers.h"
#include "platform/records/DBEngine.h"
#include "support/FaultyFileSystem.h"
#include "support/ScriptedFileDialog.h"

#include <QDir>
#include <QFile>

using namespace DAO_DatabaseFunctions;

namespace
{
QString Question(const QString& name)
{
    return QStringLiteral("Warning : The database must be closed on all computers before you can Compact/Repair it!\n"
                          "You should ensure that you have a backup of the database before proceeding\n\n"
                          "Are you sure you want to continue compacting/repairing:\n\n\t%1")
        .arg(name);
}

const QString CompactTitle = QStringLiteral("Compact/Repair Database");
} // namespace

class DatabaseUtilitiesTest : public StationTest
{
protected:
    qint16 Validate(const QString& name, bool silent = true, const QString& title = QStringLiteral("Test"))
    {
        QString text = title;
        return ValidateDatabase(name, 31, silent, text, QString());
    }
    DatabaseInformation Read(const QString& name)
    {
        DatabaseInformation information;
        EXPECT_EQ(GetDatabaseInformation(name, information, false, QString()), 0);
        return information;
    }
    void Write(const QString& name, const QByteArray& octets) const
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(octets);
    }
    QStringList AllFiles() const { return QDir(Folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    QStringList Files() const { return QDir(Folder.path()).entryList(QDir::Files, QDir::Name); }
};

TEST_F(DatabaseUtilitiesTest, ANameWithoutItsEndingGetsIt)
{
    EXPECT_EQ(Validate(Folder.filePath(QStringLiteral("one"))), 0);
    EXPECT_EQ(Validate(Folder.filePath(QStringLiteral("two.MDB"))), 0);
    EXPECT_EQ(Files(), (QStringList{QStringLiteral("one.mdb"), QStringLiteral("two.MDB")}));
    EXPECT_EQ(Read(Folder.filePath(QStringLiteral("one"))).Path, Folder.filePath(QStringLiteral("one.mdb")));
}

TEST_F(DatabaseUtilitiesTest, MissingFoldersAreMade)
{
    EXPECT_EQ(Validate(Folder.filePath(QStringLiteral("a/b/one.mdb"))), 0);
    EXPECT_EQ(Read(Folder.filePath(QStringLiteral("a/b/one.mdb"))).Description, QStringLiteral("Test"));
}

TEST_F(DatabaseUtilitiesTest, AFileOfNoLengthCountsAsAbsent)
{
    Write(FileName(), QByteArray());
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation(FileName(), information, true, QString()), -1);
    EXPECT_EQ(Validate(FileName()), 0);
    EXPECT_EQ(Read(FileName()).Type, 31);
}

TEST_F(DatabaseUtilitiesTest, UnlessSilentTheUserIsAskedBeforeAFileIsMade)
{
    const QString question =
        QStringLiteral("The database %1 does not exist. Would you like to create it?").arg(FileName());
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    EXPECT_EQ(Validate(FileName(), false), -1);
    EXPECT_FALSE(QFile::exists(FileName()));
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    EXPECT_EQ(Validate(FileName(), false), 0);
    EXPECT_TRUE(QFile::exists(FileName()));
}

TEST_F(DatabaseUtilitiesTest, UnlessSilentATitleIsAskedFor)
{
    InputBoxRequest request;
    request.Prompt = QStringLiteral("Please enter a suitable description for this database");
    Ui.ExpectConfirmation(
        QStringLiteral("The database %1 does not exist. Would you like to create it?").arg(FileName()),
        MessageBoxAnswer::Yes);
    Ui.ExpectInputBox(request, QStringLiteral("  Harbour FM "));
    QString title;
    EXPECT_EQ(ValidateDatabase(FileName(), 31, false, title, QString()), 0);
    EXPECT_EQ(Read(FileName()).Description, QStringLiteral("Harbour FM"));
}

TEST_F(DatabaseUtilitiesTest, WithoutATitleThereIsOneAllTheSame)
{
    QString title;
    EXPECT_EQ(ValidateDatabase(FileName(), 31, true, title, QString()), 0);
    EXPECT_EQ(title, QStringLiteral("You have to have a title!"));
    EXPECT_EQ(Read(FileName()).Description, QStringLiteral("You have to have a title!"));
}

TEST_F(DatabaseUtilitiesTest, ARowThatStandsIsKept)
{
    EXPECT_EQ(Validate(FileName(), true, QStringLiteral("First")), 0);
    EXPECT_EQ(Validate(FileName(), true, QStringLiteral("Second")), 0);
    EXPECT_EQ(Read(FileName()).Description, QStringLiteral("First"));
    EXPECT_EQ(OpenTable(QStringLiteral("Description"))->RecordCount(), 1);
}

TEST_F(DatabaseUtilitiesTest, TheDescriptionTableHasItsShape)
{
    ASSERT_EQ(Validate(FileName()), 0);
    const auto database = dao::DBEngine::OpenDatabase(FileName());
    dao::TableDef& table = database->TableDefs().Item(QStringLiteral("Description"));
    QStringList fields;
    for (int i = 0; i < table.Fields().Count(); ++i) {
        const dao::Field& field = table.Fields().Item(i);
        fields.append(QStringLiteral("%1 %2").arg(field.Name()).arg(field.Type()));
        EXPECT_FALSE(field.AllowZeroLength());
        if (field.Type() == dao::dbText) {
            EXPECT_EQ(field.Size(), 200);
        }
    }
    EXPECT_EQ(fields, (QStringList{QStringLiteral("Description 10"), QStringLiteral("Version 6"),
                                   QStringLiteral("Type 4"), QStringLiteral("LastAccessed 10"),
                                   QStringLiteral("LastAccessedSoftware 10"), QStringLiteral("LastBackup 10")}));
    const dao::Index& index = table.Indexes().Item(QStringLiteral("Main"));
    EXPECT_TRUE(index.Unique());
    EXPECT_FALSE(index.Primary());
}

TEST_F(DatabaseUtilitiesTest, AnOlderDescriptionTableReadsWithVersionZeroAndIsCompleted)
{
    {
        const auto database = dao::DBEngine::CreateDatabase(FileName(), QString());
        auto table = database->CreateTableDef(QStringLiteral("Description"));
        table->Fields().Append(table->CreateField(QStringLiteral("Description"), dao::dbText, 200));
        table->Fields().Append(table->CreateField(QStringLiteral("Type"), dao::dbLong));
        database->TableDefs().Append(std::move(table));
        const auto rows = database->OpenRecordset(QStringLiteral("Description"));
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Description"), QStringLiteral("Old"));
        rows->Update();
    }
    const DatabaseInformation information = Read(FileName());
    EXPECT_EQ(information.Version, 0.0F);
    EXPECT_EQ(information.Description, QStringLiteral("Old"));
    EXPECT_EQ(information.Location, Folder.path());
    EXPECT_EQ(Validate(FileName()), 0);
    EXPECT_FALSE(OpenTable(QStringLiteral("Description"))->Collect(QStringLiteral("LastBackup")).isValid());
}

TEST_F(DatabaseUtilitiesTest, AnEmptyDescriptionTableReadsAsNoNameAndIsToldOnlyWhenAsked)
{
    ASSERT_EQ(Validate(FileName()), 0);
    OpenTable(QStringLiteral("Description"))->Delete();
    EXPECT_EQ(Read(FileName()).Description, QString());
    Ui.ExpectMessageBox({QStringLiteral("There was no Description information in the database.\n\n%1\n\n"
                                        "Please contact Kelvarin Ltd.")
                             .arg(FileName()),
                         QString(), MessageBoxButtons::OK, MessageBoxIcon::Stop, MessageBoxAnswer::OK});
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation(FileName(), information, true, QString()), 0);
    EXPECT_EQ(information.Path, FileName());
}

TEST_F(DatabaseUtilitiesTest, AMissingDescriptionTableIsToldWithItsNumber)
{
    dao::DBEngine::CreateDatabase(FileName(), QString())->Close();
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation(FileName(), information, false, QString()), dao::errTableNotFound);
    EXPECT_EQ(information.Path, QString());
}

TEST_F(DatabaseUtilitiesTest, AFileThatIsNoDatabaseIsOfferedForRepairAndStaysOnNo)
{
    Write(FileName(), QByteArray(5000, 'x'));
    Ui.ExpectConfirmation(Question(FileName()), MessageBoxAnswer::No, CompactTitle);
    DatabaseInformation information;
    EXPECT_EQ(GetDatabaseInformation(FileName(), information, true, QString()), -1);
    EXPECT_EQ(GetDatabaseInformation(FileName(), information, false, QString()), -1);
    EXPECT_EQ(Files(), QStringList{QStringLiteral("Tolva.mdb")});
    EXPECT_EQ(QFile(FileName()).size(), 5000);
}

TEST_F(DatabaseUtilitiesTest, CompactingKeepsTheRowsAndTheOldFileUnderTheNextFreeName)
{
    OpenStation();
    const qint32 reference = SaveNew(QStringLiteral("Request"));
    Station->CloseTolvaDatabase();
    const QString done =
        QStringLiteral("Your Database has been successfully Compacted/Repaired and the old version saved "
                       "in a new file with a '.BAK' extension");
    Ui.ExpectConfirmation(Question(FileName()), MessageBoxAnswer::Yes, CompactTitle);
    Ui.ExpectMessageBox({done, QString(), MessageBoxButtons::OK, MessageBoxIcon::Information, MessageBoxAnswer::OK});
    EXPECT_TRUE(CompactRepairDatabase(FileName(), nullptr, QString(), false));
    EXPECT_TRUE(CompactRepairDatabase(FileName(), nullptr, QString(), true));
    EXPECT_EQ(
        Files().filter(QStringLiteral("Tolva")),
        (QStringList{QStringLiteral("Tolva-0001.BAK"), QStringLiteral("Tolva-0002.BAK"), QStringLiteral("Tolva.mdb")}));
    OpenStation();
    EXPECT_EQ(Station->GetMessage(reference)->CDOMessage()->Subject(), QStringLiteral("Request"));
    EXPECT_GT(SaveNew(QStringLiteral("next")), reference);
}

TEST_F(DatabaseUtilitiesTest, AFailedCompactionLeavesEverythingAsItWas)
{
    Write(FileName(), QByteArray(5000, 'x'));
    EXPECT_FALSE(CompactRepairDatabase(FileName(), nullptr, QString(), true));
    EXPECT_EQ(Files(), QStringList{QStringLiteral("Tolva.mdb")});
}

TEST_F(DatabaseUtilitiesTest, TheMachineNamesTheEngineOfNewFiles)
{
    const QString key = QStringLiteral("SOFTWARE\\Kelvarin\\Utils\\Databases");
    const QString value = QStringLiteral("NewDatabaseEngine");
    Machine.Set(key, value, QStringLiteral("abacus"));
    Ui.ExpectWarning(QStringLiteral("There was a problem creating the new database and the error's description was "
                                    "reported as : \n\n\"No database engine that makes new files is named 'abacus'. "
                                    "Use one of these: sqlite, jet. (3265)\""));
    EXPECT_EQ(Validate(FileName()), dao::errItemNotFound);
    EXPECT_FALSE(QFile::exists(FileName()));
    Machine.Set(key, value, QStringLiteral("SQLite"));
    EXPECT_EQ(Validate(FileName()), 0);
    // What a file is, it tells itself.
    Machine.Set(key, value, QStringLiteral("abacus"));
    EXPECT_EQ(Validate(FileName()), 0);
    EXPECT_EQ(Read(FileName()).Type, 31);
}

TEST_F(DatabaseUtilitiesTest, WithoutAHostsDialogNobodyChoosesAFile)
{
    const auto dialog = FileDialog::Create();
    dialog->Filename = QStringLiteral("kept.mdb");
    dialog->ShowOpen();
    dialog->ShowSave();
    EXPECT_EQ(dialog->Filename, QStringLiteral("kept.mdb"));
    dialog->CancelError = true;
    EXPECT_THROW(dialog->ShowOpen(), dao::Error);
    EXPECT_THROW(dialog->ShowSave(), dao::Error);
}

TEST_F(DatabaseUtilitiesTest, WithoutANameTheDialogAsks)
{
    EXPECT_FALSE(CompactRepairDatabase(QString(), nullptr, Folder.path(), true));
    ScriptedFileDialog user;
    user.ExpectOpenCancelled();
    EXPECT_FALSE(CompactRepairDatabase(QString(), FileDialog::Create().get(), Folder.path(), true));
    const ScriptedFileDialog::Request& asked = user.Requests().first();
    EXPECT_EQ(asked.Filter, QStringLiteral("Databases|*.MDB"));
    EXPECT_EQ(asked.FilterIndex, 1);
    EXPECT_EQ(asked.DialogTitle, QStringLiteral("Select Database to Compact"));
    EXPECT_EQ(asked.Flags, 4100);
    EXPECT_TRUE(asked.CancelError);
    EXPECT_EQ(asked.InitDir, Folder.path() + QDir::separator());
    EXPECT_EQ(asked.Filename, QStringLiteral("*.MDB"));
    user.ExpectOpen(Folder.filePath(QStringLiteral("none.mdb")));
    EXPECT_FALSE(CompactRepairDatabase(QString(), FileDialog::Create().get(), Folder.path(), true));
    ASSERT_EQ(Validate(FileName()), 0);
    user.ExpectOpen(FileName());
    EXPECT_TRUE(CompactRepairDatabase(QString(), FileDialog::Create().get(), Folder.path(), true));
}

TEST_F(DatabaseUtilitiesTest, ACompactionOnADiskThatFailsAtAnyCallIsDoneWholeOrNotAtAll)
{
    ASSERT_EQ(Validate(FileName(), true, QStringLiteral("Before")), 0);
    int failures = 0;
    for (int number = 1;; ++number) {
        PendingError failure;
        QString kept;
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full, FaultyFileSystem::Fault::Tears);
        const bool isDone = CompactRepairDatabase(FileName(), nullptr, QString(), true, &failure, &kept);
        if (files.Calls() < number) {
            EXPECT_TRUE(isDone);
            break;
        }
        SCOPED_TRACE(testing::Message() << number << ": " << files.NameOfCall(number).constData());
        EXPECT_EQ(failure.Number() == 0, isDone);
        EXPECT_EQ(QFile::exists(kept), isDone);
        if (isDone)
            QFile::remove(kept);
        failures += isDone ? 0 : 1;
        EXPECT_NO_THROW(dao::DBEngine::CheckDatabase(FileName()));
        EXPECT_EQ(Read(FileName()).Description, QStringLiteral("Before"));
        Leftovers::Remove(FileName()); // what could not be removed then
        EXPECT_EQ(AllFiles(), QStringList(QStringLiteral("Tolva.mdb")));
    }
    EXPECT_GT(failures, 8);
}
