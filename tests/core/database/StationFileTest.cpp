// SPDX-License-Identifier: Apache-2.0

// Opening and closing a station.

#include "core/support/StationTest.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>

namespace
{
const QString MachineKey = QStringLiteral("SOFTWARE\\Kelvarin");

InputBoxRequest StationNameQuestion(const QString& preset = QStringLiteral("My Radio Station Name"))
{
    InputBoxRequest request;
    request.Prompt = QStringLiteral("What is the name of your Station?\n\n"
                                    "(Your database will be given this name as well)");
    request.Title = QStringLiteral("Open Tolva Database");
    request.Default = preset;
    request.MaxLength = 200;
    return request;
}

/// The words of an engine's error, to be found again in a report.
QString DescriptionOf(const QString& fileName)
{
    try {
        dao::DBEngine::OpenDatabase(fileName);
    } catch (const dao::Error& error) {
        return error.Description();
    }
    ADD_FAILURE() << "the file opened";
    return QString();
}

QString Problem(const QString& text, const QString& description, int number)
{
    return QStringLiteral("There was a problem %1 and the error's description was reported as : \n\n\"%2 (%3)\"")
        .arg(text, description, QString::number(number));
}
} // namespace

class StationFileTest : public StationTest
{
protected:
    void Write(const QByteArray& octets) const
    {
        QFile file(FileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(octets);
    }
    /// Changes the one row of Description, as another program might.
    void SetDescriptionField(const char16_t* field, const QVariant& value) const
    {
        const auto recordset = OpenTable(QStringLiteral("Description"));
        recordset->MoveFirst();
        recordset->Edit();
        recordset->SetCollect(QString::fromUtf16(field), value);
        recordset->Update();
    }
    QVariant DescriptionField(const char16_t* field) const
    {
        const auto recordset = OpenTable(QStringLiteral("Description"));
        return recordset->Collect(QString::fromUtf16(field));
    }
    /// A station that is complete, closed again.
    void MakeStation()
    {
        OpenStation();
        Station->CloseTolvaDatabase();
        Directory.User.Log.clear();
    }
};

TEST_F(StationFileTest, WithoutALocationItFailsAndSaysSoInTheUserLog)
{
    EXPECT_EQ(Station->OpenTolvaDatabase(QString()), -1);
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("1 Tolva Database Opened: No Database specified (0)")});
}

TEST_F(StationFileTest, AMissingFolderIsNotMade)
{
    const QString folder = Folder.filePath(QStringLiteral("nowhere"));
    EXPECT_EQ(Station->OpenTolvaDatabase(folder), -1);
    EXPECT_FALSE(QDir(folder).exists());
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("1 Tolva Database Opened: '%1' - Path not found (0)").arg(folder)});
}

TEST_F(StationFileTest, WithoutADirectoryTheLogEntriesVanish)
{
    Station->SetDirectoryDatabase(nullptr);
    EXPECT_EQ(Station->OpenTolvaDatabase(QString()), -1);
    EXPECT_TRUE(Audit().isEmpty());
}

TEST_F(StationFileTest, AnEmptyFolderGetsADatabaseThatLacksOnlyItsPhoneNumber)
{
    Ui.ExpectMessageBox(StationDetailsBox());
    Ui.ExpectDatabaseSettings([](cTolvaDatabase& database) {
        EXPECT_EQ(database.StationName(), QStringLiteral("Radio Station"));
        database.SetStationPhoneNumber(QStringLiteral("01632 960100"));
        return true;
    });
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->Description(), QStringLiteral("Kelvarin Tolva Database"));
    EXPECT_EQ(Station->Location(), Folder.path());
    EXPECT_EQ(Station->DatabaseReference(), QStringLiteral("Tolva"));
    EXPECT_EQ(Station->Information().Type, 31);
    EXPECT_EQ(Station->Information().FileName, QStringLiteral("Tolva.mdb"));
    EXPECT_FALSE(Station->Information().IsServerDatabase);
    EXPECT_EQ(Audit(),
              QStringList{QStringLiteral("1 Tolva Database Opened: Kelvarin Tolva Database (%1) (1)").arg(FileName())});
    EXPECT_EQ(DescriptionField(u"Type").toInt(), 31);
    EXPECT_FLOAT_EQ(DescriptionField(u"Version").toFloat(), 1.071F);
}

TEST_F(StationFileTest, CancelledSettingsFailTheOpenAndLeaveTheDatabaseOpen)
{
    Ui.ExpectMessageBox(StationDetailsBox());
    Ui.ExpectDatabaseSettings([](cTolvaDatabase&) { return false; });
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), -1);
    EXPECT_TRUE(Station->IsOpen());
    EXPECT_EQ(Audit(),
              QStringList{QStringLiteral("1 Tolva Database Opened: Kelvarin Tolva Database (%1) (0)").arg(FileName())});
}

