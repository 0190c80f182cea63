// SPDX-License-Identifier: Apache-2.0

// The scripts of the page on hooking up, as they stand there, run by the shell that they name. Only the places are this
// test's, and the mailer and the daemon are scripts that write down what they got.

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace
{
constexpr int exitTemporary = 75;
constexpr int NumberOfScripts = 8;

/// Scripts in the order of the page, by what they do.
enum Script
{
    FilesMail,
    CopiesMailbox,
    EmptiesMailbox,
    FilesText,
    TakesForm,
    HandsToProvider, ///< One line, which SendBySmtpTest and SendingTest run.
    SendsMails,
    SendsTexts
};

QStringList ScriptsOf(const QString& page)
{
    static const QRegularExpression block(QStringLiteral("^```[a-z]+\\n(#!.*?)^```"),
                                          QRegularExpression::MultilineOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    QStringList scripts;
    auto matches = block.globalMatch(page);
    while (matches.hasNext())
        scripts.append(matches.next().captured(1));
    return scripts;
}
} // namespace

class HookupsTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        for (const char* folder : {"spool", "tray/mail", "tray/sms", "bin"})
            ASSERT_TRUE(QDir().mkpath(Path(QLatin1String(folder))));
        const QStringList scripts = ScriptsOf(QString::fromUtf8(Read(QStringLiteral(TOLVA_DOCUMENTS "/hookups.md"))));
        ASSERT_EQ(scripts.size(), NumberOfScripts);
        for (QString text : scripts) {
            text.replace(QStringLiteral("/usr/bin/tolva "), QStringLiteral(TOLVA_PROGRAM " "));
            text.replace(QStringLiteral("/srv/station"), Station());
            text.replace(QStringLiteral("/var/spool/tolva-sms"), Path(QStringLiteral("spool")));
            text.replace(QStringLiteral("/var/spool/tolva-out"), Path(QStringLiteral("tray")));
            text.replace(QStringLiteral("/etc/tolva/sms.conf"), Path(QStringLiteral("sms.conf")));
            Scripts_.append(MakeProgram(QStringLiteral("script%1").arg(Scripts_.size()), text.toUtf8()));
        }
        // Each answers as the file "refuses" says, and writes down what it took.
        MakeProgram(QStringLiteral("msmtp"), "#!/bin/sh\n[ -e refuses ] && exit 1\ncat >>taken\necho --- >>taken\n");
        MakeProgram(QStringLiteral("gammu-smsd-inject"),
                    "#!/bin/sh\n[ -e refuses ] && exit 1\nprintf '%s|' \"$@\" >>taken\necho >>taken\n");
    }

    Outcome RunScript(Script script, const QByteArray& input = {}, const QStringList& variables = {}) const
    {
        QProcess process;
        Prepare(process, {});
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("PATH"),
                           Path(QStringLiteral("bin:")) + environment.value(QStringLiteral("PATH")));
        for (const QString& variable : variables)
            environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
        process.setProcessEnvironment(environment);
        process.setProgram(Scripts_.at(script));
        process.start();
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished());
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    /// While it is away every command fails, as it does when a share is.
    void TakeStationAway() const { ASSERT_TRUE(QFile::rename(Station(), Station() + QStringLiteral("-away"))); }
    void BringStationBack() const { ASSERT_TRUE(QFile::rename(Station() + QStringLiteral("-away"), Station())); }

    void MakePending(const QString& reference) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        database->Execute(QStringLiteral("UPDATE [Messages] SET [Category]=2, [Flags]=2, [Sent]=0 WHERE [Reference]=%1")
                              .arg(reference));
        database->Close();
    }
    /// What the mailer or the daemon took; empty when it was never called.
    QByteArray Taken(const QString& tray) const
    {
        const QString file = Path(QStringLiteral("tray/%1/taken").arg(tray));
        return QFile::exists(file) ? Read(file) : QByteArray();
    }
    void SetRefusing(const QString& tray, bool refuses) const
    {
        const QString name = QStringLiteral("tray/%1/refuses").arg(tray);
        if (refuses)
            Write(name, "");
        else
            ASSERT_TRUE(QFile::remove(Path(name)));
    }
    /// What a round leaves in a tray beside the lock and this test's own files.
    QStringList Left(const QString& tray) const
    {
        QStringList names = QDir(Path(QStringLiteral("tray/") + tray)).entryList(QDir::Files, QDir::Name);
        for (const char* own : {"lock", "taken", "refuses"})
            names.removeAll(QLatin1String(own));
        return names;
    }
    QString CategoryOf(qsizetype index) const
    {
        return Messages().at(index).value(QStringLiteral("category")).toString();
    }

