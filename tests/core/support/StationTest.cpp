// SPDX-License-Identifier: Apache-2.0
#include "core/support/StationTest.h"

#include "common/LibraryFolder.h"
#include "platform/records/DBEngine.h"

StationTest::StationTest() : Station(std::make_unique<cTolvaDatabase>())
{
    Station->SetDirectoryDatabase(&Directory);
    Station->SetMakesAutomaticBackups(false);
    LibraryFolder::SetCurrent(Folder.path());
}

StationTest::~StationTest()
{
    LibraryFolder::SetCurrent(QString());
}

MessageBoxRequest StationDetailsBox()
{
    return {QStringLiteral("You must enter a Name and Phone Number for your station before you can continue"),
            QString(), MessageBoxButtons::OK, MessageBoxIcon::Information, MessageBoxAnswer::OK};
}

void StationTest::PutOnServer()
{
    Schema = TestServer::Shared().NewSchema();
    dao::DBEngine::CreateLinkedDatabase(FileName(), TestServer::Shared().Connect(Schema.Name));
}

void StationTest::OpenStation()
{
    const QString wanted = qEnvironmentVariable("TOLVA_TEST_STATION");
    if (!QFile::exists(FileName()) && wanted == QLatin1String("server"))
        PutOnServer();
    else if (!QFile::exists(FileName()) && !wanted.isEmpty())
        dao::DBEngine::CreateDatabase(FileName(), QString(), wanted)->Close();
    if (!QFile::exists(FileName()) || dao::DBEngine::OpenDatabase(FileName())->TableDefs().Count() == 0) {
        Ui.ExpectMessageBox(StationDetailsBox());
        Ui.ExpectDatabaseSettings([](cTolvaDatabase& database) {
            database.SetStationPhoneNumber(QStringLiteral("01632 960100"));
            return true;
        });
    }
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    Directory.User.Log.clear();
}

QStringList StationTest::Audit() const
{
    QStringList lines;
    for (const AuditEntry& entry : Directory.User.Log) {
        EXPECT_EQ(entry.ClassNumber, 32);
        EXPECT_EQ(entry.Reference, 0);
        lines.append(QStringLiteral("%1 %2: %3 (%4)")
                         .arg(QString::number(entry.Kind), entry.Title, entry.Text, QString::number(entry.Code)));
    }
    return lines;
}

cMessagePtr StationTest::MakeMessage(const QString& subject, const QString& from)
{
    auto message = std::make_shared<cMessage>();
    message->CDOMessage()->SetFrom(from);
    message->CDOMessage()->SetTo(QStringLiteral("studio@example.org"));
    message->CDOMessage()->SetSubject(subject);
    message->CDOMessage()->SetTextBody(QStringLiteral("Please play it again."));
    return message;
}

qint32 StationTest::SaveNew(const QString& subject, enTolvaMessageCategories category)
{
    const cMessagePtr message = MakeMessage(subject);
    message->SetCategory(category);
    EXPECT_TRUE(Station->SaveMessage(message));
    return message->Reference();
}

std::unique_ptr<dao::Recordset> StationTest::OpenTable(const QString& name) const
{
    Second_ = dao::DBEngine::OpenDatabase(FileName());
    return Second_->OpenRecordset(name, dao::dbOpenTable);
}
