// SPDX-License-Identifier: Apache-2.0

// Damaged stations: what the library answers where it is told to answer, and which backup it offers.

#include "common/FileHelper.h"
#include "core/support/PatientUser.h"
#include "core/support/StationTest.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/records/DBEngine.h"

#include <QFile>
#include <QScopeGuard>

using namespace dao;

namespace
{
constexpr qsizetype PageSize = 4096;

class DamageTest : public StationTest
{
protected:
    void SetUp() override
    {
        Station->SetMakesAutomaticBackups(false);
        OpenStation();
        for (int i = 0; i < 4; ++i)
            References.append(SaveNew(QStringLiteral("Request %1").arg(i)));
    }
    void BackUp()
    {
        Station = std::make_unique<cTolvaDatabase>();
        Station->SetDirectoryDatabase(&Directory);
        Station->SetMakesAutomaticBackups(false);
        OpenStation();
        ASSERT_TRUE(Station->BackupDatabase(true));
        Now.Advance(3600);
    }
    static QByteArray Read(const QString& name)
    {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }
    static void Write(const QString& name, const QByteArray& octets)
    {
        QFile::remove(name + QStringLiteral("-journal"));
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(octets), octets.size());
    }
    QString Copy(const char16_t* name) const
    {
        return BackupFolders::RootOf(FileName()) + u'/' + QString::fromUtf16(name) + QStringLiteral("/Tolva.mdb");
    }
    /// The page without which the table Description opens and its first row cannot be read; 0 for none. Leaves the file
    /// whole.
    static qsizetype DescriptionPage(const QString& file)
    {
        const QByteArray whole = Read(file);
        qsizetype found = 0;
        for (qsizetype page = 1; page < whole.size() / PageSize && found == 0; ++page) {
            Write(file, WithPage(whole, page, QByteArray(PageSize, '\x5A')));
            std::unique_ptr<Database> database;
            std::unique_ptr<Recordset> rows;
            try {
                database = DBEngine::OpenDatabase(file);
                rows = database->OpenRecordset(QStringLiteral("Description"));
            } catch (const Error&) {
                continue;
            }
            try {
                static_cast<void>(rows->AtEOF());
            } catch (const Error&) {
                found = page;
            }
        }
        Write(file, whole);
        return found;
    }
    static QByteArray WithPage(QByteArray whole, qsizetype page, const QByteArray& octets)
    {
        return whole.replace(page * PageSize, PageSize, octets);
    }

    QList<qint32> References;
};

TEST_F(DamageTest, ADescriptionThatCannotBeReadIsAnErrorNumberAndNoException)
{
    Station->CloseTolvaDatabase();
    const QByteArray whole = Read(FileName());
    const qsizetype page = DescriptionPage(FileName());
    ASSERT_GT(page, 0);
    Write(FileName(), WithPage(whole, page, QByteArray(PageSize, '\x5A')));
    DatabaseInformation information;
    EXPECT_EQ(DAO_DatabaseFunctions::GetDatabaseInformation(FileName(), information, false, QString()), errFileDamaged);
    QString title = QStringLiteral("x");
    Ui.ExpectWarning(QStringLiteral("There was a problem opening the description information and the error's "
                                    "description was reported as : \n\n\"The database '%1' is damaged. (database disk "
                                    "image is malformed) (3049)\"")
                         .arg(FileName()));
    EXPECT_EQ(DAO_DatabaseFunctions::ValidateDatabase(FileName(), 31, true, title, QString()), errFileDamaged);
    Ui.ExpectWarning(QStringLiteral("There was a problem opening the description information and the error's "
                                    "description was reported as : \n\n\"The database '%1' is damaged. (database disk "
                                    "image is malformed) (3049)\"")
                         .arg(FileName()));
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), -errFileDamaged);
}

TEST_F(DamageTest, ANewestBackupAnyPageOfWhichIsDamagedHidesNoOlderOne)
{
    BackUp(); // 14.05
    BackUp(); // 15.05
    const QString newest = Copy(u"2026-11-21 15.05");
    const QByteArray whole = Read(newest);
    for (qsizetype page = 0; page < whole.size() / PageSize; ++page) {
        Write(newest, WithPage(whole, page, QByteArray(PageSize, '\x5A')));
        const bool isDamaged = BackupFolders::StateOf(newest) == FileReport::State::Damaged;
        const BackupFolders::Backup found =
            BackupFolders::NewestSound(BackupFolders::RootOf(FileName()), QStringLiteral("Tolva.mdb"));
        EXPECT_EQ(found.Name, isDamaged ? QStringLiteral("2026-11-21 14.05") : QStringLiteral("2026-11-21 15.05"))
            << page;
    }
}