TEST_F(StationFileTest, AUserWithoutTheRightNeverSeesTheSettings)
{
    Directory.User.Rights = 0;
    Ui.ExpectMessageBox(StationDetailsBox());
    Ui.ExpectWarning(QStringLiteral("You are not allowed to use or alter the Tolva Database's Settings"));
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), -1);
}

TEST_F(StationFileTest, ANamelessDatabaseAsksForItsName)
{
    MakeStation();
    SetDescriptionField(u"Description", QVariant());
    Ui.ExpectInputBox(StationNameQuestion(), QStringLiteral("Harbour FM"));
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->Description(), QStringLiteral("Harbour FM"));
    EXPECT_EQ(DescriptionField(u"Description").toString(), QStringLiteral("Harbour FM"));
}

TEST_F(StationFileTest, ACancelledNameIsAskedForAgainAtTheNextOpen)
{
    MakeStation();
    SetDescriptionField(u"Description", QVariant());
    for (int i = 0; i < 2; ++i) {
        Ui.ExpectInputBoxCancelled(StationNameQuestion());
        EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
        EXPECT_EQ(Station->Description(), QString());
    }
}

TEST_F(StationFileTest, TheStructureOfACurrentDatabaseIsCheckedOnlyWhenTheMachineAsksForIt)
{
    // A current version number over no tables at all.
    QString title = QStringLiteral("Bare");
    ASSERT_EQ(DAO_DatabaseFunctions::ValidateDatabase(FileName(), 31, true, title, QString()), 0);
    SetDescriptionField(u"Version", 1.071);
    EXPECT_THROW(Station->OpenTolvaDatabase(Folder.path()), dao::Error);

    Machine.Set(MachineKey, QStringLiteral("AlwaysValidateDatabases"), QStringLiteral("1"));
    Ui.ExpectMessageBox(StationDetailsBox());
    Ui.ExpectDatabaseSettings([](cTolvaDatabase& database) {
        database.SetStationPhoneNumber(QStringLiteral("01632 960100"));
        return true;
    });
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_NE(Station->MessageCategories().FindCategory(tmcInbox), nullptr);
}

TEST_F(StationFileTest, AnOlderDatabaseIsBroughtUpToDate)
{
    MakeStation();
    SetDescriptionField(u"Version", 1.0);
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_FLOAT_EQ(DescriptionField(u"Version").toFloat(), 1.071F);
}

TEST_F(StationFileTest, ASettingsTableWithoutItsIndexRaisesAnError)
{
    QString title = QStringLiteral("Bare");
    ASSERT_EQ(DAO_DatabaseFunctions::ValidateDatabase(FileName(), 31, true, title, QString()), 0);
    SetDescriptionField(u"Version", 1.071);
    {
        const auto database = dao::DBEngine::OpenDatabase(FileName());
        auto settings = database->CreateTableDef(QStringLiteral("Settings"));
        settings->Fields().Append(settings->CreateField(QStringLiteral("Item"), dao::dbText, 250));
        database->TableDefs().Append(std::move(settings));
    }
    try {
        Station->OpenTolvaDatabase(Folder.path());
        ADD_FAILURE() << "it opened";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errNotAnIndex);
    }
}

TEST_F(StationFileTest, AFileThatIsNoDatabaseFailsWithItsNumberNegatedAndStaysAsItIs)
{
    Write("This is no database, but somebody's shopping list.");
    const QString description = DescriptionOf(FileName());
    Ui.ExpectWarning(
        Problem(QStringLiteral("opening the database ") + FileName(), description, dao::errUnrecognisedFormat));
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), -dao::errUnrecognisedFormat);
    EXPECT_EQ(
        Audit(),
        QStringList{QStringLiteral("1 Tolva Database Opened: '%1' Failed validation (&HD0F) (0)").arg(FileName())});
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("This is no database, but somebody's shopping list."));
}

TEST_F(StationFileTest, ADamagedFileNeverCrashes)
{
    MakeStation();
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    file.close();
    for (const qsizetype size : {qsizetype(1), qsizetype(15), qsizetype(100), whole.size() / 2, whole.size() - 1}) {
        Write(whole.left(size));
        bool opened = false;
        try {
            const auto database = dao::DBEngine::OpenDatabase(FileName());
            opened = true;
        } catch (const dao::Error& error) {
            EXPECT_TRUE(error.Number() == dao::errUnrecognisedFormat || error.Number() == dao::errFileDamaged)
                << error.Number() << " at " << size;
        }
        EXPECT_FALSE(opened) << size;
    }
}

