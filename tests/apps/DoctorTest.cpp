// SPDX-License-Identifier: Apache-2.0

// tolva doctor.

#include "SendTest.h"

#include <QCryptographicHash>
#include <QDirIterator>

class DoctorTest : public SendTest
{
protected:
    void SetUp() override
    {
        SendTest::SetUp();
        Expect("backup");
    }
    Outcome Doctor(const QStringList& words = {}) const { return OnStation("doctor", words); }
    /// The finding on a subject.
    QJsonObject Of(const char* subject, const QStringList& words = {}) const
    {
        for (const QByteArray& line : Doctor(QStringList{QStringLiteral("--json")} + words).Lines()) {
            const QJsonObject finding = QJsonDocument::fromJson(line).object();
            if (finding.value(QStringLiteral("subject")).toString() == QLatin1String(subject))
                return finding;
        }
        ADD_FAILURE() << "nothing on " << subject;
        return {};
    }
    /// Whether a subject is a problem, with these words and advice, of which the code tells as well.
    void ExpectProblem(const char* subject, const char* words, const char* advice,
                       const QStringList& options = {}) const
    {
        const QJsonObject finding = Of(subject, options);
        EXPECT_EQ(finding.value(QStringLiteral("level")).toString(), QStringLiteral("problem")) << subject;
        const QString said = finding.value(QStringLiteral("words")).toString();
        EXPECT_TRUE(said.contains(QLatin1String(words))) << said.toStdString();
        const QString advised = finding.value(QStringLiteral("advice")).toString();
        EXPECT_TRUE(advised.contains(QLatin1String(advice))) << advised.toStdString();
        EXPECT_EQ(Doctor(options).Code, 65);
    }
    void SetSetting(const QString& key, const QString& value) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        const auto rows = database->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {key});
        if (rows->NoMatch())
            rows->AddNew();
        else
            rows->Edit();
        rows->SetCollect(QStringLiteral("Item"), key);
        rows->SetCollect(QStringLiteral("Value"), value);
        rows->Update();
        database->Close();
    }
    /// Every name in the station's folder with its content.
    QMap<QString, QByteArray> Everything() const
    {
        QMap<QString, QByteArray> all;
        QDirIterator files(Station(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString name = files.next();
            all.insert(name, QCryptographicHash::hash(Read(name), QCryptographicHash::Sha256));
        }
        return all;
    }
};

TEST_F(DoctorTest, AStationInOrderIsToldAsSuchAndNothingIsChanged)
{
    FileMail(Mail("Hello"));
    const QMap<QString, QByteArray> before = Everything();
    const Outcome outcome = Doctor();
    EXPECT_EQ(outcome.Code, 0) << outcome.Output.constData();
    EXPECT_EQ(outcome.Problems, "");
    EXPECT_FALSE(outcome.Output.contains("problem")) << outcome.Output.constData();
    for (const char* subject :
         {"file", "arrivals", "clock", "sending", "backups", "directory", "rights", "locks", "space", "templates"})
        EXPECT_NE(Of(subject), QJsonObject()) << subject;
    EXPECT_TRUE(outcome.Output.contains("holds 1 messages; its format is sqlite."));
    EXPECT_EQ(Everything(), before);
}

TEST_F(DoctorTest, AMissingStationOrDirectoryIsSaid)
{
    EXPECT_EQ(Run({QStringLiteral("doctor"), Path(QStringLiteral("nowhere"))}).Code, 66);
    ASSERT_TRUE(QDir(Station() + QStringLiteral("/Directory")).removeRecursively());
    ExpectProblem("directory", "There is no directory", "Put it back");
    EXPECT_FALSE(QFile::exists(Station() + QStringLiteral("/Directory"))) << "none is made";
}

TEST_F(DoctorTest, ADamagedStationIsSaid)
{
    QFile file(Station() + QStringLiteral("/Tolva.mdb"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_EQ(file.write(QByteArray(2000, 'x')), 2000);
    file.close();
    ExpectProblem("file", "its file is damaged", "tolva check");
}

TEST_F(DoctorTest, ADirectoryThatNobodyIsInChargeOfIsSaid)
{
    const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Directory/Directory.mdb"));
    database->Execute(QStringLiteral("UPDATE [Users] SET [Rights]=1"));
    database->Close();
    ExpectProblem("directory", "Nobody in the directory may change settings", "rights NAME all");
}

TEST_F(DoctorTest, BackupsThatAreMissingOldOrDamagedAreSaid)
{
    const QDir root(Station() + QStringLiteral("/Backups/Tolva"));
    const QStringList names = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(names.size(), 1);
    const QString folder = root.filePath(names.first());
    QFile copy(folder + QStringLiteral("/Tolva.mdb"));
    ASSERT_TRUE(copy.open(QIODevice::ReadWrite));
    copy.seek(4096);
    ASSERT_EQ(copy.write(QByteArray(4096, 'x')), 4096);
    copy.close();
    ExpectProblem("backups", "is damaged", "tolva backup");
    EXPECT_EQ(Of("backups", {QStringLiteral("--quick")}).value(QStringLiteral("level")).toString(),
              QStringLiteral("good"));

    const QString details = folder + QStringLiteral("/Backup.inf");
    QByteArray text = Read(details);
    const qsizetype at = text.indexOf("Created=");
    ASSERT_GE(at, 0);
    text.replace(at, text.indexOf('\n', at) - at, "Created=01/02/2020 10:00:00");
    QFile changed(details);
    ASSERT_TRUE(changed.open(QIODevice::WriteOnly));
    changed.write(text);
    changed.close();
    ExpectProblem("backups", "days old", "tolva backup", {QStringLiteral("--quick")});
    ASSERT_TRUE(QDir(folder).removeRecursively());
    ExpectProblem("backups", "There is no backup", "tolva backup");
}

TEST_F(DoctorTest, WhatWasRefusedOrWaitsTooLongIsSaid)
{
    const QString reference = WaitingMail();
    EXPECT_EQ(Of("sending").value(QStringLiteral("level")).toString(), QStringLiteral("good"));
    Set(reference, QStringLiteral("[Sent]=46000"));
    ExpectProblem("sending", "1 of 1 messages in the Outbox have waited for more than an hour", "state");
    Answer("exit 67");
    EXPECT_EQ(Send().Code, 65);
    ExpectProblem("sending", "1 of 1 messages in the Outbox were refused", "state");
}

TEST_F(DoctorTest, AClockThatIsBehindIsSaid)
{
    SetSetting(QStringLiteral("Messages.LastChanged"), QStringLiteral("73051"));
    ExpectProblem("clock", "later than this computer's clock", "time server");
}

TEST_F(DoctorTest, MissingTemplatesAreSaid)
{
    for (const QString& name : QDir(Station()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (name != u"Directory" && name != u"Backups") {
            ASSERT_TRUE(QDir(Station() + u'/' + name).removeRecursively());
        }
    }
    ExpectProblem("templates", "There are no page templates", "package");
}

TEST_F(DoctorTest, SilenceIsANoteAndNoProblem)
{
    const QString reference = FileMail(Mail("long ago"));
    Set(reference, QStringLiteral("[Received]=46000"));
    const QJsonObject finding = Of("arrivals");
    EXPECT_EQ(finding.value(QStringLiteral("level")).toString(), QStringLiteral("note"));
    EXPECT_EQ(Doctor().Code, 0);
}