private:
    QString MakeProgram(const QString& name, const QByteArray& text) const
    {
        const QString path = Write(QStringLiteral("bin/") + name, text);
        EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        return path;
    }

    QStringList Scripts_;
};

TEST_F(HookupsTest, TheMailServersScriptFilesOrAsksForAnotherTry)
{
    EXPECT_EQ(RunScript(FilesMail, "From studio Sat Nov 21 10:00:00 2026\n" + Mail("From a server")).Code, 0);
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_EQ(Messages().first().value(QStringLiteral("subject")).toString(), QStringLiteral("From a server"));

    TakeStationAway();
    const Outcome refused = RunScript(FilesMail, Mail("Later"));
    BringStationBack();
    EXPECT_EQ(refused.Code, exitTemporary);
    EXPECT_FALSE(refused.Problems.isEmpty());
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(HookupsTest, ATextMessageOfTheDaemonWaitsInTheSpoolUntilTheStationIsBack)
{
    const QStringList message = {QStringLiteral("SMS_MESSAGES=1"), QStringLiteral("SMS_1_NUMBER=+447700900123"),
                                 QStringLiteral("SMS_1_TEXT=Play the lighthouse song")};
    TakeStationAway();
    RunScript(FilesText, {}, message);
    EXPECT_EQ(QDir(Path(QStringLiteral("spool"))).entryList({QStringLiteral("*.sms")}).size(), 1);
    BringStationBack();
    RunScript(FilesText);
    EXPECT_TRUE(QDir(Path(QStringLiteral("spool"))).entryList({QStringLiteral("*.sms")}).isEmpty());
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_EQ(Messages().first().value(QStringLiteral("subject")).toString(),
              QStringLiteral("Play the lighthouse song"));
    EXPECT_EQ(Messages().first().value(QStringLiteral("type")).toString(), QStringLiteral("sms"));
}

TEST_F(HookupsTest, ATextOfTheDaemonIsAnsweredWhereItsOptionsSaySo)
{
    const auto message = [](const char* number) {
        return QStringList{QStringLiteral("SMS_MESSAGES=1"), QStringLiteral("SMS_1_NUMBER=") + QLatin1String(number),
                           QStringLiteral("SMS_1_TEXT=Song")};
    };
    RunScript(FilesText, {}, message("+447700900123"));
    EXPECT_EQ(Messages().size(), 1);
    static const QRegularExpression options(QStringLiteral("^```\\n(TOLVA_SMS_OPTIONS=.*\\n)```$"),
                                            QRegularExpression::MultilineOption);
    const QString page = QString::fromUtf8(Read(QStringLiteral(TOLVA_DOCUMENTS "/hookups.md")));
    Write(QStringLiteral("sms.conf"), options.match(page).captured(1).toUtf8());
    RunScript(FilesText, {}, message("+447700900124"));
    EXPECT_EQ(Messages().size(), 3);
    EXPECT_EQ(Messages({QStringLiteral("--category"), QStringLiteral("Outbox")}).size(), 1);
}

TEST_F(HookupsTest, AFaultInTheOptionsOfTheDaemonsScriptLosesNoText)
{
    Write(QStringLiteral("sms.conf"), "exit 3\n");
    RunScript(FilesText, {},
              {QStringLiteral("SMS_MESSAGES=1"), QStringLiteral("SMS_1_NUMBER=+447700900123"),
               QStringLiteral("SMS_1_TEXT=Play the lighthouse song")});
    EXPECT_EQ(QDir(Path(QStringLiteral("spool"))).entryList({QStringLiteral("*.sms")}).size(), 1);
    Write(QStringLiteral("sms.conf"), "");
    RunScript(FilesText);
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(HookupsTest, DecodedTextsOfTheDaemonAreJoined)
{
    RunScript(FilesText, {},
              {QStringLiteral("SMS_MESSAGES=2"), QStringLiteral("SMS_1_NUMBER=+447700900123"),
               QStringLiteral("SMS_1_TEXT=raw"), QStringLiteral("SMS_2_TEXT=raw"), QStringLiteral("DECODED_PARTS=1"),
               QStringLiteral("DECODED_1_TEXT=One long text")});
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_EQ(Messages().first().value(QStringLiteral("subject")).toString(), QStringLiteral("One long text"));
}

TEST_F(HookupsTest, AFormIsAnsweredWithOkOnlyWhenItsMessageIsStored)
{
    const QByteArray form = "From=%2B447700900123&Body=caf%C3%A9+%26+cake%3F";
    const QStringList request = {QStringLiteral("REQUEST_METHOD=POST"),
                                 QStringLiteral("CONTENT_LENGTH=%1").arg(form.size())};
    EXPECT_TRUE(RunScript(TakesForm, form, request).Output.startsWith("Status: 200 OK\r\n"));
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_EQ(Messages().first().value(QStringLiteral("subject")).toString(), QStringLiteral("caf\u00e9 & cake?"));

    TakeStationAway();
    EXPECT_TRUE(RunScript(TakesForm, form, request).Output.startsWith("Status: 503 "));
    BringStationBack();
    EXPECT_TRUE(RunScript(TakesForm, {}, {QStringLiteral("REQUEST_METHOD=GET")}).Output.startsWith("Status: 405 "));
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(HookupsTest, AMailGoesOutOnceAndIsMarked)
{
    MakePending(FileMail(Mail("An answer")));
    SetRefusing(QStringLiteral("mail"), true);
    RunScript(SendsMails);
    EXPECT_EQ(CategoryOf(0), QStringLiteral("Outbox"));

    SetRefusing(QStringLiteral("mail"), false);
    RunScript(SendsMails);
    RunScript(SendsMails);
    EXPECT_EQ(CategoryOf(0), QStringLiteral("Sent"));
    EXPECT_EQ(Taken(QStringLiteral("mail")).count("Subject: An answer"), 1);
    EXPECT_TRUE(Left(QStringLiteral("mail")).isEmpty()) << Left(QStringLiteral("mail")).join(u' ').toStdString();
}

TEST_F(HookupsTest, AMailWhoseMarkFailedIsMarkedInTheNextRoundAndNotSentAgain)
{
    MakePending(FileMail(Mail("An answer")));
    const QString reference = QString::number(Messages().first().value(QStringLiteral("reference")).toInt());
    Write(QStringLiteral("tray/mail/%1.sent").arg(reference), Mail("An answer"));
    RunScript(SendsMails);
    EXPECT_EQ(CategoryOf(0), QStringLiteral("Sent"));
    EXPECT_TRUE(Taken(QStringLiteral("mail")).isEmpty());
}

TEST_F(HookupsTest, AMailThatMayHaveGoneOutIsHeldBack)
{
    MakePending(FileMail(Mail("An answer")));
    const QString reference = QString::number(Messages().first().value(QStringLiteral("reference")).toInt());
    Write(QStringLiteral("tray/mail/%1.sending").arg(reference), Mail("An answer"));
    EXPECT_TRUE(RunScript(SendsMails).Problems.contains(reference.toUtf8()));
    EXPECT_EQ(CategoryOf(0), QStringLiteral("Outbox"));
    EXPECT_TRUE(Taken(QStringLiteral("mail")).isEmpty());
}

TEST_F(HookupsTest, ATextMessageGoesToEachOfItsNumbersOnce)
{
    MakePending(FileMail("Congratulations!\nRing us.",
                         {QStringLiteral("--sms"), QStringLiteral("--from"), QStringLiteral("Harbour"),
                          QStringLiteral("--to"), QStringLiteral("+447700900123; +447700900124")}));
    SetRefusing(QStringLiteral("sms"), true);
    RunScript(SendsTexts);
    EXPECT_EQ(CategoryOf(0), QStringLiteral("Outbox"));
    SetRefusing(QStringLiteral("sms"), false);
    RunScript(SendsTexts);
    RunScript(SendsTexts);
    const QByteArray taken = Taken(QStringLiteral("sms"));
    EXPECT_EQ(taken.count("TEXT|+447700900123|-autolen|25|-text|Congratulations!\nRing us.|"), 1) << taken.constData();
    EXPECT_EQ(taken.count("TEXT|+447700900124|"), 1) << taken.constData();
    EXPECT_EQ(CategoryOf(0), QStringLiteral("Sent"));
    EXPECT_TRUE(Left(QStringLiteral("sms")).isEmpty()) << Left(QStringLiteral("sms")).join(u' ').toStdString();
}