TEST_F(StationFileTest, AConnectStringWithoutAServerEngineIsAnErrorAndMakesNoFile)
{
    const QString connect = QStringLiteral("ODBC;DSN=station");
    QString description;
    try {
        dao::DBEngine::CreateWorkspace(QString(), QString(), QString(), dao::dbUseODBC)
            ->OpenConnection(QString(), dao::dbDriverNoPrompt, false, connect);
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errNotSupported);
        description = error.Description();
    }
    // The open is silent about what it tries on the server; the words are in the log.
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path(), connect), -dao::errNotSupported);
    EXPECT_FALSE(description.isEmpty());
    EXPECT_FALSE(QFile::exists(FileName()));
    EXPECT_FALSE(Station->IsOpen());
}

TEST_F(StationFileTest, OpeningWhileOpenClosesFirst)
{
    OpenStation();
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(
        Audit(),
        (QStringList{QStringLiteral("2 Tolva Database Closed: Kelvarin Tolva Database (%1) (1)").arg(FileName()),
                     QStringLiteral("1 Tolva Database Opened: Kelvarin Tolva Database (%1) (1)").arg(FileName())}));
}

TEST_F(StationFileTest, ClosingWritesWhenAndByWhatTheFileWasUsed)
{
    OpenStation();
    EXPECT_EQ(Station->CloseTolvaDatabase(), 0);
    EXPECT_FALSE(Station->IsOpen());
    EXPECT_EQ(DescriptionField(u"LastAccessed").toString(), QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_EQ(DescriptionField(u"LastAccessedSoftware").toString(), QStringLiteral("Tolva - 0.2.0"));
    EXPECT_EQ(Station->Information().EngineVersion, QStringLiteral("0"));
    EXPECT_EQ(Station->Information().Type, 0);
    EXPECT_EQ(Station->Location(), QString());
    EXPECT_EQ(Station->Description(), QString());
    EXPECT_EQ(Station->DatabaseReference(), QString());
}

TEST_F(StationFileTest, TheNextOpenReadsWhenTheFileWasUsed)
{
    MakeStation();
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->Information().LastAccessed.GeneralDate(), QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_EQ(Station->Information().LastAccessedSoftware, QStringLiteral("Tolva - 0.2.0"));
    EXPECT_FLOAT_EQ(Station->Information().Version, 1.071F);
    EXPECT_FALSE(Station->Information().EngineVersion.isEmpty());
}

TEST_F(StationFileTest, ClosingAClosedObjectWritesNothing)
{
    EXPECT_EQ(Station->CloseTolvaDatabase(), 0);
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_EQ(Ui.BusyCount(), 0);
}

TEST_F(StationFileTest, AStationOpensAgainAtItsOwnLocation)
{
    OpenStation();
    EXPECT_EQ(Station->OpenTolvaDatabase(Station->Location()), 0);
    EXPECT_EQ(Station->OpenTolvaDatabase(Station->Location(), Station->Information().Connect), 0);
    EXPECT_EQ(QDir(Station->Location()), QDir(Folder.path()));
}

TEST_F(StationFileTest, DestroyingClosesTheFile)
{
    OpenStation();
    Station.reset();
    EXPECT_EQ(Audit().size(), 1);
    EXPECT_EQ(DescriptionField(u"LastAccessed").toString(), QStringLiteral("21/11/2026 14:05:09"));
}

TEST_F(StationFileTest, TheFirstOpenerFixesRecordLocksUnlessTheMachineSaysOtherwise)
{
    EXPECT_EQ(Station->DatabaseLockingMode(), LockingMode::Unknown);
    OpenStation();
    EXPECT_EQ(Station->DatabaseLockingMode(), LockingMode::RecordLevel);
    Station->CloseTolvaDatabase();
    Machine.Set(MachineKey + QStringLiteral("\\Utils\\Databases"), QStringLiteral("UseRecordLevelLocking"),
                QStringLiteral("0"));
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->DatabaseLockingMode(), LockingMode::PageLevel);
}

TEST_F(StationFileTest, EachStepStandsInTheLogInItsOrder)
{
    MakeStation();
    const QTemporaryDir logs;
    Machine.Set(MachineKey, QStringLiteral("DebugPath"), logs.path());
    cTolvaDatabase::SetDebugMode(1);
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    cTolvaDatabase::SetDebugMode(0);
    const QStringList files = QDir(logs.path()).entryList(QDir::Files);
    ASSERT_EQ(files.size(), 1);
    QFile file(logs.filePath(files.first()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList lines;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        lines.append(line.mid(9)); // behind the time
    EXPECT_EQ(lines, (QStringList{
                         QStringLiteral("Closing any previous Database"),
                         QStringLiteral("Validating Database (General)"),
                         QStringLiteral("Reading Database Information"),
                         QStringLiteral("Opening Database"),
                         QStringLiteral("Opening ADO Connection to Database"),
                         QStringLiteral("Setting ADO Locking mode to Record Level"),
                         QStringLiteral("Opening database (ADO)"),
                         QStringLiteral("Opening database (DAO)"),
                         QStringLiteral("Closing database (ADO)"),
                         QStringLiteral("Checking Settings Table"),
                         QStringLiteral("Reading Database Settings"),
                     }));
}