TEST_F(DamageTest, AMailThatChangedOnTheDiskIsShownAsDamagedAndNotSavedAgain)
{
    Station->CloseTolvaDatabase();
    QByteArray octets = Read(FileName());
    // The mail's header, not the copy of the subject that lists show.
    const qsizetype at = octets.indexOf("Subject: Request 2");
    ASSERT_GT(at, 0);
    octets[at + 9] = 'r';
    Write(FileName(), octets);
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    for (const qint32 reference : std::as_const(References)) {
        const cMessagePtr message = Station->GetMessage(reference);
        ASSERT_TRUE(message);
        EXPECT_EQ(message->IsDamaged(), reference == References.at(2));
    }
    const auto messages = Station->GetMessages(QString());
    ASSERT_TRUE(messages);
    EXPECT_EQ(messages->Count(), 4);

    const cMessagePtr damaged = Station->GetMessage(References.at(2));
    EXPECT_TRUE(damaged->CDOMessage()->Octets().contains("Subject: request 2"));
    EXPECT_FALSE(Station->SaveMessage(damaged));
    EXPECT_EQ(Station->LastErrorNumber(), errMemoDamaged);
    EXPECT_FALSE(Station->CopyMessage(References.at(2), tmcSaved));
    EXPECT_EQ(Station->GetMessages(QString())->Count(), 4);
    // Its row can be worked with all the same.
    EXPECT_TRUE(Station->ChangeMessageFlags(References.at(2), mfRead, 0));
    EXPECT_TRUE(Station->MoveMessage(References.at(2), tmcSaved));
    EXPECT_TRUE(Station->GetMessage(References.at(2))->IsDamaged());
    Ui.ExpectWarning(QStringLiteral("A backup of the Directory database could not be be made"));
    EXPECT_FALSE(Station->BackupDatabase(true));
    EXPECT_TRUE(Station->DeleteMessage(References.at(2), true));
    EXPECT_NO_THROW(DBEngine::CheckDatabase(FileName()));
}

TEST_F(DamageTest, AnotherMailMakesADamagedMessageSound)
{
    Station->CloseTolvaDatabase();
    QByteArray octets = Read(FileName());
    octets[octets.indexOf("Subject: Request 1") + 9] = 'r';
    Write(FileName(), octets);
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    const cMessagePtr damaged = Station->GetMessage(References.at(1));
    ASSERT_TRUE(damaged->IsDamaged());
    auto mail = std::make_shared<cdo::Message>();
    mail->SetSubject(QStringLiteral("Anew"));
    damaged->SetCDOMessage(mail);
    EXPECT_FALSE(damaged->IsDamaged());
    EXPECT_TRUE(Station->SaveMessage(damaged));
    EXPECT_FALSE(Station->GetMessage(References.at(1))->IsDamaged());
}

/// What an operation says of itself is answered or told as an error of the store; nothing else comes out of it.
TEST_F(DamageTest, AnyPageMayBeUnreadable)
{
    Station->CloseTolvaDatabase();
    const QByteArray whole = Read(FileName());
    for (qsizetype page = 0; page < whole.size() / PageSize; ++page) {
        for (const QByteArray& octets : {QByteArray(PageSize, '\x5A'), QByteArray(PageSize, '\0'),
                                         whole.mid((page + 3) * PageSize % whole.size(), PageSize)}) {
            SCOPED_TRACE(page);
            Write(FileName(), WithPage(whole, page, octets));
            DatabaseInformation information;
            const int number = DAO_DatabaseFunctions::GetDatabaseInformation(FileName(), information, false, QString());
            const FileReport::State state = BackupFolders::StateOf(FileName());
            EXPECT_TRUE(number == 0 || state == FileReport::State::Damaged) << number;
            for (const QString& kept : QDir(Folder.path()).entryList({QStringLiteral("*.BAK")}))
                QFile::remove(Folder.filePath(kept));
        }
    }
}

/// Raises only where it is told to: at the index of the settings, which stands on a page or two. Behind an open that
/// went well everything answers, and no damaged mail passes for one that is gone.
TEST_F(DamageTest, AStationAnyPageOfWhichIsDamagedOpensOrSaysWhyAndAnswers)
{
    Station->CloseTolvaDatabase();
    const QByteArray whole = Read(FileName());
    PatientUser patient;
    UserInterface::SetCurrent(&patient);
    const auto restore = qScopeGuard([this] { UserInterface::SetCurrent(&Ui); });
    int opened = 0;
    int refused = 0;
    int raised = 0;
    for (qsizetype page = 0; page < whole.size() / PageSize; ++page) {
        for (const QByteArray& octets :
             {WithPage(whole, page, QByteArray(PageSize, '\x5A')), WithPage(whole, page, QByteArray(PageSize, '\0')),
              whole.left(page * PageSize)}) {
            SCOPED_TRACE(page);
            if (octets.isEmpty())
                continue; // an empty file is an absent one, which the open makes
            Write(FileName(), octets);
            patient.Boxes.clear();
            int answer = -1;
            try {
                answer = Station->OpenTolvaDatabase(Folder.path());
                (answer == 0 ? opened : refused) += 1;
            } catch (const Error& error) {
                EXPECT_EQ(error.Number(), errFileDamaged) << qPrintable(error.Description());
                ++raised;
            }
            const bool isAnswered = Station->LastErrorNumber() != 0 || !patient.Boxes.isEmpty();
            EXPECT_TRUE(answer == 0 || answer == -1 || isAnswered) << answer;
            for (const qint32 reference : std::as_const(References)) {
                if (answer == 0 && !Station->GetMessage(reference)) {
                    EXPECT_NE(Station->LastErrorNumber(), 0) << reference;
                }
            }
            if (answer == 0 && !Station->GetMessages(QString())) {
                EXPECT_NE(Station->LastErrorNumber(), 0);
            }
            EXPECT_EQ(Station->CloseTolvaDatabase(), 0);
            for (const QString& kept : QDir(Folder.path()).entryList({QStringLiteral("*.BAK")}))
                QFile::remove(Folder.filePath(kept));
        }
    }
    EXPECT_GT(opened, 0);
    EXPECT_GT(refused, 0);
    EXPECT_LE(raised, 6) << "of " << opened + refused + raised;
    Write(FileName(), whole);
    EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
}
} // namespace
